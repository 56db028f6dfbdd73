// The shared Unicode codec. Expected bytes are spelled out, so every case
// must come out the same whether wchar_t is 16 or 32 bits wide.
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "qn_utf.h"

namespace {

const bool kWide16 = sizeof(wchar_t) == 2;

std::string Bytes(std::initializer_list<unsigned> values) {
  std::string out;
  for (unsigned v : values) out += static_cast<char>(v);
  return out;
}

std::string Units(std::initializer_list<unsigned> units) {
  std::string out;
  for (unsigned u : units) {
    out += static_cast<char>(u & 0xFF);
    out += static_cast<char>(u >> 8);
  }
  return out;
}

std::wstring Wide(std::initializer_list<unsigned> values) {
  std::wstring out;
  for (unsigned v : values) out += static_cast<wchar_t>(v);
  return out;
}

std::wstring FromUnits(const std::string& bytes, unsigned flags = 0) {
  return qn_utf16le_to_wide(bytes.data(), bytes.size(), flags);
}

const wchar_t kSmile[] = L"\U0001F600";

}  // namespace

TEST(UtfCodec, WideToUtf16leIsTheSameOnBothTargets) {
  EXPECT_EQ(Units({'a', 0xE9, 0x20AC, 0xD83D, 0xDE00, 'z'}), qn_wide_to_utf16le(L"a\u00E9\u20AC\U0001F600z"));
  // The default length stops at the zero; an explicit one keeps it.
  const wchar_t embedded[] = L"a\0b";
  EXPECT_EQ(Units({'a'}), qn_wide_to_utf16le(embedded));
  EXPECT_EQ(Units({'a', 0, 'b'}), qn_wide_to_utf16le(embedded, 3));
  EXPECT_EQ("", qn_wide_to_utf16le(nullptr));

  // An unpaired half is kept unless asked otherwise; where wchar_t is UTF-16
  // it is copied as it is in any case.
  const std::wstring half = Wide({'x', 0xDC00});
  EXPECT_EQ(Units({'x', 0xDC00}), qn_wide_to_utf16le(half.c_str()));
  EXPECT_EQ(Units({'x', kWide16 ? 0xDC00u : 0xFFFDu}), qn_wide_to_utf16le(half.c_str(), half.size(), QN_UTF_REPLACE_INVALID));
  if (!kWide16) {
    // Values beyond U+10FFFF have no UTF-16 form, whatever the flags.
    const std::wstring beyond = Wide({0x110041, 'y'});
    EXPECT_EQ(Units({0xFFFD, 'y'}), qn_wide_to_utf16le(beyond.c_str()));
  }
}

TEST(UtfCodec, Utf16leToWideJoinsPairsAndHandlesHalves) {
  EXPECT_EQ(std::wstring(L"a\u00E9") + kSmile, FromUnits(Units({'a', 0xE9, 0xD83D, 0xDE00})));
  // An odd trailing byte is dropped.
  EXPECT_EQ(L"ab", FromUnits(Units({'a', 'b'}) + Bytes({'c'})));
  EXPECT_EQ(std::wstring(L"a\0b", 3), FromUnits(Units({'a', 0, 'b'})));
  EXPECT_EQ(L"a", FromUnits(Units({'a', 0, 'b'}), QN_UTF_STOP_AT_ZERO));
  // A pair cut by the size given is no pair.
  const std::string pair = Units({0xD83D, 0xDE00});
  EXPECT_EQ(Wide({0xD83D}), qn_utf16le_to_wide(pair.data(), 3));

  // High then no low, low alone, high at the end.
  const std::string halves = Units({0xD800, 'q', 0xDC01, 0xDBFF});
  EXPECT_EQ(Wide({0xD800, 'q', 0xDC01, 0xDBFF}), FromUnits(halves));
  EXPECT_EQ(kWide16 ? Wide({0xD800, 'q', 0xDC01, 0xDBFF}) : Wide({0xFFFD, 'q', 0xFFFD, 0xFFFD}),
            FromUnits(halves, QN_UTF_REPLACE_INVALID));
}

TEST(UtfCodec, Utf16leIntoABufferStaysWithinIt) {
  const std::string bytes = Units({'a', 'b', 'c', 'd', 0, 'e'});
  wchar_t out[4] = {L'#', L'#', L'#', L'#'};
  EXPECT_EQ(3u, qn_utf16le_to_wide(bytes.data(), bytes.size(), out, 4));
  EXPECT_EQ(std::wstring(L"abc"), out);

  wchar_t roomy[8];
  EXPECT_EQ(4u, qn_utf16le_to_wide(bytes.data(), bytes.size(), roomy, 8, QN_UTF_STOP_AT_ZERO));
  EXPECT_EQ(std::wstring(L"abcd"), roomy);

  // A pair takes one place where wchar_t is 32 bits wide, two where it is 16.
  const std::string pair = Units({0xD83D, 0xDE00, 'x'});
  EXPECT_EQ(2u, qn_utf16le_to_wide(pair.data(), pair.size(), out, 3));
  EXPECT_EQ(kWide16 ? std::wstring(kSmile) : std::wstring(kSmile) + L"x", out);

  wchar_t untouched = L'#';
  EXPECT_EQ(0u, qn_utf16le_to_wide(bytes.data(), bytes.size(), &untouched, 0));
  EXPECT_EQ(L'#', untouched);
}

TEST(UtfCodec, WideToUtf8) {
  EXPECT_EQ(Bytes({'a', 0xC3, 0xA9, 0xE2, 0x82, 0xAC, 0xF0, 0x9F, 0x98, 0x80}), qn_wide_to_utf8(L"a\u00E9\u20AC\U0001F600"));
  EXPECT_EQ(std::string("a\0b", 3), qn_wide_to_utf8(L"a\0b", 3));
  // Unpaired halves: their own three bytes, or U+FFFD on request.
  const std::wstring halves = Wide({0xD83D, 'x', 0xDE00});
  EXPECT_EQ(Bytes({0xED, 0xA0, 0xBD, 'x', 0xED, 0xB8, 0x80}), qn_wide_to_utf8(halves.c_str()));
  EXPECT_EQ(Bytes({0xEF, 0xBF, 0xBD, 'x', 0xEF, 0xBF, 0xBD}), qn_wide_to_utf8(halves.c_str(), halves.size(), QN_UTF_REPLACE_INVALID));
  if (!kWide16) {
    const std::wstring beyond = Wide({0x110000});
    EXPECT_EQ(Bytes({0xF4, 0x90, 0x80, 0x80}), qn_wide_to_utf8(beyond.c_str()));
    EXPECT_EQ(Bytes({0xEF, 0xBF, 0xBD}), qn_wide_to_utf8(beyond.c_str(), 1, QN_UTF_REPLACE_INVALID));
  }
}

TEST(UtfCodec, Utf8ToWideReplacesEachIllFormedPartOnce) {
  EXPECT_EQ(std::wstring(L"a\u00E9\u20AC") + kSmile, qn_utf8_to_wide("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"));
  EXPECT_EQ(std::wstring(L"a\0b", 3), qn_utf8_to_wide("a\0b", 3));
  const unsigned R = 0xFFFD;
  struct Case {
    const char* bytes;
    std::initializer_list<unsigned> wide;
  };
  const Case cases[] = {
      // Bytes that start nothing, each on its own.
      {"\xFF\x98\x98\x98", {R, R, R, R}},
      {"\xF8\x88\x80\x80\x80", {R, R, R, R, R}},
      {"\xF5\x80\x80\x80", {R, R, R, R}},
      {"\x80x\xBFy", {R, 'x', R, 'y'}},
      // Overlong forms: C0 and C1 start nothing; E0 and F0 refuse the
      // second byte that would make one.
      {"\xC0\xAF", {R, R}},
      {"\xC1\xBF", {R, R}},
      {"\xE0\x80\xAF", {R, R, R}},
      {"\xF0\x8F\xBF\xBF", {R, R, R, R}},
      // Surrogates and values beyond U+10FFFF.
      {"\xED\xA0\x80", {R, R, R}},
      {"\xED\xBF\xBF", {R, R, R}},
      {"\xF4\x90\x80\x80", {R, R, R, R}},
      // A sequence cut short is one part, whatever follows it.
      {"\xE2\x82", {R}},
      {"\xE2\x82x", {R, 'x'}},
      {"\xF0\x9F\x98", {R}},
      {"\xF0\x9F\x98\xC3\xA9", {R, 0xE9}},
      {"\xC3", {R}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Wide(c.wide), qn_utf8_to_wide(c.bytes)) << "bytes: " << c.bytes;
    std::wstring strict = L"old";
    EXPECT_FALSE(qn_utf8_to_wide_strict(c.bytes, static_cast<size_t>(-1), &strict)) << c.bytes;
    EXPECT_EQ(L"", strict) << "nothing half decoded is handed out";
  }
  // The length given cuts a sequence like the end of the text does.
  EXPECT_EQ(Wide({'a', R}), qn_utf8_to_wide("a\xC3\xA9", 2));
}

TEST(UtfCodec, Utf8EdgesOfEachRangeDecode) {
  const std::string edges = Bytes({0x7F, 0xC2, 0x80, 0xDF, 0xBF, 0xE0, 0xA0, 0x80, 0xED, 0x9F, 0xBF, 0xEE, 0x80, 0x80,
                                   0xEF, 0xBF, 0xBF, 0xF0, 0x90, 0x80, 0x80, 0xF4, 0x8F, 0xBF, 0xBF});
  const std::wstring expected = kWide16 ? Wide({0x7F, 0x80, 0x7FF, 0x800, 0xD7FF, 0xE000, 0xFFFF, 0xD800, 0xDC00, 0xDBFF, 0xDFFF})
                                        : Wide({0x7F, 0x80, 0x7FF, 0x800, 0xD7FF, 0xE000, 0xFFFF, 0x10000, 0x10FFFF});
  EXPECT_EQ(expected, qn_utf8_to_wide(edges.data(), edges.size()));
  std::wstring strict;
  ASSERT_TRUE(qn_utf8_to_wide_strict(edges.data(), edges.size(), &strict));
  EXPECT_EQ(expected, strict);
  EXPECT_TRUE(qn_utf8_to_wide_strict(nullptr, 0, &strict));
  EXPECT_EQ(L"", strict);
  EXPECT_FALSE(qn_utf8_to_wide_strict("a", 1, nullptr));
}

// Every short byte sequence decodes to characters only: nothing beyond
// U+10FFFF, no surrogate (or only paired halves where wchar_t is 16 bits),
// and what the strict decoder accepts encodes back to the same bytes.
TEST(UtfCodec, NoByteSequenceDecodesToANonCharacter) {
  const unsigned tails[] = {0x00, 0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0, 0xF4, 0xFF};
  for (unsigned lead = 0x80; lead <= 0xFF; ++lead) {
    for (unsigned b1 : tails) {
      for (unsigned b2 : tails) {
        for (unsigned b3 : tails) {
          const std::string bytes = Bytes({lead, b1, b2, b3});
          const std::wstring wide = qn_utf8_to_wide(bytes.data(), bytes.size());
          for (size_t i = 0; i < wide.size(); ++i) {
            const char32_t c = static_cast<char32_t>(wide[i]);
            ASSERT_LE(c, 0x10FFFFu) << lead << " " << b1 << " " << b2 << " " << b3;
            if (c >= 0xD800 && c <= 0xDBFF) {
              ASSERT_TRUE(kWide16 && i + 1 < wide.size() && wide[i + 1] >= 0xDC00 && wide[i + 1] <= 0xDFFF);
              ++i;
            } else {
              ASSERT_FALSE(c >= 0xDC00 && c <= 0xDFFF) << lead << " " << b1 << " " << b2 << " " << b3;
            }
          }
          std::wstring strict;
          if (qn_utf8_to_wide_strict(bytes.data(), bytes.size(), &strict)) {
            EXPECT_EQ(bytes, qn_wide_to_utf8(strict.data(), strict.size()));
          } else {
            EXPECT_NE(std::wstring::npos, wide.find(L'\xFFFD'));
          }
        }
      }
    }
  }
}

TEST(UtfCodec, Utf16TextSurvivesEveryRoundTrip) {
  // Well-formed or not: a lone low, a pair, a zero, a lone high at the end.
  const std::string units = Units({'K', 0xFC, 0x6C34, 0xDFFF, 'e', 0xD83D, 0xDE00, 0, 0xD800});
  const std::wstring wide = qn_utf16le_to_wide(units.data(), units.size());
  EXPECT_EQ(units, qn_wide_to_utf16le(wide.data(), wide.size()));
  // Through UTF-8 only well-formed text comes back as it was; a lone half
  // written in its three-byte form is ill-formed UTF-8.
  const std::string utf8 = qn_wide_to_utf8(wide.data(), wide.size());
  const std::wstring back = qn_utf8_to_wide(utf8.data(), utf8.size());
  // ED BF BF: ED allows no second byte above 9F, so each byte is a part.
  const std::wstring threeParts = L"\uFFFD\uFFFD\uFFFD";
  EXPECT_EQ(std::wstring(L"K\u00FC\u6C34") + threeParts + L"e" + kSmile + std::wstring(1, L'\0') + threeParts, back);
  const std::wstring wellFormed = std::wstring(L"K\u00FC\u6C34e") + kSmile;
  const std::string wellUtf8 = qn_wide_to_utf8(wellFormed.c_str());
  EXPECT_EQ(wellFormed, qn_utf8_to_wide(wellUtf8.data(), wellUtf8.size()));
}
