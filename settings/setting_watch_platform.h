// Watching the settings under the user's application key for changes made
// by any process (setting_watch_platform_win.cpp /
// setting_watch_platform_posix.cpp), so that a setting read on every call
// of a hot path can be kept until it may have changed.
//
// Windows: a change notification on the key and its subkeys, armed again
// after each change. Linux: the settings store's change counter, shared by
// every process using the store (settings/regstore_cache_posix.h).
//
// A watch serves one caller at a time; the caller serialises its use.
#ifndef QUILTOOL_SETTINGS_SETTING_WATCH_PLATFORM_H
#define QUILTOOL_SETTINGS_SETTING_WATCH_PLATFORM_H

#include <atomic>
#include <cstdint>

namespace qt {
namespace setting_watch {
namespace platform {

struct Watch;

// What the settings looked like when a mark was taken.
struct Mark {
  uint64_t counter = 0;
  uint64_t epoch = 0;
  // Where a mark can be checked again without locks (Linux): the words to
  // read and until when, as the platform's store hands them out. Never
  // freed while the process runs, so a copy of the mark may be kept per
  // thread.
  const uint64_t* counterWord = nullptr;
  const std::atomic<uint64_t>* epochWord = nullptr;
  int64_t dueMs = 0;
  bool operator==(const Mark& other) const { return counter == other.counter && epoch == other.epoch; }
  bool operator!=(const Mark& other) const { return !(*this == other); }
};

// Starts watching the current user's key keyPath (as RegInt_Init names the
// application key); null when no watch can be kept, as when memory is out.
// A key that does not exist yet is watched once it does.
Watch* Open(const wchar_t* keyPath);
void Close(Watch* watch);

// Taken BEFORE reading a setting: while a later call gives the same mark,
// nothing under the key has changed since, and what was read still holds.
// False when that cannot be told now (no key yet, a write under way, a
// store that other processes cannot announce their changes to): the caller
// then reads afresh and keeps nothing.
bool Take(Watch* watch, Mark* mark);

// True when nothing under the key can have changed since mark was taken,
// told without the watch, without locks and without system calls; false
// when that cannot be told so, and then the caller takes a new mark.
// Windows always answers false: its watch is an event that a second
// thread could close under the caller.
bool Unchanged(const Mark& mark);

}  // namespace platform
}  // namespace setting_watch
}  // namespace qt

#endif
