// The file-based service: plain folders on local disks and network shares.
// Its lock is the plain lock on the lock file beside the file, written with
// the account name of the process's user.
#include <string>

#include "FileSharingServiceManager.h"
#include "files/file_sharing_held.h"
#include "files/file_sharing_platform.h"
#include "core/fs.h"
#include "files/lock_inspect.h"
#include "files/sharing_service.h"
#include "gwflock.h"

namespace qt {
namespace files {

namespace {

std::wstring AbsoluteName(const ustr& file) { return qt::fs::FullName(file.str()); }

std::wstring LockFileOf(const ustr& file) {
  return FileSharingServiceManager::LockFileName(AbsoluteName(file).c_str()).str();
}

class FileSystemService : public SharingService {
 public:
  ustr Name() const override { return L"File system"; }

  bool Init(const ustr& file) override {
    const std::wstring full = AbsoluteName(file);
    size_t cut = full.size();
    while (cut > 0 && !qt::file_sharing::platform::IsSeparator(full[cut - 1])) --cut;
    folder_ = full.substr(0, cut);
    return FileExists(file);
  }

  bool FileExists(const ustr& file) override { return !file.empty() && qt::fs::IsFile(AbsoluteName(file)); }

  int LockState(const ustr& file, ustr* owner) override {
    if (file.empty()) return FileSharingServiceManager::LockStateUnknown;
    const std::wstring lockFile = LockFileOf(file);
    if (HoldsLock(lockFile)) {
      if (owner) *owner = qt::file_sharing::platform::CurrentUserName();
      return FileSharingServiceManager::LockStateLockedByMe;
    }
    ustr holder;
    switch (qt_inspect_lock_file(lockFile.c_str(), &holder)) {
      case QT_LOCK_FILE_ABSENT:
      case QT_LOCK_FILE_LEFT_BEHIND:  // its process ended: it locks nothing
      case QT_LOCK_FILE_LEFT_BEHIND_FOREIGN:  // locks nothing either, though we cannot lock
        return FileSharingServiceManager::LockStateNotLocked;
      case QT_LOCK_FILE_HELD:
        break;
      default:
        return FileSharingServiceManager::LockStateUnknown;
    }
    if (owner) {
      std::wstring name;
      // The name written into the lock file stands in when the file system
      // cannot tell its owner.
      *owner = qt::file_sharing::platform::FileOwnerName(lockFile, &name) && !name.empty() ? ustr(name) : holder;
    }
    return FileSharingServiceManager::LockStateLockedByOther;
  }

  // A plain folder holds the file itself: there is no other copy.
  bool Sync(const ustr& file, bool) override { return true; }

  bool Lock(const ustr& file) override {
    const std::wstring lockFile = LockFileOf(file);
    if (HoldsLock(lockFile)) return true;
    const std::wstring user = qt::file_sharing::platform::CurrentUserName();
    gwflocktype record;
    gwflock_init(&record);
    if (gwflock_lockw(nullptr, &record, lockFile.c_str(), user.c_str(), nullptr, 0) != 0) return false;
    // Whatever fails from here on (out of memory) gives the lock back
    // rather than leaving a file nobody will release.
    struct Release {
      gwflocktype* record;
      ~Release() { gwflock_unlock(record); }
    } release{&record};
    // A lock file taken over from an ended holder still belongs to that
    // holder's account, which is what others are shown. Made anew, it is
    // ours; should somebody slip in meanwhile, they hold the file and we
    // do not.
    std::wstring fileOwner;
    if (qt::file_sharing::platform::FileOwnerName(lockFile, &fileOwner) && !user.empty() && fileOwner != user) {
      gwflock_unlock(&record);
      if (gwflock_lockw(nullptr, &record, lockFile.c_str(), user.c_str(), nullptr, 0) != 0) return false;
    }
    AddHeldLock(lockFile, &record);
    return true;
  }

  ustr FullName(const ustr& file) override { return ustr(AbsoluteName(file)); }

  bool Unlock(const ustr& file) override { return ReleaseHeldLock(LockFileOf(file)); }

  ustr RelativeName(const ustr& file) override {
    const std::wstring full = AbsoluteName(file);
    if (!folder_.empty() && full.size() > folder_.size() &&
        qt::file_sharing::platform::FileNameKey(full.substr(0, folder_.size())) == qt::file_sharing::platform::FileNameKey(folder_)) {
      return full.substr(folder_.size());
    }
    return full;
  }

 private:
  std::wstring folder_;  // with its trailing separator
};

}  // namespace

std::unique_ptr<SharingService> NewFileSystemService() {
  return std::unique_ptr<SharingService>(new FileSystemService);
}

}  // namespace files
}  // namespace qt
