// Shared by the settings tests: an application key of its own for each
// test (all Windows test processes of a run share one registry), removed
// afterwards, and raw looks at stored values that bypass the readers.
#ifndef QUILTOOL_SETTINGS_REG_TEST_UTIL_H
#define QUILTOOL_SETTINGS_REG_TEST_UTIL_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Registry.h"
#include "qt_test.h"
#include "settings/regstore.h"

namespace reg_test {

struct Raw {
  long rc = -1;
  DWORD type = 0;
  std::vector<BYTE> data;
};

// The stored value straight from the store (RegQueryValueExW on Windows).
inline Raw ReadRaw(HKEY root, const std::wstring& key, const std::wstring& name) {
  Raw raw;
  HKEY k = nullptr;
  raw.rc = qt_reg::OpenKey(root, key.c_str(), qt_reg::kKeyQueryValue, &k);
  if (raw.rc != qt_reg::kOk) return raw;
  raw.rc = qt_reg::ReadValue(k, name.c_str(), &raw.type, &raw.data);
  qt_reg::CloseKey(k);
  return raw;
}

inline long WriteRaw(HKEY root, const std::wstring& key, const std::wstring& name, DWORD type,
                     const std::vector<BYTE>& data) {
  HKEY k = nullptr;
  long rc = qt_reg::CreateKey(root, key.c_str(), qt_reg::kKeyAllAccess, &k);
  if (rc != qt_reg::kOk) return rc;
  rc = qt_reg::SetValueExact(k, name.c_str(), type, data.data(), static_cast<DWORD>(data.size()));
  qt_reg::CloseKey(k);
  return rc;
}

inline bool KeyExists(HKEY root, const std::wstring& key) {
  HKEY k = nullptr;
  if (qt_reg::OpenKey(root, key.c_str(), qt_reg::kKeyQueryValue, &k) != qt_reg::kOk) return false;
  qt_reg::CloseKey(k);
  return true;
}

inline std::vector<BYTE> Utf16(const std::wstring& text, bool terminator) { return qt_reg::ToUtf16Bytes(text, terminator); }

// Each test gets "Software\<unique company>\App\1.0\" as its application
// key and loses the company key, under both roots, when it ends.
class AppKeyTest : public ::testing::Test {
 protected:
  void SetUp() override {
    company_ = qt_test::Widen(qt_test::UniqueName("QtRegTest"));
    base_ = L"Software\\" + company_ + L"\\App\\1.0";
    RegInt_Init(company_.c_str(), L"App", L"1.0");
  }
  void TearDown() override {
    const std::wstring top = L"Software\\" + company_;
    qt_reg::DeleteTree(HKEY_CURRENT_USER, top.c_str());
    qt_reg::DeleteTree(HKEY_LOCAL_MACHINE, top.c_str());
  }
  // A path below the application key, for raw looks.
  std::wstring under(const std::wstring& rest) const { return rest.empty() ? base_ : base_ + L"\\" + rest; }

  std::wstring company_;
  std::wstring base_;
};

// Gives this process roots of its own, for tests of the fixed suite-wide
// keys: Windows maps both predefined roots onto private keys below
// "HKCU\<scratch>", Linux points the store folders at a fresh folder.
// Call in a child process before anything touches the settings.
bool IsolateRoots(const std::string& scratch);
// Removes what IsolateRoots left behind (from the parent).
void RemoveIsolatedRoots(const std::string& scratch);

}  // namespace reg_test

#endif
