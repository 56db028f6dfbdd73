// QnListView2: the editable grid. This class is a thin facade over the
// grid's model (QnListView2Impl); every call runs through the library's
// exception boundary, so a failure (memory, "vector too long") makes a
// setter answer false, a finder -1 and a getter its neutral value, and the
// model is left as it was.
//
// Rows and columns are addressed by zero-based index; -1 means "none" in
// results. Setters answer false for an index out of range and change
// nothing. Every `redraw` flag only asks for a repaint of the attached
// control and has no effect without one.
//
// The list control (Windows): Attach binds the model to a list-view
// control of a dialog, which becomes an owner-drawn report view whose rows
// and columns mirror the model; every change through this class shows in
// the control without further calls. The owner forwards WM_NOTIFY to
// OnNotify (header clicks sort when SetSortableHeader is on) and may
// forward WM_MEASUREITEM to OnMeasureItem; drawing and the row height
// are handled on the owner's behalf as well. Cells are edited in place
// (EditCell, and the Edit... styles) with an edit field or, for a cell
// with a selection list, a drop-down list; a value outside the column's
// range is refused with a balloon note and the cell keeps its value; the
// owner gets WM_COMMAND with the edit command after each change a user
// makes. docs/grid.md describes what the user can do. Elsewhere there is
// no control: Attach answers false and the model works on its own.
//
// Columns are hidden, shown, ordered and kept in the registry through the
// grid's column manager (GetColumnManager, QNListViewColumnManager.h).
#ifndef QUILTOOL_QNLISTVIEW2_H
#define QUILTOOL_QNLISTVIEW2_H

#include <set>
#include <utility>
#include <vector>

#include "QnVariant.h"
#include "ValueValidator.h"
#include "gm_model.h"
#include "qn_wintypes.h"
#include "quiltool_export.h"
#include "ustr.h"

// The platform's owner-draw and measure-item records (DRAWITEMSTRUCT,
// MEASUREITEMSTRUCT on Windows). Elsewhere they are only named.
#if !defined(_WIN32)
struct tagDRAWITEMSTRUCT;
struct tagMEASUREITEMSTRUCT;
#endif

class QnListView2Impl;
class QNListViewColumnManager;

class QT_API QnListView2 {
 public:
  // Style word of the view (SetStyle / GetStyle).
  enum Style {
    FullRowSelect = 1,
    AutoSizeColumns = 2,
    GridLines = 4,
    HeaderDragDrop = 8,
    EditOnDoubleClick = 16,
    AlwaysSave = 32,
    EditNextRowOnEnter = 64,
    EditOnTyping = 128,
    DrawTreeLines = 256,
    AllowRowRearrange = 512,
    EditNextCellOnEnter = 1024
  };

  // Style word of a cell, a column (the default of its cells) and a row.
  enum CellStyle {
    CellReadOnly = 1,        // not edited in place
    CellDoubleRounding = 2,  // a floating value is shown with the cell's decimals
    CellCheckBox = 4,        // the cell shows its check state
    CellThreeState = 8,      // the check box takes the mixed state too
    CellButton = 16          // set by SetCellCommand: the cell sends its command
  };

  // Alignment codes: one horizontal plus one vertical part; 0 is the default.
  enum Alignment {
    AlignDefault = 0,
    AlignLeft = 1,
    AlignHCenter = 2,
    AlignRight = 4,
    AlignTop = 8,
    AlignVCenter = 16,
    AlignBottom = 32
  };

  // Check state of a cell. CheckMixed is what Update3StateCheck gives a
  // parent whose children disagree.
  enum CheckValues { CheckNone = 0, Checked = 1, Unchecked = 2, CheckMixed = 3 };

  enum SortType { SortAscending = 0, SortDescending = 1 };

  // The kind a cell's value has (GetCellKind).
  enum CellKind {
    KindEmpty = 0,
    KindText = 1,
    KindShort = 2,
    KindInt = 3,
    KindUInt = 4,
    KindFloat = 5,
    KindDouble = 6,
    KindBool = 7,
    KindColorIndex = 8,
    KindGeometry = 9
  };

  // A colour value meaning "no colour": passing it clears a colour, and a
  // getter answers it when none is set.
  static constexpr COLORREF NoColor = 0xFFFFFFFFu;

  // An AutoCAD colour index as a cell value (0..256, logical colours 300..303).
  struct ColorIndex {
    short index;
    explicit ColorIndex(short i = 0) : index(i) {}
  };

  struct CellBorder {
    COLORREF color = 0;
    bool left = false;
    bool top = false;
    bool right = false;
    bool bottom = false;
  };

  // Entries of a drop-down list: the text shown and the value it stands for.
  typedef std::vector<std::pair<ustr_pre<32>, long long> > SelectionList;

  // Compares two rows by their LParams for the given column and direction:
  // true when the first sorts before the second. Setting `decline` hands
  // that pair back to the built-in comparison of the column.
  typedef bool (*RowIsLessFunc)(int column, SortType type, long long lParam1, long long lParam2, bool& decline);

  // Paints one cell; true when it has drawn the cell. The record is the
  // platform's DRAWITEMSTRUCT.
  typedef bool (*CellDrawFunc)(const tagDRAWITEMSTRUCT* item, int column, const wchar_t* text, long long lParam);

  QnListView2();
  ~QnListView2();
  QnListView2(const QnListView2&) = delete;
  QnListView2& operator=(const QnListView2&) = delete;

  // Life. Attach answers false for a window that is not a list-view
  // control, one another grid holds, or one without a parent, and on
  // targets without the control; binding again first lets the old one go.
  // Detach gives the control back (destroying it does so too).
  bool Attach(HINSTANCE instance, HWND window);
  void Detach();
  // True when the notification was the grid's and has been handled.
  bool OnNotify(WPARAM wParam, LPARAM lParam);
  // Sets the record's height to the row height; TRUE.
  LRESULT OnMeasureItem(tagMEASUREITEMSTRUCT* item);
  void Redraw();
  void RedrawRow(int row);

  // View.
  bool SetStyle(int flags, int mask);  // the bits of mask take those of flags
  int GetStyle() const;
  bool SetRowHeight(int pixels);       // 1..1000
  int GetRowHeight() const;

  // Columns.
  int AddColumn(const ustr& name, int width, int alignment = AlignDefault, long long lParam = 0);
  int InsertColumn(int index, const ustr& name, int width, int alignment = AlignDefault, long long lParam = 0);
  bool SetColumn(int column, const ustr& name, int width, int alignment, long long lParam);
  bool DeleteColumn(int column);
  void DeleteAllColumns();
  int GetColumnCount() const;
  ustr GetColumnName(int column) const;
  bool SetColumnName(int column, const ustr& name);
  int GetColumnWidth(int column) const;  // -1 for a bad index
  bool SetColumnWidth(int column, int width);
  int GetColumnAlignment(int column) const;
  bool SetColumnAlignment(int column, int alignment);
  int GetColumnStyle(int column) const;
  bool SetColumnStyle(int column, int style, int mask);
  bool SetColumnForegroundColor(int column, COLORREF color);
  bool SetColumnBackgroundColor(int column, COLORREF color);
  COLORREF GetColumnForegroundColor(int column) const;
  COLORREF GetColumnBackgroundColor(int column) const;
  bool SetColumnFont(int column, HFONT font);  // kept, not owned
  HFONT GetColumnFont(int column) const;
  long long GetColumnLParam(int column) const;
  bool SetColumnLParam(int column, long long lParam);
  std::vector<long long> GetColumnsLParams() const;
  int FindColumnIndex(long long lParam) const;
  bool ShowHideColumn(int column, bool show, bool redraw = true);
  bool IsColumnShown(int column) const;
  bool SetColumnHideable(int column, bool hideable);
  bool IsColumnHideable(int column) const;
  void SetColumnManagerFlags(int flags);
  int GetColumnManagerFlags() const;
  // The grid's column manager, owned by the grid (null only when the grid
  // could not be made). Hiding a column through it or ShowHideColumn sets
  // its width to 0 and remembers the old one.
  QNListViewColumnManager* GetColumnManager();
  // The layout under a registry key (see QNListViewColumnManager.h): by
  // LParam when the columns' LParams are distinct, else by index.
  bool SaveColumnsToRegistry(const wchar_t* key);
  bool LoadColumnsFromRegistry(const wchar_t* key, bool redraw = true);
  void SetSortableHeader(bool sortable);
  bool IsSortableHeader() const;
  // The column whose header lies under the point (screen coordinates), -1
  // when none or without a control.
  int GetHeaderItemIndexAt(POINT point) const;

  // Rows. A row added with a parent goes after the parent's last
  // descendant. Deleting a row deletes its descendants too. Rows that were
  // never given an id carry a negative automatic one; ids the caller sets
  // are 0 or more and unique.
  int AddRow(long long lParam = 0, int parentRow = -1, int style = 0);
  int InsertRow(int index, long long lParam = 0, int parentRow = -1, int style = 0);
  // A category row carries one text across the row and groups the rows
  // below it up to the next category row.
  int AddCategoryRow(long long lParam, int style, const ustr& text);
  int InsertCategoryRow(int index, long long lParam, int style, const ustr& text);
  bool IsCategoryRow(int row) const;
  // Deletes `row`, or with row -1 the first row carrying lParam.
  bool DeleteRow(int row, long long lParam = 0);
  // Deletes the rows named by index and those carrying one of the LParams;
  // either list may be null. Answers how many rows went.
  int DeleteRows(const std::vector<int>* rows, const std::vector<long long>* lParams);
  int DeleteRowsByTags(const std::vector<ustr>& tags);
  int DeleteRowsByTags(const std::vector<astr>& tags);
  void DeleteAllRows();
  int DeleteEmptyCategoryRows();  // answers how many went
  // Reverses the order of the rows among their siblings; category rows
  // and the tree stay as they are.
  bool ReverseRows();
  int GetRowCount() const;
  int GetRowStyle(int row) const;
  bool SetRowStyle(int row, int style, int mask);
  // The finders answer the first matching row, from the top or from
  // startRow on, in constant time on average.
  int FindRowIndex(long long lParam) const;
  int FindRowIndex(int startRow, long long lParam) const;
  int FindRowIndexByRowId(long long rowId) const;
  int FindRowIndexByTag(const wchar_t* tag) const;
  int FindRowIndexByTag(const char* tag) const;
  int FindRowIndexByTag(int startRow, const wchar_t* tag) const;
  int FindRowIndexByTag(int startRow, const char* tag) const;
  int FindNextCategoryRowIndex(int row) const;  // first category row after `row`
  long long GetRowLParam(int row) const;
  bool SetRowLParam(int row, long long lParam);
  std::vector<long long> GetRowsLParams() const;
  ustr GetRowTag(int row) const;
  astr GetRowTagA(int row) const;
  bool SetRowTag(int row, const ustr& tag);
  bool SetRowTag(int row, const char* tag);
  std::vector<ustr> GetRowsTagsW() const;
  std::vector<astr> GetRowsTagsA() const;
  bool SetRowId(int row, long long rowId);  // false for a negative or taken id
  long long GetRowId(int row) const;        // -1 for a bad index
  // The parent's id, or -1 to make the row a root. The row is not moved.
  bool SetRowParentId(int row, long long parentId);
  long long GetRowParentId(int row) const;  // -1: no parent
  bool SetRowForegroundColor(int row, COLORREF color);
  bool SetRowBackgroundColor(int row, COLORREF color);
  COLORREF GetRowForegroundColor(int row) const;
  COLORREF GetRowBackgroundColor(int row) const;
  bool SetRowFont(int row, HFONT font);
  HFONT GetRowFont(int row) const;

  // Tree.
  int GetParentRow(int row) const;
  std::vector<int> GetChildRows(int row, bool recursive = false, bool includeCollapsed = true) const;
  bool HasChildRows(int row) const;
  int GetNextSiblingRow(int row) const;
  int GetPrevSiblingRow(int row) const;
  bool IsCollapsed(int row) const;
  bool SetCollapsed(int row, bool collapsed);
  // Sets the collapsed flag of the row and of each of its ancestors.
  bool CollapseRowsToRoot(int row, bool collapsed);
  // The ids of the collapsed rows, so that the state survives a refill.
  std::set<long long> GetCollapsedRowIds() const;
  // Collapses the rows with these ids; with expandOthers every other row
  // is expanded.
  void SetCollapsedRowIds(const std::set<long long>& rowIds, bool expandOthers);

  // Cells. Every setter keeps the cell's formatting (style, alignment,
  // decimals, colours, ...). A getter into a numeric type converts the
  // value the way QnVariant does and answers true when the value was
  // readable as that type; false for a bad index (the output untouched)
  // or a value that is not a number of that range.
  bool SetCell(int row, int column, const ustr& text, int textData = 0, bool redraw = true);
  bool SetCell(int row, int column, short value, bool redraw = true);
  bool SetCell(int row, int column, int value, bool redraw = true);
  bool SetCell(int row, int column, unsigned int value, bool redraw = true);
  bool SetCell(int row, int column, float value, int decimals = -1, bool redraw = true);
  bool SetCell(int row, int column, double value, int decimals = -1, bool redraw = true);
  bool SetCell(int row, int column, ColorIndex color, bool redraw = true);
  // The model is not copied: the caller keeps it alive while the cell holds it.
  bool SetCell(int row, int column, const gm_model* model, bool redraw = true);
  bool SetCell(int row, int column, const QnVariant& value, bool redraw = true);
  // Text as shown: numbers with the cell's decimals (-1: shortest form).
  bool GetCell(int row, int column, ustr& text) const;
  bool GetCell(int row, int column, ustr& text, int& textData) const;
  bool GetCell(int row, int column, short& value) const;
  bool GetCell(int row, int column, int& value) const;
  bool GetCell(int row, int column, unsigned int& value) const;
  bool GetCell(int row, int column, float& value) const;
  bool GetCell(int row, int column, double& value) const;
  bool GetCell(int row, int column, ColorIndex& color) const;
  bool GetCell(int row, int column, const gm_model*& model) const;
  bool GetCell(int row, int column, QnVariant& value) const;  // a geometry cell reads as Empty
  ustr GetCellText(int row, int column) const;
  int GetCellKind(int row, int column) const;  // CellKind, -1 for a bad index
  bool ResetCellValue(int row, int column, bool redraw = true);
  int GetCellStyle(int row, int column) const;
  bool SetCellStyle(int row, int column, int style, int mask);
  int GetCellAlignment(int row, int column) const;  // the column's when the cell has none
  bool SetCellAlignment(int row, int column, int alignment);
  int GetCellCheck(int row, int column) const;  // CheckValues, -1 for a bad index
  bool SetCellCheck(int row, int column, int value, bool redraw = true);
  std::vector<long long> GetCheckedRowsLParams(int column, int value) const;
  // Checks the rows carrying these LParams and unchecks the other rows
  // that have a check state in the column.
  bool SetCheckedRowsLParams(int column, const std::vector<long long>& lParams);
  // Brings a tree row's check in `column` up to date from its children and
  // then its ancestors from theirs: Checked when every child with a check
  // is checked, Unchecked when none is checked or mixed, CheckMixed
  // otherwise. False when the row has no child with a check.
  bool Update3StateCheck(int row, int column = 0);
  bool SetCellBitmap(int row, int column, void* bitmap, bool redraw = true);  // kept, not owned
  void* GetCellBitmap(int row, int column) const;
  bool SetCellCommand(int row, int column, int command, void* bitmap, bool redraw = true);
  int GetCellCommand(int row, int column) const;  // 0 when none
  bool SetCellColSpan(int row, int column, int span);  // 1 or more
  bool SetCellRowSpan(int row, int column, int span);
  int GetCellColSpan(int row, int column) const;
  int GetCellRowSpan(int row, int column) const;
  bool SetCellRounding(int row, int column, int decimals);  // -1..15; -1: shortest form
  int GetCellRounding(int row, int column) const;
  bool SetCellForegroundColor(int row, int column, COLORREF color);
  bool SetCellBackgroundColor(int row, int column, COLORREF color);
  COLORREF GetCellForegroundColor(int row, int column) const;
  COLORREF GetCellBackgroundColor(int row, int column) const;
  bool SetCellBorder(int row, int column, const CellBorder& border);
  bool GetCellBorder(int row, int column, CellBorder& border) const;
  bool SetCellToolTip(int row, int column, const ustr& text);
  ustr GetCellToolTip(int row, int column) const;
  bool SetCellFont(int row, int column, HFONT font);
  HFONT GetCellFont(int row, int column) const;
  bool SetCellLParam(int row, int column, long long lParam);
  long long GetCellLParam(int row, int column) const;
  bool SetCellSelectionList(int row, int column, const SelectionList& list, bool redraw = true);
  bool SetColumnSelectionList(int column, const SelectionList& list, bool redraw = true);
  // The cell's own list, else its column's; false when neither has one.
  bool GetCellSelectionList(int row, int column, SelectionList& list) const;
  // Shows the entry carrying `value` in the cell; false when no entry has it.
  bool SetCellSelection(int row, int column, long long value);
  // The value of the entry the cell shows; false when it shows none.
  bool GetCellSelection(int row, int column, long long& value) const;
  // Shows the entry with this text (exact) in the column of every selected row.
  bool SetSelectedString(int column, const ustr& text);
  bool SetCellDrawFunction(int row, int column, CellDrawFunc function);
  CellDrawFunc GetCellDrawFunction(int row, int column) const;

  // Selection.
  std::vector<int> GetSelectedRows() const;
  bool SetSelectedRows(const std::vector<int>& rows);  // false, and no change, for a bad index
  // Drops bad and repeated indices from the list, sorts it, selects it.
  bool SetSelectedRows2(std::vector<int>& rows);
  std::vector<long long> GetSelectedRowsLParams() const;
  bool SetSelectedRowsLParams(const std::vector<long long>& lParams);
  std::vector<ustr> GetSelectedRowsTagsW() const;
  std::vector<astr> GetSelectedRowsTagsA() const;
  int GetSelectedColumn() const;
  bool SetSelectedColumn(int column);
  bool SetSelectedCell(int row, int column);
  // Expands the row's collapsed ancestors and scrolls the control to it.
  bool EnsureVisible(int row);
  bool EnsureVisible(int row, int column);

  // Editing. EditCell opens the editor on a cell (false for a read-only,
  // check-box, command or category cell, or without a control).
  bool EditCell(int row, int column);
  void SetEditCommand(int command);
  int GetEditCommand() const;
  bool SetColumnValueValidator(int column, const ValueValidator::Range& range);
  bool GetColumnValueValidator(int column, ValueValidator::Range& range) const;

  // Sorting. The built-in order of one column: empty cells first, then
  // numbers by value, then texts compared case-insensitively as the
  // platform upper-cases characters (never by locale); descending reverses
  // it. Later sort columns break ties of earlier ones; rows that still tie
  // keep their order. Children are sorted among their siblings and stay
  // under their parent; category rows stay where they are and their rows
  // stay under them.
  bool SetSortColumn(int column, SortType type);
  bool SetSortColumns(const std::vector<int>& columns, SortType type);
  int GetSortColumn() const;  // the first sort column, -1 when none
  std::vector<int> GetSortColumns() const;
  SortType GetSortType() const;
  bool SortRows();  // by the current sort state
  bool SortRows(SortType type, int column);
  bool SortRows(const std::vector<SortType>& types, const std::vector<int>& columns);
  // By the function for `column` in the current direction.
  bool SortRows(RowIsLessFunc function, int column);
  // Used by every later sort; null goes back to the built-in order.
  void SetRowIsLessFunc(RowIsLessFunc function);

  // Output: the rows' cell texts, tab-separated, each row ending in "\r\n"
  // (a category row gives its text). Tabs and line breaks inside a text
  // become blanks.
  bool CopyToClipboard(const std::vector<int>& rows);

 private:
  friend struct QnListView2TestAccess;
  QnListView2Impl* m_impl;
};

#endif
