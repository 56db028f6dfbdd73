// Loading the language files and fetching texts by (module, number).
#include <cwchar>
#include <mutex>
#include <new>

#include "InterApp.h"
#include "Lng.h"
#include "Registry.h"
#include "core/boundary.h"
#include "core/hot_thread_local.h"
#include "core/module_platform.h"
#include "settings/lng_apptable.h"
#include "settings/lng_internal.h"
#include "settings/qlg_reader.h"
#include "settings/reg_internal.h"
#include "settings/setting_watch_platform.h"

namespace {

struct LanguageState {
  bool initDone = false;
  ustr folderOverride;
  CQlg readers[qt::kAppRows];
};

LanguageState& State() {
  static LanguageState state;
  return state;
}

ustr LanguageFolder() {
  if (!State().folderOverride.empty()) return State().folderOverride;
  ustr folder;
  GetModuleDirectory(static_cast<HMODULE>(nullptr), folder);
  return folder;
}

// The developer switch is asked for with every text, and translators flip
// it from another process while the host runs: its answer is kept only
// while the watch on the application key says nothing under it changed.
struct SwitchCache {
  std::mutex mutex;
  bool watching = false;
  unsigned long keyGeneration = 0;
  qt::setting_watch::platform::Watch* watch = nullptr;
  bool known = false;
  qt::setting_watch::platform::Mark mark;
  bool show = false;
};

SwitchCache& Switch() {
  // Never destroyed: texts may still be asked for from static destructors.
  static SwitchCache* cache = new SwitchCache;
  return *cache;
}

bool ReadShowStringIds() {
  // The ring form spares an allocation.
  wchar_t no[] = L"no";
  return std::wcscmp(Registry::GetStringAtt(nullptr, L"Developer/ShowStringIDs", no), L"yesplease") == 0;
}

// Each thread's copy of the last answer and its mark, checked again
// without locks where the platform can (Linux); there the whole check is a
// few loads. Plain data, so that threads end without destructors.
struct SwitchSnapshot {
  bool valid;
  bool show;
  unsigned long keyGeneration;
  qt::setting_watch::platform::Mark mark;
};
QT_HOT_THREAD_LOCAL SwitchSnapshot t_switch;

bool ShowStringIds() {
  namespace watch = qt::setting_watch::platform;
  // RegInt_Init may have named another application key since.
  const qt_registry::State& settings = qt_registry::Reg();
  SwitchSnapshot& mine = t_switch;
  if (mine.valid && mine.keyGeneration == settings.keyGeneration && watch::Unchanged(mine.mark)) return mine.show;
  SwitchCache& c = Switch();
  std::lock_guard<std::mutex> lock(c.mutex);
  mine.valid = false;
  if (!c.watching || c.keyGeneration != settings.keyGeneration) {
    watch::Close(c.watch);
    c.watch = settings.basePath[0] ? watch::Open(settings.basePath) : nullptr;
    c.known = false;
    c.watching = true;
    c.keyGeneration = settings.keyGeneration;
  }
  watch::Mark now;
  const bool marked = c.watch && watch::Take(c.watch, &now);
  if (!(marked && c.known && now == c.mark)) {
    c.show = ReadShowStringIds();
    c.known = marked;
  }
  // The mark taken before the read is the one kept: a change after it
  // shows as a different counter at the next check.
  c.mark = now;
  if (marked) mine = SwitchSnapshot{true, c.show, c.keyGeneration, now};
  return c.show;
}

ustr Lookup(Lng::AppID id, int textId, const wchar_t* defaultText) {
  int row = qt::AppRowIndex(id);
  if (row < 0) row = qt::AppRowIndex(Lng::APP_HPV);
  if (row < 0) return ustr();

  size_t length = 0;
  const wchar_t* found = State().readers[row].find(textId, &length);
  ustr result = found ? ustr(found, length) : ustr(defaultText);

  // Negative ids of the main module name user-defined variables, whose
  // names only the main module's utility library knows.
  if (textId < 0 && id == Lng::APP_HPV) {
    ustr replacement;
    if (InterApp::HPV::Qlg_textUserVarDef_(99, textId, result.c_str(), replacement)) result = replacement;
  }

  if (ShowStringIds()) {
    ustr decorated;
    decorated.format(L"%d>", textId);
    decorated += result;
    return decorated;
  }
  return result;
}

}  // namespace

void Lng::init(short languageId) {
  // Readers that could not be filled answer with the defaults.
  qt::NoThrowVoid("Lng::init", [&] {
    LanguageState& state = State();
    if (state.initDone) {
      const int mainRow = qt::AppRowIndex(Lng::APP_HPV);
      if (state.readers[mainRow].activeLanguageId() == languageId) return;
    } else {
      state.initDone = true;
    }
    const ustr folder = LanguageFolder();
    const wchar_t separator[2] = {qt::module::platform::PathSeparator(), 0};
    const ustr definition = folder + separator + L"QuilQlg.ddq";
    for (int i = 0; i < qt::kAppRows; ++i) {
      const wchar_t* file = qt::kAppTable[i].languageFile;
      if (!file || !*file) continue;
      const ustr path = folder + separator + file;
      state.readers[i].init(definition.c_str(), path.c_str());
      state.readers[i].setActiveLanguage(languageId);
    }
  });
}

ustr Lng::text(AppID id, int textId, const wchar_t* defaultText) {
  return qt::NoThrow<ustr>("Lng::text", ustr(), [&] { return Lookup(id, textId, defaultText); });
}

ustr qt_lng_text(Lng::AppID id, int textId, const wchar_t* defaultText) { return Lookup(id, textId, defaultText); }

void qt_lng_set_folder(const wchar_t* folder) { State().folderOverride = folder; }

void qt_lng_reset() {
  LanguageState& state = State();
  state.initDone = false;
  for (CQlg& reader : state.readers) {
    reader.clear();
    reader.setActiveLanguage(0);
  }
}

const CQlg* qt_lng_reader(int row) { return row >= 0 && row < qt::kAppRows ? &State().readers[row] : nullptr; }
