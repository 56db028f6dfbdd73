#include <windows.h>
#include <aclapi.h>

#include <string>

#include "files/file_sharing_platform.h"
#include "ustr.h"

namespace qt {
namespace file_sharing {
namespace platform {

bool FileOwnerName(const std::wstring& name, std::wstring* owner) {
  PSID sid = nullptr;
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  if (GetNamedSecurityInfoW(name.c_str(), SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION, &sid, nullptr, nullptr,
                            nullptr, &descriptor) != ERROR_SUCCESS) {
    return false;
  }
  wchar_t account[256], domain[256];
  DWORD accountSize = 256, domainSize = 256;
  SID_NAME_USE use;
  const bool found = sid && LookupAccountSidW(nullptr, sid, account, &accountSize, domain, &domainSize, &use);
  LocalFree(descriptor);
  if (!found) return false;
  *owner = account;
  return true;
}

std::wstring CurrentUserName() {
  wchar_t name[257];
  DWORD size = 257;
  return GetUserNameW(name, &size) ? std::wstring(name) : std::wstring();
}

std::wstring FileNameKey(const std::wstring& fullName) {
  std::wstring key(fullName);
  for (wchar_t& c : key) c = (c == L'/') ? L'\\' : qn_charupper(c);
  return key;
}

bool IsSeparator(wchar_t c) { return c == L'\\' || c == L'/'; }

HWND ForegroundWindow() { return GetForegroundWindow(); }

WaitCursor::WaitCursor() : previous_(SetCursor(LoadCursorW(nullptr, MAKEINTRESOURCEW(32514)))) {}  // IDC_WAIT
WaitCursor::~WaitCursor() { SetCursor(static_cast<HCURSOR>(previous_)); }

}  // namespace platform
}  // namespace file_sharing
}  // namespace qt
