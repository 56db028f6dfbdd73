// Module directories: the library's own, by handle and by name, with tails.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "gwframe.h"
#include "qt_test.h"

namespace {

const wchar_t kSep = static_cast<wchar_t>(std::filesystem::path::preferred_separator);

std::wstring LibraryDirectory() {
  ustr dir;
  EXPECT_EQ(0, GetModuleDirectory(static_cast<HMODULE>(nullptr), dir));
  return dir.str();
}

}  // namespace

TEST(ModuleDirectory, NullModuleIsTheLibraryItself) {
  const std::wstring dir = LibraryDirectory();
  ASSERT_FALSE(dir.empty());
  EXPECT_NE(kSep, dir.back());
  const std::wstring library = dir + kSep + qt_test::Widen(QT_TEST_LIBRARY_FILE);
  EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(library))) << qt_test::Narrow(library);

  // By name: the library's file name finds it; a name that is not loaded
  // falls back to the library as well.
  ustr byName;
  EXPECT_EQ(0, GetModuleDirectory(qt_test::Widen(QT_TEST_LIBRARY_FILE).c_str(), nullptr, byName));
  EXPECT_EQ(dir, byName.str());
  ustr unknown;
  EXPECT_EQ(0, GetModuleDirectory(L"NoSuchModule_r24x64.arx", nullptr, unknown));
  EXPECT_EQ(dir, unknown.str());
}

TEST(ModuleDirectory, TailIsAppendedAsItStands) {
  const std::wstring dir = LibraryDirectory();
  wchar_t buffer[600];
  EXPECT_EQ(0, GetModuleDirectory(static_cast<HMODULE>(nullptr), L"\\QuilQlg.ddq", buffer, 600));
  EXPECT_EQ(dir + L"\\QuilQlg.ddq", buffer);
  EXPECT_EQ(0, GetModuleDirectory(static_cast<HMODULE>(nullptr), L"", buffer, 600));
  EXPECT_EQ(dir, buffer);
  ustr withTail;
  EXPECT_EQ(0, GetModuleDirectory(static_cast<HMODULE>(nullptr), L"\\x", withTail));
  EXPECT_EQ(dir + L"\\x", withTail.str());

  // A small buffer takes what fits; the tail then does not fit either.
  wchar_t small[5];
  EXPECT_EQ(0, GetModuleDirectory(static_cast<HMODULE>(nullptr), L"\\tail", small, 5));
  EXPECT_EQ(dir.substr(0, 4), small);
}

TEST(ModuleDirectory, AModuleThatIsNotLoadedFailsAndKeepsTheResult) {
  int notAModule = 0;
  HMODULE bogus = reinterpret_cast<HMODULE>(&notAModule);
  wchar_t buffer[16] = L"untouched";
  EXPECT_EQ(-1, GetModuleDirectory(bogus, buffer, 16));
  EXPECT_EQ(std::wstring(L"untouched"), buffer);
  ustr kept(L"kept");
  EXPECT_EQ(-1, GetModuleDirectory(bogus, L"\\x", kept));
  EXPECT_EQ(L"kept", kept);
}
