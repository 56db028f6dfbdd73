// quiltool report under Wine with its real progress dialog: its Cancel
// button stops the export with nothing written and no lock left behind.
// ctest: RESOURCE_LOCK desktop
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "FileSharingServiceManager.h"
#include "message_recorder.h"
#include "qt_test.h"
#include "qt_test_win.h"
#include "reports/progress_resource.h"
#include "screenshot_win.h"
#include "tool_test_support.h"

namespace {

TEST(ReportCommandWindow, CancelInTheProgressDialogStopsTheExportAndLeavesNothing) {
  qt_test::TempDir dir;
  qt_test::MessageRecorder boxes;
  const std::string project = dir.file("plant.qep"), xml = dir.file("plant.xml");
  ASSERT_EQ(0, qt_tool_test::RunTool("db", {"sample", project, "--records", "60000"}).code);

  std::atomic<bool> seen{false}, stop{false};
  std::thread user([&] {
    while (!stop) {
      // The click goes in once the record bar has moved, while the walk
      // surely runs, however slow the machine: the dialog itself stays
      // hidden for its first second, and waiting for it to show lost that
      // race under load.
      HWND dialog = qt_test::FindOwnWindow(L"#32770", L"quiltool report");
      if (dialog && SendMessageW(GetDlgItem(dialog, IDC_PROGRESS_BAR + 1), PBM_GETPOS, 0, 0) > 0) {
        seen = true;
        HWND cancel = GetDlgItem(dialog, IDCANCEL);
        PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), reinterpret_cast<LPARAM>(cancel));
        return;
      }
      Sleep(20);
    }
  });
  const auto r = qt_tool_test::RunTool(
      "report", {project, "--out", xml, "--layout", "Tests\\" + qt_test::UniqueName("Cancel")});
  stop = true;
  user.join();
  ASSERT_TRUE(seen.load()) << "no progress dialog with a moving record bar (exit " << r.code << ")";
  EXPECT_EQ(1, r.code) << r.err;
  EXPECT_NE(std::string::npos, r.err.find("stopped by the user")) << r.err;
  EXPECT_EQ(0u, qt_test::ReadFileBytes(xml).size());
  EXPECT_EQ("", qt_test::ReadFileBytes(
                    qt_test::Narrow(FileSharingServiceManager::LockFileName(qt_test::Widen(project).c_str()).c_str())));
}

}  // namespace
