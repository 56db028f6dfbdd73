// Subcommands of the quiltool program. Each cmd_*.cpp defines one and
// registers it with a static Registration, so adding a subcommand touches
// no other file.
#ifndef QUILTOOL_TOOLS_COMMAND_H
#define QUILTOOL_TOOLS_COMMAND_H

#include <cstdio>
#include <string>
#include <vector>

namespace qt_tool {

// args excludes the program and subcommand names; out/err are where the
// subcommand writes (stdout/stderr in the program, buffers in tests).
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

}  // namespace qt_tool

#endif
