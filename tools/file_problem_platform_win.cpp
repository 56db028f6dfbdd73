#include <windows.h>

#include "file_problem_platform.h"
#include "qn_utf.h"

namespace qt {
namespace file_problem {
namespace platform {

namespace {

qt_tool::FileProblem FromError(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_NETPATH:
    case ERROR_INVALID_DRIVE:
      return qt_tool::FileProblem::NotFound;
    case ERROR_ACCESS_DENIED:
      return qt_tool::FileProblem::NoPermission;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
      return qt_tool::FileProblem::InUse;
    default:
      return qt_tool::FileProblem::Other;
  }
}

}  // namespace

qt_tool::FileProblem Diagnose(const std::string& utf8Path) {
  const std::wstring path = qn_utf8_to_wide(utf8Path.c_str());
  const DWORD attributes = GetFileAttributesW(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return FromError(GetLastError());
  if (attributes & FILE_ATTRIBUTE_DIRECTORY) return qt_tool::FileProblem::IsDirectory;
  const HANDLE h = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                               nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (h == INVALID_HANDLE_VALUE) return FromError(GetLastError());
  CloseHandle(h);
  return qt_tool::FileProblem::None;
}

long DatabaseLockHolder(const std::string&) { return 0; }

}  // namespace platform
}  // namespace file_problem
}  // namespace qt
