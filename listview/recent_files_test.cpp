// The recent-file list: order, the maximum, the question about a missing
// file, its registry values and the sub-menu's entries.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "QnRecentFileListManager.h"
#include "listview/recent_files_list.h"
#include "message_recorder.h"
#include "qt_test.h"
#include "settings/reg_test_util.h"

namespace {


class RecentFiles : public reg_test::AppKeyTest {
 protected:
  // Makes a real file and answers its path.
  std::wstring File(const std::string& name) {
    const std::string path = dir_.file(name);
    FILE* f = std::fopen(path.c_str(), "wb");
    if (f) std::fclose(f);
    return qt_test::Widen(path);
  }
  std::wstring At(const QnRecentFileListManager& m, int i) { return m.GetFilePathNameAt(i).c_str(); }

  qt_test::TempDir dir_;
  qt_test::MessageRecorder presenter_{IDNO};
};

TEST_F(RecentFiles, TwelfthFileDropsTheOldestAndReopeningMovesToTheFront) {
  QnRecentFileListManager m;
  std::vector<std::wstring> files;
  for (int i = 0; i < 12; ++i) files.push_back(File("f" + std::to_string(i) + ".qdb"));
  for (int i = 0; i < 11; ++i) ASSERT_TRUE(m.SetLastUsed(files[i].c_str()));
  EXPECT_EQ(11, m.GetFileCount());
  EXPECT_TRUE(m.SetLastUsed(files[11].c_str()));
  EXPECT_EQ(11, m.GetFileCount());
  EXPECT_EQ(files[11], At(m, 0));
  EXPECT_EQ(files[1], At(m, 10));  // files[0] went

  EXPECT_TRUE(m.SetLastUsed(files[5].c_str()));
  EXPECT_EQ(files[5], At(m, 0));
  EXPECT_EQ(files[11], At(m, 1));
  EXPECT_EQ(11, m.GetFileCount());  // not twice
  EXPECT_EQ(L"", At(m, 11));
  EXPECT_EQ(L"", At(m, -1));
  EXPECT_EQ(0, static_cast<int>(presenter_.boxes.size()));
  EXPECT_FALSE(m.SetLastUsed(L""));
}

TEST_F(RecentFiles, MissingFileIsDroppedOnlyWhenTheUserSaysYes) {
  const std::wstring gone = File("gone.qdb");
  const std::wstring kept = File("kept.qdb");
  QnRecentFileListManager m;
  m.SetLastUsed(gone.c_str());
  m.SetLastUsed(kept.c_str());
  std::remove(qt_test::Narrow(gone).c_str());

  presenter_.answer = IDNO;
  EXPECT_FALSE(m.SetLastUsed(gone.c_str()));
  EXPECT_EQ(1, static_cast<int>(presenter_.boxes.size()));
  EXPECT_EQ(L"The file or folder \"" + gone +
                L"\" cannot be opened. Do you want to remove the reference(s) to it from the Recent list(s)?",
            presenter_.boxes.back().text);
  EXPECT_EQ(2, m.GetFileCount());

  presenter_.answer = IDYES;
  EXPECT_FALSE(m.SetLastUsed(gone.c_str()));
  EXPECT_EQ(1, m.GetFileCount());
  EXPECT_EQ(kept, At(m, 0));
}

TEST_F(RecentFiles, RegistryKeepsTheOrderAndLoadingStopsAtTheFirstGap) {
  const std::wstring key = base_ + L"\\Recent";
  const std::wstring a = File("a.qdb"), b = File("b.qdb"), c = File("c.qdb");
  {
    QnRecentFileListManager m;
    m.LoadFromRegistry(key.c_str());
    m.SetLastUsed(a.c_str());
    m.SetLastUsed(b.c_str());
    m.SetLastUsed(c.c_str());
    ASSERT_TRUE(m.SaveToRegistry());
  }
  EXPECT_EQ(c, std::wstring(Registry::GetStringAtt(HKEY_CURRENT_USER, (key + L"\\Item00").c_str(), ustr()).c_str()));
  EXPECT_EQ(a, std::wstring(Registry::GetStringAtt(HKEY_CURRENT_USER, (key + L"\\Item02").c_str(), ustr()).c_str()));

  QnRecentFileListManager again;
  ASSERT_TRUE(again.LoadFromRegistry(key.c_str()));
  EXPECT_EQ(3, again.GetFileCount());
  EXPECT_EQ(b, At(again, 1));

  // An empty Item01 ends the list there; a smaller maximum ends it sooner.
  Registry::SetStringAtt(HKEY_CURRENT_USER, (key + L"\\Item01").c_str(), L"");
  again.LoadFromRegistry(key.c_str());
  EXPECT_EQ(1, again.GetFileCount());
  QnRecentFileListManager small;
  small.SetMaxFileCount(0);
  EXPECT_FALSE(small.LoadFromRegistry(key.c_str()));
  EXPECT_EQ(0, small.GetFileCount());

  // A shorter list saved over a longer one leaves no stale tail behind.
  again.SaveToRegistry();
  EXPECT_EQ(L"", std::wstring(Registry::GetStringAtt(HKEY_CURRENT_USER, (key + L"\\Item02").c_str(), ustr()).c_str()));
}

TEST_F(RecentFiles, MenuNumbersEntriesFromOneAndShowsEmptyWhenThereAreNone) {
  QnRecentFileListManager m;
  m.CreatePopupMenu(500);
  std::vector<QnMenuItem> items = m.GetMenuItems();
  ASSERT_EQ(1u, items.size());
  EXPECT_EQ(L"Empty", std::wstring(items[0].text.c_str()));
  EXPECT_TRUE(items[0].greyed);
  EXPECT_EQ(500, items[0].command);

  const std::wstring a = File("a.qdb"), b = File("b.qdb");
  m.SetLastUsed(a.c_str());
  m.SetLastUsed(b.c_str());
  items = m.GetMenuItems();
  ASSERT_EQ(2u, items.size());
  EXPECT_EQ(501, items[1].command);
  EXPECT_FALSE(items[1].greyed);
  const std::wstring second = items[1].text.c_str();
  EXPECT_EQ(L"2 ", second.substr(0, 2));
  EXPECT_LE(second.size(), 2u + 50u);
  EXPECT_EQ(a, std::wstring(m.SetLastUsed(501).c_str()));
  EXPECT_EQ(L"", std::wstring(m.SetLastUsed(502).c_str()));
}

TEST(RecentFilePaths, CompactionKeepsTheFileNameAndFitsFiftyCharacters) {
  using qt::recent_files::CompactPath;
  const ustr shortPath(L"C:\\Plant\\air.qdb");
  EXPECT_EQ(L"C:\\Plant\\air.qdb", std::wstring(CompactPath(shortPath, 50).c_str()));
  const ustr longPath(L"C:\\Projects\\Hospital North\\Building B\\Ventilation\\Storey 3\\ducts.qdb");
  const std::wstring c = CompactPath(longPath, 50).c_str();
  EXPECT_EQ(50u, c.size());
  EXPECT_EQ(L"C:\\Projects\\Hospital North\\Building B...\\ducts.qdb", c);
  const std::wstring name = CompactPath(ustr(L"C:\\a\\" + std::wstring(60, L'x')), 20).c_str();
  EXPECT_EQ(std::wstring(17, L'x') + L"...", name);
}

}  // namespace
