#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "files/lock_file.h"
#include "gwflock.h"
#include "qt_test.h"

using qt::lockfile::Outcome;
using qt::lockfile::Step;

TEST(PlainLockPosix, ErrorsMeanWhatTheyMeanAtEachStep) {
  // A cifs mount refuses a write-open of a file a Windows client holds.
  EXPECT_EQ(Outcome::Held, qt::lockfile::OutcomeFromOsError(EBUSY, Step::Open));
  EXPECT_EQ(Outcome::Failed, qt::lockfile::OutcomeFromOsError(EACCES, Step::Open));
  EXPECT_EQ(Outcome::Held, qt::lockfile::OutcomeFromOsError(EACCES, Step::Lock));
  EXPECT_EQ(Outcome::Held, qt::lockfile::OutcomeFromOsError(EAGAIN, Step::Lock));
  EXPECT_EQ(Outcome::Unsupported, qt::lockfile::OutcomeFromOsError(ENOLCK, Step::Lock));
  EXPECT_EQ(Outcome::Missing, qt::lockfile::OutcomeFromOsError(ENOENT, Step::Open));
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
