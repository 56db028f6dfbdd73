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

#include "comma_locale.h"
#include "QnVariant.h"
#include "testsupport/failure_points.h"

namespace {

const double kInf = std::numeric_limits<double>::infinity();
const double kNaN = std::numeric_limits<double>::quiet_NaN();

std::wstring TextOf(const QnVariant& v, int decimals = -1) { return v.toText(decimals).str(); }

// A conversion's result and ok flag. It runs twice, the flag set each way
// beforehand, so a conversion that leaves the flag alone shows.
template <class T>
std::pair<T, bool> Got(T (QnVariant::*convert)(bool*) const, const QnVariant& v) {
  bool wasTrue = true, wasFalse = false;
  const T result = (v.*convert)(&wasTrue);
  (v.*convert)(&wasFalse);
  EXPECT_EQ(wasTrue, wasFalse) << "the ok flag was not set";
  return std::make_pair(result, wasTrue);
}

}  // namespace

TEST(QnVariant, KindsAndEquality) {
  const QnVariant ones[] = {QnVariant(L"1"), QnVariant(static_cast<short>(1)), QnVariant(1), QnVariant(1u),
                            QnVariant(1.0f), QnVariant(1.0), QnVariant(true), QnVariant::fromColorIndex(1)};
  const size_t n = sizeof ones / sizeof ones[0];
  for (size_t i = 0; i < n; ++i) {
    EXPECT_EQ(static_cast<QnVariant::Type>(i + 1), ones[i].type());
    for (size_t j = 0; j < n; ++j) EXPECT_EQ(i == j, ones[i] == ones[j]) << i << " vs " << j;
    EXPECT_NE(QnVariant(), ones[i]);
  }
  // An accessor answers only for its own kind.
  EXPECT_EQ(0, QnVariant::fromColorIndex(7).shortValue());
  EXPECT_EQ(0.0, QnVariant(7.0f).doubleValue());
  EXPECT_NE(QnVariant(L"abc"), QnVariant(L"ABC"));
  EXPECT_EQ(QnVariant(0.0), QnVariant(-0.0));
  // A NaN equals its own copy, so a cell holding one does not look changed.
  const QnVariant nan(kNaN);
  EXPECT_EQ(nan, QnVariant(nan));
  EXPECT_EQ(QnVariant(std::numeric_limits<float>::quiet_NaN()), QnVariant(std::numeric_limits<float>::quiet_NaN()));
  EXPECT_NE(nan, QnVariant(0.0));
}

TEST(QnVariant, CopiesOwnTheirText) {
  const wchar_t* const text = L"a text longer than any small-string buffer";
  QnVariant* original = new QnVariant(ustr(text));
  QnVariant copy(*original), assigned;
  assigned = *original;
  *original = QnVariant(L"changed");
  delete original;
  EXPECT_EQ(text, copy.text().str());
  EXPECT_EQ(copy, assigned);

  QnVariant moved(std::move(copy));
  EXPECT_TRUE(copy.isEmpty() && copy.text().empty());
  assigned = std::move(moved);
  EXPECT_TRUE(moved.isEmpty() && moved.text().empty());
  EXPECT_EQ(text, assigned.text().str());
  assigned.clear();
  EXPECT_EQ(QnVariant(), assigned);
  EXPECT_TRUE(assigned.text().empty());
}

TEST(QnVariant, FloatingValuesRoundHalfAwayFromZero) {
  struct Case {
    double value;
    int expected;
  } const cases[] = {{2.5, 3}, {-2.5, -3}, {0.5, 1}, {-0.5, -1}, {1.4999999999999998, 1},
                     // Adding 0.5 and truncating would give 1 here.
                     {0.49999999999999994, 0}, {-0.49999999999999994, 0}, {2147483647.4, INT_MAX}};
  for (const Case& c : cases) EXPECT_EQ(std::make_pair(c.expected, true), Got(&QnVariant::toInt, QnVariant(c.value))) << c.value;
  EXPECT_EQ(std::make_pair(short(3), true), Got(&QnVariant::toShort, QnVariant(2.5f)));
  EXPECT_EQ(std::make_pair(0u, true), Got(&QnVariant::toUInt, QnVariant(-0.4)));
  EXPECT_EQ(std::make_pair(-13, true), Got(&QnVariant::toInt, QnVariant(L" -12.5 ")));
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
    // Exactly the conversions that had to clamp say so.
    const double rounded = std::round(c.value.toDouble());
    EXPECT_EQ(std::make_pair(c.toInt, c.toInt == rounded), Got(&QnVariant::toInt, c.value)) << shown;
    EXPECT_EQ(std::make_pair(c.toShort, c.toShort == rounded), Got(&QnVariant::toShort, c.value)) << shown;
    EXPECT_EQ(std::make_pair(c.toUInt, c.toUInt == rounded), Got(&QnVariant::toUInt, c.value)) << shown;
  }

  // Nothing to convert: 0 and not ok.
  for (const QnVariant& v : {QnVariant(), QnVariant(kNaN), QnVariant(L"nan"), QnVariant(std::numeric_limits<float>::quiet_NaN())}) {
    EXPECT_EQ(std::make_pair(0, false), Got(&QnVariant::toInt, v));
    EXPECT_EQ(std::make_pair(0u, false), Got(&QnVariant::toUInt, v));
    EXPECT_EQ(std::make_pair(short(0), false), Got(&QnVariant::toColorIndex, v));
    EXPECT_EQ(std::make_pair(false, false), Got(&QnVariant::toBool, v));
  }
  EXPECT_EQ(0, QnVariant().toShort());

  EXPECT_EQ(std::make_pair(FLT_MAX, false), Got(&QnVariant::toFloat, QnVariant(1e39)));
  EXPECT_EQ(std::make_pair(-FLT_MAX, false), Got(&QnVariant::toFloat, QnVariant(L"-1e39")));
  // Beyond FLT_MAX yet nearer to it than to the next power: just rounding.
  EXPECT_EQ(std::make_pair(FLT_MAX, true), Got(&QnVariant::toFloat, QnVariant(3.4028235e38)));
  EXPECT_EQ(std::make_pair(std::numeric_limits<float>::infinity(), true), Got(&QnVariant::toFloat, QnVariant(kInf)));
  EXPECT_EQ(std::make_pair(DBL_MAX, false), Got(&QnVariant::toDouble, QnVariant(L"1e400")));
  EXPECT_EQ(std::make_pair(0.0, true), Got(&QnVariant::toDouble, QnVariant(L"-1e-400")));
}

TEST(QnVariant, TextIsReadStrictly) {
  struct Good {
    const wchar_t* text;
    double value;
  } const good[] = {{L"12", 12},          {L" \t12\r\n", 12}, {L"+5", 5},          {L"-0", 0},
                    {L"1e3", 1000},       {L"1E+3", 1000},    {L"-2.5e-2", -0.025}, {L".5", 0.5},
                    {L"5.", 5},           {L"0.1", 0.1},      {L"INF", kInf},       {L"-Infinity", -kInf},
                    {L"000123.4500", 123.45}};
  for (const Good& g : good) EXPECT_EQ(std::make_pair(g.value, true), Got(&QnVariant::toDouble, QnVariant(g.text))) << g.text;
  EXPECT_EQ(1000, QnVariant(L"1e3").toInt());
  EXPECT_EQ(4294967295u, QnVariant(L"4294967295").toUInt());
  EXPECT_EQ(0.1f, QnVariant(L"0.1").toFloat());

  const wchar_t* const bad[] = {L"",    L"   ",  L"12abc", L"1,5",    L"0x10",   L"1e",    L"e3",     L".",
                                L"-",   L"+-1",  L"1 000", L"1.2.3",  L"nan(1)", L"infinit", L"1e3.5", L"\x0661",
                                L"\xFF11\xFF12", L"true", L"--1", L"1e+"};
  for (const wchar_t* text : bad) {
    EXPECT_EQ(std::make_pair(0.0, false), Got(&QnVariant::toDouble, QnVariant(text))) << text;
    EXPECT_EQ(std::make_pair(0.0f, false), Got(&QnVariant::toFloat, QnVariant(text))) << text;
    EXPECT_EQ(std::make_pair(0, false), Got(&QnVariant::toInt, QnVariant(text))) << text;
  }
  // A terminator inside the text does not end the number early.
  EXPECT_EQ(std::make_pair(0, false), Got(&QnVariant::toInt, QnVariant(ustr(L"12\0" L"3", 4))));
}

TEST(QnVariant, BoolsAndIntegerTexts) {
  EXPECT_EQ(std::make_pair(true, true), Got(&QnVariant::toBool, QnVariant(L" TRUE ")));
  EXPECT_EQ(std::make_pair(false, true), Got(&QnVariant::toBool, QnVariant(L"0.0")));
  EXPECT_EQ(std::make_pair(false, false), Got(&QnVariant::toBool, QnVariant(L"yes")));
  EXPECT_TRUE(QnVariant(-kInf).toBool());
  // What toText writes, toBool reads back.
  EXPECT_EQ(std::make_pair(true, true), Got(&QnVariant::toBool, QnVariant(QnVariant(true).toText())));
  EXPECT_EQ(std::make_pair(false, true), Got(&QnVariant::toBool, QnVariant(QnVariant(false).toText())));

  EXPECT_EQ(L"", TextOf(QnVariant()));
  EXPECT_EQ(L"-32768", TextOf(QnVariant(static_cast<short>(SHRT_MIN)), 2));
  EXPECT_EQ(L"4294967295", TextOf(QnVariant(4294967295u)));
  EXPECT_EQ(L" 1.50 ", TextOf(QnVariant(L" 1.50 "), 0));
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
  for (double d : values) EXPECT_EQ(std::make_pair(d, true), Got(&QnVariant::toDouble, QnVariant(QnVariant(d).toText()))) << d;
  const float floats[] = {1.0f / 3, FLT_MAX, FLT_MIN, 1e-45f, 3.14159274f, -7e22f};
  for (float f : floats) EXPECT_EQ(std::make_pair(f, true), Got(&QnVariant::toFloat, QnVariant(QnVariant(f).toText()))) << f;
  EXPECT_EQ(L"0.33333334", TextOf(QnVariant(1.0f / 3)));
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

class CommaLocale : public qt_test::CommaLocale {};

TEST_F(CommaLocale, ChangesNothing) {
  EXPECT_EQ(L"0.5", TextOf(QnVariant(0.5)));
  EXPECT_EQ(L"1.25", TextOf(QnVariant(1.25), 2));
  EXPECT_EQ(L"0.13", TextOf(QnVariant(0.125), 2));
  EXPECT_EQ(L"1.5e-07", TextOf(QnVariant(1.5e-7f)));
  EXPECT_EQ(L"-1234.5", TextOf(QnVariant(-1234.5f)));
  EXPECT_EQ(std::make_pair(1.5, true), Got(&QnVariant::toDouble, QnVariant(L"1.5")));
  EXPECT_EQ(std::make_pair(0.0, false), Got(&QnVariant::toDouble, QnVariant(L"1,5")));
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
