// A look at a plain lock file that changes nothing: is it there, does
// anybody hold it, could this account take it over, whose name does it
// carry. The one answer that the file-based service and the quiltool
// command give; not part of the interface callers use.
#ifndef QUILTOOL_FILES_LOCK_INSPECT_H
#define QUILTOOL_FILES_LOCK_INSPECT_H

#include "ustr.h"

enum QtLockFileState {
  QT_LOCK_FILE_ABSENT = 0,
  QT_LOCK_FILE_LEFT_BEHIND = 1,  // there, but no process holds it: the next lock takes it over
  QT_LOCK_FILE_HELD = 2,         // a running program holds it (gwflock_lockw: -2)
  // Left behind, but this account may neither write nor remove it (another
  // account's file in a folder where only owners remove files): nobody
  // holds the lock, yet this account cannot lock (gwflock_lockw: -1) until
  // the file's owner or an administrator removes it.
  QT_LOCK_FILE_LEFT_BEHIND_FOREIGN = 3,
  QT_LOCK_FILE_UNKNOWN = -1,     // cannot be read or probed, or held with content that is no lock file's (gwflock_lockw: -3)
  QT_LOCK_FILE_NO_LOCKING = -2,  // the file system cannot lock
};

// holder, when given, receives the name written in the lock file (empty
// when it names nobody or cannot be read).
QtLockFileState qt_inspect_lock_file(const wchar_t* lockFile, ustr* holder);

#endif
