// UTF-8 <-> wide text for the language files, which are UTF-8 on every
// target. wchar_t is UTF-16 on Windows (surrogate pairs for characters
// beyond the BMP) and UTF-32 elsewhere.
#ifndef QUILTOOL_SETTINGS_QLG_UTF8_H
#define QUILTOOL_SETTINGS_QLG_UTF8_H

#include <cstddef>
#include <string>


namespace qt {
namespace qlg {

// Length of the valid UTF-8 prefix of [data, data + size): equal to size
// when the whole range is valid (no overlong forms, no surrogates).
size_t ValidUtf8Prefix(const char* data, size_t size);

// Converts UTF-8 into out, which has room for `size` units (never more
// are needed); returns the units written. Invalid bytes become U+FFFD.
size_t Utf8ToWideInto(const char* data, size_t size, wchar_t* out);
// Appends UTF-8 to a wide string.
void AppendUtf8AsWide(const char* data, size_t size, std::wstring* out);
std::wstring Utf8ToWide(const std::string& utf8);

// Unpaired surrogates of UTF-16 become U+FFFD.
std::string WideToUtf8(const wchar_t* text, size_t length);
std::string WideToUtf8(const std::wstring& text);

}  // namespace qlg
}  // namespace qt

#endif
