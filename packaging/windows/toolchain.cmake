# Programs for 64-bit Windows, by Debian's compiler and the libraries that packaging/windows/libraries.sh makes.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(host x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${host}-gcc-posix)
set(CMAKE_CXX_COMPILER ${host}-g++-posix)
set(CMAKE_RC_COMPILER ${host}-windres)

set(VELMORA_WINDOWS_LIBRARIES ${CMAKE_CURRENT_LIST_DIR}/../../build/windows-libraries CACHE PATH
  "What packaging/windows/libraries.sh has made")
set(VELMORA_WINDOWS_QT ${CMAKE_CURRENT_LIST_DIR}/../../build/windows-qt CACHE PATH "What packaging/windows/qt.sh has made")
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES VELMORA_WINDOWS_LIBRARIES)
get_filename_component(libraries ${VELMORA_WINDOWS_LIBRARIES} ABSOLUTE)
get_filename_component(qt ${VELMORA_WINDOWS_QT} ABSOLUTE)
set(CMAKE_FIND_ROOT_PATH ${libraries} ${qt} /usr/${host})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} ${libraries}/lib/pkgconfig)

# Windows 10 and later. The stack has 16 bytes of alignment there, of which the compiler takes no notice when it keeps
# vectors of 32 on it: the assembler makes their moves such that it does not matter.
set(CMAKE_C_FLAGS_INIT "-D_WIN32_WINNT=0x0A00 -Wa,-muse-unaligned-vector-move")
set(CMAKE_CXX_FLAGS_INIT "${CMAKE_C_FLAGS_INIT} -DU_STATIC_IMPLEMENTATION")
# One file that runs alone, without the names of its functions, and with the stack that it has elsewhere.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -s -Wl,--gc-sections -Wl,--stack,8388608")

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../../tests/windows/wine)
