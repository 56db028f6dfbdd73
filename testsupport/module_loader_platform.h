// Loading and releasing modules in tests, which the library itself never
// does (module_loader_platform_win.cpp / module_loader_platform_posix.cpp).
#ifndef QUILTOOL_TESTSUPPORT_MODULE_LOADER_PLATFORM_H
#define QUILTOOL_TESTSUPPORT_MODULE_LOADER_PLATFORM_H

#include <string>

namespace qt_test {
namespace module_loader {
namespace platform {

// Loads the module file; null when it cannot. Windows: LoadLibraryW.
// Linux: dlopen(RTLD_NOW | RTLD_LOCAL).
void* Load(const std::wstring& path);
// Gives back the reference Load took. Windows: FreeLibrary. Linux: dlclose.
void Release(void* module);
// An export of a module loaded by Load, null when missing.
void* Find(void* module, const char* name);
// Directory separator of file names.
wchar_t Separator();

}  // namespace platform
}  // namespace module_loader
}  // namespace qt_test

#endif
