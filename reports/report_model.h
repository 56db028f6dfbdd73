// What a SimpleReport holds. Kept apart from the public class so that the
// exporters and the window read one plain structure.
#ifndef QUILTOOL_REPORTS_REPORT_MODEL_H
#define QUILTOOL_REPORTS_REPORT_MODEL_H

#include <vector>

#include "SimpleReport.h"

struct SimpleReportData {
  ustr title;
  std::vector<SimpleReport::ColumnData> columns;
  // A row may hold fewer cells than there are columns (columns added after
  // it, cells never set): the missing ones read as empty text.
  std::vector<SimpleReport::RowData> rows;
};

namespace qt {
namespace report {

// The cell at (row, column), or null when the row holds none there.
inline const SimpleReport::CellData* CellAt(const SimpleReportData& data, size_t row, size_t column) {
  const std::vector<SimpleReport::CellData>& cells = data.rows[row].cells;
  return column < cells.size() ? &cells[column] : nullptr;
}

// Room for the fixed form of the largest double with the most decimals
// kept (309 digits, the point, 60 decimals, the sign).
const size_t kNumberBuffer = 400;

// The text form of a numeric cell into buffer (kNumberBuffer bytes, not
// terminated); its length, 0 for an empty cell or one that is no number.
size_t FormatNumber(const SimpleReport::CellData& cell, char* buffer);

// The text form of a cell appended to out, without building a string for
// numbers.
void AppendCellText(const SimpleReport::CellData& cell, std::wstring* out);

}  // namespace report
}  // namespace qt

#endif
