#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "files/files_test_support.h"
#include "files/lock_inspect.h"
#include "gwflock.h"
#include "qt_test.h"

namespace {

// Puts `bytes` as the whole content of a lock file, through the holder's
// own handle (nobody else may write while it is held).
void Overwrite(HANDLE h, const std::string& bytes) {
  ASSERT_NE(INVALID_SET_FILE_POINTER, SetFilePointer(h, 0, nullptr, FILE_BEGIN));
  ASSERT_TRUE(SetEndOfFile(h));
  DWORD put = 0;
  ASSERT_TRUE(bytes.empty() || WriteFile(h, bytes.data(), static_cast<DWORD>(bytes.size()), &put, nullptr));
  ASSERT_EQ(bytes.size(), put);
}

}  // namespace

TEST(PlainLockWin, AHeldLockFileOfOtherBytesIsUnreadableNotAName) {
  qt_test::TempDir dir;
  const std::wstring path = dir.wfile("plant.lkh");
  gwflocktype held;
  gwflock_init(&held);
  ASSERT_EQ(0, gwflock_lockw(nullptr, &held, path.c_str(), L"holder", nullptr, 0));
  for (const std::string& bytes : files_test::ForeignLockContents()) {
    Overwrite(held.handle, bytes);
    files_test::RecordingPresenter boxes;
    gwflocktype other;
    gwflock_init(&other);
    wchar_t by[GWFLOCK_NAME_SIZE] = L"x";
    EXPECT_EQ(-3, gwflock_lockw(nullptr, &other, path.c_str(), L"me", by, 1)) << bytes.size();
    EXPECT_EQ(L"", std::wstring(by));
    ASSERT_EQ(1u, boxes.shown.size());
    EXPECT_EQ("I/O - error", boxes.shown[0].textA);
    EXPECT_EQ(QT_LOCK_FILE_UNKNOWN, qt_inspect_lock_file(path.c_str(), nullptr));
  }
  gwflock_unlock(&held);
}
