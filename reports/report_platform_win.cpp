#include "reports/report_platform.h"

#include <commdlg.h>
#include <shellapi.h>

#include <cstdlib>
#include <vector>

#include "core/frame_state.h"

namespace qt {
namespace report {
namespace platform {

namespace {

HWND ForegroundWindow() { return GetForegroundWindow(); }

bool AskSaveName(HWND owner, const std::wstring& filter, const std::wstring& defaultExtension, std::wstring* name) {
  // The dialog wants its filter pieces separated by zeros where the
  // language texts keep bars.
  std::wstring pieces = filter;
  for (wchar_t& c : pieces) {
    if (c == L'|') c = L'\0';
  }
  pieces.push_back(L'\0');
  std::wstring extension = defaultExtension;
  if (extension.compare(0, 2, L"*.") == 0) extension.erase(0, 2);
  std::vector<wchar_t> file(32768, L'\0');
  OPENFILENAMEW ofn = {};
  ofn.lStructSize = sizeof ofn;
  ofn.hwndOwner = owner;
  ofn.lpstrFilter = pieces.c_str();
  ofn.lpstrFile = file.data();
  ofn.nMaxFile = static_cast<DWORD>(file.size());
  ofn.lpstrDefExt = extension.empty() ? nullptr : extension.c_str();
  ofn.Flags = OFN_OVERWRITEPROMPT | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY | OFN_EXPLORER;
  if (!GetSaveFileNameW(&ofn)) return false;
  *name = file.data();
  return !name->empty();
}

void OpenText(const std::wstring& path) {
  ShellExecuteW(nullptr, L"open", path.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
}

void OpenSpreadsheet(const std::wstring& path) { _wsystem(SpreadsheetCommand(path).c_str()); }

bool LoadTemplate(std::string* bytes) {
  HMODULE module = qt::Frame().instance;
  HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(100), MAKEINTRESOURCEW(23));
  if (!found) return false;
  HGLOBAL loaded = LoadResource(module, found);
  const DWORD size = SizeofResource(module, found);
  const void* data = loaded ? LockResource(loaded) : nullptr;
  if (!data) return false;
  bytes->assign(static_cast<const char*>(data), size);
  return true;
}

}  // namespace

const Calls& SystemCalls() {
  static const Calls calls = {&ForegroundWindow, &AskSaveName, &OpenText, &OpenSpreadsheet, &LoadTemplate};
  return calls;
}

}  // namespace platform
}  // namespace report
}  // namespace qt
