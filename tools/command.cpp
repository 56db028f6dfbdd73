#include "command.h"

#include <cstring>

namespace qt_tool {

namespace {
std::vector<Command>& Registry() {
  static std::vector<Command> commands;
  return commands;
}

void Usage(FILE* err) {
  std::fprintf(err, "usage: quiltool <command> [arguments]\n\ncommands:\n");
  for (const Command& c : Registry()) std::fprintf(err, "  %-8s %s\n", c.name, c.summary);
}
}  // namespace

Registration::Registration(const Command& command) { Registry().push_back(command); }

const std::vector<Command>& Commands() { return Registry(); }

int Run(const std::vector<std::string>& args, FILE* out, FILE* err) {
  if (args.empty() || args[0] == "--help" || args[0] == "-h" || args[0] == "help") {
    Usage(args.empty() ? err : out);
    return args.empty() ? 2 : 0;
  }
  for (const Command& c : Registry()) {
    if (args[0] == c.name) return c.main(std::vector<std::string>(args.begin() + 1, args.end()), out, err);
  }
  std::fprintf(err, "quiltool: unknown command '%s'\n", args[0].c_str());
  Usage(err);
  return 2;
}

}  // namespace qt_tool
