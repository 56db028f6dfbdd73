// quiltool version: the library's version number, as a calling module sees it.
#include "command.h"
#include "gwframe.h"

namespace {

const char kUsage[] =
    "usage: quiltool version\n"
    "       quiltool --version\n";

int VersionMain(const std::vector<std::string>& args, FILE* out, FILE* err) {
  qt_tool::ParsedArgs a;
  const int code = qt_tool::ParseOptions(args, 0, {}, "quiltool version", kUsage, &a, out, err);
  if (code != qt_tool::kGoOn) return code;
  if (!a.plain.empty()) {
    std::fprintf(err, "quiltool version: takes no arguments\n%s", kUsage);
    return 2;
  }
  std::fprintf(out, "%ld\n", quiltool_version_nmb(QUILTOOL_VERSION_NMB));
  return 0;
}

const qt_tool::Registration kVersion({"version", "print the library version number", VersionMain});

}  // namespace
