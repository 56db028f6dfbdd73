#include "settings/reg_test_util.h"

namespace reg_test {

bool IsolateRoots(const std::string& scratch) {
  const std::wstring base = L"Software\\" + qt_test::Widen(scratch);
  HKEY user = nullptr, machine = nullptr;
  if (RegCreateKeyExW(HKEY_CURRENT_USER, (base + L"\\hkcu").c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &user,
                      nullptr) != ERROR_SUCCESS ||
      RegCreateKeyExW(HKEY_CURRENT_USER, (base + L"\\hklm").c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &machine,
                      nullptr) != ERROR_SUCCESS)
    return false;
  return RegOverridePredefKey(HKEY_CURRENT_USER, user) == ERROR_SUCCESS &&
         RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine) == ERROR_SUCCESS;
}

void RemoveIsolatedRoots(const std::string& scratch) {
  RegDeleteTreeW(HKEY_CURRENT_USER, (L"Software\\" + qt_test::Widen(scratch)).c_str());
}

}  // namespace reg_test
