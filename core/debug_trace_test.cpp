// The debug trace: each process starts GWDEBUG.TXT anew, then appends.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "gwframe.h"
#include "qt_test.h"

QT_TEST_CHILD(write_debug_trace) {
  std::filesystem::current_path(args.at(0));
  gwdebug("run %s", args.at(1).c_str());
  gwdebug("%d records, %5.2f s", 1200, 1.5);
  return 0;
}

TEST(DebugTrace, EachProcessTruncatesOnceThenAppends) {
  qt_test::TempDir dir;
  {
    std::ofstream old(dir.file("GWDEBUG.TXT"));
    old << "left over from an earlier run\n";
  }
  ASSERT_EQ(0, qt_test::RunChild("write_debug_trace", {dir.path(), "one"}));
  const std::string first = qt_test::ReadFileBytes(dir.file("GWDEBUG.TXT"));
  // Text mode: Windows writes CR LF line ends.
  const std::string nl = first.find("\r\n") != std::string::npos ? "\r\n" : "\n";
  EXPECT_EQ("run one" + nl + "1200 records,  1.50 s" + nl, first);

  ASSERT_EQ(0, qt_test::RunChild("write_debug_trace", {dir.path(), "two"}));
  EXPECT_EQ("run two" + nl + "1200 records,  1.50 s" + nl, qt_test::ReadFileBytes(dir.file("GWDEBUG.TXT")));
}
