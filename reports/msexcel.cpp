// MsExcel: the workbook session over the automation server. Each operation
// is a short chain of AutoWrap calls that stops at the first failure, whose
// message AutoWrap has already shown.
#include "MsExcel.h"

#include "core/boundary.h"
#include "reports/msexcel_platform.h"

namespace platform = qt::msexcel::platform;

namespace {

// A VARIANT cleared on every path out of a scope.
class Value {
 public:
  Value() { platform::InitVariant(&v); }
  ~Value() { platform::ClearVariant(&v); }
  Value(const Value&) = delete;
  Value& operator=(const Value&) = delete;
  VARIANT v;
};

VARIANT Int(int value) {
  VARIANT v;
  platform::InitVariant(&v);
  v.vt = VT_I4;
  v.lVal = value;
  return v;
}

VARIANT Bool(bool value) {
  VARIANT v;
  platform::InitVariant(&v);
  v.vt = VT_BOOL;
  v.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
  return v;
}

// The interface a call answered, now owned by the caller; null when the
// answer was not an object.
IDispatch* TakeObject(Value& answer) {
  if (answer.v.vt != VT_DISPATCH || !answer.v.pdispVal) return nullptr;
  IDispatch* object = answer.v.pdispVal;
  answer.v.vt = VT_EMPTY;
  answer.v.pdispVal = nullptr;
  return object;
}

IDispatch* GetObject(IDispatch* from, const wchar_t* name, HRESULT* code) {
  Value answer;
  *code = AutoWrap(DISPATCH_PROPERTYGET, &answer.v, from, name, 0);
  if (FAILED(*code)) return nullptr;
  IDispatch* object = TakeObject(answer);
  if (!object) *code = E_FAIL;
  return object;
}

bool IsTrue(const VARIANT& v) {
  Value converted;
  if (FAILED(platform::Convert(&converted.v, &v, VT_BOOL))) return false;
  return converted.v.boolVal != VARIANT_FALSE;
}

const wchar_t kApplicationProgId[] = L"Excel.Application";
// The file format of SaveAs that writes a web page.
const int kWebPageFormat = 44;

}  // namespace

MsExcel::MsExcel()
    : m_application(nullptr),
      m_workbooks(nullptr),
      m_workbook(nullptr),
      m_sheets(nullptr),
      m_sheet(nullptr),
      m_activeCell(nullptr),
      m_startedApplication(false),
      m_openedFile(false),
      m_openFlag(false),
      m_comInitialised(false) {}

MsExcel::~MsExcel() { release(); }

int MsExcel::open(bool attach, const wchar_t* fileName, bool flag) {
  return qt::NoThrow<int>("MsExcel::open", static_cast<int>(E_OUTOFMEMORY), [&]() -> int {
    if (!m_comInitialised) m_comInitialised = platform::StartCom();
    platform::ClassId id;
    if (FAILED(platform::FindClass(kApplicationProgId, &id))) return -1;
    if (!m_application) {
      if (attach) {
        const int attached = platform::Attach(id, &m_application);
        if (attached < 0) return attached;
        m_startedApplication = false;
      } else {
        if (FAILED(platform::Start(id, &m_application))) return -4;
        m_startedApplication = true;
      }
    }

    HRESULT code = S_OK;
    if (!m_workbooks) {
      m_workbooks = GetObject(m_application, L"Workbooks", &code);
      if (!m_workbooks) return code;
    }

    Value workbook;
    if (fileName && *fileName) {
      Value name;
      if (!platform::MakeText(&name.v, fileName)) return static_cast<int>(E_OUTOFMEMORY);
      code = AutoWrap(DISPATCH_METHOD, &workbook.v, m_workbooks, L"Open", 1, name.v);
      if (FAILED(code)) return code;
      m_openedFile = true;
      m_openFlag = flag;
    } else {
      code = AutoWrap(DISPATCH_METHOD, &workbook.v, m_workbooks, L"Add", 0);
      if (FAILED(code)) return code;
      m_openedFile = false;
      m_openFlag = flag;
    }
    IDispatch* opened = TakeObject(workbook);
    if (!opened) return static_cast<int>(E_FAIL);
    release(m_workbook);
    m_workbook = opened;

    IDispatch* sheets = GetObject(m_workbook, L"Sheets", &code);
    if (!sheets) return code;
    release(m_sheets);
    m_sheets = sheets;

    Value sheet;
    code = AutoWrap(DISPATCH_PROPERTYGET, &sheet.v, m_sheets, L"Item", 1, Int(1));
    if (FAILED(code)) return code;
    IDispatch* first = TakeObject(sheet);
    if (!first) return static_cast<int>(E_FAIL);
    release(m_sheet);
    m_sheet = first;

    IDispatch* cell = GetObject(m_application, L"ActiveCell", &code);
    if (!cell) return code;
    release(m_activeCell);
    m_activeCell = cell;
    return m_application ? 0 : -1;
  });
}

int MsExcel::activate() {
  return qt::NoThrow<int>("MsExcel::activate", static_cast<int>(E_OUTOFMEMORY), [&]() -> int {
    const HRESULT code = AutoWrap(DISPATCH_METHOD, nullptr, m_sheet, L"Activate", 0);
    return FAILED(code) ? code : 0;
  });
}

int MsExcel::makeVisible(bool visible) {
  return qt::NoThrow<int>("MsExcel::makeVisible", static_cast<int>(E_OUTOFMEMORY), [&]() -> int {
    const HRESULT code = AutoWrap(DISPATCH_PROPERTYPUT, nullptr, m_application, L"Visible", 1, Bool(visible));
    return FAILED(code) ? code : 0;
  });
}

bool MsExcel::isRunning() { return m_application != nullptr; }

bool MsExcel::getDisplayAlerts() {
  return qt::NoThrow<bool>("MsExcel::getDisplayAlerts", false, [&]() -> bool {
    Value answer;
    if (FAILED(AutoWrap(DISPATCH_PROPERTYGET, &answer.v, m_application, L"DisplayAlerts", 0))) return false;
    return IsTrue(answer.v);
  });
}

bool MsExcel::setDisplayAlerts(bool on) {
  return qt::NoThrow<bool>("MsExcel::setDisplayAlerts", false, [&]() -> bool {
    return SUCCEEDED(AutoWrap(DISPATCH_PROPERTYPUT, nullptr, m_application, L"DisplayAlerts", 1, Bool(on)));
  });
}

IDispatch* MsExcel::makeCellRange(int row, int column) {
  return qt::NoThrow<IDispatch*>("MsExcel::makeCellRange", nullptr, [&]() -> IDispatch* {
    Value answer;
    if (FAILED(AutoWrap(DISPATCH_PROPERTYGET, &answer.v, m_sheet, L"Cells", 2, Int(row), Int(column)))) return nullptr;
    return TakeObject(answer);
  });
}

IDispatch* MsExcel::makeCellRange(const wchar_t* range) {
  return qt::NoThrow<IDispatch*>("MsExcel::makeCellRange", nullptr, [&]() -> IDispatch* {
    Value text;
    if (!platform::MakeText(&text.v, range ? range : L"")) return nullptr;
    Value answer;
    if (FAILED(AutoWrap(DISPATCH_PROPERTYGET, &answer.v, m_sheet, L"Range", 1, text.v))) return nullptr;
    return TakeObject(answer);
  });
}

bool MsExcel::readValue(int row, int column, VARIANT& value) {
  IDispatch* cell = makeCellRange(row, column);
  if (!cell) return false;
  const HRESULT code = AutoWrap(DISPATCH_PROPERTYGET, &value, cell, L"Value", 0);
  release(cell);
  return SUCCEEDED(code);
}

bool MsExcel::putValue(int row, int column, VARIANT& value) {
  IDispatch* cell = makeCellRange(row, column);
  if (!cell) return false;
  const HRESULT code = AutoWrap(DISPATCH_PROPERTYPUT, nullptr, cell, L"Value", 1, value);
  release(cell);
  return SUCCEEDED(code);
}

bool MsExcel::getCell(int row, int column, VARIANT& value) {
  return qt::NoThrow<bool>("MsExcel::getCell", false, [&]() -> bool {
    Value answer;
    if (!readValue(row, column, answer.v)) return false;
    platform::ClearVariant(&value);
    value = answer.v;
    answer.v.vt = VT_EMPTY;
    return true;
  });
}

bool MsExcel::readConverted(int row, int column, VARTYPE type, VARIANT& converted) {
  Value answer;
  return readValue(row, column, answer.v) && SUCCEEDED(platform::Convert(&converted, &answer.v, type));
}

bool MsExcel::getCell(int row, int column, int& value) {
  return qt::NoThrow<bool>("MsExcel::getCell", false, [&]() -> bool {
    Value converted;
    if (!readConverted(row, column, VT_I4, converted.v)) return false;
    value = converted.v.lVal;
    return true;
  });
}

bool MsExcel::getCell(int row, int column, double& value) {
  return qt::NoThrow<bool>("MsExcel::getCell", false, [&]() -> bool {
    Value converted;
    if (!readConverted(row, column, VT_R8, converted.v)) return false;
    value = converted.v.dblVal;
    return true;
  });
}

bool MsExcel::getCell(int row, int column, ustr& value) {
  return qt::NoThrow<bool>("MsExcel::getCell", false, [&]() -> bool {
    Value converted;
    if (!readConverted(row, column, VT_BSTR, converted.v)) return false;
    value = converted.v.bstrVal ? converted.v.bstrVal : L"";
    return true;
  });
}

bool MsExcel::setCell(int row, int column, const VARIANT& value) {
  return qt::NoThrow<bool>("MsExcel::setCell", false, [&]() -> bool {
    Value copy;
    if (FAILED(platform::CopyVariant(&copy.v, &value))) return false;
    return putValue(row, column, copy.v);
  });
}

bool MsExcel::setCell(int row, int column, int value) {
  return qt::NoThrow<bool>("MsExcel::setCell", false, [&]() -> bool {
    VARIANT v = Int(value);
    return putValue(row, column, v);
  });
}

bool MsExcel::setCell(int row, int column, double value) {
  return qt::NoThrow<bool>("MsExcel::setCell", false, [&]() -> bool {
    Value v;
    v.v.vt = VT_R8;
    v.v.dblVal = value;
    return putValue(row, column, v.v);
  });
}

bool MsExcel::setCell(int row, int column, const wchar_t* text) {
  return qt::NoThrow<bool>("MsExcel::setCell", false, [&]() -> bool {
    Value v;
    if (!platform::MakeText(&v.v, text ? text : L"")) return false;
    return putValue(row, column, v.v);
  });
}

IDispatch* MsExcel::getComment(int row, int column, bool create) {
  return qt::NoThrow<IDispatch*>("MsExcel::getComment", nullptr, [&]() -> IDispatch* {
    IDispatch* cell = makeCellRange(row, column);
    if (!cell) return nullptr;
    Value answer;
    IDispatch* comment = nullptr;
    if (SUCCEEDED(AutoWrap(DISPATCH_PROPERTYGET, &answer.v, cell, L"Comment", 0))) {
      comment = TakeObject(answer);
      if (!comment && create) {
        Value added;
        if (SUCCEEDED(AutoWrap(DISPATCH_METHOD, &added.v, cell, L"AddComment", 0))) comment = TakeObject(added);
      }
    }
    release(cell);
    return comment;
  });
}

bool MsExcel::getCellComment(int row, int column, ustr& text) {
  return qt::NoThrow<bool>("MsExcel::getCellComment", false, [&]() -> bool {
    IDispatch* comment = getComment(row, column, false);
    if (!comment) return false;
    // Text is a method of a comment: called without arguments it reads.
    Value answer, converted;
    const HRESULT code = AutoWrap(DISPATCH_METHOD, &answer.v, comment, L"Text", 0);
    release(comment);
    if (FAILED(code) || FAILED(platform::Convert(&converted.v, &answer.v, VT_BSTR))) return false;
    text = converted.v.bstrVal ? converted.v.bstrVal : L"";
    return true;
  });
}

bool MsExcel::setCellComment(int row, int column, const wchar_t* text, const wchar_t* author) {
  return qt::NoThrow<bool>("MsExcel::setCellComment", false, [&]() -> bool {
    Value previousAuthor;
    const bool newAuthor = author && *author;
    if (newAuthor) {
      if (FAILED(AutoWrap(DISPATCH_PROPERTYGET, &previousAuthor.v, m_application, L"UserName", 0))) return false;
      Value name;
      if (!platform::MakeText(&name.v, author)) return false;
      if (FAILED(AutoWrap(DISPATCH_PROPERTYPUT, nullptr, m_application, L"UserName", 1, name.v))) return false;
    }
    bool done = false;
    IDispatch* comment = getComment(row, column, true);
    if (comment) {
      Value body;
      if (platform::MakeText(&body.v, text ? text : L"")) {
        done = SUCCEEDED(AutoWrap(DISPATCH_METHOD, nullptr, comment, L"Text", 1, body.v));
      }
      release(comment);
    }
    // The user's own name comes back even when the comment failed.
    if (newAuthor && FAILED(AutoWrap(DISPATCH_PROPERTYPUT, nullptr, m_application, L"UserName", 1, previousAuthor.v))) {
      return false;
    }
    return done;
  });
}

bool MsExcel::saveWorkbook(const wchar_t* fileName, bool flag) {
  return qt::NoThrow<bool>("MsExcel::saveWorkbook", false, [&]() -> bool {
    if (!fileName || !*fileName) return SUCCEEDED(AutoWrap(DISPATCH_METHOD, nullptr, m_workbook, L"Save", 0));
    Value name;
    if (!platform::MakeText(&name.v, fileName)) return false;
    if (!flag) return SUCCEEDED(AutoWrap(DISPATCH_METHOD, nullptr, m_workbook, L"SaveAs", 1, name.v));
    Value alerts;
    if (FAILED(AutoWrap(DISPATCH_PROPERTYGET, &alerts.v, m_application, L"DisplayAlerts", 0))) return false;
    if (FAILED(AutoWrap(DISPATCH_PROPERTYPUT, nullptr, m_application, L"DisplayAlerts", 1, Bool(false)))) return false;
    const bool saved = SUCCEEDED(AutoWrap(DISPATCH_METHOD, nullptr, m_workbook, L"SaveAs", 1, name.v));
    const bool restored =
        SUCCEEDED(AutoWrap(DISPATCH_PROPERTYPUT, nullptr, m_application, L"DisplayAlerts", 1, Bool(IsTrue(alerts.v))));
    return saved && restored;
  });
}

int MsExcel::saveHtml(const wchar_t* fileName) {
  return qt::NoThrow<int>("MsExcel::saveHtml", static_cast<int>(E_OUTOFMEMORY), [&]() -> int {
    HRESULT code = S_OK;
    IDispatch* sheet = GetObject(m_application, L"ActiveSheet", &code);
    if (!sheet) return code;
    Value name;
    if (!platform::MakeText(&name.v, fileName ? fileName : L"")) {
      release(sheet);
      return static_cast<int>(E_OUTOFMEMORY);
    }
    code = AutoWrap(DISPATCH_METHOD, nullptr, sheet, L"SaveAs", 2, name.v, Int(kWebPageFormat));
    release(sheet);
    return FAILED(code) ? code : 0;
  });
}

bool MsExcel::closeWorkbook(bool flag) {
  return qt::NoThrow<bool>("MsExcel::closeWorkbook", false, [&]() -> bool {
    if (FAILED(AutoWrap(DISPATCH_METHOD, nullptr, m_workbook, L"Close", 1, Bool(flag)))) return false;
    release(m_activeCell);
    release(m_sheet);
    release(m_sheets);
    release(m_workbook);
    m_openedFile = false;
    return true;
  });
}

bool MsExcel::close(bool flag) {
  return qt::NoThrow<bool>("MsExcel::close", false, [&]() -> bool {
    bool ok = true;
    if (!flag && m_workbook) {
      ok = SUCCEEDED(AutoWrap(DISPATCH_PROPERTYPUT, nullptr, m_workbook, L"Saved", 1, Bool(true)));
    }
    if (ok && m_startedApplication) ok = SUCCEEDED(AutoWrap(DISPATCH_METHOD, nullptr, m_application, L"Quit", 0));
    if (!ok) return false;
    release(m_activeCell);
    release(m_sheet);
    release(m_sheets);
    release(m_workbook);
    release(m_workbooks);
    release(m_application);
    m_startedApplication = false;
    m_openedFile = false;
    return true;
  });
}

void MsExcel::release(IDispatch*& object) {
  qt::NoThrowVoid("MsExcel::release", [&] {
    if (object) platform::Release(object);
    object = nullptr;
  });
}

void MsExcel::release() {
  qt::NoThrowVoid("MsExcel::release", [&] {
    release(m_activeCell);
    release(m_sheet);
    release(m_sheets);
    release(m_workbook);
    release(m_workbooks);
    release(m_application);
    m_startedApplication = false;
    m_openedFile = false;
    if (m_comInitialised) platform::EndCom();
    m_comInitialised = false;
  });
}
