// The column manager's dealings with the user: the header menu, the
// "Choose columns" dialog and the window messages the owner forwards.
#include <algorithm>

#include "QNListViewColumnManager.h"
#include "core/boundary.h"
#include "listview/column_layout.h"
#include "listview/column_manager_state.h"
#include "listview/list_header_platform.h"
#include "listview/menu_presenter_internal.h"
#include "settings/lng_internal.h"

namespace {

// Window message numbers of the hooks; the values are fixed by the
// platform's interface.
const UINT kWmSize = 0x0005;
const UINT kWmNotify = 0x004E;
const UINT kWmContextMenu = 0x007B;
const UINT kWmCommand = 0x0111;

}  // namespace

std::vector<QnMenuItem> QNListViewColumnManager::BuildHeaderMenu(int clickedColumn) const {
  return qt::NoThrow<std::vector<QnMenuItem>>(
      "QNListViewColumnManager::BuildHeaderMenu", std::vector<QnMenuItem>(), [&] {
        (void)clickedColumn;
        qt::listview::HeaderMenuTexts texts;
        texts.autoSize = qt_lng_text(Lng::APP_HPV, 36811, L"Autosize columns");
        texts.sizeColumn = qt_lng_text(Lng::APP_HPV, 36794, L"Size column to fit");
        texts.sizeAll = qt_lng_text(Lng::APP_HPV, 36795, L"Size all columns to fit");
        texts.more = qt_lng_text(Lng::APP_HPV, 36796, L"More...");
        // Only columns the user may hide are offered; the others stay as
        // the program shows them.
        std::vector<qt::listview::HeaderMenuColumn> columns;
        const int count = GetColumnCount();
        for (int c = 0; c < count; ++c) {
          if (IsColumnHideable(c) && IsColumnEnabled(c)) columns.push_back({c, GetColumnName(c), !IsColumnHidden(c)});
        }
        return qt::listview::HeaderMenuItems(texts, state_->allowAutoScaling && CanAutoScale(), state_->autoSize,
                                             columns, (state_->flags & SortMenuByName) != 0);
      });
}

int QNListViewColumnManager::ShowHeaderMenu(POINT screenPoint, int clickedColumn) {
  return qt::NoThrow<int>("QNListViewColumnManager::ShowHeaderMenu", 0, [&] {
    if (state_->tell(*this, CbQueryHeaderMenu) == 1) return 0;
    const std::vector<QnMenuItem> items = BuildHeaderMenu(clickedColumn);
    state_->menuColumn = clickedColumn;
    const int command = qt::menu::Presenter().trackMenu(GetListWindow(), items, screenPoint);
    if (command <= 0) return 0;
    // The choice goes to the owner as a command, as a click on a menu of
    // its own would; its OnCommand then carries it out.
    if (command >= CmdFirstColumn && command <= CmdLastColumn) {
      qt::list_header::platform::PostCommandToOwner(GetListWindow(), CmdFirstColumn, command - CmdFirstColumn);
    } else {
      qt::list_header::platform::PostCommandToOwner(GetListWindow(), command, 0);
    }
    return command;
  });
}

bool QNListViewColumnManager::ChooseColumns() {
  return qt::NoThrow<bool>("QNListViewColumnManager::ChooseColumns", false, [&] {
    if (state_->tell(*this, CbQueryChooseColumns) == 1) return false;
    std::vector<QnColumnChoice> choices;
    const int count = GetColumnCount();
    for (int c = 0; c < count; ++c) {
      if (!IsColumnEnabled(c)) continue;
      QnColumnChoice choice;
      choice.column = c;
      choice.name = GetColumnName(c);
      choice.shown = !IsColumnHidden(c);
      choice.width = choice.shown ? GetColumnWidth(c, false) : RememberedWidth(c);
      choices.push_back(choice);
    }
    if (!qt::menu::Presenter().chooseColumns(GetListWindow(), L"Choose columns", choices)) return false;
    qt::listview::Applying busy(*state_);
    for (const QnColumnChoice& choice : choices) {
      if (choice.column < 0 || choice.column >= count) continue;
      const bool shown = choice.shown || !IsColumnHideable(choice.column);
      const int width = std::max(choice.width, state_->minWidth);
      if (shown) {
        ShowHideColumn(choice.column, true, false);
        SetColumnWidth(choice.column, width, false);
      } else if (!IsColumnHidden(choice.column)) {
        SetColumnWidth(choice.column, width, false);
        ShowHideColumn(choice.column, false, false);
      } else if (State::Column* c = state_->at(*this, choice.column)) {
        c->rememberedWidth = width;
      }
    }
    if (state_->autoSize) AutoScaleColumns();
    Repaint();
    return true;
  });
}

bool QNListViewColumnManager::OnCommand(WPARAM wParam, LPARAM lParam) {
  return qt::NoThrow<bool>("QNListViewColumnManager::OnCommand", false, [&] {
    const int command = static_cast<int>(wParam & 0xFFFF);
    switch (command) {
      case CmdFirstColumn:
        return ToggleColumnVisibility(static_cast<int>(lParam));
      case CmdAutoSize:
        SetAutoScaling(!state_->autoSize);
        return true;
      case CmdSizeColumnToFit:
        if (state_->autoSize || state_->menuColumn < 0) return false;
        {
          qt::listview::Applying busy(*state_);
          return SizeColumnToFit(state_->menuColumn);
        }
      case CmdSizeAllColumnsToFit: {
        if (state_->autoSize) return false;
        qt::listview::Applying busy(*state_);
        const int count = GetColumnCount();
        for (int c = 0; c < count; ++c) {
          if (!IsColumnHidden(c)) SizeColumnToFit(c);
        }
        return true;
      }
      case CmdMore:
        ChooseColumns();
        return true;
      default:
        return false;
    }
  });
}

bool QNListViewColumnManager::OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* result) {
  return qt::NoThrow<bool>("QNListViewColumnManager::OnNotify", false, [&] {
    (void)wParam;
    typedef qt::list_header::HeaderEvent Event;
    const Event event = qt::list_header::platform::DecodeNotify(GetListWindow(), lParam);
    switch (event.kind) {
      case Event::RightClick:
        ShowHeaderMenu(event.screenPoint, event.column);
        if (result) *result = 1;
        return true;
      case Event::Resized:
        OnColumnChanged(event.column);
        return false;  // the list still does its own part
      case Event::Reordered:
        if (!state_->applying) state_->tell(*this, CbColumnsChangedByUser);
        return false;
      default:
        return false;
    }
  });
}

void QNListViewColumnManager::OnSize() {
  qt::NoThrowVoid("QNListViewColumnManager::OnSize", [&] {
    if (state_->autoSize && !state_->applying) AutoScaleColumns();
  });
}

bool QNListViewColumnManager::DlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) {
  return qt::NoThrow<bool>("QNListViewColumnManager::DlgProc", false, [&] {
    (void)dialog;
    switch (message) {
      case kWmNotify:
        return OnNotify(wParam, lParam, result);
      case kWmCommand:
        return OnCommand(wParam, lParam);
      case kWmSize:
        OnSize();
        return false;
      case kWmContextMenu: {
        typedef qt::list_header::HeaderEvent Event;
        const Event event = qt::list_header::platform::DecodeContextMenu(GetListWindow(), wParam, lParam);
        if (event.kind != Event::RightClick) return false;
        ShowHeaderMenu(event.screenPoint, event.column);
        return true;
      }
      default:
        return false;
    }
  });
}
