// The steps of the report that differ by system (report_platform_win.cpp /
// report_platform_posix.cpp). They are reached through a table of function
// pointers, so that a test can answer the save-file dialog and record the
// opening of saved files instead of starting programs.
#ifndef QUILTOOL_REPORTS_REPORT_PLATFORM_H
#define QUILTOOL_REPORTS_REPORT_PLATFORM_H

#include <string>

#include "core/call_table.h"
#include "qn_wintypes.h"

namespace qt {
namespace report {
namespace platform {

struct Calls {
  // The window a message box goes on: GetForegroundWindow; null on Linux.
  HWND (*foregroundWindow)();
  // The system's save-file dialog (GetSaveFileNameW, overwrite prompt on).
  // filter is in the "Name (*.txt)|*.txt||" form, defaultExtension "*.txt".
  // Linux has none: false, as if cancelled.
  bool (*askSaveName)(HWND owner, const std::wstring& filter, const std::wstring& defaultExtension,
                      std::wstring* name);
  // Opens a saved text file with its program: ShellExecuteW "open",
  // SW_SHOWNORMAL. Linux: xdg-open when a desktop session is there
  // (DISPLAY or WAYLAND_DISPLAY set), else nothing; not waited for.
  void (*openText)(const std::wstring& path);
  // Opens a saved workbook: SpreadsheetCommand(path) through _wsystem.
  // Linux: as openText.
  void (*openSpreadsheet)(const std::wstring& path);
  // The workbook template as stored: the library's own resource (type 23,
  // number 100) on Windows, the text compiled in on Linux. False when the
  // resource is missing.
  bool (*loadTemplate)(std::string* bytes);
};

const Calls& SystemCalls();
inline Calls& CurrentCalls() { return CallTable<Calls, &SystemCalls>::Current(); }
typedef CallTable<Calls, &SystemCalls>::Override CallsOverride;

}  // namespace platform

// The command line that opens a workbook: start excel "<path>".
std::wstring SpreadsheetCommand(const std::wstring& path);

}  // namespace report
}  // namespace qt

#endif
