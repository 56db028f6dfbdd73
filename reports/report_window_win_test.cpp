// The report window as a user meets it: opened modal, driven through its
// buttons and menu, closed, with its place kept in the settings.
// ctest: RESOURCE_LOCK desktop
#include <gtest/gtest.h>

#include <windows.h>
#include <commctrl.h>

#include <string>
#include <vector>

#include "QnListView2.h"
#include "Registry.h"
#include "SimpleReport.h"
#include "clipboard_recorder.h"
#include "qn_clipboard.h"
#include "reports/report_resource.h"
#include "screenshot_win.h"
#include "settings/reg_test_util.h"

namespace {

typedef SimpleReport::CellData Cell;
typedef SimpleReport::ColumnData Column;

std::wstring TextOf(HWND window) {
  wchar_t buffer[256] = {0};
  GetWindowTextW(window, buffer, 256);
  return buffer;
}

std::wstring MenuItemText(HMENU menu, UINT position) {
  wchar_t buffer[128] = {0};
  GetMenuStringW(menu, position, buffer, 128, MF_BYPOSITION);
  return buffer;
}

void Click(HWND dialog, int id) {
  // What a mouse click on the button ends in.
  SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
}

// Runs the test's steps once the window is up and shown, then closes it as
// the window menu does; whatever the steps find is kept for the test.
class Driver : public SimpleReport::Callback {
 public:
  void OnInitDialog(SimpleReportOuputDlg& dialog) override {
    ++inits;
    current = this;
    this->dialog = &dialog;
    SetTimer(dialog.GetHwnd(), 1, 50, &Driver::Tick);
  }
  void OnClose(SimpleReportOuputDlg&) override { ++closes; }

  static void CALLBACK Tick(HWND window, UINT, UINT_PTR id, DWORD) {
    KillTimer(window, id);
    Driver* self = current;
    self->steps(window, *self->dialog);
    PostMessageW(window, WM_SYSCOMMAND, SC_CLOSE, 0);
  }

  static Driver* current;
  SimpleReportOuputDlg* dialog = nullptr;
  void (*steps)(HWND window, SimpleReportOuputDlg& dialog) = nullptr;
  int inits = 0;
  int closes = 0;
};
Driver* Driver::current = nullptr;

void FillSample(SimpleReport* report) {
  report->SetTitle(L"Duct sizes");
  report->AddColumn(Column(L"Room", 90));
  report->AddColumn(Column(L"Air flow", 70, L"l/s"));
  report->AddColumn(Column(L"Velocity", 70, L"m/s"));
  const wchar_t* rooms[] = {L"Office 101", L"Meeting room\nnorth", L"Corridor", L"Stores"};
  for (int i = 0; i < 4; ++i) {
    SimpleReport::RowData row;
    row.cells.push_back(Cell::Text(rooms[i]));
    row.cells.push_back(Cell::Integer(120 + 35 * i));
    row.cells.push_back(i == 2 ? Cell::EmptyNumber() : Cell::Double(2.5 + i * 0.75, 2));
    report->AddRow(row);
  }
}

class ReportWindowWin : public reg_test::AppKeyTest {};

struct Seen {
  std::wstring title, fileMenu, editMenu, saveText, saveExcel, exitItem, copyItem;
  std::wstring copyButton, zoomLabel, applyButton, closeButton, zoomField;
  int zoomAfterApply = 0, zoomAfterBadValue = 0;
  bool visible = false;
  int listColumns = 0;
} g_seen;

TEST_F(ReportWindowWin, TextsMenuZoomAndCopyAsTheUserSeesThem) {
  qt_test::ClipboardRecorder clipboard;
  SimpleReport report;
  FillSample(&report);
  Driver driver;
  g_seen = Seen();
  driver.steps = [](HWND window, SimpleReportOuputDlg& dialog) {
    g_seen.visible = IsWindowVisible(window) != FALSE;
    g_seen.title = TextOf(window);
    HMENU bar = GetMenu(window);
    g_seen.fileMenu = MenuItemText(bar, 0);
    g_seen.editMenu = MenuItemText(bar, 1);
    HMENU file = GetSubMenu(bar, 0);
    g_seen.saveText = MenuItemText(file, 0);
    g_seen.saveExcel = MenuItemText(file, 1);
    g_seen.exitItem = MenuItemText(file, 3);
    g_seen.copyItem = MenuItemText(GetSubMenu(bar, 1), 0);
    g_seen.copyButton = TextOf(GetDlgItem(window, IDC_REPORT_COPY));
    g_seen.zoomLabel = TextOf(GetDlgItem(window, IDC_REPORT_ZOOM_LABEL));
    g_seen.applyButton = TextOf(GetDlgItem(window, IDC_REPORT_ZOOM_APPLY));
    g_seen.closeButton = TextOf(GetDlgItem(window, IDCANCEL));
    g_seen.zoomField = TextOf(GetDlgItem(window, IDC_REPORT_ZOOM));
    g_seen.listColumns = Header_GetItemCount(ListView_GetHeader(GetDlgItem(window, IDC_REPORT_LIST)));
    SetDlgItemTextW(window, IDC_REPORT_ZOOM, L"175");
    Click(window, IDC_REPORT_ZOOM_APPLY);
    g_seen.zoomAfterApply = dialog.GetZoom();
    SetDlgItemTextW(window, IDC_REPORT_ZOOM, L"20");
    Click(window, IDC_REPORT_ZOOM_APPLY);
    g_seen.zoomAfterBadValue = dialog.GetZoom();
    // The Edit menu's item, as a menu choice arrives.
    SendMessageW(window, WM_COMMAND, MAKEWPARAM(SimpleReportOuputDlg::CmdCopy, 0), 0);
  };
  ASSERT_TRUE(report.Create(nullptr, &driver));
  EXPECT_EQ(1, driver.inits);
  EXPECT_EQ(1, driver.closes);
  EXPECT_TRUE(g_seen.visible);
  EXPECT_EQ(L"Report", g_seen.title);
  EXPECT_EQ(L"&File", g_seen.fileMenu);
  EXPECT_EQ(L"&Edit", g_seen.editMenu);
  EXPECT_EQ(L"Save to text file...", g_seen.saveText);
  EXPECT_EQ(L"Save to Excel file...", g_seen.saveExcel);
  EXPECT_EQ(L"&Exit", g_seen.exitItem);
  EXPECT_EQ(L"&Copy to clipboard", g_seen.copyItem);
  EXPECT_EQ(L"Copy to clipboard", g_seen.copyButton);
  EXPECT_EQ(L"Zoom", g_seen.zoomLabel);
  EXPECT_EQ(L"Apply", g_seen.applyButton);
  EXPECT_EQ(L"Close", g_seen.closeButton);
  EXPECT_EQ(L"100", g_seen.zoomField);
  EXPECT_EQ(3, g_seen.listColumns);
  EXPECT_EQ(175, g_seen.zoomAfterApply);
  EXPECT_EQ(175, g_seen.zoomAfterBadValue) << "a zoom out of range is refused";
  EXPECT_EQ(0u, clipboard.text.find(L"Duct sizes\r\nRoom\tAir flow l/s\tVelocity m/s\r\nOffice 101\t120\t2.50\r\n"))
      << "the clipboard has the text file's lines";

  RECT rect;
  int show = 0;
  EXPECT_TRUE(Reg_GetWindowPos(nullptr, L"Window/ReportOutputDialog", nullptr, &rect, &show, false))
      << "the window keeps its place";
}

TEST_F(ReportWindowWin, PlaceIsRestoredWhenOpenedAgain) {
  SimpleReport report;
  FillSample(&report);
  Driver driver;
  static RECT moved;
  driver.steps = [](HWND window, SimpleReportOuputDlg&) {
    SetWindowPos(window, nullptr, 40, 50, 700, 420, SWP_NOZORDER);
    GetWindowRect(window, &moved);
  };
  ASSERT_TRUE(report.Create(nullptr, &driver));
  static RECT reopened;
  driver.steps = [](HWND window, SimpleReportOuputDlg&) { GetWindowRect(window, &reopened); };
  ASSERT_TRUE(report.Create(nullptr, &driver));
  EXPECT_EQ(moved.left, reopened.left);
  EXPECT_EQ(moved.top, reopened.top);
  EXPECT_EQ(moved.right - moved.left, reopened.right - reopened.left);
  EXPECT_EQ(moved.bottom - moved.top, reopened.bottom - reopened.top);
}

TEST_F(ReportWindowWin, ScreenshotMultilineHeaderZoomed) {
  SimpleReport report;
  FillSample(&report);
  Driver driver;
  static bool saved;
  static int zoom;
  saved = false;
  driver.steps = [](HWND window, SimpleReportOuputDlg& dialog) {
    dialog.SetZoom(150);
    zoom = dialog.GetZoom();
    UpdateWindow(window);
    RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
    if (qt_test::ScreenshotsWanted()) saved = qt_test::SaveWindowScreenshot(window, "report_window_multiline_header_zoomed", 8);
  };
  ASSERT_TRUE(report.Create(nullptr, &driver));
  EXPECT_EQ(150, zoom);
  if (qt_test::ScreenshotsWanted()) {
    EXPECT_TRUE(saved);
  }
}

}  // namespace
