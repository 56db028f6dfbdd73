#include <windows.h>

#include "module_exports_platform.h"
#include "pe_exports.h"
#include "qn_utf.h"

namespace qt {
namespace module_exports {
namespace platform {

namespace {

std::string OpenProblem(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
      return "cannot open the file: no such file";
    case ERROR_ACCESS_DENIED:
      return "cannot open the file: permission denied";
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
      return "cannot open the file: another program keeps it open";
    default:
      return "cannot open the file (system error " + std::to_string(error) + ")";
  }
}

}  // namespace

bool ReadExportNames(const std::string& utf8Path, std::vector<std::string>& names, std::string& problem) {
  names.clear();
  const std::wstring path = qn_utf8_to_wide(utf8Path.c_str(), utf8Path.size());
  // Read and delete sharing: the module may be loaded by a running host.
  HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                            nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    problem = OpenProblem(GetLastError());
    return false;
  }
  LARGE_INTEGER size = {};
  if (!GetFileSizeEx(file, &size)) {
    problem = "cannot tell the size of the file";
    CloseHandle(file);
    return false;
  }
  if (size.QuadPart == 0) {
    // An empty file cannot be mapped; the reader says what it is missing.
    CloseHandle(file);
    return qt_tool::ReadPeExportNames(nullptr, 0, names, problem);
  }
  if (static_cast<unsigned long long>(size.QuadPart) > static_cast<size_t>(-1)) {
    CloseHandle(file);
    problem = "the file is too large to be a module";
    return false;
  }
  HANDLE mapping = CreateFileMappingW(file, nullptr, PAGE_READONLY, 0, 0, nullptr);
  CloseHandle(file);
  if (!mapping) {
    problem = "cannot map the file for reading (system error " + std::to_string(GetLastError()) + ")";
    return false;
  }
  const void* view = MapViewOfFile(mapping, FILE_MAP_READ, 0, 0, 0);
  CloseHandle(mapping);
  if (!view) {
    problem = "cannot map the file for reading (system error " + std::to_string(GetLastError()) + ")";
    return false;
  }
  const bool ok = qt_tool::ReadPeExportNames(static_cast<const unsigned char*>(view),
                                             static_cast<size_t>(size.QuadPart), names, problem);
  UnmapViewOfFile(view);
  return ok;
}

}  // namespace platform
}  // namespace module_exports
}  // namespace qt
