// Global-memory helpers: results, block sizes and the failure reports.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "core/frame_state.h"
#include "core/gmem.h"
#include "gwframe.h"

namespace {

std::vector<std::string> g_reports;
void Capture(long code, const char* message) { g_reports.push_back(std::to_string(code) + " " + message); }

// Makes chosen calls of the platform table fail, and restores it afterwards.
class GmemFailure : public ::testing::Test {
 protected:
  void SetUp() override {
    saved_ = *qt_gmem_calls();
    g_reports.clear();
    previousHook_ = qt_set_error_hook(Capture);
  }
  void TearDown() override {
    *qt_gmem_calls() = saved_;
    qt_set_error_hook(previousHook_);
  }
  QtGmemCalls saved_;
  qt::ErrorHook previousHook_;
};

void* FailAlloc(size_t, bool) { return nullptr; }
void* FailRealloc(void*, size_t) { return nullptr; }
void* FailLock(void*) { return nullptr; }

}  // namespace

TEST(GlobalMemory, BlocksAreExactlyTheAskedSizeAndSurviveResizing) {
  char* p = static_cast<char*>(gwGrealloc(nullptr, 100, 1));  // null block: a fresh allocation
  ASSERT_NE(nullptr, p);
  EXPECT_EQ(100u, qt_gmem_size(p));
  std::memset(p, 'a', 100);
  p = static_cast<char*>(gwGrealloc(p, 5000, 1));
  ASSERT_NE(nullptr, p);
  EXPECT_EQ(5000u, qt_gmem_size(p));
  EXPECT_EQ(std::string(100, 'a'), std::string(p, 100));
  p = static_cast<char*>(gwGrealloc(p, 10, 1));
  EXPECT_EQ(10u, qt_gmem_size(p));
  EXPECT_EQ(nullptr, gwGfree(p));
  EXPECT_EQ(nullptr, gwGfree(nullptr));

  void* handle = nullptr;
  unsigned char* z = static_cast<unsigned char*>(gwGmallocH(64, &handle));
  ASSERT_NE(nullptr, z);
  EXPECT_NE(nullptr, handle);
  for (int i = 0; i < 64; ++i) ASSERT_EQ(0, z[i]) << i;
  gwGfree(z);
}

TEST(GlobalMemory, PointersTheLibraryDidNotHandOutAreLeftAlone) {
  std::vector<char> foreign(64, 'f');
  EXPECT_EQ(nullptr, gwGrealloc(foreign.data() + 16, 128, 2));
  EXPECT_EQ(nullptr, gwGfree(foreign.data() + 16));
  EXPECT_EQ(std::string(64, 'f'), std::string(foreign.begin(), foreign.end()));
}

TEST_F(GmemFailure, AllocationFailuresAreReportedWithTheirTexts) {
  qt_gmem_calls()->alloc = FailAlloc;
  EXPECT_EQ(nullptr, gwGmalloc(10, 7));
  void* handle = reinterpret_cast<void*>(1);
  EXPECT_EQ(nullptr, gwGmallocH(10, &handle));
  EXPECT_EQ(nullptr, handle);
  EXPECT_EQ(nullptr, gwGrealloc(nullptr, 10, 9));
  ASSERT_EQ(3u, g_reports.size());
  EXPECT_EQ("-2 gwGmalloc() out of memory (7)", g_reports[0]);
  EXPECT_EQ("-2 Out of memory gwGmallocH() (1)", g_reports[1]);
  EXPECT_EQ("-2 gwGmalloc() out of memory (9)", g_reports[2]);
}

TEST_F(GmemFailure, LockFailureOfTheZeroedBlockFreesIt) {
  qt_gmem_calls()->lock = FailLock;
  void* handle = nullptr;
  EXPECT_EQ(nullptr, gwGmallocH(10, &handle));
  EXPECT_NE(nullptr, handle);  // names the freed block
  ASSERT_EQ(1u, g_reports.size());
  EXPECT_EQ("-2 Out of memory gwGmallocH() (2)", g_reports[0]);
}

TEST_F(GmemFailure, FailedResizeKeepsTheOldBlock) {
  char* p = static_cast<char*>(gwGmalloc(16, 1));
  ASSERT_NE(nullptr, p);
  std::memcpy(p, "0123456789abcdef", 16);
  qt_gmem_calls()->realloc = FailRealloc;
  qt_gmem_calls()->resizeInPlace = nullptr;
  EXPECT_EQ(nullptr, gwGrealloc(p, 1 << 20, 3));
  ASSERT_EQ(1u, g_reports.size());
  EXPECT_EQ("-2 gwGrealloc() out of memory (3)", g_reports[0]);
  *qt_gmem_calls() = saved_;
  // The old block is still allocated with its contents; it can be freed.
  EXPECT_EQ(16u, qt_gmem_size(p));
  EXPECT_EQ(0, std::memcmp(p, "0123456789abcdef", 16));
  gwGfree(p);
}

TEST_F(GmemFailure, WithoutAHookFailuresAreSilent) {
  qt_set_error_hook(nullptr);
  qt_gmem_calls()->alloc = FailAlloc;
  EXPECT_EQ(nullptr, gwGmalloc(10, 1));
  EXPECT_TRUE(g_reports.empty());
}
