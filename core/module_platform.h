// Loaded modules: finding one by name and telling its file name
// (module_platform_win.cpp / module_platform_posix.cpp).
#ifndef QUILTOOL_CORE_MODULE_PLATFORM_H
#define QUILTOOL_CORE_MODULE_PLATFORM_H

#include <string>

#include "gwframe.h"

namespace qt {
namespace module {
namespace platform {

// Full file name of a loaded module; false when the platform cannot tell.
// Windows: GetModuleFileNameW. Linux: the module's link map, which must be
// one of the process's own (a stray pointer is never looked into); the
// main program's map has no name, so /proc/self/exe answers for it.
bool ModuleFileName(HMODULE module, std::wstring* name);
// A loaded module by file name, null when none. Windows: GetModuleHandleW.
// Linux: dlopen(RTLD_NOLOAD), the reference it counts given back at once.
HMODULE LoadedModule(const wchar_t* name);
// Directory separator of module file names: '\\' on Windows, '/' on Linux.
wchar_t PathSeparator();

}  // namespace platform
}  // namespace module
}  // namespace qt

#endif
