#include "files/gwflock_messages.h"

#include <string>

#include "core/msgbox_platform.h"
#include "gwframe.h"
#include "qn_presenter.h"

namespace qt {
namespace lock_file {

namespace {

// The presenter that the frame's helpers use: the installed one, or the
// platform's own box.
QnMessagePresenter& CurrentPresenter() {
  QnMessagePresenter* installed = qn_set_message_presenter(nullptr);
  qn_set_message_presenter(installed);
  return installed ? *installed : qt::msgbox::platform::DefaultPresenter();
}

}  // namespace

void ShowNoPermission(HWND owner) { gwmsg(owner, "You have not permission\r\nto the specific directory (?)"); }

void ShowReadError(HWND owner) { gwmsg(owner, "I/O - error"); }

void ShowInUse(HWND owner) { gwmsg(owner, "File is currently in use"); }

void ShowInUseBy(HWND owner, const wchar_t* holder) {
  // Not one of the frame's helpers: this box has always had an empty caption
  // and blocks the task whether or not an owner is given.
  const std::wstring text = std::wstring(L"File is in use by\r\n") + holder;
  CurrentPresenter().showMessage(owner, text.c_str(), L"", MB_OK | MB_TASKMODAL);
}

}  // namespace lock_file
}  // namespace qt
