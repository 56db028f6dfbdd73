#include "command.h"

int main(int argc, char** argv) {
  return qt_tool::Run(std::vector<std::string>(argv + 1, argv + argc), stdout, stderr);
}
