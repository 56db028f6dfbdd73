// Locks on shared project files through the file's sharing service:
// FileLocker for one file, MultiFileLocker for a set that is locked wholly
// or not at all. Only locks that an object took itself are released by it.
#ifndef QUILTOOL_FILELOCKER_H
#define QUILTOOL_FILELOCKER_H

#include <memory>
#include <vector>

#include "FileSharingServiceManager.h"
#include "quiltool_export.h"
#include "ustr.h"

class QT_API FileLocker : public FileSharingServiceManager {
 public:
  // An empty locked message keeps every failure from the user.
  FileLocker();
  explicit FileLocker(ustr lockedMessage);
  // Locks `file` at once unless it is empty.
  FileLocker(ustr lockedMessage, ustr file);
  // The lock moves with the object; the source is left without one.
  FileLocker(FileLocker&& other) noexcept;
  // Releases the target's own lock first.
  FileLocker& operator=(FileLocker&& other) noexcept;
  ~FileLocker() override;

  // Locks `file`, releasing what this object held. False when the file is
  // not found, is locked by somebody else, cannot be brought up to date or
  // cannot be locked; a file already locked by this session counts as
  // locked but is left for its owner to release. With a locked message, a
  // failure is shown: the text, the file's name and, for a file locked by
  // somebody else, "Locked: " and who holds it.
  bool Lock(ustr file);
  // Releases a lock this object took (and brings the file up to date);
  // true when there was none. False, with the lock kept, when the service
  // refuses.
  bool Unlock();
  bool IsLocked() const { return m_locked || m_alreadyOwned; }
  bool IsAlreadyOwned() const { return m_alreadyOwned; }
  // Full name of the file this object locked itself; empty otherwise.
  const ustr& GetLockedFile() const { return m_lockedFile; }
  bool IsValidFilePathName(const wchar_t* file) const { return FileExists(file); }

 private:
  void ShowFailure(const ustr& text, const ustr& file, const ustr& detail) const;

  bool m_locked;
  bool m_alreadyOwned;
  ustr m_lockedMessage;  // up to 256 characters
  ustr m_lockedFile;
};

class QT_API MultiFileLocker {
 public:
  // What Lock does with files that are not found.
  enum Mode {
    LockAllFiles = 0,       // a missing file fails the set
    LockExistingFiles = 1,  // missing files are left out
  };

  MultiFileLocker();
  explicit MultiFileLocker(ustr lockedMessage);
  MultiFileLocker(ustr lockedMessage, const std::vector<ustr>& files, int mode);
  ~MultiFileLocker();
  MultiFileLocker(const MultiFileLocker&) = delete;
  MultiFileLocker& operator=(const MultiFileLocker&) = delete;

  // Releases what is held, then locks every file in order. When one cannot
  // be locked (or, in LockAllFiles mode, is not found), every lock taken is
  // released again and the result is false; with a locked message the
  // failures are shown first.
  bool Lock(const std::vector<ustr>& files, int mode);
  // Releases every held lock in order, carrying on past failures; true
  // only when every release succeeded.
  bool Unlock();
  bool IsLocked() const { return m_locked; }
  int GetMode() const { return m_mode; }

 private:
  ustr m_lockedMessage;
  std::vector<std::unique_ptr<FileLocker>> m_lockers;
  bool m_locked;
  int m_mode;
};

#endif
