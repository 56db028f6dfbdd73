// The grid's model behind QnListView2. Its functions may throw (memory,
// "vector too long"); the facade turns that into its failure results.
// Every mutation is ordered so that a throw leaves the model as it was:
// what can fail (allocation) happens before what changes the rows.
//
// Memory: a cell is 32 bytes. A number lives in the cell itself; a text
// costs one extra string, and the rarely used attributes (colours, border,
// tool tip, font, bitmap, command, spans, LParam, selection list, draw
// function) live in one block that only the cells using them carry.
#ifndef QUILTOOL_LISTVIEW_QNLISTVIEW2_IMPL_H
#define QUILTOOL_LISTVIEW_QNLISTVIEW2_IMPL_H

#include <stdint.h>

#include <memory>
#include <string>
#include <unordered_map>

#include "QNListViewColumnManager.h"
#include <vector>

#include "QnListView2.h"
#include "listview/row_index.h"

namespace qt {
namespace listview {

typedef QnListView2::SelectionList SelectionList;
struct Control;

struct CellExtra {
  int textData = 0;
  COLORREF foreground = QnListView2::NoColor;
  COLORREF background = QnListView2::NoColor;
  bool hasBorder = false;
  QnListView2::CellBorder border;
  ustr toolTip;
  HFONT font = nullptr;
  void* bitmap = nullptr;
  int command = 0;
  int colSpan = 1;
  int rowSpan = 1;
  long long lParam = 0;
  std::unique_ptr<SelectionList> list;
  bool hasSelection = false;
  long long selection = 0;
  QnListView2::CellDrawFunc draw = nullptr;
};

struct Cell {
  union Number {
    short s;
    int i;
    unsigned int u;
    float f;
    double d;
    bool b;
    const gm_model* model;
  } number;
  uint8_t kind = QnListView2::KindEmpty;
  int8_t decimals = -1;
  uint8_t check = QnListView2::CheckNone;
  uint8_t alignment = 0;
  int style = 0;
  std::unique_ptr<ustr> text;         // the Text kind only
  std::unique_ptr<CellExtra> extra;  // rare attributes

  Cell() { number.d = 0; }
  QnVariant value() const;
  // Replaces the value; the formatting stays. Throws before changing
  // anything when the text cannot be copied.
  void setValue(const QnVariant& v);
  void setModel(const gm_model* model);
  void clearValue();
  ustr shownText() const;
  CellExtra& extraBlock();  // made on first use
};

struct RowExtra {
  COLORREF foreground = QnListView2::NoColor;
  COLORREF background = QnListView2::NoColor;
  HFONT font = nullptr;
  ustr categoryText;
};

struct Row {
  std::vector<Cell> cells;
  long long lParam = 0;
  long long id = -1;
  long long parentId = -1;  // -1: a root
  ustr tag;
  int style = 0;
  bool category = false;
  bool collapsed = false;
  bool selected = false;
  std::unique_ptr<RowExtra> extra;

  RowExtra& extraBlock();
};

struct Column {
  ustr name;
  int width = 0;
  int alignment = 0;
  int style = 0;
  long long lParam = 0;
  COLORREF foreground = QnListView2::NoColor;
  COLORREF background = QnListView2::NoColor;
  HFONT font = nullptr;
  bool shown = true;
  bool hideable = true;
  std::unique_ptr<SelectionList> list;
  std::unique_ptr<ValueValidator::Range> validator;
};

}  // namespace listview
}  // namespace qt

class QnListView2Impl {
 public:
  typedef QnListView2::SortType SortType;
  typedef qt::listview::Row Row;
  typedef qt::listview::Cell Cell;
  typedef qt::listview::Column Column;

  QnListView2Impl();

  // View.
  int style = 0;
  int rowHeight = 18;
  int editCommand = 0;
  int selectedColumn = -1;
  int selectedCellRow = -1;
  int columnManagerFlags = 0;
  // Made on first use (grid_column_manager.cpp).
  std::unique_ptr<QNListViewColumnManager> columnManager;
  QNListViewColumnManager& manager();
  bool sortableHeader = false;
  int ensuredRow = -1;
  int ensuredColumn = -1;
  QnListView2::RowIsLessFunc rowIsLess = nullptr;
  std::vector<int> sortColumns;
  std::vector<SortType> sortTypes;
  // Rows may not grow past this; tests lower it to reach the limit.
  size_t maxRows;
  // The bound list control, null when none (listview_platform.h).
  qt::listview::Control* control = nullptr;

  std::vector<Column> columns;
  std::vector<Row> rows;

  bool validRow(int row) const { return row >= 0 && static_cast<size_t>(row) < rows.size(); }
  bool validColumn(int column) const { return column >= 0 && static_cast<size_t>(column) < columns.size(); }
  bool validCell(int row, int column) const { return validRow(row) && validColumn(column); }
  Cell* cell(int row, int column) { return validCell(row, column) ? &rows[row].cells[column] : nullptr; }
  const Cell* cell(int row, int column) const {
    return validCell(row, column) ? &rows[row].cells[column] : nullptr;
  }

  // Columns (listview_columns.cpp).
  int InsertColumn(int index, const ustr& name, int width, int alignment, long long lParam);
  bool DeleteColumn(int column);
  void DeleteAllColumns();

  // Rows (listview_rows.cpp).
  int InsertRow(int index, long long lParam, int parentRow, int style, bool category, const ustr* text);
  int AddRow(long long lParam, int parentRow, int style, bool category, const ustr* text);
  // Deletes the marked rows and their descendants; answers how many went.
  int DeleteMarked(std::vector<char>& marked);
  void DeleteAllRows();
  int DeleteEmptyCategoryRows();
  bool SetRowLParam(int row, long long lParam);
  bool SetRowTag(int row, const ustr& tag);
  bool SetRowId(int row, long long id);
  bool SetRowParentId(int row, long long parentId);
  int FindRowIndex(int startRow, long long lParam) const;
  int FindRowIndexByRowId(long long id) const;
  int FindRowIndexByTag(int startRow, const std::wstring& tag) const;
  int FindNextCategoryRowIndex(int row) const;
  bool hasChildren(long long id) const;

  // Tree (listview_tree.cpp).
  int GetParentRow(int row) const;
  std::vector<int> GetChildRows(int row, bool recursive, bool includeCollapsed) const;
  int GetSiblingRow(int row, int step) const;
  bool CollapseRowsToRoot(int row, bool collapsed);
  bool Update3StateCheck(int row, int column);
  bool EnsureVisible(int row);
  // True when `row` lies in the subtree of `ancestor` (itself excluded).
  bool isDescendant(int row, int ancestor) const;

  // Sorting and reordering (listview_sort.cpp).
  bool Sort(const std::vector<SortType>& types, const std::vector<int>& columns, QnListView2::RowIsLessFunc less);
  bool ReverseRows();

  // Selection, checks and output (listview_selection.cpp).
  bool SetSelectedRows(const std::vector<int>& rows);
  bool SetCheckedRowsLParams(int column, const std::vector<long long>& lParams);
  bool SetSelection(int row, int column, long long value);
  bool SetSelectedString(int column, const ustr& text);
  const qt::listview::SelectionList* selectionList(int row, int column) const;
  ustr ClipboardText(const std::vector<int>& rows) const;

  // The row finders' indexes are rebuilt on demand after rows moved
  // (insert in the middle, delete, sort, reverse); appends and key changes
  // keep them up to date in place.
  void rowsMoved();

 private:
  // Puts the rows in the given order (new position -> old index).
  void applyOrder(const std::vector<int>& order);
  void checkGrowth() const;
  long long nextAutoId_ = -2;
  mutable qt::listview::RowIndex<long long> lParamIndex_;
  mutable qt::listview::RowIndex<long long> idIndex_;
  mutable qt::listview::RowIndex<std::wstring> tagIndex_;
  // Number of rows naming each id as their parent; kept exact at all times.
  std::unordered_map<long long, int> childCount_;
  void ensureLParamIndex() const;
  void ensureIdIndex() const;
  void ensureTagIndex() const;
  void addChild(long long parentId);
  void removeChild(long long parentId);
};

#endif
