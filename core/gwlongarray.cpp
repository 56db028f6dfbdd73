#include <cstring>
#include <new>
#include <vector>

#include "core/boundary.h"
#include "core/gwarray_records.h"
#include "gwarray.h"

using qt::gwarray::Usable;

namespace {

const int kValueSize = 4;
static_assert(sizeof(LONG) == kValueSize, "a value record is 32 bits wide");

bool HoldsValues(const gwarraytype* a) { return Usable(a) && a->recordSize == kValueSize; }

LONG ValueAt(const gwarraytype* a, int index) {
  LONG v;
  std::memcpy(&v, qt::gwarray::Record(a, index), sizeof v);
  return v;
}

}  // namespace

int gwlongarray_init(gwarraytype* array) { return gwarray_init(array, kValueSize); }
// Every call that copies a record checks the record size first: a value
// is never read from or written to a record of another size.
int gwlongarray_append(gwarraytype* array, LONG value) {
  return HoldsValues(array) ? gwarray_append(array, &value) : -1;
}
int gwlongarray_append_array(gwarraytype* array, const gwarraytype* other) {
  return HoldsValues(array) ? gwarray_append_array(array, other) : -1;
}
int gwlongarray_delete(gwarraytype* array, int index) { return gwarray_delete(array, index); }
int gwlongarray_get(const gwarraytype* array, int index, LONG* value) {
  if (HoldsValues(array)) return gwarray_get(array, index, value);
  if (value) *value = 0;
  return -1;
}
int gwlongarray_update(gwarraytype* array, int index, LONG value) {
  return HoldsValues(array) ? gwarray_update(array, index, &value) : -1;
}
int gwlongarray_reset(gwarraytype* array) { return gwarray_reset(array); }
int gwlongarray_release(gwarraytype* array) { return gwarray_release(array); }

LONG gwlongarray_get_at(const gwarraytype* array, int index) {
  if (!HoldsValues(array) || !qt::gwarray::InRange(array, index)) return 0;
  return ValueAt(array, index);
}

int gwlongarray_find_index(const gwarraytype* array, LONG value, int start) {
  if (!HoldsValues(array)) return -1;
  for (int i = start < 0 ? 0 : start; i < array->count; ++i) {
    if (ValueAt(array, i) == value) return i;
  }
  return -1;
}

int gwlongarray_append_unique(gwarraytype* array, LONG value) {
  if (gwlongarray_find_index(array, value, 0) >= 0) return 0;
  return gwlongarray_append(array, value);
}

int gwlongarray_delete_array(gwarraytype* array, const gwarraytype* values) {
  if (!HoldsValues(array) || !Usable(values)) return -1;
  if (values->count > 0 && values->recordSize != kValueSize) return -3;
  return qt::NoThrow<int>("gwlongarray_delete_array", -2, [&]() -> int {
    // Taken first: values may be the array itself.
    std::vector<LONG> wanted(static_cast<size_t>(values->count));
    for (int i = 0; i < values->count; ++i) wanted[static_cast<size_t>(i)] = ValueAt(values, i);
    for (LONG v : wanted) {
      const int at = gwlongarray_find_index(array, v, 0);
      if (at >= 0) gwarray_delete(array, at);
    }
    return 0;
  });
}
