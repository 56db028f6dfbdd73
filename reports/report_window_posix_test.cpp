#include <gtest/gtest.h>

#include <string>

#include "SimpleReport.h"

namespace {

class Counting : public SimpleReport::Callback {
 public:
  void OnInitDialog(SimpleReportOuputDlg&) override { ++inits; }
  void OnClose(SimpleReportOuputDlg&) override { ++closes; }
  int inits = 0;
  int closes = 0;
};

TEST(ReportWindowPosix, WithoutPresenterTheReportGoesToStderr) {
  SimpleReport report;
  report.SetTitle(L"Pumps");
  report.AddColumn(SimpleReport::ColumnData(L"Name"));
  report.AddColumn(SimpleReport::ColumnData(L"Flow", 60, L"l/s"));
  SimpleReport::RowData row;
  row.cells = {SimpleReport::CellData::Text(L"P\x00FCmpe\nA"), SimpleReport::CellData::Double(0.5, 2)};
  report.AddRow(row);
  Counting callback;
  testing::internal::CaptureStderr();
  const bool shown = report.Create(nullptr, &callback);
  const std::string out = testing::internal::GetCapturedStderr();
  EXPECT_TRUE(shown);
  EXPECT_EQ("== Report\nPumps\nName\tFlow l/s\nP\xC3\xBCmpe A\t0.50\n", out);
  EXPECT_EQ(1, callback.inits);
  EXPECT_EQ(1, callback.closes);
}

}  // namespace
