// Saving a report to a file: with the save-file dialog, the failure
// message and the opening of the saved file, as the report window does it;
// or to a given name with none of these.
#ifndef QUILTOOL_REPORTS_REPORT_SAVE_H
#define QUILTOOL_REPORTS_REPORT_SAVE_H

#include <string>

#include "reports/report_model.h"

namespace qt {
namespace report {

enum class Format { kText, kXmlSpreadsheet };

// The file's whole content; a SimpleReport::SaveResult.
int BuildContent(const SimpleReportData& data, Format format, std::string* bytes);

// Writes the file in one go: either all of it is there under the name or
// the old file (or none) is; a SimpleReport::SaveResult.
int SaveToPath(const SimpleReportData& data, Format format, const std::wstring& path);

// Asks for the name, writes, tells "Could not create file" on failure and
// opens the file only when it was written whole. False when cancelled or
// failed.
bool SaveWithDialog(const SimpleReportData& data, Format format, HWND owner);

}  // namespace report
}  // namespace qt

#endif
