#include <gtest/gtest.h>

#include <string>

#include "core/gwarray_test_support.h"
#include "gwarray.h"

using gwarray_test::Texts;

namespace {

typedef std::vector<std::wstring> W;

class WideArray : public ::testing::Test {
 protected:
  void SetUp() override { gwWszarray_init(&a_); }
  void TearDown() override { gwWszarray_release(&a_); }
  void Add(std::initializer_list<const wchar_t*> texts) {
    for (const wchar_t* t : texts) gwWszarray_append(&a_, t);
  }
  W Parse(const wchar_t* text, int lineLength, int expectedResult = 0) {
    EXPECT_EQ(expectedResult, gwWszarray_parse_memo(&a_, text, lineLength));
    return Texts(a_);
  }
  gwarraytype a_;
};

}  // namespace

TEST_F(WideArray, FindComparesByCaseOrAsFileNames) {
  EXPECT_EQ(-1, gwWszarray_find(&a_, L"x", true, false)) << "empty array";
  Add({L"Alpha", L"beta", L"C:\\Work\\Plan.dwg", L"alpha"});
  EXPECT_EQ(3, gwWszarray_find(&a_, L"alpha", true, false));
  EXPECT_EQ(0, gwWszarray_find(&a_, L"alpha", false, false));
  EXPECT_EQ(1, gwWszarray_find(&a_, L"BETA", false, false));
  EXPECT_EQ(-1, gwWszarray_find(&a_, L"BETA", true, false));
  EXPECT_EQ(-1, gwWszarray_find(&a_, L"bet", false, false));
  EXPECT_EQ(-1, gwWszarray_find(&a_, nullptr, false, false));
  wchar_t buffer[4];
  EXPECT_EQ(0, gwWszarray_get(&a_, 1, buffer, 4));
  EXPECT_STREQ(L"bet", buffer);
  // As file names, case never matters and the path is normalised.
  EXPECT_EQ(2, gwWszarray_find(&a_, L"c:/work/./x/../PLAN.DWG", true, true));
  EXPECT_EQ(-1, gwWszarray_find(&a_, L"C:\\Work\\Plan.dwg.bak", true, true));

  EXPECT_EQ(0, gwWszarray_append_unique(&a_, L"BETA", false, false));
  EXPECT_EQ(4, a_.count);
  EXPECT_EQ(0, gwWszarray_append_unique(&a_, L"BETA", true, false));
  EXPECT_EQ(5, a_.count);

  gwarraytype more;
  gwWszarray_init(&more);
  for (const wchar_t* t : {L"gamma", L"ALPHA", L"Gamma", L"c:\\work\\plan.dwg"}) gwWszarray_append(&more, t);
  EXPECT_EQ(0, gwWszarray_append_array_unique(&a_, &more, false, true));
  EXPECT_EQ((W{L"Alpha", L"beta", L"C:\\Work\\Plan.dwg", L"alpha", L"BETA", L"gamma"}), Texts(a_));
  gwWszarray_release(&more);
}

TEST_F(WideArray, ParseMemoSplitsAtLineEndsAndWrapsLongLines) {
  EXPECT_EQ((W{L"abcdefghij", L"kl"}), Parse(L"abcdefghijkl", 11));
  EXPECT_EQ((W{L"abcdefghij"}), Parse(L"abcdefghij", 11)) << "a line that just fits";
  EXPECT_EQ((W{L"one", L"two"}), Parse(L"one\r\ntwo\r\n", 11));
  EXPECT_EQ((W{L"one", L"", L"two"}), Parse(L"one\r\n\r\ntwo", 11));
  EXPECT_EQ((W{L"one", L"\ntwo"}), Parse(L"one\r\n\ntwo", 11)) << "one line feed per return";
  EXPECT_EQ((W{L"a", L"b"}), Parse(L"a\rb", 11));
  EXPECT_EQ(W{}, Parse(L"", 11));

  // A blank where the line is cut is dropped; a comma or semicolon stays
  // with its line; a continuation keeps its own leading blanks.
  EXPECT_EQ((W{L"the quick", L"brown fox"}), Parse(L"the quick brown fox", 11));
  EXPECT_EQ((W{L"red,green,", L"blue"}), Parse(L"red,green,blue", 11));
  EXPECT_EQ((W{L"ab cd,", L"efghijk"}), Parse(L"ab cd,efghijk", 11)) << "the nearest break wins";
  EXPECT_EQ((W{L"abcdefghij", L" klm"}), Parse(L"abcdefghij klm", 11));
  EXPECT_EQ((W{L"ab", L"cd"}), Parse(L"ab\tcd", 4));

  // A new parse replaces what was there; bad arguments change nothing.
  EXPECT_EQ((W{L"ab", L"cd"}), Parse(nullptr, 11, -1));
  EXPECT_EQ((W{L"ab", L"cd"}), Parse(L"xyz", 1, -1));
}

TEST_F(WideArray, ParseMemoRefusesMoreThanOneHundredThousandLines) {
  gwarray_test::HeapMemory heap;  // one block per line
  std::wstring text;
  for (int i = 0; i < 100000; ++i) text += L"x\r\n";
  EXPECT_EQ(100000u, Parse(text.c_str(), 80).size());
  text += L"x";
  EXPECT_EQ(0u, Parse(text.c_str(), 80, -1).size());
  EXPECT_EQ(nullptr, a_.data);
  EXPECT_EQ(8, a_.recordSize) << "the array stays usable";
  gwWszarray_reset(&a_);
}
