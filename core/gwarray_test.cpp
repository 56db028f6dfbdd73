#include <gtest/gtest.h>

#include <cstring>

#include "core/gmem.h"
#include "core/gwarray_test_support.h"
#include "failure_points.h"
#include "gwarray.h"

using gwarray_test::ErrorCapture;
using gwarray_test::FailingMemory;
using gwarray_test::Ints;

namespace {

struct Rec {
  int a, b, c, d;
};

Rec R(int v) { return Rec{v, v + 1, v + 2, v + 3}; }

gwarraytype IntArray(std::initializer_list<int> values) {
  gwarraytype a;
  gwarray_init(&a, sizeof(int));
  for (int v : values) gwarray_append(&a, &v);
  return a;
}

}  // namespace

TEST(GwarrayGrowth, BlockAlwaysHoldsExactlyTheRecordsAdded) {
  gwarraytype a, more;
  ASSERT_EQ(0, gwarray_init(&a, sizeof(Rec)));
  EXPECT_TRUE(a.data == nullptr && a.count == 0 && a.recordSize == 16);
  gwarray_init(&more, sizeof(Rec));
  Rec r[5] = {R(10), R(20), R(30), R(40), R(50)};
  for (const Rec& x : r) gwarray_append(&more, &x);

  ASSERT_EQ(0, gwarray_append(&a, &r[0]));
  EXPECT_EQ(16u, qt_gmem_size(a.data));
  gwarray_append(&a, &r[1]);
  gwarray_append(&a, &r[2]);
  EXPECT_EQ(48u, qt_gmem_size(a.data));
  ASSERT_EQ(0, gwarray_delete(&a, 0));
  EXPECT_EQ(2, a.count);
  EXPECT_EQ(48u, qt_gmem_size(a.data)) << "a delete does not shrink the block";
  EXPECT_EQ(30, static_cast<Rec*>(gwarray_at(&a, 1))->a);
  ASSERT_EQ(0, gwarray_insert(&a, 1, &r[3]));
  EXPECT_EQ(48u, qt_gmem_size(a.data));
  ASSERT_EQ(0, gwarray_append_array(&a, &more));
  EXPECT_EQ(8u * 16u, qt_gmem_size(a.data));
  EXPECT_EQ(53, static_cast<Rec*>(gwarray_at(&a, 7))->d);

  // A reset keeps the record size, so the array is usable again at once.
  ASSERT_EQ(0, gwarray_reset(&a));
  EXPECT_TRUE(a.data == nullptr && a.count == 0 && a.recordSize == 16);
  ASSERT_EQ(0, gwarray_append(&a, &r[0]));
  EXPECT_EQ(16u, qt_gmem_size(a.data));
  ASSERT_EQ(0, gwarray_release(&a));
  EXPECT_TRUE(a.data == nullptr && a.count == 0 && a.recordSize == 0);
  gwarray_release(&more);

  EXPECT_EQ(-1, gwarray_init(&a, 0));
  EXPECT_EQ(-1, gwarray_append(&a, &r[0])) << "an array without a record size takes no records";
}

// One-record appends mostly land in the block's hidden room without
// moving it; sizes that are copied by a fixed move and those that are not
// must both keep every record and the exact size, also when the record
// comes from the block itself.
TEST(GwarrayGrowth, OneRecordAppendsKeepRecordsAndExactSizeForEveryRecordSize) {
  for (int size : {1, 3, 4, 8, 12, 16, 40}) {
    gwarraytype a;
    ASSERT_EQ(0, gwarray_init(&a, size));
    unsigned char record[40];
    for (int i = 0; i < 300; ++i) {
      // Every fifth record repeats the first one, taken from the block.
      const void* from = record;
      if (i % 5 == 4) {
        from = gwarray_at(&a, 0);
      } else {
        for (int k = 0; k < size; ++k) record[k] = static_cast<unsigned char>(i + k);
      }
      ASSERT_EQ(0, gwarray_append(&a, from)) << "size " << size << ", record " << i;
      ASSERT_EQ(static_cast<size_t>(i + 1) * size, qt_gmem_size(a.data)) << "size " << size << ", record " << i;
    }
    for (int i = 0; i < 300; ++i) {
      const unsigned char* got = static_cast<const unsigned char*>(gwarray_at(&a, i));
      const int source = i % 5 == 4 ? 0 : i;
      for (int k = 0; k < size; ++k)
        ASSERT_EQ(static_cast<unsigned char>(source + k), got[k]) << "size " << size << ", record " << i;
    }
    gwarray_release(&a);
  }
}

// A table whose in-place step is not the platform's own (a test's, or a
// host's) is still asked, and the record still copied after it agreed.
TEST(GwarrayGrowth, AnInPlaceStepOfAnotherTableIsHonoured) {
  static int asked;
  static bool (*platformStep)(void*, size_t);
  asked = 0;
  const QtGmemCalls saved = *qt_gmem_calls();
  platformStep = saved.resizeInPlace;
  qt_gmem_calls()->resizeInPlace = [](void* p, size_t n) {
    ++asked;
    return platformStep && platformStep(p, n);
  };
  gwarraytype a;
  gwarray_init(&a, sizeof(Rec));
  for (int i = 0; i < 100; ++i) {
    const Rec r = R(i);
    ASSERT_EQ(0, gwarray_append(&a, &r));
  }
  *qt_gmem_calls() = saved;
  EXPECT_GE(asked, 99) << "every append after the first asks the table";
  EXPECT_EQ(100u * sizeof(Rec), qt_gmem_size(a.data));
  for (int i = 0; i < 100; ++i) ASSERT_EQ(i + 3, static_cast<Rec*>(gwarray_at(&a, i))->d);
  gwarray_release(&a);
}

// Headers that a caller damaged, or filled in by hand, are refused before
// anything is written, even when the block behind them has room.
TEST(GwarrayGrowth, DamagedHeadersAreRefusedAndTheBlockKeepsItsRecords) {
  gwarraytype a = IntArray({1, 2, 3, 4});
  const int extra = 9;
  ASSERT_EQ(0, gwarray_delete(&a, 3)) << "keeps the block, so there is room for one record";
  const gwarraytype good = a;

  gwarraytype damaged = good;
  damaged.count = -1;
  EXPECT_EQ(-1, gwarray_append(&damaged, &extra));
  damaged = good;
  damaged.recordSize = 0;
  EXPECT_EQ(-1, gwarray_append(&damaged, &extra));
  damaged = good;
  damaged.recordSize = -4;
  EXPECT_EQ(-1, gwarray_append(&damaged, &extra));
  damaged = good;
  damaged.data = nullptr;
  EXPECT_EQ(-1, gwarray_append(&damaged, &extra));
  EXPECT_EQ(-1, gwarray_append(nullptr, &extra));
  EXPECT_EQ(-1, gwarray_append(&a, nullptr));

  EXPECT_EQ(16u, qt_gmem_size(a.data));
  EXPECT_EQ((std::vector<int>{1, 2, 3}), Ints(a));
  ASSERT_EQ(0, gwarray_append(&a, &extra));
  EXPECT_EQ((std::vector<int>{1, 2, 3, 9}), Ints(a));
  gwarray_release(&a);
}

TEST(GwarrayRecords, InsertGetUpdateAndOutOfRangeIndexes) {
  gwarraytype a = IntArray({1, 2, 3});
  const int seven = 7, eight = 8, nine = 9;
  EXPECT_EQ(0, gwarray_insert(&a, 3, &seven));
  EXPECT_EQ(0, gwarray_insert(&a, 99, &eight));
  EXPECT_EQ(0, gwarray_insert(&a, 0, &nine));
  EXPECT_EQ((std::vector<int>{9, 1, 2, 3, 7, 8}), Ints(a));
  EXPECT_EQ(-1, gwarray_insert(&a, -1, &nine));
  EXPECT_EQ(6, a.count);

  int out = 55;
  EXPECT_EQ(-1, gwarray_get(&a, -1, &out));
  EXPECT_EQ(0, out) << "an out-of-range get zero-fills the record";
  EXPECT_EQ(0, gwarray_get(&a, 5, &out));
  EXPECT_EQ(8, out);
  EXPECT_EQ(nullptr, gwarray_at(&a, 6));
  EXPECT_EQ(nullptr, gwarray_at(&a, -1));

  EXPECT_EQ(0, gwarray_update(&a, 1, &seven));
  EXPECT_EQ(-1, gwarray_update(&a, 6, &seven));
  EXPECT_EQ(-1, gwarray_delete(&a, 6));
  EXPECT_EQ((std::vector<int>{9, 7, 2, 3, 7, 8}), Ints(a));

  // Records taken from the array itself survive the block moving or the
  // records shifting under them.
  for (int i = 0; i < 40; ++i) ASSERT_EQ(0, gwarray_append(&a, gwarray_at(&a, 0)));
  EXPECT_EQ(46, a.count);
  EXPECT_EQ(9, *static_cast<int*>(gwarray_at(&a, 45)));
  ASSERT_EQ(0, gwarray_insert(&a, 0, gwarray_at(&a, 2)));
  ASSERT_EQ(0, gwarray_insert(&a, 1, gwarray_at(&a, 0)));
  const std::vector<int> front = Ints(a);
  EXPECT_EQ((std::vector<int>{2, 2, 9, 7, 2}), std::vector<int>(front.begin(), front.begin() + 5));
  gwarray_release(&a);
}

TEST(GwarrayRecords, AppendArrayChecksSizesAndAcceptsItself) {
  gwarraytype ints = IntArray({1, 2});
  gwarraytype wide;
  gwarray_init(&wide, 8);
  const long long big = 5;
  gwarray_append(&wide, &big);

  EXPECT_EQ(-3, gwarray_append_array(&ints, &wide));
  EXPECT_EQ((std::vector<int>{1, 2}), Ints(ints));
  gwarraytype empty;
  gwarray_init(&empty, 8);
  EXPECT_EQ(0, gwarray_append_array(&ints, &empty)) << "an empty source of another size is still nothing to do";
  EXPECT_EQ(0, gwarray_append_array(&ints, &ints));
  EXPECT_EQ((std::vector<int>{1, 2, 1, 2}), Ints(ints));
  EXPECT_EQ(16u, qt_gmem_size(ints.data));

  gwarray_release(&ints);
  gwarray_release(&wide);
  gwarray_release(&empty);
}

TEST(GwarrayOutOfMemory, GrowthFailureEmptiesTheArrayAndReportsWhichCall) {
  ErrorCapture errors;
  struct Case {
    const char* text;
    int (*grow)(gwarraytype*);
  } cases[] = {
      {"gwarray_append() out of memory", [](gwarraytype* a) { const int v = 4; return gwarray_append(a, &v); }},
      {"gwarray_insert() out of memory", [](gwarraytype* a) { const int v = 4; return gwarray_insert(a, 0, &v); }},
      {"gwarray_append_array() out of memory", [](gwarraytype* a) { return gwarray_append_array(a, a); }},
  };
  for (const Case& c : cases) {
    gwarraytype a = IntArray({1, 2, 3});
    void* old = a.data;
    {
      FailingMemory fail(FailingMemory::kRealloc);
      EXPECT_EQ(-2, c.grow(&a)) << c.text;
    }
    EXPECT_EQ(nullptr, a.data) << c.text;
    EXPECT_EQ(0, a.count) << c.text;
    EXPECT_EQ(4, a.recordSize) << c.text;
    EXPECT_TRUE(ErrorCapture::Saw(c.text)) << c.text;
    gwGfree(old);  // the array dropped it; the test still knows it
    gwarray_release(&a);
  }

  // The first record of a fresh array is an allocation, not a resize.
  gwarraytype fresh = IntArray({});
  {
    FailingMemory fail(FailingMemory::kAlloc);
    const int v = 1;
    EXPECT_EQ(-2, gwarray_append(&fresh, &v));
  }
  EXPECT_EQ(0, fresh.count);
  gwarray_release(&fresh);
}

// Out of memory inside the working copies of sort and delete: the array is
// either fully rearranged or left as it was, and the call says -2.
TEST(GwarrayOutOfMemory, SortAndDeleteArrayLeaveTheArrayWholeOrDone) {
  gwarraytype a = IntArray({3, 1, 2});
  const std::vector<int> keys{30, 10, 20};
  int result = 0;
  qt_test::AtEveryFailurePoint([&] { result = gwarray_sort(&a, keys); },
                               [&](bool refused) {
                                 if (refused && result == -2) {
                                   EXPECT_EQ((std::vector<int>{3, 1, 2}), Ints(a));
                                 } else {
                                   EXPECT_EQ(0, result);
                                   EXPECT_EQ((std::vector<int>{1, 2, 3}), Ints(a));
                                 }
                                 if (result == 0) {
                                   gwarray_release(&a);
                                   a = IntArray({3, 1, 2});
                                 }
                               });
  gwarray_release(&a);

  gwarraytype values = IntArray({});
  gwarraytype gone = IntArray({});
  const LONG kept[] = {4, 5, 6};
  for (LONG v : kept) gwlongarray_append(&values, v);
  gwlongarray_append(&gone, 5);
  qt_test::AtEveryFailurePoint([&] { result = gwlongarray_delete_array(&values, &gone); },
                               [&](bool refused) {
                                 if (refused && result == -2) {
                                   EXPECT_EQ(3, values.count);
                                 } else {
                                   EXPECT_EQ(0, result);
                                   EXPECT_EQ(2, values.count);
                                   EXPECT_EQ(-1, gwlongarray_find_index(&values, 5, 0));
                                 }
                               });
  gwarray_release(&values);
  gwarray_release(&gone);
}
