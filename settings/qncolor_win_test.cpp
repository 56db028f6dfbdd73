// The color dialog and swatches, driven as a user would.
// ctest: RESOURCE_LOCK desktop
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "QnColor.h"
#include "settings/qncolor_resource.h"

namespace {

struct Seen {
  bool found = false;
  std::wstring label;
  std::wstring names;  // the name shown for each entry, '|' after each
};

// The visible "Select Color" dialog of this process: test programs running
// side by side under Wine share one desktop.
HWND FindOwnDialog() {
  HWND found = nullptr;
  for (HWND w = FindWindowW(L"#32770", L"Select Color"); w && !found;
       w = FindWindowExW(nullptr, w, L"#32770", L"Select Color")) {
    DWORD pid = 0;
    GetWindowThreadProcessId(w, &pid);
    if (pid == GetCurrentProcessId() && IsWindowVisible(w)) found = w;
  }
  return found;
}

// From another thread: waits for the dialog, types each entry into the
// number field and presses OK after it; cancels at the end if asked.
std::thread Drive(Seen* seen, std::vector<std::wstring> entries, bool cancelAtEnd) {
  return std::thread([seen, entries, cancelAtEnd] {
    HWND dialog = nullptr;
    for (int i = 0; i < 500 && !(dialog = FindOwnDialog()); ++i) Sleep(20);
    if (!dialog) return;
    seen->found = true;
    wchar_t text[128] = {0};
    GetDlgItemTextW(dialog, IDC_QNCOLOR_LABEL, text, 128);
    seen->label = text;
    for (const std::wstring& entry : entries) {
      SendDlgItemMessageW(dialog, IDC_QNCOLOR_NUMBER, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(entry.c_str()));
      text[0] = 0;
      GetDlgItemTextW(dialog, IDC_QNCOLOR_NAME, text, 128);
      seen->names += std::wstring(text) + L"|";
      SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
    }
    if (cancelAtEnd) SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
  });
}

TEST(QnColorDialog, TypedNumberIsReturned) {
  Seen seen;
  std::thread user = Drive(&seen, {L"42"}, false);
  const short chosen = QnColor::GetAcadColorIndexDlg(nullptr, 1);
  user.join();
  ASSERT_TRUE(seen.found);
  EXPECT_EQ(chosen, 42);
  EXPECT_EQ(seen.label, L"Selected AutoCAD color number");
  EXPECT_EQ(seen.names, L"Cad-42|");
}

TEST(QnColorDialog, StaysOpenOnNumbersThatAreNoColor) {
  Seen seen;
  // 999 and 300 are refused by OK; a name is taken.
  std::thread user = Drive(&seen, {L"999", L"300", L"Red"}, false);
  const short chosen = QnColor::GetAcadColorIndexDlg(nullptr, 7);
  user.join();
  ASSERT_TRUE(seen.found);
  EXPECT_EQ(chosen, 1);
  EXPECT_EQ(seen.names, L"||Red|");
}

TEST(QnColorDialog, CancelGivesMinusOne) {
  Seen seen;
  std::thread user = Drive(&seen, {L"abc"}, true);
  EXPECT_EQ(QnColor::GetAcadColorIndexDlg(nullptr, 3), -1);
  user.join();
  EXPECT_TRUE(seen.found);

  std::thread again = Drive(&seen, {}, true);
  EXPECT_EQ(QnColor::ChangeColorIndexDlg(nullptr, 300), -1);
  again.join();
}

TEST(QnColorDialog, ChangeAcceptsTheLogicalColors) {
  Seen seen;
  std::thread user = Drive(&seen, {L"By system"}, false);
  EXPECT_EQ(QnColor::ChangeColorIndexDlg(nullptr, 5), 300);
  user.join();
  EXPECT_EQ(seen.names, L"By system|");
}

// Pixels of a swatch drawn into a 32-bit bitmap.
class Canvas {
 public:
  Canvas() {
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = kWidth;
    info.bmiHeader.biHeight = -kHeight;  // top-down
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    dc_ = CreateCompatibleDC(nullptr);
    bitmap_ = CreateDIBSection(dc_, &info, DIB_RGB_COLORS, reinterpret_cast<void**>(&bits_), nullptr, 0);
    old_ = SelectObject(dc_, bitmap_);
    PatBlt(dc_, 0, 0, kWidth, kHeight, WHITENESS);
  }
  ~Canvas() {
    SelectObject(dc_, old_);
    DeleteObject(bitmap_);
    DeleteDC(dc_);
  }
  HDC dc() const { return dc_; }
  COLORREF at(int x, int y) {
    GdiFlush();
    const DWORD p = bits_[y * kWidth + x];
    return RGB((p >> 16) & 0xFF, (p >> 8) & 0xFF, p & 0xFF);
  }
  static const int kWidth = 100, kHeight = 20;

 private:
  HDC dc_;
  HBITMAP bitmap_;
  HGDIOBJ old_;
  DWORD* bits_ = nullptr;
};

TEST(QnColorSwatch, DrawsTheIndexColorWhereTheAlignmentSays) {
  const RECT cell = {0, 0, Canvas::kWidth, Canvas::kHeight};
  {
    Canvas c;
    QnColor::DrawItem(c.dc(), cell, 1, QnColor::AlignHCenter);
    EXPECT_EQ(c.at(50, 10), RGB(255, 0, 0));
    EXPECT_EQ(c.at(5, 10), RGB(255, 255, 255));
  }
  {
    Canvas c;
    QnColor::DrawItem(c.dc(), cell, 15, QnColor::AlignRight);
    EXPECT_EQ(c.at(90, 10), RGB(128, 64, 64));
    EXPECT_EQ(c.at(50, 10), RGB(255, 255, 255));
  }
  {
    Canvas c;
    // The text form keeps the swatch at the left whatever the alignment.
    QnColor::DrawItem(c.dc(), cell, 5, QnColor::AlignRight, L"Blue");
    EXPECT_EQ(c.at(10, 10), RGB(0, 0, 255));
  }
  {
    Canvas c;
    QnColor::DrawItem(c.dc(), cell, 256, QnColor::AlignLeft);  // clamped, not wrapped
    EXPECT_EQ(c.at(10, 10), RGB(255, 255, 255));
    QnColor::DrawItem(c.dc(), cell, 300, QnColor::AlignLeft);  // no RGB: a crossed frame
    EXPECT_EQ(c.at(10, 10), RGB(0, 0, 0));
  }
}

}  // namespace
