// Values as quiltool reg takes them on its command line: the type names of
// /t, the data of /d turned into the registry's bytes, and the UTF-8 of the
// arguments and the output.
#ifndef QUILTOOL_TOOLS_REG_VALUES_H
#define QUILTOOL_TOOLS_REG_VALUES_H

#include <string>
#include <vector>

#include "qn_wintypes.h"

namespace qt_regtool {

// Arguments reach the subcommands as UTF-8 on both targets, and the tool
// prints UTF-8; the ANSI code page would turn other text into "?".
std::wstring FromUtf8(const std::string& text);
std::string ToUtf8(const std::wstring& text);

// ASCII letters lowered, for option and type names.
std::string Lower(std::string text);

// "REG_SZ", ... and "REG_UNKNOWN(n)" for a number without a name.
std::string NameOfType(DWORD type);
// The types /t accepts, case-insensitive.
bool TypeOfName(const std::string& name, DWORD* type);

// The data of /d for a value of the type; /s's separator splits a
// REG_MULTI_SZ. On failure *problem says why.
bool Encode(DWORD type, const std::string& text, const std::string& separator, std::vector<BYTE>* data,
            std::string* problem);

}  // namespace qt_regtool

#endif
