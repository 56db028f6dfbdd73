// Text conversions of the record engine. Stored text is UTF-16LE so that a
// file written on one target reads the same on the other; wchar_t is
// UTF-16 on Windows and UTF-32 on Linux, so the conversions go by the
// width of wchar_t rather than by platform.
#ifndef QUILTOOL_PROJECT_QB_TEXT_H
#define QUILTOOL_PROJECT_QB_TEXT_H

#include <cstddef>
#include <string>

namespace qb {

// Wide text (len characters) as UTF-16LE bytes; characters outside the BMP
// become surrogate pairs where wchar_t is 32 bits wide.
std::string WideToUtf16le(const wchar_t* text, size_t len);
// UTF-16LE bytes back to wide text; an odd trailing byte is dropped and a
// lone surrogate becomes U+FFFD where wchar_t is 32 bits wide.
std::wstring Utf16leToWide(const unsigned char* bytes, size_t size);
// File names for SQLite, which takes UTF-8 on every target.
std::string WideToUtf8(const wchar_t* text);

}  // namespace qb

#endif
