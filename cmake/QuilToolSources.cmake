# Sources are picked by name, so that adding a file never means editing a list:
#   foo.cpp           portable, built on every target
#   foo_win.cpp       Windows only        foo_posix.cpp   Linux only
#   foo_test.cpp      tests (also foo_win_test.cpp / foo_posix_test.cpp)
#   foo_win.rc        Windows resources

function(qt_filter_platform out)
  set(kept)
  foreach(f IN LISTS ARGN)
    get_filename_component(stem ${f} NAME_WE)
    if(stem MATCHES "_${QT_OTHER_SUFFIX}$" OR stem MATCHES "_${QT_OTHER_SUFFIX}_test$")
      continue()
    endif()
    list(APPEND kept ${f})
  endforeach()
  set(${out} ${kept} PARENT_SCOPE)
endfunction()

function(qt_library_sources dir out)
  file(GLOB all CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${dir}/*.cpp)
  if(WIN32)
    file(GLOB rc CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${dir}/*_win.rc)
    list(APPEND all ${rc})
  endif()
  list(FILTER all EXCLUDE REGEX "_test\\.cpp$")
  qt_filter_platform(all ${all})
  set(${out} ${all} PARENT_SCOPE)
endfunction()

# One test program per subsystem folder: quiltool_<dir>_tests.
function(qt_add_subsystem_tests dir)
  file(GLOB tests CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${dir}/*_test.cpp)
  qt_filter_platform(tests ${tests})
  if(NOT tests)
    return()
  endif()
  set(name quiltool_${dir}_tests)
  add_executable(${name} ${tests})
  target_link_libraries(${name} PRIVATE quiltool quiltool_testsupport qt_sqlite3 qt_tinyxml2)
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR})
  # File name of the built library, for tests that look for it beside themselves.
  target_compile_definitions(${name} PRIVATE QT_TEST_LIBRARY_FILE="$<TARGET_FILE_NAME:quiltool>")
  qt_link_platform(${name})
  qt_register_gtest(${name})
endfunction()

function(qt_register_gtest target)
  include(GoogleTest)
  # Discovery runs the program, which under Wine costs a second or two;
  # doing it at test time keeps the build free of emulator runs.
  gtest_discover_tests(${target}
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 120
    PROPERTIES TIMEOUT 300)
endfunction()
