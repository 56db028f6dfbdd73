// The column manager QnListView2 hands out: its header access works on the
// grid's own columns, so the layout is kept whether or not a control is
// attached.
#ifndef QUILTOOL_LISTVIEW_GRID_COLUMN_MANAGER_H
#define QUILTOOL_LISTVIEW_GRID_COLUMN_MANAGER_H

#include <vector>

#include "QNListViewColumnManager.h"

class QnListView2Impl;

namespace qt {
namespace listview {

class GridColumnManager : public QNListViewColumnManager {
 public:
  explicit GridColumnManager(QnListView2Impl& grid) : grid_(grid) {}
  bool SetColumnWidth(int column, int width, bool redraw) override;
  int GetColumnWidth(int column, bool remembered) const override;
  ustr GetColumnName(int column) const override;
  int GetColumnCount() const override;
  std::vector<int> GetColumnOrder() const override;
  bool SetColumnOrder(const std::vector<int>& order) override;
  bool CanAutoScale() const override;
  int GetClientWidth() const override;
  bool SizeColumnToFit(int column) override;
  int HitTestHeader(POINT point) const override;
  void Repaint() override;
  void ColumnShown(int column, bool shown) override;
  // The grid's list control while one is bound.
  HWND GetListWindow() const override;
  // A control was just bound: it takes the order kept so far.
  void ControlAttached();

 private:
  QnListView2Impl& grid_;
  // The order shown, column per position; follows the column count.
  mutable std::vector<int> order_;
};

}  // namespace listview
}  // namespace qt

#endif
