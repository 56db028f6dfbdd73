// Without a component library: open finds no class, and every other
// operation stops at its first automation call with one message.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "MsExcel.h"
#include "message_recorder.h"
#include "reports/msexcel_platform.h"

typedef qt_test::MessageRecorder Recorder;

TEST(MsExcelWithoutComponents, OpenFindsNoClassAndShowsNothing) {
  Recorder recorder;
  MsExcel excel;
  EXPECT_EQ(-1, excel.open(false, nullptr, false));
  EXPECT_EQ(-1, excel.open(true, L"plant.xls", true));
  EXPECT_FALSE(excel.isRunning());
  EXPECT_TRUE(recorder.boxes.empty());
}

TEST(MsExcelWithoutComponents, EveryOperationFailsWithOneNullObjectMessage) {
  MsExcel excel;
  ASSERT_EQ(-1, excel.open(false, nullptr, false));
  VARIANT v;
  v.vt = VT_I4;
  v.lVal = 5;
  int i = 7;
  double d = 2.5;
  ustr text(L"kept");
  // Each lambda is one call; it must fail and show exactly one box.
  const std::vector<std::pair<const char*, bool (*)(MsExcel&, VARIANT&, int&, double&, ustr&)>> calls = {
      {"activate", [](MsExcel& e, VARIANT&, int&, double&, ustr&) { return e.activate() < 0; }},
      {"makeVisible", [](MsExcel& e, VARIANT&, int&, double&, ustr&) { return e.makeVisible(true) < 0; }},
      {"getDisplayAlerts", [](MsExcel& e, VARIANT&, int&, double&, ustr&) { return !e.getDisplayAlerts(); }},
      {"setDisplayAlerts", [](MsExcel& e, VARIANT&, int&, double&, ustr&) { return !e.setDisplayAlerts(false); }},
      {"getCell variant", [](MsExcel& e, VARIANT& v, int&, double&, ustr&) { return !e.getCell(1, 1, v); }},
      {"getCell int", [](MsExcel& e, VARIANT&, int& i, double&, ustr&) { return !e.getCell(1, 1, i); }},
      {"getCell double", [](MsExcel& e, VARIANT&, int&, double& d, ustr&) { return !e.getCell(1, 1, d); }},
      {"getCell text", [](MsExcel& e, VARIANT&, int&, double&, ustr& t) { return !e.getCell(1, 1, t); }},
      {"setCell variant", [](MsExcel& e, VARIANT& v, int&, double&, ustr&) { return !e.setCell(1, 1, v); }},
      {"setCell int", [](MsExcel& e, VARIANT&, int&, double&, ustr&) { return !e.setCell(1, 1, 3); }},
      {"setCell double", [](MsExcel& e, VARIANT&, int&, double&, ustr&) { return !e.setCell(1, 1, 3.5); }},
      {"setCell text", [](MsExcel& e, VARIANT&, int&, double&, ustr&) { return !e.setCell(1, 1, L"x"); }},
      {"getCellComment", [](MsExcel& e, VARIANT&, int&, double&, ustr& t) { return !e.getCellComment(1, 1, t); }},
      {"setCellComment",
       [](MsExcel& e, VARIANT&, int&, double&, ustr&) { return !e.setCellComment(1, 1, L"note", L"Ann"); }},
      {"setCellComment no author",
       [](MsExcel& e, VARIANT&, int&, double&, ustr&) { return !e.setCellComment(1, 1, L"note", nullptr); }},
      {"getComment", [](MsExcel& e, VARIANT&, int&, double&, ustr&) { return !e.getComment(1, 1, true); }},
      {"makeCellRange rc", [](MsExcel& e, VARIANT&, int&, double&, ustr&) { return !e.makeCellRange(2, 3); }},
      {"makeCellRange text", [](MsExcel& e, VARIANT&, int&, double&, ustr&) { return !e.makeCellRange(L"A1:B2"); }},
      {"saveWorkbook as", [](MsExcel& e, VARIANT&, int&, double&, ustr&) { return !e.saveWorkbook(L"a.xls", true); }},
      {"saveWorkbook as asking",
       [](MsExcel& e, VARIANT&, int&, double&, ustr&) { return !e.saveWorkbook(L"a.xls", false); }},
      {"saveWorkbook", [](MsExcel& e, VARIANT&, int&, double&, ustr&) { return !e.saveWorkbook(nullptr, false); }},
      {"saveHtml", [](MsExcel& e, VARIANT&, int&, double&, ustr&) { return e.saveHtml(L"a.htm") < 0; }},
      {"closeWorkbook", [](MsExcel& e, VARIANT&, int&, double&, ustr&) { return !e.closeWorkbook(true); }},
  };
  for (const auto& call : calls) {
    Recorder recorder;
    EXPECT_TRUE(call.second(excel, v, i, d, text)) << call.first;
    ASSERT_EQ(1u, recorder.boxes.size()) << call.first;
    EXPECT_EQ(L"NULL IDispatch passed to AutoWrap()", recorder.boxes[0].text) << call.first;
    EXPECT_EQ(L"Error", recorder.boxes[0].caption) << call.first;
  }
  // Failed reads leave what the caller held.
  EXPECT_EQ(VT_I4, v.vt);
  EXPECT_EQ(5, v.lVal);
  EXPECT_EQ(7, i);
  EXPECT_EQ(2.5, d);
  EXPECT_EQ(L"kept", text);

  // Nothing held, nothing to end: close and release make no call.
  Recorder quiet;
  EXPECT_TRUE(excel.close(false));
  excel.release();
  EXPECT_TRUE(quiet.boxes.empty());
}

TEST(AutoWrapWithoutComponents, NullObjectAndForeignPointer) {
  Recorder recorder;
  VARIANT result;
  result.vt = VT_I4;
  EXPECT_EQ(E_POINTER, AutoWrap(DISPATCH_PROPERTYGET, &result, nullptr, L"Visible", 0));
  EXPECT_EQ(VT_EMPTY, result.vt);
  // No pointer can be an automation object here: the lookup is what fails.
  int notAnObject = 0;
  EXPECT_EQ(E_NOTIMPL,
            AutoWrap(DISPATCH_METHOD, nullptr, reinterpret_cast<IDispatch*>(&notAnObject), L"Quit", 0));
  ASSERT_EQ(2u, recorder.boxes.size());
  EXPECT_EQ(L"Error", recorder.boxes[0].caption);
  EXPECT_EQ(L"IDispatch::GetIDsOfNames(\"Quit\") failed w/err 0x80004001", recorder.boxes[1].text);
  EXPECT_EQ(L"AutoWrap()", recorder.boxes[1].caption);
}
