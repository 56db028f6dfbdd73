#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <algorithm>

#include "settings/qlg_file.h"
#include "settings/qlg_utf8.h"

namespace qt {
namespace qlg {

std::string PathForMessages(const wchar_t* path) {
  return path ? WideToUtf8(path, std::char_traits<wchar_t>::length(path)) : std::string();
}

bool ReadWholeFile(const wchar_t* path, std::string* bytes) {
  if (!path || !*path) return false;
  HANDLE h = CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
  if (h == INVALID_HANDLE_VALUE) return false;
  std::string data;
  LARGE_INTEGER size;
  if (GetFileSizeEx(h, &size) && size.QuadPart > 0 && size.QuadPart < (1LL << 31)) data.reserve(static_cast<size_t>(size.QuadPart));
  char chunk[65536];
  DWORD got = 0;
  bool ok = true;
  for (;;) {
    if (!ReadFile(h, chunk, sizeof chunk, &got, nullptr)) {
      ok = false;
      break;
    }
    if (got == 0) break;
    data.append(chunk, got);
  }
  CloseHandle(h);
  if (ok) bytes->swap(data);
  return ok;
}

bool WriteWholeFile(const wchar_t* path, const std::string& bytes) {
  if (!path || !*path) return false;
  std::wstring temp = path;
  temp += L".tmp" + std::to_wstring(GetCurrentProcessId());
  HANDLE h = CreateFileW(temp.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (h == INVALID_HANDLE_VALUE) return false;
  bool ok = true;
  size_t done = 0;
  while (ok && done < bytes.size()) {
    const DWORD want = static_cast<DWORD>(std::min<size_t>(bytes.size() - done, 1u << 20));
    DWORD wrote = 0;
    ok = WriteFile(h, bytes.data() + done, want, &wrote, nullptr) && wrote == want;
    done += wrote;
  }
  ok = CloseHandle(h) && ok;
  if (ok) ok = MoveFileExW(temp.c_str(), path, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
  if (!ok) DeleteFileW(temp.c_str());
  return ok;
}

}  // namespace qlg
}  // namespace qt
