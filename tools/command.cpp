#include "command.h"

#include <cstring>

namespace qt_tool {

namespace {
std::vector<Command>& Registry() {
  static std::vector<Command> commands;
  return commands;
}

void Usage(FILE* f) {
  std::fprintf(f,
               "usage: quiltool <command> [arguments]\n"
               "       quiltool --version\n"
               "       quiltool <command> --help\n\ncommands:\n");
  for (const Command& c : Registry()) std::fprintf(f, "  %-8s %s\n", c.name, c.summary);
}

const Command* Find(const std::string& name) {
  for (const Command& c : Registry())
    if (name == c.name) return &c;
  return nullptr;
}

bool LooksLikeOption(const std::string& a) {
  return a.size() > 1 && a[0] == '-' && !(a[1] >= '0' && a[1] <= '9') && !(a[1] == '.' && a.size() > 2);
}
}  // namespace

Registration::Registration(const Command& command) { Registry().push_back(command); }

const std::vector<Command>& Commands() { return Registry(); }

bool IsHelp(const std::string& arg) { return arg == "--help" || arg == "-h"; }

std::string ParsedArgs::value(const std::string& name, const std::string& fallback) const {
  auto it = values.find(name);
  return it == values.end() ? fallback : it->second;
}

int ParseOptions(const std::vector<std::string>& args, size_t from, const std::vector<OptionSpec>& specs,
                 const char* who, const char* usage, ParsedArgs* parsed, FILE* out, FILE* err) {
  // Help wins over any mistake on the same line: whoever asks for it is
  // finding out how the line should look.
  for (size_t i = from; i < args.size() && args[i] != "--"; ++i) {
    if (IsHelp(args[i])) {
      std::fprintf(out, "%s", usage);
      return 0;
    }
  }
  bool optionsEnded = false;
  for (size_t i = from; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (!optionsEnded && a == "--") {
      optionsEnded = true;
      continue;
    }
    if (optionsEnded || !LooksLikeOption(a)) {
      parsed->plain.push_back(a);
      continue;
    }
    const OptionSpec* spec = nullptr;
    for (const OptionSpec& s : specs)
      if (a == s.name) spec = &s;
    if (!spec) {
      std::fprintf(err, "%s: unknown option %s\n%s", who, a.c_str(), usage);
      return 2;
    }
    if (!spec->takesValue) {
      parsed->flags.insert(a);
      continue;
    }
    if (i + 1 >= args.size()) {
      std::fprintf(err, "%s: %s needs a value\n%s", who, a.c_str(), usage);
      return 2;
    }
    parsed->values[a] = args[++i];
  }
  return kGoOn;
}

int Run(const std::vector<std::string>& args, FILE* out, FILE* err) {
  if (args.empty()) {
    Usage(err);
    return 2;
  }
  if (IsHelp(args[0]) || args[0] == "help") {
    Usage(out);
    return 0;
  }
  if (args[0] == "--version") {
    const Command* version = Find("version");
    if (version && args.size() == 1) return version->main({}, out, err);
  }
  if (const Command* c = Find(args[0])) return c->main(std::vector<std::string>(args.begin() + 1, args.end()), out, err);
  if (LooksLikeOption(args[0])) {
    std::fprintf(err, "quiltool: unknown option %s\n", args[0].c_str());
  } else {
    std::fprintf(err, "quiltool: unknown command '%s'\n", args[0].c_str());
  }
  Usage(err);
  return 2;
}

}  // namespace qt_tool
