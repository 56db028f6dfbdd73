// Values every module of the suite shares, under "Software\Velmora\Quillon".
#include "Registry.h"
#include "gwframe.h"
#include "settings/reg_internal.h"

namespace QnRegistry {

namespace {

// Font names fall from the application's own choice to the machine's and
// then to a face every Windows installation has.
const wchar_t* FontName(wchar_t* buffer, const wchar_t* applicationPath, const wchar_t* machinePath,
                        const wchar_t* fallback) {
  wchar_t empty[1] = {0};
  QN_wcscpy_s(buffer, qt_registry::kFontChars, Registry::GetStringAtt(nullptr, applicationPath, empty));
  if (!buffer[0]) QN_wcscpy_s(buffer, qt_registry::kFontChars, Registry::GetStringAtt(HKEY_LOCAL_MACHINE, machinePath, empty));
  if (!buffer[0]) QN_wcscpy_s(buffer, qt_registry::kFontChars, fallback);
  return buffer;
}

}  // namespace

int GetActiveLanguageId() {
  // 0 under the user means "not chosen"; then the installation decides.
  const int id = Registry::GetIntAtt(HKEY_CURRENT_USER, L"Software\\Velmora\\Quillon\\InterfaceLng", 0);
  if (id != 0) return id;
  return Registry::GetIntAtt(HKEY_LOCAL_MACHINE, L"Software\\Velmora\\Quillon\\InterfaceLng", 1512);
}

const wchar_t* GetLocalDataDir() {
  static wchar_t empty[1] = {0};
  empty[0] = 0;
  const wchar_t* dir = Registry::GetStringAtt(HKEY_CURRENT_USER, L"Software\\Velmora\\Quillon\\LocalDataFolder", empty);
  if (dir && dir[0]) return dir;
  return Registry::GetStringAtt(HKEY_LOCAL_MACHINE, L"Software\\Velmora\\Quillon\\LocalDataFolder", empty);
}

const wchar_t* GetFixedFontName() {
  return FontName(qt_registry::Reg().fixedFont, L"Language/FixedFontName", L"Software\\Velmora\\Quillon\\FixedFontName",
                  L"Lucida Sans Typewriter");
}

const wchar_t* GetVariableFontName() {
  return FontName(qt_registry::Reg().variableFont, L"Language/VariableFontName",
                  L"Software\\Velmora\\Quillon\\VariableFontName", L"Microsoft Sans Serif");
}

}  // namespace QnRegistry
