// Spreadsheet automation: late-bound IDispatch calls by member name on the
// "Excel.Application" automation server, and a thin stateful wrapper that
// opens or creates a workbook, reads and writes cells and their comments and
// saves the workbook or the active sheet.
//
// On Linux there is no component library and no automation server. The
// header still compiles there: the few COM names it carries are declared
// below as stand-ins (an opaque IDispatch that no object can ever be, and a
// VARIANT with the fields the library reads). MsExcel::open answers -1 and
// every other operation fails at its first automation call with the
// "NULL IDispatch" message through the message presenter.
#ifndef QUILTOOL_MSEXCEL_H
#define QUILTOOL_MSEXCEL_H

#include "qn_wintypes.h"
#include "quiltool_export.h"
#include "ustr.h"

#if defined(_WIN32)

#include <ole2.h>

#else  // !_WIN32

typedef LONG HRESULT;
typedef unsigned short VARTYPE;
typedef short VARIANT_BOOL;
typedef wchar_t OLECHAR;
typedef OLECHAR* BSTR;
typedef LONG DISPID;

// Never defined: on Linux no automation object exists to point at.
struct IDispatch;

typedef struct tagVARIANT {
  VARTYPE vt;
  WORD wReserved1;
  WORD wReserved2;
  WORD wReserved3;
  union {
    LONG lVal;
    double dblVal;
    VARIANT_BOOL boolVal;
    LONG scode;
    BSTR bstrVal;
    IDispatch* pdispVal;
    void* byref;
  };
} VARIANT;

#ifndef S_OK
#define S_OK ((HRESULT)0L)
#endif
#ifndef E_NOTIMPL
#define E_NOTIMPL ((HRESULT)0x80004001L)
#endif
#ifndef E_POINTER
#define E_POINTER ((HRESULT)0x80004003L)
#endif
#ifndef E_FAIL
#define E_FAIL ((HRESULT)0x80004005L)
#endif
#ifndef E_OUTOFMEMORY
#define E_OUTOFMEMORY ((HRESULT)0x8007000EL)
#endif
#ifndef SUCCEEDED
#define SUCCEEDED(hr) (((HRESULT)(hr)) >= 0)
#endif
#ifndef FAILED
#define FAILED(hr) (((HRESULT)(hr)) < 0)
#endif

enum QnVarEnum { VT_EMPTY = 0, VT_NULL = 1, VT_I4 = 3, VT_R8 = 5, VT_BSTR = 8, VT_DISPATCH = 9, VT_ERROR = 10, VT_BOOL = 11 };
#define VARIANT_TRUE ((VARIANT_BOOL)-1)
#define VARIANT_FALSE ((VARIANT_BOOL)0)

#define DISPATCH_METHOD 0x1
#define DISPATCH_PROPERTYGET 0x2
#define DISPATCH_PROPERTYPUT 0x4
#define DISPID_PROPERTYPUT (-3)

#endif  // _WIN32

// Looks the member up by name on the object and invokes it with argCount
// VARIANT arguments passed by value, in the order the member declares them.
// kind: DISPATCH_METHOD (1), DISPATCH_PROPERTYGET (2) or
// DISPATCH_PROPERTYPUT (4); a put passes its value as the last argument.
// result (may be null) is an out parameter: it is initialised here and the
// caller clears it. Returns the automation result code, negative on failure;
// every failure is also shown in a message box (a null object answers
// E_POINTER).
QT_API HRESULT AutoWrap(int kind, VARIANT* result, IDispatch* object, const wchar_t* name, int argCount, ...);

// One automation server's application, its workbook collection, one open
// workbook, its sheets, the current sheet and the active cell. Every
// operation stops at its first failing automation call (whose message has
// been shown) and keeps the interfaces it already holds.
class QT_API MsExcel {
 public:
  MsExcel();
  // Releases every interface and ends this object's use of the component
  // library; a server this object started is not told to quit (see close).
  ~MsExcel();

  // attach: take the running server instead of starting one. fileName null
  // or empty adds a new workbook, otherwise opens that file; flag is kept
  // for the workbook. 0 on success; -1 no such class (always on Linux),
  // -2 no running server to attach to, -3 the running server offers no
  // IDispatch, -4 a new server could not be started; an automation failure
  // later on answers its (negative) code.
  int open(bool attach, const wchar_t* fileName, bool flag);

  // Activate on the current sheet; Visible put on the application. 0 or
  // the failing call's code.
  int activate();
  int makeVisible(bool visible);
  // Whether an application interface is held; makes no call.
  bool isRunning();
  // false also when the property could not be read.
  bool getDisplayAlerts();
  bool setDisplayAlerts(bool on);

  // The cell's Value. The VARIANT form replaces (clears) what value held
  // only on success; the others convert to VT_I4, VT_R8 or text and leave
  // value unchanged when the cell cannot be read or converted.
  bool getCell(int row, int column, VARIANT& value);
  bool getCell(int row, int column, int& value);
  bool getCell(int row, int column, double& value);
  bool getCell(int row, int column, ustr& value);
  // Puts Value: a copy of the VARIANT, VT_I4, VT_R8 or a text.
  bool setCell(int row, int column, const VARIANT& value);
  bool setCell(int row, int column, int value);
  bool setCell(int row, int column, double value);
  bool setCell(int row, int column, const wchar_t* text);

  // The text of the cell's comment; false when the cell has none.
  bool getCellComment(int row, int column, ustr& text);
  // Creates the comment if needed and sets its text. A non-empty author is
  // put in the application's UserName for the call (the server stamps new
  // comments with it) and the previous name is put back afterwards.
  bool setCellComment(int row, int column, const wchar_t* text, const wchar_t* author);
  // The cell's comment, created first when create is set; null when there
  // is none. The caller releases the returned interface.
  IDispatch* getComment(int row, int column, bool create);
  // Cells(row, column) or Range(text) of the current sheet; null on
  // failure. The caller releases the returned interface.
  IDispatch* makeCellRange(int row, int column);
  IDispatch* makeCellRange(const wchar_t* range);

  // With a file name: SaveAs(fileName) on the workbook; flag set means
  // overwrite without asking, so DisplayAlerts is off during the call and
  // restored after it. Without a name: Save.
  bool saveWorkbook(const wchar_t* fileName, bool flag);
  // SaveAs(fileName, 44) on the active sheet: a web page. 0 or the code.
  int saveHtml(const wchar_t* fileName);
  // Close(flag) on the workbook: flag set saves pending changes. Releases
  // the workbook, its sheets, the sheet and the active cell on success.
  bool closeWorkbook(bool flag);
  // Ends the session: without flag, pending changes of the workbook are
  // dropped (Saved put to true) so that nothing asks; a server this object
  // started is told to Quit, one it attached to keeps running. Then every
  // interface is released.
  bool close(bool flag);

  // Releases one interface and clears the pointer.
  void release(IDispatch*& object);
  // Releases every interface and calls CoUninitialize when open had
  // initialised the component library.
  void release();

 private:
  MsExcel(const MsExcel&);
  MsExcel& operator=(const MsExcel&);

  bool putValue(int row, int column, VARIANT& value);
  bool readValue(int row, int column, VARIANT& value);
  // The cell's value converted to type into `converted` (an empty VARIANT).
  bool readConverted(int row, int column, VARTYPE type, VARIANT& converted);

  IDispatch* m_application;
  IDispatch* m_workbooks;
  IDispatch* m_workbook;
  IDispatch* m_sheets;
  IDispatch* m_sheet;
  IDispatch* m_activeCell;
  bool m_startedApplication;
  bool m_openedFile;
  bool m_openFlag;
  // Whether open initialised the component library on this thread.
  bool m_comInitialised;
};

#endif
