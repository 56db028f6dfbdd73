// InterApp::init and the module table it fills.
#include "InterApp.h"
#include "core/boundary.h"
#include "project/interapp_bridge.h"
#include "project/interapp_platform.h"

namespace qt {
namespace bridge {
namespace {

const ModuleFile kModules[kModuleCount] = {
    {L"QnHpv_r24x64.arx", true},
    {L"QuilUtil_r24x64.dll", false},
    {L"QuilSer_r24x64.dll", false},
    {L"QuilEPJ_r24x64.dll", false},
    {L"Qne_r24x64.arx", true},
    {L"QneUi_r24x64.dll", false},
    {L"QNCommon_r24x64.arx", true},
    {L"QNCommonUi_r24x64.dll", false},
    {L"Qnr_r24x64.arx", true},
    {L"QuilQRP_r24x64.dll", true},
    {L"QNHeatEx_r24x64.arx", true},
    {L"QNUtilities_r24x64.arx", true},
    {L"QnSd_r24x64.arx", true},
    {L"QnSdUi_r24x64.dll", false},
    {L"QnCs_r24x64.arx", true},
    {L"QUILQNPropertiesPalette_r24x64.arx", true},
};

std::atomic<void*> g_modules[kModuleCount];

struct ExportRow {
  ModuleId module;
  const char* name;
};

#define QT_BRIDGE(ns, Ret, name, params, args, module, exportName, fallback, result) {module, #exportName},
#define QT_BRIDGE_EXPORT(module, Ret, exportName, params, args) {module, #exportName},
const ExportRow kExports[] = {
#include "project/interapp_rows.h"
};
#undef QT_BRIDGE
#undef QT_BRIDGE_EXPORT

}  // namespace

const ModuleFile& ModuleFileOf(int module) { return kModules[module]; }

std::vector<const char*> ExportsIn(int module) {
  std::vector<const char*> names;
  for (const ExportRow& row : kExports) {
    if (row.module == module) names.push_back(row.name);
  }
  return names;
}

void* ModuleHandle(ModuleId module) { return g_modules[module].load(std::memory_order_relaxed); }

void* ResolveMissing(ExportCache& cache, ModuleId module, const char* exportName) {
  void* const handle = ModuleHandle(module);
  if (!handle) return nullptr;
  void* const address = interapp::platform::CurrentCalls().findExport(handle, exportName);
  cache.store(address, std::memory_order_relaxed);
  return address;
}

void ForgetModulesForTest() {
  for (std::atomic<void*>& module : g_modules) module.store(nullptr, std::memory_order_relaxed);
}

}  // namespace bridge
}  // namespace qt

void InterApp::init() {
  qt::NoThrowVoid("InterApp::init", [] {
    for (int i = 0; i < qt::bridge::kModuleCount; ++i) {
      const qt::bridge::ModuleFile& row = qt::bridge::kModules[i];
      qt::bridge::g_modules[i].store(qt::interapp::platform::CurrentCalls().loadedModule(row.fileName, row.wideName),
                                     std::memory_order_relaxed);
    }
  });
}
