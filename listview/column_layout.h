// The column manager's arithmetic, free of windows and of the registry:
// the text of one saved entry, what a list of saved entries does to the
// columns, auto-scaling and the header menu's entries.
#ifndef QUILTOOL_LISTVIEW_COLUMN_LAYOUT_H
#define QUILTOOL_LISTVIEW_COLUMN_LAYOUT_H

#include <vector>

#include "qn_menu_presenter.h"
#include "ustr.h"

namespace qt {
namespace listview {

// One saved entry: "width|hidden|third".
struct LayoutEntry {
  int width = 0;
  int hidden = 0;
  long long third = 0;
};

ustr FormatLayoutEntry(const LayoutEntry& entry);
// True only when all three fields parse.
bool ParseLayoutEntry(const wchar_t* text, LayoutEntry* entry);

// What loading saved entries does. Entries are given in saved order up to
// the first one that was missing or unreadable (`complete` tells whether
// the reading got through every position, or, with an LParam list, to the
// end of what was saved).
struct LayoutPlan {
  struct Apply {
    int column;
    int width;
    bool hidden;
  };
  std::vector<Apply> columns;  // in entry order
  bool applyOrder = false;
  std::vector<int> order;      // column per position, when applyOrder
};
LayoutPlan PlanByIndex(const std::vector<LayoutEntry>& entries, int columnCount, bool complete);
LayoutPlan PlanByLParam(const std::vector<LayoutEntry>& entries, const std::vector<long long>& lParams,
                        const std::vector<int>& currentOrder, bool endOfSaved);

// Whether order holds every column of 0..count-1 once.
bool IsPermutation(const std::vector<int>& order, int count);

// New widths of the shown columns so that they fill clientWidth in their
// proportions: none narrower than minWidth, the last shown one taking the
// rounding rest. Hidden columns (shown[i] false) keep width 0.
std::vector<int> ScaledWidths(const std::vector<int>& widths, const std::vector<bool>& shown, int clientWidth,
                              int minWidth);

// The header menu's entries, top to bottom.
struct HeaderMenuColumn {
  int column;
  ustr name;
  bool shown;
};
struct HeaderMenuTexts {
  ustr autoSize, sizeColumn, sizeAll, more;
};
std::vector<QnMenuItem> HeaderMenuItems(const HeaderMenuTexts& texts, bool canAutoScale, bool autoSizeOn,
                                        std::vector<HeaderMenuColumn> columns, bool sortByName);

}  // namespace listview
}  // namespace qt

#endif
