// Runs quiltool subcommands inside a test program, capturing what they print.
#ifndef QUILTOOL_TOOLS_TOOL_TEST_SUPPORT_H
#define QUILTOOL_TOOLS_TOOL_TEST_SUPPORT_H

#include <cstdio>
#include <string>
#include <vector>

#include "command.h"

namespace qt_tool_test {

struct Result {
  int code;
  std::string out, err;
};

inline std::string DrainAndClose(FILE* f) {
  std::string text;
  if (!f) return text;
  std::rewind(f);
  char chunk[4096];
  for (size_t n; (n = std::fread(chunk, 1, sizeof chunk, f)) > 0;) text.append(chunk, n);
  std::fclose(f);
  return text;
}

// "quiltool <command> <args...>" as the program runs it.
inline Result RunTool(const std::string& command, const std::vector<std::string>& args) {
  std::vector<std::string> all{command};
  all.insert(all.end(), args.begin(), args.end());
  FILE* out = std::tmpfile();
  FILE* err = std::tmpfile();
  Result r;
  r.code = qt_tool::Run(all, out, err);
  r.out = DrainAndClose(out);
  r.err = DrainAndClose(err);
  return r;
}

// Test children get their arguments through the C runtime's 8-bit argv,
// which on Windows is the ANSI code page; hex carries any UTF-8 through.
inline std::string Hex(const std::string& bytes) {
  static const char digits[] = "0123456789abcdef";
  std::string out;
  for (unsigned char c : bytes) {
    out += digits[c >> 4];
    out += digits[c & 15];
  }
  return out;
}

inline std::string Unhex(const std::string& hex) {
  std::string out;
  for (size_t i = 0; i + 1 < hex.size(); i += 2) out += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
  return out;
}

}  // namespace qt_tool_test

#endif
