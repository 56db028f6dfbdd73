#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Lng.h"
#include "qn_window_presenter.h"
#include "settings/lng_test_support.h"

namespace {

class RecordingWindows : public QnWindowPresenter {
 public:
  RecordingWindows() { previous_ = qn_set_window_presenter(this); }
  ~RecordingWindows() override { qn_set_window_presenter(previous_); }

  void setSmallIcon(HWND window, HICON icon) override {
    calls.push_back("icon");
    iconSet = true;
    lastIcon = icon;
  }
  void setWindowText(HWND window, const wchar_t* text) override {
    calls.push_back("title");
    title = text;
  }
  void setDialogItemText(HWND dialog, int controlId, const wchar_t* text) override {
    calls.push_back("item " + std::to_string(controlId));
    item = text;
  }
  LONG_PTR dialogUserValue(HWND) override { return userValue; }

  std::vector<std::string> calls;
  std::wstring title, item;
  bool iconSet = false;
  HICON lastIcon = reinterpret_cast<HICON>(1);
  LONG_PTR userValue = 0;

 private:
  QnWindowPresenter* previous_;
};

HWND const kWindow = reinterpret_cast<HWND>(0x1000);

TEST(LngDialog, MakeDlgHeaderJoinsOnlyNonEmptyParts) {
  qt_lng_reset();
  EXPECT_EQ(Lng::makeDlgHeader(Lng::APP_QNE, 10, L"Cables", Lng::APP_QNE), L"Quillon-E - Cables");
  EXPECT_EQ(Lng::makeDlgHeader(Lng::APP_QNE, 10, L"", Lng::APP_QNE), L"Quillon-E");
  EXPECT_EQ(Lng::makeDlgHeader(Lng::APP_QNE, 10, L"Cables", static_cast<Lng::AppID>(55)), L"Cables");
}

TEST(LngDialog, RenameWindowBuildsTheTitle) {
  RecordingWindows w;
  gwrenamewindow(kWindow, L"Quillon-R", L"Rooms");
  EXPECT_EQ(w.title, L"Quillon-R - Rooms");
  gwrenamewindow(kWindow, L"Quillon-R", L"");
  EXPECT_EQ(w.title, L"Quillon-R");
  gwrenamewindow(kWindow, L"Quillon-R", nullptr);
  EXPECT_EQ(w.title, L"Quillon-R");
  gwrenamewindow(kWindow, L"", L"Rooms");
  EXPECT_EQ(w.title, L"Rooms");
  gwrenamewindow(kWindow, nullptr, nullptr);
  EXPECT_EQ(w.title, L"");
}

TEST(LngDialog, HeaderSetsIconAndCaption) {
  lng_test::AppKey key;
  RecordingWindows w;
  Lng::setdlgheader(kWindow, L"Cables", Lng::APP_QNE);
  EXPECT_EQ(w.calls, (std::vector<std::string>{"icon", "title"}));
  EXPECT_TRUE(w.iconSet);
  EXPECT_EQ(w.lastIcon, nullptr);  // the library has no icon of its own: cleared
  EXPECT_EQ(w.title, L"Quillon-E - Cables");

  // The common module's dialogs carry the suite's name, not their short name.
  Lng::setdlgheader(kWindow, L"Settings", Lng::APP_QNC);
  EXPECT_EQ(w.title, L"Quillon - Settings");
  Lng::setdlgheader(Lng::APP_QNE, kWindow, 77, L"Panels", Lng::APP_QNR);
  EXPECT_EQ(w.title, L"Quillon-R - Panels");
}

TEST(LngDialog, ShowControlIdsMarksCaptionsAndItems) {
  lng_test::AppKey key;
  RecordingWindows w;
  key.set(L"Developer/ShowControlIDs", L"yesplease");

  w.userValue = 1234;
  Lng::setdlgheader(kWindow, L"Cables", Lng::APP_QNE);
  EXPECT_EQ(w.title, L"Quillon-E - [1234]Cables");
  w.userValue = 65535;
  Lng::setdlgheader(kWindow, L"Cables", Lng::APP_QNE);
  EXPECT_EQ(w.title, L"Quillon-E - [65535]Cables");
  // Above that the value is the address of the dialog's name.
  static const wchar_t kName[] = L"IDD_CABLES";
  w.userValue = reinterpret_cast<LONG_PTR>(kName);
  Lng::setdlgheader(kWindow, L"Cables", Lng::APP_QNE);
  EXPECT_EQ(w.title, L"Quillon-E - [IDD_CABLES]Cables");
  Lng::setdlgheader(kWindow, L"", Lng::APP_QNE);  // nothing to mark
  EXPECT_EQ(w.title, L"Quillon-E");

  Lng::setdlgitemtext(kWindow, 1001, ustr(L"Name"), true);
  EXPECT_EQ(w.item, L"Name: [1001]");
  Lng::setdlgitemtext(kWindow, 1001, ustr(L"Name:"), true);
  EXPECT_EQ(w.item, L"Name: [1001]");
  Lng::setdlgitemtext(kWindow, 1001, ustr(L"Name"), false);
  EXPECT_EQ(w.item, L"Name [1001]");
  Lng::setdlgitemtext(kWindow, 1001, ustr(L""), true);
  EXPECT_EQ(w.item, L"");
  EXPECT_EQ(w.calls.back(), "item 1001");

  key.set(L"Developer/ShowControlIDs", L"yesPlease");
  w.userValue = 1234;
  Lng::setdlgheader(kWindow, L"Cables", Lng::APP_QNE);
  EXPECT_EQ(w.title, L"Quillon-E - Cables");
  Lng::setdlgitemtext(kWindow, 1001, ustr(L"Name"), true);
  EXPECT_EQ(w.item, L"Name:");
}

TEST(LngDialog, ItemTextsFromTheLanguageFiles) {
  lng_test::AppKey key;
  lng_test::LanguageFolder folder;
  ASSERT_TRUE(folder.write("QNCommon.qlg", "qlg 1\nmodule QNC\ntext 5\n\t1513 \"Breite\"\n"));
  Lng::init(1513);
  RecordingWindows w;
  Lng::setdlgitemtext(Lng::APP_QNC, kWindow, 2002, 5, L"Width", true);
  EXPECT_EQ(w.item, L"Breite:");
  Lng::setdlgitemtext(Lng::APP_QNC, kWindow, 2002, 6, L"Height", false);
  EXPECT_EQ(w.item, L"Height");

  // Both switches: the string id comes first, the control id last.
  key.set(L"Developer/ShowStringIDs", L"yesplease");
  key.set(L"Developer/ShowControlIDs", L"yesplease");
  Lng::setdlgitemtext(Lng::APP_QNC, kWindow, 2002, 5, L"Width", true);
  EXPECT_EQ(w.item, L"5>Breite: [2002]");
}

}  // namespace
