// The call log and the failures the test asked for.
#ifndef QUILTOOL_FAKE_EXCEL_LOG_H
#define QUILTOOL_FAKE_EXCEL_LOG_H

#include <windows.h>

#include <set>
#include <string>

namespace fake_excel {

struct Options {
  std::wstring logFile;
  std::set<std::wstring> failLookup;
  std::set<std::wstring> failInvoke;
};

Options& Settings();

// Appends one line (UTF-8) to the log file and closes it, so that the test
// reads every line written so far even while the server runs.
void Log(const std::wstring& line);

// "I4:3", "R8:2.5", "BSTR:text", "BOOL:-1", "EMPTY", "DISPATCH", "VT<n>".
std::wstring Describe(const VARIANT& value);

}  // namespace fake_excel

#endif
