#include "reports/progress_session.h"

#include "reports/progress_controller.h"
#include "reports/progress_platform.h"

namespace qt {
namespace progress {

namespace {

struct StartContext {
  std::shared_ptr<Session> session;
  Controller* controller;
};

void StartWork(void* context) {
  StartContext& start = *static_cast<StartContext*>(context);
  Session& session = *start.session;
  if (!(session.options & kCancelAllowed)) start.controller->handle(ProgressDlgThreaded::UserProcData::MsgSetAllowCancel, 0, 0);
  session.worker = platform::StartWorker(start.session);
  if (!session.worker) start.controller->end(kResultNoThread);
}

}  // namespace

Session::Session(HWND parent_, const wchar_t* caption_, const wchar_t* header_, int barCount_, bool allowCancel,
                 ProgressDlgThreaded::UserProcData::WorkProc work, void* appData)
    : data(work, appData),
      parent(parent_),
      caption(caption_ ? caption_ : L""),
      header(header_ ? header_ : L""),
      barCount(barCount_ < kMinBars ? kMinBars : (barCount_ > kMaxBars ? kMaxBars : barCount_)),
      options(allowCancel ? kCancelAllowed : 0u) {}

LONG_PTR Session::runModal(const std::shared_ptr<Session>& self) {
  // One dialog per object: the shared record belongs to one worker.
  if (started) return kResultNoThread;
  started = true;
  Controller controller(barCount);
  controller.setCaption(caption);
  controller.setHeader(header);
  controller.onCancel = [this, &controller] {
    data.terminate_ = 1;
    if (!(options & kKillAllowed)) return;  // the work returns and sends 2259
    if (worker) platform::WaitWorker(worker, 500);
    controller.end(kResultKilled);
  };
  StartContext start = {self, &controller};
  return platform::RunModal(parent, controller, &data.window_, &StartWork, &start);
}

void Session::stop() {
  data.terminate_ = 1;
  if (worker) {
    const bool ended = platform::WaitWorker(worker, 500);
    platform::ReleaseWorker(worker, ended);
    worker = nullptr;
  }
  data.window_ = nullptr;
}

void Session::RunWork(Session& session) {
  ProgressDlgThreaded::UserProcData& data = session.data;
  data.running_ = 1;
  int result = 2;
  if (!data.terminate_) {
    try {
      result = data.work_ && data.work_(&data) ? 1 : 2;
    } catch (...) {
      // The caller's work must not take the worker thread down with it.
      result = 2;
    }
  }
  data.running_ = 0;
  // A cancelled dialog that may not kill waits for this message, so it goes
  // whenever the window is still there.
  const HWND window = data.window_.load();
  if (window && platform::WindowAlive(window)) platform::Send(window, ProgressDlgThreaded::UserProcData::MsgWorkFinished, static_cast<WPARAM>(result), 0);
}

}  // namespace progress
}  // namespace qt
