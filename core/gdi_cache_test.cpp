// Shared pens and brushes: one object per colour, never more than twenty.
#include <gtest/gtest.h>

#include <set>

#include "gwframe.h"

TEST(SharedPensAndBrushes, OnePerColourAndTheTwentiethStandsInBeyondTheCap) {
  gwrelease();
  std::set<HPEN> pens;
  for (int color = 0; color < 20; ++color) pens.insert(gwpen(color));
  EXPECT_EQ(20u, pens.size());
  EXPECT_EQ(0u, pens.count(nullptr));
  EXPECT_EQ(gwpen(3), gwpen(3));
  EXPECT_EQ(gwpen(19), gwpen(21));  // a 21st colour gets the twentieth pen
  EXPECT_EQ(gwpen(19), gwpen(30));

  std::set<HBRUSH> brushes;
  for (int color = 5; color < 30; ++color) brushes.insert(gwbrush(color));
  EXPECT_EQ(20u, brushes.size());
  EXPECT_EQ(gwbrush(24), gwbrush(29));

  // After a release the caches start empty: twenty new colours fit again.
  gwrelease();
  std::set<HPEN> again;
  for (int color = 40; color < 60; ++color) again.insert(gwpen(color));
  EXPECT_EQ(20u, again.size());
  EXPECT_EQ(gwpen(59), gwpen(3));  // capped again
  gwrelease();
}
