#include <gtest/gtest.h>

#include "core/gwarray_test_support.h"
#include "gwarray.h"

using gwarray_test::Ints;

TEST(Gwlongarray, ValuesLookupsAndSetOperations) {
  gwarraytype a;
  ASSERT_EQ(0, gwlongarray_init(&a));
  EXPECT_EQ(4, a.recordSize);
  for (LONG v : {5, -3, 7, -3, 0}) ASSERT_EQ(0, gwlongarray_append(&a, v));

  EXPECT_EQ(-3, gwlongarray_get_at(&a, 1));
  EXPECT_EQ(0, gwlongarray_get_at(&a, 5));
  EXPECT_EQ(0, gwlongarray_get_at(&a, -1));
  LONG v = 9;
  EXPECT_EQ(-1, gwlongarray_get(&a, 5, &v));
  EXPECT_EQ(0, v);
  EXPECT_EQ(0, gwlongarray_get(&a, 2, &v));
  EXPECT_EQ(7, v);

  EXPECT_EQ(1, gwlongarray_find_index(&a, -3, -5)) << "a negative start searches from 0";
  EXPECT_EQ(3, gwlongarray_find_index(&a, -3, 2));
  EXPECT_EQ(-1, gwlongarray_find_index(&a, -3, 4));
  EXPECT_EQ(-1, gwlongarray_find_index(&a, 42, 0));

  EXPECT_EQ(0, gwlongarray_append_unique(&a, 7));
  EXPECT_EQ(5, a.count);
  EXPECT_EQ(0, gwlongarray_append_unique(&a, 8));
  EXPECT_EQ(0, gwlongarray_update(&a, 0, 6));
  EXPECT_EQ((std::vector<int>{6, -3, 7, -3, 0, 8}), Ints(a));

  gwarraytype gone;
  gwlongarray_init(&gone);
  for (LONG g : {-3, 42, 8, -3, -3}) gwlongarray_append(&gone, g);
  EXPECT_EQ(0, gwlongarray_delete_array(&a, &gone));
  EXPECT_EQ((std::vector<int>{6, 7, 0}), Ints(a));

  // Records of another size are never read or written as values.
  gwarraytype wide;
  gwarray_init(&wide, 8);
  EXPECT_EQ(-1, gwlongarray_append(&wide, 1));
  EXPECT_EQ(0, gwlongarray_append_array(&a, &wide)) << "an empty source of any size";
  gwarray_append(&wide, "12345678");
  EXPECT_EQ(-3, gwlongarray_append_array(&a, &wide));
  EXPECT_EQ(-3, gwlongarray_delete_array(&a, &wide));
  EXPECT_EQ(0, gwlongarray_get_at(&wide, 0));

  EXPECT_EQ(0, gwlongarray_delete_array(&a, &a)) << "deleting an array's values from itself";
  EXPECT_EQ(0, a.count);
  gwlongarray_release(&a);
  gwlongarray_release(&gone);
  gwarray_release(&wide);
}
