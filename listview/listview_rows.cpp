// Rows: adding, deleting, their keys and the finders over them.
#include <climits>
#include <stdexcept>
#include <unordered_set>

#include "listview/qnlistview2_impl.h"

QnListView2Impl::QnListView2Impl() : maxRows(INT_MAX - 1) {}

void QnListView2Impl::checkGrowth() const {
  if (rows.size() >= maxRows) throw std::length_error("vector too long");
}

void QnListView2Impl::rowsMoved() {
  lParamIndex_.invalidate();
  idIndex_.invalidate();
  tagIndex_.invalidate();
}

void QnListView2Impl::ensureLParamIndex() const {
  if (!lParamIndex_.valid()) lParamIndex_.rebuild(rows.size(), [this](size_t i) { return rows[i].lParam; });
}
void QnListView2Impl::ensureIdIndex() const {
  if (!idIndex_.valid()) idIndex_.rebuild(rows.size(), [this](size_t i) { return rows[i].id; });
}
void QnListView2Impl::ensureTagIndex() const {
  if (!tagIndex_.valid()) tagIndex_.rebuild(rows.size(), [this](size_t i) { return rows[i].tag.str(); });
}

void QnListView2Impl::addChild(long long parentId) {
  if (parentId != -1) ++childCount_[parentId];
}

void QnListView2Impl::removeChild(long long parentId) {
  if (parentId == -1) return;
  const auto it = childCount_.find(parentId);
  if (it != childCount_.end() && --it->second <= 0) childCount_.erase(it);
}

bool QnListView2Impl::hasChildren(long long id) const { return childCount_.count(id) != 0; }

int QnListView2Impl::InsertRow(int index, long long lParam, int parentRow, int style, bool category,
                               const ustr* text) {
  if (index < 0 || static_cast<size_t>(index) > rows.size()) return -1;
  if (parentRow != -1 && !validRow(parentRow)) return -1;
  checkGrowth();
  Row row;
  row.cells.resize(columns.size());
  row.lParam = lParam;
  row.id = nextAutoId_;
  row.parentId = parentRow >= 0 ? rows[parentRow].id : -1;
  row.style = style;
  row.category = category;
  if (text) row.extraBlock().categoryText = *text;
  const bool atEnd = static_cast<size_t>(index) == rows.size();
  const long long parentId = row.parentId;
  addChild(parentId);
  try {
    rows.insert(rows.begin() + index, std::move(row));
  } catch (...) {
    removeChild(parentId);
    throw;
  }
  --nextAutoId_;
  const Row& added = rows[index];
  if (atEnd) {
    lParamIndex_.append(added.lParam, index);
    idIndex_.append(added.id, index);
    tagIndex_.append(added.tag.str(), index);
  } else {
    rowsMoved();
    if (selectedCellRow >= index) ++selectedCellRow;
  }
  return index;
}

bool QnListView2Impl::isDescendant(int row, int ancestor) const {
  if (!validRow(row) || !validRow(ancestor) || row == ancestor) return false;
  const long long target = rows[ancestor].id;
  long long parent = rows[row].parentId;
  ensureIdIndex();
  // A chain longer than the rows is a loop; stop there.
  for (size_t steps = 0; parent != -1 && steps <= rows.size(); ++steps) {
    if (parent == target) return true;
    const int p = idIndex_.find(parent, 0);
    if (p < 0) return false;
    parent = rows[p].parentId;
  }
  return false;
}

int QnListView2Impl::AddRow(long long lParam, int parentRow, int style, bool category, const ustr* text) {
  if (parentRow != -1 && !validRow(parentRow)) return -1;
  int at = static_cast<int>(rows.size());
  if (parentRow >= 0) {
    // After the parent's last descendant; usually that is the end.
    const int last = at - 1;
    if (last != parentRow && !isDescendant(last, parentRow)) {
      at = parentRow + 1;
      while (at < static_cast<int>(rows.size()) && isDescendant(at, parentRow)) ++at;
    }
  }
  return InsertRow(at, lParam, parentRow, style, category, text);
}

int QnListView2Impl::DeleteMarked(std::vector<char>& marked) {
  // Descendants go with their rows; repeat until no row is added, so that a
  // child placed above its parent is found too.
  std::unordered_set<long long> gone;
  for (size_t i = 0; i < rows.size(); ++i)
    if (marked[i]) gone.insert(rows[i].id);
  for (bool grew = !gone.empty(); grew;) {
    grew = false;
    for (size_t i = 0; i < rows.size(); ++i) {
      if (!marked[i] && rows[i].parentId != -1 && gone.count(rows[i].parentId)) {
        marked[i] = 1;
        gone.insert(rows[i].id);
        grew = true;
      }
    }
  }
  if (gone.empty()) return 0;
  size_t kept = 0;
  int newSelectedCellRow = -1;
  for (size_t i = 0; i < rows.size(); ++i) {
    if (marked[i]) {
      removeChild(rows[i].parentId);
      continue;
    }
    if (static_cast<int>(i) == selectedCellRow) newSelectedCellRow = static_cast<int>(kept);
    if (kept != i) rows[kept] = std::move(rows[i]);
    ++kept;
  }
  const int count = static_cast<int>(rows.size() - kept);
  rows.erase(rows.begin() + static_cast<long>(kept), rows.end());
  selectedCellRow = newSelectedCellRow;
  rowsMoved();
  return count;
}

void QnListView2Impl::DeleteAllRows() {
  rows.clear();
  childCount_.clear();
  selectedCellRow = -1;
  ensuredRow = -1;
  rowsMoved();
}

int QnListView2Impl::DeleteEmptyCategoryRows() {
  std::vector<char> marked(rows.size(), 0);
  int count = 0;
  for (size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].category && (i + 1 == rows.size() || rows[i + 1].category)) {
      marked[i] = 1;
      ++count;
    }
  }
  if (count) DeleteMarked(marked);
  return count;
}

bool QnListView2Impl::SetRowLParam(int row, long long lParam) {
  if (!validRow(row)) return false;
  const long long old = rows[row].lParam;
  rows[row].lParam = lParam;
  lParamIndex_.change(old, lParam, row);
  return true;
}

bool QnListView2Impl::SetRowTag(int row, const ustr& tag) {
  if (!validRow(row)) return false;
  ustr copy(tag);
  rows[row].tag.str().swap(copy.str());
  tagIndex_.change(copy.str(), rows[row].tag.str(), row);
  return true;
}

bool QnListView2Impl::SetRowId(int row, long long id) {
  if (!validRow(row) || id < 0) return false;
  const long long old = rows[row].id;
  if (id == old) return true;
  if (FindRowIndexByRowId(id) >= 0) return false;
  const auto children = childCount_.find(old);
  if (children != childCount_.end()) {
    // The children follow their parent to its new id.
    const int count = children->second;
    childCount_[id] += count;
    childCount_.erase(old);
    for (Row& r : rows)
      if (r.parentId == old) r.parentId = id;
  }
  rows[row].id = id;
  idIndex_.change(old, id, row);
  return true;
}

bool QnListView2Impl::SetRowParentId(int row, long long parentId) {
  if (!validRow(row) || parentId < -1) return false;
  if (parentId == rows[row].id) return false;
  if (parentId != -1) {
    // A parent inside the row's own subtree would make a loop.
    const int parent = FindRowIndexByRowId(parentId);
    if (parent >= 0 && isDescendant(parent, row)) return false;
  }
  addChild(parentId);
  removeChild(rows[row].parentId);
  rows[row].parentId = parentId;
  return true;
}

int QnListView2Impl::FindRowIndex(int startRow, long long lParam) const {
  if (!validRow(startRow)) return -1;
  ensureLParamIndex();
  return lParamIndex_.find(lParam, startRow);
}

int QnListView2Impl::FindRowIndexByRowId(long long id) const {
  ensureIdIndex();
  return idIndex_.find(id, 0);
}

int QnListView2Impl::FindRowIndexByTag(int startRow, const std::wstring& tag) const {
  if (!validRow(startRow)) return -1;
  ensureTagIndex();
  return tagIndex_.find(tag, startRow);
}

int QnListView2Impl::FindNextCategoryRowIndex(int row) const {
  if (row < -1) return -1;
  for (size_t i = static_cast<size_t>(row + 1); i < rows.size(); ++i)
    if (rows[i].category) return static_cast<int>(i);
  return -1;
}
