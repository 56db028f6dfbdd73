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

// Declared with the platform's other steps in core/gmem_platform.h, whose
// header needs the table above.
namespace qt {
namespace gmem {
namespace platform {
bool ResizeInPlace(void* pointer, size_t size);
bool AppendInPlace(void* pointer, size_t size, const void* source, size_t n);
}  // namespace platform
}  // namespace gmem
}  // namespace qt

// gwGrealloc's first step for a block growing by n bytes taken from
// source: the block is resized where it lies when the table can and it has
// the room, and the bytes copied to its new end; false otherwise, and then
// nothing has changed. Appending one record takes this step every time and
// little else, so it is inline and, with the platform's own table, one call.
inline bool qt_gmem_append_in_place(void* pointer, size_t size, const void* source, size_t n) {
  bool (*resize)(void*, size_t) = qt_gmem_calls_in_use.resizeInPlace;
  if (!pointer || !resize || n > size) return false;
  if (resize == qt::gmem::platform::ResizeInPlace) return qt::gmem::platform::AppendInPlace(pointer, size, source, n);
  if (!resize(pointer, size)) return false;
  std::memmove(static_cast<char*>(pointer) + (size - n), source, n);
  return true;
}

#endif
