// The dialog texts on a real dialog, read back through the system.
// ctest: RESOURCE_LOCK desktop
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Lng.h"
#include "settings/lng_test_support.h"

namespace {

const int kLabel = 1001;

// A dialog with one static control, built in memory (DLGTEMPLATE followed
// by its item, each DWORD-aligned).
class Dialog {
 public:
  Dialog() {
    std::vector<WORD> t;
    auto dword = [&t](DWORD v) {
      t.push_back(LOWORD(v));
      t.push_back(HIWORD(v));
    };
    auto text = [&t](const wchar_t* s) {
      for (; *s; ++s) t.push_back(static_cast<WORD>(*s));
      t.push_back(0);
    };
    dword(WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_SETFONT);
    dword(0);
    t.push_back(1);  // items
    t.push_back(0); t.push_back(0); t.push_back(200); t.push_back(60);
    t.push_back(0);  // no menu
    t.push_back(0);  // default class
    text(L"Start");
    t.push_back(8);
    text(L"MS Shell Dlg");
    if (t.size() % 2) t.push_back(0);
    dword(WS_CHILD | WS_VISIBLE | SS_LEFT);
    dword(0);
    t.push_back(10); t.push_back(10); t.push_back(150); t.push_back(12);
    t.push_back(kLabel);
    t.push_back(0xFFFF);
    t.push_back(0x0082);  // static
    text(L"Label");
    t.push_back(0);  // no creation data
    window_ = CreateDialogIndirectParamW(GetModuleHandleW(nullptr), reinterpret_cast<LPCDLGTEMPLATEW>(t.data()), nullptr,
                                         Proc, 0);
  }
  ~Dialog() {
    if (window_) DestroyWindow(window_);
  }
  HWND get() const { return window_; }
  std::wstring title() const { return read(window_); }
  std::wstring label() const { return read(GetDlgItem(window_, kLabel)); }

 private:
  static INT_PTR CALLBACK Proc(HWND, UINT message, WPARAM, LPARAM) { return message == WM_INITDIALOG; }
  static std::wstring read(HWND w) {
    wchar_t buffer[256] = {0};
    GetWindowTextW(w, buffer, 256);
    return buffer;
  }
  HWND window_ = nullptr;
};

TEST(LngDialogWin, CaptionIconAndItemTextOnARealDialog) {
  lng_test::AppKey key;
  Dialog dialog;
  ASSERT_NE(dialog.get(), nullptr);
  // An icon set beforehand is cleared: the library has none to give.
  HICON icon = LoadIconW(nullptr, MAKEINTRESOURCEW(32512));
  SendMessageW(dialog.get(), WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(icon));
  ASSERT_NE(SendMessageW(dialog.get(), WM_GETICON, ICON_SMALL, 0), 0);

  Lng::setdlgheader(dialog.get(), L"Cables", Lng::APP_QNE);
  EXPECT_EQ(dialog.title(), L"Quillon-E - Cables");
  EXPECT_EQ(SendMessageW(dialog.get(), WM_GETICON, ICON_SMALL, 0), 0);

  Lng::setdlgitemtext(dialog.get(), kLabel, ustr(L"Name"), true);
  EXPECT_EQ(dialog.label(), L"Name:");
  gwrenamewindow(dialog.get(), L"", L"Plain");
  EXPECT_EQ(dialog.title(), L"Plain");
}

TEST(LngDialogWin, ControlIdsFromTheDialogsUserValue) {
  lng_test::AppKey key;
  key.set(L"Developer/ShowControlIDs", L"yesplease");
  Dialog dialog;
  ASSERT_NE(dialog.get(), nullptr);

  SetWindowLongPtrW(dialog.get(), DWLP_USER, 4711);
  Lng::setdlgheader(dialog.get(), L"Panels", Lng::APP_QNC);
  EXPECT_EQ(dialog.title(), L"Quillon - [4711]Panels");

  static const wchar_t kName[] = L"IDD_PANELS";
  SetWindowLongPtrW(dialog.get(), DWLP_USER, reinterpret_cast<LONG_PTR>(kName));
  Lng::setdlgheader(dialog.get(), L"Panels", Lng::APP_QNC);
  EXPECT_EQ(dialog.title(), L"Quillon - [IDD_PANELS]Panels");

  Lng::setdlgitemtext(Lng::APP_QNC, dialog.get(), kLabel, 1, L"Name", true);
  EXPECT_EQ(dialog.label(), L"Name: [1001]");
}

}  // namespace
