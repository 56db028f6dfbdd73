// Selected rows, checks by LParam, drop-down selections and the text the
// clipboard gets.
#include <unordered_set>

#include "listview/qnlistview2_impl.h"

bool QnListView2Impl::SetSelectedRows(const std::vector<int>& selected) {
  for (int r : selected)
    if (!validRow(r)) return false;
  for (Row& row : rows) row.selected = false;
  for (int r : selected) rows[static_cast<size_t>(r)].selected = true;
  return true;
}

bool QnListView2Impl::SetCheckedRowsLParams(int column, const std::vector<long long>& lParams) {
  if (!validColumn(column)) return false;
  const std::unordered_set<long long> wanted(lParams.begin(), lParams.end());
  for (Row& row : rows) {
    uint8_t& check = row.cells[static_cast<size_t>(column)].check;
    if (wanted.count(row.lParam)) check = QnListView2::Checked;
    else if (check != QnListView2::CheckNone) check = QnListView2::Unchecked;
  }
  return true;
}

const qt::listview::SelectionList* QnListView2Impl::selectionList(int row, int column) const {
  const Cell* c = cell(row, column);
  if (!c) return nullptr;
  if (c->extra && c->extra->list) return c->extra->list.get();
  return columns[static_cast<size_t>(column)].list.get();
}

bool QnListView2Impl::SetSelection(int row, int column, long long value) {
  const qt::listview::SelectionList* list = selectionList(row, column);
  if (!list) return false;
  for (const auto& entry : *list) {
    if (entry.second != value) continue;
    Cell& c = rows[static_cast<size_t>(row)].cells[static_cast<size_t>(column)];
    qt::listview::CellExtra& extra = c.extraBlock();
    c.setValue(QnVariant(static_cast<const ustr&>(entry.first)));
    extra.hasSelection = true;
    extra.selection = value;
    return true;
  }
  return false;
}

bool QnListView2Impl::SetSelectedString(int column, const ustr& text) {
  if (!validColumn(column)) return false;
  bool any = false;
  for (size_t r = 0; r < rows.size(); ++r) {
    if (!rows[r].selected) continue;
    const qt::listview::SelectionList* list = selectionList(static_cast<int>(r), column);
    if (!list) continue;
    for (const auto& entry : *list) {
      if (entry.first == text) {
        any = SetSelection(static_cast<int>(r), column, entry.second) || any;
        break;
      }
    }
  }
  return any;
}

namespace {

void AppendCellText(ustr& out, const ustr& text) {
  for (wchar_t c : text.str()) out += (c == L'\t' || c == L'\r' || c == L'\n') ? L' ' : c;
}

}  // namespace

ustr QnListView2Impl::ClipboardText(const std::vector<int>& selected) const {
  ustr out;
  for (int r : selected) {
    if (!validRow(r)) continue;
    const Row& row = rows[static_cast<size_t>(r)];
    if (row.category) {
      if (row.extra) AppendCellText(out, row.extra->categoryText);
    } else {
      for (size_t c = 0; c < row.cells.size(); ++c) {
        if (c) out += L'\t';
        AppendCellText(out, row.cells[c].shownText());
      }
    }
    out += L"\r\n";
  }
  return out;
}
