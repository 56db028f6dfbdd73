// The default presenter on Linux: text on stderr, and 0 when nobody can answer.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "gwframe.h"
#include "qt_test.h"

QT_TEST_CHILD(ask_without_terminal) {
  // stdin is a pipe here, so nobody can answer.
  if (!std::freopen(args.at(0).c_str(), "w", stderr)) return 3;
  const int answer = gwyesnomsg(nullptr, L"Overwrite plant.epj?");
  std::fflush(stderr);
  std::printf("%d\n", answer);
  return 0;
}

TEST(DefaultPresenter, WritesTheBoxAndAnswersZeroWithoutATerminal) {
  qt_test::TempDir dir;
  qt_test::ChildProcess child;
  ASSERT_TRUE(child.start("ask_without_terminal", {dir.file("stderr.txt")}));
  EXPECT_EQ("0", child.readLine());
  EXPECT_EQ(0, child.wait());
  EXPECT_EQ("[Quillon] Overwrite plant.epj?\n", qt_test::ReadFileBytes(dir.file("stderr.txt")));
}
