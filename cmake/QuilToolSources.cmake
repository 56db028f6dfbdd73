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

# One test program per subsystem folder: quiltool_<dir>_tests, built with the
# library's objects inside so that it reaches internal functions too.
# Tests of what only the loaded shared library shows (its own folder, its
# load and unload, finding it by file name) are named foo_shared_test.cpp
# and go into quiltool_shared_tests, which links the shared library and so
# sees only what include/ declares.
function(qt_add_subsystem_tests dir)
  file(GLOB tests CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${dir}/*_test.cpp)
  qt_filter_platform(tests ${tests})
  set(shared ${tests})
  list(FILTER shared INCLUDE REGEX "_shared(_${QT_PLATFORM_SUFFIX})?_test\\.cpp$")
  list(FILTER tests EXCLUDE REGEX "_shared(_${QT_PLATFORM_SUFFIX})?_test\\.cpp$")
  if(shared)
    target_sources(quiltool_shared_tests PRIVATE ${shared})
  endif()
  if(NOT tests)
    return()
  endif()
  set(name quiltool_${dir}_tests)
  add_executable(${name} ${tests})
  target_link_libraries(${name} PRIVATE quiltool_objects quiltool_testsupport)
  qt_link_platform(${name})
  qt_register_gtest(${name})
endfunction()

# Made before the folders add their tests; linked with the shared library.
function(qt_add_shared_tests)
  add_executable(quiltool_shared_tests)
  # After the test support, whose calls into the library it resolves.
  target_link_libraries(quiltool_shared_tests PRIVATE quiltool_testsupport quiltool)
  # File name of the built library, for tests that look for it beside themselves.
  target_compile_definitions(quiltool_shared_tests PRIVATE QT_TEST_LIBRARY_FILE="$<TARGET_FILE_NAME:quiltool>")
  qt_link_platform(quiltool_shared_tests)
  qt_register_gtest(quiltool_shared_tests)
endfunction()

function(qt_register_gtest target)
  include(GoogleTest)
  # Every test file parses GoogleTest's headers first; made once per program
  # they cost a second less per file.
  target_precompile_headers(${target} PRIVATE <gtest/gtest.h> <string> <vector>)
  # Test code needs line numbers in a stack, not full optimisation or
  # variable locations: this halves the time spent compiling it.
  if(NOT MSVC)
    target_compile_options(${target} PRIVATE $<$<CONFIG:RelWithDebInfo>:-O1 -g1>)
  endif()
  # Discovery runs the program, which under Wine costs a second or two;
  # doing it at test time keeps the build free of emulator runs.
  # Under Wine no test needs more than a few seconds, but a test has been
  # seen to hang there once in a while (a Wine-side stall; the lane reruns a
  # failed test once): a short limit keeps such a stall from costing minutes.
  if(WIN32 AND target STREQUAL "quiltool_reports_tests")
    # The automation tests first wait for Wine's COM service to settle,
    # which right after the prefix is made can take 40 s on a busy machine.
    set(qt_test_timeout 180)
  elseif(WIN32)
    set(qt_test_timeout 60)
  else()
    set(qt_test_timeout 300)
  endif()
  set(desktop)
  if(WIN32)
    qt_desktop_suites(${target} desktop)
  endif()
  if(NOT desktop)
    gtest_discover_tests(${target}
      DISCOVERY_MODE PRE_TEST
      DISCOVERY_TIMEOUT 120
      PROPERTIES TIMEOUT ${qt_test_timeout})
    return()
  endif()
  list(TRANSFORM desktop APPEND ".*")
  list(JOIN desktop ":" filter)
  gtest_discover_tests(${target}
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 120
    TEST_FILTER "${filter}"
    PROPERTIES TIMEOUT ${qt_test_timeout} RESOURCE_LOCK desktop)
  gtest_discover_tests(${target}
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 120
    TEST_FILTER "-${filter}"
    PROPERTIES TIMEOUT ${qt_test_timeout})
endfunction()

# Under Wine all test programs share one X server and one desktop: two tests
# that show windows at the same time take the keyboard focus (and the
# clipboard) from each other, and an editor that loses the focus closes. A
# test file that shows windows says so with the line
#   // ctest: RESOURCE_LOCK desktop
# and the suites it defines then run one at a time, beside the other tests.
function(qt_desktop_suites target out)
  get_target_property(sources ${target} SOURCES)
  set(suites)
  foreach(f IN LISTS sources)
    if(NOT f MATCHES "_test\\.cpp$")
      continue()
    endif()
    # Adding or removing the line takes effect at the next build.
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${f})
    file(STRINGS ${f} marker REGEX "^// ctest: RESOURCE_LOCK desktop$")
    if(NOT marker)
      continue()
    endif()
    file(STRINGS ${f} heads REGEX "^TEST(_F)?\\([A-Za-z0-9_]+,")
    foreach(head IN LISTS heads)
      string(REGEX REPLACE "^TEST(_F)?\\(([A-Za-z0-9_]+),.*" "\\2" suite "${head}")
      list(APPEND suites ${suite})
    endforeach()
  endforeach()
  if(suites)
    list(REMOVE_DUPLICATES suites)
  endif()
  set(${out} ${suites} PARENT_SCOPE)
endfunction()
