// The command line of quiltool reg: reg.exe's options ("/v NAME", "-f"),
// the help requests and the key names.
#ifndef QUILTOOL_TOOLS_REG_ARGS_H
#define QUILTOOL_TOOLS_REG_ARGS_H

#include <map>
#include <set>
#include <string>
#include <vector>

#include "qn_wintypes.h"

namespace qt_regtool {

struct Args {
  std::vector<std::string> positional;
  std::map<std::string, std::string> values;  // "/v" -> name
  std::set<std::string> flags;                // "/f"
  bool has(const char* option) const { return flags.count(option) || values.count(option); }
  std::string value(const char* option) const {
    const auto it = values.find(option);
    return it == values.end() ? std::string() : it->second;
  }
};

enum class Parsed { kArgs, kHelp, kBad };

// "/?", "-?", "/h", "-h" and "--help".
bool IsHelp(const std::string& arg);

// Options are taken in either spelling ("/x" or "-x", any case) and named
// "/x" in the result; withValue ones take the next argument. Anything that
// looks like an option but is none of the given ones is an error naming it;
// a "/" argument looks like an option only when short ("/x", "/ve"), so
// that Linux paths such as "/tmp/a.reg" stay plain arguments.
Parsed ParseArgs(const std::vector<std::string>& in, const std::set<std::string>& withValue,
                 const std::set<std::string>& plain, Args* out, std::string* error);

// "HKCU\a\b" as a root and the path below it; false for an unknown root or
// a malformed path.
bool KeyArg(const std::string& arg, HKEY* root, std::wstring* path);

}  // namespace qt_regtool

#endif
