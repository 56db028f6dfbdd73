// Shared helpers of the array families.
#ifndef QUILTOOL_CORE_GWARRAY_RECORDS_H
#define QUILTOOL_CORE_GWARRAY_RECORDS_H

#include "gwarray.h"

namespace qt {
namespace gwarray {

// A header that can be read without touching memory it does not own.
inline bool Usable(const gwarraytype* a) {
  return a && a->recordSize > 0 && a->count >= 0 && (a->count == 0 || a->data);
}

inline bool InRange(const gwarraytype* a, int index) { return index >= 0 && index < a->count; }

inline char* Record(const gwarraytype* a, int index) {
  return static_cast<char*>(a->data) + static_cast<size_t>(index) * static_cast<size_t>(a->recordSize);
}

// Grows the block by n records (one reallocation to exactly the new count)
// and copies n records from source to the end. A source inside the block
// itself is allowed. When the block cannot grow, the array is left empty
// (the old block is dropped, not freed), failureText goes to the error hook
// when given, and the result is -2.
int AppendRecords(gwarraytype* a, const void* source, int n, const char* failureText);
// gwarray_insert with the failure text of the caller's choice (or none).
int InsertRecord(gwarraytype* a, int index, const void* record, const char* failureText);

}  // namespace gwarray
}  // namespace qt

#endif
