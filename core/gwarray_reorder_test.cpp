#include <gtest/gtest.h>

#include <set>

#include "core/gwarray_test_support.h"
#include "gwarray.h"

using gwarray_test::Ints;

namespace {

// An int array 0, 1, ..., n-1, released with the fixture.
class Reorder : public ::testing::Test {
 protected:
  void Fill(int n) {
    for (int i = 0; i < n; ++i) gwarray_append(&a_, &i);
  }
  void SetUp() override { gwarray_init(&a_, sizeof(int)); }
  void TearDown() override { gwarray_release(&a_); }
  gwarraytype a_;
};

typedef std::vector<int> V;

}  // namespace

TEST_F(Reorder, MovingOneRecordShiftsTheOnesBetween) {
  Fill(6);
  EXPECT_EQ(0, gwarray_move(&a_, 1, 3));
  EXPECT_EQ((V{0, 2, 3, 4, 1, 5}), Ints(a_));
  EXPECT_EQ(0, gwarray_move(&a_, 4, -4));
  EXPECT_EQ((V{1, 0, 2, 3, 4, 5}), Ints(a_));

  EXPECT_EQ(0, gwarray_move(&a_, 99, 0)) << "a delta of 0 never looks at the index";
  EXPECT_EQ(0, gwarray_move(&a_, -7, 0));
  EXPECT_EQ(-1, gwarray_move(&a_, 0, -1));
  EXPECT_EQ(-1, gwarray_move(&a_, 5, 1));
  EXPECT_EQ(-1, gwarray_move(&a_, 6, -1));
  EXPECT_EQ((V{1, 0, 2, 3, 4, 5}), Ints(a_));
}

TEST_F(Reorder, MovingSeveralRecordsKeepsTheirOrder) {
  Fill(8);
  EXPECT_EQ(0, gwarray_move(&a_, V{2, 3, 6}, -2));
  EXPECT_EQ((V{2, 3, 0, 1, 6, 4, 5, 7}), Ints(a_));
  EXPECT_EQ(0, gwarray_move(&a_, V{0, 1, 4}, 3));
  EXPECT_EQ((V{0, 1, 4, 2, 3, 5, 7, 6}), Ints(a_));

  // The list form answers 1, not 0, for a delta of 0.
  EXPECT_EQ(1, gwarray_move(&a_, V{3}, 0));
  EXPECT_EQ(-1, gwarray_move(&a_, V{}, 0));
  EXPECT_EQ(-1, gwarray_move(&a_, V{}, 1));
  EXPECT_EQ(-1, gwarray_move(&a_, V{1, 5}, -2)) << "index 1 cannot go back two places";
  EXPECT_EQ(-1, gwarray_move(&a_, V{0, 6}, 2)) << "index 6 of 8 cannot go forward two";
  EXPECT_EQ(-1, gwarray_move(&a_, V{5, 3}, -1)) << "not ascending";
  EXPECT_EQ(-1, gwarray_move(&a_, V{3, 3}, -1));
  EXPECT_EQ(-1, gwarray_move(&a_, V{2, 9}, -1));
  EXPECT_EQ((V{0, 1, 4, 2, 3, 5, 7, 6}), Ints(a_)) << "a refused list moves nothing";
  EXPECT_EQ(0, gwarray_move(&a_, V{6}, 1));
  EXPECT_EQ((V{0, 1, 4, 2, 3, 5, 6, 7}), Ints(a_));
}

TEST_F(Reorder, SortByKeysOrdersTheLeadingRecords) {
  EXPECT_EQ(-1, gwarray_sort(&a_, V{})) << "an empty array";
  Fill(6);
  // Records 0..3 by key; 4 and 5 are not covered by keys and stay.
  EXPECT_EQ(0, gwarray_sort(&a_, V{30, -5, 10, 20}));
  EXPECT_EQ((V{1, 2, 3, 0, 4, 5}), Ints(a_));
  EXPECT_EQ(-1, gwarray_sort(&a_, V{1, 2, 3, 4, 5, 6, 7}));
  EXPECT_EQ((V{1, 2, 3, 0, 4, 5}), Ints(a_));

  // Equal keys may come out in either order, but stay together.
  EXPECT_EQ(0, gwarray_sort(&a_, V{2, 1, 2, 1, 0, 3}));
  const V sorted = Ints(a_);
  EXPECT_EQ(4, sorted[0]);
  EXPECT_EQ(5, sorted[5]);
  EXPECT_EQ((std::multiset<int>{2, 0}), (std::multiset<int>{sorted[1], sorted[2]}));
  EXPECT_EQ((std::multiset<int>{1, 3}), (std::multiset<int>{sorted[3], sorted[4]}));
}

TEST_F(Reorder, SortByPairsPermutesOnlyTheListedPositions) {
  typedef std::vector<std::pair<int, int>> Pairs;
  EXPECT_EQ(-1, gwarray_sort(&a_, Pairs{}));
  Fill(6);
  // Taken out in list order (5, 1, 3), ordered by key (3, 1, 5), written
  // back to the positions in list order (5, 1, 3).
  EXPECT_EQ(0, gwarray_sort(&a_, Pairs{{5, 9}, {1, 2}, {3, -4}}));
  EXPECT_EQ((V{0, 1, 2, 5, 4, 3}), Ints(a_));
  EXPECT_EQ(-1, gwarray_sort(&a_, Pairs{{0, 1}, {6, 0}}));
  EXPECT_EQ(-1, gwarray_sort(&a_, Pairs{{2, 1}, {2, 0}})) << "a position listed twice";
  EXPECT_EQ((V{0, 1, 2, 5, 4, 3}), Ints(a_));
}

TEST_F(Reorder, SwapIgnoresIndexesOutsideTheArray) {
  Fill(3);
  gwarray_swap(&a_, 0, 2);
  EXPECT_EQ((V{2, 1, 0}), Ints(a_));
  gwarray_swap(&a_, 1, 1);
  gwarray_swap(&a_, 3, 4);
  gwarray_swap(&a_, 0, 3);
  gwarray_swap(&a_, -1, 0);
  gwarray_swap(nullptr, 0, 1);
  EXPECT_EQ((V{2, 1, 0}), Ints(a_));
}
