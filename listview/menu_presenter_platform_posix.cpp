#include "listview/menu_presenter_platform.h"

#include <cstdio>

#include "qn_utf.h"

namespace qt {
namespace menu {
namespace platform {

namespace {

// Nobody can pick from a menu written to a terminal: the menu is shown for
// the record and the answer is "nothing chosen".
class TerminalMenuPresenter : public QnMenuPresenter {
 public:
  int trackMenu(HWND, const std::vector<QnMenuItem>& items, POINT) override {
    for (const QnMenuItem& item : items) {
      if (item.separator) {
        std::fprintf(stderr, "  ----\n");
      } else {
        std::fprintf(stderr, "  [%c] %s%s (%d)\n", item.checked ? 'x' : ' ', qn_wide_to_utf8(item.text.c_str()).c_str(),
                     item.greyed ? " (not available)" : "", item.command);
      }
    }
    return 0;
  }
  bool chooseColumns(HWND, const wchar_t* title, std::vector<QnColumnChoice>&) override {
    std::fprintf(stderr, "%s: could not be shown\n", qn_wide_to_utf8(title ? title : L"").c_str());
    return false;
  }
};

}  // namespace

QnMenuPresenter& DefaultPresenter() {
  static TerminalMenuPresenter presenter;
  return presenter;
}

}  // namespace platform
}  // namespace menu
}  // namespace qt
