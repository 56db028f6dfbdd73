// The two file forms of a report, built whole in memory. Both give the same
// bytes on every target for the same report.
#ifndef QUILTOOL_REPORTS_EXPORT_FORMAT_H
#define QUILTOOL_REPORTS_EXPORT_FORMAT_H

#include <string>

#include "reports/report_model.h"

namespace qt {
namespace report {

// Tab-delimited text, UTF-16LE after the byte-order mark FF FE: the title
// line when there is a title, the header line, then one line per row with
// the cells' line breaks turned into blanks. Lines are separated, not
// ended, by CR LF. Throws std::bad_alloc.
std::string BuildText(const SimpleReportData& data);

// The <Table> element of the workbook, UTF-8, each line ended by CR LF.
// Throws std::bad_alloc.
void AppendXmlTable(const SimpleReportData& data, std::string* out);

// The whole workbook: the template with its sheet-name and table
// placeholders filled in. The template's line ends come out as CR LF
// whatever the template file had. Throws std::bad_alloc.
std::string BuildXmlSpreadsheet(const SimpleReportData& data, const std::string& workbookTemplate,
                                const ustr& sheetName);

// Line ends as CR LF: every LF gets one CR before it and lone CRs go.
std::string WithCrLf(const std::string& text);

}  // namespace report
}  // namespace qt

#endif
