// The record engine's seam to the operating system: whole-file access by
// wide file name and Base64 text. qb_file_win.cpp / qb_base64_win.cpp use
// the Win32 calls; the *_posix.cpp twins take UTF-8 names and libsodium.
#ifndef QUILTOOL_PROJECT_QB_PLATFORM_H
#define QUILTOOL_PROJECT_QB_PLATFORM_H

#include <cstddef>
#include <string>

namespace qb {
namespace platform {

bool FileExists(const wchar_t* path);
// The whole file; false when it cannot be read.
bool ReadWholeFile(const wchar_t* path, std::string* bytes);
// Writes a sibling file and renames it over path, so that a write that
// fails half-way leaves the old file as it was.
bool ReplaceWholeFile(const wchar_t* path, const void* data, size_t size);
bool RemoveFile(const wchar_t* path);
// Base64 with the standard alphabet and padding, in one line without
// breaks (CryptBinaryToStringW with CRYPT_STRING_BASE64 |
// CRYPT_STRING_NOCRLF on Windows). False when it cannot be made.
bool Base64(const unsigned char* data, size_t size, std::wstring* text);

}  // namespace platform
}  // namespace qb

#endif
