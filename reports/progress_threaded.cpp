#include "ProgressDlg.h"

#include "core/boundary.h"
#include "reports/progress_controller.h"
#include "reports/progress_platform.h"
#include "reports/progress_session.h"

typedef ProgressDlgThreaded::UserProcData Data;

Data::UserProcData(WorkProc work, void* appData)
    : window_(nullptr), running_(0), terminate_(0), work_(work), appData_(appData) {}

LRESULT Data::SendMsg(UINT message, WPARAM first, LPARAM second) const {
  return qt::NoThrow<LRESULT>("ProgressDlgThreaded::UserProcData::SendMsg", 0, [&]() -> LRESULT {
    const HWND window = window_.load();
    if (!window || terminate_.load() || !qt::progress::platform::WindowAlive(window)) return 0;
    return qt::progress::platform::Send(window, message, first, second);
  });
}

LRESULT Data::SetAllowCancel(bool allow) const { return SendMsg(MsgSetAllowCancel, 0, allow ? 1 : 0); }
LRESULT Data::SetTitile(const wchar_t* text) const { return SendMsg(MsgSetTitle, 0, reinterpret_cast<LPARAM>(text)); }
LRESULT Data::PbSetText(int bar, const wchar_t* text) const {
  return SendMsg(MsgPbSetText, static_cast<WPARAM>(bar), reinterpret_cast<LPARAM>(text));
}
LRESULT Data::PbStepIt(int bar) const { return SendMsg(MsgPbStepIt, static_cast<WPARAM>(bar), 0); }
LRESULT Data::PbSetRangeLower(int bar, int value) const {
  return SendMsg(MsgPbSetRangeLower, static_cast<WPARAM>(bar), static_cast<LPARAM>(value));
}
LRESULT Data::PbSetRangeUpper(int bar, int value) const {
  return SendMsg(MsgPbSetRangeUpper, static_cast<WPARAM>(bar), static_cast<LPARAM>(value));
}
LRESULT Data::PbSetPos(int bar, int position) const {
  return SendMsg(MsgPbSetPos, static_cast<WPARAM>(bar), static_cast<LPARAM>(position));
}
LRESULT Data::SetShowPercentage(bool show) const { return SendMsg(MsgSetShowPercentage, 0, show ? 1 : 0); }
LRESULT Data::SetShowMarquee(bool marquee) const { return SendMsg(MsgSetShowMarquee, 0, marquee ? 1 : 0); }
LRESULT Data::SetDialogCaption(const wchar_t* text) const {
  return SendMsg(qt::progress::kSetWindowText, 0, reinterpret_cast<LPARAM>(text));
}
bool Data::ShouldTerminate() const { return terminate_.load() != 0; }
void* Data::GetAppData() const { return appData_; }

ProgressDlgThreaded::ProgressDlgThreaded(HWND parent, const wchar_t* caption, const wchar_t* header, int barCount,
                                         bool allowCancel, UserProcData::WorkProc work, void* appData) {
  qt::NoThrowVoid("ProgressDlgThreaded::ProgressDlgThreaded", [&] {
    session_ = std::make_shared<qt::progress::Session>(parent, caption, header, barCount, allowCancel, work, appData);
  });
}

ProgressDlgThreaded::~ProgressDlgThreaded() {
  qt::NoThrowVoid("ProgressDlgThreaded::~ProgressDlgThreaded", [&] {
    if (session_) session_->stop();
  });
}

LONG_PTR ProgressDlgThreaded::StartModal() {
  return qt::NoThrow<LONG_PTR>("ProgressDlgThreaded::StartModal", qt::progress::kResultNoThread, [&]() -> LONG_PTR {
    if (!session_) return qt::progress::kResultNoThread;
    return session_->runModal(session_);
  });
}

void ProgressDlgThreaded::SetAllowKillThread(bool allow) {
  if (!session_) return;
  if (allow) session_->options |= qt::progress::kKillAllowed;
  else session_->options &= ~qt::progress::kKillAllowed;
}

bool ProgressDlgThreaded::SetProgressBarCount(int count) {
  if (!session_ || session_->started || count < qt::progress::kMinBars || count > qt::progress::kMaxBars) return false;
  session_->barCount = count;
  return true;
}
