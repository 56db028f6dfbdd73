#include "args_platform.h"

namespace qt {
namespace args {
namespace platform {

// Linux passes the bytes the user typed, which a UTF-8 locale makes UTF-8.
std::vector<std::string> Arguments(int argc, char** argv) {
  return argc > 1 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>();
}

Output Begin() { return Output{stdout, stderr}; }

void Finish(const Output& output) {
  std::fflush(output.out);
  std::fflush(output.err);
}

}  // namespace platform
}  // namespace args
}  // namespace qt
