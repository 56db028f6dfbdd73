// No list control to bind here: the model works on its own.
#include "listview/listview_platform.h"

namespace qt {
namespace listview {
namespace platform {

bool Attach(QnListView2Impl&, HINSTANCE, HWND) { return false; }
void Detach(QnListView2Impl&) {}
bool OnNotify(QnListView2Impl&, WPARAM, LPARAM) { return false; }
LRESULT OnMeasureItem(QnListView2Impl&, tagMEASUREITEMSTRUCT*) { return 0; }
void Refresh(QnListView2Impl&) {}
void RedrawRow(QnListView2Impl&, int) {}
bool EditCell(QnListView2Impl&, int, int) { return false; }
int HeaderItemAt(const QnListView2Impl&, POINT) { return -1; }
bool ScrollTo(QnListView2Impl&, int, int) { return false; }
HWND ListWindow(const QnListView2Impl&) { return nullptr; }

}  // namespace platform
}  // namespace listview
}  // namespace qt
