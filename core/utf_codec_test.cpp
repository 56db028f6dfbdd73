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

TEST(UtfCodec, Utf8ToWideTakesStrayBytesAsTheyAre) {
  EXPECT_EQ(std::wstring(L"a\u00E9\u20AC") + kSmile, qn_utf8_to_wide("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"));
  EXPECT_EQ(std::wstring(L"a\0b", 3), qn_utf8_to_wide("a\0b", 3));
  // A lone continuation byte, a lead byte with a wrong follower, a sequence
  // cut by the end.
  EXPECT_EQ(Wide({0x80, 'x', 0xC3, 'y', 0xE2, 0x82}), qn_utf8_to_wide("\x80x\xC3y\xE2\x82"));
  EXPECT_EQ(Wide({'a', 0xC3}), qn_utf8_to_wide("a\xC3\xA9", 2));
  // Beyond U+10FFFF: kept where wchar_t can hold it.
  EXPECT_EQ(kWide16 ? Wide({0xFFFD}) : Wide({0x110000}), qn_utf8_to_wide("\xF4\x90\x80\x80"));
}

TEST(UtfCodec, Utf16TextSurvivesEveryRoundTrip) {
  // Well-formed or not: a lone low, a pair, a zero, a lone high at the end.
  const std::string units = Units({'K', 0xFC, 0x6C34, 0xDFFF, 'e', 0xD83D, 0xDE00, 0, 0xD800});
  const std::wstring wide = qn_utf16le_to_wide(units.data(), units.size());
  EXPECT_EQ(units, qn_wide_to_utf16le(wide.data(), wide.size()));
  const std::string utf8 = qn_wide_to_utf8(wide.data(), wide.size());
  EXPECT_EQ(wide, qn_utf8_to_wide(utf8.data(), utf8.size()));
}
