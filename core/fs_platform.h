// The steps of core/fs.h that differ by system (fs_platform_win.cpp /
// fs_platform_posix.cpp). They are reached through a table of function
// pointers, so that a test can make one chosen step fail and see what the
// portable part does with the failure.
#ifndef QUILTOOL_CORE_FS_PLATFORM_H
#define QUILTOOL_CORE_FS_PLATFORM_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "core/call_table.h"
#include "core/fs.h"

namespace qt {
namespace fs {
namespace platform {

// A file descriptor or a HANDLE.
typedef intptr_t Handle;

// The one translation of system error codes (errno / GetLastError).
FsError FromOsError(int error);

struct Calls {
  FsError (*kindOf)(const std::wstring& path, Kind* kind);
  // Opens an existing regular file for reading; *size is its length.
  FsError (*openRead)(const std::wstring& path, Handle* handle, uint64_t* size);
  // *got is 0 at the end of the file.
  FsError (*read)(Handle handle, void* buffer, size_t size, size_t* got);
  // Creates a new, empty file beside target under a name nobody uses.
  FsError (*createTemp)(const std::wstring& target, std::wstring* temp, Handle* handle);
  FsError (*write)(Handle handle, const void* data, size_t size, size_t* put);
  // kOk when target does not exist or the account may write it, and then
  // gives the temporary file target's permissions (and owner, where the
  // process may); kAccessDenied or kIsDirectory otherwise.
  FsError (*adoptTarget)(const std::wstring& target, Handle temp);
  // fsync / FlushFileBuffers.
  FsError (*sync)(Handle handle);
  FsError (*close)(Handle handle);
  // rename / MoveFileExW(MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH).
  FsError (*rename)(const std::wstring& from, const std::wstring& to);
  FsError (*remove)(const std::wstring& path);
  FsError (*fullName)(const std::wstring& path, std::wstring* full);
};

// The system's own steps.
const Calls& SystemCalls();
// The table in use, and the override tests change it through.
inline Calls& CurrentCalls() { return CallTable<Calls, &SystemCalls>::Current(); }
typedef CallTable<Calls, &SystemCalls>::Override CallsOverride;

}  // namespace platform
}  // namespace fs
}  // namespace qt

#endif
