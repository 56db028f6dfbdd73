// The suite-wide values sit under one fixed key that every test process
// would share, so they are checked in a child with roots of its own.
#include <gtest/gtest.h>

#include <string>

#include "Registry.h"
#include "settings/reg_test_util.h"

namespace {

using reg_test::Utf16;
using reg_test::WriteRaw;

const wchar_t kSuite[] = L"Software\\Velmora\\Quillon";

std::vector<BYTE> Dword(unsigned v) {
  return {static_cast<BYTE>(v), static_cast<BYTE>(v >> 8), static_cast<BYTE>(v >> 16), static_cast<BYTE>(v >> 24)};
}

#define CHILD_EXPECT(condition, code) \
  if (!(condition)) return code

QT_TEST_CHILD(qnregistry_checks) {
  if (args.empty() || !reg_test::IsolateRoots(args[0])) return 100;
  RegInt_Init(L"Suite", L"Check", L"1");

  CHILD_EXPECT(QnRegistry::GetActiveLanguageId() == 1512, 1);
  WriteRaw(HKEY_LOCAL_MACHINE, kSuite, L"InterfaceLng", REG_DWORD, Dword(1031));
  CHILD_EXPECT(QnRegistry::GetActiveLanguageId() == 1031, 2);
  WriteRaw(HKEY_CURRENT_USER, kSuite, L"InterfaceLng", REG_DWORD, Dword(0));
  CHILD_EXPECT(QnRegistry::GetActiveLanguageId() == 1031, 3);  // 0 means "not chosen"
  WriteRaw(HKEY_CURRENT_USER, kSuite, L"InterfaceLng", REG_DWORD, Dword(1036));
  CHILD_EXPECT(QnRegistry::GetActiveLanguageId() == 1036, 4);

  CHILD_EXPECT(std::wstring(QnRegistry::GetLocalDataDir()).empty(), 10);
  WriteRaw(HKEY_LOCAL_MACHINE, kSuite, L"LocalDataFolder", REG_SZ, Utf16(L"D:\\Machine", true));
  CHILD_EXPECT(std::wstring(QnRegistry::GetLocalDataDir()) == L"D:\\Machine", 11);
  WriteRaw(HKEY_CURRENT_USER, kSuite, L"LocalDataFolder", REG_SZ, Utf16(L"", true));
  CHILD_EXPECT(std::wstring(QnRegistry::GetLocalDataDir()) == L"D:\\Machine", 12);  // empty falls through
  WriteRaw(HKEY_CURRENT_USER, kSuite, L"LocalDataFolder", REG_SZ, Utf16(L"C:\\User", false));
  CHILD_EXPECT(std::wstring(QnRegistry::GetLocalDataDir()) == L"C:\\User", 13);

  const wchar_t* fixed = QnRegistry::GetFixedFontName();
  CHILD_EXPECT(std::wstring(fixed) == L"Lucida Sans Typewriter", 20);
  CHILD_EXPECT(std::wstring(QnRegistry::GetVariableFontName()) == L"Microsoft Sans Serif", 21);
  // The user's suite key plays no part in the fonts: the machine's does.
  WriteRaw(HKEY_CURRENT_USER, kSuite, L"FixedFontName", REG_SZ, Utf16(L"UserFont", true));
  CHILD_EXPECT(std::wstring(QnRegistry::GetFixedFontName()) == L"Lucida Sans Typewriter", 22);
  WriteRaw(HKEY_LOCAL_MACHINE, kSuite, L"FixedFontName", REG_SZ, Utf16(L"Consolas", true));
  CHILD_EXPECT(std::wstring(QnRegistry::GetFixedFontName()) == L"Consolas", 23);
  CHILD_EXPECT(Registry::SetStringAtt(nullptr, L"Language/FixedFontName", L"Courier New"), 24);
  CHILD_EXPECT(std::wstring(QnRegistry::GetFixedFontName()) == L"Courier New", 25);
  CHILD_EXPECT(QnRegistry::GetFixedFontName() == fixed, 26);  // one buffer, always the same
  CHILD_EXPECT(Registry::SetStringAtt(nullptr, L"Language/VariableFontName", std::wstring(200, L'f').c_str()), 27);
  CHILD_EXPECT(std::wstring(QnRegistry::GetVariableFontName()) == std::wstring(127, L'f'), 28);
  return 0;
}

TEST(SuiteValues, FallFromUserToMachineToTheBuiltInDefaults) {
  const std::string scratch = qt_test::UniqueName("QtSuiteRoots");
  EXPECT_EQ(qt_test::RunChild("qnregistry_checks", {scratch}), 0) << "the child's code names the failed check";
  reg_test::RemoveIsolatedRoots(scratch);
}

}  // namespace
