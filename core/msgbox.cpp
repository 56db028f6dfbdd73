// The message-box helpers. All wide helpers share one routine that picks the
// caption, blocks the whole task when there is no owner and gives the focus
// back afterwards.
#include "core/frame_state.h"
#include "core/msgbox_platform.h"
#include "Lng.h"
#include "qn_presenter.h"
#include "core/boundary.h"

namespace {

QnMessagePresenter* g_presenter = nullptr;

QnMessagePresenter& Presenter() { return g_presenter ? *g_presenter : qt::msgbox::platform::DefaultPresenter(); }

int ShowBox(HWND owner, Lng::AppID app, const wchar_t* text, unsigned int style) {
  ustr appTitle;
  const wchar_t* title = qt::Frame().messageBoxTitle;
  if (app != Lng::APP_NONE) {
    appTitle = Lng::GetAppName(app, true);
    title = appTitle.c_str();
  }
  if (!owner) style |= MB_TASKMODAL;
  HWND focused = qt::msgbox::platform::FocusedWindow();
  const int result = Presenter().showMessage(owner, text ? text : L"", title, style);
  qt::msgbox::platform::RestoreFocus(focused);
  return result;
}

}  // namespace

QnMessagePresenter* qn_set_message_presenter(QnMessagePresenter* presenter) {
  QnMessagePresenter* previous = g_presenter;
  g_presenter = presenter;
  return previous;
}

int gwmsgbox(HWND owner, const wchar_t* text, unsigned int style) {
  return qt::NoThrow<int>("gwmsgbox", 0, [&]() -> int {
    return ShowBox(owner, Lng::APP_NONE, text, style);
  });
}

void gwmsg(HWND owner, const wchar_t* text) {
  qt::NoThrowVoid("gwmsg", [&] {
    ShowBox(owner, Lng::APP_NONE, text, MB_ICONINFORMATION);
  });
}

void gwmsg(HWND owner, const char* text) {
  qt::NoThrowVoid("gwmsg", [&] {
    // The wide title handed over as 8-bit text: the caption shows its first
    // character only ("Q"). Callers have seen it so for years; it stays.
    const char* title = reinterpret_cast<const char*>(qt::Frame().messageBoxTitle);
    const unsigned int style = owner ? MB_ICONINFORMATION : (MB_ICONINFORMATION | MB_TASKMODAL);
    HWND focused = qt::msgbox::platform::FocusedWindow();
    Presenter().showMessageA(owner, text ? text : "", title, style);
    qt::msgbox::platform::RestoreFocus(focused);
  });
}

int gwokcancelmsg(HWND owner, const wchar_t* text) {
  return qt::NoThrow<int>("gwokcancelmsg", 0, [&]() -> int {
    return ShowBox(owner, Lng::APP_NONE, text, MB_OKCANCEL | MB_ICONQUESTION);
  });
}

int gwyesnocancelmsg(HWND owner, const wchar_t* text) {
  return qt::NoThrow<int>("gwyesnocancelmsg", 0, [&]() -> int {
    return ShowBox(owner, Lng::APP_NONE, text, MB_YESNOCANCEL | MB_ICONQUESTION);
  });
}

int gwyesnomsg(HWND owner, const wchar_t* text) {
  return qt::NoThrow<int>("gwyesnomsg", 0, [&]() -> int {
    return ShowBox(owner, Lng::APP_NONE, text, MB_YESNO | MB_ICONQUESTION);
  });
}

int gwyesnomsg(HWND owner, Lng::AppID app, const wchar_t* text) {
  return qt::NoThrow<int>("gwyesnomsg", 0, [&]() -> int {
    return ShowBox(owner, app, text, MB_YESNO | MB_ICONQUESTION);
  });
}

void gwsetmsgboxlng(const char* ok, const char* cancel, const char* yes, const char* no) {
  const char* texts[4] = {ok, cancel, yes, no};
  for (int i = 0; i < 4; ++i) gwmakesz(qt::Frame().buttonTexts[i], texts[i], 32);
}

void gwsetmsgboxmode(int mode) { qt::Frame().messageBoxMode = (mode == 1); }
