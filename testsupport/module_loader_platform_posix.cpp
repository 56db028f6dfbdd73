#include "module_loader_platform.h"

#include <dlfcn.h>

#include "qt_test.h"

namespace qt_test {
namespace module_loader {
namespace platform {

void* Load(const std::wstring& path) { return dlopen(Narrow(path).c_str(), RTLD_NOW | RTLD_LOCAL); }

void Release(void* module) { dlclose(module); }

void* Find(void* module, const char* name) { return dlsym(module, name); }

wchar_t Separator() { return L'/'; }

}  // namespace platform
}  // namespace module_loader
}  // namespace qt_test
