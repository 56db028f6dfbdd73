#include "gwarray.h"

#include <cstring>
#include <limits>
#include <memory>
#include <new>

#include "core/array_monitor.h"
#include "core/frame_state.h"
#include "core/gmem.h"
#include "core/gmem_platform.h"
#include "core/gwarray_records.h"

using qt::gwarray::InRange;
using qt::gwarray::Record;
using qt::gwarray::Usable;

namespace {

const int kArrayTag = 1200;

// The new block size, or false when it exceeds what a count or a
// global-memory size can hold.
bool BlockSize(const gwarraytype* a, int added, unsigned long* bytes) {
  const long long count = static_cast<long long>(a->count) + added;
  if (count > std::numeric_limits<int>::max()) return false;
  const unsigned long long total = static_cast<unsigned long long>(count) * static_cast<unsigned>(a->recordSize);
  if (total > std::numeric_limits<unsigned long>::max()) return false;
  *bytes = static_cast<unsigned long>(total);
  return true;
}

// Resizes the block to count + added records. On failure the caller's
// records are gone: the array is emptied, as callers of these functions
// treat the failure as fatal for the list.
char* Grow(gwarraytype* a, int added, const char* failureText) {
  unsigned long bytes = 0;
  void* grown = BlockSize(a, added, &bytes) ? gwGrealloc(a->data, bytes, kArrayTag) : nullptr;
  if (!grown) {
    a->data = nullptr;
    a->count = 0;
    if (failureText) qt::ReportError(-2, failureText);
    return nullptr;
  }
  a->data = grown;
  return static_cast<char*>(grown);
}

}  // namespace

namespace qt {
namespace gwarray {

int AppendRecords(gwarraytype* a, const void* source, int n, const char* failureText) {
  const size_t size = static_cast<size_t>(a->recordSize);
  const char* src = static_cast<const char*>(source);
  const char* old = static_cast<const char*>(a->data);
  // The reallocation keeps the contents, so a source inside the block is
  // found again at the same offset in the new one.
  const bool inside = old && src >= old && src < old + static_cast<size_t>(a->count) * size;
  const size_t offset = inside ? static_cast<size_t>(src - old) : 0;
  char* block = Grow(a, n, failureText);
  if (!block) return -2;
  if (inside) src = block + offset;
  char* end = block + static_cast<size_t>(a->count) * size;
  // Single small records are the common case; copies of a known size are
  // inlined instead of calling the library routine.
  if (n == 1 && size == 4) {
    std::memmove(end, src, 4);
  } else if (n == 1 && size == 8) {
    std::memmove(end, src, 8);
  } else if (n == 1 && size == 16) {
    std::memmove(end, src, 16);
  } else {
    std::memmove(end, src, static_cast<size_t>(n) * size);
  }
  a->count += n;
  return 0;
}

}  // namespace gwarray
}  // namespace qt

int gwarray_init(gwarraytype* array, int recordSize) {
  if (!array) return -1;
  array->data = nullptr;
  array->count = 0;
  array->recordSize = 0;
  if (recordSize < 1) return -1;
  array->recordSize = recordSize;
  qt::array_monitor::ArrayInitialized();
  return 0;
}

namespace {

int AppendOneRecord(gwarraytype* array, const void* record) {
  if (!Usable(array)) return -1;
  return qt::gwarray::AppendRecords(array, record, 1, "gwarray_append() out of memory");
}

}  // namespace

int gwarray_append(gwarraytype* array, const void* record) {
  if (!array || !record) return -1;
  // Appending one record to a block with hidden room is what a program does
  // most. The platform takes it in one step, trusting the header only as
  // far as it checks it, and hands everything else back to the full checks.
  if (qt_gmem_own_resize_in_use()) return qt::gmem::platform::AppendRecord(array, record, AppendOneRecord);
  return AppendOneRecord(array, record);
}

int gwarray_append_array(gwarraytype* array, const gwarraytype* other) {
  if (!Usable(array) || !other) return -1;
  if (other->count < 1 || !other->data) return 0;
  if (other->recordSize != array->recordSize) return -3;
  return qt::gwarray::AppendRecords(array, other->data, other->count, "gwarray_append_array() out of memory");
}

int gwarray_insert(gwarraytype* array, int index, const void* record) {
  return qt::gwarray::InsertRecord(array, index, record, "gwarray_insert() out of memory");
}

int qt::gwarray::InsertRecord(gwarraytype* array, int index, const void* record, const char* failureText) {
  if (!Usable(array) || !record || index < 0) return -1;
  if (index >= array->count) return AppendRecords(array, record, 1, failureText);
  const size_t size = static_cast<size_t>(array->recordSize);
  // A record from inside the block would move under the shift below.
  std::unique_ptr<char[]> copy;
  const char* src = static_cast<const char*>(record);
  const char* old = static_cast<const char*>(array->data);
  if (src >= old && src < old + static_cast<size_t>(array->count) * size) {
    copy.reset(new (std::nothrow) char[size]);
    if (!copy) return -2;
    std::memcpy(copy.get(), src, size);
    src = copy.get();
  }
  char* block = Grow(array, 1, failureText);
  if (!block) return -2;
  char* at = block + static_cast<size_t>(index) * size;
  std::memmove(at + size, at, static_cast<size_t>(array->count - index) * size);
  std::memcpy(at, src, size);
  ++array->count;
  return 0;
}

int gwarray_delete(gwarraytype* array, int index) {
  if (!Usable(array) || !InRange(array, index)) return -1;
  char* at = Record(array, index);
  const size_t size = static_cast<size_t>(array->recordSize);
  std::memmove(at, at + size, static_cast<size_t>(array->count - index - 1) * size);
  --array->count;
  return 0;
}

int gwarray_get(const gwarraytype* array, int index, void* out) {
  if (!Usable(array) || !out) return -1;
  if (!InRange(array, index)) {
    std::memset(out, 0, static_cast<size_t>(array->recordSize));
    return -1;
  }
  std::memcpy(out, Record(array, index), static_cast<size_t>(array->recordSize));
  return 0;
}

void* gwarray_at(const gwarraytype* array, int index) {
  if (!Usable(array) || !InRange(array, index)) return nullptr;
  return Record(array, index);
}

int gwarray_update(gwarraytype* array, int index, const void* record) {
  if (!Usable(array) || !record || !InRange(array, index)) return -1;
  std::memmove(Record(array, index), record, static_cast<size_t>(array->recordSize));
  return 0;
}

void gwarray_swap(gwarraytype* array, int i, int j) {
  if (!Usable(array) || i == j || !InRange(array, i) || !InRange(array, j)) return;
  char* a = Record(array, i);
  char* b = Record(array, j);
  for (int k = 0; k < array->recordSize; ++k) {
    const char t = a[k];
    a[k] = b[k];
    b[k] = t;
  }
}

int gwarray_reset(gwarraytype* array) {
  if (!array) return -1;
  array->data = gwGfree(array->data);
  array->count = 0;
  return 0;
}

int gwarray_release(gwarraytype* array) {
  if (!array) return -1;
  gwGfree(array->data);
  array->data = nullptr;
  array->count = 0;
  array->recordSize = 0;
  qt::array_monitor::ArrayReleased();
  return 0;
}
