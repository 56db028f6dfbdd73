// The plain lock: a lock file held open for as long as the lock lasts.
#include "gwflock.h"

#include <chrono>
#include <cstring>
#include <new>
#include <string>
#include <thread>

#include "files/gwflock_messages.h"
#include "files/lock_content.h"
#include "core/boundary.h"
#include "core/fs.h"
#include "files/lock_file_platform.h"
#include "gwframe.h"
#include "ustr.h"

namespace {

namespace platform = qt::lock_file::platform;
using platform::Outcome;

const size_t kRecordNameSize = sizeof(gwflocktype::lockFile) / sizeof(wchar_t);
// A lock file that keeps vanishing and reappearing between our steps belongs
// to somebody busy taking and releasing it; after this many rounds we say
// it is in use rather than chase it.
const int kAttempts = 50;

// A file in the middle of being deleted refuses everything for a moment.
void PauseForDelete() { std::this_thread::sleep_for(std::chrono::milliseconds(2)); }

int HeldBy(HWND owner, const std::wstring& holder, wchar_t* lockedBy, int showMessages) {
  if (showMessages) {
    if (holder.empty()) {
      qt::lock_file::ShowInUse(owner);
    } else {
      qt::lock_file::ShowInUseBy(owner, holder.c_str());
    }
  }
  if (lockedBy) QN_wcscpy_s(lockedBy, GWFLOCK_NAME_SIZE, holder.c_str());
  return -2;
}

int CannotCreate(HWND owner, int showMessages) {
  if (showMessages) qt::lock_file::ShowNoPermission(owner);
  return -1;
}

int Lock(HWND owner, gwflocktype* lock, const wchar_t* lockFile, const wchar_t* user, wchar_t* lockedBy,
         int showMessages) {
  if (lockedBy) lockedBy[0] = L'\0';
  if (!lock || !lockFile || !*lockFile) return -1;
  if (lock->lockFile[0]) gwflock_unlock(lock);

  // The record keeps the absolute name, so that unlocking deletes the right
  // file whatever the current directory is by then.
  const std::wstring name = qt::fs::FullName(std::wstring(lockFile));
  if (name.empty() || name.size() >= kRecordNameSize) return CannotCreate(owner, showMessages);
  const std::string content = qt::lock_file::LockContent(user);

  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    const bool existed = qt::fs::Exists(name);
    HANDLE handle = INVALID_HANDLE_VALUE;
    const Outcome taken = platform::Acquire(name, !existed, &handle);
    if (taken == Outcome::Ok) {
      if (!platform::WriteHead(handle, content.data(), content.size())) {
        platform::Release(handle, name);
        return CannotCreate(owner, showMessages);
      }
      lock->handle = handle;
      QN_wcscpy_s(lock->lockFile, kRecordNameSize, name.c_str());
      return 0;
    }
    if (taken == Outcome::Missing && existed) continue;  // its holder let go meanwhile
    if (taken == Outcome::Transient) {
      PauseForDelete();
      continue;
    }
    if (taken == Outcome::Unsupported) return CannotCreate(owner, showMessages);
    // A new file that cannot be created is a matter of rights, unless it
    // turns out that somebody else created and holds it in the meantime.
    if (!existed && taken != Outcome::Held) return CannotCreate(owner, showMessages);
    // A file that nobody holds but that is not ours to take over (another
    // account's, in a folder where only owners remove files) is no lock of
    // anybody's: what stops us is a matter of rights.
    if (taken == Outcome::Failed && platform::Probe(name) == Outcome::Ok) return CannotCreate(owner, showMessages);

    unsigned char head[qt::lock_file::kHolderReadBytes];
    size_t got = 0;
    const Outcome read = platform::ReadHead(name, head, sizeof head, &got);
    if (read == Outcome::Missing) continue;
    if (read == Outcome::Transient) {
      PauseForDelete();
      continue;
    }
    std::wstring holder;
    if (read != Outcome::Ok || !qt::lock_file::HolderName(head, got, &holder)) {
      if (showMessages) qt::lock_file::ShowReadError(owner);
      return -3;
    }
    return HeldBy(owner, holder, lockedBy, showMessages);
  }
  return HeldBy(owner, std::wstring(), lockedBy, showMessages);
}

}  // namespace

void gwflock_init(gwflocktype* lock) {
  if (!lock) return;
  std::memset(lock, 0, sizeof *lock);
  lock->handle = INVALID_HANDLE_VALUE;
}

int gwflock_lockw(HWND owner, gwflocktype* lock, const wchar_t* lockFile, const wchar_t* user, wchar_t* lockedBy,
                  int showMessages) {
  return qt::NoThrow<int>("gwflock_lockw", -1, [&]() -> int {
    return Lock(owner, lock, lockFile, user, lockedBy, showMessages);
  });
}

int gwflock_lock(HWND owner, gwflocktype* lock, const char* lockFile, const char* user, char* lockedBy,
                 int showMessages) {
  return qt::NoThrow<int>("gwflock_lock", -1, [&]() -> int {
    if (lockedBy) lockedBy[0] = '\0';
    const std::wstring file = qn_ansi_to_wide(lockFile ? lockFile : "").substr(0, 260);
    const std::wstring name = qn_ansi_to_wide(user ? user : "").substr(0, 110);
    wchar_t holder[GWFLOCK_NAME_SIZE] = {0};
    const int result = gwflock_lockw(owner, lock, lockFile ? file.c_str() : nullptr, user ? name.c_str() : nullptr,
                                     holder, showMessages);
    if (lockedBy) {
      // Cut whole characters only, so that a multi-byte name stays readable.
      std::wstring wide(holder);
      std::string narrow = qn_wide_to_ansi(wide.c_str());
      while (narrow.size() >= GWFLOCK_NAME_SIZE && !wide.empty()) {
        wide.pop_back();
        narrow = qn_wide_to_ansi(wide.c_str());
      }
      QN_strcpy_s(lockedBy, GWFLOCK_NAME_SIZE, narrow.c_str());
    }
    return result;
  });
}

void gwflock_unlock(gwflocktype* lock) {
  if (!lock || !lock->lockFile[0] || lock->handle == INVALID_HANDLE_VALUE) return;
  const bool released = qt::NoThrow<bool>("gwflock_unlock", false, [&] {
    platform::Release(lock->handle, lock->lockFile);
    return true;
  });
  // Without memory for the name the handle is still given up; the lock
  // file that stays behind is taken over by the next locker.
  if (!released) qt::NoThrowVoid("gwflock_unlock", [&] { platform::Release(lock->handle, std::wstring()); });
  lock->lockFile[0] = L'\0';
  lock->handle = INVALID_HANDLE_VALUE;
}
