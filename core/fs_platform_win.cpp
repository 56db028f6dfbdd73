#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <cstdio>
#include <vector>

#include "core/fs_platform.h"

namespace qt {
namespace fs {
namespace platform {

namespace {

// Newer than the headers of some toolchains.
const DWORD kErrorDirectoryNotSupported = 336;
const DWORD kErrorDiskQuotaExceeded = 1295;

HANDLE H(Handle h) { return reinterpret_cast<HANDLE>(h); }

FsError Last() { return FromOsError(static_cast<int>(GetLastError())); }

FsError KindOf(const std::wstring& path, Kind* kind) {
  const DWORD a = GetFileAttributesW(path.c_str());
  if (a == INVALID_FILE_ATTRIBUTES) {
    const DWORD error = GetLastError();
    *kind = Kind::kNone;
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND ? FsError::kOk
                                                                           : FromOsError(static_cast<int>(error));
  }
  *kind = (a & FILE_ATTRIBUTE_DIRECTORY) ? Kind::kDirectory : (a & FILE_ATTRIBUTE_DEVICE) ? Kind::kOther : Kind::kFile;
  return FsError::kOk;
}

FsError OpenRead(const std::wstring& path, Handle* handle, uint64_t* size) {
  const DWORD a = GetFileAttributesW(path.c_str());
  if (a != INVALID_FILE_ATTRIBUTES && (a & FILE_ATTRIBUTE_DIRECTORY)) return FsError::kIsDirectory;
  HANDLE h = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                         FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
  if (h == INVALID_HANDLE_VALUE) return Last();
  LARGE_INTEGER length;
  if (!GetFileSizeEx(h, &length)) {
    const FsError e = Last();
    CloseHandle(h);
    return e;
  }
  *handle = reinterpret_cast<Handle>(h);
  *size = static_cast<uint64_t>(length.QuadPart);
  return FsError::kOk;
}

FsError Read(Handle handle, void* buffer, size_t size, size_t* got) {
  DWORD n = 0;
  const DWORD want = size > 0x40000000 ? 0x40000000 : static_cast<DWORD>(size);
  if (!ReadFile(H(handle), buffer, want, &n, nullptr)) return Last();
  *got = n;
  return FsError::kOk;
}

FsError CreateTemp(const std::wstring& target, std::wstring* temp, Handle* handle) {
  unsigned seed = GetCurrentProcessId() * 2654435761u ^ GetTickCount();
  for (int attempt = 0; attempt < 100; ++attempt) {
    seed = seed * 1103515245u + 12345u;
    wchar_t suffix[32];
    std::swprintf(suffix, 32, L".~%08x", seed);
    const std::wstring name = target + suffix;
    HANDLE h = CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (h != INVALID_HANDLE_VALUE) {
      *temp = name;
      *handle = reinterpret_cast<Handle>(h);
      return FsError::kOk;
    }
    const DWORD error = GetLastError();
    if (error != ERROR_FILE_EXISTS && error != ERROR_ALREADY_EXISTS) return FromOsError(static_cast<int>(error));
  }
  return FsError::kIo;
}

FsError Write(Handle handle, const void* data, size_t size, size_t* put) {
  DWORD n = 0;
  const DWORD want = size > 0x40000000 ? 0x40000000 : static_cast<DWORD>(size);
  if (!WriteFile(H(handle), data, want, &n, nullptr)) return Last();
  *put = n;
  return FsError::kOk;
}

FsError AdoptTarget(const std::wstring& target, Handle temp) {
  const DWORD a = GetFileAttributesW(target.c_str());
  if (a == INVALID_FILE_ATTRIBUTES) {
    const DWORD error = GetLastError();
    return error == ERROR_FILE_NOT_FOUND ? FsError::kOk : FromOsError(static_cast<int>(error));
  }
  if (a & FILE_ATTRIBUTE_DIRECTORY) return FsError::kIsDirectory;
  if (a & FILE_ATTRIBUTE_READONLY) return FsError::kAccessDenied;
  // Whether the account may write the file itself: the folder's rights
  // would let the rename through regardless.
  HANDLE h = CreateFileW(target.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                         OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (h == INVALID_HANDLE_VALUE) return Last();
  CloseHandle(h);
  // Hidden and system files stay so.
  FILE_BASIC_INFO info = {};
  info.FileAttributes = a & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE);
  if (info.FileAttributes == 0) return FsError::kOk;
  return SetFileInformationByHandle(H(temp), FileBasicInfo, &info, sizeof info) ? FsError::kOk : Last();
}

FsError Sync(Handle handle) { return FlushFileBuffers(H(handle)) ? FsError::kOk : Last(); }

FsError Close(Handle handle) { return CloseHandle(H(handle)) ? FsError::kOk : Last(); }

FsError Rename(const std::wstring& from, const std::wstring& to) {
  return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) ? FsError::kOk
                                                                                                   : Last();
}

FsError Remove(const std::wstring& path) {
  const DWORD a = GetFileAttributesW(path.c_str());
  if (a != INVALID_FILE_ATTRIBUTES && (a & FILE_ATTRIBUTE_DIRECTORY)) return FsError::kIsDirectory;
  return DeleteFileW(path.c_str()) ? FsError::kOk : Last();
}

FsError FullName(const std::wstring& path, std::wstring* full) {
  std::vector<wchar_t> buf(MAX_PATH);
  for (;;) {
    const DWORD n = GetFullPathNameW(path.c_str(), static_cast<DWORD>(buf.size()), buf.data(), nullptr);
    if (n == 0) return Last();
    if (n < buf.size()) {
      full->assign(buf.data(), n);
      return FsError::kOk;
    }
    buf.resize(n + 1);
  }
}

}  // namespace

FsError FromOsError(int error) {
  switch (static_cast<DWORD>(error)) {
    case ERROR_SUCCESS:
      return FsError::kOk;
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
      return FsError::kNotFound;
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
    case ERROR_PRIVILEGE_NOT_HELD:
      return FsError::kAccessDenied;
    case kErrorDirectoryNotSupported:
      return FsError::kIsDirectory;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_DELETE_PENDING:
      return FsError::kBusy;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
    case kErrorDiskQuotaExceeded:
      return FsError::kNoSpace;
    case ERROR_FILE_TOO_LARGE:
    case ERROR_ARITHMETIC_OVERFLOW:
      return FsError::kTooLarge;
    case ERROR_INVALID_NAME:
    case ERROR_FILENAME_EXCED_RANGE:
    case ERROR_BAD_PATHNAME:
    case ERROR_DIRECTORY:
      return FsError::kInvalidName;
    default:
      return FsError::kIo;
  }
}

const Calls& SystemCalls() {
  static const Calls calls = {&KindOf, &OpenRead, &Read,  &CreateTemp, &Write,  &AdoptTarget,
                              &Sync,   &Close,    &Rename, &Remove,    &FullName};
  return calls;
}

}  // namespace platform
}  // namespace fs
}  // namespace qt
