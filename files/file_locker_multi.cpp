#include <new>
#include <utility>

#include "FileLocker.h"
#include "Lng.h"
#include "core/boundary.h"
#include "files/file_sharing_platform.h"
#include "gwframe.h"

namespace {

ustr Lines(const std::vector<ustr>& files) {
  ustr text;
  for (size_t i = 0; i < files.size(); ++i) {
    if (i) text += L"\r\n";
    text += files[i];
  }
  return text;
}

}  // namespace

MultiFileLocker::MultiFileLocker() : m_locked(false), m_mode(LockAllFiles) {}

MultiFileLocker::MultiFileLocker(ustr lockedMessage)
    : m_lockedMessage(std::move(lockedMessage)), m_locked(false), m_mode(LockAllFiles) {}

MultiFileLocker::MultiFileLocker(ustr lockedMessage, const std::vector<ustr>& files, int mode)
    : m_lockedMessage(std::move(lockedMessage)), m_locked(false), m_mode(mode) {
  Lock(files, mode);
}

MultiFileLocker::~MultiFileLocker() { Unlock(); }

bool MultiFileLocker::Lock(const std::vector<ustr>& files, int mode) {
  // The files locked so far are given back: a set is held whole or not at all.
  const auto giveBack = [&](bool) {
    Unlock();
    return false;
  };
  return qt::NoThrowWith<bool>("MultiFileLocker::Lock", giveBack, [&]() -> bool {
    Unlock();
    m_mode = mode;
    std::vector<ustr> missing, notLocked;
    for (const ustr& file : files) {
      std::unique_ptr<FileLocker> locker(new FileLocker(m_lockedMessage));
      if (!locker->FileExists(file.c_str())) {
        if (mode != LockExistingFiles) missing.push_back(file);
        continue;
      }
      if (!locker->Lock(file)) {
        notLocked.push_back(file);
        continue;
      }
      m_lockers.push_back(std::move(locker));
    }
    if (missing.empty() && notLocked.empty()) {
      m_locked = true;
      return true;
    }
    if (!m_lockedMessage.empty()) {
      ustr text;
      if (!notLocked.empty()) text = m_lockedMessage + L"\r\n\r\n" + Lines(notLocked);
      if (!missing.empty()) {
        if (!text.empty()) text += L"\r\n\r\n";
        text += Lng::text(Lng::APP_QNC, 607, L"File not found") + L"\r\n\r\n" + Lines(missing);
      }
      gwmsg(qt::file_sharing::platform::ForegroundWindow(), text.c_str());
    }
    Unlock();
    return false;
  });
}

bool MultiFileLocker::Unlock() {
  bool all = true;
  for (auto& locker : m_lockers) {
    if (!locker->Unlock()) all = false;
  }
  // A locker whose release failed tries once more as it goes.
  m_lockers.clear();
  m_locked = false;
  return all;
}
