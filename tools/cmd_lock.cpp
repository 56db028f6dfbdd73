// quiltool lock: who holds a shared project file, holding it by hand, and
// clearing a lock file that a crashed program left behind. The exit codes
// are listed in docs/locking.md.
#include <cstdio>
#include <string>
#include <vector>

#include "FileSharingServiceManager.h"
#include "cmd_lock_platform.h"
#include "command.h"
#include "files/lock_inspect.h"
#include "gwflock.h"
#include "qn_utf.h"
#include "ustr.h"

namespace {

enum ExitCode {
  kOk = 0,
  kFailed = 1,
  kUsage = 2,
  kHeld = 3,
  kNotFound = 4,
};

const char kUsageText[] =
    "usage: quiltool lock status FILE\n"
    "       quiltool lock take FILE [--user NAME]\n"
    "       quiltool lock release-stale FILE\n";

std::wstring Wide(const std::string& s) { return qn_utf8_to_wide(s.c_str(), s.size()); }
std::string Narrow(const std::wstring& s) { return qn_wide_to_utf8(s.c_str(), s.size(), QN_UTF_REPLACE_INVALID); }
std::string Narrow(const ustr& s) { return Narrow(s.str()); }

int Usage(FILE* err, const std::string& problem) {
  std::fprintf(err, "quiltool lock: %s\n%s", problem.c_str(), kUsageText);
  return kUsage;
}

std::string HolderText(const ustr& holder) { return holder.empty() ? "a user who left no name" : Narrow(holder); }

// Who may be asked to remove a lock file: its file-system owner.
std::string OwnerText(const ustr& lockFile) {
  const ustr owner = FileSharingServiceManager::GetFileOwner(lockFile.c_str());
  return owner.empty() ? "its owner" : "account " + Narrow(owner);
}

// Another account's lock file that nobody holds, in a folder where only
// owners delete, can be neither taken over nor removed by this account: the
// library says so, and status, take and release-stale all report it alike.
bool ReportUnremovableLeftover(const std::wstring& file, const ustr& lockFile, FILE* err) {
  ustr holder;
  if (qt_inspect_lock_file(lockFile.c_str(), &holder) != QT_LOCK_FILE_LEFT_BEHIND_FOREIGN) return false;
  std::fprintf(err,
               "quiltool lock: %s is not locked, but the lock file %s left behind by %s (whose program ended) "
               "cannot be replaced by this account; ask %s or an administrator to remove it\n",
               Narrow(file).c_str(), Narrow(lockFile).c_str(), HolderText(holder).c_str(), OwnerText(lockFile).c_str());
  return true;
}

int Status(const std::wstring& file, FILE* out, FILE* err) {
  const ustr lockFile = FileSharingServiceManager::LockFileName(file.c_str());
  ustr holder;
  const QtLockFileState state = qt_inspect_lock_file(lockFile.c_str(), &holder);
  const std::string name = Narrow(file), lock = Narrow(lockFile);
  switch (state) {
    case QT_LOCK_FILE_ABSENT:
      std::fprintf(out, "%s: not locked\n", name.c_str());
      return kOk;
    case QT_LOCK_FILE_LEFT_BEHIND_FOREIGN:
      std::fprintf(out,
                   "%s: not locked; the lock file %s was left behind by %s, whose program ended, and this "
                   "account cannot replace it; ask %s or an administrator to remove it\n",
                   name.c_str(), lock.c_str(), HolderText(holder).c_str(), OwnerText(lockFile).c_str());
      return kOk;
    case QT_LOCK_FILE_LEFT_BEHIND:
      std::fprintf(out,
                   "%s: not locked; the lock file %s was left behind by %s, whose program ended "
                   "(quiltool lock release-stale removes it)\n",
                   name.c_str(), lock.c_str(), HolderText(holder).c_str());
      return kOk;
    case QT_LOCK_FILE_HELD: {
      const ustr owner = FileSharingServiceManager::GetFileOwner(lockFile.c_str());
      std::fprintf(out, "%s: locked by %s (lock file %s", name.c_str(), HolderText(holder).c_str(), lock.c_str());
      if (!owner.empty()) std::fprintf(out, ", owned by account %s", Narrow(owner).c_str());
      std::fprintf(out, ")\n");
      return kHeld;
    }
    case QT_LOCK_FILE_NO_LOCKING:
      std::fprintf(err, "quiltool lock: the file system of %s cannot lock files\n", lock.c_str());
      return kFailed;
    default:
      std::fprintf(err, "quiltool lock: cannot tell whether %s is locked: the lock file %s cannot be read\n",
                   name.c_str(), lock.c_str());
      return kFailed;
  }
}

int ReportLockFailure(int result, const std::wstring& file, const ustr& lockFile, const wchar_t* holder, FILE* err) {
  const std::string name = Narrow(file), lock = Narrow(lockFile);
  if (result == -2) {
    std::fprintf(err, "quiltool lock: %s is locked by %s\n", name.c_str(), HolderText(ustr(holder)).c_str());
    return kHeld;
  }
  if (result == -3) {
    std::fprintf(err, "quiltool lock: the lock file %s exists but cannot be read\n", lock.c_str());
  } else {
    std::fprintf(err, "quiltool lock: cannot create the lock file %s (no permission in that folder?)\n", lock.c_str());
  }
  return kFailed;
}

int Take(const std::wstring& file, const std::wstring& user, FILE* out, FILE* err) {
  FileSharingServiceManager manager;
  if (!manager.FileExists(file.c_str())) {
    std::fprintf(err, "quiltool lock: %s: file not found\n", Narrow(file).c_str());
    return kNotFound;
  }
  const ustr lockFile = FileSharingServiceManager::LockFileName(file.c_str());
  if (!qt::cmd_lock::platform::Arm()) {
    std::fprintf(err, "quiltool lock: cannot wait for an interruption here\n");
    return kFailed;
  }
  gwflocktype lock;
  gwflock_init(&lock);
  wchar_t holder[GWFLOCK_NAME_SIZE] = {0};
  const int result = gwflock_lockw(nullptr, &lock, lockFile.c_str(), user.c_str(), holder, 0);
  if (result != 0) {
    qt::cmd_lock::platform::Disarm();
    if (result != -2 && ReportUnremovableLeftover(file, lockFile, err)) return kFailed;
    return ReportLockFailure(result, file, lockFile, holder, err);
  }
  std::fprintf(out, "holding %s as %s (lock file %s); interrupt to release\n", Narrow(file).c_str(),
               Narrow(user).c_str(), Narrow(lockFile).c_str());
  std::fflush(out);
  qt::cmd_lock::platform::Wait();
  gwflock_unlock(&lock);
  qt::cmd_lock::platform::Disarm();
  std::fprintf(out, "released %s\n", Narrow(file).c_str());
  std::fflush(out);
  return kOk;
}

int ReleaseStale(const std::wstring& file, FILE* out, FILE* err) {
  const ustr lockFile = FileSharingServiceManager::LockFileName(file.c_str());
  ustr previous;
  const QtLockFileState state = qt_inspect_lock_file(lockFile.c_str(), &previous);
  if (state == QT_LOCK_FILE_ABSENT) {
    std::fprintf(out, "%s: no lock file to remove\n", Narrow(file).c_str());
    return kOk;
  }
  // Taking the lock is the only safe test that nobody holds it; releasing
  // it then removes the file.
  gwflocktype lock;
  gwflock_init(&lock);
  wchar_t holder[GWFLOCK_NAME_SIZE] = {0};
  const int result = gwflock_lockw(nullptr, &lock, lockFile.c_str(), L"", holder, 0);
  if (result != 0) {
    if (result != -2 && ReportUnremovableLeftover(file, lockFile, err)) return kFailed;
    if (result == -2) {
      std::fprintf(err, "quiltool lock: not removed: %s is held by %s, whose program is running\n",
                   Narrow(lockFile).c_str(), HolderText(ustr(holder)).c_str());
      return kHeld;
    }
    return ReportLockFailure(result, file, lockFile, holder, err);
  }
  gwflock_unlock(&lock);
  std::fprintf(out, "removed the lock file %s left behind by %s\n", Narrow(lockFile).c_str(),
               HolderText(previous).c_str());
  return kOk;
}

int LockMain(const std::vector<std::string>& args, FILE* out, FILE* err) {
  if (!args.empty() && (qt_tool::IsHelp(args[0]) || args[0] == "help")) {
    std::fprintf(out, "%s", kUsageText);
    return kOk;
  }
  if (args.empty()) return Usage(err, "which action?");
  const std::string& action = args[0];
  std::vector<qt_tool::OptionSpec> specs;
  if (action == "take") specs.push_back({"--user", true});
  qt_tool::ParsedArgs a;
  const int code = qt_tool::ParseOptions(args, 1, specs, "quiltool lock", kUsageText, &a, out, err);
  if (code != qt_tool::kGoOn) return code;
  if (action != "status" && action != "take" && action != "release-stale") {
    return Usage(err, "unknown action '" + action + "'");
  }
  if (a.plain.size() != 1 || a.plain[0].empty()) return Usage(err, "give exactly one FILE");
  const std::wstring file = Wide(a.plain[0]);
  if (action == "status") return Status(file, out, err);
  if (action == "release-stale") return ReleaseStale(file, out, err);
  const std::wstring name = a.has("--user") ? Wide(a.value("--user")) : qt::cmd_lock::platform::AccountName();
  return Take(file, name, out, err);
}

const qt_tool::Registration kLock({"lock", "show, take or clear the lock of a shared project file", LockMain});

}  // namespace
