// AutoWrap's three failure messages as the user sees them: real message
// boxes, read from the screen and dismissed by a watcher thread.
// ctest: RESOURCE_LOCK desktop
#include <windows.h>
#include <ole2.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "MsExcel.h"
#include "qt_test_win.h"
#include "reports/msexcel_fake_server_win.h"

TEST(AutoWrapOnScreen, EachFailureShowsItsMessageAndAnswersItsCode) {
  excel_test::FakeServer server;
  ASSERT_TRUE(server.registerClass(L"--fail-lookup=Visible --fail-invoke=Name"));

  qt_test::SeenBox nullObject;
  std::thread watcher = qt_test::PressWhenShown(L"Error", IDOK, &nullObject);
  VARIANT result;
  EXPECT_EQ(E_POINTER, AutoWrap(DISPATCH_PROPERTYGET, &result, nullptr, L"Visible", 0));
  watcher.join();
  ASSERT_TRUE(nullObject.found);
  EXPECT_EQ(L"NULL IDispatch passed to AutoWrap()", nullObject.text);

  ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
  CLSID id;
  ASSERT_EQ(S_OK, CLSIDFromProgID(L"Excel.Application", &id));
  IDispatch* application = nullptr;
  ASSERT_EQ(S_OK, CoCreateInstance(id, nullptr, CLSCTX_LOCAL_SERVER, IID_IDispatch,
                                   reinterpret_cast<void**>(&application)));

  qt_test::SeenBox lookup;
  watcher = qt_test::PressWhenShown(L"AutoWrap()", IDOK, &lookup);
  EXPECT_EQ(DISP_E_UNKNOWNNAME, AutoWrap(DISPATCH_PROPERTYGET, &result, application, L"Visible", 0));
  watcher.join();
  ASSERT_TRUE(lookup.found);
  EXPECT_EQ(L"IDispatch::GetIDsOfNames(\"Visible\") failed w/err 0x80020006", lookup.text);

  qt_test::SeenBox invoke;
  watcher = qt_test::PressWhenShown(L"AutoWrap()", IDOK, &invoke);
  EXPECT_EQ(DISP_E_EXCEPTION, AutoWrap(DISPATCH_PROPERTYGET, &result, application, L"Name", 0));
  watcher.join();
  ASSERT_TRUE(invoke.found);
  std::string id8;
  for (const std::string& line : server.log()) {
    if (line.compare(0, 24, "lookup Application.Name ") == 0) id8 = line.substr(24);
  }
  ASSERT_FALSE(id8.empty());
  id8 = std::string(8 - id8.size(), '0') + id8;
  EXPECT_EQ(qt_test::Widen("IDispatch::Invoke(\"Name\"=" + id8 + ") failed w/err 0x80020009"), invoke.text);

  // A call that works shows nothing and hands the value back.
  excel_test::Recorder none;
  EXPECT_EQ(S_OK, AutoWrap(DISPATCH_PROPERTYGET, &result, application, L"UserName", 0));
  EXPECT_EQ(VT_BSTR, result.vt);
  VariantClear(&result);
  EXPECT_TRUE(none.boxes.empty());

  application->Release();
  CoUninitialize();
  EXPECT_TRUE(server.serverEnded());
}
