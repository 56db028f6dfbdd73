#include <windows.h>

#include "core/gmem_platform.h"

namespace {

void* Alloc(size_t size, bool zero) { return GlobalAlloc(GMEM_MOVEABLE | (zero ? GMEM_ZEROINIT : 0), size); }
void* Lock(void* handle) { return GlobalLock(handle); }
void* Handle(const void* pointer) { return GlobalHandle(pointer); }
void Unlock(void* handle) { GlobalUnlock(handle); }
void* Realloc(void* handle, size_t size) { return GlobalReAlloc(handle, size, GMEM_MOVEABLE); }
void Free(void* handle) { GlobalFree(handle); }
size_t Size(void* handle) { return GlobalSize(handle); }

const QtGmemCalls kWindowsCalls = {Alloc, Lock, Handle, Unlock, Realloc, Free, Size, nullptr};

}  // namespace

namespace qt {
namespace gmem {
namespace platform {

const QtGmemCalls* DefaultCalls() { return &kWindowsCalls; }

// GlobalReAlloc decides where a block goes; there is no room of our own.
bool ResizeInPlace(void*, size_t) { return false; }
int AppendRecord(gwarraytype* array, const void* record, AppendRecordStep otherwise) { return otherwise(array, record); }

}  // namespace platform
}  // namespace gmem
}  // namespace qt
