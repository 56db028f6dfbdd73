// The fixed English messages of the plain lock.
#ifndef QUILTOOL_FILES_GWFLOCK_MESSAGES_H
#define QUILTOOL_FILES_GWFLOCK_MESSAGES_H

#include "qn_wintypes.h"

namespace qt {
namespace lock_file {

void ShowNoPermission(HWND owner);        // the lock file could not be created
void ShowReadError(HWND owner);           // the held lock file could not be read
void ShowInUse(HWND owner);               // held, by a lock file that names nobody
void ShowInUseBy(HWND owner, const wchar_t* holder);

}  // namespace lock_file
}  // namespace qt

#endif
