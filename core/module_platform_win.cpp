#include <windows.h>

#include "core/module_platform.h"

namespace qt {
namespace module {
namespace platform {

bool ModuleFileName(HMODULE module, std::wstring* name) {
  wchar_t buffer[MAX_PATH];
  const DWORD n = GetModuleFileNameW(module, buffer, MAX_PATH);
  if (n == 0) return false;
  name->assign(buffer, n);
  return true;
}

HMODULE LoadedModule(const wchar_t* name) { return GetModuleHandleW(name); }

wchar_t PathSeparator() { return L'\\'; }

}  // namespace platform
}  // namespace module
}  // namespace qt
