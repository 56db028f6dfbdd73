// Platform steps of text handling (text_win.cpp / text_posix.cpp).
#ifndef QUILTOOL_CORE_TEXT_PLATFORM_H
#define QUILTOOL_CORE_TEXT_PLATFORM_H

namespace qt {
namespace platform {
// How the C runtime's wide printf spells an 8-bit string and character
// argument: "hs"/"hc" on Windows, "s"/"c" in C99 runtimes.
extern const char* const kNarrowStringInWideFormat;
extern const char* const kNarrowCharInWideFormat;
}  // namespace platform
}  // namespace qt

#endif
