// A hash index from a row key (LParam, row id, tag) to the rows carrying
// it, first row first. For each key it keeps its first and last row; each
// row links to the next row with the same key. Appending a row keeps it up
// to date in constant time; anything that moves rows marks it stale, and
// the next lookup rebuilds it once in linear time. A row's key changing
// is followed in place.
#ifndef QUILTOOL_LISTVIEW_ROW_INDEX_H
#define QUILTOOL_LISTVIEW_ROW_INDEX_H

#include <stddef.h>

#include <unordered_map>
#include <utility>
#include <vector>

namespace qt {
namespace listview {

template <class Key>
class RowIndex {
 public:
  bool valid() const { return valid_; }
  void invalidate() {
    valid_ = false;
    ends_.clear();
    next_.clear();
  }

  // keyOf(i) answers row i's key.
  template <class KeyOf>
  void rebuild(size_t rowCount, KeyOf keyOf) {
    invalidate();
    ends_.reserve(rowCount);
    next_.assign(rowCount, -1);
    for (size_t i = 0; i < rowCount; ++i) link(keyOf(i), static_cast<int>(i));
    valid_ = true;
  }

  // Row `row` was appended as the last row. Without memory for it the
  // index only goes stale: the next lookup rebuilds it.
  void append(const Key& key, int row) noexcept {
    if (!valid_) return;
    try {
      next_.push_back(-1);
      link(key, row);
    } catch (...) {
      invalidate();
    }
  }

  // Row `row` now carries newKey instead of oldKey. Costs a walk along
  // the rows sharing either key; without memory the index goes stale.
  void change(const Key& oldKey, const Key& newKey, int row) noexcept {
    if (!valid_) return;
    try {
      if (!unlink(oldKey, row)) {
        invalidate();
        return;
      }
      insertSorted(newKey, row);
    } catch (...) {
      invalidate();
    }
  }

  // The first row carrying key at or after startRow, or -1.
  int find(const Key& key, int startRow) const {
    const auto it = ends_.find(key);
    if (it == ends_.end() || it->second.second < startRow) return -1;
    int row = it->second.first;
    while (row >= 0 && row < startRow) row = next_[static_cast<size_t>(row)];
    return row;
  }

 private:
  void link(const Key& key, int row) {
    auto inserted = ends_.emplace(key, std::make_pair(row, row));
    if (!inserted.second) {
      next_[static_cast<size_t>(inserted.first->second.second)] = row;
      inserted.first->second.second = row;
    }
  }

  bool unlink(const Key& key, int row) {
    const auto it = ends_.find(key);
    if (it == ends_.end()) return false;
    std::pair<int, int>& e = it->second;
    const size_t at = static_cast<size_t>(row);
    if (e.first == row) {
      if (e.second == row) ends_.erase(it);
      else e.first = next_[at];
      next_[at] = -1;
      return true;
    }
    int prev = e.first;
    while (prev >= 0 && next_[static_cast<size_t>(prev)] != row) prev = next_[static_cast<size_t>(prev)];
    if (prev < 0) return false;
    next_[static_cast<size_t>(prev)] = next_[at];
    if (e.second == row) e.second = prev;
    next_[at] = -1;
    return true;
  }

  // Keeps each key's rows in ascending order.
  void insertSorted(const Key& key, int row) {
    auto inserted = ends_.emplace(key, std::make_pair(row, row));
    if (inserted.second) return;
    std::pair<int, int>& e = inserted.first->second;
    const size_t at = static_cast<size_t>(row);
    if (row < e.first) {
      next_[at] = e.first;
      e.first = row;
    } else if (row > e.second) {
      next_[static_cast<size_t>(e.second)] = row;
      e.second = row;
    } else {
      int prev = e.first;
      while (next_[static_cast<size_t>(prev)] < row) prev = next_[static_cast<size_t>(prev)];
      next_[at] = next_[static_cast<size_t>(prev)];
      next_[static_cast<size_t>(prev)] = row;
    }
  }

  bool valid_ = false;
  std::unordered_map<Key, std::pair<int, int> > ends_;  // first and last row
  std::vector<int> next_;
};

}  // namespace listview
}  // namespace qt

#endif
