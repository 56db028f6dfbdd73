// The column manager's own state: hidden columns and their widths, the
// marks, the order and auto-scaling.
#include "QNListViewColumnManager.h"

#include <algorithm>

#include "core/boundary.h"
#include "listview/column_layout.h"
#include "listview/column_manager_state.h"

typedef QNListViewColumnManager::State State;

State::Column* State::at(QNListViewColumnManager& self, int column) {
  const int count = self.GetColumnCount();
  if (column < 0 || column >= count) return nullptr;
  if (static_cast<int>(columns.size()) < count) columns.resize(count);
  return &columns[column];
}

const State::Column* State::at(const QNListViewColumnManager& self, int column) const {
  if (column < 0 || column >= self.GetColumnCount()) return nullptr;
  static const Column plain;
  return column < static_cast<int>(columns.size()) ? &columns[column] : &plain;
}

QNListViewColumnManager::QNListViewColumnManager() : state_(new State) {}

QNListViewColumnManager::~QNListViewColumnManager() { delete state_; }

bool QNListViewColumnManager::Attach(Lng::AppID appId, HWND window, int flags) {
  return qt::NoThrow<bool>("QNListViewColumnManager::Attach", false, [&] {
    if (!window) return false;
    state_->window = window;
    state_->appId = appId;
    state_->attachFlags = flags;
    return true;
  });
}

void QNListViewColumnManager::Detach() { state_->window = nullptr; }

bool QNListViewColumnManager::IsActive() const { return state_->window != nullptr; }

HWND QNListViewColumnManager::GetListWindow() const { return state_->window; }

void QNListViewColumnManager::ColumnShown(int, bool) {}

void QNListViewColumnManager::SetRegistryKey(const wchar_t* key) {
  qt::NoThrowVoid("QNListViewColumnManager::SetRegistryKey", [&] { state_->registryKey = key; });
}

const wchar_t* QNListViewColumnManager::GetRegistryKey() const { return state_->registryKey.c_str(); }

void QNListViewColumnManager::SetAllowSavingToRegistry(bool allow) { state_->allowSaving = allow; }

bool QNListViewColumnManager::ShowHideColumn(int column, bool show, bool redraw) {
  return qt::NoThrow<bool>("QNListViewColumnManager::ShowHideColumn", false, [&] {
    State::Column* c = state_->at(*this, column);
    if (!c) return false;
    if (show == !c->hidden) return true;
    qt::listview::Applying busy(*state_);
    if (show) {
      // A column hidden before anything was remembered comes back at the
      // narrowest width the manager allows rather than staying invisible.
      const int width = std::max(c->rememberedWidth, std::max(state_->minWidth, 1));
      if (!SetColumnWidth(column, width, redraw)) return false;
      c->hidden = false;
      c->rememberedWidth = 0;
    } else {
      const int width = GetColumnWidth(column, false);
      if (width < 0 || !SetColumnWidth(column, 0, redraw)) return false;
      c->hidden = true;
      c->rememberedWidth = width;
    }
    ColumnShown(column, show);
    if (state_->autoSize) AutoScaleColumns();
    state_->tell(*this, CbColumnShownOrHidden);
    return true;
  });
}

bool QNListViewColumnManager::ToggleColumnVisibility(int column) {
  return ShowHideColumn(column, IsColumnHidden(column), true);
}

void QNListViewColumnManager::HideColumns(const std::vector<int>& columns) {
  qt::NoThrowVoid("QNListViewColumnManager::HideColumns", [&] {
    for (int c : columns) {
      if (IsColumnHideable(c)) ShowHideColumn(c, false, false);
    }
    Repaint();
  });
}

void QNListViewColumnManager::ShowDefaultColumns(const std::vector<bool>& shown) {
  qt::NoThrowVoid("QNListViewColumnManager::ShowDefaultColumns", [&] {
    const int count = std::min(GetColumnCount(), static_cast<int>(shown.size()));
    for (int c = 0; c < count; ++c) {
      if (shown[c]) {
        ShowHideColumn(c, true, false);
      } else if (IsColumnHideable(c)) {
        ShowHideColumn(c, false, false);
      }
    }
    Repaint();
  });
}

bool QNListViewColumnManager::IsColumnHidden(int column) const {
  const State::Column* c = state_->at(*this, column);
  return c && c->hidden;
}

int QNListViewColumnManager::RememberedWidth(int column) const {
  const State::Column* c = state_->at(*this, column);
  return c && c->hidden ? c->rememberedWidth : -1;
}

bool QNListViewColumnManager::IsColumnEnabled(int column) const {
  const State::Column* c = state_->at(*this, column);
  return c && c->enabled;
}

void QNListViewColumnManager::SetEnabled(int column, bool enabled) {
  qt::NoThrowVoid("QNListViewColumnManager::SetEnabled", [&] {
    if (State::Column* c = state_->at(*this, column)) c->enabled = enabled;
  });
}

void QNListViewColumnManager::SetHideable(int column, bool hideable) {
  qt::NoThrowVoid("QNListViewColumnManager::SetHideable", [&] {
    if (State::Column* c = state_->at(*this, column)) c->hideable = hideable;
  });
}

bool QNListViewColumnManager::IsColumnHideable(int column) const {
  const State::Column* c = state_->at(*this, column);
  return c && c->hideable;
}

bool QNListViewColumnManager::SetColumnOrderIndex(int column, int position) {
  return qt::NoThrow<bool>("QNListViewColumnManager::SetColumnOrderIndex", false, [&] {
    std::vector<int> order = GetColumnOrder();
    const int count = static_cast<int>(order.size());
    if (column < 0 || column >= count || position < 0 || position >= count) return false;
    order.erase(std::find(order.begin(), order.end(), column));
    order.insert(order.begin() + position, column);
    qt::listview::Applying busy(*state_);
    return SetColumnOrder(order);
  });
}

void QNListViewColumnManager::SetMinColumnWidth(int width) { state_->minWidth = std::max(width, 0); }

int QNListViewColumnManager::GetMinColumnWidth() const { return state_->minWidth; }

void QNListViewColumnManager::SetFlags(int flags, int mask) {
  state_->flags = (state_->flags & ~mask) | (flags & mask);
}

int QNListViewColumnManager::GetFlags() const { return state_->flags; }

void QNListViewColumnManager::SetCallback(Callback callback) { state_->callback = callback; }

void QNListViewColumnManager::SetAllowAutoScaling(bool allow) {
  state_->allowAutoScaling = allow;
  if (!allow) state_->autoSize = false;
}

bool QNListViewColumnManager::IsAutoScalingAllowed() const { return state_->allowAutoScaling; }

void QNListViewColumnManager::SetAutoScaling(bool on) {
  qt::NoThrowVoid("QNListViewColumnManager::SetAutoScaling", [&] {
    on = on && state_->allowAutoScaling;
    if (on == state_->autoSize) return;
    state_->autoSize = on;
    if (on) AutoScaleColumns();
    state_->tell(*this, CbAutoSizeChanged);
  });
}

bool QNListViewColumnManager::ColumnsAreScaling() const { return state_->autoSize; }

bool QNListViewColumnManager::AutoScaleColumns() {
  return qt::NoThrow<bool>("QNListViewColumnManager::AutoScaleColumns", false, [&] {
    const int count = GetColumnCount();
    if (count <= 0 || !state_->allowAutoScaling) return false;
    std::vector<int> widths(count);
    std::vector<bool> shown(count);
    for (int c = 0; c < count; ++c) {
      shown[c] = !IsColumnHidden(c);
      widths[c] = shown[c] ? GetColumnWidth(c, false) : 0;
    }
    const std::vector<int> scaled = qt::listview::ScaledWidths(widths, shown, GetClientWidth(), state_->minWidth);
    qt::listview::Applying busy(*state_);
    bool ok = true;
    for (int c = 0; c < count; ++c) {
      if (shown[c] && scaled[c] != widths[c]) ok = SetColumnWidth(c, scaled[c], false) && ok;
    }
    Repaint();
    return ok;
  });
}

void QNListViewColumnManager::UpdateFromColumns() {
  qt::NoThrowVoid("QNListViewColumnManager::UpdateFromColumns", [&] {
    if (state_->applying) return;
    const int count = GetColumnCount();
    for (int c = 0; c < count; ++c) OnColumnChanged(c);
    state_->tell(*this, CbColumnsChangedByUser);
  });
}

void QNListViewColumnManager::OnColumnInserted(int column) {
  qt::NoThrowVoid("QNListViewColumnManager::OnColumnInserted", [&] {
    if (column >= 0 && column <= static_cast<int>(state_->columns.size())) {
      state_->columns.insert(state_->columns.begin() + column, State::Column());
    }
  });
}

void QNListViewColumnManager::OnColumnDeleted(int column) {
  if (column >= 0 && column < static_cast<int>(state_->columns.size())) {
    state_->columns.erase(state_->columns.begin() + column);
  }
}

void QNListViewColumnManager::OnColumnChanged(int column) {
  qt::NoThrowVoid("QNListViewColumnManager::OnColumnChanged", [&] {
    if (state_->applying) return;
    State::Column* c = state_->at(*this, column);
    if (!c) return;
    const int width = GetColumnWidth(column, false);
    qt::listview::Applying busy(*state_);
    if (c->hidden) {
      // The user dragged a hidden column open: it is shown again.
      if (width > 0) {
        c->hidden = false;
        c->rememberedWidth = 0;
      }
    } else if (width < state_->minWidth) {
      SetColumnWidth(column, state_->minWidth, true);
    }
  });
}

void QNListViewColumnManager::SetSortableHeader(bool sortable) { state_->sortableHeader = sortable; }

bool QNListViewColumnManager::IsSortableHeader() const { return state_->sortableHeader; }

int QNListViewColumnManager::GetHeaderItemIndexAt(POINT point) const {
  return qt::NoThrow<int>("QNListViewColumnManager::GetHeaderItemIndexAt", -1, [&] { return HitTestHeader(point); });
}
