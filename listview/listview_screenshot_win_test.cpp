// The grid as a person sees it: each test paints one situation, checks
// what reached the screen (pixels, windows), and when screenshots are
// wanted saves a picture named after what it shows.
// ctest: RESOURCE_LOCK desktop
#include <gtest/gtest.h>

#include "listview/listview_win_test_support.h"
#include "testsupport/screenshot_win.h"

namespace {

using qt_test::GridHost;

COLORREF PixelAt(HWND window, int x, int y) {
  HDC dc = GetDC(window);
  const COLORREF color = GetPixel(dc, x, y);
  ReleaseDC(window, dc);
  return color;
}

// How many pixels of the rectangle have exactly this colour.
int CountColor(HWND window, const RECT& r, COLORREF color) {
  HDC dc = GetDC(window);
  int n = 0;
  for (int y = r.top; y < r.bottom; ++y)
    for (int x = r.left; x < r.right; ++x)
      if (GetPixel(dc, x, y) == color) ++n;
  ReleaseDC(window, dc);
  return n;
}

int g_drawCalls = 0;
bool DrawStripes(const DRAWITEMSTRUCT* item, int, const wchar_t*, long long lParam) {
  ++g_drawCalls;
  HBRUSH brush = CreateSolidBrush(static_cast<COLORREF>(lParam));
  RECT r = item->rcItem;
  for (int x = r.left; x < r.right; x += 8) {
    RECT stripe{x, r.top + 2, x + 4, r.bottom - 2};
    FillRect(item->hDC, &stripe, brush);
  }
  DeleteObject(brush);
  return true;
}

void Save(HWND window, const char* name, int margin = 0) {
  if (qt_test::ScreenshotsWanted()) {
    EXPECT_TRUE(qt_test::SaveWindowScreenshot(window, name, margin));
  }
}

class GridScreenshot : public ::testing::Test {
 protected:
  void Show() {
    host.reset(new GridHost(view, 560, 340));
    ASSERT_TRUE(host->Attach());
    host->Settle();
  }
  void TearDown() override { host.reset(); }
  QnListView2 view;
  std::unique_ptr<GridHost> host;
};

TEST_F(GridScreenshot, ScreenshotOfEveryCellKind) {
  view.SetStyle(QnListView2::GridLines | QnListView2::FullRowSelect, -1);
  view.SetRowHeight(22);
  view.AddColumn(L"Kind", 120);
  view.AddColumn(L"Value", 170);
  view.AddColumn(L"Note", 200);
  HDC screen = GetDC(nullptr);
  HBITMAP bitmap = CreateCompatibleBitmap(screen, 16, 16);
  ReleaseDC(nullptr, screen);
  {
    HDC dc = CreateCompatibleDC(nullptr);
    HGDIOBJ old = SelectObject(dc, bitmap);
    RECT all{0, 0, 16, 16};
    HBRUSH green = CreateSolidBrush(RGB(0, 160, 0));
    FillRect(dc, &all, green);
    DeleteObject(green);
    SelectObject(dc, old);
    DeleteDC(dc);
  }
  struct Row {
    const wchar_t* kind;
  } rows[] = {{L"Text"}, {L"Integer"}, {L"Unsigned"}, {L"Double, 3 decimals"}, {L"Float"}, {L"Colour index"},
              {L"Check box"}, {L"Bitmap"}, {L"Command button"}, {L"Span of two"}, {L"Own drawing"}, {L"Border"}};
  for (const Row& r : rows) view.SetCell(view.AddRow(), 0, ustr(r.kind));
  view.SetCell(0, 1, ustr(L"Supply duct"));
  view.SetCell(1, 1, -42);
  view.SetCell(2, 1, 4000000000u);
  view.SetCell(3, 1, 3.14159, 3);
  view.SetCell(4, 1, 0.5f, 1);
  view.SetCell(5, 1, QnListView2::ColorIndex(1));
  view.SetCellCheck(6, 1, QnListView2::Checked);
  view.SetCell(6, 1, ustr(L"checked"));
  view.SetCellBitmap(7, 1, bitmap);
  view.SetCell(7, 1, ustr(L"with a picture"));
  view.SetCellCommand(8, 1, 600, nullptr);
  view.SetCell(8, 1, ustr(L"Press"));
  view.SetCell(9, 1, ustr(L"this text runs over the Note column"));
  view.SetCellColSpan(9, 1, 2);
  view.SetCellDrawFunction(10, 1, DrawStripes);
  view.SetCellLParam(10, 1, RGB(200, 0, 200));
  QnListView2::CellBorder border;
  border.color = RGB(255, 0, 0);
  border.left = border.top = border.right = border.bottom = true;
  view.SetCellBorder(11, 1, border);
  view.SetCell(11, 1, ustr(L"framed"));
  view.SetCellAlignment(11, 1, QnListView2::AlignHCenter | QnListView2::AlignVCenter);
  g_drawCalls = 0;
  Show();

  EXPECT_EQ(12, host->ItemCount());
  EXPECT_GT(g_drawCalls, 0) << "the cell's own drawing ran";
  EXPECT_GT(CountColor(host->list, host->CellRect(10, 1), RGB(200, 0, 200)), 20);
  EXPECT_GT(CountColor(host->list, host->CellRect(5, 1), RGB(255, 0, 0)), 20) << "the red swatch";
  EXPECT_GT(CountColor(host->list, host->CellRect(7, 1), RGB(0, 160, 0)), 100) << "the bitmap";
  const RECT framed = host->CellRect(11, 1);
  EXPECT_GT(CountColor(host->list, framed, RGB(255, 0, 0)), 2 * (framed.right - framed.left) - 10) << "the frame";
  // The span's text reaches into the third column.
  const COLORREF text = GetSysColor(COLOR_WINDOWTEXT);
  EXPECT_GT(CountColor(host->list, host->CellRect(9, 2), text), 5);
  EXPECT_EQ(0, CountColor(host->list, host->CellRect(8, 2), text)) << "an empty cell stays empty";
  Save(host->window, "grid_every_cell_kind");
  host.reset();
  DeleteObject(bitmap);
}

TEST_F(GridScreenshot, ScreenshotOfATreeWithLines) {
  view.SetStyle(QnListView2::DrawTreeLines, -1);
  view.AddColumn(L"Part", 220);
  view.AddColumn(L"Count", 80, QnListView2::AlignRight);
  const int building = view.AddRow(1);
  view.SetCell(building, 0, ustr(L"Building"));
  const int floor1 = view.AddRow(2, building);
  view.SetCell(floor1, 0, ustr(L"Floor 1"));
  const int room = view.AddRow(3, floor1);
  view.SetCell(room, 0, ustr(L"Room 101"));
  view.SetCell(room, 1, 4);
  const int room2 = view.AddRow(4, floor1);
  view.SetCell(room2, 0, ustr(L"Room 102"));
  view.SetCell(room2, 1, 2);
  const int floor2 = view.AddRow(5, building);
  view.SetCell(floor2, 0, ustr(L"Floor 2 (collapsed)"));
  const int hidden = view.AddRow(6, floor2);
  view.SetCell(hidden, 0, ustr(L"Room 201"));
  view.SetCollapsed(floor2, true);
  const int annex = view.AddRow(7);
  view.SetCell(annex, 0, ustr(L"Annex"));
  Show();

  EXPECT_EQ(6, host->ItemCount()) << "the collapsed floor's room is not listed";
  const COLORREF line = GetSysColor(COLOR_GRAYTEXT);
  const RECT roomCell = host->CellRect(2, 0);
  const RECT indent{roomCell.left, roomCell.top, roomCell.left + 40, roomCell.bottom};
  const int dots = CountColor(host->list, indent, line);
  EXPECT_GT(dots, 4);
  Save(host->window, "tree_collapsed_and_expanded_with_lines");

  view.SetStyle(0, QnListView2::DrawTreeLines);
  view.Redraw();
  host->Settle();
  EXPECT_LT(CountColor(host->list, indent, line), dots) << "no lines without the style";
}

TEST_F(GridScreenshot, ScreenshotOfColouredRowsAndColumns) {
  view.AddColumn(L"Name", 140);
  view.AddColumn(L"Plain", 100);
  view.AddColumn(L"Blue column", 120);
  for (int r = 0; r < 5; ++r) {
    view.AddRow(r);
    view.SetCell(r, 0, ustr(L"Row"));
    view.SetCell(r, 1, r);
    view.SetCell(r, 2, r * 10);
  }
  const COLORREF blue = RGB(200, 220, 255), yellow = RGB(255, 245, 180), red = RGB(255, 190, 190);
  view.SetColumnBackgroundColor(2, blue);
  view.SetRowBackgroundColor(1, yellow);
  view.SetRowBackgroundColor(3, yellow);
  view.SetRowForegroundColor(3, RGB(160, 0, 0));
  view.SetCellBackgroundColor(3, 2, red);
  Show();

  auto inside = [&](int item, int column) {
    const RECT r = host->CellRect(item, column);
    return PixelAt(host->list, r.left + 3, r.top + 2);
  };
  EXPECT_EQ(blue, inside(0, 2));
  EXPECT_EQ(yellow, inside(1, 0));
  EXPECT_EQ(yellow, inside(1, 2)) << "the row's colour goes over the column's";
  EXPECT_EQ(red, inside(3, 2)) << "the cell's over the row's";
  EXPECT_EQ(GetSysColor(COLOR_WINDOW), inside(0, 1));
  EXPECT_GT(CountColor(host->list, host->CellRect(3, 0), RGB(160, 0, 0)), 5) << "the row's text colour";
  Save(host->window, "grid_coloured_rows_and_columns");
}

TEST_F(GridScreenshot, ScreenshotOfACheckColumn) {
  view.AddColumn(L"Layer", 160);
  view.AddColumn(L"Shown", 70, QnListView2::AlignHCenter);
  view.AddColumn(L"Colour", 120);
  const wchar_t* names[] = {L"Walls", L"Doors", L"Windows", L"Ducts"};
  for (int r = 0; r < 4; ++r) {
    view.AddRow(r);
    view.SetCell(r, 0, ustr(names[r]));
    view.SetCellCheck(r, 1, r % 2 ? QnListView2::Unchecked : QnListView2::Checked);
    view.SetCell(r, 2, QnListView2::ColorIndex(static_cast<short>(r + 1)));
  }
  view.SetCellCheck(3, 1, QnListView2::CheckMixed);
  Show();

  auto ink = [&](int item) {
    const RECT box = host->CellRect(item, 1);
    return CountColor(host->list, box, GetSysColor(COLOR_WINDOWTEXT)) +
           CountColor(host->list, box, GetSysColor(COLOR_GRAYTEXT));
  };
  EXPECT_GT(ink(0), ink(1)) << "a checked box carries its mark";
  EXPECT_GT(ink(3), ink(1)) << "the mixed state is filled";
  // A click on the box in the middle of the cell toggles it.
  qt_test::ClickAt(host->list, qt_test::CenterOf(host->CellRect(1, 1)));
  EXPECT_EQ(QnListView2::Checked, view.GetCellCheck(1, 1));
  qt_test::ClickAt(host->list, qt_test::CenterOf(host->CellRect(0, 1)));
  EXPECT_EQ(QnListView2::Unchecked, view.GetCellCheck(0, 1));
  host->Settle();
  EXPECT_GT(ink(1), ink(0)) << "the picture follows the clicks";
  Save(host->window, "grid_check_column");
}

TEST_F(GridScreenshot, ScreenshotOfCategoryRows) {
  view.AddColumn(L"Item", 160);
  view.AddColumn(L"Amount", 90, QnListView2::AlignRight);
  view.AddColumn(L"Unit", 70);
  view.AddCategoryRow(0, 0, L"Supply air");
  for (int r = 0; r < 2; ++r) {
    const int row = view.AddRow(r + 1);
    view.SetCell(row, 0, ustr(r ? L"Duct 200" : L"Duct 160"));
    view.SetCell(row, 1, 12.5 * (r + 1), 1);
    view.SetCell(row, 2, ustr(L"m"));
  }
  view.AddCategoryRow(0, 0, L"Exhaust air, a category text longer than its first column");
  const int row = view.AddRow(9);
  view.SetCell(row, 0, ustr(L"Grille"));
  view.SetCell(row, 1, 4);
  view.SetCell(row, 2, ustr(L"pcs"));
  Show();

  ASSERT_TRUE(view.IsCategoryRow(3));
  const RECT last = host->CellRect(3, 2);
  EXPECT_EQ(GetSysColor(COLOR_BTNFACE), PixelAt(host->list, last.right - 3, last.top + 2))
      << "the category row is shaded across the row";
  const COLORREF text = GetSysColor(COLOR_BTNTEXT);
  EXPECT_GT(CountColor(host->list, host->CellRect(3, 1), text), 5) << "its text runs across the columns";
  EXPECT_EQ(GetSysColor(COLOR_WINDOW), PixelAt(host->list, last.right - 3, host->CellRect(4, 2).top + 2));
  Save(host->window, "grid_category_rows");
}

}  // namespace
