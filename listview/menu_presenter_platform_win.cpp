#include "listview/menu_presenter_platform.h"

#include <windows.h>

#include "listview/column_chooser_win.h"

namespace qt {
namespace menu {
namespace platform {

namespace {

class WindowsMenuPresenter : public QnMenuPresenter {
 public:
  int trackMenu(HWND owner, const std::vector<QnMenuItem>& items, POINT at) override {
    HMENU menu = CreatePopupMenu();
    if (!menu) return 0;
    for (const QnMenuItem& item : items) {
      if (item.separator) {
        AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
      } else {
        const UINT flags = MF_STRING | (item.checked ? MF_CHECKED : 0) | (item.greyed ? MF_GRAYED : 0);
        AppendMenuW(menu, flags, static_cast<UINT_PTR>(item.command), item.text.c_str());
      }
    }
    // The menu answers the command instead of sending it, so the caller
    // decides where it goes.
    const int command = static_cast<int>(
        TrackPopupMenu(menu, TPM_RETURNCMD | TPM_RIGHTBUTTON | TPM_NONOTIFY, at.x, at.y, 0, owner, nullptr));
    DestroyMenu(menu);
    return command;
  }
  bool chooseColumns(HWND owner, const wchar_t* title, std::vector<QnColumnChoice>& choices) override {
    return qt::listview::RunColumnChooser(owner, title, choices);
  }
};

}  // namespace

QnMenuPresenter& DefaultPresenter() {
  static WindowsMenuPresenter presenter;
  return presenter;
}

}  // namespace platform
}  // namespace menu
}  // namespace qt
