#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "core/gmem.h"
#include "core/gwarray_test_support.h"
#include "gwarray.h"

using gwarray_test::ErrorCapture;
using gwarray_test::FailingMemory;

namespace {

std::string Get(const gwarraytype& a, int i) {
  char buffer[64];
  return gwszarray_get(&a, i, buffer, sizeof buffer) == 0 ? std::string(buffer) : std::string("<none>");
}

const char* Held(const gwarraytype& a, int i) { return *static_cast<char**>(gwarray_at(&a, i)); }

}  // namespace

TEST(GwszarrayOwnership, StringsAreCopiesInBlocksOfTheirOwn) {
  gwarraytype a;
  ASSERT_EQ(0, gwszarray_init(&a));
  EXPECT_EQ(8, a.recordSize);
  char source[] = "alpha";
  ASSERT_EQ(0, gwszarray_append(&a, source));
  source[0] = 'X';
  EXPECT_EQ("alpha", Get(a, 0));
  EXPECT_NE(static_cast<const char*>(source), Held(a, 0));
  EXPECT_EQ(6u, qt_gmem_size(Held(a, 0)));

  EXPECT_EQ(-1, gwszarray_append(&a, nullptr));
  EXPECT_EQ(-1, gwszarray_insert(&a, 0, nullptr));
  EXPECT_EQ(-1, gwszarray_insert(&a, -1, "x"));
  ASSERT_EQ(0, gwszarray_insert(&a, 0, "zero"));
  ASSERT_EQ(0, gwszarray_insert(&a, 9, "last"));
  EXPECT_EQ(3, a.count);
  EXPECT_EQ("zero", Get(a, 0));
  EXPECT_EQ("last", Get(a, 2));

  // An update resizes the string's block to the new text.
  ASSERT_EQ(0, gwszarray_update(&a, 1, "a much longer text"));
  EXPECT_EQ("a much longer text", Get(a, 1));
  EXPECT_EQ(19u, qt_gmem_size(Held(a, 1)));
  ASSERT_EQ(0, gwszarray_update(&a, 1, Held(a, 1) + 7)) << "a tail of the string itself";
  EXPECT_EQ("longer text", Get(a, 1));
  EXPECT_EQ(12u, qt_gmem_size(Held(a, 1)));
  EXPECT_EQ(-1, gwszarray_update(&a, 3, "x"));

  ASSERT_EQ(0, gwszarray_append_array(&a, &a));
  EXPECT_EQ(6, a.count);
  EXPECT_EQ("last", Get(a, 5));
  EXPECT_NE(Held(a, 2), Held(a, 5)) << "each string is copied, not shared";

  ASSERT_EQ(0, gwszarray_delete(&a, 0));
  EXPECT_EQ(-1, gwszarray_delete(&a, 5));
  EXPECT_EQ("longer text", Get(a, 0));

  ASSERT_EQ(0, gwszarray_release(&a));
  EXPECT_EQ(0, a.recordSize);
}

TEST(GwszarrayOwnership, GetEmptiesAndCutsTheBuffer) {
  gwarraytype a;
  gwszarray_init(&a);
  gwszarray_append(&a, "abcdef");
  char buffer[8] = "junk";
  EXPECT_EQ(-1, gwszarray_get(&a, 1, buffer, sizeof buffer));
  EXPECT_STREQ("", buffer);
  EXPECT_EQ(0, gwszarray_get(&a, 0, buffer, 4));
  EXPECT_STREQ("abc", buffer);
  EXPECT_EQ(0, gwszarray_get(&a, 0, buffer, 1));
  EXPECT_STREQ("", buffer);

  // A record without a string (put there by the record-level calls).
  const char* none = nullptr;
  gwarray_append(&a, &none);
  std::strcpy(buffer, "junk");
  EXPECT_EQ(-1, gwszarray_get(&a, 1, buffer, sizeof buffer));
  EXPECT_STREQ("", buffer);
  gwszarray_release(&a);
}

TEST(StringArraysOutOfMemory, EightBitFamilyReportsAndWideFamilyStaysSilent) {
  ErrorCapture errors;
  gwarraytype narrow, wide;
  gwszarray_init(&narrow);
  gwWszarray_init(&wide);
  gwszarray_append(&narrow, "kept");
  gwWszarray_append(&wide, L"kept");
  {
    FailingMemory fail(FailingMemory::kAlloc | FailingMemory::kRealloc);
    EXPECT_EQ(-2, gwszarray_append(&narrow, "new"));
    EXPECT_EQ(-2, gwszarray_insert(&narrow, 0, "new"));
    EXPECT_EQ(-2, gwszarray_update(&narrow, 0, "a longer text"));
    EXPECT_EQ(-2, gwWszarray_append(&wide, L"new"));
    EXPECT_EQ(-2, gwWszarray_insert(&wide, 0, L"new"));
    EXPECT_EQ(-2, gwWszarray_update(&wide, 0, L"a longer text"));
  }
  EXPECT_TRUE(ErrorCapture::Saw("gwszarray_append() out of memory"));
  EXPECT_TRUE(ErrorCapture::Saw("gwszarray_insert() out of memory"));
  EXPECT_TRUE(ErrorCapture::Saw("gwszarray_update() out of memory"));
  // Besides the frame's own gwGmalloc/gwGrealloc reports, only the 8-bit family speaks.
  for (const std::string& m : ErrorCapture::Messages())
    EXPECT_TRUE(m.rfind("gwG", 0) == 0 || m.rfind("gwszarray_", 0) == 0) << m;
  // Failed copies and updates leave the held strings alone.
  EXPECT_EQ(1, narrow.count);
  EXPECT_EQ("kept", Get(narrow, 0));
  EXPECT_EQ(1, wide.count);
  EXPECT_STREQ(L"kept", gwWszarray_at(&wide, 0));
  {
    gwarraytype memo;
    gwWszarray_init(&memo);
    gwWszarray_append(&memo, L"old");
    FailingMemory fail(FailingMemory::kAlloc);
    EXPECT_EQ(-2, gwWszarray_parse_memo(&memo, L"new text", 40));
    EXPECT_EQ(0, memo.count) << "the old lines go before the work line is asked for";
    gwWszarray_release(&memo);
  }

  // When the copy is made but the record block cannot grow, the array is
  // lost as a whole, as with the record-level calls.
  ErrorCapture::Messages().clear();
  {
    FailingMemory fail(FailingMemory::kRealloc);
    EXPECT_EQ(-2, gwszarray_append(&narrow, "new"));
    EXPECT_EQ(-2, gwWszarray_append(&wide, L"new"));
  }
  EXPECT_EQ(0, narrow.count);
  EXPECT_EQ(0, wide.count);
  const std::vector<std::string>& seen = ErrorCapture::Messages();
  EXPECT_EQ(1, std::count(seen.begin(), seen.end(), "gwarray_append() out of memory"))
      << "only the 8-bit family's record failure is reported";
  gwszarray_release(&narrow);
  gwWszarray_release(&wide);
}
