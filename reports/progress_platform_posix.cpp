#include "reports/progress_platform.h"

#include <signal.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <thread>

#include "reports/progress_frame.h"
#include "reports/progress_session.h"

namespace qt {
namespace progress {
namespace platform {

namespace {

typedef std::chrono::steady_clock Clock;

// ---- worker thread ----

struct Worker {
  std::mutex mutex;
  std::condition_variable changed;
  bool done = false;
  std::thread thread;
};

// ---- window table: a Linux "window" is a queue served by its dialog's thread ----

struct Request {
  UINT message;
  WPARAM first;
  LPARAM second;
  LRESULT result = 0;
  bool done = false;
};

struct Window {
  std::mutex mutex;
  std::condition_variable changed;
  std::deque<Request*> queue;
  bool closed = false;
  std::thread::id owner;
  Controller* controller = nullptr;
};

struct Table {
  std::mutex mutex;
  std::map<uintptr_t, std::shared_ptr<Window>> windows;
  // Handles are never reused, so a stale one finds nothing.
  uintptr_t next = 0x1000;
};

Table& Windows() {
  static Table* table = new Table;  // outlives detached workers at exit
  return *table;
}

std::shared_ptr<Window> Find(HWND handle) {
  Table& table = Windows();
  std::lock_guard<std::mutex> lock(table.mutex);
  auto it = table.windows.find(reinterpret_cast<uintptr_t>(handle));
  return it == table.windows.end() ? nullptr : it->second;
}

HWND Register(const std::shared_ptr<Window>& window) {
  Table& table = Windows();
  std::lock_guard<std::mutex> lock(table.mutex);
  table.next += 4;
  table.windows[table.next] = window;
  return reinterpret_cast<HWND>(table.next);
}

// Senders still waiting get 0, as SendMessageW to a destroyed window does.
void Unregister(HWND handle) {
  std::shared_ptr<Window> window;
  {
    Table& table = Windows();
    std::lock_guard<std::mutex> lock(table.mutex);
    auto it = table.windows.find(reinterpret_cast<uintptr_t>(handle));
    if (it == table.windows.end()) return;
    window = it->second;
    table.windows.erase(it);
  }
  std::lock_guard<std::mutex> lock(window->mutex);
  window->closed = true;
  window->queue.clear();
  window->changed.notify_all();
}

// Handles what other threads sent, waiting up to `wait` for the first.
void Serve(Window& window, std::chrono::milliseconds wait) {
  std::unique_lock<std::mutex> lock(window.mutex);
  if (window.queue.empty() && wait.count() > 0)
    window.changed.wait_for(lock, wait, [&] { return !window.queue.empty() || window.closed; });
  while (!window.queue.empty() && !window.closed) {
    Request* request = window.queue.front();
    window.queue.pop_front();
    lock.unlock();
    const LRESULT result = window.controller->handle(request->message, request->first, request->second);
    lock.lock();
    request->result = result;
    request->done = true;
    window.changed.notify_all();
  }
}

// ---- Ctrl+C ----

volatile sig_atomic_t g_interrupted = 0;
int g_sigintDepth = 0;
bool g_sigintInstalled = false;
struct sigaction g_previousSigint;

extern "C" void OnSigint(int) { g_interrupted = 1; }

// Restarting keeps a read or write of the work from failing with EINTR
// because the user pressed Ctrl+C on another thread's behalf.
const struct sigaction& OurSigint() {
  static struct sigaction ours;
  ours.sa_handler = &OnSigint;
  ours.sa_flags = SA_RESTART;
  sigemptyset(&ours.sa_mask);
  return ours;
}

void InstallSigint() {
  if (g_sigintDepth++ > 0) return;
  g_interrupted = 0;
  g_sigintInstalled = false;
  if (sigaction(SIGINT, nullptr, &g_previousSigint) != 0) return;
  // A process started to ignore Ctrl+C (a background job) keeps ignoring it.
  if (!(g_previousSigint.sa_flags & SA_SIGINFO) && g_previousSigint.sa_handler == SIG_IGN) return;
  g_sigintInstalled = sigaction(SIGINT, &OurSigint(), nullptr) == 0;
}

void RemoveSigint() {
  if (g_sigintDepth == 0 || --g_sigintDepth > 0) return;
  if (g_sigintInstalled) sigaction(SIGINT, &g_previousSigint, nullptr);
  g_sigintInstalled = false;
}

// Ctrl+C is the Cancel button. While cancelling is not allowed the button
// is greyed, but a terminal user must still be able to stop the program:
// the signal then goes to the handler that was there before.
void TakeInterrupt(Controller& controller) {
  if (!g_interrupted) return;
  g_interrupted = 0;
  if (controller.allowCancel()) {
    controller.cancel();
    return;
  }
  if (!g_sigintInstalled) return;
  sigaction(SIGINT, &g_previousSigint, nullptr);
  raise(SIGINT);
  sigaction(SIGINT, &OurSigint(), nullptr);
}

// ---- the terminal ----

class TerminalView : public View {
 public:
  explicit TerminalView(Controller& controller) : controller_(controller), terminal_(isatty(STDERR_FILENO) == 1) {}

  void showBar(int, const Bar&) override { dirty_ = true; }
  void showHeader(const std::wstring&) override { dirty_ = true; }
  void showCaption(const std::wstring&) override { dirty_ = true; }
  void showAllowCancel(bool) override {}

  void setVisible(bool visible) {
    if (visible == visible_) return;
    visible_ = visible;
    if (visible_) {
      draw();
    } else if (drawnLines_ > 0) {
      Write("\x1b[" + std::to_string(drawnLines_) + "A\r\x1b[J");
      drawnLines_ = 0;
    }
  }
  bool visible() const { return visible_; }

  // Redraws at most ten times a second, however fast the work reports.
  void tick() {
    if (!visible_ || !(dirty_ || marquee())) return;
    if (Clock::now() - lastDraw_ < std::chrono::milliseconds(100)) return;
    draw();
  }

  // The last state stays on the terminal, below it the program goes on.
  void finish() {
    if (visible_ && dirty_) draw();
  }

 private:
  bool marquee() const {
    for (int i = 0; i < controller_.bars().count(); ++i)
      if (controller_.bars().at(i).marquee) return true;
    return false;
  }

  void draw() {
    dirty_ = false;
    lastDraw_ = Clock::now();
    if (!terminal_) return;
    struct winsize size = {};
    int columns = 80;
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) columns = size.ws_col;
    const std::vector<std::string> lines =
        FrameLines(controller_.caption(), controller_.header(), controller_.bars(), columns, tick_++);
    Write(FrameUpdate(lines, drawnLines_));
    drawnLines_ = static_cast<int>(lines.size());
  }

  static void Write(const std::string& bytes) {
    size_t done = 0;
    while (done < bytes.size()) {
      const ssize_t n = write(STDERR_FILENO, bytes.data() + done, bytes.size() - done);
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) return;  // a terminal that went away takes no progress
      done += static_cast<size_t>(n);
    }
  }

  Controller& controller_;
  const bool terminal_;
  bool visible_ = false;
  bool dirty_ = true;
  int drawnLines_ = 0;
  unsigned tick_ = 0;
  Clock::time_point lastDraw_;
};

struct Modeless {
  explicit Modeless(Controller& c) : controller(c), view(c) {}
  Controller& controller;
  std::shared_ptr<Window> window;
  HWND handle = nullptr;
  TerminalView view;
};

}  // namespace

void* StartWorker(const std::shared_ptr<Session>& session) {
  std::shared_ptr<Worker> worker = std::make_shared<Worker>();
  try {
    // The thread keeps the session and its own record alive: after a
    // release without end it finishes on its own.
    worker->thread = std::thread([session, worker] {
      Session::RunWork(*session);
      std::lock_guard<std::mutex> lock(worker->mutex);
      worker->done = true;
      worker->changed.notify_all();
    });
  } catch (...) {
    return nullptr;
  }
  return new std::shared_ptr<Worker>(worker);
}

bool WaitWorker(void* handle, unsigned milliseconds) {
  if (!handle) return true;
  Worker& worker = **static_cast<std::shared_ptr<Worker>*>(handle);
  std::unique_lock<std::mutex> lock(worker.mutex);
  return worker.changed.wait_for(lock, std::chrono::milliseconds(milliseconds), [&] { return worker.done; });
}

void ReleaseWorker(void* handle, bool ended) {
  if (!handle) return;
  std::shared_ptr<Worker>* worker = static_cast<std::shared_ptr<Worker>*>(handle);
  if ((*worker)->thread.joinable()) {
    if (ended) (*worker)->thread.join();
    else (*worker)->thread.detach();
  }
  delete worker;
}

bool WindowAlive(HWND window) { return window && Find(window) != nullptr; }

LRESULT Send(HWND handle, UINT message, WPARAM first, LPARAM second) {
  std::shared_ptr<Window> window = Find(handle);
  if (!window) return 0;
  if (window->owner == std::this_thread::get_id()) return window->controller->handle(message, first, second);
  Request request = {message, first, second};
  std::unique_lock<std::mutex> lock(window->mutex);
  if (window->closed) return 0;
  window->queue.push_back(&request);
  window->changed.notify_all();
  window->changed.wait(lock, [&] { return request.done || window->closed; });
  return request.done ? request.result : 0;
}

LONG_PTR RunModal(HWND, Controller& controller, std::atomic<HWND>* published, void (*start)(void*),
                  void* startContext) {
  std::shared_ptr<Window> window = std::make_shared<Window>();
  window->owner = std::this_thread::get_id();
  window->controller = &controller;
  TerminalView view(controller);
  controller.attach(&view);
  const HWND handle = Register(window);
  published->store(handle);
  InstallSigint();
  const Clock::time_point begin = Clock::now();
  start(startContext);
  while (!controller.ended()) {
    Serve(*window, std::chrono::milliseconds(50));
    TakeInterrupt(controller);
    if (!view.visible() && Clock::now() - begin >= std::chrono::seconds(1)) view.setVisible(true);
    view.tick();
  }
  published->store(nullptr);
  Unregister(handle);
  RemoveSigint();
  view.finish();
  controller.attach(nullptr);
  return controller.result();
}

void* OpenModeless(HWND, Controller& controller) {
  Modeless* dialog = new Modeless(controller);
  dialog->window = std::make_shared<Window>();
  dialog->window->owner = std::this_thread::get_id();
  dialog->window->controller = &controller;
  controller.attach(&dialog->view);
  dialog->handle = Register(dialog->window);
  InstallSigint();
  return dialog;
}

HWND ModelessWindow(void* dialog) { return dialog ? static_cast<Modeless*>(dialog)->handle : nullptr; }

bool SetModelessVisible(void* dialog, bool visible) {
  if (!dialog) return false;
  static_cast<Modeless*>(dialog)->view.setVisible(visible);
  return true;
}

void PumpOne(void* handle) {
  if (!handle) return;
  Modeless& dialog = *static_cast<Modeless*>(handle);
  Serve(*dialog.window, std::chrono::milliseconds(0));
  TakeInterrupt(dialog.controller);
  dialog.view.tick();
}

void CloseModeless(void* handle) {
  if (!handle) return;
  Modeless* dialog = static_cast<Modeless*>(handle);
  dialog->view.finish();
  Unregister(dialog->handle);
  RemoveSigint();
  dialog->controller.attach(nullptr);
  delete dialog;
}

}  // namespace platform
}  // namespace progress
}  // namespace qt
