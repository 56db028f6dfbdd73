// The platform steps of the progress dialogs (progress_platform_win.cpp /
// progress_platform_posix.cpp). Windows: real dialogs from the library's
// resources and CreateThread. Linux: a window table whose messages are
// handled on the dialog's thread, drawn on the terminal when stderr is one,
// and std::thread.
#ifndef QUILTOOL_REPORTS_PROGRESS_PLATFORM_H
#define QUILTOOL_REPORTS_PROGRESS_PLATFORM_H

#include <atomic>
#include <memory>

#include "qn_wintypes.h"
#include "reports/progress_controller.h"

namespace qt {
namespace progress {

struct Session;

namespace platform {

// Starts the worker on Session::RunWork; null when no thread could be made.
void* StartWorker(const std::shared_ptr<Session>& session);
// True when the worker ended within the time.
bool WaitWorker(void* worker, unsigned milliseconds);
// Gives the worker up. One that has not ended is killed with exit code 2
// (Windows) or left to finish on its own (Linux).
void ReleaseWorker(void* worker, bool ended);

// IsWindow / SendMessageW, or their window-table look-alikes.
bool WindowAlive(HWND window);
LRESULT Send(HWND window, UINT message, WPARAM first, LPARAM second);

// Runs the modal dialog of `controller`: the window is published in
// `published` before `start` runs, hidden for a second, and taken back out
// before it is destroyed. Answers the controller's result.
LONG_PTR RunModal(HWND parent, Controller& controller, std::atomic<HWND>* published, void (*start)(void*),
                  void* startContext);

// The ProgressDlg's window (hidden at first); null when none could be made.
void* OpenModeless(HWND parent, Controller& controller);
HWND ModelessWindow(void* dialog);
bool SetModelessVisible(void* dialog, bool visible);
// Takes one pending message of the dialog, if there is one, and handles it.
void PumpOne(void* dialog);
void CloseModeless(void* dialog);

}  // namespace platform
}  // namespace progress
}  // namespace qt

#endif
