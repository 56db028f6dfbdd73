#include "core/gmem.h"

#include <cstdio>

#include "core/frame_state.h"
#include "core/gmem_platform.h"
#include "gwframe.h"

QtGmemCalls qt_gmem_calls_in_use = *qt::gmem::platform::DefaultCalls();

namespace {

QtGmemCalls& Calls() { return qt_gmem_calls_in_use; }

void* ReportOutOfMemory(const char* format, int tag) {
  char message[64];
  std::snprintf(message, sizeof message, format, tag);
  qt::ReportError(-2, message);
  return nullptr;
}

}  // namespace

QtGmemCalls* qt_gmem_calls() { return &Calls(); }

const QtGmemCalls* qt_gmem_default_calls() { return qt::gmem::platform::DefaultCalls(); }

size_t qt_gmem_size(const void* pointer) {
  if (!pointer) return 0;
  void* handle = Calls().handle(pointer);
  return handle ? Calls().size(handle) : 0;
}

void* gwGmalloc(unsigned long size, int tag) {
  QtGmemCalls& c = Calls();
  void* handle = c.alloc(size, false);
  void* pointer = handle ? c.lock(handle) : nullptr;
  if (!pointer) {
    if (handle) c.free(handle);
    return ReportOutOfMemory("gwGmalloc() out of memory (%d)", tag);
  }
  return pointer;
}

void* gwGrealloc(void* block, unsigned long size, int tag) {
  if (!block) return gwGmalloc(size, tag);
  QtGmemCalls& c = Calls();
  // Arrays grow one record at a time: most steps fit the block's room.
  if (c.resizeInPlace && c.resizeInPlace(block, size)) return block;
  void* handle = c.handle(block);
  if (!handle) return nullptr;
  c.unlock(handle);
  void* resized = c.realloc(handle, size);
  void* pointer = resized ? c.lock(resized) : nullptr;
  // The old block stays allocated, unlocked, as the Windows call leaves it.
  if (!pointer) return ReportOutOfMemory("gwGrealloc() out of memory (%d)", tag);
  return pointer;
}

void* gwGfree(void* block) {
  if (!block) return nullptr;
  QtGmemCalls& c = Calls();
  void* handle = c.handle(block);
  if (!handle) return nullptr;
  c.unlock(handle);
  c.free(handle);
  return nullptr;
}

void* gwGmallocH(unsigned long size, void** handle) {
  QtGmemCalls& c = Calls();
  void* h = c.alloc(size, true);
  if (handle) *handle = h;
  if (!h) return ReportOutOfMemory("Out of memory gwGmallocH() (%d)", 1);
  void* pointer = c.lock(h);
  if (!pointer) {
    c.free(h);
    return ReportOutOfMemory("Out of memory gwGmallocH() (%d)", 2);
  }
  return pointer;
}
