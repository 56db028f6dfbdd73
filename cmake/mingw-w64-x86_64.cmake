# Cross-build for 64-bit Windows with Debian's mingw-w64 (posix threads);
# programs run under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(QT_MINGW x86_64-w64-mingw32)

set(CMAKE_C_COMPILER   ${QT_MINGW}-gcc-posix)
set(CMAKE_CXX_COMPILER ${QT_MINGW}-g++-posix)
set(CMAKE_RC_COMPILER  ${QT_MINGW}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${QT_MINGW})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
# Packages (QuilTool itself, for modules built against it) may live anywhere.
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)

if(NOT DEFINED CMAKE_CROSSCOMPILING_EMULATOR)
  set(CMAKE_CROSSCOMPILING_EMULATOR wine)
endif()

# Windows 7 and later: the Win32 calls the library makes are all there.
add_compile_definitions(_WIN32_WINNT=0x0601 WINVER=0x0601 UNICODE _UNICODE)
