// The bridge functions that do more than call one export: two-module
// look-ups, the storey functions that find their module themselves, the
// functions that note a missing export, and those that change what they
// hand on or answer.
#include <new>

#include "InterApp.h"
#include "core/boundary.h"
#include "project/interapp_bridge.h"
#include "project/interapp_platform.h"

namespace {

using qt::bridge::ExportCache;
using qt::bridge::ModuleHandle;
using qt::bridge::Resolve;

// The export types, from the table.
#define QT_BRIDGE(ns, Ret, name, params, args, module, exportName, fallback, result)
#define QT_BRIDGE_EXPORT(module, Ret, exportName, params, args) typedef Ret(*Export_##exportName) params;
#include "project/interapp_rows.h"
#undef QT_BRIDGE
#undef QT_BRIDGE_EXPORT

ExportCache g_reportData{nullptr};
ExportCache g_textUserVarDef{nullptr};
ExportCache g_getWindowPos{nullptr};
ExportCache g_setWindowPosOnly{nullptr};
ExportCache g_setWindowPos{nullptr};
ExportCache g_qneSelectionData{nullptr};  // shared by the module's and its user interface's export
ExportCache g_qnsdSelectionData{nullptr};
ExportCache g_propertyName{nullptr};
ExportCache g_storeyProperties{nullptr};
ExportCache g_storeyPropertiesEx{nullptr};

unsigned char g_missing[qt::bridge::kMissingFlagCount];

template <class Export>
Export Cast(void* address) {
  return reinterpret_cast<Export>(address);
}

// The address of a flagged function's export, or null with its flag set.
void* ResolveOrFlag(ExportCache& cache, qt::bridge::ModuleId module, const char* name,
                    qt::bridge::MissingFlag flag) {
  void* const address = Resolve(cache, module, name);
  if (!address) g_missing[flag] = 1;
  return address;
}

// The two-module look-up: the AutoCAD extension's export first, then the
// user-interface library's; both answers go to one cache.
void* ResolveEither(ExportCache& cache, qt::bridge::ModuleId extension, const char* extensionExport,
                    qt::bridge::ModuleId library, const char* libraryExport) {
  void* address = cache.load(std::memory_order_relaxed);
  if (address) return address;
  if (void* const module = ModuleHandle(extension)) {
    address = qt::interapp::platform::CurrentCalls().findExport(module, extensionExport);
    cache.store(address, std::memory_order_relaxed);
    if (address) return address;
  }
  void* const module = ModuleHandle(library);
  if (!module) return nullptr;
  address = qt::interapp::platform::CurrentCalls().findExport(module, libraryExport);
  cache.store(address, std::memory_order_relaxed);
  return address;
}

// The storey functions ask for the room module on every call, whether or
// not init has run; a found export is kept as elsewhere.
void* ResolveStorey(ExportCache& cache, const char* name) {
  const qt::bridge::ModuleFile& room = qt::bridge::ModuleFileOf(qt::bridge::Qnr);
  void* const module = qt::interapp::platform::CurrentCalls().loadedModule(room.fileName, room.wideName);
  void* address = cache.load(std::memory_order_relaxed);
  if (address) return address;
  if (!module) return nullptr;
  address = qt::interapp::platform::CurrentCalls().findExport(module, name);
  cache.store(address, std::memory_order_relaxed);
  return address;
}

}  // namespace

unsigned char qt::bridge::MissingFlagValue(MissingFlag flag) { return g_missing[flag]; }

void qt::bridge::ForgetSpecialCachesForTest() {
  for (ExportCache* cache : {&g_reportData, &g_textUserVarDef, &g_getWindowPos, &g_setWindowPosOnly, &g_setWindowPos,
                             &g_qneSelectionData, &g_qnsdSelectionData, &g_propertyName, &g_storeyProperties,
                             &g_storeyPropertiesEx}) {
    cache->store(nullptr, std::memory_order_relaxed);
  }
  for (unsigned char& flag : g_missing) flag = 0;
}

bool InterApp::QNC::GetReportData(void* db, ReportCallback callback, int kind) {
  void* const address = Resolve(g_reportData, qt::bridge::QNCommon, "GetReportDataQNC");
  if (!address) return false;
  // callback is the caller's copy; the export may keep calling it until it returns.
  return qt::NoThrow("InterApp::QNC::GetReportData", false,
                     [&] { return Cast<Export_GetReportDataQNC>(address)(db, &callback, kind); });
}

bool InterApp::QNC::ZoomTo(const ObjPosInDwg& pos, bool a, bool b) { return ZoomTo(nullptr, pos, a, b); }

bool InterApp::QNC::DrawCross(void* db, const ObjPosInDwg& pos) { return ZoomTo(db, pos, false, true); }

bool InterApp::HPV::Qlg_textUserVarDef_(short app, int textId, const wchar_t* text, ustr& result) {
  void* const address =
      ResolveOrFlag(g_textUserVarDef, qt::bridge::QuilUtil, "Qlg_textUserVarDef", qt::bridge::TextUserVarDefMissing);
  if (!address) return false;
  return qt::NoThrow("InterApp::HPV::Qlg_textUserVarDef_", false, [&] {
    result = Cast<Export_Qlg_textUserVarDef>(address)(app, textId, text);
    return true;
  });
}

bool InterApp::HPV::Reg_GetWindowPos_(HKEY key, const wchar_t* name, HWND window, RECT* rect, int* show, bool flag) {
  void* const address =
      ResolveOrFlag(g_getWindowPos, qt::bridge::QuilUtil, "Reg_GetWindowPos", qt::bridge::RegGetWindowPosMissing);
  if (!address) return false;
  return qt::NoThrow("InterApp::HPV::Reg_GetWindowPos_", false, [&] {
    return Cast<Export_Reg_GetWindowPos>(address)(key, name, window, rect, show, flag) != 0;
  });
}

bool InterApp::HPV::Reg_SetWindowPosOnly_(HKEY key, const wchar_t* name, HWND window, bool flag) {
  void* const address = ResolveOrFlag(g_setWindowPosOnly, qt::bridge::QuilUtil, "Reg_SetWindowPosOnly",
                                      qt::bridge::RegSetWindowPosOnlyMissing);
  if (!address) return false;
  return qt::NoThrow("InterApp::HPV::Reg_SetWindowPosOnly_", false, [&] {
    return Cast<Export_Reg_SetWindowPosOnly>(address)(key, name, window, flag) != 0;
  });
}

bool InterApp::HPV::Reg_SetWindowPos_(HKEY key, const wchar_t* name, HWND window) {
  void* const address =
      ResolveOrFlag(g_setWindowPos, qt::bridge::QuilUtil, "Reg_SetWindowPos", qt::bridge::RegSetWindowPosMissing);
  if (!address) return false;
  return qt::NoThrow("InterApp::HPV::Reg_SetWindowPos_", false,
                     [&] { return Cast<Export_Reg_SetWindowPos>(address)(key, name, window) != 0; });
}

int InterApp::QNE::ObjectSelectionDataAccessor(int request, void* a, void* b, int c) {
  void* const address = ResolveEither(g_qneSelectionData, qt::bridge::Qne, "ObjectSelectionDataAccessorQNE",
                                      qt::bridge::QneUi, "ObjectSelectionDataAccessorQNEUI");
  if (!address) return -1;
  return qt::NoThrow("InterApp::QNE::ObjectSelectionDataAccessor", -1, [&] {
    return Cast<Export_ObjectSelectionDataAccessorQNE>(address)(request, a, b, c);
  });
}

int InterApp::QNSD::ObjectSelectionDataAccessor(int request, void* a, void* b, int c) {
  void* const address = ResolveEither(g_qnsdSelectionData, qt::bridge::QnSd, "ObjectSelectionDataAccessorQNSD",
                                      qt::bridge::QnSdUi, "ObjectSelectionDataAccessorQNSDUI");
  if (!address) return -1;
  return qt::NoThrow("InterApp::QNSD::ObjectSelectionDataAccessor", -1, [&] {
    return Cast<Export_ObjectSelectionDataAccessorQNSD>(address)(request, a, b, c);
  });
}

bool InterApp::QNE::mePropertyName(void* entity, short property, int textId, const wchar_t* defaultText, ustr& name) {
  return qt::NoThrow("InterApp::QNE::mePropertyName", false, [&] {
    const int kLength = 128;
    wchar_t buffer[kLength] = {};
    void* const address = Resolve(g_propertyName, qt::bridge::QneUi, "GetPropertyNameQNEUI");
    if (address && Cast<Export_GetPropertyNameQNEUI>(address)(entity, property, buffer, kLength) == 0) {
      buffer[kLength - 1] = 0;  // a module that filled the buffer to the brim
      name = buffer;
      return true;
    }
    if (InterApp::QNE::qlg_readWsz_defw(buffer, textId, static_cast<short>(kLength), defaultText) < 1) return false;
    buffer[kLength - 1] = 0;
    name = buffer;
    return true;
  });
}

int InterApp::QNR::GetStoreyProperties(const wchar_t* storey, wchar_t* name, double* const a, double* b,
                                       double* const c, double* d) {
  void* const address = ResolveStorey(g_storeyProperties, "qrmif_storey_get_properties");
  if (!address) return -1;
  return qt::NoThrow("InterApp::QNR::GetStoreyProperties", -1, [&] {
    // The export answers a 16-bit status; negative ones stay negative.
    return static_cast<int>(Cast<Export_qrmif_storey_get_properties>(address)(storey, name, a, b, c, d));
  });
}

int InterApp::QNR::GetStoreyPropertiesEx(const void* storey, wchar_t* name, double* const a, double* b,
                                         double* const c, double* d, double* const e) {
  void* const address = ResolveStorey(g_storeyPropertiesEx, "qrmif_storey_get_properties_ex");
  if (!address) return -1;
  return qt::NoThrow("InterApp::QNR::GetStoreyPropertiesEx", -1, [&] {
    return static_cast<int>(Cast<Export_qrmif_storey_get_properties_ex>(address)(storey, name, a, b, c, d, e));
  });
}
