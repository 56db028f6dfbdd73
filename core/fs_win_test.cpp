// Windows: read-only files and the translation of system errors.
#include <gtest/gtest.h>
#include <windows.h>

#include "core/fs.h"
#include "core/fs_platform.h"
#include "qt_test.h"

namespace {

using qt::fs::FsError;

TEST(FsWin, AReadOnlyFileIsNotReplaced) {
  qt_test::TempDir dir;
  const std::wstring path = dir.wfile("ro.qlg");
  ASSERT_EQ(FsError::kOk, qt::fs::ReplaceWholeFile(path, std::string("old")));
  ASSERT_TRUE(SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY));
  EXPECT_EQ(FsError::kAccessDenied, qt::fs::ReplaceWholeFile(path, std::string("new")));
  std::string bytes;
  EXPECT_EQ(FsError::kOk, qt::fs::ReadWholeFile(path, &bytes));
  EXPECT_EQ("old", bytes);
  SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST(FsWin, AFileHeldWithoutSharingIsBusy) {
  qt_test::TempDir dir;
  const std::wstring path = dir.wfile("held.bin");
  ASSERT_EQ(FsError::kOk, qt::fs::ReplaceWholeFile(path, std::string("old")));
  HANDLE h = CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(INVALID_HANDLE_VALUE, h);
  EXPECT_EQ(FsError::kBusy, qt::fs::ReplaceWholeFile(path, std::string("new")));
  CloseHandle(h);
  std::string bytes;
  EXPECT_EQ(FsError::kOk, qt::fs::ReadWholeFile(path, &bytes));
  EXPECT_EQ("old", bytes);
}

TEST(FsWin, SystemErrorsBecomeTheirReasons) {
  using qt::fs::platform::FromOsError;
  EXPECT_EQ(FsError::kNotFound, FromOsError(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(FsError::kNotFound, FromOsError(ERROR_PATH_NOT_FOUND));
  EXPECT_EQ(FsError::kAccessDenied, FromOsError(ERROR_ACCESS_DENIED));
  EXPECT_EQ(FsError::kBusy, FromOsError(ERROR_SHARING_VIOLATION));
  EXPECT_EQ(FsError::kNoSpace, FromOsError(ERROR_DISK_FULL));
  EXPECT_EQ(FsError::kInvalidName, FromOsError(ERROR_INVALID_NAME));
  EXPECT_EQ(FsError::kIo, FromOsError(ERROR_CRC));
}

}  // namespace
