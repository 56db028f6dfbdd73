#include "module_loader_platform.h"

#include <windows.h>

namespace qt_test {
namespace module_loader {
namespace platform {

void* Load(const std::wstring& path) { return LoadLibraryW(path.c_str()); }

void Release(void* module) { FreeLibrary(static_cast<HMODULE>(module)); }

void* Find(void* module, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module), name));
}

wchar_t Separator() { return L'\\'; }

}  // namespace platform
}  // namespace module_loader
}  // namespace qt_test
