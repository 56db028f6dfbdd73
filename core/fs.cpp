#include "core/fs.h"

#include <new>

#include "core/fs_platform.h"

namespace qt {
namespace fs {

namespace {

using platform::CurrentCalls;
using platform::Handle;

bool BadName(const std::wstring& path) { return path.empty() || path.find(L'\0') != std::wstring::npos; }

// The first failure is what the caller hears of; clean-up failures after it
// would only hide the cause.
FsError First(FsError a, FsError b) { return a != FsError::kOk ? a : b; }

FsError WriteAll(Handle h, const char* p, size_t size) {
  while (size > 0) {
    size_t put = 0;
    const FsError e = CurrentCalls().write(h, p, size, &put);
    if (e != FsError::kOk) return e;
    if (put == 0) return FsError::kIo;
    p += put;
    size -= put;
  }
  return FsError::kOk;
}

FsError Replace(const std::wstring& path, const void* data, size_t size) {
  if (BadName(path)) return FsError::kInvalidName;
  if (!data && size > 0) return FsError::kInvalidName;
  const platform::Calls& os = CurrentCalls();
  std::wstring temp;
  Handle h = 0;
  FsError e = os.createTemp(path, &temp, &h);
  if (e != FsError::kOk) return e;
  e = os.adoptTarget(path, h);
  if (e == FsError::kOk) e = WriteAll(h, static_cast<const char*>(data), size);
  // Without the flush a crash soon after the rename can leave an empty file
  // under the name on file systems that order metadata before data.
  if (e == FsError::kOk) e = os.sync(h);
  e = First(e, os.close(h));
  if (e == FsError::kOk) e = os.rename(temp, path);
  if (e != FsError::kOk) os.remove(temp);
  return e;
}

FsError Read(const std::wstring& path, std::string* bytes) {
  if (BadName(path)) return FsError::kInvalidName;
  const platform::Calls& os = CurrentCalls();
  Handle h = 0;
  uint64_t size = 0;
  FsError e = os.openRead(path, &h, &size);
  if (e != FsError::kOk) return e;
  if (size > kMaxWholeFile) {
    os.close(h);
    return FsError::kTooLarge;
  }
  std::string data;
  data.reserve(static_cast<size_t>(size));
  char chunk[65536];
  for (;;) {
    size_t got = 0;
    e = os.read(h, chunk, sizeof chunk, &got);
    if (e != FsError::kOk || got == 0) break;
    // The file may grow while it is read.
    if (data.size() + got > kMaxWholeFile) {
      e = FsError::kTooLarge;
      break;
    }
    data.append(chunk, got);
  }
  e = First(e, os.close(h));
  if (e == FsError::kOk) bytes->swap(data);
  return e;
}

}  // namespace

const char* FsErrorText(FsError error) {
  switch (error) {
    case FsError::kOk:
      return "done";
    case FsError::kNotFound:
      return "no such file or folder";
    case FsError::kAccessDenied:
      return "permission denied";
    case FsError::kIsDirectory:
      return "is a folder, not a file";
    case FsError::kBusy:
      return "in use by another program";
    case FsError::kNoSpace:
      return "no space left on the disk";
    case FsError::kTooLarge:
      return "the file is too large";
    case FsError::kInvalidName:
      return "not a valid file name";
    case FsError::kIo:
      break;
  }
  return "input/output error";
}

FsError ReadWholeFile(const std::wstring& path, std::string* bytes) {
  try {
    return Read(path, bytes);
  } catch (const std::bad_alloc&) {
    return FsError::kTooLarge;
  }
}

FsError ReplaceWholeFile(const std::wstring& path, const void* data, size_t size) {
  try {
    return Replace(path, data, size);
  } catch (const std::bad_alloc&) {
    return FsError::kIo;
  }
}

FsError ReplaceWholeFile(const std::wstring& path, const std::string& bytes) {
  return ReplaceWholeFile(path, bytes.data(), bytes.size());
}

Kind KindOf(const std::wstring& path) {
  if (BadName(path)) return Kind::kNone;
  Kind kind = Kind::kNone;
  try {
    if (CurrentCalls().kindOf(path, &kind) != FsError::kOk) return Kind::kNone;
  } catch (const std::bad_alloc&) {
    return Kind::kNone;
  }
  return kind;
}

bool IsFile(const std::wstring& path) { return KindOf(path) == Kind::kFile; }
bool IsDirectory(const std::wstring& path) { return KindOf(path) == Kind::kDirectory; }
bool Exists(const std::wstring& path) { return KindOf(path) != Kind::kNone; }

FsError Remove(const std::wstring& path) {
  if (BadName(path)) return FsError::kInvalidName;
  try {
    return CurrentCalls().remove(path);
  } catch (const std::bad_alloc&) {
    return FsError::kIo;
  }
}

FsError FullName(const std::wstring& path, std::wstring* full) {
  if (BadName(path)) return FsError::kInvalidName;
  try {
    return CurrentCalls().fullName(path, full);
  } catch (const std::bad_alloc&) {
    return FsError::kIo;
  }
}

std::wstring FullName(const std::wstring& path) {
  std::wstring full;
  return FullName(path, &full) == FsError::kOk ? full : path;
}

}  // namespace fs
}  // namespace qt
