// The Linux lock: the holder keeps its descriptor open (O_CLOEXEC, so no
// program it starts inherits the lock) with an exclusive open-file-
// description lock. Such a lock belongs to the open file, not the process,
// so a second open in the same process is refused as well, and it goes away
// with the last descriptor, so a killed holder's file is taken over at once.
#ifndef _GNU_SOURCE
#define _GNU_SOURCE
#endif
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "files/lock_file_platform.h"
#include "ustr.h"

namespace qt {
namespace lock_file {
namespace platform {

namespace {

// One byte far beyond the 200 content bytes: readers never touch it, also
// where SMB turns the lock into a mandatory byte-range lock, and 32-bit lock
// offsets of old servers still reach it.
const off_t kLockOffset = 0x7FFFFFFE;

int Fd(HANDLE h) { return static_cast<int>(reinterpret_cast<intptr_t>(h)); }
HANDLE FromFd(int fd) { return reinterpret_cast<HANDLE>(static_cast<intptr_t>(fd)); }

std::string Path(const std::wstring& name) { return qn_wide_to_ansi(name.c_str()); }

bool SameFile(const struct stat& a, const struct stat& b) { return a.st_dev == b.st_dev && a.st_ino == b.st_ino; }

void CloseKeepingErrno(int fd) {
  const int saved = errno;
  close(fd);
  errno = saved;
}

struct flock LockByte(short type) {
  struct flock lk = {};
  lk.l_type = type;
  lk.l_whence = SEEK_SET;
  lk.l_start = kLockOffset;
  lk.l_len = 1;
  return lk;
}

}  // namespace

Outcome OutcomeFromOsError(int error, Step step) {
  switch (step) {
    case Step::Open:
      if (error == ENOENT || error == ENOTDIR) return Outcome::Missing;
      // A cifs mount answers a sharing violation with EBUSY: a Windows
      // client has the file open for writing, which is how it holds a lock.
      if (error == EBUSY || error == ETXTBSY) return Outcome::Held;
      return Outcome::Failed;
    case Step::Lock:
      if (error == EAGAIN || error == EACCES) return Outcome::Held;
      if (error == ENOLCK || error == EOPNOTSUPP || error == EINVAL) return Outcome::Unsupported;
      return Outcome::Failed;
    case Step::Read:
    case Step::Write:
      if (error == ENOENT || error == ESTALE) return Outcome::Missing;
      return Outcome::Failed;
  }
  return Outcome::Failed;
}

namespace {

// Takes the lock byte of an opened lock file, which must be a plain file.
// On failure the file is closed and the outcome says why.
Outcome LockOpened(int fd, short type, struct stat* opened) {
  if (fstat(fd, opened) != 0 || !S_ISREG(opened->st_mode)) {
    close(fd);
    return Outcome::Failed;
  }
  struct flock lk = LockByte(type);
  if (fcntl(fd, F_OFD_SETLK, &lk) != 0) {
    CloseKeepingErrno(fd);
    return OutcomeFromOsError(errno, Step::Lock);
  }
  return Outcome::Ok;
}

// A lock file left by another account's ended process is often not ours to
// write (umask 022), though the folder is. While a read lock on the lock
// byte keeps any taker out, a file that nobody holds is removed, so that the
// caller can make its own. Whoever opened the old file meanwhile finds its
// name gone once it gets the lock, and starts again.
Outcome ReclaimUnwritable(const std::string& path) {
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (fd < 0) return Outcome::Failed;
  struct stat opened, named;
  const Outcome locked = LockOpened(fd, F_RDLCK, &opened);
  if (locked != Outcome::Ok) return locked;
  Outcome result = Outcome::Missing;
  if (stat(path.c_str(), &named) == 0 && SameFile(opened, named) && unlink(path.c_str()) != 0) {
    result = Outcome::Failed;  // a sticky folder, say: the file stays its owner's
  }
  close(fd);
  return result;
}

}  // namespace

Outcome Acquire(const std::wstring& name, bool create, HANDLE* handle) {
  const std::string path = Path(name);
  const int flags = O_RDWR | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | (create ? O_CREAT : 0);
  // No O_TRUNC: until the lock is ours, the content is the holder's.
  const int fd = open(path.c_str(), flags, 0666);
  if (fd < 0) {
    const int error = errno;
    if (!create && (error == EACCES || error == EPERM)) return ReclaimUnwritable(path);
    return OutcomeFromOsError(error, Step::Open);
  }

  struct stat opened;
  const Outcome locked = LockOpened(fd, F_WRLCK, &opened);
  if (locked != Outcome::Ok) return locked;
  // A releasing holder unlinks its file before closing it: the file we
  // locked may no longer carry the name. Then the lock means nothing, and
  // the name is free again (or somebody else's by now).
  struct stat named;
  if (stat(path.c_str(), &named) != 0 || !SameFile(opened, named)) {
    close(fd);
    return Outcome::Transient;
  }
  if (create && ftruncate(fd, 0) != 0) {
    CloseKeepingErrno(fd);
    return OutcomeFromOsError(errno, Step::Write);
  }
  *handle = FromFd(fd);
  return Outcome::Ok;
}

Outcome Probe(const std::wstring& name) {
  // A read-only open is enough to ask, so this works on lock files of other
  // accounts too.
  const int fd = open(Path(name).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (fd < 0) return OutcomeFromOsError(errno, Step::Open) == Outcome::Missing ? Outcome::Missing : Outcome::Failed;
  struct stat st;
  if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
    close(fd);
    return Outcome::Failed;
  }
  struct flock lk = LockByte(F_WRLCK);
  if (fcntl(fd, F_OFD_GETLK, &lk) != 0) {
    CloseKeepingErrno(fd);
    const Outcome o = OutcomeFromOsError(errno, Step::Lock);
    return o == Outcome::Unsupported ? o : Outcome::Failed;
  }
  close(fd);
  return lk.l_type == F_UNLCK ? Outcome::Ok : Outcome::Held;
}

Outcome CanTakeOver(const std::wstring& name) {
  const std::string path = Path(name);
  struct stat file, folder;
  if (lstat(path.c_str(), &file) != 0) return OutcomeFromOsError(errno, Step::Open);
  if (faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0) return Outcome::Ok;
  // Otherwise Acquire removes it and makes its own: that needs the folder,
  // and in a sticky folder owning the file or the folder (or being root).
  const size_t slash = path.rfind('/');
  const std::string dir = slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
  if (stat(dir.c_str(), &folder) != 0) return OutcomeFromOsError(errno, Step::Open);
  if (faccessat(AT_FDCWD, dir.c_str(), W_OK | X_OK, AT_EACCESS) != 0) return Outcome::Failed;
  const uid_t me = geteuid();
  if ((folder.st_mode & S_ISVTX) && me != 0 && file.st_uid != me && folder.st_uid != me) return Outcome::Failed;
  return Outcome::Ok;
}

Outcome ReadHead(const std::wstring& name, void* buffer, size_t size, size_t* got) {
  *got = 0;
  const int fd = open(Path(name).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (fd < 0) return OutcomeFromOsError(errno, Step::Open) == Outcome::Missing ? Outcome::Missing : Outcome::Failed;
  struct stat st;
  if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
    close(fd);
    return Outcome::Failed;
  }
  char* p = static_cast<char*>(buffer);
  while (*got < size) {
    const ssize_t n = pread(fd, p + *got, size - *got, static_cast<off_t>(*got));
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      CloseKeepingErrno(fd);
      return OutcomeFromOsError(errno, Step::Read);
    }
    if (n == 0) break;
    *got += static_cast<size_t>(n);
  }
  close(fd);
  return Outcome::Ok;
}

bool WriteHead(HANDLE handle, const void* data, size_t size) {
  const char* p = static_cast<const char*>(data);
  size_t done = 0;
  while (done < size) {
    const ssize_t n = pwrite(Fd(handle), p + done, size - done, static_cast<off_t>(done));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    done += static_cast<size_t>(n);
  }
  return true;
}

void Close(HANDLE handle) { close(Fd(handle)); }

void Release(HANDLE handle, const std::wstring& name) {
  const int fd = Fd(handle);
  const std::string path = Path(name);
  // Unlinked while still locked, then closed: whoever opens the name from
  // now on finds either nothing or a new file, never our released one.
  struct stat held, named;
  if (fstat(fd, &held) == 0 && stat(path.c_str(), &named) == 0 && SameFile(held, named)) unlink(path.c_str());
  close(fd);
}

}  // namespace platform
}  // namespace lock_file
}  // namespace qt
