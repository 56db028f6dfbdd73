#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "project/qb_platform.h"
#include "project/qb_text.h"

namespace qb {
namespace platform {

namespace {

bool WriteAll(int fd, const char* p, size_t n) {
  while (n > 0) {
    const ssize_t w = ::write(fd, p, n);
    if (w < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    p += w;
    n -= static_cast<size_t>(w);
  }
  return true;
}

}  // namespace

bool FileExists(const wchar_t* path) {
  struct stat st;
  return path && ::stat(WideToUtf8(path).c_str(), &st) == 0;
}

bool ReadWholeFile(const wchar_t* path, std::string* bytes) {
  bytes->clear();
  if (!path) return false;
  const int fd = ::open(WideToUtf8(path).c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  char chunk[65536];
  bool ok = true;
  for (;;) {
    const ssize_t r = ::read(fd, chunk, sizeof chunk);
    if (r < 0 && errno == EINTR) continue;
    if (r < 0) ok = false;
    if (r <= 0) break;
    bytes->append(chunk, static_cast<size_t>(r));
  }
  ::close(fd);
  return ok;
}

bool ReplaceWholeFile(const wchar_t* path, const void* data, size_t size) {
  if (!path || !*path) return false;
  const std::string target = WideToUtf8(path);
  const std::string temp = target + ".qbtmp";
  const int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (fd < 0) return false;
  bool ok = WriteAll(fd, static_cast<const char*>(data), size) && ::fsync(fd) == 0;
  ok = (::close(fd) == 0) && ok;
  if (ok) ok = ::rename(temp.c_str(), target.c_str()) == 0;
  if (!ok) ::unlink(temp.c_str());
  return ok;
}

bool RemoveFile(const wchar_t* path) { return path && ::unlink(WideToUtf8(path).c_str()) == 0; }

}  // namespace platform
}  // namespace qb
