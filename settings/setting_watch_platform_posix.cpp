// Watching the user's settings through the store's change counter. The
// counter covers the whole store rather than one key: a change anywhere in
// it costs the caller one read more, never a stale answer.
#include "settings/setting_watch_platform.h"

#include <new>

#include "settings/regstore_cache_posix.h"

namespace qt {
namespace setting_watch {
namespace platform {

struct Watch {};

Watch* Open(const wchar_t*) { return new (std::nothrow) Watch; }

void Close(Watch* watch) { delete watch; }

bool Take(Watch* watch, Mark* mark) {
  if (!watch || !mark) return false;
  qt_reg::UnlockedCheck check;
  if (!qt_reg::UserStoreMark(&mark->counter, &mark->epoch, &check)) return false;
  mark->counterWord = check.word;
  mark->epochWord = check.epoch;
  mark->dueMs = check.dueMs;
  return true;
}

bool Unchanged(const Mark& mark) {
  qt_reg::UnlockedCheck check;
  check.word = mark.counterWord;
  check.epoch = mark.epochWord;
  check.dueMs = mark.dueMs;
  return qt_reg::UserStoreMarkHolds(check, mark.counter, mark.epoch);
}

}  // namespace platform
}  // namespace setting_watch
}  // namespace qt
