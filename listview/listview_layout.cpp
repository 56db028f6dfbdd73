// Cell layout and colours, shared by every target.
#include "listview/listview_layout.h"

#include <algorithm>

namespace qt {
namespace listview {

std::vector<int> ShownRows(const QnListView2Impl& m) {
  const size_t n = m.rows.size();
  // 0 unknown, 1 shown, 2 hidden; a row is hidden when an ancestor is
  // collapsed or hidden. Chains are walked once and remembered.
  std::vector<unsigned char> state(n, 0);
  std::vector<int> chain;
  for (size_t i = 0; i < n; ++i) {
    chain.clear();
    int at = static_cast<int>(i);
    while (at >= 0 && state[static_cast<size_t>(at)] == 0 && chain.size() <= n) {
      chain.push_back(at);
      at = m.GetParentRow(at);
    }
    // `at` is a known row or none; its children's answer follows from it.
    unsigned char below = 1;
    if (at >= 0) below = (state[static_cast<size_t>(at)] == 2 || m.rows[static_cast<size_t>(at)].collapsed) ? 2 : 1;
    for (size_t k = chain.size(); k-- > 0;) {
      state[static_cast<size_t>(chain[k])] = below;
      if (m.rows[static_cast<size_t>(chain[k])].collapsed) below = 2;
    }
  }
  std::vector<int> shown;
  shown.reserve(n);
  for (size_t i = 0; i < n; ++i)
    if (state[i] == 1) shown.push_back(static_cast<int>(i));
  return shown;
}

int TreeDepth(const QnListView2Impl& m, int row) {
  int depth = 0;
  for (int at = m.GetParentRow(row); at >= 0 && static_cast<size_t>(depth) <= m.rows.size(); at = m.GetParentRow(at))
    ++depth;
  return depth;
}

std::vector<bool> TreeLineLevels(const QnListView2Impl& m, int row) {
  std::vector<int> chain;  // the row, its parent, ... up to the root
  for (int at = row; at >= 0 && chain.size() <= m.rows.size(); at = m.GetParentRow(at)) chain.push_back(at);
  std::vector<bool> levels;
  if (chain.size() < 2) return levels;
  // chain.back() is the root, which has no line of its own.
  for (size_t k = chain.size() - 1; k-- > 0;) levels.push_back(m.GetSiblingRow(chain[k], 1) >= 0);
  return levels;
}

Colors EffectiveColors(const QnListView2Impl& m, int row, int column) {
  Colors out;
  const Cell* c = m.cell(row, column);
  if (!c) return out;
  const Column& col = m.columns[static_cast<size_t>(column)];
  const RowExtra* r = m.rows[static_cast<size_t>(row)].extra.get();
  const CellExtra* e = c->extra.get();
  const COLORREF none = QnListView2::NoColor;
  out.text = e && e->foreground != none ? e->foreground : r && r->foreground != none ? r->foreground : col.foreground;
  out.back = e && e->background != none ? e->background : r && r->background != none ? r->background : col.background;
  return out;
}

int EffectiveAlignment(const QnListView2Impl& m, int row, int column) {
  const Cell* c = m.cell(row, column);
  if (!c) return QnListView2::AlignLeft | QnListView2::AlignVCenter;
  int a = c->alignment ? c->alignment : m.columns[static_cast<size_t>(column)].alignment;
  const int horizontal = QnListView2::AlignLeft | QnListView2::AlignHCenter | QnListView2::AlignRight;
  const int vertical = QnListView2::AlignTop | QnListView2::AlignVCenter | QnListView2::AlignBottom;
  if (!(a & horizontal)) {
    const bool number = c->kind >= QnListView2::KindShort && c->kind <= QnListView2::KindDouble;
    a |= number ? QnListView2::AlignRight : QnListView2::AlignLeft;
  }
  if (!(a & vertical)) a |= QnListView2::AlignVCenter;
  return a;
}

CellParts SplitCell(const QnListView2Impl& m, int row, int column, const Box& cell, const Metrics& metrics) {
  CellParts parts;
  parts.textBox = cell;
  const Cell* c = m.cell(row, column);
  if (!c) return parts;
  int x = cell.left + metrics.gap;
  const int midY = (cell.top + cell.bottom) / 2;
  if (column == 0) {
    parts.depth = TreeDepth(m, row);
    x = cell.left + parts.depth * metrics.indent;
    if (m.hasChildren(m.rows[static_cast<size_t>(row)].id)) {
      parts.expander = true;
      const int half = std::min(metrics.indent, cell.height()) / 2 - 2;
      const int cx = x + metrics.indent / 2;
      parts.expanderBox = Box{cx - half, midY - half, cx + half + 1, midY + half + 1};
    }
    // Tree rows keep a column for the expander at every level, so that
    // siblings with and without children line up.
    if (parts.depth > 0 || parts.expander) x += metrics.indent;
    x += metrics.gap;
  }
  const int style = c->style | m.columns[static_cast<size_t>(column)].style;
  if (c->check != QnListView2::CheckNone || (style & QnListView2::CellCheckBox)) {
    parts.check = true;
    const int half = metrics.checkSize / 2;
    // A box alone in its cell (a check column) follows the alignment.
    int left = x;
    if (column != 0 && metrics.bitmapWidth == 0 && c->shownText().empty()) {
      const int a = EffectiveAlignment(m, row, column);
      if (a & QnListView2::AlignHCenter) left = (cell.left + cell.right - metrics.checkSize) / 2;
      else if (a & QnListView2::AlignRight) left = cell.right - metrics.gap - metrics.checkSize;
      left = std::max(left, x);
    }
    parts.checkBox = Box{left, midY - half, left + metrics.checkSize, midY - half + metrics.checkSize};
    x = left + metrics.checkSize + metrics.gap;
  }
  if (metrics.bitmapWidth > 0) {
    parts.bitmapBox = Box{x, cell.top, x + metrics.bitmapWidth, cell.bottom};
    x += metrics.bitmapWidth + metrics.gap;
  }
  parts.textBox.left = std::min(x, cell.right);
  parts.textBox.right = std::max(parts.textBox.left, cell.right - metrics.gap);
  return parts;
}

Box SpanBox(const QnListView2Impl& m, int row, int column, const std::vector<Box>& columnBoxes, int rowHeight) {
  if (column < 0 || static_cast<size_t>(column) >= columnBoxes.size()) return Box();
  Box box = columnBoxes[static_cast<size_t>(column)];
  const Cell* c = m.cell(row, column);
  if (!c || !c->extra) return box;
  int covered = 1;
  for (size_t k = static_cast<size_t>(column) + 1; k < columnBoxes.size() && covered < c->extra->colSpan; ++k) {
    if (!m.columns[k].shown) continue;
    box.left = std::min(box.left, columnBoxes[k].left);
    box.right = std::max(box.right, columnBoxes[k].right);
    ++covered;
  }
  if (c->extra->rowSpan > 1) box.bottom = box.top + rowHeight * c->extra->rowSpan;
  return box;
}

bool CoveredBySpan(const QnListView2Impl& m, const std::vector<int>& shownRows, int row, int column) {
  const auto at = std::find(shownRows.begin(), shownRows.end(), row);
  if (at == shownRows.end() || !m.validColumn(column)) return false;
  const size_t index = static_cast<size_t>(at - shownRows.begin());
  for (size_t back = 0; back <= index; ++back) {
    const int r = shownRows[index - back];
    for (int c = 0; c <= column; ++c) {
      if (back == 0 && c == column) continue;
      const Cell* cell = m.cell(r, c);
      if (!cell || !cell->extra || static_cast<int>(back) >= cell->extra->rowSpan) continue;
      // The last column the span reaches, counting shown columns only.
      int last = c, reach = 1;
      while (reach < cell->extra->colSpan && last + 1 < static_cast<int>(m.columns.size())) {
        ++last;
        if (m.columns[static_cast<size_t>(last)].shown) ++reach;
      }
      if (column <= last) return true;
    }
  }
  return false;
}

}  // namespace listview
}  // namespace qt
