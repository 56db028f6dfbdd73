#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "QnColor.h"
#include "settings/lng_internal.h"

namespace {

// The index colors 10-249 computed another way: as HSV with the hue at
// 15 degrees per ten indexes, S 1 or 0.5 and V from the last digit, using
// the closed form channel(n) = V * (1 - S * clamp(min(k, 4 - k), 0, 1))
// with k = (n + hue / 60) mod 6.
void ReferenceHsv(int index, double rgb[3]) {
  const double hue = ((index - 10) / 10) * 15.0;
  const int digit = index % 10;
  const double value = digit < 2 ? 1.0 : digit < 4 ? 0.65 : digit < 6 ? 0.5 : digit < 8 ? 0.3 : 0.15;
  const double saturation = (digit & 1) ? 0.5 : 1.0;
  const double offsets[3] = {5, 3, 1};
  for (int c = 0; c < 3; ++c) {
    const double k = std::fmod(offsets[c] + hue / 60.0, 6.0);
    const double m = std::max(0.0, std::min(1.0, std::min(k, 4.0 - k)));
    rgb[c] = value * (1.0 - saturation * m);
  }
}

void Reference(int index, double rgb[3]) {
  static const double kFixed[10][3] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 1, 1},
                                       {0, 0, 1}, {1, 0, 1}, {0, 0, 0}, {.5, .5, .5}, {.75, .75, .75}};
  if (index < 10) {
    std::copy(kFixed[index], kFixed[index] + 3, rgb);
  } else if (index < 250) {
    ReferenceHsv(index, rgb);
  } else {
    rgb[0] = rgb[1] = rgb[2] = 0.33 + 0.134 * (index - 250);
  }
}

TEST(QnColorConversion, EveryIndexMatchesAnIndependentComputation) {
  for (int index = 0; index <= 256; ++index) {
    double want[3], r = -1, g = -1, b = -1;
    Reference(index, want);
    ASSERT_TRUE(QnColor::AcadColor2RgbRatio(index, &r, &g, &b)) << index;
    EXPECT_NEAR(r, want[0], 1e-9) << "index " << index;
    EXPECT_NEAR(g, want[1], 1e-9) << "index " << index;
    EXPECT_NEAR(b, want[2], 1e-9) << "index " << index;
    short br = -1, bg = -1, bb = -1;
    ASSERT_TRUE(QnColor::AcadColor2Rgb(index, &br, &bg, &bb));
    EXPECT_EQ(br, static_cast<short>(std::floor(want[0] * 255.0 + 0.5))) << "index " << index;
    EXPECT_EQ(bg, static_cast<short>(std::floor(want[1] * 255.0 + 0.5))) << "index " << index;
    EXPECT_EQ(bb, static_cast<short>(std::floor(want[2] * 255.0 + 0.5))) << "index " << index;
  }
}

TEST(QnColorConversion, KnownValuesAndQuirks) {
  double r, g, b;
  short br, bg, bb;
  ASSERT_TRUE(QnColor::AcadColor2RgbRatio(15, &r, &g, &b));
  EXPECT_DOUBLE_EQ(r, 0.5);
  EXPECT_DOUBLE_EQ(g, 0.25);
  EXPECT_DOUBLE_EQ(b, 0.25);
  QnColor::AcadColor2Rgb(15, &br, &bg, &bb);
  EXPECT_EQ(br, 128);
  EXPECT_EQ(bg, 64);
  EXPECT_EQ(bb, 64);
  QnColor::AcadColor2RgbRatio(30, &r, &g, &b);
  EXPECT_DOUBLE_EQ(r, 1);
  EXPECT_DOUBLE_EQ(g, 0.5);
  EXPECT_DOUBLE_EQ(b, 0);
  QnColor::AcadColor2Rgb(7, &br, &bg, &bb);  // black, not white
  EXPECT_EQ(br + bg + bb, 0);
  QnColor::AcadColor2Rgb(250, &br, &bg, &bb);
  EXPECT_EQ(br, 84);
  QnColor::AcadColor2Rgb(255, &br, &bg, &bb);
  EXPECT_EQ(br, 255);
  QnColor::AcadColor2Rgb(256, &br, &bg, &bb);  // ByLayer runs past white
  EXPECT_EQ(br, 289);
  QnColor::AcadColor2RgbRatio(256, &r, &g, &b);
  EXPECT_NEAR(r, 1.134, 1e-12);
}

TEST(QnColorConversion, OutOfRangeGivesWhiteAndFalse) {
  for (int index : {257, 300, -1, -256}) {
    double r = 0, g = 0, b = 0;
    EXPECT_FALSE(QnColor::AcadColor2RgbRatio(index, &r, &g, &b)) << index;
    EXPECT_EQ(r + g + b, 3.0);
    short br = 5, bg = 5, bb = 5;
    EXPECT_FALSE(QnColor::AcadColor2Rgb(index, &br, &bg, &bb));
    EXPECT_EQ(br, 5);  // nothing written
    EXPECT_EQ(bb, 5);
  }
}

TEST(QnColorNames, AcadAndListNames) {
  qt_lng_reset();
  wchar_t buffer[32];
  EXPECT_STREQ(QnColor::GetAcadColorName(0, buffer, 32), L"ByBlock");
  EXPECT_STREQ(QnColor::GetAcadColorName(5, buffer, 32), L"Blue");
  EXPECT_STREQ(QnColor::GetAcadColorName(7, buffer, 32), L"White/Black");
  EXPECT_STREQ(QnColor::GetAcadColorName(8, buffer, 32), L"Cad-8");
  EXPECT_STREQ(QnColor::GetAcadColorName(255, buffer, 32), L"Cad-255");
  EXPECT_STREQ(QnColor::GetAcadColorName(256, buffer, 32), L"ByLayer");
  EXPECT_STREQ(QnColor::GetAcadColorName(7, buffer, 4), L"Whi");  // cut to the size
  EXPECT_EQ(QnColor::GetAcadColorName(257, buffer, 32), nullptr);
  EXPECT_EQ(QnColor::GetAcadColorName(-1, buffer, 32), nullptr);
  EXPECT_EQ(QnColor::GetAcadColorName(1, nullptr, 32), nullptr);

  EXPECT_EQ(QnColor::GetColorName(0), L"Black");
  EXPECT_EQ(QnColor::GetColorName(8), L"Gray");
  EXPECT_EQ(QnColor::GetColorName(9), L"Light gray");
  EXPECT_EQ(QnColor::GetColorName(3), L"Green");
  EXPECT_EQ(QnColor::GetColorName(12), L"Cad-12");
  EXPECT_EQ(QnColor::GetColorName(256), L"ByLayer");
  EXPECT_EQ(QnColor::GetColorName(300), L"By system");
  EXPECT_EQ(QnColor::GetColorName(301), L"By project");
  EXPECT_EQ(QnColor::GetColorName(302), L"By Serie");
  EXPECT_EQ(QnColor::GetColorName(303), L"By Object");
  EXPECT_EQ(QnColor::GetColorName(299), L"");
  EXPECT_EQ(QnColor::GetColorName(304), L"");
  EXPECT_EQ(QnColor::GetColorName(1, nullptr), nullptr);
  wchar_t small[20];
  EXPECT_EQ(QnColor::GetColorName(257, small), nullptr);
}

TEST(QnColorNames, NamesBackToNumbers) {
  qt_lng_reset();
  EXPECT_EQ(QnColor::GetColorFromName(L"BLUE"), 5);
  EXPECT_EQ(QnColor::GetColorFromName(L"light GRAY"), 9);
  EXPECT_EQ(QnColor::GetColorFromName(L"white/black"), 7);
  EXPECT_EQ(QnColor::GetColorFromName(L"bylayer"), 256);
  EXPECT_EQ(QnColor::GetColorFromName(L"By System"), 300);
  EXPECT_EQ(QnColor::GetColorFromName(L"by project"), 301);
  EXPECT_EQ(QnColor::GetColorFromName(L"Acad-7"), 7);
  EXPECT_EQ(QnColor::GetColorFromName(L"Color 12"), 12);
  EXPECT_EQ(QnColor::GetColorFromName(L"42"), 42);
  // The asymmetries callers rely on: prefixes count case, Cad- is not
  // Acad-, and three of the logical names are not recognised.
  EXPECT_EQ(QnColor::GetColorFromName(L"color 12"), -1);
  EXPECT_EQ(QnColor::GetColorFromName(L"acad-7"), -1);
  EXPECT_EQ(QnColor::GetColorFromName(L"Cad-7"), -1);
  EXPECT_EQ(QnColor::GetColorFromName(L"ByBlock"), -1);
  EXPECT_EQ(QnColor::GetColorFromName(L"By Serie"), -1);
  EXPECT_EQ(QnColor::GetColorFromName(L"By Object"), -1);
  EXPECT_EQ(QnColor::GetColorFromName(L""), -1);
  EXPECT_EQ(QnColor::GetColorFromName(nullptr), -1);
}

}  // namespace
