#include <gtest/gtest.h>

#include "core/array_monitor.h"
#include "gwarray.h"

TEST(ArrayMonitor, CountsInitsAndReleasesOnlyWhileItExists) {
  gwarraytype a, b, c;
  const long before = qt_array_monitor_count();
  gwarray_init(&a, 4);
  gwarray_release(&a);
  EXPECT_EQ(before, qt_array_monitor_count()) << "no monitor, no count";

  HWND monitor = gwarray_debugwnd_create(nullptr, 10, 10);
  ASSERT_NE(nullptr, monitor);
  EXPECT_EQ(monitor, gwarray_debugwnd_create(nullptr, 50, 50)) << "one monitor per process";
  const long start = qt_array_monitor_count();
  gwarray_init(&a, 16);
  gwszarray_init(&b);
  gwlongarray_init(&c);
  EXPECT_EQ(start + 3, qt_array_monitor_count());
  gwWszarray_release(&b);  // a typed release counts once
  gwlongarray_release(&c);
  EXPECT_EQ(start + 1, qt_array_monitor_count());
  gwarray_reset(&a);
  EXPECT_EQ(start + 1, qt_array_monitor_count()) << "a reset keeps the array initialized";
  EXPECT_EQ(-1, gwarray_init(&b, 0));
  EXPECT_EQ(start + 1, qt_array_monitor_count()) << "a refused init is no array";

  qt_array_monitor_close();
  EXPECT_EQ(nullptr, qt_array_monitor_window());
  gwarray_release(&a);
  EXPECT_EQ(start + 1, qt_array_monitor_count());
}
