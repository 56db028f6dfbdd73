// Sorting and reversing. Rows are reordered among their siblings only:
// category rows stay where they are and split the rows into groups sorted
// on their own; inside a group children follow their parent. The sort keys
// are read once per sort, so comparing two rows never converts a value;
// the rows themselves move once, at the end.
#include <algorithm>
#include <cmath>
#include <string>
#include <type_traits>
#include <unordered_map>

#include "listview/qnlistview2_impl.h"

namespace {

using qt::listview::Row;

// The new order of the rows: each group between category rows ordered by
// `order` among siblings (it reorders a list of row indices, given in
// ascending order), children right after their parent.
template <class Order>
std::vector<int> Arrange(const std::vector<Row>& rows, const Order& orderGroup) {
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
      orderGroup(roots);
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
    orderGroup(roots);
    for (auto& entry : children) orderGroup(entry.second);
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

// One cell as the built-in comparison sees it. Texts are compared where
// they lie, upper-casing as they go: most pairs differ in a few characters,
// so that is cheaper than upper-cased copies of every text.
struct Key {
  enum Class { Empty = 0, Number = 1, NotANumber = 2, Text = 3 };
  union {
    double number;
    const std::wstring* text;
  };
  int cls;
};

inline unsigned Upper(wchar_t c) {
  if (c < 128) return static_cast<unsigned>(c >= L'a' && c <= L'z' ? c - (L'a' - L'A') : c);
  return static_cast<unsigned>(qn_charupper(c));
}

inline int CompareTexts(const std::wstring& a, const std::wstring& b) {
  const size_t n = a.size() < b.size() ? a.size() : b.size();
  const wchar_t* x = a.data();
  const wchar_t* y = b.data();
  for (size_t i = 0; i < n; ++i) {
    // Equal characters upper-case alike: only differing ones are converted.
    if (x[i] == y[i]) continue;
    const unsigned ux = Upper(x[i]), uy = Upper(y[i]);
    if (ux != uy) return ux < uy ? -1 : 1;
  }
  return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

inline int CompareKeys(const Key& a, const Key& b) {
  if (a.cls != b.cls) return a.cls < b.cls ? -1 : 1;
  if (a.cls == Key::Number) return a.number < b.number ? -1 : (b.number < a.number ? 1 : 0);
  if (a.cls == Key::Text) return CompareTexts(*a.text, *b.text);
  return 0;
}

void ReadKey(const qt::listview::Cell& c, Key& key) {
  static const std::wstring kNoText;
  key.cls = Key::Number;
  switch (c.kind) {
    case QnListView2::KindText:
      key.cls = Key::Text;
      key.text = c.text ? &c.text->str() : &kNoText;
      return;
    case QnListView2::KindShort:
    case QnListView2::KindColorIndex: key.number = c.number.s; return;
    case QnListView2::KindInt: key.number = c.number.i; return;
    case QnListView2::KindUInt: key.number = c.number.u; return;
    case QnListView2::KindFloat: key.number = c.number.f; break;
    case QnListView2::KindDouble: key.number = c.number.d; break;
    case QnListView2::KindBool: key.number = c.number.b ? 1 : 0; return;
    default:  // Empty and geometry models
      key.cls = Key::Empty;
      key.number = 0;
      return;
  }
  if (std::isnan(key.number)) key.cls = Key::NotANumber;
}

// A row's keys copied beside its index, so that comparing two rows reads
// one place in memory; used for up to three sort columns. The classes sit
// apart from the values so that three keys and the index fit 32 bytes.
template <size_t N>
struct Item {
  union Value {
    double number;
    const std::wstring* text;
  } value[N];
  unsigned char cls[N];
  int row;
};

template <size_t N>
inline int CompareItemKey(const Item<N>& a, const Item<N>& b, size_t k) {
  if (a.cls[k] != b.cls[k]) return a.cls[k] < b.cls[k] ? -1 : 1;
  if (a.cls[k] == Key::Number) {
    const double x = a.value[k].number, y = b.value[k].number;
    return x < y ? -1 : (y < x ? 1 : 0);
  }
  if (a.cls[k] == Key::Text) return CompareTexts(*a.value[k].text, *b.value[k].text);
  return 0;
}

template <size_t N>
void SortInline(std::vector<int>& group, const std::vector<Key>& keys, const std::vector<QnListView2::SortType>& dir) {
  std::vector<Item<N> > items(group.size());
  for (size_t i = 0; i < group.size(); ++i) {
    items[i].row = group[i];
    for (size_t k = 0; k < N; ++k) {
      const Key& key = keys[static_cast<size_t>(group[i]) * N + k];
      items[i].cls[k] = static_cast<unsigned char>(key.cls);
      if (key.cls == Key::Text) items[i].value[k].text = key.text;
      else items[i].value[k].number = key.number;
    }
  }
  bool descending[N];
  for (size_t k = 0; k < N; ++k) descending[k] = dir[k] == QnListView2::SortDescending;
  // A merge sort: comparing rows (texts above all) costs more than moving
  // the small items, and it compares less often than a quicksort.
  std::stable_sort(items.begin(), items.end(), [&](const Item<N>& a, const Item<N>& b) {
    for (size_t k = 0; k < N; ++k) {
      const int c = CompareItemKey(a, b, k);
      if (c != 0) return descending[k] ? c > 0 : c < 0;
    }
    return false;
  });
  for (size_t i = 0; i < group.size(); ++i) group[i] = items[i].row;
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
  for (size_t r = 0; r < rows.size(); ++r)
    for (size_t k = 0; k < keyCount; ++k) ReadKey(rows[r].cells[static_cast<size_t>(sortBy[k])], keys[r * keyCount + k]);
  const std::vector<SortType>& dir = types;
  const auto builtIn = [&](int a, int b, size_t k) {
    return CompareKeys(keys[static_cast<size_t>(a) * keyCount + k], keys[static_cast<size_t>(b) * keyCount + k]);
  };
  std::vector<int> order;
  if (!less && keyCount <= 3) {
    order = Arrange(rows, [&](std::vector<int>& group) {
      if (keyCount == 1) SortInline<1>(group, keys, dir);
      else if (keyCount == 2) SortInline<2>(group, keys, dir);
      else SortInline<3>(group, keys, dir);
    });
  } else if (!less) {
    order = Arrange(rows, [&](std::vector<int>& group) {
      std::stable_sort(group.begin(), group.end(), [&](int a, int b) {
        for (size_t k = 0; k < keyCount; ++k) {
          const int c = builtIn(a, b, k);
          if (c != 0) return dir[k] == QnListView2::SortDescending ? c > 0 : c < 0;
        }
        return false;
      });
    });
  } else {
    const auto rowLess = [&](int a, int b) {
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
    };
    order = Arrange(rows, [&](std::vector<int>& group) { std::stable_sort(group.begin(), group.end(), rowLess); });
  }
  applyOrder(order);
  return true;
}

bool QnListView2Impl::ReverseRows() {
  applyOrder(Arrange(rows, [](std::vector<int>& group) { std::reverse(group.begin(), group.end()); }));
  return true;
}

static_assert(std::is_nothrow_move_constructible<qt::listview::Row>::value &&
                  std::is_nothrow_move_assignable<qt::listview::Row>::value,
              "rows are reordered by moves that must not fail half-way");

void QnListView2Impl::applyOrder(const std::vector<int>& order) {
  // The rows are moved in place along the permutation's cycles: each row
  // moves once and no second row array is made. Moving a row cannot
  // throw, so only the bookkeeping below can fail, before anything moved.
  std::vector<char> placed(order.size(), 0);
  int newSelectedCellRow = -1;
  for (size_t i = 0; i < order.size(); ++i) {
    if (order[i] == selectedCellRow) newSelectedCellRow = static_cast<int>(i);
    if (placed[i] || static_cast<size_t>(order[i]) == i) continue;
    Row held(std::move(rows[i]));
    size_t at = i;
    for (;;) {
      placed[at] = 1;
      const size_t from = static_cast<size_t>(order[at]);
      if (from == i) {
        rows[at] = std::move(held);
        break;
      }
      rows[at] = std::move(rows[from]);
      at = from;
    }
  }
  selectedCellRow = newSelectedCellRow;
  rowsMoved();
}
