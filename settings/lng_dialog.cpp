// Dialog captions and item texts, with the developer switch that marks
// each with its control id so translators can find where a text shows.
#include <cwchar>
#include <new>

#include "Lng.h"
#include "Registry.h"
#include "core/boundary.h"
#include "settings/lng_window_platform.h"

namespace {

QnWindowPresenter* g_windowPresenter = nullptr;

bool ShowControlIds() {
  wchar_t no[] = L"no";
  return std::wcscmp(Registry::GetStringAtt(nullptr, L"Developer/ShowControlIDs", no), L"yesplease") == 0;
}

}  // namespace

namespace qt {
// The presenter in force: the installed one or the platform's.
QnWindowPresenter& WindowPresenter() {
  return g_windowPresenter ? *g_windowPresenter : lng_window::platform::DefaultWindowPresenter();
}
}  // namespace qt

QnWindowPresenter* qn_set_window_presenter(QnWindowPresenter* presenter) {
  QnWindowPresenter* previous = g_windowPresenter;
  g_windowPresenter = presenter;
  return previous;
}

ustr Lng::makeDlgHeader(AppID textApp, int textId, const wchar_t* defaultText, AppID headerApp) {
  return qt::NoThrow<ustr>("Lng::makeDlgHeader", ustr(), [&]() -> ustr {
    ustr header = GetAppName(headerApp, true);
    const ustr body = text(textApp, textId, defaultText);
    if (!header.empty() && !body.empty()) header += L" - ";
    header += body;
    return header;
  });
}

void gwrenamewindow(HWND window, const wchar_t* name, const wchar_t* text) {
  qt::NoThrowVoid("gwrenamewindow", [&] {
    ustr title(name);
    if (text && *text) {
      if (!title.empty()) title += L" - ";
      title += text;
    }
    qt::WindowPresenter().setWindowText(window, title.c_str());
  });
}

void Lng::setdlgheader(HWND window, const wchar_t* text, AppID headerApp) {
  qt::NoThrowVoid("Lng::setdlgheader", [&] {
    qt::WindowPresenter().setSmallIcon(window, qt::lng_window::platform::AppSmallIcon());
    // The common module's dialogs carry the suite's own name.
    const ustr name = headerApp == APP_QNC ? ustr(L"Quillon") : GetAppName(headerApp, true);
    ustr caption(text);
    if (!caption.empty() && ShowControlIds()) {
      const LONG_PTR user = qt::WindowPresenter().dialogUserValue(window);
      ustr mark;
      if (user < 65536) {
        mark.format(L"[%d]", static_cast<int>(user));
      } else {
        mark.format(L"[%s]", reinterpret_cast<const wchar_t*>(user));
      }
      caption = mark + caption;
    }
    gwrenamewindow(window, name.c_str(), caption.c_str());
  });
}

void Lng::setdlgheader(AppID textApp, HWND window, int textId, const wchar_t* defaultText, AppID headerApp) {
  qt::NoThrowVoid("Lng::setdlgheader", [&] {
    const ustr caption = text(textApp, textId, defaultText);
    setdlgheader(window, caption.c_str(), headerApp);
  });
}

void Lng::setdlgitemtext(HWND dialog, int controlId, const ustr& text, bool addColon) {
  qt::NoThrowVoid("Lng::setdlgitemtext", [&] {
    ustr item(text);
    if (!item.empty()) {
      if (addColon && !item.endsWith(L":")) item += L":";
      if (ShowControlIds()) {
        ustr mark;
        mark.format(L" [%d]", controlId);
        item += mark;
      }
    }
    qt::WindowPresenter().setDialogItemText(dialog, controlId, item.c_str());
  });
}

void Lng::setdlgitemtext(AppID textApp, HWND dialog, int controlId, int textId, const wchar_t* defaultText,
                         bool addColon) {
  qt::NoThrowVoid("Lng::setdlgitemtext", [&] {
    const ustr item = text(textApp, textId, defaultText);
    setdlgitemtext(dialog, controlId, item, addColon);
  });
}
