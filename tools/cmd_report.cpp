// quiltool report: the suite's typical request through the library's own
// interface, for a first look and for getting a project's data out.
//   report PROJECTFILE [--set SET] [--out FILE.xml] [--text FILE.txt]
//                      [--user NAME] [--layout KEY]
// Locks the project file, reads its records into a grid whose column
// layout is restored from the registry, exports them under a progress
// dialog, saves the layout and unlocks. Exit codes: 0 done, 1 failure with
// a message, 2 bad arguments, 3 the file is held by another user.
#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "FileLocker.h"
#include "Lng.h"
#include "ProgressDlg.h"
#include "QBaseDb.h"
#include "QNListViewColumnManager.h"
#include "QnListView2.h"
#include "Registry.h"
#include "SimpleReport.h"
#include "command.h"
#include "qb.h"
#include "qn_utf.h"
#include "tools/report_table.h"

namespace {

const char kUsage[] =
    "usage: quiltool report PROJECTFILE [--set SET] [--out FILE.xml] [--text FILE.txt]\n"
    "                       [--user NAME] [--layout KEY]\n"
    "Exports a project database's records (all, or one set's) as an XML Spreadsheet 2003\n"
    "file and/or tab-delimited UTF-16 text, one row per record and one column per attribute.\n"
    "The file is locked while it is read; the column layout is restored from and saved to\n"
    "the registry key KEY (default Report\\<SET or All>) under Software\\Quillon\\QuilTool\\1.\n"
    "Without --out and --text the spreadsheet goes beside the project file (.xml).\n"
    "  --user NAME   the name the report is made for, shown in its title\n"
    "Exit codes: 0 done, 1 failure (with a message), 2 bad arguments,\n"
    "            3 the project file is held by another user.\n";

const char kStopped[] = "stopped by the user; nothing was written";

int Usage(FILE* err, const std::string& problem) {
  std::fprintf(err, "quiltool report: %s\n%s", problem.c_str(), kUsage);
  return 2;
}

std::wstring Wide(const std::string& s) { return qn_utf8_to_wide(s.c_str()); }

// What the worker needs and leaves behind.
struct Job {
  QBaseDb db;
  std::string set;
  std::wstring layoutKey;
  std::wstring title;
  std::wstring xmlFile, textFile;
  QnListView2 grid;
  std::vector<std::wstring> written;  // removed again when the run does not finish
  int code = 1;
  bool started = false;  // a cancel before the worker starts skips the work
  std::string message;
};

// Decimals of a floating value: as many as its shortest round-trip text
// shows, at most 6 (more are the binary fraction's, not the data's).
int DecimalsOf(double value) {
  char text[64];
  const std::to_chars_result r = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed);
  if (r.ec != std::errc()) return 6;
  const char* dot = std::find(text, r.ptr, '.');
  if (dot == r.ptr) return 0;
  const long digits = static_cast<long>(r.ptr - dot - 1);
  return digits > 6 ? 6 : static_cast<int>(digits);
}

// The visible columns of the grid, in the order shown.
std::vector<int> VisibleColumns(QnListView2& grid) {
  std::vector<int> columns;
  QNListViewColumnManager* m = grid.GetColumnManager();
  if (!m) return columns;
  for (int c : m->GetColumnOrder()) {
    if (!m->IsColumnHidden(c)) columns.push_back(c);
  }
  return columns;
}

bool BuildReport(QnListView2& grid, const std::wstring& title, SimpleReport& report) {
  report.SetTitle(ustr(title.c_str()));
  const std::vector<int> columns = VisibleColumns(grid);
  for (int c : columns) report.AddColumn(SimpleReport::ColumnData(grid.GetColumnName(c), 90));
  const int rows = grid.GetRowCount();
  for (int r = 0; r < rows; ++r) {
    SimpleReport::RowData row;
    row.lParam = grid.GetRowLParam(r);
    row.cells.reserve(columns.size());
    for (int c : columns) {
      switch (grid.GetCellKind(r, c)) {
        case QnListView2::KindShort:
        case QnListView2::KindInt: {
          int v = 0;
          grid.GetCell(r, c, v);
          row.cells.push_back(SimpleReport::CellData::Integer(v));
          break;
        }
        case QnListView2::KindFloat:
        case QnListView2::KindDouble: {
          double v = 0;
          grid.GetCell(r, c, v);
          row.cells.push_back(SimpleReport::CellData::Double(v, DecimalsOf(v)));
          break;
        }
        case QnListView2::KindEmpty:
          // A number column's missing value stays a number cell without one.
          row.cells.push_back(grid.GetColumnAlignment(c) == QnListView2::AlignRight
                                  ? SimpleReport::CellData::EmptyNumber()
                                  : SimpleReport::CellData::Text(ustr()));
          break;
        default:
          row.cells.push_back(SimpleReport::CellData::Text(grid.GetCellText(r, c)));
          break;
      }
    }
    if (report.AddRow(row) < 0) return false;
  }
  return true;
}

bool Work(const ProgressDlgThreaded::UserProcData* d) {
  Job& job = *static_cast<Job*>(d->GetAppData());
  job.started = true;
  d->SetTitile(job.title.c_str());
  d->SetShowPercentage(true);
  qt_tool::WalkProgress progress;
  progress.set = [d](int set, int sets, const char* name) {
    d->PbSetRangeUpper(0, sets);
    d->PbSetPos(0, set + 1);
    d->PbSetText(0, qn_utf8_to_wide(name).c_str());
    return !d->ShouldTerminate();
  };
  progress.record = [d](long record, long records) {
    d->PbSetRangeUpper(1, static_cast<int>(records > 0 ? records : 1));
    d->PbSetPos(1, static_cast<int>(record));
    return !d->ShouldTerminate();
  };
  const int filled = qt_tool::FillReportTable(job.db, job.set, job.grid, progress, &job.message);
  if (filled != 0) {
    if (filled == 4) job.message = kStopped;
    return false;
  }
  job.grid.LoadColumnsFromRegistry(job.layoutKey.c_str(), false);
  SimpleReport report;
  if (!BuildReport(job.grid, job.title, report)) {
    job.message = "out of memory";
    return false;
  }
  if (d->ShouldTerminate()) {
    job.message = kStopped;
    return false;
  }
  struct Output {
    const std::wstring* file;
    int (SimpleReport::*save)(const wchar_t*) const;
  };
  const Output outputs[] = {{&job.xmlFile, &SimpleReport::SaveAsXmlSpreadsheet}, {&job.textFile, &SimpleReport::SaveAsText}};
  for (const Output& o : outputs) {
    if (o.file->empty()) continue;
    const int saved = (report.*o.save)(o.file->c_str());
    if (saved != SimpleReport::SaveOk) {
      job.message = "cannot write " + qn_wide_to_utf8(o.file->c_str()) + " (" + std::to_string(saved) + ")";
      return false;
    }
    job.written.push_back(*o.file);
    if (d->ShouldTerminate()) {
      job.message = kStopped;
      return false;
    }
  }
  job.code = 0;
  return true;
}

void RemoveWritten(const Job& job) {
  for (const std::wstring& f : job.written) std::remove(qn_wide_to_utf8(f.c_str()).c_str());
}

std::wstring WithExtension(const std::wstring& file, const wchar_t* extension) {
  const size_t slash = file.find_last_of(L"\\/");
  const size_t dot = file.rfind(L'.');
  const bool hasDot = dot != std::wstring::npos && (slash == std::wstring::npos || dot > slash);
  return (hasDot ? file.substr(0, dot) : file) + extension;
}

int ReportMain(const std::vector<std::string>& args, FILE* out, FILE* err) {
  qt_tool::ParsedArgs a;
  const int code = qt_tool::ParseOptions(
      args, 0, {{"--set", true}, {"--out", true}, {"--text", true}, {"--user", true}, {"--layout", true}},
      "quiltool report", kUsage, &a, out, err);
  if (code != qt_tool::kGoOn) return code;
  if (a.plain.size() != 1 || a.plain[0].empty()) return Usage(err, "give exactly one PROJECTFILE");
  for (const char* option : {"--set", "--out", "--text", "--layout", "--user"}) {
    if (a.has(option) && a.value(option).empty()) return Usage(err, std::string(option) + " needs a value");
  }

  Job job;
  const std::wstring project = Wide(a.plain[0]);
  job.set = a.value("--set");
  job.xmlFile = Wide(a.value("--out"));
  job.textFile = Wide(a.value("--text"));
  if (job.xmlFile.empty() && job.textFile.empty()) job.xmlFile = WithExtension(project, L".xml");
  job.layoutKey = a.has("--layout") ? Wide(a.value("--layout")) : L"Report\\" + (job.set.empty() ? std::wstring(L"All") : Wide(job.set));
  const size_t slash = project.find_last_of(L"\\/");
  job.title = (slash == std::wstring::npos ? project : project.substr(slash + 1)) +
              (job.set.empty() ? std::wstring() : L" - " + Wide(job.set)) +
              (a.has("--user") ? L" - " + Wide(a.value("--user")) : std::wstring());

  RegInt_Init(L"Quillon", L"QuilTool", L"1");
  Lng::init(static_cast<short>(QnRegistry::GetActiveLanguageId()));

  // 1. The lock; a holder is named to the user in the locker's message.
  FileLocker locker(Lng::text(Lng::APP_QNC, 60296, L"Locked"));
  if (!locker.Lock(ustr(project.c_str()))) {
    if (locker.GetFileLockState(project.c_str()) == FileSharingServiceManager::LockStateLockedByOther) return 3;
    std::fprintf(err, "quiltool report: cannot lock %s\n", a.plain[0].c_str());
    return 1;
  }
  // 2. The database, read-only: a damaged or foreign file stays as it is.
  job.db = QBaseDbManager::instance().openFile(project.c_str(), QB_MODE_READ);
  if (!job.db.isValidDb()) {
    std::fprintf(err, "quiltool report: %s is not a project database that can be read: %s\n", a.plain[0].c_str(),
                 qbstatustext(QBaseDbManager::instance().lastStatus()));
    return 1;
  }
  // 3-6. Walk, restore the layout and export on a worker under the dialog.
  {
    ProgressDlgThreaded dialog(nullptr, L"quiltool report", job.title.c_str(), 2, true, &Work, &job);
    dialog.SetAllowKillThread(false);
    const LONG_PTR ended = dialog.StartModal();
    if (!job.started) job.message = ended == 3 ? "the worker thread could not be started" : kStopped;
  }
  if (job.code != 0) {
    RemoveWritten(job);
    std::fprintf(err, "quiltool report: %s\n", job.message.empty() ? "the export failed" : job.message.c_str());
  } else {
    // 7. The layout for the next run.
    job.grid.SaveColumnsToRegistry(job.layoutKey.c_str());
    for (const std::wstring& f : job.written) {
      std::fprintf(out, "%s: %d records, %d columns\n", qn_wide_to_utf8(f.c_str()).c_str(), job.grid.GetRowCount(),
                   static_cast<int>(VisibleColumns(job.grid).size()));
    }
  }
  job.db.closeDatabase();
  job.db = QBaseDb();
  return job.code;
}

const qt_tool::Registration kReport({"report", "export a project database's records to a spreadsheet", ReportMain});

}  // namespace
