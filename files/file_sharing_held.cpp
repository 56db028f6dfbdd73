#include "files/file_sharing_held.h"

#include <map>
#include <memory>

#include "files/file_sharing_platform.h"

namespace qt {
namespace files {

namespace {

typedef std::map<std::wstring, std::unique_ptr<gwflocktype>> HeldMap;

// Never destroyed: a FileLocker that a host keeps in a global object may
// let go of its lock after this library's statics are gone.
HeldMap& Held() {
  static HeldMap* held = new HeldMap;
  return *held;
}

// Constructed when the library loads, so destroyed when it unloads, after
// the host's own globals: whatever is still held then is released.
struct ReleaseAtUnload {
  ~ReleaseAtUnload() {
    for (auto& entry : Held()) gwflock_unlock(entry.second.get());
    Held().clear();
  }
} g_releaseAtUnload;

}  // namespace

bool HoldsLock(const std::wstring& lockFile) {
  return Held().count(qt::file_sharing::platform::FileNameKey(lockFile)) != 0;
}

void AddHeldLock(const std::wstring& lockFile, gwflocktype* record) {
  // Everything that can fail comes before the caller's record is cleared,
  // so that a failure leaves the lock with the caller to release.
  const std::wstring key = qt::file_sharing::platform::FileNameKey(lockFile);
  std::unique_ptr<gwflocktype> kept(new gwflocktype(*record));
  auto& slot = Held()[key];
  if (slot) gwflock_unlock(slot.get());
  slot = std::move(kept);
  gwflock_init(record);
}

bool ReleaseHeldLock(const std::wstring& lockFile) {
  auto& map = Held();
  const auto it = map.find(qt::file_sharing::platform::FileNameKey(lockFile));
  if (it == map.end()) return false;
  gwflock_unlock(it->second.get());
  map.erase(it);
  return true;
}

}  // namespace files
}  // namespace qt
