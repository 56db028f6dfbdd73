// The program's arguments come from the wide command line, so text outside
// the ANSI code page reaches the subcommands intact.
#include <gtest/gtest.h>

#include <string>

#include "args_platform.h"
#include "testsupport/qt_test.h"
#include "tool_test_support.h"

// Prints every argument after the child's name, as hex of its UTF-8.
QT_TEST_CHILD(print_arguments) {
  const std::vector<std::string> all = qt::args::platform::Arguments(0, nullptr);
  for (size_t i = 1; i < all.size(); ++i) std::printf("%s\n", qt_tool_test::Hex(all[i]).c_str());
  std::fflush(stdout);
  return 0;
}

TEST(ArgsPlatformWin, ArgumentsOutsideTheCodePageArriveAsUtf8) {
  const std::vector<std::string> sent = {"\xe6\x97\xa5\xe6\x9c\xac\xe8\xaa\x9e", "Gr\xc3\xbc\xc3\x9f" "e \xce\xa9",
                                         "\xf0\x9f\x98\x80", "plain"};
  qt_test::ChildProcess child;
  ASSERT_TRUE(child.start("print_arguments", sent));
  for (const std::string& s : sent) EXPECT_EQ(qt_tool_test::Hex(s), child.readLine(60000));
  EXPECT_EQ(0, child.wait());
}
