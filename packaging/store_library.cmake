# The store as a library for other programs: `cmake --install BUILD --component store_library`. In no package, and not
# among what an installation without a component brings.
include(CMakePackageConfigHelpers)
set(store_package lib/cmake/VelmoraStore)

foreach(name platform text format ndb ltp operations messaging)
  set_target_properties(velmora_${name} PROPERTIES EXPORT_NAME ${name})
  list(APPEND store_targets velmora_${name})
endforeach()
install(TARGETS ${store_targets} EXPORT VelmoraStoreTargets
  ARCHIVE DESTINATION lib COMPONENT store_library EXCLUDE_FROM_ALL
  INCLUDES DESTINATION include/velmora)
install(EXPORT VelmoraStoreTargets NAMESPACE VelmoraStore:: DESTINATION ${store_package}
  COMPONENT store_library EXCLUDE_FROM_ALL)
foreach(folder platform text store)
  install(DIRECTORY ${CMAKE_SOURCE_DIR}/src/${folder} DESTINATION include/velmora
    COMPONENT store_library EXCLUDE_FROM_ALL FILES_MATCHING PATTERN "*.h" PATTERN posix EXCLUDE PATTERN windows EXCLUDE)
endforeach()

write_basic_package_version_file(${CMAKE_BINARY_DIR}/VelmoraStoreConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/VelmoraStoreConfigVersion.cmake ${CMAKE_CURRENT_LIST_DIR}/VelmoraStoreConfig.cmake
  DESTINATION ${store_package} COMPONENT store_library EXCLUDE_FROM_ALL)
