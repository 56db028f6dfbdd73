// The file-sharing service behind a path: who keeps the file, whether it is
// locked and by whom, how to bring the local copy up to date, and how to
// lock and unlock it. Plain folders (local disks and network shares) are
// served by the file-based service, whose lock is a lock file beside the
// file (see LockFileName); connectors to document-management systems plug
// in behind the same operations.
#ifndef QUILTOOL_FILESHARINGSERVICEMANAGER_H
#define QUILTOOL_FILESHARINGSERVICEMANAGER_H

#include <memory>

#include "quiltool_export.h"
#include "ustr.h"

namespace qt {
namespace files {
class SharingService;
}
}  // namespace qt

class QT_API FileSharingServiceManager {
 public:
  enum LockState {
    LockStateUnknown = 0,        // the service cannot tell
    LockStateNotLocked = 1,
    LockStateLockedByMe = 2,     // held by this session of the current user
    LockStateLockedByOther = 3,  // held by anybody else
  };

  FileSharingServiceManager();
  virtual ~FileSharingServiceManager();
  FileSharingServiceManager(FileSharingServiceManager&& other) noexcept;
  FileSharingServiceManager& operator=(FileSharingServiceManager&& other) noexcept;
  FileSharingServiceManager(const FileSharingServiceManager&) = delete;
  FileSharingServiceManager& operator=(const FileSharingServiceManager&) = delete;

  bool IsInitialized() const;
  // Chooses the service that manages `file`; false when that service cannot
  // find the file.
  bool Init(const wchar_t* file);
  // The name of the chosen service ("File system"), empty before Init.
  ustr GetServiceName() const;

  // These use the chosen service, or before Init the one that would be
  // chosen for the file at hand.
  bool FileExists(const wchar_t* file) const;
  // One of LockState. `owner`, when given, receives who holds the lock (for
  // the file-based service: the file-system owner of the lock file).
  int GetFileLockState(const wchar_t* file, ustr* owner = nullptr) const;
  // The status text of a locked file: "Locked" in the active language;
  // empty when the file is not locked.
  ustr GetFileLockStatusText(const wchar_t* file) const;
  bool SyncFile(const wchar_t* file, bool force);
  bool LockFile(const wchar_t* file);
  bool UnlockFile(const wchar_t* file);
  // The file's name as the service shows it: below the folder the manager
  // was initialised for, relative to it; otherwise the full name.
  ustr GetRelativeFilePathName(const wchar_t* file) const;
  // The name under which the service knows the file: for plain folders the
  // absolute path.
  ustr GetFullFilePathName(const wchar_t* file) const;

  // The lock file of the file-based service: beside the file, with the
  // extension epj replaced by ".lkh", qep and qsd by ".lck", qrd by ".lrd"
  // (compared without regard to case), and "~" appended to any other name.
  static ustr LockFileName(const wchar_t* file);
  // The account that owns a file: the owner SID's account name on Windows,
  // the owning user's name on Linux (the number when it has no name); empty
  // when it cannot be told.
  static ustr GetFileOwner(const wchar_t* file);

 private:
  qt::files::SharingService& ServiceFor(const wchar_t* file) const;

  std::unique_ptr<qt::files::SharingService> m_service;
  mutable std::unique_ptr<qt::files::SharingService> m_probe;  // before Init
};

#endif
