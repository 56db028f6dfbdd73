// QNListViewColumnManager: the same column handling for every list with a
// header. The user hides and shows columns, reorders them, sizes them to
// fit or lets them scale with the window; the layout is kept in the
// registry or as XML text.
//
// The manager is written once against an abstract access to the list's
// header: the virtual functions below, in their slot order. Two accesses
// exist: QNListViewColumnManagerImpl for a list-view control, and the one
// QnListView2 hands out (GetColumnManager). A list window of the class
// "QLISTWND" gets its own access (QNQViewColumnManagerImpl) by deriving
// from this class the same way.
//
// Columns are numbered as the list numbers them; positions are places in
// the order shown. A hidden column has width 0 in the list; the manager
// remembers the width it had, so that showing it restores that width.
//
// Registry layout under a key K (a setting path, see Registry.h; a null
// root, the application key):
//   K\AutoSize          1 or 0; absent reads as 1
//   K\column<i>         "width|hidden|third" for i = 0 .. count-1
// Without an LParam list entry i is column i and third is the column shown
// at position i. With an LParam list entry i is the column shown at
// position i and third is that column's LParam (written as a decimal of
// up to 64 bits; a value that fits 32 bits reads as the classic "%d").
// Loading stops at the first missing or unreadable value. The order is
// applied only when every entry was read; with an LParam list the end of
// the saved entries counts as read, and columns the layout does not name
// (added since it was saved) keep their relative order after those it
// names. An LParam no column carries stops the loading and leaves the
// order alone.
//
// XML: <ColumnData> with <Col<i> width= hidden= order=/> per entry, i and
// the three numbers as in the registry. Reader errors are kept as the XML
// library's own message (GetXmlError).
//
// Failures never throw: operations answer false (or -1, or empty text)
// and leave the layout as it was.
#ifndef QUILTOOL_QNLISTVIEWCOLUMNMANAGER_H
#define QUILTOOL_QNLISTVIEWCOLUMNMANAGER_H

#include <string>
#include <vector>

#include "LngAppID.h"
#include "qn_menu_presenter.h"
#include "qn_wintypes.h"
#include "quiltool_export.h"
#include "ustr.h"

class QT_API QNListViewColumnManager {
 public:
  // Told to the callback. The answer counts only where stated.
  enum CbMsgId {
    CbLayoutLoaded = 1,          // a layout (registry or XML) was applied
    CbLayoutSaved = 2,           // a layout was written to the registry
    CbColumnShownOrHidden = 3,   // a column was shown or hidden
    CbAutoSizeChanged = 4,       // auto-size was switched on or off
    CbColumnsChangedByUser = 5,  // widths or order taken from the list
    CbQueryHeaderMenu = 6,       // before the header menu: answer 1 to keep it closed
    CbQueryChooseColumns = 7     // before the "Choose columns" dialog: answer 1 to skip it
  };
  typedef long long (*Callback)(CbMsgId message, QNListViewColumnManager* manager);

  // Commands of the header menu. A column entry is CmdFirstColumn plus the
  // column's number; it reaches the owner as WM_COMMAND CmdFirstColumn with
  // the number as lParam.
  enum Command {
    CmdSizeColumnToFit = 2124,
    CmdSizeAllColumnsToFit = 2125,
    CmdAutoSize = 2126,
    CmdMore = 2127,
    CmdFirstColumn = 2129,
    CmdLastColumn = 2229
  };

  // Flags (SetFlags): entries of the header menu sorted by column name.
  enum Flags { SortMenuByName = 1 };

  QNListViewColumnManager();

  // The header access, in slot order.
  virtual ~QNListViewColumnManager();
  virtual bool SetColumnWidth(int column, int width, bool redraw) = 0;
  // The list's width of the column; with remembered, a hidden column
  // answers the width it had before (RememberedWidth). -1 for a bad column.
  virtual int GetColumnWidth(int column, bool remembered) const = 0;
  // Not used by the persistence: the name shown in the menu and dialog.
  virtual ustr GetColumnName(int column) const = 0;
  virtual int GetColumnCount() const = 0;
  virtual std::vector<int> GetColumnOrder() const = 0;  // column per position
  virtual bool SetColumnOrder(const std::vector<int>& order) = 0;
  virtual bool CanAutoScale() const = 0;
  virtual int GetClientWidth() const = 0;      // width to fill when scaling
  virtual bool SizeColumnToFit(int column) = 0;  // to the widest of header and cells
  virtual int HitTestHeader(POINT point) const = 0;  // list client point; -1 none
  virtual void Repaint() = 0;
  // The window given to Attach, or null.
  virtual HWND GetListWindow() const;
  // Told after the manager showed or hid a column; an access whose list
  // keeps its own mark updates it here.
  virtual void ColumnShown(int column, bool shown);

  // Binding. Attach takes the list window, the module whose texts the menus
  // use and the flags; the owner that receives commands is the list's
  // parent. Detach forgets the window, not the layout.
  bool Attach(Lng::AppID appId, HWND window, int flags);
  void Detach();
  bool IsActive() const;

  // Persistence through the key set here (saving only while allowed).
  void SetRegistryKey(const wchar_t* key);
  const wchar_t* GetRegistryKey() const;
  void SetAllowSavingToRegistry(bool allow);
  bool Load();
  bool Save();
  bool LoadFromRegistry(const wchar_t* key, bool redraw);
  bool LoadFromRegistry(const wchar_t* key, bool redraw, const std::vector<long long>& lParams);
  bool SaveToRegistry(const wchar_t* key);
  bool SaveToRegistry(const wchar_t* key, const std::vector<long long>& lParams);
  std::string ToXml();
  std::string ToXml(const std::vector<long long>& lParams);
  bool FromXml(const char* text);
  bool FromXml(const char* text, const std::vector<long long>& lParams);
  // The XML reader's message for the last FromXml that failed; "" after one
  // that worked.
  const char* GetXmlError() const;

  // Columns.
  bool ShowHideColumn(int column, bool show, bool redraw = true);
  bool ToggleColumnVisibility(int column);
  void HideColumns(const std::vector<int>& columns);
  // Shows column i when shown[i] is true and hides it otherwise (only
  // hideable columns are hidden).
  void ShowDefaultColumns(const std::vector<bool>& shown);
  bool IsColumnHidden(int column) const;
  int RememberedWidth(int column) const;  // -1 unless hidden
  bool IsColumnEnabled(int column) const;
  void SetEnabled(int column, bool enabled);
  void SetHideable(int column, bool hideable);
  bool IsColumnHideable(int column) const;
  // Moves a column to a position of the order shown.
  bool SetColumnOrderIndex(int column, int position);
  void SetMinColumnWidth(int width);
  int GetMinColumnWidth() const;
  void SetFlags(int flags, int mask);
  int GetFlags() const;
  void SetCallback(Callback callback);

  // Auto-size: the shown columns scale to fill the list's width.
  void SetAllowAutoScaling(bool allow);
  bool IsAutoScalingAllowed() const;
  void SetAutoScaling(bool on);
  bool ColumnsAreScaling() const;
  bool AutoScaleColumns();

  // Takes widths and order from the list after the user changed them.
  void UpdateFromColumns();
  // Keep the per-column marks with their columns when the list inserts or
  // deletes one.
  void OnColumnInserted(int column);
  void OnColumnDeleted(int column);
  void OnColumnChanged(int column);
  void SetSortableHeader(bool sortable);
  bool IsSortableHeader() const;
  int GetHeaderItemIndexAt(POINT point) const;

  // The header menu for a right click on a column (-1: none), top to
  // bottom; ShowHeaderMenu shows it through the menu presenter and posts
  // the choice to the owner. Answers the command chosen, 0 for none.
  std::vector<QnMenuItem> BuildHeaderMenu(int clickedColumn) const;
  int ShowHeaderMenu(POINT screenPoint, int clickedColumn);
  // The "Choose columns" dialog; true when the user confirmed.
  bool ChooseColumns();

  // Window hooks the owner forwards. Each answers true when it handled the
  // message. DlgProc dispatches WM_NOTIFY, WM_COMMAND and WM_SIZE.
  bool OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* result);
  bool OnCommand(WPARAM wParam, LPARAM lParam);
  void OnSize();
  bool DlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result);

  struct State;

 private:
  QNListViewColumnManager(const QNListViewColumnManager&);
  QNListViewColumnManager& operator=(const QNListViewColumnManager&);
  State* state_;
};

// The header access of a list-view control (report view). On Linux there
// is no control: the access sees no columns and every change fails.
class QT_API QNListViewColumnManagerImpl : public QNListViewColumnManager {
 public:
  QNListViewColumnManagerImpl();
  ~QNListViewColumnManagerImpl();
  bool SetColumnWidth(int column, int width, bool redraw);
  int GetColumnWidth(int column, bool remembered) const;
  ustr GetColumnName(int column) const;
  int GetColumnCount() const;
  std::vector<int> GetColumnOrder() const;
  bool SetColumnOrder(const std::vector<int>& order);
  bool CanAutoScale() const;
  int GetClientWidth() const;
  bool SizeColumnToFit(int column);
  int HitTestHeader(POINT point) const;
  void Repaint();
};

#endif
