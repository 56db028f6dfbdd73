# The report's workbook template has one source, reports/report_template.xml.
# Windows takes it as a resource (reports/report_win.rc); elsewhere its bytes
# are compiled in from a file generated here whenever the template changes.
if(WIN32 OR NOT "reports" IN_LIST QT_SUBSYSTEMS)
  return()
endif()
set(qt_report_template ${CMAKE_SOURCE_DIR}/reports/report_template.xml)
set(qt_report_template_cpp ${CMAKE_BINARY_DIR}/generated/report_template_data.cpp)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${qt_report_template})
file(READ ${qt_report_template} qt_report_hex HEX)
string(LENGTH "${qt_report_hex}" qt_report_hex_length)
math(EXPR qt_report_size "${qt_report_hex_length} / 2")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," qt_report_bytes "${qt_report_hex}")
file(CONFIGURE OUTPUT ${qt_report_template_cpp} CONTENT
"// Generated from reports/report_template.xml; edit that file instead.
#include \"reports/report_template_data.h\"

namespace qt {
namespace report {

const unsigned char kReportTemplate[] = {
${qt_report_bytes}
0};
const size_t kReportTemplateSize = ${qt_report_size};

}  // namespace report
}  // namespace qt
")
target_sources(quiltool_objects PRIVATE ${qt_report_template_cpp})

# The report benchmark measures libxlsxwriter in the same run when Debian's
# libxlsxwriter-dev is there.
if(TARGET bench_report)
  find_package(PkgConfig QUIET)
  if(PkgConfig_FOUND)
    pkg_check_modules(QT_XLSXWRITER QUIET IMPORTED_TARGET xlsxwriter)
  endif()
  if(QT_XLSXWRITER_FOUND)
    target_link_libraries(bench_report PRIVATE PkgConfig::QT_XLSXWRITER)
    target_compile_definitions(bench_report PRIVATE QT_HAVE_XLSXWRITER=1)
  endif()
endif()
