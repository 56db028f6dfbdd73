// Movable global-memory blocks behind the gwG* helpers.
//
// The calls go through a table so that a test can make a chosen call fail,
// as it would when memory runs out; each target's table and its rules are
// in core/gmem_platform.h.
#ifndef QUILTOOL_CORE_GMEM_H
#define QUILTOOL_CORE_GMEM_H

#include <cstddef>
#include <cstring>

struct QtGmemCalls {
  // GlobalAlloc(GMEM_MOVEABLE | (zero ? GMEM_ZEROINIT : 0), size)
  void* (*alloc)(size_t size, bool zero);
  // GlobalLock: the block's pointer, null on failure.
  void* (*lock)(void* handle);
  // GlobalHandle: the handle of a locked pointer, null when it has none.
  void* (*handle)(const void* pointer);
  // GlobalUnlock.
  void (*unlock)(void* handle);
  // GlobalReAlloc(handle, size, GMEM_MOVEABLE): the new handle or null
  // (the old block then stays allocated).
  void* (*realloc)(void* handle, size_t size);
  // GlobalFree.
  void (*free)(void* handle);
  // GlobalSize.
  size_t (*size)(void* handle);
  // Optional shortcut: resizes the block of a locked pointer where it lies
  // when it has room, and says whether it did. Null where the platform has
  // none; a test that makes realloc fail nulls it too.
  bool (*resizeInPlace)(void* pointer, size_t size);
};

// The table in use; tests replace entries and restore them afterwards.
QtGmemCalls* qt_gmem_calls();
// The platform's own table.
const QtGmemCalls* qt_gmem_default_calls();
// Size of a block as its owner sees it (GlobalSize), 0 for no block.
size_t qt_gmem_size(const void* pointer);
// The table qt_gmem_calls() hands out, named for the inline step below.
extern QtGmemCalls qt_gmem_calls_in_use;

// The Linux table's own in-place step (core/gmem_platform.h). While the
// table in use still holds it, a caller may take the platform's shortcuts
// that bypass the table; a test that replaces the step turns them off.
namespace qt {
namespace gmem {
namespace platform {
bool ResizeInPlace(void* pointer, size_t size);
}  // namespace platform
}  // namespace gmem
}  // namespace qt

inline bool qt_gmem_own_resize_in_use() {
  return qt_gmem_calls_in_use.resizeInPlace == qt::gmem::platform::ResizeInPlace;
}

#endif
