// Linux: whose file a replacement may touch, and what it keeps of the old
// file.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "core/fs.h"
#include "core/fs_platform.h"
#include "qt_test.h"

namespace {

using qt::fs::FsError;

// Replaces the file as the unprivileged account 65534 and prints the error
// number. Args: file.
QT_TEST_CHILD(fs_replace_as_other_account) {
  if (setgid(65534) != 0 || setuid(65534) != 0) return 5;
  std::printf("%d\n", static_cast<int>(qt::fs::ReplaceWholeFile(qt_test::Widen(args.at(0)), std::string("theirs"))));
  return 0;
}

TEST(FsPosix, AnotherAccountCannotReplaceAFileItMayNotWriteInAFolderItMay) {
  if (geteuid() != 0) GTEST_SKIP() << "acting as a second account needs root";
  qt_test::TempDir dir;
  // Not sticky: the folder alone would let anybody rename over the file.
  ASSERT_EQ(0, chmod(dir.path().c_str(), 0777));
  const std::string path = dir.file("de.qlg");
  ASSERT_EQ(FsError::kOk, qt::fs::ReplaceWholeFile(qt_test::Widen(path), std::string("root's")));
  ASSERT_EQ(0, chmod(path.c_str(), 0644));
  qt_test::ChildProcess other;
  ASSERT_TRUE(other.start("fs_replace_as_other_account", {path}));
  EXPECT_EQ(std::to_string(static_cast<int>(FsError::kAccessDenied)), other.readLine());
  EXPECT_EQ(0, other.wait());
  struct stat st;
  ASSERT_EQ(0, stat(path.c_str(), &st));
  EXPECT_EQ(0u, st.st_uid);
  EXPECT_EQ("root's", qt_test::ReadFileBytes(path));

  // A file it may write it replaces, and the file stays its owner's.
  const std::string shared = dir.file("shared.qlg");
  ASSERT_EQ(FsError::kOk, qt::fs::ReplaceWholeFile(qt_test::Widen(shared), std::string("root's")));
  ASSERT_EQ(0, chmod(shared.c_str(), 0666));
  qt_test::ChildProcess writer;
  ASSERT_TRUE(writer.start("fs_replace_as_other_account", {shared}));
  EXPECT_EQ("0", writer.readLine());
  EXPECT_EQ(0, writer.wait());
  EXPECT_EQ("theirs", qt_test::ReadFileBytes(shared));
  ASSERT_EQ(0, stat(shared.c_str(), &st));
  EXPECT_EQ(0666u, st.st_mode & 07777);
}

TEST(FsPosix, TheNewFileKeepsTheOldOnesModeAndOwner) {
  qt_test::TempDir dir;
  const std::string path = dir.file("kept.bin");
  const std::wstring wide = qt_test::Widen(path);
  ASSERT_EQ(FsError::kOk, qt::fs::ReplaceWholeFile(wide, std::string("1")));
  ASSERT_EQ(0, chmod(path.c_str(), 0640));
  const bool root = geteuid() == 0;
  if (root) {
    ASSERT_EQ(0, chown(path.c_str(), 65534, 65534));
  }
  ASSERT_EQ(FsError::kOk, qt::fs::ReplaceWholeFile(wide, std::string("2")));
  struct stat st;
  ASSERT_EQ(0, stat(path.c_str(), &st));
  EXPECT_EQ(0640u, st.st_mode & 07777);
  if (root) {
    EXPECT_EQ(65534u, st.st_uid);
    EXPECT_EQ(65534u, st.st_gid);
  }
  EXPECT_EQ("2", qt_test::ReadFileBytes(path));
}

TEST(FsPosix, SystemErrorsBecomeTheirReasons) {
  using qt::fs::platform::FromOsError;
  EXPECT_EQ(FsError::kNotFound, FromOsError(ENOENT));
  EXPECT_EQ(FsError::kNotFound, FromOsError(ENOTDIR));
  EXPECT_EQ(FsError::kAccessDenied, FromOsError(EACCES));
  EXPECT_EQ(FsError::kAccessDenied, FromOsError(EROFS));
  EXPECT_EQ(FsError::kIsDirectory, FromOsError(EISDIR));
  EXPECT_EQ(FsError::kBusy, FromOsError(ETXTBSY));
  EXPECT_EQ(FsError::kNoSpace, FromOsError(ENOSPC));
  EXPECT_EQ(FsError::kNoSpace, FromOsError(EDQUOT));
  EXPECT_EQ(FsError::kTooLarge, FromOsError(EFBIG));
  EXPECT_EQ(FsError::kInvalidName, FromOsError(ENAMETOOLONG));
  EXPECT_EQ(FsError::kIo, FromOsError(EIO));
}

TEST(FsPosix, AFifoIsNotReadAsAFile) {
  qt_test::TempDir dir;
  const std::string path = dir.file("pipe");
  ASSERT_EQ(0, mkfifo(path.c_str(), 0600));
  std::string bytes;
  EXPECT_EQ(FsError::kInvalidName, qt::fs::ReadWholeFile(qt_test::Widen(path), &bytes));
  EXPECT_EQ(qt::fs::Kind::kOther, qt::fs::KindOf(qt_test::Widen(path)));
  ASSERT_EQ(0, symlink((dir.path() + "/nowhere").c_str(), dir.file("dangling").c_str()));
  EXPECT_TRUE(qt::fs::Exists(qt_test::Widen(dir.file("dangling"))));
}

}  // namespace
