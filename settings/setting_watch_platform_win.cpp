// Watching the application key with the registry's change notification.
#include "settings/setting_watch_platform.h"

#include <new>
#include <string>

#include "qn_wintypes.h"

#ifndef REG_NOTIFY_THREAD_AGNOSTIC
#define REG_NOTIFY_THREAD_AGNOSTIC 0x10000000L
#endif

namespace qt {
namespace setting_watch {
namespace platform {

struct Watch {
  std::wstring path;
  HKEY key = nullptr;
  HANDLE event = nullptr;
  uint64_t epoch = 0;
};

namespace {

const DWORD kFilter = REG_NOTIFY_CHANGE_NAME | REG_NOTIFY_CHANGE_LAST_SET;

// A notification armed by a thread that then ends fires when it ends;
// where the system supports it, the armed watch belongs to no thread. A
// stray firing costs one read, never a stale answer.
bool Arm(Watch* w) {
  if (RegNotifyChangeKeyValue(w->key, TRUE, kFilter | REG_NOTIFY_THREAD_AGNOSTIC, w->event, TRUE) == ERROR_SUCCESS)
    return true;
  return RegNotifyChangeKeyValue(w->key, TRUE, kFilter, w->event, TRUE) == ERROR_SUCCESS;
}

void Drop(Watch* w) {
  if (w->key) RegCloseKey(w->key);
  w->key = nullptr;
}

}  // namespace

Watch* Open(const wchar_t* keyPath) {
  Watch* w = new (std::nothrow) Watch;
  if (!w) return nullptr;
  try {
    w->path = keyPath ? keyPath : L"";
  } catch (...) {
    delete w;
    return nullptr;
  }
  w->event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  if (!w->event) {
    delete w;
    return nullptr;
  }
  return w;
}

void Close(Watch* w) {
  if (!w) return;
  Drop(w);
  CloseHandle(w->event);
  delete w;
}

bool Take(Watch* w, Mark* mark) {
  if (!w || !mark) return false;
  if (!w->key) {
    // Armed before anything is read under it: a change from here on fires.
    if (RegOpenKeyExW(HKEY_CURRENT_USER, w->path.c_str(), 0, KEY_NOTIFY, &w->key) != ERROR_SUCCESS) {
      w->key = nullptr;
      return false;
    }
    ResetEvent(w->event);
    if (!Arm(w)) {
      Drop(w);
      return false;
    }
    ++w->epoch;
  }
  const DWORD state = WaitForSingleObject(w->event, 0);
  if (state == WAIT_OBJECT_0) {
    // Armed again before the caller reads, so that a change made while it
    // reads fires once more. A key deleted meanwhile cannot be armed; it is
    // opened afresh at the next call.
    ResetEvent(w->event);
    ++w->epoch;
    if (!Arm(w)) {
      Drop(w);
      return false;
    }
  } else if (state != WAIT_TIMEOUT) {
    return false;
  }
  mark->counter = 0;
  mark->epoch = w->epoch;
  return true;
}

bool Unchanged(const Mark&) { return false; }

}  // namespace platform
}  // namespace setting_watch
}  // namespace qt
