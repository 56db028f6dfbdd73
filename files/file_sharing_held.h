// The lock files this process holds through the file-based service. A lock
// found here is "locked by me"; the rest are released when the process ends
// normally, so that a clean exit leaves no lock file behind.
#ifndef QUILTOOL_FILES_FILE_SHARING_HELD_H
#define QUILTOOL_FILES_FILE_SHARING_HELD_H

#include <string>

#include "gwflock.h"

namespace qt {
namespace files {

// Looked up by the full name of the lock file.
bool HoldsLock(const std::wstring& lockFile);
// Takes over a held record (the caller's record is cleared). When it throws,
// the record is left as it was, still holding the lock.
void AddHeldLock(const std::wstring& lockFile, gwflocktype* record);
// Unlocks and forgets; false when this process does not hold it.
bool ReleaseHeldLock(const std::wstring& lockFile);

}  // namespace files
}  // namespace qt

#endif
