// The column manager over a grid's columns: registry and XML layouts,
// hidden columns and their widths, the header menu and the user's choices.
#include <gtest/gtest.h>

#include <string>

#include "QNListViewColumnManager.h"
#include "QnListView2.h"
#include "Registry.h"
#include "listview/column_layout.h"
#include "settings/reg_test_util.h"

namespace {

// Columns "A".."E" with widths 10, 20, .. and LParams 100, 200, ...
void AddColumns(QnListView2& grid, const std::vector<long long>& lParams) {
  for (long long lp : lParams) {
    grid.AddColumn(ustr(std::wstring(1, static_cast<wchar_t>(L'A' + lp / 100 - 1)).c_str()),
                   static_cast<int>(lp / 10), QnListView2::AlignDefault, lp);
  }
}

std::vector<int> Widths(QnListView2& grid) {
  std::vector<int> w;
  for (int c = 0; c < grid.GetColumnCount(); ++c) w.push_back(grid.GetColumnWidth(c));
  return w;
}

class ColumnLayout : public reg_test::AppKeyTest {
 protected:
  std::wstring Stored(const wchar_t* value) {
    return Registry::GetStringAtt(nullptr, (std::wstring(L"Grid\\") + value).c_str(), ustr(L"<none>")).c_str();
  }
};

TEST_F(ColumnLayout, RegistryRoundTripByIndexKeepsWidthsHiddenColumnsAndOrder) {
  QnListView2 grid;
  AddColumns(grid, {100, 200, 300, 400});
  QNListViewColumnManager* m = grid.GetColumnManager();
  ASSERT_NE(nullptr, m);
  grid.SetColumnWidth(2, 55);
  ASSERT_TRUE(grid.ShowHideColumn(1, false));
  EXPECT_EQ(0, grid.GetColumnWidth(1));
  EXPECT_FALSE(grid.IsColumnShown(1));
  ASSERT_TRUE(m->SetColumnOrderIndex(3, 0));
  ASSERT_TRUE(grid.SaveColumnsToRegistry(L"Grid"));  // distinct LParams: saved by LParam
  ASSERT_TRUE(m->SaveToRegistry(L"Grid"));           // and again by index

  // Hidden columns keep the width they had; the third field is the order.
  EXPECT_EQ(L"10|0|3", Stored(L"column0"));
  EXPECT_EQ(L"20|1|0", Stored(L"column1"));
  EXPECT_EQ(L"55|0|1", Stored(L"column2"));
  EXPECT_EQ(L"40|0|2", Stored(L"column3"));
  EXPECT_EQ(L"<none>", Stored(L"column4"));
  EXPECT_EQ(0, Registry::GetIntAtt(nullptr, L"Grid\\AutoSize", -1));

  QnListView2 again;
  AddColumns(again, {100, 200, 300, 400});
  QNListViewColumnManager* n = again.GetColumnManager();
  EXPECT_TRUE(n->LoadFromRegistry(L"Grid", true));
  EXPECT_EQ((std::vector<int>{10, 0, 55, 40}), Widths(again));
  EXPECT_TRUE(n->IsColumnHidden(1));
  EXPECT_EQ((std::vector<int>{3, 0, 1, 2}), n->GetColumnOrder());
  EXPECT_FALSE(n->ColumnsAreScaling());
  // Showing the hidden column brings its old width back.
  EXPECT_TRUE(again.ShowHideColumn(1, true));
  EXPECT_EQ(20, again.GetColumnWidth(1));
}

TEST_F(ColumnLayout, MissingOrUnreadableEntryStopsLoadingAndKeepsTheOrder) {
  QnListView2 grid;
  AddColumns(grid, {100, 200, 300});
  Registry::SetStringAtt(nullptr, L"Grid\\column0", L"70|0|2");
  Registry::SetStringAtt(nullptr, L"Grid\\column1", L"80|1|1");
  Registry::SetStringAtt(nullptr, L"Grid\\column2", L"90|0");  // two fields only
  QNListViewColumnManager* m = grid.GetColumnManager();
  EXPECT_FALSE(m->LoadFromRegistry(L"Grid", true));
  EXPECT_EQ((std::vector<int>{70, 0, 30}), Widths(grid));
  EXPECT_TRUE(m->IsColumnHidden(1));
  EXPECT_EQ((std::vector<int>{0, 1, 2}), m->GetColumnOrder());
  // AutoSize was absent: it reads as on.
  EXPECT_TRUE(m->ColumnsAreScaling());
}

TEST_F(ColumnLayout, LayoutSavedByLParamFitsAfterColumnsWereAddedAndMoved) {
  {
    QnListView2 v1;
    AddColumns(v1, {100, 200, 300});
    v1.SetColumnWidth(0, 11);
    v1.ShowHideColumn(2, false);
    v1.GetColumnManager()->SetColumnOrderIndex(1, 0);  // B A C
    ASSERT_TRUE(v1.SaveColumnsToRegistry(L"Grid"));
    EXPECT_EQ(L"20|0|200", Stored(L"column0"));
    EXPECT_EQ(L"30|1|300", Stored(L"column2"));
  }
  // The next version puts D first and C before A.
  QnListView2 v2;
  AddColumns(v2, {400, 300, 100, 200});
  ASSERT_TRUE(v2.LoadColumnsFromRegistry(L"Grid"));
  EXPECT_EQ((std::vector<int>{40, 0, 11, 20}), Widths(v2));
  EXPECT_TRUE(v2.GetColumnManager()->IsColumnHidden(1));
  // Saved order B A C by LParam, then the new column D.
  EXPECT_EQ((std::vector<int>{3, 2, 1, 0}), v2.GetColumnManager()->GetColumnOrder());
}

TEST_F(ColumnLayout, LayoutNamingARemovedColumnStopsThereAndLeavesTheOrder) {
  Registry::SetStringAtt(nullptr, L"Grid\\column0", L"12|0|300");
  Registry::SetStringAtt(nullptr, L"Grid\\column1", L"13|0|999");  // gone in this version
  Registry::SetStringAtt(nullptr, L"Grid\\column2", L"14|1|100");
  QnListView2 grid;
  AddColumns(grid, {100, 200, 300});
  QNListViewColumnManager* m = grid.GetColumnManager();
  EXPECT_FALSE(m->LoadFromRegistry(L"Grid", true, grid.GetColumnsLParams()));
  EXPECT_EQ((std::vector<int>{10, 20, 12}), Widths(grid));
  EXPECT_FALSE(m->IsColumnHidden(0));
  EXPECT_EQ((std::vector<int>{0, 1, 2}), m->GetColumnOrder());
}

TEST_F(ColumnLayout, HiddenColumnKeepsItsWidthThroughXmlAndBadXmlReportsTheReadersMessage) {
  QnListView2 grid;
  AddColumns(grid, {100, 200});
  QNListViewColumnManager* m = grid.GetColumnManager();
  m->ShowHideColumn(0, false);
  m->SetColumnOrderIndex(1, 0);
  const std::string xml = m->ToXml();
  EXPECT_NE(std::string::npos, xml.find("<ColumnData>")) << xml;
  EXPECT_NE(std::string::npos, xml.find("<Col0 width=\"10\" hidden=\"1\" order=\"1\"/>")) << xml;
  EXPECT_NE(std::string::npos, xml.find("<Col1 width=\"20\" hidden=\"0\" order=\"0\"/>")) << xml;

  QnListView2 other;
  AddColumns(other, {100, 200});
  QNListViewColumnManager* n = other.GetColumnManager();
  EXPECT_TRUE(n->FromXml(xml.c_str()));
  EXPECT_STREQ("", n->GetXmlError());
  EXPECT_TRUE(n->IsColumnHidden(0));
  EXPECT_EQ(10, n->RememberedWidth(0));
  EXPECT_EQ((std::vector<int>{1, 0}), n->GetColumnOrder());

  QnListView2 third;
  AddColumns(third, {100, 200});
  QNListViewColumnManager* t = third.GetColumnManager();
  EXPECT_FALSE(t->FromXml("<ColumnData><Col0 width=\"5\" hidden=\"0\" order=\"1\"/><Col1 width="));
  EXPECT_STRNE("", t->GetXmlError());
  EXPECT_EQ((std::vector<int>{10, 20}), Widths(third));  // nothing applied
  // A missing attribute stops the reading after the entries before it.
  EXPECT_FALSE(t->FromXml("<ColumnData><Col0 width=\"5\" hidden=\"0\" order=\"1\"/><Col1 width=\"6\"/></ColumnData>"));
  EXPECT_STREQ("XML_NO_ATTRIBUTE", t->GetXmlError());
  EXPECT_EQ((std::vector<int>{5, 20}), Widths(third));
  EXPECT_EQ((std::vector<int>{0, 1}), t->GetColumnOrder());
}

TEST(ColumnLayoutText, EntriesParseOnlyWithAllThreeFields) {
  qt::listview::LayoutEntry e;
  EXPECT_TRUE(qt::listview::ParseLayoutEntry(L"12|1|-7", &e));
  EXPECT_EQ(12, e.width);
  EXPECT_EQ(1, e.hidden);
  EXPECT_EQ(-7, e.third);
  EXPECT_FALSE(qt::listview::ParseLayoutEntry(L"12|1", &e));
  EXPECT_FALSE(qt::listview::ParseLayoutEntry(L"", &e));
  EXPECT_FALSE(qt::listview::ParseLayoutEntry(nullptr, &e));
  e.third = 5000000000LL;
  EXPECT_EQ(L"12|1|5000000000", std::wstring(qt::listview::FormatLayoutEntry(e).c_str()));
  // An order that would drop a column is not applied.
  std::vector<qt::listview::LayoutEntry> twice(2);
  EXPECT_FALSE(qt::listview::PlanByIndex(twice, 2, true).applyOrder);
}

TEST(ColumnScaling, ShownColumnsFillTheWidthInProportion) {
  using qt::listview::ScaledWidths;
  EXPECT_EQ((std::vector<int>{100, 0, 300}), ScaledWidths({10, 50, 30}, {true, false, true}, 400, 0));
  // The last shown column takes the rounding rest; none below the minimum.
  EXPECT_EQ((std::vector<int>{33, 33, 34}), ScaledWidths({1, 1, 1}, {true, true, true}, 100, 0));
  EXPECT_EQ((std::vector<int>{20, 80}), ScaledWidths({1, 99}, {true, true}, 100, 20));
  // Nothing shown or no width: unchanged.
  EXPECT_EQ((std::vector<int>{0, 0}), ScaledWidths({5, 6}, {false, false}, 100, 0));
}

// A presenter that answers as a user would and records what it was shown.
class ScriptedPresenter : public QnMenuPresenter {
 public:
  int answer = 0;
  std::vector<QnMenuItem> shown;
  std::vector<QnColumnChoice> seenChoices;
  bool confirm = true;
  int trackMenu(HWND, const std::vector<QnMenuItem>& items, POINT) override {
    shown = items;
    return answer;
  }
  bool chooseColumns(HWND, const wchar_t*, std::vector<QnColumnChoice>& choices) override {
    seenChoices = choices;
    for (QnColumnChoice& c : choices) {
      if (c.column == 0) c.shown = false;
      if (c.column == 2) c.width = 77;
    }
    return confirm;
  }
};

class HeaderMenu : public ::testing::Test {
 protected:
  void SetUp() override { previous_ = qn_set_menu_presenter(&presenter_); }
  void TearDown() override { qn_set_menu_presenter(previous_); }
  ScriptedPresenter presenter_;
  QnMenuPresenter* previous_ = nullptr;
};

TEST_F(HeaderMenu, OffersHideableColumnsSortedByNameAndGreysSizingWhileAutoSizing) {
  QnListView2 grid;
  grid.AddColumn(L"zeta", 10);
  grid.AddColumn(L"Alpha", 10);
  grid.AddColumn(L"fixed", 10);
  grid.AddColumn(L"beta", 10);
  grid.SetColumnHideable(2, false);
  QNListViewColumnManager* m = grid.GetColumnManager();
  m->ShowHideColumn(3, false);
  m->SetFlags(QNListViewColumnManager::SortMenuByName, QNListViewColumnManager::SortMenuByName);
  m->SetAutoScaling(true);

  const std::vector<QnMenuItem> items = m->BuildHeaderMenu(0);
  std::vector<std::wstring> texts;
  for (const QnMenuItem& i : items) texts.push_back(i.separator ? L"-" : i.text.c_str());
  EXPECT_EQ((std::vector<std::wstring>{L"Autosize columns", L"-", L"Size column to fit", L"Size all columns to fit", L"-",
                                       L"Alpha", L"beta", L"zeta", L"-", L"More..."}),
            texts);
  EXPECT_TRUE(items[0].checked);
  EXPECT_TRUE(items[2].greyed && items[3].greyed);
  EXPECT_EQ(2129 + 1, items[5].command);
  EXPECT_TRUE(items[5].checked);
  EXPECT_EQ(2129 + 3, items[6].command);
  EXPECT_FALSE(items[6].checked);  // hidden
  EXPECT_EQ(2127, items[9].command);

  m->SetAutoScaling(false);
  EXPECT_FALSE(m->BuildHeaderMenu(0)[2].greyed);
  m->SetAllowAutoScaling(false);
  EXPECT_EQ(L"Alpha", std::wstring(m->BuildHeaderMenu(0)[0].text.c_str()));
}

TEST_F(HeaderMenu, AtMostOneHundredAndOneColumnEntries) {
  QnListView2 grid;
  for (int i = 0; i < 120; ++i) grid.AddColumn(L"c", 5);
  const std::vector<QnMenuItem> items = grid.GetColumnManager()->BuildHeaderMenu(-1);
  int entries = 0;
  for (const QnMenuItem& i : items) entries += i.command >= 2129 && i.command <= 2229;
  EXPECT_EQ(101, entries);
}

TEST_F(HeaderMenu, ChosenCommandsToggleColumnsAndTheDialogAppliesChoices) {
  QnListView2 grid;
  AddColumns(grid, {100, 200, 300});
  QNListViewColumnManager* m = grid.GetColumnManager();
  presenter_.answer = 2129 + 1;
  EXPECT_EQ(2129 + 1, m->ShowHeaderMenu(POINT{5, 5}, 1));
  EXPECT_FALSE(presenter_.shown.empty());
  // The owner's OnCommand receives the column entry as 2129 with the number.
  EXPECT_TRUE(m->OnCommand(2129, 1));
  EXPECT_TRUE(m->IsColumnHidden(1));
  EXPECT_TRUE(m->OnCommand(2129, 1));
  EXPECT_FALSE(m->IsColumnHidden(1));
  EXPECT_EQ(20, grid.GetColumnWidth(1));

  EXPECT_TRUE(m->OnCommand(2127, 0));  // "More..."
  ASSERT_EQ(3u, presenter_.seenChoices.size());
  EXPECT_EQ(L"C", std::wstring(presenter_.seenChoices[2].name.c_str()));
  EXPECT_TRUE(m->IsColumnHidden(0));
  EXPECT_EQ(10, m->RememberedWidth(0));
  EXPECT_EQ(77, grid.GetColumnWidth(2));

  presenter_.confirm = false;
  m->ChooseColumns();
  EXPECT_EQ(77, grid.GetColumnWidth(2));  // cancelled: nothing changes
  EXPECT_TRUE(m->IsColumnHidden(0));
  EXPECT_FALSE(m->OnCommand(9999, 0));
}

long long g_messages[8];
long long CountMessages(QNListViewColumnManager::CbMsgId id, QNListViewColumnManager*) {
  ++g_messages[id];
  return id == QNListViewColumnManager::CbQueryHeaderMenu ? 1 : 0;
}

TEST_F(HeaderMenu, CallbackHearsChangesAndCanKeepTheMenuClosed) {
  std::fill(std::begin(g_messages), std::end(g_messages), 0);
  QnListView2 grid;
  AddColumns(grid, {100, 200});
  QNListViewColumnManager* m = grid.GetColumnManager();
  m->SetCallback(&CountMessages);
  presenter_.answer = 2126;
  EXPECT_EQ(0, m->ShowHeaderMenu(POINT{0, 0}, 0));
  EXPECT_TRUE(presenter_.shown.empty());
  m->ShowHideColumn(0, false);
  m->SetAutoScaling(true);
  m->FromXml("<ColumnData/>");
  EXPECT_EQ(1, g_messages[QNListViewColumnManager::CbColumnShownOrHidden]);
  EXPECT_EQ(1, g_messages[QNListViewColumnManager::CbAutoSizeChanged]);
  EXPECT_EQ(1, g_messages[QNListViewColumnManager::CbLayoutLoaded]);
  EXPECT_EQ(1, g_messages[QNListViewColumnManager::CbQueryHeaderMenu]);
}

}  // namespace
