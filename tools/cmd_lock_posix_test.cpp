// quiltool lock against the lock file of another account.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "command.h"
#include "gwflock.h"
#include "testsupport/qt_test.h"
#include "tool_test_support.h"

namespace {

std::string OneLine(std::string text) {
  for (char& c : text)
    if (c == '\n') c = ' ';
  return text;
}

}  // namespace

// Runs the three lock actions on a file as the unprivileged account 65534
// and prints, per action, the exit code and everything it said on one line.
// Args: file.
QT_TEST_CHILD(lock_actions_as_other_account) {
  if (setgid(65534) != 0 || setuid(65534) != 0) return 5;
  for (const char* action : {"status", "take", "release-stale"}) {
    std::vector<std::string> line = {action, args.at(0)};
    if (std::string(action) == "take") {
      // Taking it would hold until interrupted; only a refusal returns.
      line.push_back("--user");
      line.push_back("other");
    }
    const qt_tool_test::Result r = qt_tool_test::RunTool("lock", line);
    std::printf("%d %s%s\n", r.code, OneLine(r.out).c_str(), OneLine(r.err).c_str());
  }
  std::fflush(stdout);
  return 0;
}

TEST(LockCommandPosix, AnotherAccountsLeftoverInAStickyFolderGetsOneAnswer) {
  if (geteuid() != 0) GTEST_SKIP() << "acting as a second account needs root";
  qt_test::TempDir dir;
  ASSERT_EQ(0, chmod(dir.path().c_str(), 01777));
  const std::string file = dir.file("plant.epj");
  { FILE* f = std::fopen(file.c_str(), "wb"); ASSERT_NE(nullptr, f); std::fclose(f); }
  ASSERT_EQ(0, chmod(file.c_str(), 0666));
  const std::string lockFile = dir.file("plant.lkh");
  gwflocktype mine;
  gwflock_init(&mine);
  ASSERT_EQ(0, gwflock_lockw(nullptr, &mine, qt_test::Widen(lockFile).c_str(), L"Root", nullptr, 0));
  ASSERT_EQ(0, chmod(lockFile.c_str(), 0644));
  // Ended without unlocking, as a crash leaves it.
  close(static_cast<int>(reinterpret_cast<intptr_t>(mine.handle)));

  qt_test::ChildProcess other;
  ASSERT_TRUE(other.start("lock_actions_as_other_account", {file}));
  const std::string status = other.readLine(60000), take = other.readLine(), release = other.readLine();
  EXPECT_EQ(0, other.wait());
  // Nobody holds it: status says not locked; nobody may call it held.
  EXPECT_EQ(0u, status.find("0 ")) << status;
  for (const std::string& answer : {status, take, release}) {
    EXPECT_NE(std::string::npos, answer.find("not locked")) << answer;
    EXPECT_NE(std::string::npos, answer.find("left behind by Root")) << answer;
    EXPECT_NE(std::string::npos, answer.find("ask account root or an administrator")) << answer;
    EXPECT_EQ(std::string::npos, answer.find("is running")) << answer;
    EXPECT_EQ(std::string::npos, answer.find("locked by")) << answer;
  }
  EXPECT_EQ(0u, take.find("1 ")) << take;
  EXPECT_EQ(0u, release.find("1 ")) << release;
  EXPECT_TRUE(std::filesystem::exists(lockFile));

  // Root itself may clear it.
  const qt_tool_test::Result cleared = qt_tool_test::RunTool("lock", {"release-stale", file});
  EXPECT_EQ(0, cleared.code) << cleared.err;
  EXPECT_FALSE(std::filesystem::exists(lockFile));
}
