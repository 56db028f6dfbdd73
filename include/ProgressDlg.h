// Progress dialogs with one or more stacked bars.
//
// ProgressDlg is driven from the caller's own loop on the user-interface
// thread: every bar operation takes one pending message of the dialog, so
// the dialog repaints and its Cancel button works while the loop runs.
//
// ProgressDlgThreaded runs the caller's work on a worker thread while a
// modal dialog runs on the calling thread. The work reports progress through
// the UserProcData it is given; every call is one synchronous message to the
// dialog, so all drawing happens on the dialog's thread. The dialog stays
// hidden for its first second: work that ends sooner never shows a window.
//
// StartModal answers 1 (the work returned true), 2 (it returned false, or
// was cancelled before it started), 3 (the worker could not be started) or
// 65538 (cancelled while killing is allowed, see SetAllowKillThread). A
// cancel without killing sets the terminate flag and the dialog stays until
// the work returns; the work is expected to poll ShouldTerminate.
//
// Windows: real dialogs from the library's resources; the work runs on a
// thread from CreateThread. When killing is allowed and the work does not
// return within 500 ms of a cancel, the dialog ends; destroying the
// ProgressDlgThreaded object then waits another 500 ms and ends the thread
// with TerminateThread (exit code 2), which is the last resort: the work
// may be holding locks or memory at that moment.
//
// Linux: the same classes and protocol; the work runs on a std::thread and
// the dialog is drawn on the terminal when standard error is one (bars,
// labels, percentages and header redrawn in place). With no terminal
// nothing is drawn. Ctrl+C (SIGINT) is the Cancel button while a dialog
// runs; the previous handler is restored afterwards, and a SIGINT that the
// process ignores stays ignored. A thread cannot be killed safely on Linux:
// when killing is allowed and the work ignores the request, the dialog ends
// with 65538 and the worker is left to finish on its own (detached). Its
// UserProcData stays valid until then and every call through it does
// nothing; whatever the work reaches through GetAppData must outlive it.
#ifndef QUILTOOL_PROGRESSDLG_H
#define QUILTOOL_PROGRESSDLG_H

#include <atomic>
#include <memory>

#include "qn_wintypes.h"
#include "quiltool_export.h"

namespace qt {
namespace progress {
struct Session;
struct Loop;
}  // namespace progress
}  // namespace qt

class QT_API ProgressDlg {
 public:
  // allowCancel shows a working Cancel button (Ctrl+C on Linux); after it
  // was pressed IsRunning answers false.
  ProgressDlg(HWND parent, int barCount = 1, bool allowCancel = false);
  ~ProgressDlg();
  ProgressDlg(const ProgressDlg&) = delete;
  ProgressDlg& operator=(const ProgressDlg&) = delete;

  bool Show();
  bool Hide();
  // True while the dialog exists and nobody cancelled it.
  bool IsRunning() const;
  // The bar operations answer false for a bar outside the bars or when the
  // dialog has no window. Setting or stepping bar i restarts the bars
  // below it at their lower bound and clears their labels.
  bool PbInit(int bar, int lower, int upper, int step, bool showPercentage, bool marquee);
  bool PbSetPos(int bar, int position);
  bool PbStepIt(int bar);
  bool PbSetText(int bar, const wchar_t* text);
  bool SetHeaderText(const wchar_t* text);
  bool SetTitleText(const wchar_t* text);
  bool SetProgressBarCount(int count);

 private:
  qt::progress::Loop* loop_;
};

class QT_API ProgressDlgThreaded {
 public:
  // The handle the work gets. Every call sends one message to the dialog
  // and answers its result; it does nothing and answers 0 when the dialog
  // window is gone or the terminate flag is set.
  class QT_API UserProcData {
   public:
    typedef bool (*WorkProc)(const UserProcData* data);

    enum Message {
      MsgSetAllowCancel = 2258,
      MsgWorkFinished = 2259,
      MsgCancel = 2260,
      MsgSetTitle = 2261,
      MsgPbSetText = 2262,
      MsgPbStepIt = 2263,
      MsgPbSetRangeLower = 2264,
      MsgPbSetRangeUpper = 2265,
      MsgPbSetPos = 2266,
      MsgSetShowPercentage = 2267,
      MsgSetShowMarquee = 2268
    };

    LRESULT SetAllowCancel(bool allow) const;
    // The header text above the bars (the name is kept as callers spell it).
    LRESULT SetTitile(const wchar_t* text) const;
    LRESULT PbSetText(int bar, const wchar_t* text) const;
    LRESULT PbStepIt(int bar) const;
    LRESULT PbSetRangeLower(int bar, int value) const;
    LRESULT PbSetRangeUpper(int bar, int value) const;
    LRESULT PbSetPos(int bar, int position) const;
    LRESULT SetShowPercentage(bool show) const;
    LRESULT SetShowMarquee(bool marquee) const;
    LRESULT SetDialogCaption(const wchar_t* text) const;
    LRESULT SendMsg(UINT message, WPARAM first, LPARAM second) const;

    bool ShouldTerminate() const;
    void* GetAppData() const;

    UserProcData(WorkProc work, void* appData);
    UserProcData(const UserProcData&) = delete;
    UserProcData& operator=(const UserProcData&) = delete;

   private:
    friend struct qt::progress::Session;
    std::atomic<HWND> window_;
    std::atomic<unsigned char> running_;
    std::atomic<unsigned char> terminate_;
    WorkProc work_;
    void* appData_;
  };

  ProgressDlgThreaded(HWND parent, const wchar_t* caption, const wchar_t* header, int barCount, bool allowCancel,
                      UserProcData::WorkProc work, void* appData);
  // Stops a worker that still runs (see the top of this header).
  ~ProgressDlgThreaded();
  ProgressDlgThreaded(const ProgressDlgThreaded&) = delete;
  ProgressDlgThreaded& operator=(const ProgressDlgThreaded&) = delete;

  LONG_PTR StartModal();
  void SetAllowKillThread(bool allow);
  bool SetProgressBarCount(int count);

 private:
  std::shared_ptr<qt::progress::Session> session_;
};

#endif
