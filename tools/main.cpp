#include "args_platform.h"
#include "command.h"

int main(int argc, char** argv) {
  const std::vector<std::string> args = qt::args::platform::Arguments(argc, argv);
  const qt::args::platform::Output output = qt::args::platform::Begin();
  const int code = qt_tool::Run(args, output.out, output.err);
  qt::args::platform::Finish(output);
  return code;
}
