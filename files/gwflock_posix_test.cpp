#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>

#include "files/files_test_support.h"
#include "files/lock_file_platform.h"
#include "files/lock_inspect.h"
#include "gwflock.h"
#include "qt_test.h"

using qt::lock_file::platform::Outcome;
using qt::lock_file::platform::Step;

TEST(PlainLockPosix, ErrorsMeanWhatTheyMeanAtEachStep) {
  // A cifs mount refuses a write-open of a file a Windows client holds.
  EXPECT_EQ(Outcome::Held, qt::lock_file::platform::OutcomeFromOsError(EBUSY, Step::Open));
  EXPECT_EQ(Outcome::Failed, qt::lock_file::platform::OutcomeFromOsError(EACCES, Step::Open));
  EXPECT_EQ(Outcome::Held, qt::lock_file::platform::OutcomeFromOsError(EACCES, Step::Lock));
  EXPECT_EQ(Outcome::Held, qt::lock_file::platform::OutcomeFromOsError(EAGAIN, Step::Lock));
  EXPECT_EQ(Outcome::Unsupported, qt::lock_file::platform::OutcomeFromOsError(ENOLCK, Step::Lock));
  EXPECT_EQ(Outcome::Missing, qt::lock_file::platform::OutcomeFromOsError(ENOENT, Step::Open));
}

QT_TEST_CHILD(idle_until_told) {
  std::printf("ready\n");
  std::fflush(stdout);
  char line[16];
  return std::fgets(line, sizeof line, stdin) ? 0 : 1;
}

TEST(PlainLockPosix, ProgramsStartedByTheHolderDoNotInheritTheLock) {
  qt_test::TempDir dir;
  const std::wstring path = qt_test::Widen(dir.file("plant.lkh"));
  gwflocktype first;
  gwflock_init(&first);
  ASSERT_EQ(0, gwflock_lockw(nullptr, &first, path.c_str(), L"first", nullptr, 0));
  qt_test::ChildProcess child;
  ASSERT_TRUE(child.start("idle_until_told"));
  ASSERT_EQ("ready", child.readLine());

  // The holder's descriptor goes as a crash would take it, file left behind;
  // an inherited copy in the child would keep the lock alive.
  close(static_cast<int>(reinterpret_cast<intptr_t>(first.handle)));
  gwflocktype second;
  gwflock_init(&second);
  EXPECT_EQ(0, gwflock_lockw(nullptr, &second, path.c_str(), L"second", nullptr, 0));
  gwflock_unlock(&second);
  child.writeLine("done");
  EXPECT_EQ(0, child.wait());
}

// Tries the lock as the unprivileged account 65534 and prints the result
// and the holder's name. Args: lock file.
QT_TEST_CHILD(lock_as_other_account) {
  if (setgid(65534) != 0 || setuid(65534) != 0) return 5;
  gwflocktype lock;
  gwflock_init(&lock);
  wchar_t by[GWFLOCK_NAME_SIZE];
  const int result = gwflock_lockw(nullptr, &lock, qt_test::Widen(args.at(0)).c_str(), L"other", by, 0);
  std::printf("%d %s\n", result, qt_test::Narrow(by).c_str());
  gwflock_unlock(&lock);
  return 0;
}

TEST(PlainLockPosix, AnotherAccountReclaimsAnUnwritableLeftoverButNotAHeldLock) {
  if (geteuid() != 0) GTEST_SKIP() << "acting as a second account needs root";
  qt_test::TempDir dir;
  ASSERT_EQ(0, chmod(dir.path().c_str(), 0777));
  const std::string path = dir.file("plant.lkh");
  gwflocktype mine;
  gwflock_init(&mine);
  ASSERT_EQ(0, gwflock_lockw(nullptr, &mine, qt_test::Widen(path).c_str(), L"root holder", nullptr, 0));
  ASSERT_EQ(0, chmod(path.c_str(), 0644));
  {
    qt_test::ChildProcess other;
    ASSERT_TRUE(other.start("lock_as_other_account", {path}));
    EXPECT_EQ("-2 root holder", other.readLine());
    EXPECT_EQ(0, other.wait());
  }
  // Ended without unlocking: the file stays, owned by root and read-only to
  // the other account.
  close(static_cast<int>(reinterpret_cast<intptr_t>(mine.handle)));
  qt_test::ChildProcess other;
  ASSERT_TRUE(other.start("lock_as_other_account", {path}));
  EXPECT_EQ("0 ", other.readLine());
  EXPECT_EQ(0, other.wait());
  struct stat st;
  EXPECT_NE(0, stat(path.c_str(), &st));  // released by its new holder
}

namespace {

// Puts `bytes` as the whole content of a lock file this process holds,
// through a second descriptor (the lock does not keep writers out).
void Overwrite(const std::string& path, const std::string& bytes) {
  FILE* f = std::fopen(path.c_str(), "r+b");
  ASSERT_NE(nullptr, f);
  ASSERT_EQ(0, ftruncate(fileno(f), 0));
  ASSERT_EQ(bytes.size(), std::fwrite(bytes.data(), 1, bytes.size(), f));
  std::fclose(f);
}

}  // namespace

TEST(PlainLockPosix, AHeldLockFileOfOtherBytesIsUnreadableNotAName) {
  qt_test::TempDir dir;
  const std::string path = dir.file("plant.lkh");
  gwflocktype held;
  gwflock_init(&held);
  ASSERT_EQ(0, gwflock_lockw(nullptr, &held, qt_test::Widen(path).c_str(), L"holder", nullptr, 0));
  for (const std::string& bytes : files_test::ForeignLockContents()) {
    Overwrite(path, bytes);
    files_test::RecordingPresenter boxes;
    gwflocktype other;
    gwflock_init(&other);
    wchar_t by[GWFLOCK_NAME_SIZE] = L"x";
    EXPECT_EQ(-3, gwflock_lockw(nullptr, &other, qt_test::Widen(path).c_str(), L"me", by, 1)) << bytes.size();
    EXPECT_EQ(L"", std::wstring(by));
    ASSERT_EQ(1u, boxes.shown.size());
    EXPECT_EQ("I/O - error", boxes.shown[0].textA);
    ustr holder(L"x");
    EXPECT_EQ(QT_LOCK_FILE_UNKNOWN, qt_inspect_lock_file(qt_test::Widen(path).c_str(), &holder));
    EXPECT_TRUE(holder.empty());
  }
  // A holder that has not written its name yet names nobody.
  Overwrite(path, "");
  gwflocktype other;
  gwflock_init(&other);
  wchar_t by[GWFLOCK_NAME_SIZE] = L"x";
  EXPECT_EQ(-2, gwflock_lockw(nullptr, &other, qt_test::Widen(path).c_str(), L"me", by, 0));
  EXPECT_EQ(L"", std::wstring(by));
  gwflock_unlock(&held);
}

// Prints what the unprivileged account 65534 is told of a lock file: the
// inspection's state and holder, then gwflock_lockw's result. Args: file.
QT_TEST_CHILD(inspect_and_lock_as_other_account) {
  if (setgid(65534) != 0 || setuid(65534) != 0) return 5;
  const std::wstring file = qt_test::Widen(args.at(0));
  ustr holder;
  const int state = qt_inspect_lock_file(file.c_str(), &holder);
  gwflocktype lock;
  gwflock_init(&lock);
  const int result = gwflock_lockw(nullptr, &lock, file.c_str(), L"other", nullptr, 0);
  gwflock_unlock(&lock);
  std::printf("%d %s %d\n", state, qt_test::Narrow(holder.str()).c_str(), result);
  return 0;
}

TEST(PlainLockPosix, AnotherAccountsLeftoverInAStickyFolderIsOneAnswerEverywhere) {
  if (geteuid() != 0) GTEST_SKIP() << "acting as a second account needs root";
  qt_test::TempDir dir;
  ASSERT_EQ(0, chmod(dir.path().c_str(), 01777));  // like /tmp
  const std::string path = dir.file("plant.lkh");
  gwflocktype mine;
  gwflock_init(&mine);
  ASSERT_EQ(0, gwflock_lockw(nullptr, &mine, qt_test::Widen(path).c_str(), L"Root", nullptr, 0));
  ASSERT_EQ(0, chmod(path.c_str(), 0644));
  {
    qt_test::ChildProcess other;
    ASSERT_TRUE(other.start("inspect_and_lock_as_other_account", {path}));
    EXPECT_EQ(std::to_string(QT_LOCK_FILE_HELD) + " Root -2", other.readLine());
    EXPECT_EQ(0, other.wait());
  }
  // Its program ended: nobody holds the lock, and the other account may
  // neither write the file nor remove it. Not held, and not lockable by it.
  close(static_cast<int>(reinterpret_cast<intptr_t>(mine.handle)));
  qt_test::ChildProcess other;
  ASSERT_TRUE(other.start("inspect_and_lock_as_other_account", {path}));
  EXPECT_EQ(std::to_string(QT_LOCK_FILE_LEFT_BEHIND_FOREIGN) + " Root -1", other.readLine());
  EXPECT_EQ(0, other.wait());
  EXPECT_EQ(QT_LOCK_FILE_LEFT_BEHIND, qt_inspect_lock_file(qt_test::Widen(path).c_str(), nullptr));
  struct stat st;
  EXPECT_EQ(0, stat(path.c_str(), &st));
}
