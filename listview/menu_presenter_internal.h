// The menu presenter in force: the host's when it installed one, the
// platform's default otherwise.
#ifndef QUILTOOL_LISTVIEW_MENU_PRESENTER_INTERNAL_H
#define QUILTOOL_LISTVIEW_MENU_PRESENTER_INTERNAL_H

#include "qn_menu_presenter.h"

namespace qt {
namespace menu {

QnMenuPresenter& Presenter();

}  // namespace menu
}  // namespace qt

#endif
