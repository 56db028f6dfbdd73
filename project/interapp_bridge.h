// The machinery behind every bridge function: the module table that
// InterApp::init fills, and the per-function address caches.
#ifndef QUILTOOL_PROJECT_INTERAPP_BRIDGE_H
#define QUILTOOL_PROJECT_INTERAPP_BRIDGE_H

#include <atomic>

#include "project/interapp_modules.h"

namespace qt {
namespace bridge {

// One export's resolved address: null until found, then never changed.
// Two threads that miss together both store the same address; relaxed
// atomics keep that harmless race defined without costing a plain load.
typedef std::atomic<void*> ExportCache;

// The handle init recorded for the module, null when it was not loaded.
void* ModuleHandle(ModuleId module);

// Resolution with an empty cache: null while the module is missing,
// otherwise the export's address (null too) stored in the cache.
void* ResolveMissing(ExportCache& cache, ModuleId module, const char* exportName);

// The address to call, or null for the fall-back. Once found, an export is
// called without another look at the module table.
inline void* Resolve(ExportCache& cache, ModuleId module, const char* exportName) {
  void* const address = cache.load(std::memory_order_relaxed);
  return address ? address : ResolveMissing(cache, module, exportName);
}

// The one-byte flags of the functions that note a missing export: set to
// 1 on the first failure, never cleared and never read by the library.
enum MissingFlag { RegGetWindowPosMissing, RegSetWindowPosOnlyMissing, RegSetWindowPosMissing, TextUserVarDefMissing,
                   kMissingFlagCount };
unsigned char MissingFlagValue(MissingFlag flag);

// Tests only: forgets the module table, every cache and every flag, as a
// freshly loaded library has them. The library never calls these.
void ForgetModulesForTest();
void ForgetRowCachesForTest();
void ForgetSpecialCachesForTest();

}  // namespace bridge
}  // namespace qt

#endif
