// The names a module file of this platform exports, read from the file
// without loading it (module_exports_platform_win.cpp / _posix.cpp).
#ifndef QUILTOOL_TOOLS_MODULE_EXPORTS_PLATFORM_H
#define QUILTOOL_TOOLS_MODULE_EXPORTS_PLATFORM_H

#include <string>
#include <vector>

namespace qt {
namespace module_exports {
namespace platform {

// The exported names of the module file at utf8Path. Windows maps the file
// read-only as data and reads its PE32+ export table; Linux reads the
// defined, visible dynamic symbols of an x86-64 ELF shared object. False,
// with a reason in problem, when the file cannot be opened or is not a
// module of this platform.
bool ReadExportNames(const std::string& utf8Path, std::vector<std::string>& names, std::string& problem);

}  // namespace platform
}  // namespace module_exports
}  // namespace qt

#endif
