// What the harnesses share: a private scratch folder per process, files
// written from fuzz input, and a check that stops the run with a message.
#ifndef QUILTOOL_FUZZ_FUZZ_SUPPORT_H
#define QUILTOOL_FUZZ_FUZZ_SUPPORT_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "settings/qlg_format.h"

namespace qt_fuzz {

// A broken property is a finding like a crash: libFuzzer keeps the input
// when the process aborts.
[[noreturn]] void Fail(const char* file, int line, const char* what, const std::string& detail);

#define QT_FUZZ_CHECK(cond, detail)                                              \
  do {                                                                           \
    if (!(cond)) ::qt_fuzz::Fail(__FILE__, __LINE__, #cond, (detail));           \
  } while (0)

// A folder of this process's own, made on first use and removed at exit.
const std::string& ScratchDir();
std::string ScratchFile(const std::string& name);
bool WriteFile(const std::string& path, const void* data, size_t size);
bool ReadFile(const std::string& path, std::string* bytes);
void RemoveTree(const std::string& path);
std::wstring Wide(const std::string& utf8);
std::string Narrow(const std::wstring& text);
// Bytes as C escapes, for messages about a broken property.
std::string Printable(const std::string& bytes, size_t limit = 200);
std::string Printable(const std::wstring& text, size_t limit = 200);

// The suite's language definition from the source tree, which language
// files are read against.
std::string SuiteDefinitionPath();
const qt::qlg::Definition& SuiteDefinition();

// Reads the fuzz input front to back as small decisions.
class Reader {
 public:
  Reader(const uint8_t* data, size_t size) : p_(data), end_(data + size) {}
  bool empty() const { return p_ == end_; }
  size_t left() const { return static_cast<size_t>(end_ - p_); }
  uint8_t byte() { return p_ == end_ ? 0 : *p_++; }
  // A number below n (n > 0).
  unsigned below(unsigned n) { return byte() % n; }
  std::string bytes(size_t n) {
    if (n > left()) n = left();
    std::string s(reinterpret_cast<const char*>(p_), n);
    p_ += n;
    return s;
  }
  std::string rest() { return bytes(left()); }

 private:
  const uint8_t* p_;
  const uint8_t* end_;
};

}  // namespace qt_fuzz

#endif
