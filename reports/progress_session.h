// What the dialog and its worker share for one ProgressDlgThreaded. The
// worker holds its own reference, so a worker that outlives the dialog
// object (Linux cannot end it) still finds valid flags, only no window.
#ifndef QUILTOOL_REPORTS_PROGRESS_SESSION_H
#define QUILTOOL_REPORTS_PROGRESS_SESSION_H

#include <memory>
#include <string>

#include "ProgressDlg.h"

namespace qt {
namespace progress {

// Option bits of the threaded dialog.
const unsigned kCancelAllowed = 1;
const unsigned kKillAllowed = 2;

struct Session {
  Session(HWND parent, const wchar_t* caption, const wchar_t* header, int barCount, bool allowCancel,
          ProgressDlgThreaded::UserProcData::WorkProc work, void* appData);

  ProgressDlgThreaded::UserProcData data;
  HWND parent;
  std::wstring caption;
  std::wstring header;
  int barCount;
  unsigned options;
  bool started = false;
  // The platform's worker thread (null when none runs).
  void* worker = nullptr;

  // The dialog, from its start to its end.
  LONG_PTR runModal(const std::shared_ptr<Session>& self);
  // The destructor's stop routine: terminate, 500 ms, then kill or let go.
  void stop();
  // What the worker thread runs.
  static void RunWork(Session& session);

  // The shared record's flags, for the platform and the tests.
  std::atomic<HWND>& window() { return data.window_; }
  bool terminating() const { return data.terminate_.load() != 0; }
  bool running() const { return data.running_.load() != 0; }
};

}  // namespace progress
}  // namespace qt

#endif
