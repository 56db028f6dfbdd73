// The recent-file list's rules, free of menus and windows.
#ifndef QUILTOOL_LISTVIEW_RECENT_FILES_LIST_H
#define QUILTOOL_LISTVIEW_RECENT_FILES_LIST_H

#include <vector>

#include "qn_menu_presenter.h"
#include "ustr.h"

namespace qt {
namespace recent_files {

// Shortens a path to at most maxChars characters: the file name stays and
// the folder part gives way to "..." ("C:\Projects\...\plant.qdb"); a
// file name too long by itself is cut and ends in "...".
ustr CompactPath(const ustr& path, int maxChars);

// Puts path first, removing an entry for the same file, and cuts the list
// to maxCount.
void MoveToFront(std::vector<ustr>& paths, const ustr& path, int maxCount);
// Removes the entries for that file; true when one went.
bool RemovePath(std::vector<ustr>& paths, const ustr& path);

// The sub-menu's entries: "%d %s" for each non-empty path with command
// firstCommand + index, or one disabled emptyText entry.
template <class Compact>
std::vector<QnMenuItem> MenuItems(const std::vector<ustr>& paths, int firstCommand, const ustr& emptyText,
                                  Compact compact) {
  std::vector<QnMenuItem> items;
  for (size_t i = 0; i < paths.size(); ++i) {
    if (paths[i].empty()) continue;
    QnMenuItem item;
    item.command = firstCommand + static_cast<int>(i);
    item.text.format(L"%d %s", static_cast<int>(i) + 1, compact(paths[i]).c_str());
    items.push_back(item);
  }
  if (items.empty()) {
    QnMenuItem item;
    item.command = firstCommand;
    item.text = emptyText;
    item.greyed = true;
    items.push_back(item);
  }
  return items;
}

}  // namespace recent_files
}  // namespace qt

#endif
