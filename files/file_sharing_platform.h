// What the file-sharing services need of the operating system
// (file_sharing_platform_win.cpp / file_sharing_platform_posix.cpp).
#ifndef QUILTOOL_FILES_FILE_SHARING_PLATFORM_H
#define QUILTOOL_FILES_FILE_SHARING_PLATFORM_H

#include <string>

#include "qn_wintypes.h"

namespace qt {
namespace file_sharing {
namespace platform {

// Windows: the account name of the owner SID (GetNamedSecurityInfoW,
// LookupAccountSidW). Linux: the owning user's name (getpwuid_r), or the
// number when the user has no name.
bool FileOwnerName(const std::wstring& name, std::wstring* owner);
// The account this process runs as: GetUserNameW / the effective user.
std::wstring CurrentUserName();
// A form of a full file name under which two spellings of one file compare
// equal: upper-cased on Windows, unchanged on Linux.
std::wstring FileNameKey(const std::wstring& fullName);
// Where the separators of a file name are: '\\' and '/' on Windows, '/' on
// Linux.
bool IsSeparator(wchar_t c);
// The window that messages go on: GetForegroundWindow; null on Linux.
HWND ForegroundWindow();

// The wait cursor for as long as the object lives (Windows only).
class WaitCursor {
 public:
  WaitCursor();
  ~WaitCursor();
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;

 private:
  void* previous_;
};

}  // namespace platform
}  // namespace file_sharing
}  // namespace qt

#endif
