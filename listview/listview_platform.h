// The grid's platform step: binding the model to a list control, mirroring
// rows and columns into it, painting and in-place editing. Windows has the
// control; elsewhere there is none to bind and every step answers false.
#ifndef QUILTOOL_LISTVIEW_PLATFORM_H
#define QUILTOOL_LISTVIEW_PLATFORM_H

#include "QnListView2.h"

class QnListView2Impl;

namespace qt {
namespace listview {

// What the platform keeps while a control is bound; owned by the model.
struct Control;

namespace platform {

bool Attach(QnListView2Impl& m, HINSTANCE instance, HWND window);
void Detach(QnListView2Impl& m);
bool OnNotify(QnListView2Impl& m, WPARAM wParam, LPARAM lParam);
LRESULT OnMeasureItem(QnListView2Impl& m, tagMEASUREITEMSTRUCT* item);
// The rows and columns changed: the control lists them again and repaints.
void Refresh(QnListView2Impl& m);
void RedrawRow(QnListView2Impl& m, int row);
bool EditCell(QnListView2Impl& m, int row, int column);
// `point` in screen coordinates; the model column under it or -1.
int HeaderItemAt(const QnListView2Impl& m, POINT point);
// Scrolls the row (and the column when not -1) into view.
bool ScrollTo(QnListView2Impl& m, int row, int column);
// The bound list window, null when none.
HWND ListWindow(const QnListView2Impl& m);

}  // namespace platform
}  // namespace listview
}  // namespace qt

#endif
