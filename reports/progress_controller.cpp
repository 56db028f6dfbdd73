#include "reports/progress_controller.h"

#include "ProgressDlg.h"

namespace qt {
namespace progress {

namespace {

typedef ProgressDlgThreaded::UserProcData Data;

std::wstring TextOf(LPARAM value) {
  const wchar_t* text = reinterpret_cast<const wchar_t*>(value);
  return text ? std::wstring(text) : std::wstring();
}

}  // namespace

Controller::Controller(int barCount) : bars_(barCount) {}

void Controller::attach(View* view) {
  view_ = view;
  if (!view_) return;
  view_->showCaption(caption_);
  view_->showHeader(header_);
  view_->showAllowCancel(allowCancel_);
  refreshBars(0);
}

void Controller::refreshBars(int first) {
  if (!view_) return;
  for (int i = first < 0 ? 0 : first; i < bars_.count(); ++i) view_->showBar(i, bars_.at(i));
}

void Controller::setHeader(const std::wstring& text) {
  header_ = text;
  if (view_) view_->showHeader(header_);
}

void Controller::setCaption(const std::wstring& text) {
  caption_ = text;
  if (view_) view_->showCaption(caption_);
}

void Controller::setAllowCancel(bool allow) {
  allowCancel_ = allow;
  if (view_) view_->showAllowCancel(allow);
}

void Controller::cancel() {
  if (!allowCancel_ || ended_) return;
  if (onCancel) onCancel();
}

void Controller::end(LONG_PTR result) {
  if (ended_) return;
  ended_ = true;
  result_ = result;
}

LRESULT Controller::handle(UINT message, WPARAM first, LPARAM second, bool* handled) {
  if (handled) *handled = true;
  const int bar = static_cast<int>(first);
  bool changed = false;
  switch (message) {
    case Data::MsgSetAllowCancel:
      setAllowCancel(second != 0);
      return 1;
    case Data::MsgWorkFinished:
      end(static_cast<LONG_PTR>(first));
      return 1;
    case Data::MsgCancel:
      cancel();
      return 1;
    case Data::MsgSetTitle:
      setHeader(TextOf(second));
      return 1;
    case kSetWindowText:
      setCaption(TextOf(second));
      return 1;
    case Data::MsgPbSetText:
      changed = bars_.setLabel(bar, TextOf(second));
      if (changed && view_) view_->showBar(bar, bars_.at(bar));
      return changed ? 1 : 0;
    case Data::MsgPbStepIt:
      changed = bars_.stepIt(bar);
      break;
    case Data::MsgPbSetRangeLower:
      changed = bars_.setLower(bar, static_cast<int>(second));
      if (changed && view_) view_->showBar(bar, bars_.at(bar));
      return changed ? 1 : 0;
    case Data::MsgPbSetRangeUpper:
      changed = bars_.setUpper(bar, static_cast<int>(second));
      if (changed && view_) view_->showBar(bar, bars_.at(bar));
      return changed ? 1 : 0;
    case Data::MsgPbSetPos:
      changed = bars_.setPosition(bar, static_cast<int>(second));
      break;
    case Data::MsgSetShowPercentage:
      bars_.setShowPercentage(second != 0);
      refreshBars(0);
      return 1;
    case Data::MsgSetShowMarquee:
      bars_.setMarquee(second != 0);
      refreshBars(0);
      return 1;
    default:
      if (handled) *handled = false;
      return 0;
  }
  // Moving a bar restarted the bars below it: they are shown again too.
  if (changed) refreshBars(bar);
  return changed ? 1 : 0;
}

}  // namespace progress
}  // namespace qt
