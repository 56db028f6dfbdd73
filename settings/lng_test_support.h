// Shared pieces of the language tests: language files in a private folder
// and an application key of their own for the developer switches.
#ifndef QUILTOOL_SETTINGS_LNG_TEST_SUPPORT_H
#define QUILTOOL_SETTINGS_LNG_TEST_SUPPORT_H

#include <cstdio>
#include <string>

#include "Registry.h"
#include "settings/lng_internal.h"
#include "testsupport/qt_test.h"

namespace lng_test {

const char kDefinition[] =
    "qlgdef 1\n"
    "source 1512\n"
    "language 1512 en \"English\"\n"
    "language 1513 de \"German\"\n"
    "language 1515 fr \"French\"\n";

inline bool WriteText(const std::string& path, const std::string& bytes) {
  FILE* f = std::fopen(path.c_str(), "wb");
  if (!f) return false;
  const bool ok = std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
  return std::fclose(f) == 0 && ok;
}

// Lng::init reads from a private folder for the object's life; the
// language state starts and ends as at load.
class LanguageFolder {
 public:
  LanguageFolder() {
    qt_lng_reset();
    qt_lng_set_folder(dir_.wpath().c_str());
    WriteText(dir_.file("QuilQlg.ddq"), kDefinition);
  }
  ~LanguageFolder() {
    qt_lng_set_folder(nullptr);
    qt_lng_reset();
  }
  bool write(const std::string& name, const std::string& bytes) { return WriteText(dir_.file(name), bytes); }
  const qt_test::TempDir& dir() const { return dir_; }

 private:
  qt_test::TempDir dir_;
};

// An application key of this object's own, so that the developer switches
// of parallel test programs (one shared registry under Wine) never meet.
class AppKey {
 public:
  AppKey() : app_(qt_test::Widen(qt_test::UniqueName("lng"))) {
    RegInt_Init(L"QuilToolTests", app_.c_str(), L"1");
  }
  ~AppKey() {
    Registry::DeleteAtt(nullptr, L"Developer/ShowStringIDs");
    Registry::DeleteAtt(nullptr, L"Developer/ShowControlIDs");
    const std::wstring base = L"Software\\QuilToolTests\\" + app_;
    Registry::DeleteKey(HKEY_CURRENT_USER, (base + L"\\1\\Developer\\").c_str());
    Registry::DeleteKey(HKEY_CURRENT_USER, (base + L"\\1\\").c_str());
    Registry::DeleteKey(HKEY_CURRENT_USER, (base + L"\\").c_str());
  }
  void set(const wchar_t* path, const wchar_t* value) { Registry::SetStringAtt(nullptr, path, value); }
  const std::wstring& app() const { return app_; }

 private:
  std::wstring app_;
};

}  // namespace lng_test

#endif
