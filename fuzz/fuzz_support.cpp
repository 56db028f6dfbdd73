#include "fuzz_support.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "qn_utf.h"

namespace qt_fuzz {

void Fail(const char* file, int line, const char* what, const std::string& detail) {
  std::fprintf(stderr, "\n== property broken at %s:%d: %s\n   %s\n", file, line, what, detail.c_str());
  std::fflush(stderr);
  // abort() skips the destructors that would remove the scratch folder.
  RemoveTree(ScratchDir());
  std::abort();
}

namespace {

std::string MakeScratch() {
  const char* base = std::getenv("TMPDIR");
  std::string pattern = std::string(base && *base ? base : "/tmp") + "/quiltool-fuzz.XXXXXX";
  if (!mkdtemp(&pattern[0])) {
    std::perror("mkdtemp");
    std::abort();
  }
  return pattern;
}

struct Scratch {
  std::string path = MakeScratch();
  pid_t owner = getpid();
  ~Scratch() {
    // Children of a fork leave the folder to the process that made it.
    if (getpid() == owner) RemoveTree(path);
  }
};

}  // namespace

const std::string& ScratchDir() {
  static Scratch scratch;
  return scratch.path;
}

std::string ScratchFile(const std::string& name) { return ScratchDir() + "/" + name; }

bool WriteFile(const std::string& path, const void* data, size_t size) {
  // A new file, not a truncated one: ext4 flushes a file truncated and
  // rewritten when it is closed, which would slow every run to disk speed.
  std::remove(path.c_str());
  FILE* f = std::fopen(path.c_str(), "wb");
  if (!f) return false;
  const bool ok = std::fwrite(data, 1, size, f) == size;
  return std::fclose(f) == 0 && ok;
}

bool ReadFile(const std::string& path, std::string* bytes) {
  bytes->clear();
  FILE* f = std::fopen(path.c_str(), "rb");
  if (!f) return false;
  char buffer[8192];
  size_t n;
  while ((n = std::fread(buffer, 1, sizeof buffer, f)) > 0) bytes->append(buffer, n);
  const bool ok = !std::ferror(f);
  std::fclose(f);
  return ok;
}

void RemoveTree(const std::string& path) {
  std::error_code ec;
  std::filesystem::remove_all(path, ec);
}

std::wstring Wide(const std::string& utf8) { return qn_utf8_to_wide(utf8.c_str(), utf8.size()); }
std::string Narrow(const std::wstring& text) { return qn_wide_to_utf8(text.c_str(), text.size()); }

std::string Printable(const std::string& bytes, size_t limit) {
  std::string s;
  for (size_t i = 0; i < bytes.size() && i < limit; ++i) {
    const unsigned char c = static_cast<unsigned char>(bytes[i]);
    if (c >= 0x20 && c < 0x7F && c != '\\') {
      s.push_back(static_cast<char>(c));
    } else {
      char esc[8];
      std::snprintf(esc, sizeof esc, "\\x%02X", c);
      s += esc;
    }
  }
  if (bytes.size() > limit) s += "...";
  return s;
}

std::string Printable(const std::wstring& text, size_t limit) {
  std::string s;
  for (size_t i = 0; i < text.size() && i < limit; ++i) {
    const unsigned long c = static_cast<unsigned long>(text[i]);
    if (c >= 0x20 && c < 0x7F && c != '\\') {
      s.push_back(static_cast<char>(c));
    } else {
      char esc[16];
      std::snprintf(esc, sizeof esc, "\\u{%lX}", c);
      s += esc;
    }
  }
  if (text.size() > limit) s += "...";
  return s;
}

std::string SuiteDefinitionPath() { return QT_FUZZ_LNG_DIR "/QuilQlg.ddq"; }

const qt::qlg::Definition& SuiteDefinition() {
  static const qt::qlg::Definition def = [] {
    qt::qlg::Definition d;
    std::string bytes;
    qt::qlg::ParseError error;
    QT_FUZZ_CHECK(ReadFile(SuiteDefinitionPath(), &bytes) &&
                      qt::qlg::ParseDefinition(bytes.data(), bytes.size(), "QuilQlg.ddq", &d, &error),
                  "cannot read " + SuiteDefinitionPath() + ": " + error.describe());
    return d;
  }();
  return def;
}

}  // namespace qt_fuzz
