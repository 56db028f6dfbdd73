// Columns: every row carries one cell per column, so adding or removing a
// column reaches into every row.
#include <algorithm>
#include <stdexcept>

#include "listview/qnlistview2_impl.h"

int QnListView2Impl::InsertColumn(int index, const ustr& name, int width, int alignment, long long lParam) {
  if (index < 0 || static_cast<size_t>(index) > columns.size()) return -1;
  if (columns.size() >= 10000) throw std::length_error("vector too long");
  Column column;
  column.name = name;
  column.width = width < 0 ? 0 : width;
  column.alignment = alignment;
  column.lParam = lParam;
  // Room first, in the columns and in every row; inserting then cannot fail.
  columns.reserve(columns.size() + 1);
  for (Row& row : rows) row.cells.reserve(columns.size() + 1);
  columns.insert(columns.begin() + index, std::move(column));
  for (Row& row : rows) row.cells.insert(row.cells.begin() + index, Cell());
  for (int& c : sortColumns)
    if (c >= index) ++c;
  if (selectedColumn >= index) ++selectedColumn;
  return index;
}

bool QnListView2Impl::DeleteColumn(int column) {
  if (!validColumn(column)) return false;
  columns.erase(columns.begin() + column);
  for (Row& row : rows) row.cells.erase(row.cells.begin() + column);
  for (size_t i = 0; i < sortColumns.size();) {
    if (sortColumns[i] == column) {
      sortColumns.erase(sortColumns.begin() + static_cast<long>(i));
      sortTypes.erase(sortTypes.begin() + static_cast<long>(i));
      continue;
    }
    if (sortColumns[i] > column) --sortColumns[i];
    ++i;
  }
  if (selectedColumn == column) selectedColumn = -1;
  else if (selectedColumn > column) --selectedColumn;
  return true;
}

void QnListView2Impl::DeleteAllColumns() {
  columns.clear();
  for (Row& row : rows) row.cells.clear();
  sortColumns.clear();
  sortTypes.clear();
  selectedColumn = -1;
}
