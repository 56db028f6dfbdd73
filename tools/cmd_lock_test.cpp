#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "cmd_lock_platform.h"
#include "command.h"
#include "tool_test_support.h"
#include "testsupport/qt_test.h"

namespace fs = std::filesystem;

namespace {

using qt_tool_test::Hex;
using qt_tool_test::Result;
using qt_tool_test::Unhex;

Result Lock(const std::vector<std::string>& args) { return qt_tool_test::RunTool("lock", args); }

std::string MakeFile(const qt_test::TempDir& dir, const std::string& name) {
  const std::string path = dir.file(name);
  FILE* f = std::fopen(path.c_str(), "wb");
  if (f) std::fclose(f);
  return path;
}

bool Contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

}  // namespace

// "quiltool lock take" as the program runs it; a line on stdin interrupts
// it the way the user would. Args: file, user.
QT_TEST_CHILD(lock_take) {
  std::thread interrupter([] {
    char line[16];
    if (std::fgets(line, sizeof line, stdin)) qt::cmd_lock::platform::InterruptSelf();
  });
  interrupter.detach();
  return qt_tool::Run({"lock", "take", args.at(0), "--user", args.at(1)}, stdout, stderr);
}

TEST(LockCommand, TakeHoldsUntilInterruptedAndOthersSeeTheHolder) {
  qt_test::TempDir dir;
  const std::string file = MakeFile(dir, "plant.epj"), lock = dir.file("plant.lkh");
  EXPECT_EQ(0, Lock({"status", file}).code);

  qt_test::ChildProcess taker;
  ASSERT_TRUE(taker.start("lock_take", {file, "Jane Roe"}));
  const std::string line = taker.readLine(60000);
  EXPECT_TRUE(Contains(line, "holding ")) << line;

  const Result status = Lock({"status", file});
  EXPECT_EQ(3, status.code);
  EXPECT_TRUE(Contains(status.out, "locked by Jane Roe")) << status.out;

  const Result second = Lock({"take", file, "--user", "me"});
  EXPECT_EQ(3, second.code);
  EXPECT_TRUE(Contains(second.err, "locked by Jane Roe")) << second.err;

  const Result refused = Lock({"release-stale", file});
  EXPECT_EQ(3, refused.code);
  EXPECT_TRUE(fs::exists(fs::u8path(lock)));

  taker.writeLine("stop");
  EXPECT_TRUE(Contains(taker.readLine(), "released"));
  EXPECT_EQ(0, taker.wait());
  EXPECT_FALSE(fs::exists(fs::u8path(lock)));
  EXPECT_EQ(0, Lock({"status", file}).code);
}

TEST(LockCommand, StaleLockIsReportedAndOnlyThenRemoved) {
  qt_test::TempDir dir;
  const std::string file = MakeFile(dir, "notes.txt"), lock = dir.file("notes.txt~");
  qt_test::ChildProcess taker;
  ASSERT_TRUE(taker.start("lock_take", {file, "Crashed"}));
  ASSERT_TRUE(Contains(taker.readLine(60000), "holding "));
  taker.kill();

  const Result status = Lock({"status", file});
  EXPECT_EQ(0, status.code);
  EXPECT_TRUE(Contains(status.out, "left behind by Crashed")) << status.out;
  const Result removed = Lock({"release-stale", file});
  EXPECT_EQ(0, removed.code) << removed.err;
  EXPECT_FALSE(fs::exists(fs::u8path(lock)));
  const Result nothing = Lock({"release-stale", file});
  EXPECT_EQ(0, nothing.code);
  EXPECT_TRUE(Contains(nothing.out, "no lock file")) << nothing.out;
}

TEST(LockCommand, BadUseMissingFilesAndUnreadableLocks) {
  qt_test::TempDir dir;
  EXPECT_EQ(2, Lock({}).code);
  EXPECT_EQ(2, Lock({"status"}).code);
  EXPECT_EQ(2, Lock({"frobnicate", "x"}).code);
  EXPECT_EQ(2, Lock({"take", "x", "--user"}).code);
  EXPECT_EQ(4, Lock({"take", dir.file("missing.epj"), "--user", "me"}).code);

  const std::string file = MakeFile(dir, "plant.qrd");
  fs::create_directory(fs::u8path(dir.file("plant.lrd")));
  const Result status = Lock({"status", file});
  EXPECT_EQ(1, status.code);
  EXPECT_TRUE(Contains(status.err, "cannot be read")) << status.err;
  EXPECT_EQ(1, Lock({"release-stale", file}).code);
  EXPECT_TRUE(fs::is_directory(fs::u8path(dir.file("plant.lrd"))));
}

// lock_take with hex-encoded arguments.
QT_TEST_CHILD(lock_take_hex) {
  std::thread interrupter([] {
    char line[16];
    if (std::fgets(line, sizeof line, stdin)) qt::cmd_lock::platform::InterruptSelf();
  });
  interrupter.detach();
  return qt_tool::Run({"lock", "take", Unhex(args.at(0)), "--user", Unhex(args.at(1))}, stdout, stderr);
}

TEST(LockCommand, NamesOutsideTheAnsiCodePageGoThroughUnchanged) {
  qt_test::TempDir dir;
  const std::string file = dir.path() + "/Pl\xc3\xa4n \xe6\x97\xa5\xe6\x9c\xac.epj";
  const std::string user = "\xce\x9c\xce\xb1\xcf\x81\xce\xaf\xce\xb1 \xe7\x94\xb0\xe4\xb8\xad";
  { std::ofstream(fs::u8path(file)).put('x'); }
  qt_test::ChildProcess taker;
  ASSERT_TRUE(taker.start("lock_take_hex", {Hex(file), Hex(user)}));
  const std::string line = taker.readLine(60000);
  EXPECT_TRUE(Contains(line, "holding " + file + " as " + user)) << line;
  EXPECT_TRUE(fs::exists(fs::u8path(dir.path() + "/Pl\xc3\xa4n \xe6\x97\xa5\xe6\x9c\xac.lkh")));

  const Result status = Lock({"status", file});
  EXPECT_EQ(3, status.code) << status.err;
  EXPECT_TRUE(Contains(status.out, file + ": locked by " + user)) << status.out;
  const Result second = Lock({"take", file, "--user", "me"});
  EXPECT_EQ(3, second.code);
  EXPECT_TRUE(Contains(second.err, "locked by " + user)) << second.err;
  taker.writeLine("stop");
  EXPECT_EQ(0, taker.wait());
}
