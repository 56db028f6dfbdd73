// Bar rules, the terminal frame and the worker protocol, the same on both
// targets (the dialog is the real one of each: a window or the terminal).
// ctest: RESOURCE_LOCK desktop
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

#include "ProgressDlg.h"
#include "qn_utf.h"
#include "reports/progress_bars.h"
#include "reports/progress_frame.h"

using qt::progress::Bars;
using qt::progress::Percentage;

TEST(ProgressBars, PercentageRoundsAndAnEmptySpanIsZero) {
  EXPECT_EQ(0, Percentage(5, 5, 5));
  EXPECT_EQ(0, Percentage(0, 0, 7));
  EXPECT_EQ(33, Percentage(0, 3, 1));
  EXPECT_EQ(67, Percentage(0, 3, 2));
  EXPECT_EQ(50, Percentage(10, 20, 15));
  EXPECT_EQ(100, Percentage(-50, 50, 50));
  // Bounds near the ends of int do not overflow the span.
  EXPECT_EQ(50, Percentage(-2147483647, 2147483647, 0));

  Bars bars(1);
  bars.init(0, 0, 3, 1, true, false);
  bars.setPosition(0, 2);
  EXPECT_EQ(L"67%", qt::progress::PercentageText(bars.at(0)));
}

TEST(ProgressBars, MovingABarRestartsTheBarsBelowIt) {
  Bars bars(3);
  bars.init(0, 0, 10, 1, false, false);
  bars.init(1, 5, 50, 5, false, false);
  bars.init(2, 0, 100, 1, false, false);
  for (int i = 0; i < 3; ++i) bars.setLabel(i, L"label");
  bars.setPosition(1, 30);
  bars.setPosition(2, 70);

  ASSERT_TRUE(bars.stepIt(0));
  EXPECT_EQ(1, bars.at(0).position);
  EXPECT_EQ(L"label", bars.at(0).label);
  EXPECT_EQ(5, bars.at(1).position);  // back to its own lower bound
  EXPECT_EQ(0, bars.at(2).position);
  EXPECT_TRUE(bars.at(1).label.empty());
  EXPECT_TRUE(bars.at(2).label.empty());

  // The middle bar restarts only the one below it.
  bars.setLabel(0, L"set");
  bars.setLabel(1, L"record");
  bars.setPosition(2, 40);
  ASSERT_TRUE(bars.setPosition(1, 20));
  EXPECT_EQ(1, bars.at(0).position);
  EXPECT_EQ(L"set", bars.at(0).label);
  EXPECT_EQ(L"record", bars.at(1).label);
  EXPECT_EQ(0, bars.at(2).position);

  // The last bar has nobody below it.
  bars.setLabel(2, L"cell");
  ASSERT_TRUE(bars.stepIt(2));
  EXPECT_EQ(L"cell", bars.at(2).label);
  EXPECT_EQ(20, bars.at(1).position);
}

TEST(ProgressBars, StepWrapsLikeTheSystemControlAndBadBarsAreRefused) {
  Bars bars(1);
  bars.init(0, 0, 10, 4, false, false);
  bars.stepIt(0);
  bars.stepIt(0);
  EXPECT_EQ(8, bars.at(0).position);
  bars.stepIt(0);  // 12 is past the end: starts over
  EXPECT_EQ(2, bars.at(0).position);
  bars.setPosition(0, 99);
  EXPECT_EQ(10, bars.at(0).position);

  EXPECT_FALSE(bars.stepIt(1));
  EXPECT_FALSE(bars.setPosition(-1, 0));
  EXPECT_FALSE(bars.setLabel(1, L"x"));
  EXPECT_FALSE(bars.resize(0));
  EXPECT_FALSE(bars.resize(qt::progress::kMaxBars + 1));
  ASSERT_TRUE(bars.resize(3));
  EXPECT_EQ(0, bars.at(2).lower);
  EXPECT_EQ(100, bars.at(2).upper);
  EXPECT_EQ(1, bars.at(2).step);
}

TEST(ProgressFrame, LinesKeepTheirCountAndFitTheTerminal) {
  Bars bars(2);
  bars.init(0, 0, 3, 1, true, false);
  bars.setPosition(0, 1);
  bars.setLabel(0, L"Sets: Kühlung\nzwei");
  bars.init(1, 0, 10, 1, false, true);
  const std::wstring longHeader(300, L'h');
  const std::vector<std::string> lines = qt::progress::FrameLines(L"Report", longHeader, bars, 40, 3);
  ASSERT_EQ(6u, lines.size());
  EXPECT_EQ("Report", lines[0]);
  EXPECT_EQ("  Sets: Kühlung zwei", lines[2]);  // a line feed would move the cursor
  EXPECT_NE(std::string::npos, lines[3].find("] 33%"));
  EXPECT_EQ(std::string::npos, lines[5].find('%'));  // a marquee has no percentage
  for (const std::string& line : lines) EXPECT_LT(qn_utf8_to_wide(line.c_str()).size(), 40u) << line;

  // Filled cells follow the position; the marquee block moves with the tick.
  const size_t filled = std::count(lines[3].begin(), lines[3].end(), '#');
  EXPECT_GT(filled, 0u);
  EXPECT_LT(filled, lines[3].size() / 2);
  const std::vector<std::string> later = qt::progress::FrameLines(L"Report", longHeader, bars, 40, 4);
  EXPECT_NE(lines[5], later[5]);
  EXPECT_EQ(lines[3], later[3]);
}

TEST(ProgressFrame, RedrawGoesBackOverThePreviousFrame) {
  const std::vector<std::string> lines = {"a", "b", "c"};
  EXPECT_EQ("\r\x1b[2Ka\n\r\x1b[2Kb\n\r\x1b[2Kc\n", qt::progress::FrameUpdate(lines, 0));
  const std::string again = qt::progress::FrameUpdate(lines, 3);
  EXPECT_EQ(0u, again.find("\x1b[3A"));
  EXPECT_EQ(std::string::npos, again.find("\x1b[J"));
  EXPECT_NE(std::string::npos, qt::progress::FrameUpdate(lines, 5).find("\x1b[J"));
}

namespace {

typedef ProgressDlgThreaded::UserProcData Data;

struct Record {
  std::atomic<int> calls{0};
  LRESULT validBar = -1;
  LRESULT badBar = -1;
  LRESULT title = -1;
  bool sawTerminate = false;
  const Data* data = nullptr;
};

bool ReportingWork(const Data* data) {
  Record* record = static_cast<Record*>(data->GetAppData());
  record->data = data;
  record->title = data->SetTitile(L"Sets");
  data->PbSetRangeUpper(0, 3);
  record->validBar = data->PbSetPos(0, 2);
  record->badBar = data->PbSetPos(7, 2);
  return true;
}

bool FailingWork(const Data* data) {
  static_cast<Record*>(data->GetAppData())->data = data;
  return false;
}

// Asks for the cancel the way the dialog's close command does, then waits
// for the flag as well-behaved work does.
bool CancellingWork(const Data* data) {
  Record* record = static_cast<Record*>(data->GetAppData());
  data->SendMsg(Data::MsgCancel, 0, 0);
  for (int i = 0; i < 120 && !data->ShouldTerminate(); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  record->sawTerminate = data->ShouldTerminate();
  // Once cancelled, the calls do nothing.
  record->validBar = data->PbSetPos(0, 1);
  return !record->sawTerminate;
}

}  // namespace

TEST(ProgressThreaded, ResultsAndCallsThroughTheHandle) {
  Record done;
  {
    ProgressDlgThreaded dialog(nullptr, L"Report", L"Working", 1, true, &ReportingWork, &done);
    EXPECT_EQ(1, dialog.StartModal());
    EXPECT_EQ(1, done.title);
    EXPECT_EQ(1, done.validBar);
    EXPECT_EQ(0, done.badBar);
    // The dialog has closed: the same calls now do nothing.
    ASSERT_NE(nullptr, done.data);
    EXPECT_EQ(0, done.data->PbSetPos(0, 1));
    EXPECT_EQ(0, done.data->SetTitile(L"late"));
    EXPECT_EQ(0, done.data->SendMsg(Data::MsgPbStepIt, 0, 0));
    EXPECT_FALSE(done.data->ShouldTerminate());
    // One run per object.
    EXPECT_EQ(3, dialog.StartModal());
  }

  Record failed;
  ProgressDlgThreaded dialog(nullptr, L"Report", L"Working", 2, false, &FailingWork, &failed);
  EXPECT_EQ(2, dialog.StartModal());
  EXPECT_EQ(&failed, failed.data->GetAppData());
}

TEST(ProgressThreaded, CancelWaitsForTheWorkUnlessKillingIsAllowed) {
  Record record;
  ProgressDlgThreaded dialog(nullptr, L"Report", L"Working", 1, true, &CancellingWork, &record);
  EXPECT_EQ(2, dialog.StartModal());
  EXPECT_TRUE(record.sawTerminate);
  EXPECT_EQ(0, record.validBar);

  // A dialog without cancelling ignores the request: the work finishes.
  Record ignored;
  ProgressDlgThreaded locked(nullptr, L"Report", L"Working", 1, false, &CancellingWork, &ignored);
  EXPECT_EQ(1, locked.StartModal());
  EXPECT_FALSE(ignored.sawTerminate);

  // With killing allowed the dialog ends after waiting for the worker, which
  // here is itself waiting for the dialog to take its message.
  Record killed;
  ProgressDlgThreaded killing(nullptr, L"Report", L"Working", 1, true, &CancellingWork, &killed);
  killing.SetAllowKillThread(true);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(65538, killing.StartModal());
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(450));
}

namespace {

std::atomic<bool> g_release{false};
std::atomic<int> g_lateAnswer{-1};

bool StubbornWork(const Data* data) {
  while (!g_release) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  // Runs after the dialog object is gone on Linux, where the worker is let go.
  g_lateAnswer = static_cast<int>(data->PbStepIt(0));
  return true;
}

bool SendCancelThenStubborn(const Data* data) {
  std::thread([data] { data->SendMsg(Data::MsgCancel, 0, 0); }).detach();
  return StubbornWork(data);
}

}  // namespace

TEST(ProgressThreaded, StopRoutineGivesUpOnWorkThatIgnoresTheFlag) {
  g_release = false;
  g_lateAnswer = -1;
  auto started = std::chrono::steady_clock::now();
  {
    ProgressDlgThreaded dialog(nullptr, L"Report", L"Working", 1, true, &SendCancelThenStubborn, nullptr);
    dialog.SetAllowKillThread(true);
    EXPECT_EQ(65538, dialog.StartModal());
    started = std::chrono::steady_clock::now();
  }
  const auto stopped = std::chrono::steady_clock::now() - started;
  EXPECT_GE(stopped, std::chrono::milliseconds(450));
  EXPECT_LT(stopped, std::chrono::milliseconds(3000));
  g_release = true;
#if !defined(_WIN32)
  // The let-go worker still finds its record, with no window behind it.
  for (int i = 0; i < 200 && g_lateAnswer < 0; ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  EXPECT_EQ(0, g_lateAnswer);
  std::this_thread::sleep_for(std::chrono::milliseconds(100));  // its thread ends before the process
#endif
}
