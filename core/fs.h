// Whole-file access by wide file name, the same on every target: reading a
// file, replacing one so that readers see either the old or the new content
// and never a mixture, asking what is at a name, removing a file and making
// a name absolute. Every failure is one FsError, whatever the system said.
#ifndef QUILTOOL_CORE_FS_H
#define QUILTOOL_CORE_FS_H

#include <cstddef>
#include <string>

namespace qt {
namespace fs {

enum class FsError {
  kOk,
  kNotFound,      // no such file, or a folder on the way is missing
  kAccessDenied,  // the account may not do it
  kIsDirectory,   // a folder where a file was expected
  kBusy,          // another program holds the file
  kNoSpace,       // the disk or the quota is full
  kTooLarge,      // more than a whole-file read takes
  kInvalidName,   // empty, too long, or not a name the system accepts
  kIo,            // anything else the system reports
};

// A short English reason ("no such file or folder"), never null.
const char* FsErrorText(FsError error);

enum class Kind { kNone, kFile, kDirectory, kOther };

// Files larger than this are refused with kTooLarge: whole-file readers
// hand the content on with a signed 32-bit length.
const size_t kMaxWholeFile = 0x7FFFFFFF;

// The whole content. On failure *bytes is left as it was.
FsError ReadWholeFile(const std::wstring& path, std::string* bytes);

// Writes a temporary file beside path, forces it to the disk and renames it
// over path. On any failure the old file is untouched and the temporary file
// is gone. An existing file is replaced only when the account may write that
// file itself (a writable folder is not enough: kAccessDenied), and the new
// file keeps the old one's permissions (and its owner where the process may
// give files away).
FsError ReplaceWholeFile(const std::wstring& path, const void* data, size_t size);
FsError ReplaceWholeFile(const std::wstring& path, const std::string& bytes);

// What is at the name; kNone when nothing is (also a link to nothing counts
// as kOther, since the name is taken).
Kind KindOf(const std::wstring& path);
bool IsFile(const std::wstring& path);
bool IsDirectory(const std::wstring& path);
bool Exists(const std::wstring& path);

// Removes a file (never a folder: kIsDirectory).
FsError Remove(const std::wstring& path);

// The absolute form of a name: GetFullPathNameW on Windows; on Linux joined
// to the current folder with "." and ".." and doubled separators removed
// lexically, so that links stay as the caller's colleagues see them.
FsError FullName(const std::wstring& path, std::wstring* full);
std::wstring FullName(const std::wstring& path);  // the name itself on failure

}  // namespace fs
}  // namespace qt

#endif
