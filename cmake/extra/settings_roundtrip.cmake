# Settings move between Wine's registry and the Linux settings store with
# each side's own tools (wine regedit / wine reg and quiltool reg). Linux
# lane only, and only where wine is installed.
if(NOT WIN32 AND QUILTOOL_BUILD_TESTS AND QUILTOOL_BUILD_TOOLS)
  find_program(QT_WINE_PROGRAM wine)
  find_package(Python3 COMPONENTS Interpreter QUIET)
  if(QT_WINE_PROGRAM AND Python3_Interpreter_FOUND)
    add_test(NAME settings_wine_roundtrip
             COMMAND ${Python3_EXECUTABLE} ${CMAKE_SOURCE_DIR}/scripts/settings_roundtrip.py
                     $<TARGET_FILE:quiltool_cli> ${QT_WINE_PROGRAM})
    # A private Wine prefix is made on first use, which takes a while.
    set_tests_properties(settings_wine_roundtrip PROPERTIES TIMEOUT 600 LABELS "wine")
  endif()
endif()
