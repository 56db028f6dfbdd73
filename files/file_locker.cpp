#include "FileLocker.h"

#include <new>
#include <utility>

#include "Lng.h"
#include "core/boundary.h"
#include "files/file_sharing_platform.h"
#include "gwframe.h"

namespace {

const size_t kLockedMessageSize = 256;

// Without memory for the message the locker still works; it only stays silent.
ustr Limited(const ustr& message) noexcept {
  return qt::NoThrow<ustr>("FileLocker", ustr(), [&] { return message.left(kLockedMessageSize); });
}

}  // namespace

FileLocker::FileLocker() : m_locked(false), m_alreadyOwned(false) {}

FileLocker::FileLocker(ustr lockedMessage)
    : m_locked(false), m_alreadyOwned(false), m_lockedMessage(Limited(lockedMessage)) {}

FileLocker::FileLocker(ustr lockedMessage, ustr file)
    : m_locked(false), m_alreadyOwned(false), m_lockedMessage(Limited(lockedMessage)) {
  if (!file.empty()) Lock(std::move(file));
}

FileLocker::FileLocker(FileLocker&& other) noexcept
    : FileSharingServiceManager(std::move(other)),
      m_locked(other.m_locked),
      m_alreadyOwned(other.m_alreadyOwned),
      m_lockedMessage(std::move(other.m_lockedMessage)),
      m_lockedFile(std::move(other.m_lockedFile)) {
  other.m_locked = false;
  other.m_alreadyOwned = false;
  other.m_lockedFile.clear();
}

FileLocker& FileLocker::operator=(FileLocker&& other) noexcept {
  if (this == &other) return *this;
  Unlock();
  FileSharingServiceManager::operator=(std::move(other));
  m_locked = other.m_locked;
  m_alreadyOwned = other.m_alreadyOwned;
  m_lockedMessage = std::move(other.m_lockedMessage);
  m_lockedFile = std::move(other.m_lockedFile);
  other.m_locked = false;
  other.m_alreadyOwned = false;
  other.m_lockedFile.clear();
  return *this;
}

FileLocker::~FileLocker() { Unlock(); }

void FileLocker::ShowFailure(const ustr& text, const ustr& file, const ustr& detail) const {
  if (m_lockedMessage.empty()) return;
  qt::NoThrowVoid("FileLocker::ShowFailure", [&] {
    ustr message = text + L"\r\n\r\n" + file;
    if (!detail.empty()) message += L"\r\n\r\n" + detail;
    gwmsg(qt::file_sharing::platform::ForegroundWindow(), message.c_str());
  });
}

bool FileLocker::Lock(ustr file) {
  return qt::NoThrow<bool>("FileLocker::Lock", false, [&]() -> bool {
    Unlock();
    m_alreadyOwned = false;
    if (!IsInitialized() && !Init(file.c_str())) {
      ShowFailure(Lng::text(Lng::APP_QNC, 607, L"File not found"), file, ustr());
      return false;
    }
    ustr owner;
    switch (GetFileLockState(file.c_str(), &owner)) {
      case LockStateUnknown:
        return false;
      case LockStateLockedByMe:
        m_alreadyOwned = true;
        return true;
      case LockStateLockedByOther:
        ShowFailure(m_lockedMessage, file,
                    owner.empty() ? ustr() : Lng::text(Lng::APP_QNC, 60296, L"Locked") + L": " + owner);
        return false;
      default:
        break;
    }
    qt::file_sharing::platform::WaitCursor wait;
    if (!SyncFile(file.c_str(), false)) {
      ShowFailure(Lng::text(Lng::APP_QNC, 60336, L"Quillon cannot synchronize the file. Try to do it manually."), file,
                  ustr());
      return false;
    }
    // The name is taken before the lock: a lock this locker could not name
    // would never be released.
    ustr full = GetFullFilePathName(file.c_str());
    if (full.empty() || !LockFile(file.c_str())) return false;
    m_lockedFile = std::move(full);
    m_locked = true;
    return true;
  });
}

bool FileLocker::Unlock() {
  if (!m_locked) return true;
  return qt::NoThrow<bool>("FileLocker::Unlock", false, [&]() -> bool {
    qt::file_sharing::platform::WaitCursor wait;
    if (!UnlockFile(m_lockedFile.c_str())) return false;
    SyncFile(m_lockedFile.c_str(), false);
    m_locked = false;
    m_lockedFile.clear();
    return true;
  });
}
