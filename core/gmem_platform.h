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
#include "gwarray.h"

namespace qt {
namespace gmem {
namespace platform {

// The platform's own table; lives as long as the process.
const QtGmemCalls* DefaultCalls();

// The table's resizeInPlace entry where the platform has one (Linux);
// Windows defines it to refuse, and leaves its table's entry null.
bool ResizeInPlace(void* pointer, size_t size);
// Appends one record to an array whose block has hidden room for it: the
// block stays where it is, its size becomes exactly the new count's, the
// record is copied to its end and the count goes up; a record from inside
// the block is fine. Everything else (no block yet, no room, a pointer
// that is not one of ours) is handed to `otherwise` with the same
// arguments as a tail call, so that the common case is a single leaf call.
// The caller has checked the header (gwarray_records.h Usable) and that
// the platform's own table is in use. Windows always hands over.
using AppendRecordStep = int (*)(gwarraytype* array, const void* record);
int AppendRecord(gwarraytype* array, const void* record, AppendRecordStep otherwise);

}  // namespace platform
}  // namespace gmem
}  // namespace qt

#endif
