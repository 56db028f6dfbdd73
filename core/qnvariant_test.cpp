// QnVariant: values keep their kind through copies, and conversions give
// the same answer on every target and in every process locale.
#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <clocale>
#include <cmath>
#include <limits>
#include <string>
#include <utility>

#include "QnVariant.h"
#include "testsupport/failure_points.h"

namespace {

const double kInf = std::numeric_limits<double>::infinity();
const double kNaN = std::numeric_limits<double>::quiet_NaN();

std::wstring TextOf(const QnVariant& v, int decimals = -1) { return v.toText(decimals).str(); }

}  // namespace

TEST(QnVariant, KindsAndCopies) {
  EXPECT_EQ(QnVariant::Empty, QnVariant().type());
  EXPECT_EQ(QnVariant::Short, QnVariant(static_cast<short>(7)).type());
  EXPECT_EQ(QnVariant::ColorIndex, QnVariant::fromColorIndex(7).type());
  EXPECT_EQ(QnVariant::Int, QnVariant(7).type());
  EXPECT_EQ(QnVariant::UInt, QnVariant(7u).type());
  EXPECT_EQ(QnVariant::Float, QnVariant(7.0f).type());
  EXPECT_EQ(QnVariant::Double, QnVariant(7.0).type());
  EXPECT_EQ(QnVariant::Bool, QnVariant(true).type());
  EXPECT_EQ(QnVariant::Text, QnVariant(L"7").type());
  EXPECT_EQ(QnVariant::Text, QnVariant(static_cast<const wchar_t*>(nullptr)).type());

  // An accessor answers only for its own kind.
  EXPECT_EQ(7, QnVariant::fromColorIndex(7).colorIndex());
  EXPECT_EQ(0, QnVariant::fromColorIndex(7).shortValue());
  EXPECT_EQ(0, QnVariant(7).shortValue());
  EXPECT_EQ(0.0, QnVariant(7.0f).doubleValue());
  EXPECT_EQ(7.0f, QnVariant(7.0f).floatValue());

  // A copy of a text owns its characters: the original may change or go.
  QnVariant* original = new QnVariant(ustr(L"a text longer than any small-string buffer"));
  QnVariant copy(*original);
  QnVariant assigned;
  assigned = *original;
  *original = QnVariant(L"changed");
  delete original;
  EXPECT_EQ(L"a text longer than any small-string buffer", copy.text().str());
  EXPECT_EQ(copy, assigned);

  QnVariant moved(std::move(copy));
  EXPECT_TRUE(copy.isEmpty());
  EXPECT_TRUE(copy.text().empty());
  EXPECT_EQ(assigned, moved);
  assigned = std::move(moved);
  EXPECT_TRUE(moved.isEmpty());
  assigned = assigned;
  EXPECT_EQ(L"a text longer than any small-string buffer", assigned.text().str());

  // clear() leaves nothing of the old value behind.
  assigned.clear();
  EXPECT_TRUE(assigned.isEmpty());
  EXPECT_EQ(QnVariant(), assigned);
  EXPECT_TRUE(assigned.text().empty());
}

TEST(QnVariant, EqualityNeedsTheSameKind) {
  const QnVariant ones[] = {QnVariant(static_cast<short>(1)), QnVariant::fromColorIndex(1), QnVariant(1),
                            QnVariant(1u), QnVariant(1.0f), QnVariant(1.0), QnVariant(true), QnVariant(L"1")};
  const size_t n = sizeof ones / sizeof ones[0];
  for (size_t i = 0; i < n; ++i) {
    for (size_t j = 0; j < n; ++j) EXPECT_EQ(i == j, ones[i] == ones[j]) << i << " vs " << j;
    EXPECT_NE(QnVariant(), ones[i]);
  }
  EXPECT_EQ(QnVariant(), QnVariant());
  EXPECT_NE(QnVariant(1), QnVariant(2));
  EXPECT_NE(QnVariant(L"abc"), QnVariant(L"ABC"));
  EXPECT_EQ(QnVariant(0.0), QnVariant(-0.0));
  // A NaN equals its own copy, so a cell holding one does not look changed.
  const QnVariant nan(kNaN);
  EXPECT_EQ(nan, QnVariant(nan));
  EXPECT_EQ(QnVariant(std::numeric_limits<float>::quiet_NaN()), QnVariant(std::numeric_limits<float>::quiet_NaN()));
  EXPECT_NE(nan, QnVariant(0.0));
}

TEST(QnVariant, FloatingValuesRoundHalfAwayFromZero) {
  struct Case {
    double value;
    int expected;
  } const cases[] = {{2.5, 3}, {-2.5, -3}, {0.5, 1}, {-0.5, -1}, {1.4999999999999998, 1},
                     // Adding 0.5 and truncating would give 1 here.
                     {0.49999999999999994, 0}, {-0.49999999999999994, 0}, {2147483647.4, INT_MAX}};
  for (const Case& c : cases) {
    bool ok = false;
    EXPECT_EQ(c.expected, QnVariant(c.value).toInt(&ok)) << c.value;
    EXPECT_TRUE(ok) << c.value;
  }
  bool ok = false;
  EXPECT_EQ(3, QnVariant(2.5f).toShort(&ok));
  EXPECT_TRUE(ok);
  EXPECT_EQ(0u, QnVariant(-0.4).toUInt(&ok));
  EXPECT_TRUE(ok);
  EXPECT_EQ(-13, QnVariant(L" -12.5 ").toInt(&ok));
  EXPECT_TRUE(ok);
}

TEST(QnVariant, OutOfRangeSaturatesAndNaNFails) {
  struct Case {
    QnVariant value;
    int toInt;
    short toShort;
    unsigned toUInt;
  } const cases[] = {
      {QnVariant(32768), 32768, SHRT_MAX, 32768u},
      {QnVariant(-32769), -32769, SHRT_MIN, 0u},
      {QnVariant(-1), -1, -1, 0u},
      {QnVariant(4294967295u), INT_MAX, SHRT_MAX, 4294967295u},
      {QnVariant(2147483647.5), INT_MAX, SHRT_MAX, 2147483648u},
      {QnVariant(-2147483648.5), INT_MIN, SHRT_MIN, 0u},
      {QnVariant(-0.5), -1, -1, 0u},
      {QnVariant(1e300), INT_MAX, SHRT_MAX, UINT_MAX},
      {QnVariant(kInf), INT_MAX, SHRT_MAX, UINT_MAX},
      {QnVariant(-kInf), INT_MIN, SHRT_MIN, 0u},
      {QnVariant(L"4294967296"), INT_MAX, SHRT_MAX, UINT_MAX},
      {QnVariant(L"-1e400"), INT_MIN, SHRT_MIN, 0u},
  };
  for (const Case& c : cases) {
    const std::wstring shown = TextOf(c.value);
    bool okInt = true, okShort = true, okUInt = true;
    EXPECT_EQ(c.toInt, c.value.toInt(&okInt)) << shown;
    EXPECT_EQ(c.toShort, c.value.toShort(&okShort)) << shown;
    EXPECT_EQ(c.toUInt, c.value.toUInt(&okUInt)) << shown;
    // Exactly the conversions that had to clamp say so.
    const double rounded = std::round(c.value.toDouble());
    EXPECT_EQ(c.toInt == rounded, okInt) << shown;
    EXPECT_EQ(c.toShort == rounded, okShort) << shown;
    EXPECT_EQ(c.toUInt == rounded, okUInt) << shown;
  }

  // Nothing to convert: 0 and not ok, also with no flag to set.
  for (const QnVariant& v : {QnVariant(), QnVariant(kNaN), QnVariant(L"nan"), QnVariant(std::numeric_limits<float>::quiet_NaN())}) {
    bool ok = true;
    EXPECT_EQ(0, v.toInt(&ok));
    EXPECT_FALSE(ok);
    EXPECT_EQ(0u, v.toUInt(&ok));
    EXPECT_FALSE(ok);
    EXPECT_EQ(0, v.toColorIndex(&ok));
    EXPECT_FALSE(ok);
    EXPECT_FALSE(v.toBool(&ok));
    EXPECT_FALSE(ok);
    EXPECT_EQ(0, v.toShort());
  }

  bool ok = true;
  EXPECT_EQ(FLT_MAX, QnVariant(1e39).toFloat(&ok));
  EXPECT_FALSE(ok);
  EXPECT_EQ(-FLT_MAX, QnVariant(L"-1e39").toFloat(&ok));
  EXPECT_FALSE(ok);
  // Beyond FLT_MAX yet nearer to it than to the next power: just rounding.
  EXPECT_EQ(FLT_MAX, QnVariant(3.4028235e38).toFloat(&ok));
  EXPECT_TRUE(ok);
  EXPECT_EQ(DBL_MAX, QnVariant(L"1e400").toDouble(&ok));
  EXPECT_FALSE(ok);
  EXPECT_EQ(0.0, QnVariant(L"-1e-400").toDouble(&ok));
  EXPECT_TRUE(ok);
  EXPECT_EQ(kInf, QnVariant(kInf).toFloat(&ok));
  EXPECT_TRUE(ok);
}

TEST(QnVariant, TextIsReadStrictly) {
  struct Good {
    const wchar_t* text;
    double value;
  } const good[] = {{L"12", 12},          {L" \t12\r\n", 12}, {L"+5", 5},          {L"-0", 0},
                    {L"1e3", 1000},       {L"1E+3", 1000},    {L"-2.5e-2", -0.025}, {L".5", 0.5},
                    {L"5.", 5},           {L"0.1", 0.1},      {L"INF", kInf},       {L"-Infinity", -kInf},
                    {L"000123.4500", 123.45}};
  for (const Good& g : good) {
    bool ok = false;
    EXPECT_EQ(g.value, QnVariant(g.text).toDouble(&ok)) << g.text;
    EXPECT_TRUE(ok) << g.text;
  }
  EXPECT_EQ(1000, QnVariant(L"1e3").toInt());
  EXPECT_EQ(4294967295u, QnVariant(L"4294967295").toUInt());
  EXPECT_EQ(0.1f, QnVariant(L"0.1").toFloat());

  const wchar_t* const bad[] = {L"",    L"   ",  L"12abc", L"1,5",    L"0x10",   L"1e",    L"e3",     L".",
                                L"-",   L"+-1",  L"1 000", L"1.2.3",  L"nan(1)", L"infinit", L"1e3.5", L"\x0661",
                                L"\xFF11\xFF12", L"true", L"--1", L"1e+"};
  for (const wchar_t* text : bad) {
    const QnVariant v(text);
    bool ok = true;
    EXPECT_EQ(0.0, v.toDouble(&ok)) << text;
    EXPECT_FALSE(ok) << text;
    EXPECT_EQ(0.0f, v.toFloat(&ok)) << text;
    EXPECT_FALSE(ok) << text;
    EXPECT_EQ(0, v.toInt(&ok)) << text;
    EXPECT_FALSE(ok) << text;
  }
  // A terminator inside the text does not end the number early.
  bool ok = true;
  EXPECT_EQ(0, QnVariant(ustr(L"12\0" L"3", 4)).toInt(&ok));
  EXPECT_FALSE(ok);
}

TEST(QnVariant, Bools) {
  bool ok = false;
  EXPECT_TRUE(QnVariant(L" TRUE ").toBool(&ok));
  EXPECT_TRUE(ok);
  EXPECT_FALSE(QnVariant(L"false").toBool(&ok));
  EXPECT_TRUE(ok);
  EXPECT_FALSE(QnVariant(L"0.0").toBool(&ok));
  EXPECT_TRUE(ok);
  EXPECT_TRUE(QnVariant(0.1).toBool());
  EXPECT_TRUE(QnVariant(-kInf).toBool());
  EXPECT_FALSE(QnVariant(L"yes").toBool(&ok));
  EXPECT_FALSE(ok);
  EXPECT_EQ(1, QnVariant(true).toInt());
  EXPECT_EQ(1.0, QnVariant(true).toDouble());
  EXPECT_EQ(L"1", TextOf(QnVariant(true)));
  EXPECT_EQ(L"0", TextOf(QnVariant(false)));
  // What toText writes, toBool reads back.
  EXPECT_TRUE(QnVariant(QnVariant(true).toText()).toBool());
}

TEST(QnVariant, TextOfIntegersAndTexts) {
  EXPECT_EQ(L"", TextOf(QnVariant()));
  EXPECT_EQ(L"-32768", TextOf(QnVariant(static_cast<short>(SHRT_MIN)), 2));
  EXPECT_EQ(L"-2147483648", TextOf(QnVariant(INT_MIN)));
  EXPECT_EQ(L"4294967295", TextOf(QnVariant(4294967295u)));
  EXPECT_EQ(L"256", TextOf(QnVariant::fromColorIndex(256)));
  EXPECT_EQ(L" 1.50 ", TextOf(QnVariant(L" 1.50 "), 0));
  EXPECT_EQ(256, QnVariant(L"256").toColorIndex());
}

TEST(QnVariant, FloatingTextReadsBackShortest) {
  EXPECT_EQ(L"0.1", TextOf(QnVariant(0.1)));
  EXPECT_EQ(L"1e+300", TextOf(QnVariant(1e300)));
  EXPECT_EQ(L"0.30000000000000004", TextOf(QnVariant(0.1 + 0.2)));
  EXPECT_EQ(L"-1.5e-07", TextOf(QnVariant(-1.5e-7)));
  EXPECT_EQ(L"0", TextOf(QnVariant(-0.0)));
  EXPECT_EQ(L"inf", TextOf(QnVariant(kInf)));
  EXPECT_EQ(L"-inf", TextOf(QnVariant(-kInf), 2));
  EXPECT_EQ(L"nan", TextOf(QnVariant(kNaN)));
  // A float is written as the float it is, not as its widened double.
  EXPECT_EQ(L"0.1", TextOf(QnVariant(0.1f)));
  EXPECT_EQ(L"16777216", TextOf(QnVariant(16777216.0f)));

  const double values[] = {1.0 / 3, 2.0 / 3, 5e-324, DBL_MIN, DBL_MAX, -123456789.125, 9007199254740993.0, 1e21, 1e-5};
  for (double d : values) {
    const QnVariant written(QnVariant(d).toText());
    bool ok = false;
    EXPECT_EQ(d, written.toDouble(&ok)) << written.text().str();
    EXPECT_TRUE(ok);
  }
  const float floats[] = {1.0f / 3, FLT_MAX, FLT_MIN, 1e-45f, 3.14159274f, -7e22f};
  for (float f : floats) {
    const QnVariant written(QnVariant(f).toText());
    bool ok = false;
    EXPECT_EQ(f, written.toFloat(&ok)) << written.text().str();
    EXPECT_TRUE(ok);
  }
  const std::wstring third = TextOf(QnVariant(1.0f / 3));
  EXPECT_EQ(L"0.33333334", third);
}

TEST(QnVariant, DecimalsRoundHalfAwayFromZero) {
  struct Case {
    double value;
    int decimals;
    const wchar_t* text;
  } const cases[] = {{2.5, 0, L"3"},        {-2.5, 0, L"-3"},     {0.125, 2, L"0.13"},   {-0.375, 2, L"-0.38"},
                     {9.5, 0, L"10"},       {-99.5, 0, L"-100"},  {0.5, 0, L"1"},        {1.25, 1, L"1.3"},
                     // Below the tie in binary: stays down.
                     {1.005, 2, L"1.00"},   {0.15, 1, L"0.1"},    {1.0, 3, L"1.000"},    {-0.001, 2, L"0.00"},
                     {-0.4, 0, L"0"},       {123.456, 1, L"123.5"}, {1e-7, 4, L"0.0000"},
                     // Halfway at a magnitude where one step of the double is bigger than the last digit.
                     {1125899906842624.25, 1, L"1125899906842624.3"}};
  for (const Case& c : cases) EXPECT_EQ(c.text, TextOf(QnVariant(c.value), c.decimals)) << c.value << " " << c.decimals;
  EXPECT_EQ(L"0.13", TextOf(QnVariant(0.125f), 2));
  // An absurd number of decimals is capped, not refused.
  EXPECT_EQ(352u, TextOf(QnVariant(0.5), 100000).size());
}

// The process locale of a host that uses ',' as its decimal point; given
// back afterwards.
class CommaLocale : public ::testing::Test {
 protected:
  void SetUp() override {
    const char* now = std::setlocale(LC_ALL, nullptr);
    saved_ = now ? now : "C";
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "fr_FR.UTF-8", "German_Germany.1252", "German", "de-DE"}) {
      if (std::setlocale(LC_ALL, name) && std::localeconv()->decimal_point[0] == ',') return;
    }
    std::setlocale(LC_ALL, saved_.c_str());
    GTEST_SKIP() << "no locale with a decimal comma is installed";
  }
  void TearDown() override { std::setlocale(LC_ALL, saved_.c_str()); }

 private:
  std::string saved_;
};

TEST_F(CommaLocale, ChangesNothing) {
  EXPECT_EQ(L"0.5", TextOf(QnVariant(0.5)));
  EXPECT_EQ(L"1.25", TextOf(QnVariant(1.25), 2));
  EXPECT_EQ(L"0.13", TextOf(QnVariant(0.125), 2));
  EXPECT_EQ(L"1.5e-07", TextOf(QnVariant(1.5e-7f)));
  EXPECT_EQ(L"-1234.5", TextOf(QnVariant(-1234.5f)));
  bool ok = false;
  EXPECT_EQ(1.5, QnVariant(L"1.5").toDouble(&ok));
  EXPECT_TRUE(ok);
  EXPECT_EQ(0.0, QnVariant(L"1,5").toDouble(&ok));
  EXPECT_FALSE(ok);
  EXPECT_EQ(2, QnVariant(L"1.5").toInt());
  EXPECT_EQ(0.1, QnVariant(QnVariant(0.1).toText()).toDouble());
}

TEST(QnVariant, OutOfMemoryIsAFailedConversion) {
  const QnVariant number(L"   1234567890.123456789012345   ");
  double read = -1;
  bool ok = true;
  qt_test::AtEveryFailurePoint([&] { read = number.toDouble(&ok); },
                               [&](bool refused) {
                                 EXPECT_EQ(!refused, ok);
                                 EXPECT_EQ(refused ? 0.0 : 1234567890.123456789012345, read);
                               });
  const QnVariant third(1.0 / 3);
  ustr written;
  qt_test::AtEveryFailurePoint([&] { written = third.toText(200); },
                               [&](bool refused) { EXPECT_EQ(refused ? 0u : 202u, written.size()); });
}
