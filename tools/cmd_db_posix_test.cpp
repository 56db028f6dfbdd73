// quiltool db where Linux accounts and record locks come in.
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>

#include "command.h"
#include "project/qb_test_fixture.h"
#include "qt_test.h"
#include "tool_test_support.h"

// Runs "quiltool db info FILE" as the unprivileged account 65534 and prints
// its exit code and error on one line. Args: file.
QT_TEST_CHILD(db_info_as_other_account) {
  if (setgid(65534) != 0 || setuid(65534) != 0) return 5;
  const qt_tool_test::Result r = qt_tool_test::RunTool("db", {"info", args.at(0)});
  std::string err = r.err;
  for (char& c : err)
    if (c == '\n') c = ' ';
  std::printf("%d %s\n", r.code, err.c_str());
  std::fflush(stdout);
  return 0;
}

TEST(DbToolPosix, AFileThisAccountMayNotReadIsSaidToBeSo) {
  if (geteuid() != 0) GTEST_SKIP() << "acting as a second account needs root";
  qt_test::TempDir dir;
  ASSERT_EQ(0, chmod(dir.path().c_str(), 0755));
  const std::string file = dir.file("private.qep");
  ASSERT_TRUE(qb_test::CreatePanelFile(qt_test::Widen(file)));
  ASSERT_EQ(0, chmod(file.c_str(), 0600));
  qt_test::ChildProcess other;
  ASSERT_TRUE(other.start("db_info_as_other_account", {file}));
  const std::string line = other.readLine(60000);
  EXPECT_EQ(0, other.wait());
  EXPECT_EQ(0u, line.find("1 ")) << line;
  EXPECT_NE(std::string::npos, line.find("private.qep: permission denied")) << line;
}

// Holds a database's write lock until told; prints its process id first.
// Args: file.
QT_TEST_CHILD(hold_database_and_tell_pid) {
  sqlite3* db = nullptr;
  if (sqlite3_open(args.at(0).c_str(), &db) != SQLITE_OK) return 3;
  if (sqlite3_exec(db, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr) != SQLITE_OK) return 4;
  std::printf("%ld\n", static_cast<long>(getpid()));
  std::fflush(stdout);
  char line[16];
  const bool told = std::fgets(line, sizeof line, stdin) != nullptr;
  sqlite3_close(db);
  return told ? 0 : 1;
}

TEST(DbToolPosix, AWaitNamesTheWritersProcess) {
  qt_test::TempDir dir;
  const std::string file = dir.file("plant.qep");
  ASSERT_TRUE(qb_test::CreatePanelFile(qt_test::Widen(file)));
  qt_test::ChildProcess holder;
  ASSERT_TRUE(holder.start("hold_database_and_tell_pid", {file}));
  const std::string pid = holder.readLine(60000);
  ASSERT_FALSE(pid.empty());
  const qt_tool_test::Result r = qt_tool_test::RunTool("db", {"dump", file, "--wait", "1"});
  EXPECT_EQ(1, r.code);
  EXPECT_NE(std::string::npos, r.err.find("is being written by process " + pid + "; waiting")) << r.err;
  holder.writeLine("done");
  EXPECT_EQ(0, holder.wait());
}
