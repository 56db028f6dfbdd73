// What quiltool reg prints: its usage, values and keys as reg.exe shows
// them, and failures, all as UTF-8.
#ifndef QUILTOOL_TOOLS_REG_PRINT_H
#define QUILTOOL_TOOLS_REG_PRINT_H

#include <cstdio>
#include <string>
#include <vector>

#include "qn_wintypes.h"

namespace qt_regtool {

// The usage text on out for a help request; returns 0.
int Help(FILE* out);
// The problem and the usage text on err; returns 2.
int Usage(FILE* err, const std::string& problem);

// "HKEY_CURRENT_USER\path".
std::wstring FullName(HKEY root, const std::wstring& path);

// The data as reg.exe shows it.
std::string Show(DWORD type, const std::vector<BYTE>& data);
void PrintValue(FILE* out, const std::wstring& name, DWORD type, const std::vector<BYTE>& data);
// One key's block; with recurse the blocks of all keys below it follow.
void PrintKey(FILE* out, HKEY root, const std::wstring& path, HKEY key, bool recurse);

// After a store call on root failed with rc: what the store says against
// its file (damaged, not a store) when it says anything, else reg.exe's
// message for a missing key or value, else "cannot <action> (error rc)".
// Returns 1.
int Failure(FILE* err, const char* verb, HKEY root, long rc, const std::string& action);

}  // namespace qt_regtool

#endif
