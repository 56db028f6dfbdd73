// QnRecentFileListManager: a most-recently-used list of file paths for an
// application window, shown as a "Recent files" sub-menu whose highlighted
// entry shows its full path in a tool tip, and kept in the registry.
//
// The list holds at most 11 paths unless SetMaxFileCount says otherwise,
// most recent first. Paths are compared as file names (FileNamesAreSame:
// case and separators ignored where the platform ignores them). Changes
// stay in memory until the owner calls SaveToRegistry, so that one window
// closing does not overwrite what another has just written.
//
// Registry: entry i is the string value "<key>\Item%02d" under the current
// user's root. Loading stops at the first empty or missing value or at the
// maximum.
//
// Menu entries read "%d %s": the number from 1 and the path shortened to at
// most 50 characters (Windows: the shell's path compaction; elsewhere the
// same rule written here: the file name stays, the folder part gives way
// to "..."). An empty list shows one disabled "Empty" entry.
//
// Linux has no menus or tool tips: CreatePopupMenu answers null, the
// entries are still built (GetMenuItems) and the question about a missing
// file goes through the message presenter.
#ifndef QUILTOOL_QNRECENTFILELISTMANAGER_H
#define QUILTOOL_QNRECENTFILELISTMANAGER_H

#include <vector>

#include "qn_menu_presenter.h"
#include "qn_wintypes.h"
#include "quiltool_export.h"
#include "ustr.h"

class QT_API QnRecentFileListManager {
 public:
  QnRecentFileListManager();
  ~QnRecentFileListManager();

  // Binds the owner window and module and places the sub-menu into menu
  // at position (after its separator when after is true, else before it);
  // entries get the commands firstCommand, firstCommand + 1, ...
  bool Attach(HWND window, HINSTANCE instance, HMENU menu, int position, bool after, int firstCommand);
  void Detach();
  // Builds (or rebuilds) the sub-menu and answers it; null on Linux.
  HMENU CreatePopupMenu(int firstCommand);
  // Inserts the sub-menu under "Recent files" with a separator; nothing
  // happens when the menu already has an item of that title.
  bool InsertPopupMenu(HMENU menu, int position, bool after, UINT flags);
  // The sub-menu's entries as last built, top to bottom.
  std::vector<QnMenuItem> GetMenuItems() const;

  bool LoadFromRegistry(const wchar_t* key);
  bool SaveToRegistry();
  ustr ReadFileNameFromRegistry(const wchar_t* valuePath);
  bool WriteFileNameToRegistry(const wchar_t* valuePath, const wchar_t* path);

  ustr GetFilePathNameAt(int index) const;  // empty outside the list
  int GetFileCount() const;
  // Call when the user opens a file. An existing file or folder moves to
  // the front (true). A missing one makes the user choose whether to drop
  // it from the list (false either way).
  bool SetLastUsed(const wchar_t* path);
  // The path of the entry that belongs to a menu command; empty for others.
  ustr SetLastUsed(int command);
  void SetMaxFileCount(int count);
  int GetMaxFileCount() const;

  // Tool tip of the highlighted entry; the owner forwards WM_MENUSELECT.
  void OnMenuSelect(UINT item, UINT flags, HMENU menu);
  void ShowToolTip(bool show);
  void UpdateToolTipText(const wchar_t* text);
  void SetToolTipPosition(HMENU menu, UINT item);
  HWND GetToolTipWindow() const;

  struct State;

 private:
  QnRecentFileListManager(const QnRecentFileListManager&);
  QnRecentFileListManager& operator=(const QnRecentFileListManager&);
  State* state_;
};

#endif
