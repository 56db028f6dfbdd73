#include "files/lock_inspect.h"

#include <new>
#include <string>

#include "core/boundary.h"
#include "core/fs.h"
#include "files/lock_content.h"
#include "files/lock_file_platform.h"

QtLockFileState qt_inspect_lock_file(const wchar_t* lockFile, ustr* holder) {
  namespace platform = qt::lock_file::platform;
  using platform::Outcome;
  return qt::NoThrow<QtLockFileState>("qt_inspect_lock_file", QT_LOCK_FILE_UNKNOWN, [&]() -> QtLockFileState {
    if (holder) holder->clear();
    if (!lockFile || !*lockFile) return QT_LOCK_FILE_UNKNOWN;
    const std::wstring name = qt::fs::FullName(std::wstring(lockFile));
    if (!qt::fs::Exists(name)) return QT_LOCK_FILE_ABSENT;
    const Outcome probe = platform::Probe(name);
    // A file being deleted is on its way out: its holder let go.
    if (probe == Outcome::Missing || probe == Outcome::Transient) return QT_LOCK_FILE_ABSENT;
    if (probe == Outcome::Unsupported) return QT_LOCK_FILE_NO_LOCKING;
    unsigned char head[qt::lock_file::kHolderReadBytes];
    size_t got = 0;
    const Outcome read = platform::ReadHead(name, head, sizeof head, &got);
    if (read == Outcome::Missing || read == Outcome::Transient) return QT_LOCK_FILE_ABSENT;
    if (read != Outcome::Ok) return QT_LOCK_FILE_UNKNOWN;
    std::wstring name16;
    const bool readable = qt::lock_file::HolderName(head, got, &name16);
    if (holder) *holder = ustr(name16);
    // A readable file that the probe could not open for writing counts as
    // held, as it does for whoever tries to lock it.
    if (probe != Outcome::Ok) return readable ? QT_LOCK_FILE_HELD : QT_LOCK_FILE_UNKNOWN;
    // Nobody holds it: what its content says no longer matters, only
    // whether this account may replace it.
    const Outcome mine = platform::CanTakeOver(name);
    if (mine == Outcome::Missing) return QT_LOCK_FILE_ABSENT;
    return mine == Outcome::Ok ? QT_LOCK_FILE_LEFT_BEHIND : QT_LOCK_FILE_LEFT_BEHIND_FOREIGN;
  });
}
