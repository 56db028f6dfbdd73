// SimpleReport: a small table of typed cells under a title, shown in the
// report window (SimpleReportOuputDlg, spelled so: callers depend on the
// name) and saved as tab-delimited UTF-16 text or as an XML Spreadsheet
// 2003 workbook. Both files are built whole in memory and come out
// byte-identical on Windows and Linux for the same report.
//
// Setters answer false (or -1 for an index) on a bad index and change
// nothing; nothing throws across this interface.
#ifndef QUILTOOL_SIMPLEREPORT_H
#define QUILTOOL_SIMPLEREPORT_H

#include <vector>

#include "qn_wintypes.h"
#include "quiltool_export.h"
#include "ustr.h"

class QnListView2;
class SimpleReportOuputDlg;
struct SimpleReportData;

class QT_API SimpleReport {
 public:
  // The kind of a cell. A numeric cell may be empty (no value): its text
  // form is then empty and the spreadsheet writes it as an empty String.
  enum CellKind { CellNone = 0, CellText = 1, CellInteger = 2, CellDouble = 3 };

  struct ColumnData {
    ustr header;
    ustr header2;  // a second header line; empty for none
    int width;     // the spreadsheet's column width, in points
    ColumnData() : width(80) {}
    explicit ColumnData(const ustr& text, int columnWidth = 80, const ustr& secondLine = ustr())
        : header(text), header2(secondLine), width(columnWidth) {}
  };

  struct CellData {
    int kind;
    ustr text;           // CellText
    int intValue;        // CellInteger
    double doubleValue;  // CellDouble
    int decimals;        // CellDouble: 0..60; a negative count means 6, as "%.*lf" takes it
    bool empty;          // a numeric cell without a value

    CellData() : kind(CellNone), intValue(0), doubleValue(0), decimals(0), empty(true) {}
    static CellData Text(const ustr& value) {
      CellData c;
      c.kind = CellText;
      c.text = value;
      c.empty = false;
      return c;
    }
    static CellData Integer(int value) {
      CellData c;
      c.kind = CellInteger;
      c.intValue = value;
      c.empty = false;
      return c;
    }
    static CellData Double(double value, int decimalCount) {
      CellData c;
      c.kind = CellDouble;
      c.doubleValue = value;
      c.decimals = decimalCount;
      c.empty = false;
      return c;
    }
    static CellData EmptyNumber(int numericKind = CellDouble) {
      CellData c;
      c.kind = numericKind;
      return c;
    }
    // The text form: the text for CellText, "%d" for CellInteger, "%.*lf"
    // (always with a decimal point, whatever the locale) for CellDouble,
    // empty for an empty cell or any other kind.
    ustr GetText() const { return SimpleReport::GetCellText(*this); }
  };

  struct RowData {
    std::vector<CellData> cells;  // cells beyond the report's columns are dropped
    long long lParam;
    RowData() : lParam(0) {}
  };

  // Lets the caller take part in the report window. Every operation has a
  // default that does nothing, so a caller overrides only what it needs.
  class Callback {
   public:
    virtual ~Callback() {}
    // The window is up and the table is filled.
    virtual void OnInitDialog(SimpleReportOuputDlg& dialog) {}
    // A menu item or button (SimpleReportOuputDlg::Command); true when the
    // callback has handled it and the window should not.
    virtual bool OnCommand(SimpleReportOuputDlg& dialog, int command) { return false; }
    // The window is about to close.
    virtual void OnClose(SimpleReportOuputDlg& dialog) {}
  };

  // Results of the dialog-free saves.
  enum SaveResult {
    SaveOk = 0,
    SaveBadArgument = -1,  // null or empty file name
    SaveNoMemory = -2,     // the file's content could not be built
    SaveNotWritten = -4,   // the file could not be created or written
    SaveNoTemplate = -5    // the workbook template is missing from the library
  };

  SimpleReport();
  ~SimpleReport();
  SimpleReport(const SimpleReport&) = delete;
  SimpleReport& operator=(const SimpleReport&) = delete;

  void SetTitle(const ustr& title);  // may be empty
  ustr GetTitle() const;

  int AddColumn(const ColumnData& column);  // the new column's index, -1 on failure
  int AddRow(const RowData& row = RowData());  // the new row's index, -1 on failure
  bool SetCell(int row, int column, const CellData& cell);

  int GetColumnCount() const;
  int GetRowCount() const;
  bool GetColumn(int column, ColumnData& data) const;
  // A cell never set reads as an empty CellText.
  bool GetCell(int row, int column, CellData& cell) const;

  // Shows the report window, modal to parent, until the user closes it.
  // The callback may be null (then DummyDialogCallback's nothing is done).
  // On Linux, and wherever a QnReportPresenter is installed, the presenter
  // shows it. False when it could not be shown.
  bool Create(HWND parent = nullptr, Callback* callback = nullptr);

  // Saves without any dialog, message box or opening of the file, for
  // programs that name the file themselves. The file is replaced as a whole:
  // on any failure the result is negative (SaveResult), an existing file of
  // that name is left as it was, and no partial file is left behind.
  int SaveAsText(const wchar_t* path) const;
  int SaveAsXmlSpreadsheet(const wchar_t* path) const;

  static ustr GetCellText(const CellData& cell);

  const SimpleReportData& data() const { return *data_; }

 private:
  SimpleReportData* data_;
};

// The callback that does nothing; used when the caller gives none.
class DummyDialogCallback : public SimpleReport::Callback {};

// The report window. SimpleReport::Create makes one; a callback or a
// presenter reaches its operations through the reference it is given.
class QT_API SimpleReportOuputDlg {
 public:
  // Menu items and buttons; a callback's OnCommand sees these numbers.
  enum Command {
    CmdSaveText = 40101,
    CmdSaveExcel = 40102,
    CmdExit = 40103,
    CmdCopy = 40104,
    CmdZoomApply = 40105,
    CmdClose = 2  // IDCANCEL: Escape and the window menu's close too
  };
  enum ZoomLimits { kMinZoom = 50, kMaxZoom = 400 };

  SimpleReportOuputDlg(const SimpleReport& report, SimpleReport::Callback* callback);
  ~SimpleReportOuputDlg();
  SimpleReportOuputDlg(const SimpleReportOuputDlg&) = delete;
  SimpleReportOuputDlg& operator=(const SimpleReportOuputDlg&) = delete;

  // Runs the window until it closes; false when it could not be shown.
  bool DoModal(HWND parent);
  HWND GetHwnd() const;  // null while the window is not up, and on Linux
  const SimpleReport& GetReport() const;
  // The grid the table is shown in, filled when the window is made.
  QnListView2& GetListView();

  // Saving as the menu does it: asks for the name, says "Could not create
  // file" when the file cannot be written, and opens the saved file with
  // its program. False when cancelled or failed.
  bool SaveToTextFile();
  bool SaveToExcelFile();
  // Puts the table on the clipboard as the text file's lines.
  bool CopyToClipboard();
  // The table's zoom in percent, kMinZoom..kMaxZoom (false outside).
  bool SetZoom(int percent);
  int GetZoom() const;
  // Runs a command as the menu would (the callback is asked first).
  void RunCommand(int command);
  // Ends DoModal.
  void Close();

  struct Impl;

 private:
  Impl* impl_;
};

// Who shows the report window and asks for file names. The default on
// Windows is the real dialog and the system's save-file dialog. On Linux
// the default writes the report to stderr and has no save-file dialog
// (saving from it is cancelled); a host or a test installs its own
// presenter to take over on either target.
class QnReportPresenter {
 public:
  virtual ~QnReportPresenter() {}
  // Shows the window until the user is done; false when it cannot.
  virtual bool showReport(SimpleReportOuputDlg& dialog) = 0;
  // filter is in the form "Text file (*.txt)|*.txt||", defaultExtension
  // "*.txt"; true with a name chosen, false when cancelled.
  virtual bool askSaveFileName(HWND owner, const wchar_t* filter, const wchar_t* defaultExtension, ustr& name) = 0;
};

// Installs a presenter (not owned) and returns the previous one; null
// restores the default.
QT_API QnReportPresenter* qn_set_report_presenter(QnReportPresenter* presenter);

#endif
