#include <gtest/gtest.h>

#include "gwframe.h"

TEST(VersionCheck, AnswersItsOwnNumberOnly) {
  EXPECT_EQ(20160101L, quiltool_version_nmb(20160101L));
  EXPECT_EQ(-20160101L, quiltool_version_nmb(0));
  EXPECT_EQ(-20160101L, quiltool_version_nmb(20160102L));
}
