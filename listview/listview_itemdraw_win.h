// QnListView2ItemDraw paints the grid's rows into an owner-drawn list
// control, one cell at a time, from the model and the layout rules of
// listview_layout.h.
#ifndef QUILTOOL_LISTVIEW_ITEMDRAW_WIN_H
#define QUILTOOL_LISTVIEW_ITEMDRAW_WIN_H

#include <windows.h>

#include <vector>

#include "listview/listview_layout.h"

class QnListView2ItemDraw {
 public:
  QnListView2ItemDraw(const QnListView2Impl& model, HWND list) : m_(model), list_(list) {}
  virtual ~QnListView2ItemDraw() {}

  // Paints the listed row `item` (model row `row`) as WM_DRAWITEM asks.
  void DrawRow(const DRAWITEMSTRUCT& item, int row, const std::vector<int>& shownRows);

  // The boxes of the row's cells in client coordinates (index = model
  // column), from the header, so that reordered and scrolled columns
  // land where the header shows them.
  static std::vector<qt::listview::Box> ColumnBoxes(HWND list, const RECT& rowRect);

 private:
  void DrawCell(const DRAWITEMSTRUCT& item, int row, int column, const qt::listview::Box& box, bool selected);
  void DrawCategory(const DRAWITEMSTRUCT& item, int row, bool selected);
  void DrawTree(int row, const qt::listview::Box& cell, const qt::listview::CellParts& parts);
  void DrawBitmap(HBITMAP bitmap, const qt::listview::Box& box);
  // The check box of a cell; a virtual so that a grid with its own look
  // can paint the three states differently.
  virtual void DrawCheck(int row, int column, const RECT& rect, QnListView2::CheckValues value);

  const QnListView2Impl& m_;
  HWND list_;
  HDC dc_ = nullptr;
};

#endif
