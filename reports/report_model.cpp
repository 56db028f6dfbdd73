#include "reports/report_model.h"

#include <charconv>
#include <cmath>

#include "core/boundary.h"

namespace qt {
namespace report {

namespace {

const int kMaxDecimals = 60;

int EffectiveDecimals(int decimals) {
  // "%.*lf" takes a negative precision as if none were given.
  if (decimals < 0) return 6;
  return decimals > kMaxDecimals ? kMaxDecimals : decimals;
}

}  // namespace

// The C runtime's "%.*lf" hangs on the process locale on Linux and on the
// runtime's own rounding on Windows; to_chars gives the exact decimal
// rounding with a point on both, which is what keeps the files identical.
size_t FormatNumber(const SimpleReport::CellData& cell, char* buffer) {
  if (cell.empty) return 0;
  std::to_chars_result r;
  if (cell.kind == SimpleReport::CellInteger) {
    r = std::to_chars(buffer, buffer + kNumberBuffer, cell.intValue);
  } else if (cell.kind == SimpleReport::CellDouble) {
    r = std::to_chars(buffer, buffer + kNumberBuffer, cell.doubleValue, std::chars_format::fixed,
                      EffectiveDecimals(cell.decimals));
  } else {
    return 0;
  }
  return r.ec == std::errc() ? static_cast<size_t>(r.ptr - buffer) : 0;
}

void AppendCellText(const SimpleReport::CellData& cell, std::wstring* out) {
  if (cell.kind == SimpleReport::CellText) {
    *out += cell.text.str();
    return;
  }
  char buffer[kNumberBuffer];
  const size_t n = FormatNumber(cell, buffer);
  for (size_t i = 0; i < n; ++i) *out += static_cast<wchar_t>(buffer[i]);
}

}  // namespace report
}  // namespace qt

SimpleReport::SimpleReport() : data_(new SimpleReportData) {}

SimpleReport::~SimpleReport() { delete data_; }

void SimpleReport::SetTitle(const ustr& title) {
  qt::NoThrowVoid("SimpleReport::SetTitle", [&]() { data_->title = title; });
}

ustr SimpleReport::GetTitle() const {
  return qt::NoThrow<ustr>("SimpleReport::GetTitle", ustr(), [&]() { return data_->title; });
}

int SimpleReport::AddColumn(const ColumnData& column) {
  return qt::NoThrow<int>("SimpleReport::AddColumn", -1, [&]() {
    data_->columns.push_back(column);
    return static_cast<int>(data_->columns.size() - 1);
  });
}

int SimpleReport::AddRow(const RowData& row) {
  return qt::NoThrow<int>("SimpleReport::AddRow", -1, [&]() {
    RowData copy;
    copy.lParam = row.lParam;
    const size_t kept = row.cells.size() < data_->columns.size() ? row.cells.size() : data_->columns.size();
    copy.cells.assign(row.cells.begin(), row.cells.begin() + static_cast<std::ptrdiff_t>(kept));
    data_->rows.push_back(std::move(copy));
    return static_cast<int>(data_->rows.size() - 1);
  });
}

bool SimpleReport::SetCell(int row, int column, const CellData& cell) {
  return qt::NoThrow<bool>("SimpleReport::SetCell", false, [&]() {
    if (row < 0 || column < 0 || static_cast<size_t>(row) >= data_->rows.size() ||
        static_cast<size_t>(column) >= data_->columns.size()) {
      return false;
    }
    std::vector<CellData>& cells = data_->rows[static_cast<size_t>(row)].cells;
    // Copied before the row grows, so that a failed copy leaves the row as it was.
    CellData copy = cell;
    if (cells.size() <= static_cast<size_t>(column)) cells.resize(static_cast<size_t>(column) + 1, CellData::Text(ustr()));
    cells[static_cast<size_t>(column)] = std::move(copy);
    return true;
  });
}

int SimpleReport::GetColumnCount() const { return static_cast<int>(data_->columns.size()); }

int SimpleReport::GetRowCount() const { return static_cast<int>(data_->rows.size()); }

bool SimpleReport::GetColumn(int column, ColumnData& out) const {
  return qt::NoThrow<bool>("SimpleReport::GetColumn", false, [&]() {
    if (column < 0 || static_cast<size_t>(column) >= data_->columns.size()) return false;
    out = data_->columns[static_cast<size_t>(column)];
    return true;
  });
}

bool SimpleReport::GetCell(int row, int column, CellData& out) const {
  return qt::NoThrow<bool>("SimpleReport::GetCell", false, [&]() {
    if (row < 0 || column < 0 || static_cast<size_t>(row) >= data_->rows.size() ||
        static_cast<size_t>(column) >= data_->columns.size()) {
      return false;
    }
    const CellData* cell = qt::report::CellAt(*data_, static_cast<size_t>(row), static_cast<size_t>(column));
    out = cell ? *cell : CellData::Text(ustr());
    return true;
  });
}

ustr SimpleReport::GetCellText(const CellData& cell) {
  return qt::NoThrow<ustr>("SimpleReport::GetCellText", ustr(), [&]() {
    std::wstring text;
    qt::report::AppendCellText(cell, &text);
    return ustr(text);
  });
}
