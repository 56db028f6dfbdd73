#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

#include "settings/qlg_file.h"
#include "settings/qlg_utf8.h"

namespace qt {
namespace qlg {

std::string PathForMessages(const wchar_t* path) {
  return path ? WideToUtf8(path, std::char_traits<wchar_t>::length(path)) : std::string();
}

bool ReadWholeFile(const wchar_t* path, std::string* bytes) {
  if (!path || !*path) return false;
  FILE* f = std::fopen(PathForMessages(path).c_str(), "rb");
  if (!f) return false;
  std::string data;
  struct stat info;
  if (fstat(fileno(f), &info) == 0 && info.st_size > 0) data.reserve(static_cast<size_t>(info.st_size));
  char chunk[65536];
  size_t n;
  while ((n = std::fread(chunk, 1, sizeof chunk, f)) > 0) data.append(chunk, n);
  const bool ok = !std::ferror(f);
  std::fclose(f);
  if (ok) bytes->swap(data);
  return ok;
}

bool WriteWholeFile(const wchar_t* path, const std::string& bytes) {
  if (!path || !*path) return false;
  const std::string target = PathForMessages(path);
  const std::string temp = target + ".tmp" + std::to_string(getpid());
  FILE* f = std::fopen(temp.c_str(), "wb");
  if (!f) return false;
  bool ok = std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
  ok = (std::fflush(f) == 0) && ok;
  ok = (std::fclose(f) == 0) && ok;
  if (ok) ok = std::rename(temp.c_str(), target.c_str()) == 0;
  if (!ok) std::remove(temp.c_str());
  return ok;
}

}  // namespace qlg
}  // namespace qt
