#include "reports/progress_platform.h"

#include <windows.h>
#include <commctrl.h>

#include <vector>

#include "core/frame_state.h"
#include "reports/progress_resource.h"
#include "reports/progress_session.h"

namespace qt {
namespace progress {
namespace platform {

namespace {

const UINT_PTR kShowTimer = 1;
// The bar ends this far before its percentage text.
const int kPercentGap = 5;

// The controls of one dialog, updated only where a bar really changed, so
// that a fast worker does not make the dialog flicker.
class DialogView : public View {
 public:
  void init(HWND dialog, int barCount) {
    dialog_ = dialog;
    applied_.assign(static_cast<size_t>(barCount), Bar());
    known_.assign(static_cast<size_t>(barCount), false);
    fullRight_.assign(static_cast<size_t>(barCount), 0);
    for (int i = 0; i < barCount; ++i) fullRight_[static_cast<size_t>(i)] = ClientRect(IDC_PROGRESS_PERCENT + i).right;
    // The header in the dialog's own font, made bold.
    HFONT font = reinterpret_cast<HFONT>(SendMessageW(dialog, WM_GETFONT, 0, 0));
    LOGFONTW face = {};
    if (font && GetObjectW(font, sizeof face, &face) == sizeof face) {
      face.lfWeight = FW_BOLD;
      bold_ = CreateFontIndirectW(&face);
      if (bold_) SendDlgItemMessageW(dialog, IDC_PROGRESS_HEADER, WM_SETFONT, reinterpret_cast<WPARAM>(bold_), FALSE);
    }
  }

  void release() {
    if (bold_) DeleteObject(bold_);
    bold_ = nullptr;
  }

  void showBar(int index, const Bar& bar) override {
    if (index < 0 || index >= static_cast<int>(applied_.size())) return;
    Bar& was = applied_[static_cast<size_t>(index)];
    const bool first = !known_[static_cast<size_t>(index)];
    HWND control = GetDlgItem(dialog_, IDC_PROGRESS_BAR + index);
    if (first || bar.marquee != was.marquee) {
      LONG_PTR style = GetWindowLongPtrW(control, GWL_STYLE);
      style = bar.marquee ? (style | PBS_MARQUEE) : (style & ~static_cast<LONG_PTR>(PBS_MARQUEE));
      SetWindowLongPtrW(control, GWL_STYLE, style);
      SendMessageW(control, PBM_SETMARQUEE, bar.marquee ? TRUE : FALSE, 30);
    }
    if (first || bar.lower != was.lower || bar.upper != was.upper)
      SendMessageW(control, PBM_SETRANGE32, static_cast<WPARAM>(bar.lower), static_cast<LPARAM>(bar.upper));
    if (first || bar.step != was.step) SendMessageW(control, PBM_SETSTEP, static_cast<WPARAM>(bar.step), 0);
    if (first || bar.position != was.position || bar.lower != was.lower || bar.upper != was.upper)
      SendMessageW(control, PBM_SETPOS, static_cast<WPARAM>(bar.position), 0);
    if (first || bar.label != was.label) SetDlgItemTextW(dialog_, IDC_PROGRESS_LABEL + index, bar.label.c_str());
    if (first || bar.showPercentage != was.showPercentage) placePercentage(index, bar.showPercentage);
    if (bar.showPercentage) SetDlgItemTextW(dialog_, IDC_PROGRESS_PERCENT + index, PercentageText(bar).c_str());
    was = bar;
    known_[static_cast<size_t>(index)] = true;
  }

  void showHeader(const std::wstring& text) override { SetDlgItemTextW(dialog_, IDC_PROGRESS_HEADER, text.c_str()); }
  void showCaption(const std::wstring& text) override { SetWindowTextW(dialog_, text.c_str()); }

  void showAllowCancel(bool allow) override {
    EnableMenuItem(GetSystemMenu(dialog_, FALSE), SC_CLOSE, MF_BYCOMMAND | (allow ? MF_ENABLED : MF_GRAYED));
    EnableWindow(GetDlgItem(dialog_, IDCANCEL), allow ? TRUE : FALSE);
  }

 private:
  RECT ClientRect(int id) const {
    RECT r = {};
    GetWindowRect(GetDlgItem(dialog_, id), &r);
    MapWindowPoints(nullptr, dialog_, reinterpret_cast<POINT*>(&r), 2);
    return r;
  }

  void placePercentage(int index, bool show) {
    ShowWindow(GetDlgItem(dialog_, IDC_PROGRESS_PERCENT + index), show ? SW_SHOWNA : SW_HIDE);
    const RECT bar = ClientRect(IDC_PROGRESS_BAR + index);
    const int right = show ? ClientRect(IDC_PROGRESS_PERCENT + index).left - kPercentGap
                           : fullRight_[static_cast<size_t>(index)];
    SetWindowPos(GetDlgItem(dialog_, IDC_PROGRESS_BAR + index), nullptr, 0, 0, right - bar.left, bar.bottom - bar.top,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
  }

  HWND dialog_ = nullptr;
  HFONT bold_ = nullptr;
  std::vector<Bar> applied_;
  std::vector<bool> known_;
  std::vector<int> fullRight_;
};

struct DialogContext {
  Controller* controller = nullptr;
  DialogView view;
  std::atomic<HWND>* published = nullptr;
  void (*start)(void*) = nullptr;
  void* startContext = nullptr;
  bool wakePosted = false;
};

bool IsOwnMessage(UINT message) {
  return message >= ProgressDlgThreaded::UserProcData::MsgSetAllowCancel &&
         message <= ProgressDlgThreaded::UserProcData::MsgSetShowMarquee;
}

INT_PTR CALLBACK DialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  DialogContext* context = reinterpret_cast<DialogContext*>(GetWindowLongPtrW(dialog, DWLP_USER));
  if (message == WM_INITDIALOG) {
    context = reinterpret_cast<DialogContext*>(lParam);
    SetWindowLongPtrW(dialog, DWLP_USER, lParam);
    context->view.init(dialog, context->controller->bars().count());
    context->controller->attach(&context->view);
    if (context->start) {
      context->published->store(dialog);
      context->start(context->startContext);
      SetTimer(dialog, kShowTimer, 1000, nullptr);
    }
    return TRUE;
  }
  if (!context) return FALSE;
  INT_PTR answer = FALSE;
  if (IsOwnMessage(message)) {
    const LRESULT result = context->controller->handle(message, wParam, lParam);
    SetWindowLongPtrW(dialog, DWLP_MSGRESULT, result);
    answer = TRUE;
  } else if (message == WM_TIMER && wParam == kShowTimer) {
    KillTimer(dialog, kShowTimer);
    if (!context->controller->ended()) ShowWindow(dialog, SW_SHOW);
    answer = TRUE;
  } else if (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL) {
    context->controller->cancel();
    answer = TRUE;
  } else if (message == WM_SYSCOMMAND && (wParam & 0xFFF0) == SC_CLOSE) {
    context->controller->cancel();
    SetWindowLongPtrW(dialog, DWLP_MSGRESULT, 0);
    answer = TRUE;
  } else if (message == WM_CLOSE) {
    context->controller->cancel();
    answer = TRUE;
  } else if (message == WM_SETTEXT) {
    // The worker's caption: noted, and set by the default handling.
    const wchar_t* text = reinterpret_cast<const wchar_t*>(lParam);
    context->controller->noteCaption(text ? text : L"");
  } else if (message == WM_DESTROY) {
    context->view.release();
  }
  // A message the modal loop did not pull itself (one sent by the worker)
  // may have ended the dialog: the loop waits in GetMessageW and needs a
  // posted message to look again.
  if (context->start && context->controller->ended() && !context->wakePosted) {
    context->wakePosted = true;
    PostMessageW(dialog, WM_NULL, 0, 0);
  }
  return answer;
}

void InitControls() {
  INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_PROGRESS_CLASS};
  InitCommonControlsEx(&controls);
}

HWND CreateProgressDialog(HWND parent, DialogContext* context) {
  InitControls();
  const int count = context->controller->bars().count();
  return CreateDialogParamW(qt::Frame().instance, MAKEINTRESOURCEW(IDD_PROGRESS_BASE + count), parent, DialogProc,
                            reinterpret_cast<LPARAM>(context));
}

struct Modeless {
  DialogContext context;
  HWND dialog = nullptr;
};

DWORD WINAPI WorkerMain(LPVOID parameter) {
  std::shared_ptr<Session>* session = static_cast<std::shared_ptr<Session>*>(parameter);
  Session::RunWork(**session);
  delete session;
  return 0;
}

}  // namespace

void* StartWorker(const std::shared_ptr<Session>& session) {
  // A killed worker never gives its reference back: the session then stays,
  // rather than being freed under a thread that might still read it.
  std::shared_ptr<Session>* reference = new std::shared_ptr<Session>(session);
  HANDLE thread = CreateThread(nullptr, 0, &WorkerMain, reference, 0, nullptr);
  if (!thread) delete reference;
  return thread;
}

bool WaitWorker(void* worker, unsigned milliseconds) {
  return !worker || WaitForSingleObject(static_cast<HANDLE>(worker), milliseconds) == WAIT_OBJECT_0;
}

void ReleaseWorker(void* worker, bool ended) {
  if (!worker) return;
  if (!ended) TerminateThread(static_cast<HANDLE>(worker), 2);
  CloseHandle(static_cast<HANDLE>(worker));
}

bool WindowAlive(HWND window) { return window && IsWindow(window); }

LRESULT Send(HWND window, UINT message, WPARAM first, LPARAM second) {
  return SendMessageW(window, message, first, second);
}

LONG_PTR RunModal(HWND parent, Controller& controller, std::atomic<HWND>* published, void (*start)(void*),
                  void* startContext) {
  DialogContext context;
  context.controller = &controller;
  context.published = published;
  context.start = start;
  context.startContext = startContext;
  const bool disableParent = parent && IsWindowEnabled(parent);
  HWND dialog = CreateProgressDialog(parent, &context);
  if (!dialog) return kResultNoThread;
  if (disableParent) EnableWindow(parent, FALSE);
  MSG message;
  while (!controller.ended()) {
    const BOOL got = GetMessageW(&message, nullptr, 0, 0);
    if (got == 0) {
      // The program is quitting: the quit is passed on to its own loop.
      PostQuitMessage(static_cast<int>(message.wParam));
      controller.end(2);
      break;
    }
    if (got < 0) {
      controller.end(2);
      break;
    }
    if (!IsDialogMessageW(dialog, &message)) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
  }
  published->store(nullptr);
  KillTimer(dialog, kShowTimer);
  // The owner is enabled first so that it, not another program, gets the
  // activation back.
  if (disableParent) EnableWindow(parent, TRUE);
  DestroyWindow(dialog);
  controller.attach(nullptr);
  return controller.result();
}

void* OpenModeless(HWND parent, Controller& controller) {
  Modeless* modeless = new Modeless;
  modeless->context.controller = &controller;
  modeless->dialog = CreateProgressDialog(parent, &modeless->context);
  if (!modeless->dialog) {
    controller.attach(nullptr);
    delete modeless;
    return nullptr;
  }
  return modeless;
}

HWND ModelessWindow(void* dialog) { return dialog ? static_cast<Modeless*>(dialog)->dialog : nullptr; }

bool SetModelessVisible(void* dialog, bool visible) {
  if (!dialog) return false;
  HWND window = static_cast<Modeless*>(dialog)->dialog;
  ShowWindow(window, visible ? SW_SHOW : SW_HIDE);
  if (visible) UpdateWindow(window);
  return true;
}

void PumpOne(void* dialog) {
  if (!dialog) return;
  HWND window = static_cast<Modeless*>(dialog)->dialog;
  MSG message;
  if (!PeekMessageW(&message, window, 0, 0, PM_REMOVE)) return;
  if (!IsDialogMessageW(window, &message)) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

void CloseModeless(void* dialog) {
  if (!dialog) return;
  Modeless* modeless = static_cast<Modeless*>(dialog);
  DestroyWindow(modeless->dialog);
  modeless->context.controller->attach(nullptr);
  delete modeless;
}

}  // namespace platform
}  // namespace progress
}  // namespace qt
