#include "project/interapp_platform.h"

#include "core/module_platform.h"
#include "qn_wintypes.h"
#include "ustr.h"

namespace qt {
namespace interapp {
namespace platform {

namespace {

void* LoadedModule(const wchar_t* fileName, bool wideName) {
  if (wideName) return qt::module::platform::LoadedModule(fileName);
  // The rows that the suite's modules look up by 8-bit name keep that call,
  // so a module found by one is found by the other in the same way.
  const std::string name = qn_wide_to_ansi(fileName);
  return GetModuleHandleA(name.c_str());
}

void* FindExport(void* module, const char* exportName) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module), exportName));
}

}  // namespace

const Calls& SystemCalls() {
  static const Calls calls = {&LoadedModule, &FindExport};
  return calls;
}

}  // namespace platform
}  // namespace interapp
}  // namespace qt
