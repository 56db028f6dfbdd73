// The streams' Base64: the RFC 4648 vectors both ways, and a decoder that
// takes exactly the texts the encoder makes.
#include <gtest/gtest.h>

#include <string>

#include "project/qb_base64.h"

namespace {

std::string Encode(const std::string& s) {
  return qb::Base64Encode(reinterpret_cast<const unsigned char*>(s.data()), s.size());
}

bool Decode(const std::string& text, std::string* out) { return qb::Base64Decode(text.data(), text.size(), out); }

TEST(QbBase64, Rfc4648VectorsBothWays) {
  const std::pair<std::string, std::string> vectors[] = {
      {"", ""},         {"f", "Zg=="},         {"fo", "Zm8="},         {"foo", "Zm9v"},
      {"foob", "Zm9vYg=="}, {"fooba", "Zm9vYmE="}, {"foobar", "Zm9vYmFy"}, {"\xff\xfe\xfd", "//79"},
      {std::string("\0\0\0", 3), "AAAA"},
  };
  for (const auto& v : vectors) {
    EXPECT_EQ(v.second, Encode(v.first));
    std::string back = "x";
    ASSERT_TRUE(Decode(v.second, &back)) << v.second;
    EXPECT_EQ(v.first, back);
  }
}

TEST(QbBase64, EveryByteAndEveryTailLengthRoundTripsInOneLine) {
  std::string all;
  for (int i = 0; i < 256; ++i) all.push_back(static_cast<char>(i));
  for (size_t cut = 250; cut <= all.size(); ++cut) {
    const std::string bytes = all.substr(0, cut);
    const std::string text = Encode(bytes);
    EXPECT_EQ((bytes.size() + 2) / 3 * 4, text.size());
    EXPECT_EQ(std::string::npos, text.find_first_of("\r\n "));
    std::string back;
    ASSERT_TRUE(Decode(text, &back));
    EXPECT_EQ(bytes, back);
  }
}

TEST(QbBase64, DecodingRefusesAnythingTheEncoderWouldNotWrite) {
  const char* refused[] = {
      "Zg",        // no padding
      "Zg=",       // length not a multiple of four
      "Zh==",      // bits beyond the last byte
      "Zm9=",      // likewise, one pad
      "Z===",      // three pads
      "=Zg=",      // padding first
      "Zg==Zg==",  // padding inside
      "Zm9v\n",    // line break
      "Zm 9v",     // blank
      "Zm-_",      // the URL alphabet
      "Zm9\xff",   // a byte outside ASCII
  };
  for (const char* text : refused) {
    std::string out = "kept";
    EXPECT_FALSE(Decode(text, &out)) << text;
    EXPECT_EQ("kept", out);
  }
}

}  // namespace
