#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include "project/qb_platform.h"

namespace qb {
namespace platform {

bool FileExists(const wchar_t* path) {
  return path && GetFileAttributesW(path) != INVALID_FILE_ATTRIBUTES;
}

bool ReadWholeFile(const wchar_t* path, std::string* bytes) {
  bytes->clear();
  if (!path) return false;
  HANDLE h = CreateFileW(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                         FILE_ATTRIBUTE_NORMAL, nullptr);
  if (h == INVALID_HANDLE_VALUE) return false;
  char chunk[65536];
  bool ok = true;
  for (;;) {
    DWORD got = 0;
    if (!ReadFile(h, chunk, sizeof chunk, &got, nullptr)) {
      ok = false;
      break;
    }
    if (got == 0) break;
    bytes->append(chunk, got);
  }
  CloseHandle(h);
  return ok;
}

bool ReplaceWholeFile(const wchar_t* path, const void* data, size_t size) {
  if (!path || !*path) return false;
  const std::wstring temp = std::wstring(path) + L".qbtmp";
  HANDLE h = CreateFileW(temp.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (h == INVALID_HANDLE_VALUE) return false;
  const char* p = static_cast<const char*>(data);
  bool ok = true;
  while (ok && size > 0) {
    const DWORD want = size > 0x40000000 ? 0x40000000 : static_cast<DWORD>(size);
    DWORD put = 0;
    ok = WriteFile(h, p, want, &put, nullptr) && put > 0;
    p += put;
    size -= put;
  }
  ok = FlushFileBuffers(h) && ok;
  ok = CloseHandle(h) && ok;
  if (ok) ok = MoveFileExW(temp.c_str(), path, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
  if (!ok) DeleteFileW(temp.c_str());
  return ok;
}

bool RemoveFile(const wchar_t* path) { return path && DeleteFileW(path) != 0; }

}  // namespace platform
}  // namespace qb
