// quiltool db sample: the same data for the same count, every set filled
// with owners that exist, and a file that is never overwritten.
#include <gtest/gtest.h>

#include "qt_test.h"
#include "tool_test_support.h"
#include "tools/db_sample.h"

using qt_tool_test::RunTool;

TEST(DbSample, SameCountGivesTheSameRecordsAndTheEngineFindsThemConsistent) {
  qt_test::TempDir dir;
  const std::string a = dir.file("a.qdb"), b = dir.file("b.qdb");
  ASSERT_EQ(0, RunTool("db", {"sample", a, "--records", "1234"}).code);
  ASSERT_EQ(0, RunTool("db", {"sample", b, "--records", "1234"}).code);
  const auto dumpA = RunTool("db", {"dump", a, "--format", "json"});
  const auto dumpB = RunTool("db", {"dump", b, "--format", "json"});
  ASSERT_EQ(0, dumpA.code) << dumpA.err;
  EXPECT_EQ(dumpA.out, dumpB.out);
  // Texts with umlauts and line breaks come back as written.
  EXPECT_NE(std::string::npos, dumpA.out.find("B\xC3\xBC" "ro")) << dumpA.out.substr(0, 400);
  EXPECT_NE(std::string::npos, dumpA.out.find("Zuluft \xC3\xBC" "ber Decke\\u000aAbluft"));

  const auto check = RunTool("db", {"check", a});
  EXPECT_EQ(0, check.code) << check.out << check.err;
  const auto info = RunTool("db", {"info", a});
  EXPECT_NE(std::string::npos, info.out.find("records: 1234")) << info.out;
}

TEST(DbSample, CountsAddUpAndEverySetHasRecords) {
  for (long total : {5L, 999L, 10000L, 1000000L}) {
    const qt_tool::SampleCounts c = qt_tool::SampleCountsFor(total);
    EXPECT_EQ(total, c.storeys + c.rooms + c.units + c.ducts + c.terminals) << total;
    EXPECT_GE(c.terminals, 1) << total;
    EXPECT_GE(c.storeys, 1) << total;
  }
}

TEST(DbSample, BadArgumentsAndAnExistingFileChangeNothing) {
  qt_test::TempDir dir;
  const std::string path = dir.file("p.qdb");
  EXPECT_EQ(2, RunTool("db", {"sample", path, "--records", "4"}).code);
  EXPECT_EQ(2, RunTool("db", {"sample", path, "--records", "12x"}).code);
  EXPECT_EQ(2, RunTool("db", {"sample"}).code);
  EXPECT_EQ("", qt_test::ReadFileBytes(path));
  ASSERT_EQ(0, RunTool("db", {"sample", path, "--records", "20"}).code);
  const std::string before = qt_test::ReadFileBytes(path);
  const auto again = RunTool("db", {"sample", path});
  EXPECT_EQ(1, again.code);
  EXPECT_NE(std::string::npos, again.err.find("cannot create")) << again.err;
  EXPECT_EQ(before, qt_test::ReadFileBytes(path));
}
