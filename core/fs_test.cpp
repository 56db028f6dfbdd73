// The file-system seam: what callers see, and that a failure at any step of
// a replacement loses neither the old file nor leaves a stray one.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>

#include "core/fs.h"
#include "core/fs_platform.h"
#include "qt_test.h"

namespace {

using qt::fs::FsError;
using qt::fs::Kind;
namespace platform = qt::fs::platform;

int g_calls = 0;  // of an injected step, counted from each test's start

std::set<std::string> Names(const qt_test::TempDir& dir) {
  std::set<std::string> names;
  for (const auto& e : std::filesystem::directory_iterator(std::filesystem::u8path(dir.path())))
    names.insert(e.path().filename().u8string());
  return names;
}

std::string Read(const std::wstring& path) {
  std::string bytes;
  EXPECT_EQ(FsError::kOk, qt::fs::ReadWholeFile(path, &bytes));
  return bytes;
}

TEST(Fs, ReplaceCreatesAndReplacesWithAnyBytesAndLeavesNothingElse) {
  qt_test::TempDir dir;
  // A name outside any 8-bit code page, and content with zero bytes.
  const std::wstring path = dir.wpath() + L"/\u65e5\u672c-\u00e9.bin";
  const std::string first("a\0b\r\n\xff", 6);
  ASSERT_EQ(FsError::kOk, qt::fs::ReplaceWholeFile(path, first));
  EXPECT_EQ(first, Read(path));
  const std::string big(200000, 'x');  // more than one read chunk
  ASSERT_EQ(FsError::kOk, qt::fs::ReplaceWholeFile(path, big));
  EXPECT_EQ(big, Read(path));
  ASSERT_EQ(FsError::kOk, qt::fs::ReplaceWholeFile(path, std::string()));
  EXPECT_EQ("", Read(path));
  EXPECT_EQ(1u, Names(dir).size());
}

TEST(Fs, ReadReportsTheReasonAndKeepsTheCallersBytes) {
  qt_test::TempDir dir;
  std::string bytes = "kept";
  EXPECT_EQ(FsError::kNotFound, qt::fs::ReadWholeFile(dir.wfile("none"), &bytes));
  EXPECT_EQ(FsError::kNotFound, qt::fs::ReadWholeFile(dir.wfile("none/deeper"), &bytes));
  EXPECT_EQ(FsError::kIsDirectory, qt::fs::ReadWholeFile(dir.wpath(), &bytes));
  EXPECT_EQ(FsError::kInvalidName, qt::fs::ReadWholeFile(L"", &bytes));
  EXPECT_EQ(FsError::kInvalidName, qt::fs::ReadWholeFile(std::wstring(L"a\0b", 3), &bytes));
  EXPECT_EQ("kept", bytes);
}

TEST(Fs, KindsRemovalAndFullNames) {
  qt_test::TempDir dir;
  const std::wstring file = dir.wfile("f.txt");
  ASSERT_EQ(FsError::kOk, qt::fs::ReplaceWholeFile(file, std::string("x")));
  EXPECT_EQ(Kind::kFile, qt::fs::KindOf(file));
  EXPECT_EQ(Kind::kDirectory, qt::fs::KindOf(dir.wpath()));
  EXPECT_EQ(Kind::kNone, qt::fs::KindOf(dir.wfile("none")));
  EXPECT_TRUE(qt::fs::IsFile(file) && !qt::fs::IsDirectory(file) && qt::fs::Exists(file));
  EXPECT_TRUE(qt::fs::IsDirectory(dir.wpath()) && !qt::fs::IsFile(dir.wpath()));

  EXPECT_EQ(FsError::kIsDirectory, qt::fs::Remove(dir.wpath()));
  EXPECT_TRUE(qt::fs::IsDirectory(dir.wpath()));
  EXPECT_EQ(FsError::kOk, qt::fs::Remove(file));
  EXPECT_FALSE(qt::fs::Exists(file));
  EXPECT_EQ(FsError::kNotFound, qt::fs::Remove(file));

  // Replacing a folder is refused and leaves nothing beside it.
  const std::wstring sub = dir.wfile("sub");
  std::filesystem::create_directory(std::filesystem::path(sub));
  EXPECT_EQ(FsError::kIsDirectory, qt::fs::ReplaceWholeFile(sub, std::string("x")));
  EXPECT_EQ(std::set<std::string>{"sub"}, Names(dir));

  const std::wstring full = qt::fs::FullName(dir.wpath() + L"/sub/../sub/./x.txt");
  EXPECT_EQ(dir.wfile("sub") + (full.find(L'\\') != std::wstring::npos ? L"\\x.txt" : L"/x.txt"), full);
  const std::wstring relative = qt::fs::FullName(L"rel.txt");
  EXPECT_EQ(std::filesystem::path(relative).is_absolute(), true);
  EXPECT_EQ(L"rel.txt", std::filesystem::path(relative).filename().wstring());
}

TEST(Fs, EveryErrorHasItsOwnReason) {
  std::set<std::string> texts;
  for (int e = 0; e <= static_cast<int>(FsError::kIo); ++e) texts.insert(qt::fs::FsErrorText(static_cast<FsError>(e)));
  EXPECT_EQ(static_cast<size_t>(FsError::kIo) + 1, texts.size());
  EXPECT_EQ(0u, texts.count(""));
}

// A failure injected at one step of a replacement.
struct Failing {
  const char* step;
  void (*inject)(platform::Calls*);
  FsError expected;
};

class FsReplaceFailure : public testing::TestWithParam<Failing> {};

TEST_P(FsReplaceFailure, LeavesTheOldFileAndNoTemporaryFile) {
  qt_test::TempDir dir;
  const std::wstring path = dir.wfile("data.qbs");
  ASSERT_EQ(FsError::kOk, qt::fs::ReplaceWholeFile(path, std::string("old content")));
  {
    platform::CallsOverride calls;
    g_calls = 0;
    GetParam().inject(calls.get());
    EXPECT_EQ(GetParam().expected, qt::fs::ReplaceWholeFile(path, std::string(100000, 'n')));
  }
  EXPECT_EQ("old content", Read(path));
  EXPECT_EQ(std::set<std::string>{"data.qbs"}, Names(dir));
  // The table is the system's again.
  EXPECT_EQ(FsError::kOk, qt::fs::ReplaceWholeFile(path, std::string("new")));
  EXPECT_EQ("new", Read(path));
}

// A write that stops after part of the content, as a full disk does.
FsError HalfWrite(platform::Handle h, const void* data, size_t size, size_t* put) {
  if (++g_calls == 2) return FsError::kNoSpace;
  return platform::SystemCalls().write(h, data, size < 10 ? size : 10, put);
}

INSTANTIATE_TEST_SUITE_P(
    EachStep, FsReplaceFailure,
    testing::Values(
        Failing{"createTemp",
                [](platform::Calls* c) {
                  c->createTemp = [](const std::wstring&, std::wstring*, platform::Handle*) {
                    return FsError::kAccessDenied;
                  };
                },
                FsError::kAccessDenied},
        Failing{"write", [](platform::Calls* c) { c->write = &HalfWrite; }, FsError::kNoSpace},
        Failing{"adoptTarget",
                [](platform::Calls* c) {
                  c->adoptTarget = [](const std::wstring&, platform::Handle) { return FsError::kAccessDenied; };
                },
                FsError::kAccessDenied},
        Failing{"sync", [](platform::Calls* c) { c->sync = [](platform::Handle) { return FsError::kIo; }; },
                FsError::kIo},
        Failing{"close",
                [](platform::Calls* c) {
                  c->close = [](platform::Handle h) {
                    platform::SystemCalls().close(h);
                    return FsError::kNoSpace;
                  };
                },
                FsError::kNoSpace},
        Failing{"rename",
                [](platform::Calls* c) {
                  c->rename = [](const std::wstring&, const std::wstring&) { return FsError::kBusy; };
                },
                FsError::kBusy}),
    [](const testing::TestParamInfo<Failing>& info) { return std::string(info.param.step); });

TEST(Fs, AFailingReadKeepsTheCallersBytes) {
  qt_test::TempDir dir;
  const std::wstring path = dir.wfile("r.bin");
  ASSERT_EQ(FsError::kOk, qt::fs::ReplaceWholeFile(path, std::string(300000, 'r')));
  platform::CallsOverride calls;
  g_calls = 0;
  calls->read = [](platform::Handle h, void* b, size_t n, size_t* got) {
    if (++g_calls == 3) return FsError::kIo;
    return platform::SystemCalls().read(h, b, n, got);
  };
  std::string bytes = "kept";
  EXPECT_EQ(FsError::kIo, qt::fs::ReadWholeFile(path, &bytes));
  EXPECT_EQ("kept", bytes);
}

}  // namespace
