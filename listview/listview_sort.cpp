// Sorting and reversing. Rows are reordered among their siblings only:
// category rows stay where they are and split the rows into groups sorted
// on their own; inside a group children follow their parent. The sort keys
// are read once per sort, so comparing two rows never converts a value.
#include <algorithm>
#include <cmath>
#include <string>
#include <unordered_map>

#include "listview/qnlistview2_impl.h"

namespace {

using qt::listview::Row;

// The new order of the rows: each group between category rows ordered by
// `less` among siblings, children right after their parent.
template <class Less>
std::vector<int> Arrange(const std::vector<Row>& rows, const Less& less) {
  const int n = static_cast<int>(rows.size());
  std::vector<int> order;
  order.reserve(rows.size());
  std::vector<int> roots;
  std::unordered_map<long long, int> position;
  std::unordered_map<int, std::vector<int> > children;
  std::vector<int> pending;
  for (int start = 0; start < n;) {
    if (rows[start].category) {
      order.push_back(start++);
      continue;
    }
    int end = start;
    bool tree = false;
    for (; end < n && !rows[end].category; ++end)
      if (rows[end].parentId != -1) tree = true;
    roots.clear();
    if (!tree) {
      for (int i = start; i < end; ++i) roots.push_back(i);
      std::stable_sort(roots.begin(), roots.end(), less);
      order.insert(order.end(), roots.begin(), roots.end());
      start = end;
      continue;
    }
    // A parent counts only when it is above its child in the group, which
    // also keeps a damaged tree from looping.
    position.clear();
    children.clear();
    for (int i = start; i < end; ++i) position[rows[i].id] = i;
    for (int i = start; i < end; ++i) {
      const auto p = rows[i].parentId == -1 ? position.end() : position.find(rows[i].parentId);
      if (p != position.end() && p->second < i) children[p->second].push_back(i);
      else roots.push_back(i);
    }
    std::stable_sort(roots.begin(), roots.end(), less);
    for (auto& entry : children) std::stable_sort(entry.second.begin(), entry.second.end(), less);
    pending.assign(roots.rbegin(), roots.rend());
    while (!pending.empty()) {
      const int at = pending.back();
      pending.pop_back();
      order.push_back(at);
      const auto c = children.find(at);
      if (c != children.end()) pending.insert(pending.end(), c->second.rbegin(), c->second.rend());
    }
    start = end;
  }
  return order;
}

// One cell as the built-in comparison sees it.
struct Key {
  enum Class { Empty = 0, Number = 1, NotANumber = 2, Text = 3 };
  int cls;
  int text;  // into the upper-cased texts
  double number;
};

int CompareKeys(const Key& a, const Key& b, const std::vector<std::wstring>& texts) {
  if (a.cls != b.cls) return a.cls < b.cls ? -1 : 1;
  if (a.cls == Key::Number) return a.number < b.number ? -1 : (b.number < a.number ? 1 : 0);
  if (a.cls == Key::Text) {
    const int c = texts[static_cast<size_t>(a.text)].compare(texts[static_cast<size_t>(b.text)]);
    return c < 0 ? -1 : (c > 0 ? 1 : 0);
  }
  return 0;
}

}  // namespace

bool QnListView2Impl::Sort(const std::vector<SortType>& types, const std::vector<int>& sortBy,
                           QnListView2::RowIsLessFunc less) {
  if (sortBy.empty() || types.size() != sortBy.size()) return false;
  for (size_t k = 0; k < sortBy.size(); ++k) {
    if (!validColumn(sortBy[k])) return false;
    if (types[k] != QnListView2::SortAscending && types[k] != QnListView2::SortDescending) return false;
  }
  const size_t keyCount = sortBy.size();
  std::vector<Key> keys(rows.size() * keyCount);
  std::vector<std::wstring> texts;
  for (size_t r = 0; r < rows.size(); ++r) {
    for (size_t k = 0; k < keyCount; ++k) {
      const Cell& c = rows[r].cells[static_cast<size_t>(sortBy[k])];
      Key& key = keys[r * keyCount + k];
      key.cls = Key::Empty;
      key.text = 0;
      key.number = 0;
      if (c.kind == QnListView2::KindText) {
        key.cls = Key::Text;
        key.text = static_cast<int>(texts.size());
        texts.push_back(c.text ? c.text->str() : std::wstring());
        for (wchar_t& ch : texts.back()) ch = qn_charupper(ch);
      } else if (c.kind != QnListView2::KindEmpty && c.kind != QnListView2::KindGeometry) {
        key.number = c.value().toDouble();
        key.cls = std::isnan(key.number) ? Key::NotANumber : Key::Number;
      }
    }
  }
  const std::vector<SortType>& dir = types;
  const auto builtIn = [&](int a, int b, size_t k) {
    return CompareKeys(keys[static_cast<size_t>(a) * keyCount + k], keys[static_cast<size_t>(b) * keyCount + k], texts);
  };
  std::vector<int> order;
  if (!less) {
    order = Arrange(rows, [&](int a, int b) {
      for (size_t k = 0; k < keyCount; ++k) {
        const int c = builtIn(a, b, k);
        if (c != 0) return dir[k] == QnListView2::SortDescending ? c > 0 : c < 0;
      }
      return false;
    });
  } else {
    order = Arrange(rows, [&](int a, int b) {
      for (size_t k = 0; k < keyCount; ++k) {
        bool declined = false;
        const long long la = rows[static_cast<size_t>(a)].lParam, lb = rows[static_cast<size_t>(b)].lParam;
        const bool ab = less(sortBy[k], dir[k], la, lb, declined);
        if (!declined) {
          if (ab) return true;
          const bool ba = less(sortBy[k], dir[k], lb, la, declined);
          if (!declined) {
            if (ba) return false;
            continue;
          }
        }
        const int c = builtIn(a, b, k);
        if (c != 0) return dir[k] == QnListView2::SortDescending ? c > 0 : c < 0;
      }
      return false;
    });
  }
  std::vector<Row> sorted;
  sorted.reserve(rows.size());
  int newSelectedCellRow = -1;
  for (size_t i = 0; i < order.size(); ++i) {
    if (order[i] == selectedCellRow) newSelectedCellRow = static_cast<int>(i);
    sorted.push_back(std::move(rows[static_cast<size_t>(order[i])]));
  }
  rows.swap(sorted);
  selectedCellRow = newSelectedCellRow;
  rowsMoved();
  return true;
}

bool QnListView2Impl::ReverseRows() {
  const std::vector<int> order = Arrange(rows, [](int a, int b) { return a > b; });
  std::vector<Row> reversed;
  reversed.reserve(rows.size());
  int newSelectedCellRow = -1;
  for (size_t i = 0; i < order.size(); ++i) {
    if (order[i] == selectedCellRow) newSelectedCellRow = static_cast<int>(i);
    reversed.push_back(std::move(rows[static_cast<size_t>(order[i])]));
  }
  rows.swap(reversed);
  selectedCellRow = newSelectedCellRow;
  rowsMoved();
  return true;
}
