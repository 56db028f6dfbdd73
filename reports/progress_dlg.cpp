#include "ProgressDlg.h"

#include "core/boundary.h"
#include "reports/progress_controller.h"
#include "reports/progress_platform.h"

namespace qt {
namespace progress {

struct Loop {
  explicit Loop(int barCount) : controller(barCount) {}
  Controller controller;
  HWND parent = nullptr;
  void* dialog = nullptr;
  bool visible = false;
  bool cancelled = false;
};

}  // namespace progress
}  // namespace qt

namespace {

using qt::progress::Loop;

int ClampBars(int count) {
  return count < qt::progress::kMinBars ? qt::progress::kMinBars
                                        : (count > qt::progress::kMaxBars ? qt::progress::kMaxBars : count);
}

// Every bar operation keeps the dialog alive by handling one of its
// pending messages, since the caller's loop pumps none.
template <class F>
bool BarCall(Loop* loop, const char* where, int bar, F&& change) {
  return qt::NoThrow(where, false, [&] {
    if (!loop || !loop->dialog || !loop->controller.bars().valid(bar)) return false;
    const bool done = change(loop->controller);
    qt::progress::platform::PumpOne(loop->dialog);
    return done;
  });
}

}  // namespace

ProgressDlg::ProgressDlg(HWND parent, int barCount, bool allowCancel) : loop_(nullptr) {
  qt::NoThrowVoid("ProgressDlg::ProgressDlg", [&] {
    Loop* loop = new Loop(ClampBars(barCount));
    loop->parent = parent;
    loop->controller.setAllowCancel(allowCancel);
    loop->controller.onCancel = [loop] { loop->cancelled = true; };
    loop->dialog = qt::progress::platform::OpenModeless(parent, loop->controller);
    loop_ = loop;
  });
}

ProgressDlg::~ProgressDlg() {
  qt::NoThrowVoid("ProgressDlg::~ProgressDlg", [&] {
    if (!loop_) return;
    if (loop_->dialog) qt::progress::platform::CloseModeless(loop_->dialog);
    delete loop_;
  });
}

bool ProgressDlg::Show() {
  return qt::NoThrow("ProgressDlg::Show", false, [&] {
    if (!loop_ || !loop_->dialog) return false;
    loop_->visible = true;
    return qt::progress::platform::SetModelessVisible(loop_->dialog, true);
  });
}

bool ProgressDlg::Hide() {
  return qt::NoThrow("ProgressDlg::Hide", false, [&] {
    if (!loop_ || !loop_->dialog) return false;
    loop_->visible = false;
    return qt::progress::platform::SetModelessVisible(loop_->dialog, false);
  });
}

bool ProgressDlg::IsRunning() const { return loop_ && loop_->dialog && !loop_->cancelled; }

bool ProgressDlg::PbInit(int bar, int lower, int upper, int step, bool showPercentage, bool marquee) {
  return BarCall(loop_, "ProgressDlg::PbInit", bar, [&](qt::progress::Controller& c) {
    c.bars().init(bar, lower, upper, step, showPercentage, marquee);
    c.refreshBars(bar);
    return true;
  });
}

bool ProgressDlg::PbSetPos(int bar, int position) {
  return BarCall(loop_, "ProgressDlg::PbSetPos", bar, [&](qt::progress::Controller& c) {
    return c.handle(ProgressDlgThreaded::UserProcData::MsgPbSetPos, static_cast<WPARAM>(bar), position) != 0;
  });
}

bool ProgressDlg::PbStepIt(int bar) {
  return BarCall(loop_, "ProgressDlg::PbStepIt", bar, [&](qt::progress::Controller& c) {
    return c.handle(ProgressDlgThreaded::UserProcData::MsgPbStepIt, static_cast<WPARAM>(bar), 0) != 0;
  });
}

bool ProgressDlg::PbSetText(int bar, const wchar_t* text) {
  return BarCall(loop_, "ProgressDlg::PbSetText", bar, [&](qt::progress::Controller& c) {
    return c.handle(ProgressDlgThreaded::UserProcData::MsgPbSetText, static_cast<WPARAM>(bar),
                    reinterpret_cast<LPARAM>(text)) != 0;
  });
}

bool ProgressDlg::SetHeaderText(const wchar_t* text) {
  return BarCall(loop_, "ProgressDlg::SetHeaderText", 0, [&](qt::progress::Controller& c) {
    c.setHeader(text ? text : L"");
    return true;
  });
}

bool ProgressDlg::SetTitleText(const wchar_t* text) {
  return BarCall(loop_, "ProgressDlg::SetTitleText", 0, [&](qt::progress::Controller& c) {
    c.setCaption(text ? text : L"");
    return true;
  });
}

bool ProgressDlg::SetProgressBarCount(int count) {
  return qt::NoThrow("ProgressDlg::SetProgressBarCount", false, [&] {
    if (!loop_ || count < qt::progress::kMinBars || count > qt::progress::kMaxBars) return false;
    if (count == loop_->controller.bars().count()) return true;
    // Each bar count has its own dialog template: the window is made anew.
    if (loop_->dialog) qt::progress::platform::CloseModeless(loop_->dialog);
    loop_->controller.bars().resize(count);
    loop_->dialog = qt::progress::platform::OpenModeless(loop_->parent, loop_->controller);
    if (loop_->dialog && loop_->visible) qt::progress::platform::SetModelessVisible(loop_->dialog, true);
    return loop_->dialog != nullptr;
  });
}
