// Painting the grid's cells with GDI.
#include "listview/listview_itemdraw_win.h"

#include <commctrl.h>

#include <algorithm>

#include "QnColor.h"

using qt::listview::Box;
using qt::listview::CellParts;

namespace {

RECT ToRect(const Box& b) { return RECT{b.left, b.top, b.right, b.bottom}; }

COLORREF Pick(COLORREF own, int system) { return own != QnListView2::NoColor ? own : GetSysColor(system); }

UINT TextFlags(int alignment) {
  UINT flags = DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS;
  if (alignment & QnListView2::AlignHCenter) flags |= DT_CENTER;
  else if (alignment & QnListView2::AlignRight) flags |= DT_RIGHT;
  if (alignment & QnListView2::AlignTop) flags |= DT_TOP;
  else if (alignment & QnListView2::AlignBottom) flags |= DT_BOTTOM;
  else flags |= DT_VCENTER;
  return flags;
}

void Line(HDC dc, int x1, int y1, int x2, int y2) {
  MoveToEx(dc, x1, y1, nullptr);
  LineTo(dc, x2, y2);
}

// Dotted like the platform's tree view: every other pixel.
void DottedLine(HDC dc, int x1, int y1, int x2, int y2, COLORREF color) {
  if (x1 == x2) {
    for (int y = std::min(y1, y2); y <= std::max(y1, y2); ++y)
      if ((y & 1) == 0) SetPixel(dc, x1, y, color);
  } else {
    for (int x = std::min(x1, x2); x <= std::max(x1, x2); ++x)
      if ((x & 1) == 0) SetPixel(dc, x, y1, color);
  }
}

int BitmapWidth(void* bitmap) {
  BITMAP info;
  if (!bitmap || GetObjectW(static_cast<HBITMAP>(bitmap), sizeof(info), &info) != sizeof(info)) return 0;
  return info.bmWidth;
}

}  // namespace

std::vector<Box> QnListView2ItemDraw::ColumnBoxes(HWND list, const RECT& rowRect) {
  HWND header = reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0));
  const int count = header ? static_cast<int>(SendMessageW(header, HDM_GETITEMCOUNT, 0, 0)) : 0;
  std::vector<Box> boxes(static_cast<size_t>(std::max(count, 0)));
  for (int c = 0; c < count; ++c) {
    RECT r{};
    SendMessageW(header, HDM_GETITEMRECT, static_cast<WPARAM>(c), reinterpret_cast<LPARAM>(&r));
    // The row's left edge carries the horizontal scroll offset.
    boxes[static_cast<size_t>(c)] = Box{rowRect.left + r.left, rowRect.top, rowRect.left + r.right, rowRect.bottom};
  }
  return boxes;
}

void QnListView2ItemDraw::DrawRow(const DRAWITEMSTRUCT& item, int row, const std::vector<int>& shownRows) {
  if (!m_.validRow(row)) return;
  dc_ = item.hDC;
  const int saved = SaveDC(dc_);
  SetBkMode(dc_, TRANSPARENT);
  HFONT listFont = reinterpret_cast<HFONT>(SendMessageW(list_, WM_GETFONT, 0, 0));
  if (listFont) SelectObject(dc_, listFont);
  const bool selected = (item.itemState & ODS_SELECTED) != 0;
  if (m_.rows[static_cast<size_t>(row)].category) {
    DrawCategory(item, row, selected);
  } else {
    const std::vector<Box> boxes = ColumnBoxes(list_, item.rcItem);
    // The cell the user works in is marked when whole rows are not.
    const bool fullRow = (m_.style & QnListView2::FullRowSelect) != 0;
    for (size_t c = 0; c < boxes.size() && c < m_.columns.size(); ++c) {
      const int column = static_cast<int>(c);
      if (!m_.columns[c].shown || boxes[c].empty()) continue;
      if (qt::listview::CoveredBySpan(m_, shownRows, row, column)) continue;
      const Box box = qt::listview::SpanBox(m_, row, column, boxes, item.rcItem.bottom - item.rcItem.top);
      const int marked = m_.selectedColumn >= 0 ? m_.selectedColumn : 0;
      DrawCell(item, row, column, box, selected && (fullRow || column == marked));
    }
  }
  RestoreDC(dc_, saved);
  dc_ = nullptr;
}

void QnListView2ItemDraw::DrawCategory(const DRAWITEMSTRUCT& item, int row, bool selected) {
  const QnListView2Impl::Row& r = m_.rows[static_cast<size_t>(row)];
  RECT rect = item.rcItem;
  RECT client;
  GetClientRect(list_, &client);
  rect.right = std::max(rect.right, client.right);
  const COLORREF back = selected ? GetSysColor(COLOR_HIGHLIGHT)
                                 : Pick(r.extra ? r.extra->background : QnListView2::NoColor, COLOR_BTNFACE);
  HBRUSH brush = CreateSolidBrush(back);
  FillRect(dc_, &rect, brush);
  DeleteObject(brush);
  SetTextColor(dc_, selected ? GetSysColor(COLOR_HIGHLIGHTTEXT)
                             : Pick(r.extra ? r.extra->foreground : QnListView2::NoColor, COLOR_BTNTEXT));
  HFONT font = r.extra && r.extra->font ? r.extra->font : nullptr;
  if (font) SelectObject(dc_, font);
  // One text across the whole row, from the row's left edge.
  rect.left += 6;
  const ustr text = r.extra ? r.extra->categoryText : ustr();
  DrawTextW(dc_, text.c_str(), -1, &rect, DT_SINGLELINE | DT_NOPREFIX | DT_VCENTER | DT_LEFT | DT_END_ELLIPSIS);
  HPEN pen = CreatePen(PS_SOLID, 1, GetSysColor(COLOR_BTNSHADOW));
  HGDIOBJ old = SelectObject(dc_, pen);
  Line(dc_, rect.left - 6, rect.bottom - 1, rect.right, rect.bottom - 1);
  SelectObject(dc_, old);
  DeleteObject(pen);
}

void QnListView2ItemDraw::DrawCell(const DRAWITEMSTRUCT& item, int row, int column, const Box& box, bool selected) {
  const QnListView2Impl::Cell& c = m_.rows[static_cast<size_t>(row)].cells[static_cast<size_t>(column)];
  const qt::listview::CellExtra* extra = c.extra.get();
  const ustr text = c.shownText();
  RECT rect = ToRect(box);
  HRGN clip = CreateRectRgnIndirect(&rect);
  SelectClipRgn(dc_, clip);
  DeleteObject(clip);

  if (extra && extra->draw) {
    DRAWITEMSTRUCT cellItem = item;
    cellItem.rcItem = rect;
    if (extra->draw(&cellItem, column, text.c_str(), extra->lParam)) {
      SelectClipRgn(dc_, nullptr);
      return;
    }
  }

  const qt::listview::Colors colors = qt::listview::EffectiveColors(m_, row, column);
  const COLORREF back = selected ? GetSysColor(COLOR_HIGHLIGHT) : Pick(colors.back, COLOR_WINDOW);
  const COLORREF fore = selected ? GetSysColor(COLOR_HIGHLIGHTTEXT) : Pick(colors.text, COLOR_WINDOWTEXT);
  HBRUSH brush = CreateSolidBrush(back);
  FillRect(dc_, &rect, brush);
  DeleteObject(brush);
  SetTextColor(dc_, fore);

  const QnListView2Impl::Row& r = m_.rows[static_cast<size_t>(row)];
  HFONT font = extra && extra->font ? extra->font
               : r.extra && r.extra->font ? r.extra->font
                                          : m_.columns[static_cast<size_t>(column)].font;
  if (font) SelectObject(dc_, font);

  qt::listview::Metrics metrics;
  metrics.indent = std::max(8, std::min(16, box.height()));
  const bool button = (c.style & QnListView2::CellButton) != 0;
  if (!button) metrics.bitmapWidth = BitmapWidth(extra ? extra->bitmap : nullptr);
  const CellParts parts = qt::listview::SplitCell(m_, row, column, box, metrics);
  const int alignment = qt::listview::EffectiveAlignment(m_, row, column);

  if (column == 0 && (parts.depth > 0 || parts.expander)) DrawTree(row, box, parts);
  if (parts.check) {
    const RECT checkRect = ToRect(parts.checkBox);
    DrawCheck(row, column, checkRect, static_cast<QnListView2::CheckValues>(c.check));
  }

  RECT textRect = ToRect(parts.textBox);
  if (button) {
    RECT face = rect;
    InflateRect(&face, -1, -1);
    DrawFrameControl(dc_, &face, DFC_BUTTON, DFCS_BUTTONPUSH);
    SetTextColor(dc_, GetSysColor(COLOR_BTNTEXT));
    const int width = BitmapWidth(extra ? extra->bitmap : nullptr);
    if (width > 0) {
      const int left = (face.left + face.right - width) / 2;
      DrawBitmap(static_cast<HBITMAP>(extra->bitmap), Box{left, face.top, left + width, face.bottom});
    } else {
      DrawTextW(dc_, text.c_str(), -1, &face, DT_SINGLELINE | DT_NOPREFIX | DT_CENTER | DT_VCENTER);
    }
  } else {
    if (metrics.bitmapWidth > 0) DrawBitmap(static_cast<HBITMAP>(extra->bitmap), parts.bitmapBox);
    if (c.kind == QnListView2::KindColorIndex) {
      const int h = alignment & (QnListView2::AlignLeft | QnListView2::AlignHCenter | QnListView2::AlignRight);
      const int v = alignment & (QnListView2::AlignTop | QnListView2::AlignVCenter | QnListView2::AlignBottom);
      QnColor::DrawItem(dc_, textRect, c.number.s, static_cast<QnColor::QnAlignment>(h | v), nullptr);
    } else {
      DrawTextW(dc_, text.c_str(), -1, &textRect, TextFlags(alignment));
    }
  }

  if (m_.style & QnListView2::GridLines) {
    HPEN pen = CreatePen(PS_SOLID, 1, GetSysColor(COLOR_BTNFACE));
    HGDIOBJ old = SelectObject(dc_, pen);
    Line(dc_, rect.left, rect.bottom - 1, rect.right, rect.bottom - 1);
    Line(dc_, rect.right - 1, rect.top, rect.right - 1, rect.bottom);
    SelectObject(dc_, old);
    DeleteObject(pen);
  }
  if (extra && extra->hasBorder) {
    const QnListView2::CellBorder& b = extra->border;
    HPEN pen = CreatePen(PS_SOLID, 1, b.color);
    HGDIOBJ old = SelectObject(dc_, pen);
    if (b.left) Line(dc_, rect.left, rect.top, rect.left, rect.bottom);
    if (b.top) Line(dc_, rect.left, rect.top, rect.right, rect.top);
    if (b.right) Line(dc_, rect.right - 1, rect.top, rect.right - 1, rect.bottom);
    if (b.bottom) Line(dc_, rect.left, rect.bottom - 1, rect.right, rect.bottom - 1);
    SelectObject(dc_, old);
    DeleteObject(pen);
  }
  SelectClipRgn(dc_, nullptr);
}

void QnListView2ItemDraw::DrawTree(int row, const Box& cell, const CellParts& parts) {
  // The same step DrawCell laid the cell out with.
  const int step = std::max(8, std::min(16, cell.height()));
  const int midY = (cell.top + cell.bottom) / 2;
  if (m_.style & QnListView2::DrawTreeLines) {
    const COLORREF color = GetSysColor(COLOR_GRAYTEXT);
    const std::vector<bool> levels = qt::listview::TreeLineLevels(m_, row);
    for (size_t k = 0; k < levels.size(); ++k) {
      const int x = cell.left + static_cast<int>(k) * step + step / 2;
      if (k + 1 < levels.size()) {
        if (levels[k]) DottedLine(dc_, x, cell.top, x, cell.bottom - 1, color);
      } else {
        // The row's own level: down to its middle, on when a sibling follows.
        DottedLine(dc_, x, cell.top, x, levels[k] ? cell.bottom - 1 : midY, color);
        DottedLine(dc_, x, midY, x + step / 2 + (parts.expander ? 0 : step / 2), midY, color);
      }
    }
    // An open parent's line runs down to its first child.
    if (parts.expander && !m_.rows[static_cast<size_t>(row)].collapsed) {
      const int x = (parts.expanderBox.left + parts.expanderBox.right) / 2;
      DottedLine(dc_, x, parts.expanderBox.bottom, x, cell.bottom - 1, color);
    }
  }
  if (parts.expander) {
    const Box& e = parts.expanderBox;
    RECT r = ToRect(e);
    FillRect(dc_, &r, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    HPEN pen = CreatePen(PS_SOLID, 1, GetSysColor(COLOR_BTNSHADOW));
    HGDIOBJ old = SelectObject(dc_, pen);
    HGDIOBJ oldBrush = SelectObject(dc_, GetStockObject(NULL_BRUSH));
    Rectangle(dc_, e.left, e.top, e.right, e.bottom);
    SelectObject(dc_, oldBrush);
    SelectObject(dc_, old);
    DeleteObject(pen);
    HPEN mark = CreatePen(PS_SOLID, 1, GetSysColor(COLOR_WINDOWTEXT));
    old = SelectObject(dc_, mark);
    const int cx = (e.left + e.right) / 2, cy = (e.top + e.bottom) / 2;
    Line(dc_, e.left + 2, cy, e.right - 2, cy);
    if (m_.rows[static_cast<size_t>(row)].collapsed) Line(dc_, cx, e.top + 2, cx, e.bottom - 2);
    SelectObject(dc_, old);
    DeleteObject(mark);
  }
}

void QnListView2ItemDraw::DrawBitmap(HBITMAP bitmap, const Box& box) {
  BITMAP info;
  if (!bitmap || GetObjectW(bitmap, sizeof(info), &info) != sizeof(info)) return;
  HDC source = CreateCompatibleDC(dc_);
  if (!source) return;
  HGDIOBJ old = SelectObject(source, bitmap);
  const int height = std::min<int>(info.bmHeight, box.height());
  const int top = box.top + (box.height() - height) / 2;
  BitBlt(dc_, box.left, top, std::min<int>(info.bmWidth, box.width()), height, source, 0, 0, SRCCOPY);
  SelectObject(source, old);
  DeleteDC(source);
}

void QnListView2ItemDraw::DrawCheck(int, int, const RECT& rect, QnListView2::CheckValues value) {
  if (value == QnListView2::CheckNone) return;
  RECT r = rect;
  UINT state = DFCS_BUTTONCHECK | DFCS_FLAT;
  if (value == QnListView2::Checked) state |= DFCS_CHECKED;
  DrawFrameControl(dc_, &r, DFC_BUTTON, state);
  if (value == QnListView2::CheckMixed) {
    // The mixed state: a filled square inside the box.
    RECT inner = rect;
    InflateRect(&inner, -3, -3);
    HBRUSH brush = CreateSolidBrush(GetSysColor(COLOR_GRAYTEXT));
    FillRect(dc_, &inner, brush);
    DeleteObject(brush);
  }
}
