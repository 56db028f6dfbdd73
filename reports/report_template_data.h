// The workbook template compiled in where there are no resources (Linux).
// The bytes are generated at configure time from reports/report_template.xml,
// the file the Windows resource script takes too, so the two cannot differ.
#ifndef QUILTOOL_REPORTS_REPORT_TEMPLATE_DATA_H
#define QUILTOOL_REPORTS_REPORT_TEMPLATE_DATA_H

#include <cstddef>

namespace qt {
namespace report {

extern const unsigned char kReportTemplate[];
extern const size_t kReportTemplateSize;

}  // namespace report
}  // namespace qt

#endif
