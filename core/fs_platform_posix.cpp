// Names are UTF-8 on Linux.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <ctime>

#include "core/fs_platform.h"
#include "qn_utf.h"

namespace qt {
namespace fs {
namespace platform {

namespace {

std::string Native(const std::wstring& path) { return qn_wide_to_utf8(path.c_str(), path.size()); }

int Fd(Handle h) { return static_cast<int>(h); }

FsError Last() { return FromOsError(errno); }

FsError KindOf(const std::wstring& path, Kind* kind) {
  const std::string name = Native(path);
  struct stat st;
  if (stat(name.c_str(), &st) != 0) {
    const int error = errno;
    // A link to nothing still occupies the name.
    if (lstat(name.c_str(), &st) == 0) {
      *kind = Kind::kOther;
      return FsError::kOk;
    }
    *kind = Kind::kNone;
    return error == ENOENT || error == ENOTDIR ? FsError::kOk : FromOsError(error);
  }
  *kind = S_ISREG(st.st_mode) ? Kind::kFile : S_ISDIR(st.st_mode) ? Kind::kDirectory : Kind::kOther;
  return FsError::kOk;
}

FsError OpenRead(const std::wstring& path, Handle* handle, uint64_t* size) {
  // O_NONBLOCK: a FIFO under the name must not hang the reader.
  const int fd = open(Native(path).c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
  if (fd < 0) return Last();
  struct stat st;
  if (fstat(fd, &st) != 0) {
    const FsError e = Last();
    close(fd);
    return e;
  }
  if (!S_ISREG(st.st_mode)) {
    close(fd);
    return S_ISDIR(st.st_mode) ? FsError::kIsDirectory : FsError::kInvalidName;
  }
  *handle = fd;
  *size = static_cast<uint64_t>(st.st_size);
  return FsError::kOk;
}

FsError Read(Handle handle, void* buffer, size_t size, size_t* got) {
  for (;;) {
    const ssize_t n = read(Fd(handle), buffer, size);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return Last();
    *got = static_cast<size_t>(n);
    return FsError::kOk;
  }
}

FsError CreateTemp(const std::wstring& target, std::wstring* temp, Handle* handle) {
  const std::string base = Native(target);
  unsigned seed = static_cast<unsigned>(getpid()) * 2654435761u ^ static_cast<unsigned>(time(nullptr));
  for (int attempt = 0; attempt < 100; ++attempt) {
    seed = seed * 1103515245u + 12345u;
    char suffix[32];
    std::snprintf(suffix, sizeof suffix, ".~%08x", seed);
    const std::string name = base + suffix;
    const int fd = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOCTTY, 0666);
    if (fd >= 0) {
      *temp = qn_utf8_to_wide(name.c_str(), name.size());
      *handle = fd;
      return FsError::kOk;
    }
    if (errno != EEXIST) return Last();
  }
  return FsError::kIo;
}

FsError Write(Handle handle, const void* data, size_t size, size_t* put) {
  for (;;) {
    const ssize_t n = write(Fd(handle), data, size);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return Last();
    *put = static_cast<size_t>(n);
    return FsError::kOk;
  }
}

FsError AdoptTarget(const std::wstring& target, Handle temp) {
  const std::string name = Native(target);
  struct stat st;
  if (stat(name.c_str(), &st) != 0) return errno == ENOENT ? FsError::kOk : Last();
  if (S_ISDIR(st.st_mode)) return FsError::kIsDirectory;
  if (!S_ISREG(st.st_mode)) return FsError::kInvalidName;
  // A rename needs only the folder's permission; the file's own says
  // whether its content is ours to change.
  if (faccessat(AT_FDCWD, name.c_str(), W_OK, AT_EACCESS) != 0) return Last();
  // Only root may give a file away; anybody may keep a group they are in.
  if (fchown(Fd(temp), st.st_uid, st.st_gid) != 0 && fchown(Fd(temp), static_cast<uid_t>(-1), st.st_gid) != 0) {
    // The file then belongs to the writer, as any new file would.
  }
  // After the owner: a change of owner clears the set-id bits.
  if (fchmod(Fd(temp), st.st_mode & 07777) != 0) return Last();
  return FsError::kOk;
}

FsError Sync(Handle handle) { return fsync(Fd(handle)) == 0 ? FsError::kOk : Last(); }

FsError Close(Handle handle) {
  // Linux releases the descriptor even when close reports an error.
  return close(Fd(handle)) == 0 ? FsError::kOk : Last();
}

FsError Rename(const std::wstring& from, const std::wstring& to) {
  return rename(Native(from).c_str(), Native(to).c_str()) == 0 ? FsError::kOk : Last();
}

FsError Remove(const std::wstring& path) { return unlink(Native(path).c_str()) == 0 ? FsError::kOk : Last(); }

FsError FullName(const std::wstring& name, std::wstring* full) {
  std::wstring path(name);
  if (path[0] != L'/') {
    std::string cwd(4096, '\0');
    if (!getcwd(&cwd[0], cwd.size())) return Last();
    cwd.resize(cwd.find('\0'));
    path = qn_utf8_to_wide(cwd.c_str(), cwd.size()) + L"/" + path;
  }
  std::wstring out;
  size_t i = 0;
  while (i < path.size()) {
    while (i < path.size() && path[i] == L'/') ++i;
    const size_t end = path.find(L'/', i);
    const std::wstring part = path.substr(i, end == std::wstring::npos ? std::wstring::npos : end - i);
    i = end == std::wstring::npos ? path.size() : end;
    if (part.empty() || part == L".") continue;
    if (part == L"..") {
      const size_t cut = out.rfind(L'/');
      out.resize(cut == std::wstring::npos ? 0 : cut);
      continue;
    }
    out += L"/" + part;
  }
  *full = out.empty() ? L"/" : out;
  return FsError::kOk;
}

}  // namespace

FsError FromOsError(int error) {
  switch (error) {
    case 0:
      return FsError::kOk;
    case ENOENT:
    case ENOTDIR:
      return FsError::kNotFound;
    case EACCES:
    case EPERM:
    case EROFS:
      return FsError::kAccessDenied;
    case EISDIR:
      return FsError::kIsDirectory;
    case EBUSY:
    case ETXTBSY:
    case EAGAIN:
      return FsError::kBusy;
    case ENOSPC:
    case EDQUOT:
      return FsError::kNoSpace;
    case EFBIG:
    case EOVERFLOW:
      return FsError::kTooLarge;
    case ENAMETOOLONG:
    case EINVAL:
    case ELOOP:
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
