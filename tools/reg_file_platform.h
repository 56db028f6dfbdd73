// The system's side of reading 8-bit ("REGEDIT4") registry files
// (reg_file_platform_posix.cpp / _win.cpp): the 8-bit text of those files
// is whatever the system's 8-bit text is.
#ifndef QUILTOOL_TOOLS_REG_FILE_PLATFORM_H
#define QUILTOOL_TOOLS_REG_FILE_PLATFORM_H

#include <cstddef>
#include <string>

namespace qt {
namespace reg_file {
namespace platform {

// 8-bit text as wide text, exactly: false, and out empty, when the bytes
// are no text in that encoding, since a stand-in character would import a
// key or value under a name the file does not hold. Linux's 8-bit text is
// UTF-8; Windows' is the ANSI code page, where every byte means something.
bool EightBitToWide(const char* text, size_t size, std::wstring* out);
// That encoding's name for messages: "UTF-8", "ANSI code page".
const char* EightBitName();

}  // namespace platform
}  // namespace reg_file
}  // namespace qt

#endif
