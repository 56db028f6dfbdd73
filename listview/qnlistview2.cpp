// QnListView2: each call reaches the model through the library's
// exception boundary.
#include "QnListView2.h"

#include <algorithm>
#include <type_traits>
#include <unordered_set>

#include "core/boundary.h"
#include "core/clipboard.h"
#include "listview/listview_platform.h"
#include "listview/grid_column_manager.h"
#include "listview/qnlistview2_impl.h"

namespace {

template <class R, class F>
R Guard(QnListView2Impl* impl, const char* where, R fallback, F&& body) noexcept {
  if (!impl) return fallback;
  return qt::NoThrow<R>(where, fallback, [&] { return body(*impl); });
}

template <class F>
void GuardVoid(QnListView2Impl* impl, const char* where, F&& body) noexcept {
  if (impl) qt::NoThrowVoid(where, [&] { body(*impl); });
}

using qt::listview::Cell;
using qt::listview::CellExtra;

bool ValidAlignment(int a) { return a >= 0 && a <= 63; }

// Runs a change of the model, then has a bound control show it. The
// control catches up lazily (on its next paint or call), so a fill of many
// rows costs one resync, not one per row.
template <class F>
auto Changing(QnListView2Impl* impl, F&& body) -> decltype(body()) {
  auto result = body();
  if (impl && impl->control) qt::NoThrowVoid("QnListView2", [&] { qt::listview::platform::Refresh(*impl); });
  return result;
}
template <class F>
void ChangingVoid(QnListView2Impl* impl, F&& body) {
  body();
  if (impl && impl->control) qt::NoThrowVoid("QnListView2", [&] { qt::listview::platform::Refresh(*impl); });
}

}  // namespace

#define QT_LV(fallback, ...) Guard(m_impl, "QnListView2", fallback, [&](QnListView2Impl & m) -> typename std::decay<decltype(fallback)>::type { __VA_ARGS__ })
#define QT_LV_VOID(...) GuardVoid(m_impl, "QnListView2", [&](QnListView2Impl & m) { __VA_ARGS__ })
#define QT_LV_CHANGE(fallback, ...) Changing(m_impl, [&] { return QT_LV(fallback, __VA_ARGS__); })
#define QT_LV_VOID_CHANGE(...) ChangingVoid(m_impl, [&] { QT_LV_VOID(__VA_ARGS__); })

QnListView2::QnListView2() : m_impl(nullptr) {
  m_impl = qt::NoThrow<QnListView2Impl*>("QnListView2", nullptr, [] { return new QnListView2Impl; });
}

QnListView2::~QnListView2() {
  Detach();
  delete m_impl;
}

// ---- life ----
bool QnListView2::Attach(HINSTANCE instance, HWND window) {
  return QT_LV(false, if (!qt::listview::platform::Attach(m, instance, window)) return false;
               static_cast<qt::listview::GridColumnManager&>(m.manager()).ControlAttached(); return true;);
}
void QnListView2::Detach() { QT_LV_VOID(qt::listview::platform::Detach(m);); }
bool QnListView2::OnNotify(WPARAM wParam, LPARAM lParam) {
  return QT_LV(false, if (qt::listview::platform::OnNotify(m, wParam, lParam)) return true;
               // A right click on the header opens the column manager's menu.
               LRESULT result = 0; return m.manager().OnNotify(wParam, lParam, &result););
}
LRESULT QnListView2::OnMeasureItem(tagMEASUREITEMSTRUCT* item) {
  return QT_LV(LRESULT(0), return qt::listview::platform::OnMeasureItem(m, item););
}
void QnListView2::Redraw() { QT_LV_VOID(qt::listview::platform::Refresh(m);); }
void QnListView2::RedrawRow(int row) { QT_LV_VOID(qt::listview::platform::RedrawRow(m, row);); }

// ---- view ----
bool QnListView2::SetStyle(int flags, int mask) {
  return QT_LV_CHANGE(false, m.style = (m.style & ~mask) | (flags & mask); return true;);
}
int QnListView2::GetStyle() const { return QT_LV(0, return m.style;); }
bool QnListView2::SetRowHeight(int pixels) {
  return QT_LV_CHANGE(false, if (pixels < 1 || pixels > 1000) return false; m.rowHeight = pixels; return true;);
}
int QnListView2::GetRowHeight() const { return QT_LV(0, return m.rowHeight;); }

// ---- columns ----
int QnListView2::AddColumn(const ustr& name, int width, int alignment, long long lParam) {
  return QT_LV_CHANGE(-1, if (!ValidAlignment(alignment)) return -1;
               const int at = m.InsertColumn(static_cast<int>(m.columns.size()), name, width, alignment, lParam);
               if (at >= 0) m.manager().OnColumnInserted(at); return at;);
}
int QnListView2::InsertColumn(int index, const ustr& name, int width, int alignment, long long lParam) {
  return QT_LV_CHANGE(-1, if (!ValidAlignment(alignment)) return -1;
               const int at = m.InsertColumn(index, name, width, alignment, lParam);
               if (at >= 0) m.manager().OnColumnInserted(at); return at;);
}
bool QnListView2::SetColumn(int column, const ustr& name, int width, int alignment, long long lParam) {
  return QT_LV_CHANGE(false, if (!m.validColumn(column) || !ValidAlignment(alignment)) return false;
               ustr copy(name); QnListView2Impl::Column& c = m.columns[column]; c.name.str().swap(copy.str());
               c.width = width < 0 ? 0 : width; c.alignment = alignment; c.lParam = lParam; return true;);
}
bool QnListView2::DeleteColumn(int column) {
  return QT_LV_CHANGE(false, if (!m.DeleteColumn(column)) return false; m.manager().OnColumnDeleted(column); return true;);
}
void QnListView2::DeleteAllColumns() {
  QT_LV_VOID_CHANGE(for (int c = static_cast<int>(m.columns.size()) - 1; c >= 0; --c) m.manager().OnColumnDeleted(c);
                    m.DeleteAllColumns(););
}
int QnListView2::GetColumnCount() const { return QT_LV(0, return static_cast<int>(m.columns.size());); }
ustr QnListView2::GetColumnName(int column) const {
  return QT_LV(ustr(), return m.validColumn(column) ? m.columns[column].name : ustr(););
}
bool QnListView2::SetColumnName(int column, const ustr& name) {
  return QT_LV_CHANGE(false, if (!m.validColumn(column)) return false; m.columns[column].name = name; return true;);
}
int QnListView2::GetColumnWidth(int column) const {
  return QT_LV(-1, return m.validColumn(column) ? m.columns[column].width : -1;);
}
bool QnListView2::SetColumnWidth(int column, int width) {
  return QT_LV_CHANGE(false, if (!m.validColumn(column) || width < 0) return false; m.columns[column].width = width; return true;);
}
int QnListView2::GetColumnAlignment(int column) const {
  return QT_LV(0, return m.validColumn(column) ? m.columns[column].alignment : 0;);
}
bool QnListView2::SetColumnAlignment(int column, int alignment) {
  return QT_LV_CHANGE(false, if (!m.validColumn(column) || !ValidAlignment(alignment)) return false;
               m.columns[column].alignment = alignment; return true;);
}
int QnListView2::GetColumnStyle(int column) const {
  return QT_LV(0, return m.validColumn(column) ? m.columns[column].style : 0;);
}
bool QnListView2::SetColumnStyle(int column, int style, int mask) {
  return QT_LV_CHANGE(false, if (!m.validColumn(column)) return false; int& s = m.columns[column].style;
               s = (s & ~mask) | (style & mask); return true;);
}
bool QnListView2::SetColumnForegroundColor(int column, COLORREF color) {
  return QT_LV_CHANGE(false, if (!m.validColumn(column)) return false; m.columns[column].foreground = color; return true;);
}
bool QnListView2::SetColumnBackgroundColor(int column, COLORREF color) {
  return QT_LV_CHANGE(false, if (!m.validColumn(column)) return false; m.columns[column].background = color; return true;);
}
COLORREF QnListView2::GetColumnForegroundColor(int column) const {
  return QT_LV(NoColor, return m.validColumn(column) ? m.columns[column].foreground : NoColor;);
}
COLORREF QnListView2::GetColumnBackgroundColor(int column) const {
  return QT_LV(NoColor, return m.validColumn(column) ? m.columns[column].background : NoColor;);
}
bool QnListView2::SetColumnFont(int column, HFONT font) {
  return QT_LV_CHANGE(false, if (!m.validColumn(column)) return false; m.columns[column].font = font; return true;);
}
HFONT QnListView2::GetColumnFont(int column) const {
  return QT_LV(HFONT(), return m.validColumn(column) ? m.columns[column].font : HFONT(););
}
long long QnListView2::GetColumnLParam(int column) const {
  return QT_LV(0LL, return m.validColumn(column) ? m.columns[column].lParam : 0LL;);
}
bool QnListView2::SetColumnLParam(int column, long long lParam) {
  return QT_LV(false, if (!m.validColumn(column)) return false; m.columns[column].lParam = lParam; return true;);
}
std::vector<long long> QnListView2::GetColumnsLParams() const {
  return QT_LV(std::vector<long long>(), std::vector<long long> out; out.reserve(m.columns.size());
               for (const auto& c : m.columns) out.push_back(c.lParam); return out;);
}
int QnListView2::FindColumnIndex(long long lParam) const {
  return QT_LV(-1, for (size_t i = 0; i < m.columns.size(); ++i) if (m.columns[i].lParam == lParam) return static_cast<int>(i);
               return -1;);
}
bool QnListView2::ShowHideColumn(int column, bool show, bool redraw) {
  return QT_LV_CHANGE(false, return m.manager().ShowHideColumn(column, show, redraw););
}
bool QnListView2::IsColumnShown(int column) const {
  return QT_LV(false, return m.validColumn(column) && m.columns[column].shown;);
}
bool QnListView2::SetColumnHideable(int column, bool hideable) {
  return QT_LV(false, if (!m.validColumn(column)) return false; m.columns[column].hideable = hideable;
               m.manager().SetHideable(column, hideable); return true;);
}
bool QnListView2::IsColumnHideable(int column) const {
  return QT_LV(false, return m.validColumn(column) && m.columns[column].hideable;);
}
void QnListView2::SetColumnManagerFlags(int flags) {
  QT_LV_VOID(m.columnManagerFlags = flags; m.manager().SetFlags(flags, ~0););
}
QNListViewColumnManager* QnListView2::GetColumnManager() {
  return QT_LV(static_cast<QNListViewColumnManager*>(nullptr), return &m.manager(););
}
// Columns with distinct LParams are saved by LParam, so the layout still
// fits after the program changed its columns; others by index.
static bool DistinctLParams(const std::vector<long long>& lParams) {
  std::unordered_set<long long> seen(lParams.begin(), lParams.end());
  return seen.size() == lParams.size();
}
bool QnListView2::SaveColumnsToRegistry(const wchar_t* key) {
  return QT_LV(false, const std::vector<long long> lParams = GetColumnsLParams();
               return DistinctLParams(lParams) ? m.manager().SaveToRegistry(key, lParams) : m.manager().SaveToRegistry(key););
}
bool QnListView2::LoadColumnsFromRegistry(const wchar_t* key, bool redraw) {
  return QT_LV(false, const std::vector<long long> lParams = GetColumnsLParams();
               return DistinctLParams(lParams) ? m.manager().LoadFromRegistry(key, redraw, lParams)
                                               : m.manager().LoadFromRegistry(key, redraw););
}
int QnListView2::GetColumnManagerFlags() const { return QT_LV(0, return m.columnManagerFlags;); }
void QnListView2::SetSortableHeader(bool sortable) { QT_LV_VOID(m.sortableHeader = sortable;); }
bool QnListView2::IsSortableHeader() const { return QT_LV(false, return m.sortableHeader;); }
int QnListView2::GetHeaderItemIndexAt(POINT point) const {
  return QT_LV(-1, return qt::listview::platform::HeaderItemAt(m, point););
}

// ---- rows ----
int QnListView2::AddRow(long long lParam, int parentRow, int style) {
  return QT_LV_CHANGE(-1, return m.AddRow(lParam, parentRow, style, false, nullptr););
}
int QnListView2::InsertRow(int index, long long lParam, int parentRow, int style) {
  return QT_LV_CHANGE(-1, return m.InsertRow(index, lParam, parentRow, style, false, nullptr););
}
int QnListView2::AddCategoryRow(long long lParam, int style, const ustr& text) {
  return QT_LV_CHANGE(-1, return m.AddRow(lParam, -1, style, true, &text););
}
int QnListView2::InsertCategoryRow(int index, long long lParam, int style, const ustr& text) {
  return QT_LV_CHANGE(-1, return m.InsertRow(index, lParam, -1, style, true, &text););
}
bool QnListView2::IsCategoryRow(int row) const { return QT_LV(false, return m.validRow(row) && m.rows[row].category;); }
bool QnListView2::DeleteRow(int row, long long lParam) {
  return QT_LV_CHANGE(false, if (row == -1) row = m.FindRowIndex(0, lParam); if (!m.validRow(row)) return false;
               std::vector<char> marked(m.rows.size(), 0); marked[row] = 1; return m.DeleteMarked(marked) > 0;);
}
int QnListView2::DeleteRows(const std::vector<int>* rows, const std::vector<long long>* lParams) {
  return QT_LV_CHANGE(0, std::vector<char> marked(m.rows.size(), 0);
               if (rows) for (int r : *rows) if (m.validRow(r)) marked[r] = 1;
               if (lParams) {
                 const std::unordered_set<long long> wanted(lParams->begin(), lParams->end());
                 for (size_t i = 0; i < m.rows.size(); ++i)
                   if (wanted.count(m.rows[i].lParam)) marked[i] = 1;
               }
               return m.DeleteMarked(marked););
}
int QnListView2::DeleteRowsByTags(const std::vector<ustr>& tags) {
  return QT_LV_CHANGE(0, std::vector<char> marked(m.rows.size(), 0);
               for (const ustr& t : tags) for (int r = m.FindRowIndexByTag(0, t.str()); r >= 0; r = m.FindRowIndexByTag(r + 1, t.str())) marked[r] = 1;
               return m.DeleteMarked(marked););
}
int QnListView2::DeleteRowsByTags(const std::vector<astr>& tags) {
  return QT_LV_CHANGE(0, std::vector<ustr> wide; wide.reserve(tags.size());
               for (const astr& t : tags) wide.push_back(ustr::fromAnsi(t.c_str()));
               return DeleteRowsByTags(wide););
}
void QnListView2::DeleteAllRows() { QT_LV_VOID_CHANGE(m.DeleteAllRows();); }
int QnListView2::DeleteEmptyCategoryRows() { return QT_LV_CHANGE(0, return m.DeleteEmptyCategoryRows();); }
bool QnListView2::ReverseRows() { return QT_LV_CHANGE(false, return m.ReverseRows();); }
int QnListView2::GetRowCount() const { return QT_LV(0, return static_cast<int>(m.rows.size());); }
int QnListView2::GetRowStyle(int row) const { return QT_LV(0, return m.validRow(row) ? m.rows[row].style : 0;); }
bool QnListView2::SetRowStyle(int row, int style, int mask) {
  return QT_LV_CHANGE(false, if (!m.validRow(row)) return false; int& s = m.rows[row].style; s = (s & ~mask) | (style & mask); return true;);
}
int QnListView2::FindRowIndex(long long lParam) const { return QT_LV(-1, return m.FindRowIndex(0, lParam);); }
int QnListView2::FindRowIndex(int startRow, long long lParam) const {
  return QT_LV(-1, return m.FindRowIndex(startRow, lParam););
}
int QnListView2::FindRowIndexByRowId(long long rowId) const { return QT_LV(-1, return m.FindRowIndexByRowId(rowId);); }
int QnListView2::FindRowIndexByTag(const wchar_t* tag) const { return FindRowIndexByTag(0, tag); }
int QnListView2::FindRowIndexByTag(const char* tag) const { return FindRowIndexByTag(0, tag); }
int QnListView2::FindRowIndexByTag(int startRow, const wchar_t* tag) const {
  return QT_LV(-1, if (!tag) return -1; return m.FindRowIndexByTag(startRow, std::wstring(tag)););
}
int QnListView2::FindRowIndexByTag(int startRow, const char* tag) const {
  return QT_LV(-1, if (!tag) return -1; return m.FindRowIndexByTag(startRow, ustr::fromAnsi(tag).str()););
}
int QnListView2::FindNextCategoryRowIndex(int row) const { return QT_LV(-1, return m.FindNextCategoryRowIndex(row);); }
long long QnListView2::GetRowLParam(int row) const { return QT_LV(0LL, return m.validRow(row) ? m.rows[row].lParam : 0LL;); }
bool QnListView2::SetRowLParam(int row, long long lParam) { return QT_LV(false, return m.SetRowLParam(row, lParam);); }
std::vector<long long> QnListView2::GetRowsLParams() const {
  return QT_LV(std::vector<long long>(), std::vector<long long> out; out.reserve(m.rows.size());
               for (const auto& r : m.rows) out.push_back(r.lParam); return out;);
}
ustr QnListView2::GetRowTag(int row) const { return QT_LV(ustr(), return m.validRow(row) ? m.rows[row].tag : ustr();); }
astr QnListView2::GetRowTagA(int row) const { return QT_LV(astr(), return m.validRow(row) ? m.rows[row].tag.toAnsi() : astr();); }
bool QnListView2::SetRowTag(int row, const ustr& tag) { return QT_LV(false, return m.SetRowTag(row, tag);); }
bool QnListView2::SetRowTag(int row, const char* tag) { return QT_LV(false, return m.SetRowTag(row, ustr::fromAnsi(tag));); }
std::vector<ustr> QnListView2::GetRowsTagsW() const {
  return QT_LV(std::vector<ustr>(), std::vector<ustr> out; out.reserve(m.rows.size()); for (const auto& r : m.rows) out.push_back(r.tag);
               return out;);
}
std::vector<astr> QnListView2::GetRowsTagsA() const {
  return QT_LV(std::vector<astr>(), std::vector<astr> out; out.reserve(m.rows.size());
               for (const auto& r : m.rows) out.push_back(r.tag.toAnsi()); return out;);
}
bool QnListView2::SetRowId(int row, long long rowId) { return QT_LV(false, return m.SetRowId(row, rowId);); }
long long QnListView2::GetRowId(int row) const { return QT_LV(-1LL, return m.validRow(row) ? m.rows[row].id : -1LL;); }
bool QnListView2::SetRowParentId(int row, long long parentId) { return QT_LV_CHANGE(false, return m.SetRowParentId(row, parentId);); }
long long QnListView2::GetRowParentId(int row) const {
  return QT_LV(-1LL, return m.validRow(row) ? m.rows[row].parentId : -1LL;);
}
bool QnListView2::SetRowForegroundColor(int row, COLORREF color) {
  return QT_LV_CHANGE(false, if (!m.validRow(row)) return false; m.rows[row].extraBlock().foreground = color; return true;);
}
bool QnListView2::SetRowBackgroundColor(int row, COLORREF color) {
  return QT_LV_CHANGE(false, if (!m.validRow(row)) return false; m.rows[row].extraBlock().background = color; return true;);
}
COLORREF QnListView2::GetRowForegroundColor(int row) const {
  return QT_LV(NoColor, return m.validRow(row) && m.rows[row].extra ? m.rows[row].extra->foreground : NoColor;);
}
COLORREF QnListView2::GetRowBackgroundColor(int row) const {
  return QT_LV(NoColor, return m.validRow(row) && m.rows[row].extra ? m.rows[row].extra->background : NoColor;);
}
bool QnListView2::SetRowFont(int row, HFONT font) {
  return QT_LV_CHANGE(false, if (!m.validRow(row)) return false; m.rows[row].extraBlock().font = font; return true;);
}
HFONT QnListView2::GetRowFont(int row) const {
  return QT_LV(HFONT(), return m.validRow(row) && m.rows[row].extra ? m.rows[row].extra->font : HFONT(););
}

// ---- tree ----
int QnListView2::GetParentRow(int row) const { return QT_LV(-1, return m.GetParentRow(row);); }
std::vector<int> QnListView2::GetChildRows(int row, bool recursive, bool includeCollapsed) const {
  return QT_LV(std::vector<int>(), return m.GetChildRows(row, recursive, includeCollapsed););
}
bool QnListView2::HasChildRows(int row) const { return QT_LV(false, return m.validRow(row) && m.hasChildren(m.rows[row].id);); }
int QnListView2::GetNextSiblingRow(int row) const { return QT_LV(-1, return m.GetSiblingRow(row, 1);); }
int QnListView2::GetPrevSiblingRow(int row) const { return QT_LV(-1, return m.GetSiblingRow(row, -1);); }
bool QnListView2::IsCollapsed(int row) const { return QT_LV(false, return m.validRow(row) && m.rows[row].collapsed;); }
bool QnListView2::SetCollapsed(int row, bool collapsed) {
  return QT_LV_CHANGE(false, if (!m.validRow(row)) return false; m.rows[row].collapsed = collapsed; return true;);
}
bool QnListView2::CollapseRowsToRoot(int row, bool collapsed) { return QT_LV_CHANGE(false, return m.CollapseRowsToRoot(row, collapsed);); }
std::set<long long> QnListView2::GetCollapsedRowIds() const {
  return QT_LV(std::set<long long>(), std::set<long long> ids; for (const auto& r : m.rows) if (r.collapsed) ids.insert(r.id);
               return ids;);
}
void QnListView2::SetCollapsedRowIds(const std::set<long long>& rowIds, bool expandOthers) {
  QT_LV_VOID_CHANGE(for (auto& r : m.rows) {
    if (rowIds.count(r.id)) r.collapsed = true;
    else if (expandOthers) r.collapsed = false;
  });
}

// ---- cells ----
namespace {

// Reads a cell into T through QnVariant's conversion; the output changes
// only when the cell exists.
template <class T>
bool ReadAs(const QnListView2Impl& m, int row, int column, T& out, T (QnVariant::*convert)(bool*) const) {
  const Cell* c = m.cell(row, column);
  if (!c) return false;
  bool ok = false;
  out = (c->value().*convert)(&ok);
  return ok;
}

// Writes a value; a decimals of -2 leaves the cell's own.
bool Write(QnListView2Impl& m, int row, int column, const QnVariant& value, int decimals = -2) {
  Cell* c = m.cell(row, column);
  if (!c || decimals < -2 || decimals > 15) return false;
  c->setValue(value);
  if (decimals != -2) c->decimals = static_cast<int8_t>(decimals);
  if (c->extra) c->extra->hasSelection = false;
  return true;
}

}  // namespace

bool QnListView2::SetCell(int row, int column, const ustr& text, int textData, bool) {
  return QT_LV_CHANGE(false, Cell* c = m.cell(row, column); if (!c) return false;
               if (textData != 0) c->extraBlock().textData = textData;
               if (!Write(m, row, column, QnVariant(text))) return false;
               if (c->extra) c->extra->textData = textData; return true;);
}
bool QnListView2::SetCell(int row, int column, short value, bool) { return QT_LV_CHANGE(false, return Write(m, row, column, QnVariant(value));); }
bool QnListView2::SetCell(int row, int column, int value, bool) { return QT_LV_CHANGE(false, return Write(m, row, column, QnVariant(value));); }
bool QnListView2::SetCell(int row, int column, unsigned int value, bool) {
  return QT_LV_CHANGE(false, return Write(m, row, column, QnVariant(value)););
}
bool QnListView2::SetCell(int row, int column, float value, int decimals, bool) {
  return QT_LV_CHANGE(false, if (decimals < -1) return false; return Write(m, row, column, QnVariant(value), decimals););
}
bool QnListView2::SetCell(int row, int column, double value, int decimals, bool) {
  return QT_LV_CHANGE(false, if (decimals < -1) return false; return Write(m, row, column, QnVariant(value), decimals););
}
bool QnListView2::SetCell(int row, int column, ColorIndex color, bool) {
  return QT_LV_CHANGE(false, return Write(m, row, column, QnVariant::fromColorIndex(color.index)););
}
bool QnListView2::SetCell(int row, int column, const gm_model* model, bool) {
  return QT_LV_CHANGE(false, Cell* c = m.cell(row, column); if (!c) return false; c->setModel(model); return true;);
}
bool QnListView2::SetCell(int row, int column, const QnVariant& value, bool) {
  return QT_LV_CHANGE(false, return Write(m, row, column, value););
}
bool QnListView2::GetCell(int row, int column, ustr& text) const {
  return QT_LV(false, const Cell* c = m.cell(row, column); if (!c) return false; text = c->shownText(); return true;);
}
bool QnListView2::GetCell(int row, int column, ustr& text, int& textData) const {
  return QT_LV(false, const Cell* c = m.cell(row, column); if (!c) return false; text = c->shownText();
               textData = c->extra ? c->extra->textData : 0; return true;);
}
bool QnListView2::GetCell(int row, int column, short& value) const {
  return QT_LV(false, return ReadAs(m, row, column, value, &QnVariant::toShort););
}
bool QnListView2::GetCell(int row, int column, int& value) const {
  return QT_LV(false, return ReadAs(m, row, column, value, &QnVariant::toInt););
}
bool QnListView2::GetCell(int row, int column, unsigned int& value) const {
  return QT_LV(false, return ReadAs(m, row, column, value, &QnVariant::toUInt););
}
bool QnListView2::GetCell(int row, int column, float& value) const {
  return QT_LV(false, return ReadAs(m, row, column, value, &QnVariant::toFloat););
}
bool QnListView2::GetCell(int row, int column, double& value) const {
  return QT_LV(false, return ReadAs(m, row, column, value, &QnVariant::toDouble););
}
bool QnListView2::GetCell(int row, int column, ColorIndex& color) const {
  return QT_LV(false, return ReadAs(m, row, column, color.index, &QnVariant::toColorIndex););
}
bool QnListView2::GetCell(int row, int column, const gm_model*& model) const {
  return QT_LV(false, const Cell* c = m.cell(row, column); if (!c || c->kind != KindGeometry) return false;
               model = c->number.model; return true;);
}
bool QnListView2::GetCell(int row, int column, QnVariant& value) const {
  return QT_LV(false, const Cell* c = m.cell(row, column); if (!c) return false; value = c->value(); return true;);
}
ustr QnListView2::GetCellText(int row, int column) const {
  return QT_LV(ustr(), const Cell* c = m.cell(row, column); return c ? c->shownText() : ustr(););
}
int QnListView2::GetCellKind(int row, int column) const {
  return QT_LV(-1, const Cell* c = m.cell(row, column); return c ? static_cast<int>(c->kind) : -1;);
}
bool QnListView2::ResetCellValue(int row, int column, bool) {
  return QT_LV_CHANGE(false, Cell* c = m.cell(row, column); if (!c) return false; c->clearValue();
               if (c->extra) c->extra->hasSelection = false; return true;);
}
int QnListView2::GetCellStyle(int row, int column) const {
  return QT_LV(0, const Cell* c = m.cell(row, column); return c ? c->style : 0;);
}
bool QnListView2::SetCellStyle(int row, int column, int style, int mask) {
  return QT_LV_CHANGE(false, Cell* c = m.cell(row, column); if (!c) return false; c->style = (c->style & ~mask) | (style & mask);
               return true;);
}
int QnListView2::GetCellAlignment(int row, int column) const {
  return QT_LV(0, const Cell* c = m.cell(row, column); if (!c) return 0;
               return c->alignment ? static_cast<int>(c->alignment) : m.columns[column].alignment;);
}
bool QnListView2::SetCellAlignment(int row, int column, int alignment) {
  return QT_LV_CHANGE(false, Cell* c = m.cell(row, column); if (!c || !ValidAlignment(alignment)) return false;
               c->alignment = static_cast<uint8_t>(alignment); return true;);
}
int QnListView2::GetCellCheck(int row, int column) const {
  return QT_LV(-1, const Cell* c = m.cell(row, column); return c ? static_cast<int>(c->check) : -1;);
}
bool QnListView2::SetCellCheck(int row, int column, int value, bool) {
  return QT_LV_CHANGE(false, Cell* c = m.cell(row, column); if (!c || value < CheckNone || value > CheckMixed) return false;
               c->check = static_cast<uint8_t>(value); return true;);
}
std::vector<long long> QnListView2::GetCheckedRowsLParams(int column, int value) const {
  return QT_LV(std::vector<long long>(), std::vector<long long> out; if (!m.validColumn(column)) return out;
               for (const auto& r : m.rows) if (r.cells[column].check == value) out.push_back(r.lParam); return out;);
}
bool QnListView2::SetCheckedRowsLParams(int column, const std::vector<long long>& lParams) {
  return QT_LV_CHANGE(false, return m.SetCheckedRowsLParams(column, lParams););
}
bool QnListView2::Update3StateCheck(int row, int column) { return QT_LV_CHANGE(false, return m.Update3StateCheck(row, column);); }

#define QT_LV_CELL_SET(body) \
  QT_LV(false, Cell* c = m.cell(row, column); if (!c) return false; body; return true;)
#define QT_LV_CELL_SET_CHANGE(body) \
  QT_LV_CHANGE(false, Cell* c = m.cell(row, column); if (!c) return false; body; return true;)
#define QT_LV_CELL_GET(fallback, expr) \
  QT_LV(fallback, const Cell* c = m.cell(row, column); return c && c->extra ? (expr) : (fallback);)

bool QnListView2::SetCellBitmap(int row, int column, void* bitmap, bool) { return QT_LV_CELL_SET_CHANGE(c->extraBlock().bitmap = bitmap); }
void* QnListView2::GetCellBitmap(int row, int column) const {
  return QT_LV_CELL_GET(static_cast<void*>(nullptr), c->extra->bitmap);
}
bool QnListView2::SetCellCommand(int row, int column, int command, void* bitmap, bool) {
  return QT_LV_CELL_SET_CHANGE(CellExtra& e = c->extraBlock(); e.command = command; e.bitmap = bitmap;
                        c->style = command ? (c->style | CellButton) : (c->style & ~CellButton));
}
int QnListView2::GetCellCommand(int row, int column) const { return QT_LV_CELL_GET(0, c->extra->command); }
bool QnListView2::SetCellColSpan(int row, int column, int span) {
  return QT_LV_CHANGE(false, Cell* c = m.cell(row, column); if (!c || span < 1) return false; c->extraBlock().colSpan = span; return true;);
}
bool QnListView2::SetCellRowSpan(int row, int column, int span) {
  return QT_LV_CHANGE(false, Cell* c = m.cell(row, column); if (!c || span < 1) return false; c->extraBlock().rowSpan = span; return true;);
}
int QnListView2::GetCellColSpan(int row, int column) const {
  return QT_LV(0, const Cell* c = m.cell(row, column); return !c ? 0 : c->extra ? c->extra->colSpan : 1;);
}
int QnListView2::GetCellRowSpan(int row, int column) const {
  return QT_LV(0, const Cell* c = m.cell(row, column); return !c ? 0 : c->extra ? c->extra->rowSpan : 1;);
}
bool QnListView2::SetCellRounding(int row, int column, int decimals) {
  return QT_LV_CHANGE(false, Cell* c = m.cell(row, column); if (!c || decimals < -1 || decimals > 15) return false;
               c->decimals = static_cast<int8_t>(decimals); return true;);
}
int QnListView2::GetCellRounding(int row, int column) const {
  return QT_LV(-1, const Cell* c = m.cell(row, column); return c ? static_cast<int>(c->decimals) : -1;);
}
bool QnListView2::SetCellForegroundColor(int row, int column, COLORREF color) {
  return QT_LV_CELL_SET_CHANGE(c->extraBlock().foreground = color);
}
bool QnListView2::SetCellBackgroundColor(int row, int column, COLORREF color) {
  return QT_LV_CELL_SET_CHANGE(c->extraBlock().background = color);
}
COLORREF QnListView2::GetCellForegroundColor(int row, int column) const {
  return QT_LV_CELL_GET(NoColor, c->extra->foreground);
}
COLORREF QnListView2::GetCellBackgroundColor(int row, int column) const {
  return QT_LV_CELL_GET(NoColor, c->extra->background);
}
bool QnListView2::SetCellBorder(int row, int column, const CellBorder& border) {
  return QT_LV_CELL_SET_CHANGE(CellExtra& e = c->extraBlock(); e.border = border; e.hasBorder = true);
}
bool QnListView2::GetCellBorder(int row, int column, CellBorder& border) const {
  return QT_LV(false, const Cell* c = m.cell(row, column); if (!c || !c->extra || !c->extra->hasBorder) return false;
               border = c->extra->border; return true;);
}
bool QnListView2::SetCellToolTip(int row, int column, const ustr& text) {
  return QT_LV_CELL_SET(ustr copy(text); c->extraBlock().toolTip.str().swap(copy.str()));
}
ustr QnListView2::GetCellToolTip(int row, int column) const { return QT_LV_CELL_GET(ustr(), c->extra->toolTip); }
bool QnListView2::SetCellFont(int row, int column, HFONT font) { return QT_LV_CELL_SET_CHANGE(c->extraBlock().font = font); }
HFONT QnListView2::GetCellFont(int row, int column) const { return QT_LV_CELL_GET(HFONT(), c->extra->font); }
bool QnListView2::SetCellLParam(int row, int column, long long lParam) {
  return QT_LV_CELL_SET(c->extraBlock().lParam = lParam);
}
long long QnListView2::GetCellLParam(int row, int column) const { return QT_LV_CELL_GET(0LL, c->extra->lParam); }
bool QnListView2::SetCellSelectionList(int row, int column, const SelectionList& list, bool) {
  return QT_LV_CELL_SET(std::unique_ptr<SelectionList> copy(list.empty() ? nullptr : new SelectionList(list));
                        c->extraBlock().list = std::move(copy));
}
bool QnListView2::SetColumnSelectionList(int column, const SelectionList& list, bool) {
  return QT_LV(false, if (!m.validColumn(column)) return false;
               std::unique_ptr<SelectionList> copy(list.empty() ? nullptr : new SelectionList(list));
               m.columns[column].list = std::move(copy); return true;);
}
bool QnListView2::GetCellSelectionList(int row, int column, SelectionList& list) const {
  return QT_LV(false, const SelectionList* found = m.selectionList(row, column); if (!found) return false;
               list = *found; return true;);
}
bool QnListView2::SetCellSelection(int row, int column, long long value) {
  return QT_LV_CHANGE(false, return m.SetSelection(row, column, value););
}
bool QnListView2::GetCellSelection(int row, int column, long long& value) const {
  return QT_LV(false, const Cell* c = m.cell(row, column); if (!c || !c->extra || !c->extra->hasSelection) return false;
               value = c->extra->selection; return true;);
}
bool QnListView2::SetSelectedString(int column, const ustr& text) { return QT_LV_CHANGE(false, return m.SetSelectedString(column, text);); }
bool QnListView2::SetCellDrawFunction(int row, int column, CellDrawFunc function) {
  return QT_LV_CELL_SET_CHANGE(c->extraBlock().draw = function);
}
QnListView2::CellDrawFunc QnListView2::GetCellDrawFunction(int row, int column) const {
  return QT_LV_CELL_GET(CellDrawFunc(), c->extra->draw);
}

// ---- selection ----
std::vector<int> QnListView2::GetSelectedRows() const {
  return QT_LV(std::vector<int>(), std::vector<int> out;
               for (size_t i = 0; i < m.rows.size(); ++i) if (m.rows[i].selected) out.push_back(static_cast<int>(i)); return out;);
}
bool QnListView2::SetSelectedRows(const std::vector<int>& rows) { return QT_LV_CHANGE(false, return m.SetSelectedRows(rows);); }
bool QnListView2::SetSelectedRows2(std::vector<int>& rows) {
  return QT_LV_CHANGE(false, std::vector<int> kept; kept.reserve(rows.size());
               for (int r : rows) if (m.validRow(r)) kept.push_back(r);
               std::sort(kept.begin(), kept.end()); kept.erase(std::unique(kept.begin(), kept.end()), kept.end());
               if (!m.SetSelectedRows(kept)) return false; rows.swap(kept); return true;);
}
std::vector<long long> QnListView2::GetSelectedRowsLParams() const {
  return QT_LV(std::vector<long long>(), std::vector<long long> out; for (const auto& r : m.rows) if (r.selected) out.push_back(r.lParam);
               return out;);
}
bool QnListView2::SetSelectedRowsLParams(const std::vector<long long>& lParams) {
  return QT_LV_CHANGE(false, const std::unordered_set<long long> wanted(lParams.begin(), lParams.end());
               for (auto& r : m.rows) r.selected = wanted.count(r.lParam) != 0; return true;);
}
std::vector<ustr> QnListView2::GetSelectedRowsTagsW() const {
  return QT_LV(std::vector<ustr>(), std::vector<ustr> out; for (const auto& r : m.rows) if (r.selected) out.push_back(r.tag); return out;);
}
std::vector<astr> QnListView2::GetSelectedRowsTagsA() const {
  return QT_LV(std::vector<astr>(), std::vector<astr> out;
               for (const auto& r : m.rows) if (r.selected) out.push_back(r.tag.toAnsi()); return out;);
}
int QnListView2::GetSelectedColumn() const { return QT_LV(-1, return m.selectedColumn;); }
bool QnListView2::SetSelectedColumn(int column) {
  return QT_LV_CHANGE(false, if (column != -1 && !m.validColumn(column)) return false; m.selectedColumn = column; return true;);
}
bool QnListView2::SetSelectedCell(int row, int column) {
  return QT_LV_CHANGE(false, if (!m.validCell(row, column)) return false; std::vector<int> one(1, row);
               if (!m.SetSelectedRows(one)) return false; m.selectedCellRow = row; m.selectedColumn = column; return true;);
}
bool QnListView2::EnsureVisible(int row) {
  return QT_LV(false, if (!m.EnsureVisible(row)) return false; qt::listview::platform::Refresh(m);
               qt::listview::platform::ScrollTo(m, row, -1); return true;);
}
bool QnListView2::EnsureVisible(int row, int column) {
  return QT_LV(false, if (!m.validColumn(column) || !m.EnsureVisible(row)) return false; m.ensuredColumn = column;
               qt::listview::platform::Refresh(m); qt::listview::platform::ScrollTo(m, row, column); return true;);
}

// ---- editing ----
bool QnListView2::EditCell(int row, int column) {
  return QT_LV(false, return qt::listview::platform::EditCell(m, row, column););
}
void QnListView2::SetEditCommand(int command) { QT_LV_VOID(m.editCommand = command;); }
int QnListView2::GetEditCommand() const { return QT_LV(0, return m.editCommand;); }
bool QnListView2::SetColumnValueValidator(int column, const ValueValidator::Range& range) {
  return QT_LV(false, if (!m.validColumn(column)) return false;
               std::unique_ptr<ValueValidator::Range> copy(new ValueValidator::Range(range));
               m.columns[column].validator = std::move(copy); return true;);
}
bool QnListView2::GetColumnValueValidator(int column, ValueValidator::Range& range) const {
  return QT_LV(false, if (!m.validColumn(column) || !m.columns[column].validator) return false;
               range = *m.columns[column].validator; return true;);
}

// ---- sorting ----
bool QnListView2::SetSortColumn(int column, SortType type) {
  return QT_LV(false, if (!m.validColumn(column) || (type != SortAscending && type != SortDescending)) return false;
               std::vector<int> columns(1, column); std::vector<SortType> types(1, type);
               m.sortColumns.swap(columns); m.sortTypes.swap(types); return true;);
}
bool QnListView2::SetSortColumns(const std::vector<int>& columns, SortType type) {
  return QT_LV(false, if (columns.empty() || (type != SortAscending && type != SortDescending)) return false;
               for (int c : columns) if (!m.validColumn(c)) return false;
               std::vector<int> copy(columns); std::vector<SortType> types(columns.size(), type);
               m.sortColumns.swap(copy); m.sortTypes.swap(types); return true;);
}
int QnListView2::GetSortColumn() const { return QT_LV(-1, return m.sortColumns.empty() ? -1 : m.sortColumns[0];); }
std::vector<int> QnListView2::GetSortColumns() const { return QT_LV(std::vector<int>(), return m.sortColumns;); }
QnListView2::SortType QnListView2::GetSortType() const {
  return QT_LV(SortAscending, return m.sortTypes.empty() ? SortAscending : m.sortTypes[0];);
}
bool QnListView2::SortRows() { return QT_LV_CHANGE(false, return m.Sort(m.sortTypes, m.sortColumns, m.rowIsLess);); }
bool QnListView2::SortRows(SortType type, int column) {
  return QT_LV_CHANGE(false, return SortRows(std::vector<SortType>(1, type), std::vector<int>(1, column)););
}
bool QnListView2::SortRows(const std::vector<SortType>& types, const std::vector<int>& columns) {
  return QT_LV_CHANGE(false, std::vector<int> c(columns); std::vector<SortType> t(types);
               if (!m.Sort(t, c, m.rowIsLess)) return false; m.sortColumns.swap(c); m.sortTypes.swap(t); return true;);
}
bool QnListView2::SortRows(RowIsLessFunc function, int column) {
  return QT_LV_CHANGE(false, if (!function) return false;
               const SortType type = m.sortTypes.empty() ? SortAscending : m.sortTypes[0];
               std::vector<int> c(1, column); std::vector<SortType> t(1, type);
               if (!m.Sort(t, c, function)) return false; m.sortColumns.swap(c); m.sortTypes.swap(t); return true;);
}
void QnListView2::SetRowIsLessFunc(RowIsLessFunc function) { QT_LV_VOID(m.rowIsLess = function;); }

// ---- output ----
bool QnListView2::CopyToClipboard(const std::vector<int>& rows) {
  return QT_LV(false, for (int r : rows) if (!m.validRow(r)) return false;
               return qt::clipboard::PutText(nullptr, m.ClipboardText(rows)););
}
