// The Windows lock: the holder's handle shares reading only, so every other
// open for writing fails with a sharing violation while it is held, on a
// local disk and on a share alike, and the system closes the handle of a
// process that ends, so a crashed holder's file is taken over at once.
#include <windows.h>

#include <string>

#include "files/lock_file_platform.h"

namespace qt {
namespace lock_file {
namespace platform {

namespace {

// A file whose last holder is deleting it refuses every open for a moment
// with "access denied", like a file we have no rights to. Only the NT
// status tells the two apart.
const LONG kStatusDeletePending = static_cast<LONG>(0xC0000056);

LONG LastNtStatus() {
  typedef LONG(NTAPI * GetStatus)();
  static const GetStatus get =
      reinterpret_cast<GetStatus>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlGetLastNtStatus")));
  return get ? get() : 0;
}

int LastError() {
  const DWORD error = GetLastError();
  if (error == ERROR_ACCESS_DENIED && LastNtStatus() == kStatusDeletePending) return ERROR_DELETE_PENDING;
  return static_cast<int>(error);
}

}  // namespace

Outcome OutcomeFromOsError(int error, Step step) {
  switch (static_cast<DWORD>(error)) {
    case ERROR_DELETE_PENDING:
      return Outcome::Transient;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
      return Outcome::Held;
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
      return Outcome::Missing;
    case ERROR_NOT_SUPPORTED:
      return step == Step::Lock ? Outcome::Unsupported : Outcome::Failed;
    default:
      return Outcome::Failed;
  }
}

Outcome Acquire(const std::wstring& name, bool create, HANDLE* handle) {
  HANDLE h = CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                         create ? CREATE_ALWAYS : OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_RANDOM_ACCESS, nullptr);
  if (h == INVALID_HANDLE_VALUE) return OutcomeFromOsError(LastError(), Step::Open);
  *handle = h;
  return Outcome::Ok;
}

Outcome Probe(const std::wstring& name) {
  HANDLE h = INVALID_HANDLE_VALUE;
  const Outcome o = Acquire(name, false, &h);
  if (o == Outcome::Ok) CloseHandle(h);
  return o;
}

Outcome CanTakeOver(const std::wstring& name) {
  // Asked only of a file that a probe found free, i.e. one we could open
  // for writing a moment ago; ask again, the same way.
  return Probe(name);
}

Outcome ReadHead(const std::wstring& name, void* buffer, size_t size, size_t* got) {
  *got = 0;
  HANDLE h = CreateFileW(name.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                         FILE_ATTRIBUTE_NORMAL, nullptr);
  if (h == INVALID_HANDLE_VALUE) {
    const Outcome o = OutcomeFromOsError(LastError(), Step::Open);
    // Holders share reading; what refuses a reader is the handle of a
    // DeleteFileW at work (it asks for deletion, which we do not share).
    if (o == Outcome::Held) return Outcome::Transient;
    return o == Outcome::Missing || o == Outcome::Transient ? o : Outcome::Failed;
  }
  DWORD n = 0;
  const BOOL ok = ReadFile(h, buffer, static_cast<DWORD>(size), &n, nullptr);
  const int error = LastError();
  CloseHandle(h);
  if (!ok) return OutcomeFromOsError(error, Step::Read);
  *got = n;
  return Outcome::Ok;
}

bool WriteHead(HANDLE handle, const void* data, size_t size) {
  if (SetFilePointer(handle, 0, nullptr, FILE_BEGIN) == INVALID_SET_FILE_POINTER) return false;
  DWORD written = 0;
  return WriteFile(handle, data, static_cast<DWORD>(size), &written, nullptr) && written == size;
}

void Close(HANDLE handle) { CloseHandle(handle); }

void Release(HANDLE handle, const std::wstring& name) {
  // Our own handle does not share deletion: close first. Should another
  // process take the file over in between, it holds it open and the delete
  // fails, which leaves its lock intact.
  CloseHandle(handle);
  DeleteFileW(name.c_str());
}

}  // namespace platform
}  // namespace lock_file
}  // namespace qt
