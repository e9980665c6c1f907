# Found by find_package(VelmoraStore): what the libraries of the store are linked with, then the libraries.
include(CMakeFindDependencyMacro)
find_dependency(Threads)
find_dependency(ICU COMPONENTS uc data)
find_dependency(tl-expected)
find_dependency(PkgConfig)
pkg_check_modules(libmd REQUIRED IMPORTED_TARGET libmd)
include(${CMAKE_CURRENT_LIST_DIR}/VelmoraStoreTargets.cmake)
