#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "file_problem_platform.h"

namespace qt {
namespace file_problem {
namespace platform {

namespace {

qt_tool::FileProblem FromErrno(int error) {
  if (error == ENOENT || error == ENOTDIR || error == ENAMETOOLONG || error == ELOOP) return qt_tool::FileProblem::NotFound;
  if (error == EACCES || error == EPERM) return qt_tool::FileProblem::NoPermission;
  if (error == EISDIR) return qt_tool::FileProblem::IsDirectory;
  return qt_tool::FileProblem::Other;
}

}  // namespace

qt_tool::FileProblem Diagnose(const std::string& utf8Path) {
  struct stat st;
  if (stat(utf8Path.c_str(), &st) != 0) return FromErrno(errno);
  if (S_ISDIR(st.st_mode)) return qt_tool::FileProblem::IsDirectory;
  const int fd = open(utf8Path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (fd < 0) return FromErrno(errno);
  close(fd);
  return qt_tool::FileProblem::None;
}

long DatabaseLockHolder(const std::string& utf8Path) {
  // The engine's locks sit on bytes at 1 GiB: the pending byte at 0x40000000
  // and the shared range from 0x40000002, 510 bytes long. A writer that
  // keeps readers out holds a write lock on them.
  const int fd = open(utf8Path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (fd < 0) return 0;
  long pid = 0;
  const off_t starts[] = {0x40000002, 0x40000000};
  const off_t lengths[] = {510, 1};
  for (int i = 0; i < 2 && pid == 0; ++i) {
    struct flock lk = {};
    lk.l_type = F_RDLCK;
    lk.l_whence = SEEK_SET;
    lk.l_start = starts[i];
    lk.l_len = lengths[i];
    if (fcntl(fd, F_GETLK, &lk) == 0 && lk.l_type != F_UNLCK && lk.l_pid > 0) pid = lk.l_pid;
  }
  // Closing drops every record lock this process has on the file; it is
  // asked only while this process holds none there.
  close(fd);
  return pid;
}

}  // namespace platform
}  // namespace file_problem
}  // namespace qt
