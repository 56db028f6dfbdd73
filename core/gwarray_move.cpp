#include <algorithm>

#include "core/gwarray_records.h"
#include "gwarray.h"

using qt::gwarray::InRange;
using qt::gwarray::Record;
using qt::gwarray::Usable;

int gwarray_move(gwarraytype* array, int index, int delta) {
  if (delta == 0) return 0;
  if (!Usable(array) || !InRange(array, index)) return -1;
  const long long target = static_cast<long long>(index) + delta;
  if (target < 0 || target >= array->count) return -1;
  // Rotating the span between the two places moves the record and shifts
  // the others by one without a work record.
  const int to = static_cast<int>(target);
  char* first = Record(array, std::min(index, to));
  char* last = Record(array, std::max(index, to) + 1);
  const size_t size = static_cast<size_t>(array->recordSize);
  std::rotate(first, delta < 0 ? last - size : first + size, last);
  return 0;
}

int gwarray_move(gwarraytype* array, const std::vector<int>& indexes, int delta) {
  if (indexes.empty()) return -1;
  if (delta == 0) return 1;
  if (!Usable(array)) return -1;
  // Every index is checked before anything moves, so that a bad list
  // leaves the array as it was.
  for (size_t i = 0; i < indexes.size(); ++i) {
    if (!InRange(array, indexes[i])) return -1;
    if (i > 0 && indexes[i] <= indexes[i - 1]) return -1;
  }
  if (delta < 0 && static_cast<long long>(indexes.front()) < -static_cast<long long>(delta)) return -1;
  if (delta > 0 && array->count - indexes.back() <= delta) return -1;
  // Moving the front-most record first (backwards) or the hind-most first
  // (forwards) never disturbs a record that is still to move.
  if (delta < 0) {
    for (int index : indexes)
      if (gwarray_move(array, index, delta) != 0) return -1;
  } else {
    for (auto it = indexes.rbegin(); it != indexes.rend(); ++it)
      if (gwarray_move(array, *it, delta) != 0) return -1;
  }
  return 0;
}
