// The header access of a list-view control, through the platform step.
#include "QNListViewColumnManager.h"

#include "listview/list_header_platform.h"

namespace lh = qt::list_header::platform;

QNListViewColumnManagerImpl::QNListViewColumnManagerImpl() {}

QNListViewColumnManagerImpl::~QNListViewColumnManagerImpl() {}

bool QNListViewColumnManagerImpl::SetColumnWidth(int column, int width, bool redraw) {
  return lh::SetColumnWidth(GetListWindow(), column, width, redraw);
}

int QNListViewColumnManagerImpl::GetColumnWidth(int column, bool remembered) const {
  if (remembered && IsColumnHidden(column)) return RememberedWidth(column);
  return lh::ColumnWidth(GetListWindow(), column);
}

ustr QNListViewColumnManagerImpl::GetColumnName(int column) const { return lh::ColumnName(GetListWindow(), column); }

int QNListViewColumnManagerImpl::GetColumnCount() const { return lh::ColumnCount(GetListWindow()); }

std::vector<int> QNListViewColumnManagerImpl::GetColumnOrder() const { return lh::ColumnOrder(GetListWindow()); }

bool QNListViewColumnManagerImpl::SetColumnOrder(const std::vector<int>& order) {
  if (!lh::SetColumnOrder(GetListWindow(), order)) return false;
  lh::Repaint(GetListWindow());
  return true;
}

bool QNListViewColumnManagerImpl::CanAutoScale() const { return GetListWindow() != nullptr; }

int QNListViewColumnManagerImpl::GetClientWidth() const { return lh::ClientWidth(GetListWindow()); }

bool QNListViewColumnManagerImpl::SizeColumnToFit(int column) { return lh::SizeColumnToFit(GetListWindow(), column); }

int QNListViewColumnManagerImpl::HitTestHeader(POINT point) const { return lh::HitTest(GetListWindow(), point); }

void QNListViewColumnManagerImpl::Repaint() { lh::Repaint(GetListWindow()); }
