#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <string>

#include "comma_locale.h"
#include "Lng.h"
#include "ValueValidator.h"
#include "failure_points.h"
#include "settings/lng_test_support.h"

using ValueValidator::Range;
using ValueValidator::RangeMessage;

namespace {

Range IntRange(int flags, int lower, int upper) {
  Range r;
  r.flags = flags;
  r.lowerInt = lower;
  r.upperInt = upper;
  // Floating bounds that no integer message may show.
  r.lowerDouble = -777.25;
  r.upperDouble = 777.75;
  return r;
}

Range FloatRange(int flags, double lower, double upper) {
  Range r;
  r.flags = flags;
  r.lowerDouble = lower;
  r.upperDouble = upper;
  r.lowerInt = -999;
  r.upperInt = 999;
  return r;
}

// German texts in both modules, each number present in the module it must
// not be read from too, so that a text taken from the wrong module shows.
const char kMainTexts[] =
    "qlg 1\n"
    "module HPV\n"
    "text 44182\n\t1513 \"G\xC3\xBC""ltiger Bereich:\"\n"
    "text 36897\n\t1513 \"falsches Modul 36897\"\n"
    "text 36900\n\t1513 \"Wert schon vergeben!\"\n"
    "text 36901\n\t1513 \"Wert darf nicht leer sein!\"\n"
    "text 44198\n\t1513 \"Ung\xC3\xBC""ltige Zeichen!\"\n";

const char kCommonTexts[] =
    "qlg 1\n"
    "module QNC\n"
    "text 36897\n\t1513 \"Ung\xC3\xBC""ltiger Wert!\"\n"
    "text 44182\n\t1513 \"falsches Modul 44182\"\n"
    "text 36900\n\t1513 \"falsches Modul 36900\"\n"
    "text 36901\n\t1513 \"falsches Modul 36901\"\n"
    "text 44198\n\t1513 \"falsches Modul 44198\"\n";

}  // namespace

TEST(ValueRange, AcceptsWithinPresentBoundsInclusive) {
  const Range both = IntRange(0, -5, 10);
  EXPECT_TRUE(both.accepts(-5));
  EXPECT_TRUE(both.accepts(10));
  EXPECT_FALSE(both.accepts(-6));
  EXPECT_FALSE(both.accepts(11));

  const Range noLower = IntRange(Range::NoLowerBound, 50, 10);
  EXPECT_TRUE(noLower.accepts(std::numeric_limits<int>::min()));
  EXPECT_FALSE(noLower.accepts(11));
  const Range noUpper = IntRange(Range::NoUpperBound, -5, -50);
  EXPECT_TRUE(noUpper.accepts(std::numeric_limits<int>::max()));
  EXPECT_FALSE(noUpper.accepts(-6));
  EXPECT_TRUE(IntRange(Range::NoLowerBound | Range::NoUpperBound, 1, 0).accepts(12345));

  // Floating values are held against the floating bounds only.
  const Range f = FloatRange(0, 0.5, 1.5);
  EXPECT_TRUE(f.accepts(0.5));
  EXPECT_TRUE(f.accepts(1.5));
  EXPECT_FALSE(f.accepts(std::nextafter(0.5, 0.0)));
  EXPECT_FALSE(f.accepts(std::nextafter(1.5, 2.0)));
  EXPECT_FALSE(f.accepts(std::nan("")));
  EXPECT_TRUE(FloatRange(Range::NoUpperBound, 0.5, 0.0).accepts(std::numeric_limits<double>::infinity()));
  EXPECT_TRUE(f.accepts(2));  // an integer cell's value meets the integer bounds
  EXPECT_FALSE(f.accepts(2.0));
}

TEST(ValueRangeMessage, IntegerBounds) {
  EXPECT_EQ(L"Valid value range: 0 ... 100.", RangeMessage(IntRange(0, 0, 100), false, 2));
  EXPECT_EQ(L"Valid value range: 0 ....", RangeMessage(IntRange(Range::NoUpperBound, 0, 100), false, 2));
  EXPECT_EQ(L"Valid value range: ... 100.", RangeMessage(IntRange(Range::NoLowerBound, 0, 100), false, 2));
  EXPECT_EQ(L"Valid value range: ....", RangeMessage(IntRange(Range::NoLowerBound | Range::NoUpperBound, 0, 100), false, 2));
  EXPECT_EQ(L"Valid value range: -2147483648 ... -1.",
            RangeMessage(IntRange(0, std::numeric_limits<int>::min(), -1), false, 0));
}

TEST(ValueRangeMessage, FloatingBoundsWithTheCellsDecimals) {
  EXPECT_EQ(L"Valid value range: -1.50 ... 2.25.", RangeMessage(FloatRange(0, -1.5, 2.25), true, 2));
  EXPECT_EQ(L"Valid value range: -2 ... 3.", RangeMessage(FloatRange(0, -1.5, 2.5), true, 0));
  EXPECT_EQ(L"Valid value range: 0.1 ....", RangeMessage(FloatRange(Range::NoUpperBound, 0.125, 9), true, 1));
  EXPECT_EQ(L"Valid value range: ... 1000.000.", RangeMessage(FloatRange(Range::NoLowerBound, 0, 1000), true, 3));
  // No decimals given: the C formatter's six.
  EXPECT_EQ(L"Valid value range: 0.250000 ... 1.000000.", RangeMessage(FloatRange(0, 0.25, 1), true, -1));
}

TEST(ValueRangeMessage, OwnMessageComesFirst) {
  Range r = IntRange(0, 0, 100);
  r.message = L"Between 0 and 100 people, please";
  EXPECT_EQ(L"Between 0 and 100 people, please", RangeMessage(r, false, 0));
  EXPECT_EQ(L"Between 0 and 100 people, please", RangeMessage(r, true, 3));
  r.flags = Range::NoLowerBound | Range::NoUpperBound;
  EXPECT_EQ(L"Between 0 and 100 people, please", RangeMessage(r, false, 0));
}

class ValueRangeMessageCommaLocale : public qt_test::CommaLocale {};

TEST_F(ValueRangeMessageCommaLocale, StillWritesAPoint) {
  EXPECT_EQ(L"Valid value range: -0.75 ... 1234.50.", RangeMessage(FloatRange(0, -0.75, 1234.5), true, 2));
  EXPECT_EQ(L"Valid value range: 1000 ... 2000.", RangeMessage(IntRange(0, 1000, 2000), false, 2));
}

TEST(ValueRejectionMessage, EnglishDefaultsAndUnknownCodes) {
  EXPECT_EQ(L"Invalid value!", ValueValidator::RejectionMessage(1));
  EXPECT_EQ(L"Value is already used!", ValueValidator::RejectionMessage(2));
  EXPECT_EQ(L"Value cannot be empty!", ValueValidator::RejectionMessage(3));
  EXPECT_EQ(L"Some characters are not valid!", ValueValidator::RejectionMessage(4));
  for (int code : {0, 5, -1, 36897}) EXPECT_EQ(L"", ValueValidator::RejectionMessage(code)) << code;
  EXPECT_EQ(L"Invalid value!", ValueValidator::InvalidValueTitle());
}

TEST(ValueRejectionMessage, TextsComeFromTheirModulesInTheLoadedLanguage) {
  lng_test::LanguageFolder folder;
  ASSERT_TRUE(folder.write("QuilQlg.qlg", kMainTexts));
  ASSERT_TRUE(folder.write("QNCommon.qlg", kCommonTexts));
  Lng::init(1513);
  EXPECT_EQ(L"Ung\u00fcltiger Wert!", ValueValidator::InvalidValueTitle());
  EXPECT_EQ(L"Ung\u00fcltiger Wert!", ValueValidator::RejectionMessage(1));
  EXPECT_EQ(L"Wert schon vergeben!", ValueValidator::RejectionMessage(2));
  EXPECT_EQ(L"Wert darf nicht leer sein!", ValueValidator::RejectionMessage(3));
  EXPECT_EQ(L"Ung\u00fcltige Zeichen!", ValueValidator::RejectionMessage(4));
  EXPECT_EQ(L"", ValueValidator::RejectionMessage(5));
  EXPECT_EQ(L"G\u00fcltiger Bereich: 1 ... 9.", RangeMessage(IntRange(0, 1, 9), false, 0));
}

TEST(ValueRangeMessage, OutOfMemoryGivesTheWholeTextOrNone) {
  struct Case {
    Range range;
    bool floating;
    const wchar_t* whole;
  };
  const Case cases[] = {{FloatRange(0, -1.5, 2.25), true, L"Valid value range: -1.50 ... 2.25."},
                        {IntRange(0, -40, 40), false, L"Valid value range: -40 ... 40."}};
  for (const Case& c : cases) {
    ustr text;
    qt_test::AtEveryFailurePoint([&] { text = RangeMessage(c.range, c.floating, 2); },
                                 [&](bool refused) {
                                   if (refused) EXPECT_TRUE(text.empty() || text == c.whole) << qt_test::Narrow(text.str());
                                   else EXPECT_EQ(c.whole, text);
                                 });
  }
}
