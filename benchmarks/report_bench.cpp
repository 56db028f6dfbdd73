// Exporting 10^6 cells (100,000 rows x 10 columns: four texts, three
// integers, three floats with two decimals) to an XML Spreadsheet 2003 file,
// against libxlsxwriter writing the same cells to an .xlsx in the same run.
// Both are timed from the filled report to the closed file. The peak memory
// of each export is measured in a child process of its own, as the growth
// of the resident set over what the filled report already took.
#include <benchmark/benchmark.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "SimpleReport.h"
#include "qn_utf.h"

#if QT_HAVE_XLSXWRITER
#include <xlsxwriter.h>
#endif

namespace {

const int kRows = 100000;
const int kColumns = 10;
typedef SimpleReport::CellData Cell;

SimpleReport& Sample() {
  static SimpleReport* report = nullptr;
  if (report) return *report;
  report = new SimpleReport;
  for (int c = 0; c < kColumns; ++c) report->AddColumn(SimpleReport::ColumnData(L"Column " + std::to_wstring(c), 80));
  for (int r = 0; r < kRows; ++r) {
    SimpleReport::RowData row;
    row.cells.reserve(kColumns);
    for (int c = 0; c < 4; ++c) row.cells.push_back(Cell::Text(L"Room " + std::to_wstring(r * 7 + c)));
    for (int c = 0; c < 3; ++c) row.cells.push_back(Cell::Integer(r * 3 + c));
    for (int c = 0; c < 3; ++c) row.cells.push_back(Cell::Double(r * 0.25 + c / 3.0, 2));
    report->AddRow(row);
  }
  return *report;
}

std::string TempName(const char* ext) {
  const char* dir = std::getenv("TMPDIR");
  return std::string(dir && *dir ? dir : "/tmp") + "/qt_report_bench_" + std::to_string(getpid()) + ext;
}

bool ExportXml(const std::string& path) {
  const std::wstring wide = qn_utf8_to_wide(path.c_str());
  return Sample().SaveAsXmlSpreadsheet(wide.c_str()) == 0;
}

#if QT_HAVE_XLSXWRITER
bool ExportXlsx(const std::string& path) {
  const SimpleReport& report = Sample();
  lxw_workbook* book = workbook_new(path.c_str());
  if (!book) return false;
  lxw_worksheet* sheet = workbook_add_worksheet(book, "Report");
  for (int c = 0; c < kColumns; ++c) {
    SimpleReport::ColumnData column;
    report.GetColumn(c, column);
    worksheet_write_string(sheet, 0, static_cast<lxw_col_t>(c), qn_wide_to_utf8(column.header.c_str()).c_str(), nullptr);
  }
  Cell cell;
  for (int r = 0; r < kRows; ++r) {
    for (int c = 0; c < kColumns; ++c) {
      report.GetCell(r, c, cell);
      const lxw_row_t row = static_cast<lxw_row_t>(r + 1);
      const lxw_col_t col = static_cast<lxw_col_t>(c);
      if (cell.kind == SimpleReport::CellText) {
        worksheet_write_string(sheet, row, col, qn_wide_to_utf8(cell.text.c_str()).c_str(), nullptr);
      } else if (cell.kind == SimpleReport::CellInteger) {
        worksheet_write_number(sheet, row, col, cell.intValue, nullptr);
      } else {
        worksheet_write_number(sheet, row, col, cell.doubleValue, nullptr);
      }
    }
  }
  return workbook_close(book) == LXW_NO_ERROR;
}
#endif

void Run(benchmark::State& state, bool (*exportTo)(const std::string&), const char* ext) {
  Sample();
  const std::string path = TempName(ext);
  for (auto _ : state) {
    if (!exportTo(path)) state.SkipWithError("the export failed");
  }
  std::FILE* f = std::fopen(path.c_str(), "rb");
  long size = 0;
  if (f) {
    std::fseek(f, 0, SEEK_END);
    size = std::ftell(f);
    std::fclose(f);
  }
  std::remove(path.c_str());
  state.counters["cells/s"] = benchmark::Counter(static_cast<double>(kRows) * kColumns,
                                                 benchmark::Counter::kIsIterationInvariantRate);
  state.counters["file_MB"] = size / 1e6;
}

long MaxRssKb() {
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

// The export's own peak: a fresh process fills the report, then exports.
void PeakMemory(benchmark::State& state, bool (*exportTo)(const std::string&), const char* ext) {
  for (auto _ : state) {
    int fds[2];
    if (pipe(fds) != 0) {
      state.SkipWithError("pipe");
      return;
    }
    const pid_t child = fork();
    if (child == 0) {
      close(fds[0]);
      Sample();
      const long before = MaxRssKb();
      const std::string path = TempName(ext);
      const bool ok = exportTo(path);
      std::remove(path.c_str());
      long result[2] = {ok ? before : -1, MaxRssKb()};
      if (write(fds[1], result, sizeof result) != sizeof result) _exit(1);
      _exit(0);
    }
    close(fds[1]);
    long result[2] = {-1, 0};
    const bool got = read(fds[0], result, sizeof result) == sizeof result;
    close(fds[0]);
    waitpid(child, nullptr, 0);
    if (!got || result[0] < 0) {
      state.SkipWithError("the export failed in the child");
      return;
    }
    state.counters["report_MB"] = result[0] / 1024.0;
    state.counters["export_peak_MB"] = (result[1] - result[0]) / 1024.0;
  }
}

// The peaks first: a child's high-water mark starts from what its parent
// holds when it forks, so the parent must not have filled anything yet.
void BM_XmlSpreadsheetPeak(benchmark::State& state) { PeakMemory(state, &ExportXml, ".xml"); }
BENCHMARK(BM_XmlSpreadsheetPeak)->Unit(benchmark::kMillisecond)->Iterations(1);
#if QT_HAVE_XLSXWRITER
void BM_LibxlsxwriterPeak(benchmark::State& state) { PeakMemory(state, &ExportXlsx, ".xlsx"); }
BENCHMARK(BM_LibxlsxwriterPeak)->Unit(benchmark::kMillisecond)->Iterations(1);
#endif

void BM_XmlSpreadsheet(benchmark::State& state) { Run(state, &ExportXml, ".xml"); }
BENCHMARK(BM_XmlSpreadsheet)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2);
#if QT_HAVE_XLSXWRITER
void BM_Libxlsxwriter(benchmark::State& state) { Run(state, &ExportXlsx, ".xlsx"); }
BENCHMARK(BM_Libxlsxwriter)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2);
#endif

}  // namespace

BENCHMARK_MAIN();
