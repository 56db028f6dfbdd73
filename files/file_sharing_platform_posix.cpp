#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "files/file_sharing_platform.h"
#include "ustr.h"

namespace qt {
namespace file_sharing {
namespace platform {

namespace {

std::wstring UserName(uid_t uid) {
  long size = sysconf(_SC_GETPW_R_SIZE_MAX);
  std::vector<char> buf(size > 0 ? static_cast<size_t>(size) : 16384);
  struct passwd pw;
  struct passwd* found = nullptr;
  if (getpwuid_r(uid, &pw, buf.data(), buf.size(), &found) == 0 && found && found->pw_name) {
    return qn_ansi_to_wide(found->pw_name);
  }
  // Mounted shares often carry owners this machine has no name for.
  return qn_ansi_to_wide(std::to_string(uid).c_str());
}

}  // namespace

bool FileOwnerName(const std::wstring& name, std::wstring* owner) {
  struct stat st;
  if (stat(qn_wide_to_ansi(name.c_str()).c_str(), &st) != 0) return false;
  *owner = UserName(st.st_uid);
  return true;
}

std::wstring CurrentUserName() { return UserName(geteuid()); }

std::wstring FileNameKey(const std::wstring& fullName) { return fullName; }

bool IsSeparator(wchar_t c) { return c == L'/'; }

HWND ForegroundWindow() { return nullptr; }

WaitCursor::WaitCursor() : previous_(nullptr) {}
WaitCursor::~WaitCursor() {}

}  // namespace platform
}  // namespace file_sharing
}  // namespace qt
