#include "listview/menu_presenter_internal.h"

#include <atomic>

#include "listview/menu_presenter_platform.h"

namespace {

std::atomic<QnMenuPresenter*> g_presenter{nullptr};

}  // namespace

QnMenuPresenter* qn_set_menu_presenter(QnMenuPresenter* presenter) { return g_presenter.exchange(presenter); }

namespace qt {
namespace menu {

QnMenuPresenter& Presenter() {
  QnMenuPresenter* installed = g_presenter.load();
  return installed ? *installed : platform::DefaultPresenter();
}

}  // namespace menu
}  // namespace qt
