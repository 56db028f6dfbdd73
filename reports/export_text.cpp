#include "reports/export_format.h"

namespace qt {
namespace report {

namespace {

void PutUnit(unsigned unit, std::string* out) {
  out->push_back(static_cast<char>(unit & 0xFF));
  out->push_back(static_cast<char>(unit >> 8));
}

// Wide text as UTF-16LE, the same bytes whether wchar_t holds UTF-16 or
// UTF-32. In a cell the line breaks go, so that each row stays one line.
void PutWide(const wchar_t* p, size_t n, bool flattenLines, std::string* out) {
  for (size_t i = 0; i < n; ++i) {
    const unsigned long c = static_cast<unsigned long>(p[i]);
    if (flattenLines) {
      if (c == L'\r') continue;
      if (c == L'\n') {
        PutUnit(L' ', out);
        continue;
      }
    }
    if (c <= 0xFFFF) {
      PutUnit(static_cast<unsigned>(c), out);
    } else if (c <= 0x10FFFF) {
      const unsigned long v = c - 0x10000;
      PutUnit(static_cast<unsigned>(0xD800 + (v >> 10)), out);
      PutUnit(static_cast<unsigned>(0xDC00 + (v & 0x3FF)), out);
    } else {
      PutUnit(0xFFFD, out);
    }
  }
}

void PutWide(const std::wstring& s, bool flattenLines, std::string* out) { PutWide(s.data(), s.size(), flattenLines, out); }

}  // namespace

std::string BuildText(const SimpleReportData& data) {
  std::string out;
  out.reserve(2 + (data.rows.size() + 2) * (data.columns.size() + 1) * 24);
  out.append("\xFF\xFE", 2);
  if (!data.title.empty()) {
    PutWide(data.title.str(), false, &out);
    PutWide(L"\r\n", 2, false, &out);
  }
  for (size_t c = 0; c < data.columns.size(); ++c) {
    if (c > 0) PutUnit(L'\t', &out);
    PutWide(data.columns[c].header.str(), false, &out);
    if (!data.columns[c].header2.empty()) {
      PutUnit(L' ', &out);
      PutWide(data.columns[c].header2.str(), false, &out);
    }
  }
  std::wstring cellText;
  for (size_t r = 0; r < data.rows.size(); ++r) {
    PutWide(L"\r\n", 2, false, &out);
    for (size_t c = 0; c < data.columns.size(); ++c) {
      if (c > 0) PutUnit(L'\t', &out);
      const SimpleReport::CellData* cell = CellAt(data, r, c);
      if (!cell) continue;
      cellText.clear();
      AppendCellText(*cell, &cellText);
      PutWide(cellText, true, &out);
    }
  }
  return out;
}

}  // namespace report
}  // namespace qt
