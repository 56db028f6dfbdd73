#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include "core/boundary.h"
#include "core/gwarray_records.h"
#include "gwarray.h"

using qt::gwarray::Record;
using qt::gwarray::Usable;

namespace {

bool Sortable(const gwarraytype* a) { return Usable(a) && a->data && a->count >= 1; }

// Writes record from[k] of a copy of the block to position to[k], for all k.
int Permute(gwarraytype* array, const std::vector<int>& from, const std::vector<int>& to) {
  const size_t size = static_cast<size_t>(array->recordSize);
  const size_t n = from.size();
  std::unique_ptr<char[]> taken(new (std::nothrow) char[n * size + 1]);
  if (!taken) return -2;
  for (size_t k = 0; k < n; ++k) std::memcpy(taken.get() + k * size, Record(array, from[k]), size);
  for (size_t k = 0; k < n; ++k) std::memcpy(Record(array, to[k]), taken.get() + k * size, size);
  return 0;
}

}  // namespace

int gwarray_sort(gwarraytype* array, const std::vector<int>& keys) {
  if (!Sortable(array) || keys.size() > static_cast<size_t>(array->count)) return -1;
  return qt::NoThrow<int>("gwarray_sort", -2, [&]() -> int {
    std::vector<int> order(keys.size());
    for (size_t i = 0; i < order.size(); ++i) order[i] = static_cast<int>(i);
    std::sort(order.begin(), order.end(), [&keys](int a, int b) { return keys[a] < keys[b]; });
    std::vector<int> positions(order.size());
    for (size_t i = 0; i < positions.size(); ++i) positions[i] = static_cast<int>(i);
    return Permute(array, order, positions);
  });
}

int gwarray_sort(gwarraytype* array, const std::vector<std::pair<int, int>>& pairs) {
  if (!Sortable(array)) return -1;
  return qt::NoThrow<int>("gwarray_sort", -2, [&]() -> int {
    // A position listed twice would duplicate one record over another.
    std::vector<bool> listed(static_cast<size_t>(array->count), false);
    std::vector<int> positions(pairs.size());
    for (size_t k = 0; k < pairs.size(); ++k) {
      const int p = pairs[k].first;
      if (p < 0 || p >= array->count || listed[static_cast<size_t>(p)]) return -1;
      listed[static_cast<size_t>(p)] = true;
      positions[k] = p;
    }
    std::vector<int> byKey(pairs.size());
    for (size_t k = 0; k < byKey.size(); ++k) byKey[k] = static_cast<int>(k);
    std::sort(byKey.begin(), byKey.end(), [&pairs](int a, int b) { return pairs[a].second < pairs[b].second; });
    std::vector<int> from(byKey.size());
    for (size_t k = 0; k < from.size(); ++k) from[k] = positions[static_cast<size_t>(byKey[k])];
    return Permute(array, from, positions);
  });
}
