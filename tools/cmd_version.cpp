// quiltool version: the library's version number, as a calling module sees it.
#include "command.h"
#include "gwframe.h"

namespace {

int VersionMain(const std::vector<std::string>& args, FILE* out, FILE* err) {
  if (!args.empty()) {
    std::fprintf(err, "quiltool version: takes no arguments\n");
    return 2;
  }
  std::fprintf(out, "%ld\n", quiltool_version_nmb(QUILTOOL_VERSION_NMB));
  return 0;
}

const qt_tool::Registration kVersion({"version", "print the library version number", VersionMain});

}  // namespace
