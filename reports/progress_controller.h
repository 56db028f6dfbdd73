// What a progress dialog does with its messages, apart from how it shows
// them: the Windows dialog and the terminal both run their messages
// through one Controller and draw what it tells their View.
#ifndef QUILTOOL_REPORTS_PROGRESS_CONTROLLER_H
#define QUILTOOL_REPORTS_PROGRESS_CONTROLLER_H

#include <functional>
#include <string>

#include "qn_wintypes.h"
#include "reports/progress_bars.h"

namespace qt {
namespace progress {

// The system's set-window-text message, which the worker sends for the
// caption. Windows hands it to the dialog's default handling as well.
const UINT kSetWindowText = 0x000C;
// StartModal's answers besides the work's own 1 and 2.
const LONG_PTR kResultNoThread = 3;
const LONG_PTR kResultKilled = 0x10002;

class View {
 public:
  virtual ~View() {}
  virtual void showBar(int index, const Bar& bar) = 0;
  virtual void showHeader(const std::wstring& text) = 0;
  virtual void showCaption(const std::wstring& text) = 0;
  virtual void showAllowCancel(bool allow) = 0;
};

class Controller {
 public:
  explicit Controller(int barCount);

  // Draws everything once; later changes reach the view as they happen.
  void attach(View* view);

  // The dialog's own messages (2258-2268 and the caption). handled says
  // whether the message was one of them.
  LRESULT handle(UINT message, WPARAM first, LPARAM second, bool* handled = nullptr);

  // The Cancel button, Escape, the window menu's close and Ctrl+C all come
  // here; nothing happens while cancelling is not allowed.
  void cancel();
  void end(LONG_PTR result);
  bool ended() const { return ended_; }
  LONG_PTR result() const { return result_; }

  Bars& bars() { return bars_; }
  const Bars& bars() const { return bars_; }
  // Pushes bars from `first` on to the view after a direct change.
  void refreshBars(int first);
  void setHeader(const std::wstring& text);
  void setCaption(const std::wstring& text);
  // The caption changed on the window itself; the view is not told again.
  void noteCaption(const std::wstring& text) { caption_ = text; }
  void setAllowCancel(bool allow);
  const std::wstring& header() const { return header_; }
  const std::wstring& caption() const { return caption_; }
  bool allowCancel() const { return allowCancel_; }

  // What the owner does on a cancel that is allowed.
  std::function<void()> onCancel;

 private:
  Bars bars_;
  std::wstring header_;
  std::wstring caption_;
  bool allowCancel_ = true;
  bool ended_ = false;
  LONG_PTR result_ = 0;
  View* view_ = nullptr;
};

}  // namespace progress
}  // namespace qt

#endif
