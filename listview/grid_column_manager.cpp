#include "listview/grid_column_manager.h"

#include "listview/column_layout.h"
#include "listview/list_header_platform.h"
#include "listview/listview_platform.h"
#include "listview/qnlistview2_impl.h"

namespace qt {
namespace listview {

bool GridColumnManager::SetColumnWidth(int column, int width, bool redraw) {
  if (!grid_.validColumn(column) || width < 0) return false;
  grid_.columns[column].width = width;
  if (HWND list = GetListWindow()) return qt::list_header::platform::SetColumnWidth(list, column, width, redraw);
  return true;
}

int GridColumnManager::GetColumnWidth(int column, bool remembered) const {
  if (!grid_.validColumn(column)) return -1;
  if (remembered && IsColumnHidden(column)) return RememberedWidth(column);
  if (HWND list = GetListWindow()) {
    const int width = qt::list_header::platform::ColumnWidth(list, column);
    if (width >= 0) return width;
  }
  return grid_.columns[column].width;
}

ustr GridColumnManager::GetColumnName(int column) const {
  return grid_.validColumn(column) ? grid_.columns[column].name : ustr();
}

int GridColumnManager::GetColumnCount() const { return static_cast<int>(grid_.columns.size()); }

std::vector<int> GridColumnManager::GetColumnOrder() const {
  if (HWND list = GetListWindow()) {
    std::vector<int> order = qt::list_header::platform::ColumnOrder(list);
    if (!order.empty()) return order;
  }
  const int count = GetColumnCount();
  if (!IsPermutation(order_, count)) {
    order_.resize(count);
    for (int i = 0; i < count; ++i) order_[i] = i;
  }
  return order_;
}

bool GridColumnManager::SetColumnOrder(const std::vector<int>& order) {
  if (!IsPermutation(order, GetColumnCount())) return false;
  if (HWND list = GetListWindow()) {
    if (!qt::list_header::platform::SetColumnOrder(list, order)) return false;
  }
  order_ = order;
  return true;
}

bool GridColumnManager::CanAutoScale() const { return true; }

int GridColumnManager::GetClientWidth() const {
  HWND list = GetListWindow();
  return list ? qt::list_header::platform::ClientWidth(list) : 0;
}

bool GridColumnManager::SizeColumnToFit(int column) {
  HWND list = GetListWindow();
  if (!list || !qt::list_header::platform::SizeColumnToFit(list, column)) return false;
  const int width = qt::list_header::platform::ColumnWidth(list, column);
  if (width >= 0 && grid_.validColumn(column)) grid_.columns[column].width = width;
  return true;
}

int GridColumnManager::HitTestHeader(POINT point) const {
  HWND list = GetListWindow();
  return list ? qt::list_header::platform::HitTest(list, point) : -1;
}

void GridColumnManager::Repaint() {
  if (HWND list = GetListWindow()) qt::list_header::platform::Repaint(list);
}

HWND GridColumnManager::GetListWindow() const {
  HWND list = qt::listview::platform::ListWindow(grid_);
  return list ? list : QNListViewColumnManager::GetListWindow();
}

void GridColumnManager::ControlAttached() {
  HWND list = qt::listview::platform::ListWindow(grid_);
  if (list && IsPermutation(order_, GetColumnCount())) qt::list_header::platform::SetColumnOrder(list, order_);
}

void GridColumnManager::ColumnShown(int column, bool shown) {
  if (grid_.validColumn(column)) grid_.columns[column].shown = shown;
}

}  // namespace listview
}  // namespace qt

QNListViewColumnManager& QnListView2Impl::manager() {
  if (!columnManager) columnManager.reset(new qt::listview::GridColumnManager(*this));
  return *columnManager;
}
