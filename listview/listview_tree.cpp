// The row tree: rows name their parent by row id, so the tree survives
// sorting and refilling; lookups go through the id index.
#include <algorithm>
#include <unordered_map>

#include "listview/qnlistview2_impl.h"

int QnListView2Impl::GetParentRow(int row) const {
  if (!validRow(row) || rows[row].parentId == -1) return -1;
  return FindRowIndexByRowId(rows[row].parentId);
}

std::vector<int> QnListView2Impl::GetChildRows(int row, bool recursive, bool includeCollapsed) const {
  std::vector<int> found;
  if (!validRow(row) || !hasChildren(rows[row].id)) return found;
  if (!includeCollapsed && rows[row].collapsed) return found;
  std::unordered_map<long long, std::vector<int> > children;
  for (size_t i = 0; i < rows.size(); ++i)
    if (rows[i].parentId != -1) children[rows[i].parentId].push_back(static_cast<int>(i));
  std::vector<int> pending(1, row);
  while (!pending.empty()) {
    const int at = pending.back();
    pending.pop_back();
    const auto it = children.find(rows[at].id);
    if (it == children.end()) continue;
    for (int child : it->second) {
      found.push_back(child);
      if (recursive && (includeCollapsed || !rows[child].collapsed)) pending.push_back(child);
    }
  }
  std::sort(found.begin(), found.end());
  return found;
}

int QnListView2Impl::GetSiblingRow(int row, int step) const {
  if (!validRow(row)) return -1;
  const long long parent = rows[row].parentId;
  for (int i = row + step; validRow(i); i += step)
    if (rows[i].parentId == parent) return i;
  return -1;
}

bool QnListView2Impl::CollapseRowsToRoot(int row, bool collapsed) {
  if (!validRow(row)) return false;
  // The ancestors are found first: a chain is never longer than the rows.
  std::vector<int> chain;
  for (int at = row; at >= 0 && chain.size() <= rows.size(); at = GetParentRow(at)) chain.push_back(at);
  for (int at : chain) rows[at].collapsed = collapsed;
  return true;
}

bool QnListView2Impl::EnsureVisible(int row) {
  if (!validRow(row)) return false;
  std::vector<int> chain;
  for (int at = GetParentRow(row); at >= 0 && chain.size() <= rows.size(); at = GetParentRow(at))
    chain.push_back(at);
  for (int at : chain) rows[at].collapsed = false;
  ensuredRow = row;
  return true;
}

bool QnListView2Impl::Update3StateCheck(int row, int column) {
  if (!validCell(row, column)) return false;
  bool changedAny = false;
  for (size_t steps = 0; row >= 0 && steps <= rows.size(); ++steps) {
    const long long id = rows[row].id;
    if (!hasChildren(id)) break;
    int checked = 0, unchecked = 0, mixed = 0;
    for (const Row& r : rows) {
      if (r.parentId != id) continue;
      switch (r.cells[column].check) {
        case QnListView2::Checked: ++checked; break;
        case QnListView2::Unchecked: ++unchecked; break;
        case QnListView2::CheckMixed: ++mixed; break;
        default: break;
      }
    }
    if (checked + unchecked + mixed == 0) break;
    uint8_t state = QnListView2::CheckMixed;
    if (checked > 0 && unchecked == 0 && mixed == 0) state = QnListView2::Checked;
    else if (checked == 0 && mixed == 0) state = QnListView2::Unchecked;
    rows[row].cells[column].check = state;
    changedAny = true;
    row = GetParentRow(row);
  }
  return changedAny;
}
