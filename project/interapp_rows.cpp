// Every plain bridge function, generated from the table in interapp_rows.h.
#include <new>

#include "InterApp.h"
#include "core/boundary.h"
#include "project/interapp_bridge.h"

// What the export itself returns, by the row's result column.
#define QT_EXPORT_RESULT_Same(Ret) Ret
#define QT_EXPORT_RESULT_TrueAfterCall(Ret) Ret
#define QT_EXPORT_RESULT_NonZero(Ret) int

// What the function makes of the export's answer.
#define QT_RESULT_Same(call) return call
#define QT_RESULT_TrueAfterCall(call) \
  call;                               \
  return true
#define QT_RESULT_NonZero(call) return (call) != 0

#define QT_NOTHING

namespace {

// One cache per export, named after it.
#define QT_BRIDGE(ns, Ret, name, params, args, module, exportName, fallback, result) \
  qt::bridge::ExportCache cache_##exportName{nullptr};
#define QT_BRIDGE_EXPORT(module, Ret, exportName, params, args)
#include "project/interapp_rows.h"
#undef QT_BRIDGE

}  // namespace

// A foreign export may throw; the caller gets the fall-back instead, as
// for a missing export.
#define QT_BRIDGE(ns, Ret, name, params, args, module, exportName, fallback, result)                            \
  Ret InterApp::ns::name params {                                                                               \
    typedef QT_EXPORT_RESULT_##result(Ret)(*Export) params;                                                     \
    void* const address = qt::bridge::Resolve(cache_##exportName, qt::bridge::module, #exportName);            \
    if (!address) return fallback;                                                                              \
    const Export call = reinterpret_cast<Export>(address);                                                      \
    return qt::NoThrowWith<Ret>(                                                                                \
        "InterApp::" #ns "::" #name, [&](bool) -> Ret { return fallback; },                                     \
        [&]() -> Ret { QT_RESULT_##result(call args); });                                                       \
  }
#include "project/interapp_rows.h"
#undef QT_BRIDGE

void qt::bridge::ForgetRowCachesForTest() {
#define QT_BRIDGE(ns, Ret, name, params, args, module, exportName, fallback, result) \
  cache_##exportName.store(nullptr, std::memory_order_relaxed);
#include "project/interapp_rows.h"
#undef QT_BRIDGE
}
#undef QT_BRIDGE_EXPORT
