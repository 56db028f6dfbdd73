// How the quiltool program meets its command line and its console
// (args_platform_posix.cpp / _win.cpp). Subcommands see UTF-8 on every
// target: Windows hands over the wide command line, so no argument is
// squeezed through the ANSI code page, and text printed to a console goes
// out as UTF-16; a pipe or file receives the UTF-8 bytes unchanged.
#ifndef QUILTOOL_TOOLS_ARGS_PLATFORM_H
#define QUILTOOL_TOOLS_ARGS_PLATFORM_H

#include <cstdio>
#include <string>
#include <vector>

namespace qt {
namespace args {
namespace platform {

// The arguments after the program name, as UTF-8. Windows reads them from
// the process's wide command line and ignores argv.
std::vector<std::string> Arguments(int argc, char** argv);

// Where the program prints: stdout and stderr, or, for a Windows console,
// streams whose UTF-8 is shown through the console's wide output. Finish
// flushes everything and must run before the process ends.
struct Output {
  FILE* out;
  FILE* err;
};
Output Begin();
void Finish(const Output& output);

}  // namespace platform
}  // namespace args
}  // namespace qt

#endif
