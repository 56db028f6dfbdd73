// The default menu presenter of each platform. Windows shows real pop-up
// menus and dialogs; Linux writes the menu to stderr and answers that
// nothing was chosen.
#ifndef QUILTOOL_LISTVIEW_MENU_PRESENTER_PLATFORM_H
#define QUILTOOL_LISTVIEW_MENU_PRESENTER_PLATFORM_H

#include "qn_menu_presenter.h"

namespace qt {
namespace menu {
namespace platform {

QnMenuPresenter& DefaultPresenter();

}  // namespace platform
}  // namespace menu
}  // namespace qt

#endif
