// Formatting beyond the everyday cases: texts of the other width whatever
// the process locale, broken formats refused at once, and the directives
// the library now reads itself.
#include <gtest/gtest.h>

#include <clocale>
#include <cstdarg>
#include <string>

#include "core/format.h"
#include "gwframe.h"
#include "ustr.h"

namespace {

// The process locale as the test found it, given back afterwards; the
// runtime starts in "C", which is what a host that never calls setlocale
// formats in.
class InCLocale : public ::testing::Test {
 protected:
  void SetUp() override {
    const char* now = std::setlocale(LC_ALL, nullptr);
    saved_ = now ? now : "C";
    std::setlocale(LC_ALL, "C");
  }
  void TearDown() override { std::setlocale(LC_ALL, saved_.c_str()); }

 private:
  std::string saved_;
};

int Wide(std::wstring* out, const wchar_t* format, ...) {
  va_list args;
  va_start(args, format);
  const int n = qn_vformat(*out, format, args);
  va_end(args);
  return n;
}

int Narrow(std::string* out, const char* format, ...) {
  va_list args;
  va_start(args, format);
  const int n = qn_vformat(*out, format, args);
  va_end(args);
  return n;
}

const wchar_t kGruesse[] = L"Gr\u00FC\u00DFe";

}  // namespace

TEST_F(InCLocale, OtherWidthTextsAreConvertedWithoutTheLocale) {
  // The 8-bit form is the platform's own: UTF-8 on Linux, the code page on
  // Windows.
  const std::string narrow = qn_wide_to_ansi(kGruesse);
  wchar_t w[64];
  EXPECT_EQ(7, QN_swprintf_s(w, 64, L"[%S]", narrow.c_str()));
  EXPECT_EQ(std::wstring(L"[") + kGruesse + L"]", w);
  EXPECT_EQ(7, QN_swprintf_s(w, 64, L"[%hs]", narrow.c_str()));
  EXPECT_EQ(std::wstring(L"[") + kGruesse + L"]", w);

  char a[64];
  const std::string expected = "[" + narrow + "]";
  EXPECT_EQ(static_cast<int>(expected.size()), QN_sprintf_s(a, sizeof a, "[%S]", kGruesse));
  EXPECT_EQ(expected, a);
  EXPECT_EQ(static_cast<int>(expected.size()), QN_sprintf_s(a, sizeof a, "[%ls]", kGruesse));
  EXPECT_EQ(expected, a);

  // Characters of the other width, both ways.
  std::wstring out;
  EXPECT_EQ(3, Wide(&out, L"%C%hc%c", 'x', 'y', L'\u00FC'));
  EXPECT_EQ(L"xy\u00FC", out);
  std::string eight;
  EXPECT_EQ(static_cast<int>(qn_wide_to_ansi(L"\u00FC").size()) + 1, Narrow(&eight, "%C%c", L'\u00FC', 'z'));
  EXPECT_EQ(qn_wide_to_ansi(L"\u00FC") + "z", eight);
}

TEST_F(InCLocale, PrecisionAndWidthCountTheOutputsUnits) {
  std::wstring out;
  EXPECT_EQ(7, Wide(&out, L"%-6.3S|", "abcdef"));
  EXPECT_EQ(L"abc   |", out);
  EXPECT_EQ(6, Wide(&out, L"%*s|", -5, L"ab"));
  EXPECT_EQ(L"ab   |", out);
  EXPECT_EQ(4, Wide(&out, L"%4.*S", 2, "xyz"));
  EXPECT_EQ(L"  xy", out);

  // In 8-bit output a character is never cut: with room for one and a half
  // 'é', one comes out.
  const std::string e = qn_wide_to_ansi(L"\u00E9");
  std::string eight;
  const int room = static_cast<int>(2 * e.size() - 1);
  EXPECT_EQ(static_cast<int>(e.size()), Narrow(&eight, "%.*ls", room, L"\u00E9\u00E9"));
  EXPECT_EQ(e, eight);
  // A precision ends the reading: the text needs no terminator beyond it.
  const char unterminated[3] = {'a', 'b', 'c'};
  EXPECT_EQ(2, Narrow(&eight, "%.2s", unterminated));
  EXPECT_EQ("ab", eight);
  const wchar_t wideUnterminated[2] = {L'p', L'q'};
  EXPECT_EQ(1, Wide(&out, L"%.1s", wideUnterminated));
  EXPECT_EQ(L"p", out);

  EXPECT_EQ(13, Wide(&out, L"%s|%S", static_cast<const wchar_t*>(nullptr), static_cast<const char*>(nullptr)));
  EXPECT_EQ(L"(null)|(null)", out);
}

TEST_F(InCLocale, NumbersKeepTheRuntimesConventions) {
  std::wstring out;
  EXPECT_EQ(27, Wide(&out, L"%I64d %Iu %#x %hhd %05.1f", -9000000000LL, static_cast<size_t>(7), 255u, 300, 2.5));
  EXPECT_EQ(L"-9000000000 7 0xff 44 002.5", out);
  std::string eight;
  EXPECT_EQ(9, Narrow(&eight, "%-4d|%+d|%%", 12, 3));
  EXPECT_EQ("12  |+3|%", eight);
  // A number longer than the first buffer.
  EXPECT_EQ(302, Wide(&out, L"%.300f", 1.0));
  EXPECT_EQ(L"1.000", out.substr(0, 5));
  EXPECT_EQ(L'0', out.back());
}

TEST(FormatRefusals, BrokenFormatsFailAtOnceWithNothingWritten) {
  const wchar_t* const broken[] = {L"100%", L"%y", L"%n", L"%5", L"%Ld", L"%hf"};
  for (const wchar_t* format : broken) {
    const unsigned long before = qt_format_runtime_calls();
    std::wstring out = L"old";
    int n = 0;
    EXPECT_EQ(-1, Wide(&out, format, &n, 1)) << format;
    EXPECT_EQ(L"", out) << format;
    EXPECT_EQ(before, qt_format_runtime_calls()) << format << ": no attempt, let alone a bigger buffer";
    EXPECT_EQ(0, n);
  }
  wchar_t w[16] = L"old";
  EXPECT_EQ(-1, QN_swprintf_s(w, 16, L"100%"));
  EXPECT_EQ(std::wstring(L""), w);
  std::string eight = "old";
  EXPECT_EQ(-1, Narrow(&eight, "%d%", 5));
  EXPECT_EQ("", eight);
  EXPECT_EQ(4, Narrow(&eight, "100%%"));
  EXPECT_EQ("100%", eight);
}

TEST(FormatRefusals, EachNumberCostsOneRuntimeCall) {
  const unsigned long before = qt_format_runtime_calls();
  std::wstring out;
  const std::wstring big(5000, L'q');
  EXPECT_EQ(5004, Wide(&out, L"%s %d %d", big.c_str(), 1, 2));
  EXPECT_EQ(before + 2, qt_format_runtime_calls());
  // Past the old limit of the growing buffer: refused, never allocated.
  EXPECT_EQ(-1, Wide(&out, L"%*d", 1 << 25, 1));
  EXPECT_EQ(L"", out);
}
