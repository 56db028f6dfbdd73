// What the plain lock needs of the operating system: a lock file whose open
// handle is the lock (lock_file_platform_win.cpp / lock_file_platform_posix.cpp).
//
// Windows: share modes do the work (the holder shares reading only).
// Linux: the holder keeps an open-file-description lock on a byte beyond the
// content, so readers (also over SMB, where such locks become mandatory
// byte-range locks) can still read the holder's name.
#ifndef QUILTOOL_FILES_LOCK_FILE_PLATFORM_H
#define QUILTOOL_FILES_LOCK_FILE_PLATFORM_H

#include <cstddef>
#include <string>

#include "qn_wintypes.h"

namespace qt {
namespace lock_file {
namespace platform {

// What an operating-system failure means to the lock.
enum class Outcome {
  Ok,
  Held,         // another open of the file holds it
  Missing,      // the file (or its folder) is not there, or went away meanwhile
  Transient,    // the file is between two holders (being deleted): try again
  Unsupported,  // the file system cannot lock (NFS without a lock manager)
  Failed,       // anything else: no access, not a file, I/O error
};

// Which step failed; the same error means different things on each.
enum class Step { Open, Lock, Read, Write };

// The one place per platform where OS error codes (GetLastError / errno)
// become outcomes.
Outcome OutcomeFromOsError(int error, Step step);

// Opens the lock file for reading and writing and makes the handle the lock:
// create = true creates or truncates it (CREATE_ALWAYS), false opens an
// existing one (OPEN_EXISTING). On Ok, *handle is the held lock.
Outcome Acquire(const std::wstring& name, bool create, HANDLE* handle);
// Whether some open of the file holds the lock, changing nothing: Ok when
// nobody does, Held, Missing, Unsupported, or Failed when it cannot be told.
Outcome Probe(const std::wstring& name);
// Whether this account could take the file over once nobody holds it:
// open it for writing, or (Linux) remove it and make its own. Ok, Failed
// (never: another account's file it may neither write nor remove), Missing.
Outcome CanTakeOver(const std::wstring& name);
// Opens the file beside a holder (reading, sharing reading and writing),
// reads up to `size` bytes from its start and closes it.
Outcome ReadHead(const std::wstring& name, void* buffer, size_t size, size_t* got);
// Writes at the start of the held file.
bool WriteHead(HANDLE handle, const void* data, size_t size);
// Gives the lock up and leaves the file as it is (a probe that found it free).
void Close(HANDLE handle);
// Gives the lock up and deletes the lock file, unless another holder has
// already put a file of its own under that name.
void Release(HANDLE handle, const std::wstring& name);

}  // namespace platform
}  // namespace lock_file
}  // namespace qt

#endif
