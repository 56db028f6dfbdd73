#include <charconv>
#include <cmath>

#include "reports/export_format.h"

namespace qt {
namespace report {

namespace {

const char kSheetNamePlaceholder[] = "%QUIL_SHEET_NAME%";
const char kTablePlaceholder[] = "%QUIL_TABLE%";

void PutCodePoint(unsigned long c, std::string* out) {
  // A lone surrogate half or a value past U+10FFFF has no UTF-8 form that
  // a spreadsheet program accepts.
  if ((c >= 0xD800 && c <= 0xDFFF) || c > 0x10FFFF) c = 0xFFFD;
  if (c < 0x80) {
    out->push_back(static_cast<char>(c));
  } else if (c < 0x800) {
    out->push_back(static_cast<char>(0xC0 | (c >> 6)));
    out->push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else if (c < 0x10000) {
    out->push_back(static_cast<char>(0xE0 | (c >> 12)));
    out->push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else {
    out->push_back(static_cast<char>(0xF0 | (c >> 18)));
    out->push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | (c & 0x3F)));
  }
}

// Wide text as UTF-8. Only line breaks are touched, and only in data
// cells; the workbook has always carried '&', '<' and '>' as they are.
void PutUtf8(const std::wstring& s, bool cellLines, std::string* out) {
  const size_t n = s.size();
  for (size_t i = 0; i < n; ++i) {
    unsigned long c = static_cast<unsigned long>(s[i]);
    if (c < 0x80) {
      if (cellLines && c == '\r') continue;
      if (cellLines && c == '\n') {
        out->append("&#10;", 5);
        continue;
      }
      out->push_back(static_cast<char>(c));
      continue;
    }
    // Where wchar_t holds UTF-16 a pair makes one character.
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < n) {
      const unsigned long low = static_cast<unsigned long>(s[i + 1]);
      if (low >= 0xDC00 && low <= 0xDFFF) {
        c = 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
        ++i;
      }
    }
    PutCodePoint(c, out);
  }
}

void PutInt(long long value, std::string* out) {
  char buffer[24];
  const std::to_chars_result r = std::to_chars(buffer, buffer + sizeof buffer, value);
  out->append(buffer, static_cast<size_t>(r.ptr - buffer));
}

void PutRowStart(size_t lines, std::string* out) {
  out->append("      <Row ss:Height=\"");
  PutInt(static_cast<long long>(lines) * 15, out);
  out->append("\">\r\n");
}

size_t LineCount(const std::wstring& text) {
  size_t lines = 1;
  for (wchar_t c : text) lines += (c == L'\n');
  return lines;
}

bool IsNumber(const SimpleReport::CellData& cell, size_t textLength) {
  if (textLength == 0) return false;
  if (cell.kind == SimpleReport::CellInteger) return true;
  // "inf" and "nan" are texts to a spreadsheet program; as a Number they
  // would make it refuse the whole file.
  return cell.kind == SimpleReport::CellDouble && std::isfinite(cell.doubleValue);
}

void PutCell(const SimpleReport::CellData* cell, std::string* out) {
  static const char kOpen[] = "        <Cell ss:StyleID=\"s11\"><Data ss:Type=\"";
  static const char kClose[] = "</Data></Cell>\r\n";
  out->append(kOpen, sizeof kOpen - 1);
  if (cell && cell->kind == SimpleReport::CellText) {
    out->append("String\">");
    PutUtf8(cell->text.str(), true, out);
  } else {
    char number[kNumberBuffer];
    const size_t n = cell ? FormatNumber(*cell, number) : 0;
    out->append(cell && IsNumber(*cell, n) ? "Number\">" : "String\">");
    out->append(number, n);
  }
  out->append(kClose, sizeof kClose - 1);
}

// Close to the table's size, so that the one buffer of a large workbook is
// not outgrown and copied at the end: that copy would double the peak.
size_t EstimateTableSize(const SimpleReportData& data) {
  const size_t kCellFrame = 70;  // the markup around a value
  size_t size = 64 + data.columns.size() * (40 + kCellFrame);
  for (const SimpleReport::ColumnData& column : data.columns) size += column.header.size() + column.header2.size();
  for (size_t r = 0; r < data.rows.size(); ++r) {
    size += 40 + data.columns.size() * kCellFrame;
    for (const SimpleReport::CellData& cell : data.rows[r].cells) {
      // Most text is ASCII; a number takes about a dozen characters.
      size += cell.kind == SimpleReport::CellText ? cell.text.size() + cell.text.size() / 8 : 12;
    }
  }
  return size;
}

}  // namespace

void AppendXmlTable(const SimpleReportData& data, std::string* out) {
  const size_t columns = data.columns.size();
  out->append("<Table>\r\n");
  for (const SimpleReport::ColumnData& column : data.columns) {
    out->append("      <Column ss:Width=\"");
    PutInt(column.width, out);
    out->append("\"/>\r\n");
  }
  bool twoLineHeader = false;
  for (const SimpleReport::ColumnData& column : data.columns) twoLineHeader = twoLineHeader || !column.header2.empty();
  PutRowStart(twoLineHeader ? 2 : 1, out);
  for (const SimpleReport::ColumnData& column : data.columns) {
    out->append("        <Cell ss:StyleID=\"s10\"><Data ss:Type=\"String\">");
    PutUtf8(column.header.str(), false, out);
    if (!column.header2.empty()) {
      out->append("&#10;", 5);
      PutUtf8(column.header2.str(), false, out);
    }
    out->append("</Data></Cell>\r\n");
  }
  out->append("      </Row>\r\n");
  for (size_t r = 0; r < data.rows.size(); ++r) {
    size_t lines = 1;
    for (size_t c = 0; c < columns; ++c) {
      const SimpleReport::CellData* cell = CellAt(data, r, c);
      if (cell && cell->kind == SimpleReport::CellText) {
        const size_t n = LineCount(cell->text.str());
        if (n > lines) lines = n;
      }
    }
    PutRowStart(lines, out);
    for (size_t c = 0; c < columns; ++c) PutCell(CellAt(data, r, c), out);
    out->append("      </Row>\r\n");
  }
  out->append("</Table>\r\n");
}

std::string WithCrLf(const std::string& text) {
  std::string out;
  out.reserve(text.size() + text.size() / 16);
  for (char c : text) {
    if (c == '\r') continue;
    if (c == '\n') out.push_back('\r');
    out.push_back(c);
  }
  return out;
}

std::string BuildXmlSpreadsheet(const SimpleReportData& data, const std::string& workbookTemplate,
                                const ustr& sheetName) {
  std::string head = WithCrLf(workbookTemplate);
  std::string sheet;
  PutUtf8(sheetName.str(), false, &sheet);
  const size_t namePos = head.find(kSheetNamePlaceholder);
  if (namePos != std::string::npos) head.replace(namePos, sizeof kSheetNamePlaceholder - 1, sheet);
  // Split before the table goes in, so that a cell holding the
  // placeholder's text is never taken for it.
  std::string tail;
  const size_t tablePos = head.find(kTablePlaceholder);
  if (tablePos != std::string::npos) {
    tail = head.substr(tablePos + sizeof kTablePlaceholder - 1);
    head.resize(tablePos);
  }
  std::string out;
  out.reserve(head.size() + tail.size() + EstimateTableSize(data));
  out += head;
  if (tablePos != std::string::npos) AppendXmlTable(data, &out);
  out += tail;
  return out;
}

}  // namespace report
}  // namespace qt
