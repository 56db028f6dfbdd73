// The terminal form of the progress dialogs, read back through a
// pseudo-terminal that stands in for the user's terminal on stderr.
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "ProgressDlg.h"

namespace {

typedef ProgressDlgThreaded::UserProcData Data;

// stderr on the slave side of a fresh pseudo-terminal while the object
// lives; everything written to it is collected from the master side.
class PtyStderr {
 public:
  PtyStderr() {
    master_ = posix_openpt(O_RDWR | O_NOCTTY);
    if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0) return;
    const int slave = open(ptsname(master_), O_RDWR | O_NOCTTY);
    if (slave < 0) return;
    struct winsize size = {};
    size.ws_row = 24;
    size.ws_col = 60;
    ioctl(slave, TIOCSWINSZ, &size);
    saved_ = dup(STDERR_FILENO);
    dup2(slave, STDERR_FILENO);
    close(slave);
    reader_ = std::thread([this] { read(); });
  }
  ~PtyStderr() { restore(); }

  bool ok() const { return saved_ >= 0; }

  // Gives stderr back and answers what was written.
  std::string restore() {
    if (saved_ >= 0) {
      dup2(saved_, STDERR_FILENO);
      close(saved_);
      saved_ = -1;
      stop_ = true;
      reader_.join();
    }
    if (master_ >= 0) close(master_);
    master_ = -1;
    return output_;
  }

 private:
  void read() {
    char buffer[4096];
    // Drains until stop is asked and nothing more is pending.
    for (;;) {
      struct pollfd p = {master_, POLLIN, 0};
      const int ready = poll(&p, 1, 20);
      if (ready > 0 && (p.revents & POLLIN)) {
        const ssize_t n = ::read(master_, buffer, sizeof buffer);
        if (n > 0) {
          output_.append(buffer, static_cast<size_t>(n));
          continue;
        }
      }
      if (stop_) return;
    }
  }

  int master_ = -1;
  int saved_ = -1;
  std::atomic<bool> stop_{false};
  std::thread reader_;
  std::string output_;
};

// The screen a terminal shows after these bytes: only what the dialog
// uses (carriage return, line feed, cursor up, erase line, erase below).
std::vector<std::string> Screen(const std::string& bytes, int* cursorUps) {
  std::vector<std::string> rows(1);
  size_t row = 0;
  size_t column = 0;
  *cursorUps = 0;
  for (size_t i = 0; i < bytes.size(); ++i) {
    const char c = bytes[i];
    if (c == '\x1b' && i + 1 < bytes.size() && bytes[i + 1] == '[') {
      size_t j = i + 2;
      int number = 0;
      while (j < bytes.size() && isdigit(static_cast<unsigned char>(bytes[j]))) number = number * 10 + (bytes[j++] - '0');
      const char command = j < bytes.size() ? bytes[j] : 0;
      if (command == 'A') {
        row = row >= static_cast<size_t>(number) ? row - static_cast<size_t>(number) : 0;
        ++*cursorUps;
      } else if (command == 'K') {
        rows[row].clear();
      } else if (command == 'J') {
        rows[row].resize(std::min(rows[row].size(), column));
        rows.resize(row + 1);
      }
      i = j;
    } else if (c == '\r') {
      column = 0;
    } else if (c == '\n') {
      ++row;
      column = 0;
      if (rows.size() <= row) rows.resize(row + 1);
    } else {
      if (rows[row].size() < column) rows[row].resize(column, ' ');
      if (rows[row].size() == column) rows[row].push_back(c);
      else rows[row][column] = c;
      ++column;
    }
  }
  while (!rows.empty() && rows.back().empty()) rows.pop_back();
  return rows;
}

void Pause(int milliseconds) { std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds)); }

bool ThreeBarWork(const Data* data) {
  data->SetDialogCaption(L"Report");
  data->SetTitile(L"Writing the report");
  data->SetShowPercentage(true);
  data->PbSetRangeUpper(0, 3);
  data->PbSetRangeUpper(1, 4);
  data->PbSetRangeUpper(2, 10);
  for (int set = 1; set <= 2; ++set) {
    data->PbSetPos(0, set);
    data->PbSetText(0, set == 1 ? L"Set 1 of 3: Lüftung" : L"Set 2 of 3: Heizung");
    data->PbSetPos(1, 2);
    data->PbSetText(1, L"Record 2 of 4");
    data->PbSetPos(2, 5);
    data->PbSetText(2, L"Cells");
    Pause(700);
  }
  // Shown by now: this change is drawn over the frame already there.
  data->PbSetPos(2, 5);
  Pause(200);
  return true;
}

bool QuickWork(const Data* data) {
  data->SetTitile(L"Quick");
  data->PbSetPos(0, 50);
  Pause(200);
  return true;
}

std::atomic<bool> g_release{false};

bool PatientWork(const Data* data) {
  data->SetTitile(L"Waiting for Ctrl+C");
  while (!data->ShouldTerminate()) Pause(5);
  return false;
}

bool DeafWork(const Data* data) {
  while (!g_release) Pause(5);
  return true;
}

std::thread InterruptAfter(int milliseconds) {
  return std::thread([milliseconds] {
    Pause(milliseconds);
    kill(getpid(), SIGINT);
  });
}

void (*CurrentSigint())(int) {
  struct sigaction now = {};
  sigaction(SIGINT, nullptr, &now);
  return now.sa_handler;
}

extern "C" void HostHandler(int) {}

}  // namespace

TEST(ProgressTerminal, ScreenshotThreeBarsAreRedrawnInPlace) {
  PtyStderr pty;
  ASSERT_TRUE(pty.ok());
  ProgressDlgThreaded dialog(nullptr, L"Progress", L"", 3, true, &ThreeBarWork, nullptr);
  EXPECT_EQ(1, dialog.StartModal());
  const std::string bytes = pty.restore();

  int ups = 0;
  const std::vector<std::string> screen = Screen(bytes, &ups);
  ASSERT_EQ(8u, screen.size()) << bytes;  // caption, header, 3 x (label, bar): not scrolled
  EXPECT_GE(ups, 1);
  EXPECT_EQ("Report", screen[0]);
  EXPECT_EQ("Writing the report", screen[1]);
  EXPECT_EQ("  Set 2 of 3: Heizung", screen[2]);
  EXPECT_NE(std::string::npos, screen[3].find("] 67%"));
  EXPECT_EQ("  Record 2 of 4", screen[4]);
  EXPECT_NE(std::string::npos, screen[5].find("] 50%"));
  EXPECT_EQ("  Cells", screen[6]);
  EXPECT_NE(std::string::npos, screen[7].find("] 50%"));
  for (const std::string& line : screen) EXPECT_LT(line.size(), 60u);

  if (const char* dir = std::getenv("QUILTOOL_SCREENSHOT_DIR")) {
    std::ofstream out(std::string(dir) + "/terminal_progress_three_bars.txt", std::ios::binary);
    for (const std::string& line : screen) out << line << "\n";
    EXPECT_TRUE(out.good());
  }
}

TEST(ProgressTerminal, NothingIsDrawnForQuickWorkOrWithoutATerminal) {
  {
    PtyStderr pty;
    ASSERT_TRUE(pty.ok());
    ProgressDlgThreaded dialog(nullptr, L"Progress", L"", 1, true, &QuickWork, nullptr);
    EXPECT_EQ(1, dialog.StartModal());
    EXPECT_EQ("", pty.restore());
  }

  // stderr on a file, as when a report runs unattended: nothing at all.
  char name[] = "/tmp/quiltool_progress_XXXXXX";
  const int file = mkstemp(name);
  ASSERT_GE(file, 0);
  const int saved = dup(STDERR_FILENO);
  dup2(file, STDERR_FILENO);
  ProgressDlgThreaded dialog(nullptr, L"Progress", L"", 3, true, &ThreeBarWork, nullptr);
  const LONG_PTR result = dialog.StartModal();
  dup2(saved, STDERR_FILENO);
  close(saved);
  const off_t size = lseek(file, 0, SEEK_END);
  close(file);
  unlink(name);
  EXPECT_EQ(1, result);
  EXPECT_EQ(0, size);
}

TEST(ProgressTerminal, CtrlCCancelsAndTheHostHandlerComesBack) {
  struct sigaction host = {};
  host.sa_handler = &HostHandler;
  sigemptyset(&host.sa_mask);
  struct sigaction before = {};
  ASSERT_EQ(0, sigaction(SIGINT, &host, &before));

  ProgressDlgThreaded dialog(nullptr, L"Progress", L"", 1, true, &PatientWork, nullptr);
  std::thread interrupt = InterruptAfter(300);
  EXPECT_EQ(2, dialog.StartModal());
  interrupt.join();
  EXPECT_EQ(&HostHandler, CurrentSigint());

  // With killing allowed, work that does not listen is left behind.
  g_release = false;
  {
    ProgressDlgThreaded deaf(nullptr, L"Progress", L"", 1, true, &DeafWork, nullptr);
    deaf.SetAllowKillThread(true);
    std::thread again = InterruptAfter(300);
    EXPECT_EQ(65538, deaf.StartModal());
    again.join();
  }
  g_release = true;
  Pause(100);  // the let-go worker ends before the process does
  EXPECT_EQ(&HostHandler, CurrentSigint());
  sigaction(SIGINT, &before, nullptr);
}

TEST(ProgressTerminal, IgnoredCtrlCStaysIgnored) {
  struct sigaction ignore = {};
  ignore.sa_handler = SIG_IGN;
  sigemptyset(&ignore.sa_mask);
  struct sigaction before = {};
  ASSERT_EQ(0, sigaction(SIGINT, &ignore, &before));
  ProgressDlgThreaded dialog(nullptr, L"Progress", L"", 1, true, &QuickWork, nullptr);
  std::thread interrupt = InterruptAfter(50);
  EXPECT_EQ(1, dialog.StartModal());
  interrupt.join();
  EXPECT_EQ(SIG_IGN, CurrentSigint());
  sigaction(SIGINT, &before, nullptr);
}

TEST(ProgressTerminal, CallerLoopDialogTakesCtrlCOnItsNextUpdate) {
  PtyStderr pty;
  ASSERT_TRUE(pty.ok());
  {
    ProgressDlg dialog(nullptr, 2, true);
    EXPECT_TRUE(dialog.SetTitleText(L"Export"));
    EXPECT_TRUE(dialog.SetHeaderText(L"Rows"));
    EXPECT_TRUE(dialog.PbInit(0, 0, 4, 1, true, false));
    EXPECT_FALSE(dialog.PbInit(2, 0, 4, 1, true, false));
    EXPECT_TRUE(dialog.Show());
    EXPECT_TRUE(dialog.PbStepIt(0));
    raise(SIGINT);
    EXPECT_TRUE(dialog.IsRunning());  // nothing taken yet
    EXPECT_TRUE(dialog.PbStepIt(0));
    EXPECT_FALSE(dialog.IsRunning());
  }
  int ups = 0;
  const std::vector<std::string> screen = Screen(pty.restore(), &ups);
  ASSERT_EQ(6u, screen.size());
  EXPECT_EQ("Export", screen[0]);
  EXPECT_EQ("Rows", screen[1]);
  EXPECT_NE(std::string::npos, screen[3].find("] 50%"));
}
