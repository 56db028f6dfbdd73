#include "files/lock_inspect.h"

#include <new>
#include <string>

#include "files/lock_content.h"
#include "files/lock_file.h"

QtLockFileState qt_inspect_lock_file(const wchar_t* lockFile, ustr* holder) {
  using qt::lockfile::Outcome;
  try {
    if (holder) holder->clear();
    if (!lockFile || !*lockFile) return QT_LOCK_FILE_UNKNOWN;
    const std::wstring name = qt::lockfile::FullName(lockFile);
    if (!qt::lockfile::Exists(name)) return QT_LOCK_FILE_ABSENT;
    const Outcome probe = qt::lockfile::Probe(name);
    // A file being deleted is on its way out: its holder let go.
    if (probe == Outcome::Missing || probe == Outcome::Transient) return QT_LOCK_FILE_ABSENT;
    if (probe == Outcome::Unsupported) return QT_LOCK_FILE_NO_LOCKING;
    unsigned char head[qt::lockfile::kHolderReadBytes];
    size_t got = 0;
    const Outcome read = qt::lockfile::ReadHead(name, head, sizeof head, &got);
    if (read == Outcome::Missing || read == Outcome::Transient) return QT_LOCK_FILE_ABSENT;
    if (read != Outcome::Ok) return QT_LOCK_FILE_UNKNOWN;
    if (holder) *holder = ustr(qt::lockfile::HolderName(head, got));
    // A readable file that the probe could not open for writing counts as
    // held, as it does for whoever tries to lock it.
    return probe == Outcome::Ok ? QT_LOCK_FILE_LEFT_BEHIND : QT_LOCK_FILE_HELD;
  } catch (const std::bad_alloc&) {
    return QT_LOCK_FILE_UNKNOWN;
  }
}
