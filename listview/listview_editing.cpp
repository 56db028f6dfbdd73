// In-place editing rules shared by every target.
#include "listview/listview_editing.h"

#include <algorithm>

#include "ValueValidator.h"

namespace qt {
namespace listview {

namespace {

bool IsFloating(int kind) { return kind == QnListView2::KindFloat || kind == QnListView2::KindDouble; }
bool IsInteger(int kind) {
  return kind == QnListView2::KindShort || kind == QnListView2::KindInt || kind == QnListView2::KindUInt ||
         kind == QnListView2::KindColorIndex;
}

// The new value in the cell's own kind; false when the text does not read
// as one.
bool Parse(const Cell& c, const ustr& text, QnVariant& out) {
  const QnVariant typed(text);
  bool ok = false;
  switch (c.kind) {
    case QnListView2::KindShort: out = QnVariant(typed.toShort(&ok)); break;
    case QnListView2::KindInt: out = QnVariant(typed.toInt(&ok)); break;
    case QnListView2::KindUInt: out = QnVariant(typed.toUInt(&ok)); break;
    case QnListView2::KindFloat: out = QnVariant(typed.toFloat(&ok)); break;
    case QnListView2::KindDouble: out = QnVariant(typed.toDouble(&ok)); break;
    case QnListView2::KindBool: out = QnVariant(typed.toBool(&ok)); break;
    case QnListView2::KindColorIndex: out = QnVariant::fromColorIndex(typed.toColorIndex(&ok)); break;
    default: out = typed; ok = true; break;
  }
  return ok;
}

}  // namespace

EditorKind EditorFor(const QnListView2Impl& m, int row, int column) {
  const Cell* c = m.cell(row, column);
  if (!c) return EditorKind::None;
  const Row& r = m.rows[static_cast<size_t>(row)];
  const int style = c->style | r.style | m.columns[static_cast<size_t>(column)].style;
  if (r.category || (style & (QnListView2::CellReadOnly | QnListView2::CellButton | QnListView2::CellCheckBox)) ||
      c->check != QnListView2::CheckNone || c->kind == QnListView2::KindGeometry)
    return EditorKind::None;
  return m.selectionList(row, column) ? EditorKind::Combo : EditorKind::Edit;
}

ustr EditorText(const QnListView2Impl& m, int row, int column) {
  const Cell* c = m.cell(row, column);
  if (!c) return ustr();
  if (IsFloating(c->kind) && c->decimals >= 0) {
    const double value = c->kind == QnListView2::KindFloat ? static_cast<double>(c->number.f) : c->number.d;
    ustr text;
    text.format(L"%.*lf", static_cast<int>(c->decimals), value);
    return text;
  }
  return c->shownText();
}

int ComboIndex(const QnListView2Impl& m, int row, int column) {
  const SelectionList* list = m.selectionList(row, column);
  const Cell* c = m.cell(row, column);
  if (!list || !c) return -1;
  if (c->extra && c->extra->hasSelection) {
    for (size_t i = 0; i < list->size(); ++i)
      if ((*list)[i].second == c->extra->selection) return static_cast<int>(i);
  }
  const ustr shown = c->shownText();
  for (size_t i = 0; i < list->size(); ++i)
    if ((*list)[i].first == shown) return static_cast<int>(i);
  return -1;
}

Commit CommitText(QnListView2Impl& m, int row, int column, const ustr& text, ustr& message) {
  Cell* c = m.cell(row, column);
  if (!c || EditorFor(m, row, column) == EditorKind::None) return Commit::Unchanged;
  QnVariant value;
  if (!Parse(*c, text, value)) {
    message = ValueValidator::RejectionMessage(ValueValidator::InvalidValue);
    return Commit::Rejected;
  }
  const ValueValidator::Range* range = m.columns[static_cast<size_t>(column)].validator.get();
  if (range && (IsInteger(c->kind) || IsFloating(c->kind))) {
    const bool floating = IsFloating(c->kind);
    const bool inside = floating ? range->accepts(value.toDouble()) : range->accepts(value.toInt());
    if (!inside) {
      message = ValueValidator::RangeMessage(*range, floating, c->decimals);
      return Commit::Rejected;
    }
  }
  if (value == c->value()) return Commit::Unchanged;
  c->setValue(value);
  // A typed text no longer names a drop-down entry.
  if (c->extra) c->extra->hasSelection = false;
  return Commit::Stored;
}

Commit CommitChoice(QnListView2Impl& m, int row, int column, int index) {
  const SelectionList* list = m.selectionList(row, column);
  if (!list || index < 0 || static_cast<size_t>(index) >= list->size() ||
      EditorFor(m, row, column) != EditorKind::Combo)
    return Commit::Unchanged;
  if (ComboIndex(m, row, column) == index) return Commit::Unchanged;
  return m.SetSelection(row, column, (*list)[static_cast<size_t>(index)].second) ? Commit::Stored
                                                                                 : Commit::Unchanged;
}

bool NextEditorCell(const QnListView2Impl& m, const std::vector<int>& shownRows, int& row, int& column) {
  const bool nextCell = (m.style & QnListView2::EditNextCellOnEnter) != 0;
  const bool nextRow = (m.style & QnListView2::EditNextRowOnEnter) != 0;
  const int columns = static_cast<int>(m.columns.size());
  auto editable = [&](int r, int c) {
    return m.columns[static_cast<size_t>(c)].shown && EditorFor(m, r, c) != EditorKind::None;
  };
  const auto at = std::find(shownRows.begin(), shownRows.end(), row);
  if (at == shownRows.end() || !m.validColumn(column)) return false;
  if (nextCell) {
    for (int c = column + 1; c < columns; ++c)
      if (editable(row, c)) {
        column = c;
        return true;
      }
    // At the row's end the editor wraps to the next row's first cell when
    // both styles are on, so a whole table can be typed in one go.
    if (!nextRow) return false;
    for (auto r = at + 1; r != shownRows.end(); ++r)
      for (int c = 0; c < columns; ++c)
        if (editable(*r, c)) {
          row = *r;
          column = c;
          return true;
        }
    return false;
  }
  if (nextRow) {
    for (auto r = at + 1; r != shownRows.end(); ++r)
      if (editable(*r, column)) {
        row = *r;
        return true;
      }
  }
  return false;
}

}  // namespace listview
}  // namespace qt
