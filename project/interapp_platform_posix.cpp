#include "project/interapp_platform.h"

#include <dlfcn.h>

#include "core/module_platform.h"

namespace qt {
namespace interapp {
namespace platform {

namespace {

void* LoadedModule(const wchar_t* fileName, bool wideName) {
  (void)wideName;
  return qt::module::platform::LoadedModule(fileName);
}

void* FindExport(void* module, const char* exportName) { return dlsym(module, exportName); }

}  // namespace

const Calls& SystemCalls() {
  static const Calls calls = {&LoadedModule, &FindExport};
  return calls;
}

}  // namespace platform
}  // namespace interapp
}  // namespace qt
