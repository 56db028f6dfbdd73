// Version check, bounded strings, comparison, formatting and owned strings.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "gwframe.h"

TEST(VersionCheck, AnswersItsOwnNumberOnly) {
  EXPECT_EQ(20160101L, quiltool_version_nmb(20160101L));
  EXPECT_EQ(-20160101L, quiltool_version_nmb(0));
  EXPECT_EQ(-20160101L, quiltool_version_nmb(20160102L));
}

TEST(BoundedStrings, CopyTruncatesSilentlyAndAlwaysTerminates) {
  char d[8];
  std::memset(d, 'x', sizeof d);
  EXPECT_EQ(0, QN_strcpy_s(d, 4, "abcdef"));
  EXPECT_STREQ("abc", d);
  EXPECT_EQ(0, QN_strcpy_s(d, 1, "abcdef"));
  EXPECT_STREQ("", d);
  std::memset(d, 'x', sizeof d);
  EXPECT_EQ(0, QN_strcpy_s(d, 0, "abcdef"));  // a limit of nothing still terminates
  EXPECT_EQ('\0', d[0]);
  std::strcpy(d, "keep");
  EXPECT_EQ(0, QN_strcpy_s(d, 8, nullptr));
  EXPECT_STREQ("", d);
  std::strcpy(d, "same");
  EXPECT_EQ(0, QN_strcpy_s(d, 2, d));  // same pointer: untouched
  EXPECT_STREQ("same", d);

  wchar_t w[8];
  EXPECT_EQ(0, QN_wcscpy_s(w, 4, L"abcdef"));
  EXPECT_EQ(std::wstring(L"abc"), w);
}

TEST(BoundedStrings, AppendStopsAtCapacity) {
  char d[8] = "abc";
  EXPECT_EQ(0, QN_strcat_s(d, 6, "xyz"));
  EXPECT_STREQ("abcxy", d);
  EXPECT_EQ(0, QN_strcat_s(d, 6, nullptr));
  EXPECT_STREQ("abcxy", d);
  wchar_t w[8] = L"ab";
  EXPECT_EQ(0, QN_wcscat_s(w, 8, L"cd"));
  EXPECT_EQ(std::wstring(L"abcd"), w);
}

TEST(BoundedStrings, PrintfReturnsWholeLengthButCopiesWhatFits) {
  char d[6];
  EXPECT_EQ(11, QN_sprintf_s(d, sizeof d, "%s-%d", "value", 42000));
  EXPECT_STREQ("value", d);
  wchar_t w[64];
  // Windows-runtime conventions on every target: %s takes a wide string in a
  // wide format, %S the other width, %I64d a 64-bit number.
  EXPECT_EQ(23, QN_swprintf_s(w, 64, L"%s|%S|%I64d", L"wide", "narrow", -9000000000LL));
  EXPECT_EQ(std::wstring(L"wide|narrow|-9000000000"), w);
  EXPECT_EQ(7, QN_swprintf_s(w, 64, L"%c%hs%5.1f", L'x', "y", 2.5));
  EXPECT_EQ(std::wstring(L"xy  2.5"), w);
}

TEST(Formatting, GrowsBeyondTheFirstBufferAndKeepsNarrowConventions) {
  const std::wstring big(5000, L'q');
  ustr u;
  EXPECT_EQ(5003, u.format(L"<%s>!", big.c_str()));
  EXPECT_EQ(5003u, u.length());
  EXPECT_EQ(L'!', u.str().back());

  astr a;
  a.format("%s=%ls %I64u %%", "key", L"wert", 18446744073709551615ULL);
  EXPECT_EQ(std::string("key=wert 18446744073709551615 %"), a.str());
}

TEST(CaseInsensitiveCompare, OrdersByUpperCasedCharacters) {
  EXPECT_LT(qn_stricmp("abc", "ABD"), 0);
  EXPECT_EQ(1, qn_stricmp("abc", "AB"));
  EXPECT_EQ(-1, qn_stricmp("AB", "abc"));
  EXPECT_EQ(0, qn_stricmp("", ""));
  EXPECT_EQ(-1, qn_stricmp(nullptr, ""));
  EXPECT_EQ(1, qn_stricmp("", nullptr));
  EXPECT_EQ(0, qn_stricmp(nullptr, nullptr));
  EXPECT_EQ(-1, qn_stricmp("", "a"));
  EXPECT_EQ('A' - 'B', qn_stricmp("a", "b"));
  EXPECT_EQ(0, qn_wcsicmp(L"Quillon", L"qUILLON"));
  // Non-ASCII letters fold too in the wide form...
  EXPECT_EQ(0, qn_wcsicmp(L"\u00e9t\u00e9", L"\u00c9T\u00c9"));
  // ...but 8-bit text is sign-extended, not decoded: 0xE9 and 0xC9 stay
  // apart as 0xFFE9 and 0xFFC9.
  EXPECT_EQ(0x20, qn_stricmp("\xE9", "\xC9"));
  EXPECT_GT(qn_stricmp("\xE9", "z"), 0);
}

TEST(OwnedStrings, EditingOperations) {
  ustr s(L"  Alpha;Beta;;Gamma  ");
  s.trim();
  EXPECT_EQ(ustr(L"Alpha;Beta;;Gamma"), s);
  const auto fields = s.split(L';');
  ASSERT_EQ(4u, fields.size());
  EXPECT_EQ(L"Beta", fields[1]);
  EXPECT_TRUE(fields[2].empty());
  EXPECT_EQ(3u, s.replace(L";", L", "));
  EXPECT_EQ(ustr(L"Alpha, Beta, , Gamma"), s);
  EXPECT_EQ(ustr(L"Gamma"), s.right(5));
  EXPECT_EQ(ustr(L"Beta"), s.mid(7, 4));
  EXPECT_TRUE(s.mid(100).empty());
  EXPECT_EQ(ustr(L"\u00c4PFEL"), ustr(L"\u00e4pfel").makeUpper());
  EXPECT_EQ(0, ustr(L"abc").compareNoCase(L"ABC"));
  EXPECT_TRUE(ustr(L"name.EPJ").endsWith(L".EPJ"));

  const ustr text(L"Gr\u00fc\u00dfe");
  EXPECT_EQ(text, ustr::fromAnsi(text.toAnsi().c_str()));
}
