// The plain lock of a shared file: an exclusive lock file held open for as
// long as the lock lasts, holding the name of its user.
//
// The lock file is exactly 200 bytes of UTF-16LE without byte-order mark:
// the user's name followed by '*' up to 100 characters. The open handle is
// the lock; a lock file that nobody holds open (its holder ended without
// unlocking) is taken over at once.
#ifndef QUILTOOL_GWFLOCK_H
#define QUILTOOL_GWFLOCK_H

#include "qn_wintypes.h"
#include "quiltool_export.h"

// Owned by the caller; clear it with gwflock_init before the first use.
struct gwflocktype {
  HANDLE handle;           // the open lock file; INVALID_HANDLE_VALUE (-1) when not held
  wchar_t lockFile[300];   // full name of the held lock file; empty when not held
};

// Characters of a holder's name that gwflock_lockw can hand back, terminator
// included: lockedBy must have room for this many.
#define GWFLOCK_NAME_SIZE 100

QT_API void gwflock_init(gwflocktype* lock);

// Takes the lock. Returns 0 (locked), -1 (the lock file could not be
// created, or a bad argument), -2 (someone else holds it; their name, when
// the lock file has one, goes to lockedBy) or -3 (the lock file could not be
// read). With showMessages, failures are also shown to the user.
QT_API int gwflock_lockw(HWND owner, gwflocktype* lock, const wchar_t* lockFile, const wchar_t* user,
                         wchar_t* lockedBy, int showMessages);
// 8-bit form (system code page: ANSI on Windows, UTF-8 on Linux); lockFile
// up to 260 and user up to 110 characters are used, lockedBy receives at
// most 100 bytes, terminator included.
QT_API int gwflock_lock(HWND owner, gwflocktype* lock, const char* lockFile, const char* user, char* lockedBy,
                        int showMessages);

// Closes and deletes a held lock file and clears the record; a record that
// holds nothing is left alone.
QT_API void gwflock_unlock(gwflocktype* lock);

#endif
