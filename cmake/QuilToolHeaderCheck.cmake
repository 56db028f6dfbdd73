# Every public header must compile on its own, as strict C++17 without
# compiler extensions, as a module of the suite includes it.
function(qt_add_header_check)
  file(GLOB headers CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/include/*.h)
  set(sources)
  foreach(header IN LISTS headers)
    get_filename_component(name ${header} NAME_WE)
    set(src ${CMAKE_BINARY_DIR}/header_check/${name}.cpp)
    file(CONFIGURE OUTPUT ${src} CONTENT "#include \"${name}.h\"\n#include \"${name}.h\"\nint qt_header_check_${name}();\n")
    list(APPEND sources ${src})
  endforeach()
  # The interface leaves the caller's <windows.h> switches as it found
  # them: unset ones stay unset, set ones stay set.
  if(WIN32)
    set(src ${CMAKE_BINARY_DIR}/header_check/windows_switches_unset.cpp)
    file(CONFIGURE OUTPUT ${src} CONTENT [=[
#include "quiltool.h"
#ifdef WIN32_LEAN_AND_MEAN
#error "the interface leaves WIN32_LEAN_AND_MEAN defined"
#endif
#ifdef NOMINMAX
#error "the interface leaves NOMINMAX defined"
#endif
int qt_header_check_windows_switches_unset();
]=])
    list(APPEND sources ${src})
    set(src ${CMAKE_BINARY_DIR}/header_check/windows_switches_kept.cpp)
    file(CONFIGURE OUTPUT ${src} CONTENT [=[
#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include "quiltool.h"
#if !defined(WIN32_LEAN_AND_MEAN) || !defined(NOMINMAX)
#error "the interface takes back a switch the caller set"
#endif
int qt_header_check_windows_switches_kept();
]=])
    list(APPEND sources ${src})
  endif()
  add_library(quiltool_header_check OBJECT ${sources})
  target_include_directories(quiltool_header_check PRIVATE ${CMAKE_SOURCE_DIR}/include)
  if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    target_compile_options(quiltool_header_check PRIVATE -pedantic-errors -Wall -Wextra -Werror)
  endif()
endfunction()
qt_add_header_check()
