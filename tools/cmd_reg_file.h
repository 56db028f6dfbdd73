// The ".reg" text format of registry exports, as quiltool reg reads and
// writes it: "Windows Registry Editor Version 5.00" files in UTF-16LE with
// a byte-order mark, and the older 8-bit "REGEDIT4" files on reading.
#ifndef QUILTOOL_TOOLS_CMD_REG_FILE_H
#define QUILTOOL_TOOLS_CMD_REG_FILE_H

#include <string>
#include <vector>

#include "qn_wintypes.h"

namespace qt_regfile {

struct Value {
  std::wstring name;  // "" is the key's default value ("@")
  bool remove = false;  // "name"=-
  DWORD type = REG_NONE;
  std::vector<BYTE> data;
  int line = 0;
};

struct Key {
  HKEY root = nullptr;
  std::wstring path;  // below the root, "" for the root itself
  bool remove = false;  // [-KEY]: the key and everything below it
  std::vector<Value> values;
  int line = 0;
};

struct Document {
  std::vector<Key> keys;
};

// "HKCU\a\b", "HKEY_LOCAL_MACHINE\a": the root and the path below it.
// False for an unknown root, an empty part in the path, a part longer than
// the registry's 255 characters, or a zero character, which would cut the
// name short wherever it is passed on as a C string.
bool SplitKeyName(const std::wstring& name, HKEY* root, std::wstring* path);
// "HKEY_CURRENT_USER" / "HKEY_LOCAL_MACHINE".
const wchar_t* RootName(HKEY root);

// Parses and checks a whole file, so that nothing is changed for a file
// that fails anywhere; on failure *error says what and on which line.
bool Parse(const std::string& bytes, Document* document, std::string* error);
// The file's bytes: version 5 header, UTF-16LE with byte-order mark.
std::string Format(const Document& document);

}  // namespace qt_regfile

#endif
