// Whole-file reads and writes by wide path (qlg_file_win.cpp /
// qlg_file_posix.cpp).
#ifndef QUILTOOL_SETTINGS_QLG_FILE_H
#define QUILTOOL_SETTINGS_QLG_FILE_H

#include <string>


namespace qt {
namespace qlg {

// False when the file cannot be opened or read.
bool ReadWholeFile(const wchar_t* path, std::string* bytes);
// Writes a sibling temporary file and moves it over path, so a failed
// write never leaves a half-written file behind.
bool WriteWholeFile(const wchar_t* path, const std::string& bytes);
// The path as UTF-8, for messages.
std::string PathForMessages(const wchar_t* path);

}  // namespace qlg
}  // namespace qt

#endif
