// A look at a plain lock file that changes nothing: is it there, does
// anybody hold it, whose name does it carry. For the file-based service and
// the quiltool command; not part of the interface callers use.
#ifndef QUILTOOL_FILES_LOCK_INSPECT_H
#define QUILTOOL_FILES_LOCK_INSPECT_H

#include "ustr.h"

enum QtLockFileState {
  QT_LOCK_FILE_ABSENT = 0,
  QT_LOCK_FILE_LEFT_BEHIND = 1,  // there, but no process holds it
  QT_LOCK_FILE_HELD = 2,
  QT_LOCK_FILE_UNKNOWN = -1,     // cannot be read or probed
  QT_LOCK_FILE_NO_LOCKING = -2,  // the file system cannot lock
};

// holder, when given, receives the name written in the lock file.
QtLockFileState qt_inspect_lock_file(const wchar_t* lockFile, ustr* holder);

#endif
