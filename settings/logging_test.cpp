#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "Logging.h"
#include "qt_test.h"
#include "settings/logging_internal.h"

namespace {

std::vector<std::wstring>& Pieces() {
  static std::vector<std::wstring> pieces;
  return pieces;
}
void Collect(const wchar_t* text) { Pieces().push_back(text); }

std::wstring Joined() {
  std::wstring all;
  for (const auto& p : Pieces()) all += p;
  return all;
}

// A Logging object whose only sink is the collecting callback.
struct LoggingValues : ::testing::Test {
  LoggingValues() {
    Pieces().clear();
    log.Init(nullptr, &Collect, false);
  }
  Logging log;
};

std::string Utf16le(const std::u16string& units) {
  std::string bytes;
  for (char16_t u : units) {
    bytes += static_cast<char>(u & 0xFF);
    bytes += static_cast<char>(u >> 8);
  }
  return bytes;
}

}  // namespace

TEST(LoggingFile, WritesBomThenUtf16UnitsFlushedAtOnce) {
  qt_test::TempDir dir;
  const std::string path = dir.file("log.txt");
  Logging log;
  log.Init(qt_test::Widen(path).c_str(), nullptr, false);
  EXPECT_EQ(Utf16le(u"\xFEFF"), qt_test::ReadFileBytes(path));

  log << L"a" << 5 << L"\n";
  // Read while the object still holds the file: every piece is on disk.
  EXPECT_EQ(Utf16le(u"\xFEFF" u"a5\n"), qt_test::ReadFileBytes(path));

  // A character beyond the BMP is one surrogate pair on either target.
  log << qt_test::Widen("\xF0\x9F\x98\x80\xC3\xA9").c_str();
  EXPECT_EQ(Utf16le(u"\xFEFF" u"a5\n" u"\xD83D\xDE00\x00E9"), qt_test::ReadFileBytes(path));
}

TEST(LoggingFile, SecondInitTruncatesNewFileAndUnopenableFileIsLeftOut) {
  qt_test::TempDir dir;
  const std::string first = dir.file("first.txt"), second = dir.file("second.txt");
  Pieces().clear();
  Logging log;
  log.Init(qt_test::Widen(first).c_str(), nullptr, false);
  log << L"one";
  log.Init(qt_test::Widen(second).c_str(), &Collect, false);
  log << L"two";
  EXPECT_EQ(Utf16le(u"\xFEFF" u"one"), qt_test::ReadFileBytes(first));
  EXPECT_EQ(Utf16le(u"\xFEFF" u"two"), qt_test::ReadFileBytes(second));

  // A file that cannot be opened changes nothing: output still goes on.
  log.Init(qt_test::Widen(dir.file("missing/dir/log.txt")).c_str(), nullptr, false);
  log << L"three";
  EXPECT_EQ(Utf16le(u"\xFEFF" u"twothree"), qt_test::ReadFileBytes(second));
  EXPECT_EQ(L"twothree", Joined());
}

TEST_F(LoggingValues, NumbersUseTheirPrintfForms) {
  log << 42 << L"|" << -7L << L"|" << static_cast<__int64>(-9223372036854775807LL - 1) << L"|"
      << static_cast<__int64>(12345678901LL) << L"|" << 1.5 << L"|" << 1e20 << L"|" << 0.1f << L"|" << 2.0f;
  EXPECT_EQ(L"42|-7|-9223372036854775808|12345678901|1.5|1e+20|0.1|2", Joined());
  // Each value is a piece of its own.
  EXPECT_EQ(15u, Pieces().size());
}

TEST_F(LoggingValues, TextsNullsAndPoints) {
  const char* nullNarrow = nullptr;
  const wchar_t* nullWide = nullptr;
  const double* nullPoint = nullptr;
  const double point[3] = {1.5, -2.0, 1e20};
  log << nullNarrow << L"," << nullWide << L"," << "abc" << L"," << point << L"," << nullPoint;
  EXPECT_EQ(L"(null),(null),abc,(1.5, -2, 1e+20),(null)", Joined());
}

TEST_F(LoggingValues, ModelWritesOneLinePerItem) {
  gm_model three{{11, 22}, 3};
  gm_model none{{1, 2}, 0};
  gm_model negative{{1, 2}, -4};
  const gm_model* nullModel = nullptr;
  log << nullModel << &none << &negative;
  EXPECT_TRUE(Pieces().empty());
  log << &three;
  EXPECT_EQ(
      L" [000] : internal information missing in release\n"
      L" [001] : internal information missing in release\n"
      L" [002] : internal information missing in release\n",
      Joined());
}

TEST_F(LoggingValues, OffSilencesEverySinkAndOnRestores) {
  qt_test::TempDir dir;
  const std::string path = dir.file("log.txt");
  log.Init(qt_test::Widen(path).c_str(), nullptr, false);
  log.off();
  log << L"hidden" << 1 << 2.5;
  EXPECT_TRUE(Pieces().empty());
  EXPECT_EQ(Utf16le(u"\xFEFF"), qt_test::ReadFileBytes(path));
  log.on();
  log << L"shown";
  EXPECT_EQ(L"shown", Joined());
  EXPECT_EQ(Utf16le(u"\xFEFF" u"shown"), qt_test::ReadFileBytes(path));
}

TEST(LogPrint, FormatsWithWindowsConventionsIntoTheGlobalLog) {
  // The global instance keeps its sinks for the life of the process; the
  // callback only appends to a list that each test clears.
  Logging::getGlobal().Init(nullptr, &Collect, false);
  Pieces().clear();
  log_print(L"%s=%d %I64d %g\n", L"n", 7, static_cast<__int64>(1) << 40, 0.25);
  EXPECT_EQ(L"n=7 1099511627776 0.25\n", Joined());

  // Texts that do not fit the 10240-character buffer come out empty.
  Pieces().clear();
  const std::wstring fits(10239, L'x'), tooLong(10240, L'x');
  log_print(L"%s", fits.c_str());
  log_print(L"%s", tooLong.c_str());
  ASSERT_EQ(2u, Pieces().size());
  EXPECT_EQ(fits, Pieces()[0]);
  EXPECT_EQ(L"", Pieces()[1]);

  Logging::getGlobal().off();
  Pieces().clear();
  log_print(L"quiet");
  Logging::getGlobal().on();
  EXPECT_TRUE(Pieces().empty());
}

TEST(LogEntryExit, IsASilentScopeMarker) {
  Logging::getGlobal().Init(nullptr, &Collect, false);
  Pieces().clear();
  {
    LogEntryExit marker(L"Function");
    LogEntryExit other(L"Other");
    other = marker;
    EXPECT_STREQ(L"Function", other.name());
  }
  EXPECT_TRUE(Pieces().empty());
}

namespace {
__int64 g_counter = 0, g_ticks = 0;
bool FakeFrequency(__int64* f) { *f = 1000000; return true; }
bool NoFrequency(__int64*) { return false; }
__int64 FakeCounter() { return g_counter; }
__int64 FakeTicks() { return g_ticks; }

struct RestoreClock {
  ~RestoreClock() { qt_logging_use_clock(nullptr); }
};
}  // namespace

TEST(Stopwatch, HighResolutionTicksScaleByFrequency) {
  RestoreClock restore;
  const QtLogClock clock = {&FakeFrequency, &FakeCounter, &FakeTicks};
  qt_logging_use_clock(&clock);
  EXPECT_TRUE(Logging_IsHighResolutionTimerAvailable());

  g_counter = 1000;
  g_ticks = 999999;  // must not be consulted
  __int64 start = Logging_StartTiming();
  EXPECT_EQ(1000, start);
  g_counter = 3500;
  EXPECT_EQ(2500, Logging_EndTiming(start, false));
  EXPECT_EQ(1000, start);
  EXPECT_DOUBLE_EQ(2.5, Logging_EndTimingMs(start, true));
  EXPECT_EQ(3500, start);
  g_counter = 4000;
  double ms = 0;
  EXPECT_EQ(500, Logging_EndTimingWithMs(start, ms, false));
  EXPECT_DOUBLE_EQ(0.5, ms);
  EXPECT_EQ(3500, start);
}

TEST(Stopwatch, WithoutCounterTickMillisecondsPassUnchanged) {
  RestoreClock restore;
  const QtLogClock clock = {&NoFrequency, &FakeCounter, &FakeTicks};
  qt_logging_use_clock(&clock);
  EXPECT_FALSE(Logging_IsHighResolutionTimerAvailable());
  g_ticks = 100;
  g_counter = 5;
  __int64 start = Logging_StartTiming();
  g_ticks = 137;
  EXPECT_DOUBLE_EQ(37.0, Logging_EndTimingMs(start, true));
  EXPECT_EQ(137, start);
  g_ticks = 140;
  double ms = 0;
  EXPECT_EQ(3, Logging_EndTimingWithMs(start, ms, true));
  EXPECT_DOUBLE_EQ(3.0, ms);
}

TEST(Stopwatch, SystemClockMeasuresRealTime) {
  EXPECT_TRUE(Logging_IsHighResolutionTimerAvailable());
  __int64 start = Logging_StartTiming();
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  double ms = 0;
  const __int64 raw = Logging_EndTimingWithMs(start, ms, false);
  EXPECT_GT(raw, 0);
  EXPECT_GE(ms, 25.0);
}
