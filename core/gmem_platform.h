// The movable-memory calls of each target (gmem_platform_win.cpp /
// gmem_platform_posix.cpp), handed to the portable helpers as a table so
// that a test can make any one of them fail.
//
// Windows: GlobalAlloc and kin, no in-place shortcut. Linux: heap blocks
// registered by their pointer, so that a pointer the library did not hand
// out is refused without reading memory in front of it; a block may hold
// hidden room beyond its size (poisoned under the address sanitizer), so
// that growing it one record at a time costs amortised constant time while
// the size every caller sees is exactly the size asked for.
#ifndef QUILTOOL_CORE_GMEM_PLATFORM_H
#define QUILTOOL_CORE_GMEM_PLATFORM_H

#include "core/gmem.h"

namespace qt {
namespace gmem {
namespace platform {

// The platform's own table; lives as long as the process.
const QtGmemCalls* DefaultCalls();

// The table's resizeInPlace entry where the platform has one (Linux);
// Windows defines it to refuse, and leaves its table's entry null.
bool ResizeInPlace(void* pointer, size_t size);
// ResizeInPlace followed by copying n bytes from source to the block's new
// end, in one step: appending a record to an array does nothing else, as
// often as a program can call it. For a table whose entry is the platform's
// own; a source inside the block is fine, as the block does not move.
bool AppendInPlace(void* pointer, size_t size, const void* source, size_t n);

}  // namespace platform
}  // namespace gmem
}  // namespace qt

#endif
