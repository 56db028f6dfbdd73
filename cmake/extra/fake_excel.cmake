# A stand-in spreadsheet automation server that the reports tests start
# through COM under Wine. Test-only: never installed, never part of the
# library.
if(NOT WIN32 OR NOT QUILTOOL_BUILD_TESTS)
  return()
endif()

add_executable(fake_excel WIN32
  ${CMAKE_SOURCE_DIR}/reports/fake_excel/fake_excel_main.cpp
  ${CMAKE_SOURCE_DIR}/reports/fake_excel/fake_excel_objects.cpp
  ${CMAKE_SOURCE_DIR}/reports/fake_excel/fake_excel_log.cpp)
target_compile_options(fake_excel PRIVATE -municode)
target_link_options(fake_excel PRIVATE -municode)
qt_link_platform(fake_excel)
if(TARGET quiltool_reports_tests)
  add_dependencies(quiltool_reports_tests fake_excel)
endif()
