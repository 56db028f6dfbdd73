// Subcommands of the quiltool program. Each cmd_*.cpp defines one and
// registers it with a static Registration, so adding a subcommand touches
// no other file.
#ifndef QUILTOOL_TOOLS_COMMAND_H
#define QUILTOOL_TOOLS_COMMAND_H

#include <cstdio>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace qt_tool {

// args excludes the program and subcommand names and is UTF-8 on every
// target; out/err are where the subcommand writes UTF-8 (stdout/stderr in
// the program, buffers in tests).
// Returns the process exit code: 0 success, 1 failure, 2 bad usage.
typedef int (*CommandMain)(const std::vector<std::string>& args, FILE* out, FILE* err);

struct Command {
  const char* name;
  const char* summary;  // one line for the program's usage text
  CommandMain main;
};

struct Registration {
  explicit Registration(const Command& command);
};

const std::vector<Command>& Commands();

// Runs "quiltool <args...>" as the program does; for tests.
int Run(const std::vector<std::string>& args, FILE* out, FILE* err);

// The options of a subcommand line, read alike by every subcommand so that
// help and mistakes are answered the same way everywhere.
struct OptionSpec {
  const char* name;  // "--set", "-o"
  bool takesValue;
};

struct ParsedArgs {
  std::map<std::string, std::string> values;  // options given with a value
  std::set<std::string> flags;                // options given without one
  std::vector<std::string> plain;             // everything else, in order

  bool has(const std::string& name) const { return values.count(name) || flags.count(name); }
  std::string value(const std::string& name, const std::string& fallback = std::string()) const;
};

// Returned by ParseOptions when the subcommand goes on.
const int kGoOn = -1;

// Reads args[from...]. "--help" (or "-h") anywhere prints usage to out and
// gives 0; an option not in specs, or one lacking its value, is named on
// err with the usage and gives 2; otherwise kGoOn. "--" ends the options,
// and "-" alone or a negative number is a plain argument. who prefixes
// messages ("quiltool db").
int ParseOptions(const std::vector<std::string>& args, size_t from, const std::vector<OptionSpec>& specs,
                 const char* who, const char* usage, ParsedArgs* parsed, FILE* out, FILE* err);

bool IsHelp(const std::string& arg);

}  // namespace qt_tool

#endif
