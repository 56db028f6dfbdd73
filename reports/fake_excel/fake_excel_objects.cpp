// Each object answers GetIDsOfNames from one name table shared by all
// objects and checks in Invoke that the member is its own and that it was
// called the way the member is declared (method, property get or put with
// its named argument), as a strict automation server does. Every lookup and
// call is logged with the argument types in declared order.
#include "fake_excel_objects.h"

#include <oleauto.h>

#include <cstdio>
#include <cwctype>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "fake_excel_log.h"

namespace fake_excel {

namespace {

LONG g_references = 0;
DWORD g_mainThread = 0;
DWORD g_activeRegistration = 0;

const wchar_t* const kMembers[] = {
    L"Workbooks", L"ActiveCell", L"ActiveSheet", L"Visible", L"DisplayAlerts", L"UserName", L"Quit",
    L"Add",       L"Open",       L"Count",       L"Sheets",  L"SaveAs",        L"Save",     L"Close",
    L"Saved",     L"Item",       L"Cells",       L"Range",   L"Activate",      L"Value",    L"Comment",
    L"AddComment", L"Text",      L"Author",      L"Name",
};
const DISPID kFirstDispid = 0x100;

std::wstring Lower(const std::wstring& s) {
  std::wstring out(s);
  for (auto& c : out) c = static_cast<wchar_t>(std::towlower(c));
  return out;
}

DISPID DispidOf(const std::wstring& name) {
  for (size_t i = 0; i < sizeof kMembers / sizeof kMembers[0]; ++i) {
    if (Lower(kMembers[i]) == Lower(name)) return kFirstDispid + static_cast<DISPID>(i);
  }
  return DISPID_UNKNOWN;
}

std::wstring NameOf(DISPID id) {
  const size_t i = static_cast<size_t>(id - kFirstDispid);
  if (id < kFirstDispid || i >= sizeof kMembers / sizeof kMembers[0]) return L"";
  return kMembers[i];
}

// A VARIANT with value semantics, for the model.
struct Value {
  Value() { VariantInit(&v); }
  Value(const Value& other) {
    VariantInit(&v);
    VariantCopy(&v, const_cast<VARIANT*>(&other.v));
  }
  Value& operator=(const Value& other) {
    if (this != &other) VariantCopy(&v, const_cast<VARIANT*>(&other.v));
    return *this;
  }
  ~Value() { VariantClear(&v); }
  VARIANT v;
};

struct Note {
  std::wstring author;
  std::wstring text;
};

typedef std::pair<long, long> Position;

struct Book {
  std::wstring fileName;
  std::map<Position, Value> cells;
  std::map<Position, Note> notes;
  bool saved = true;
};

struct AppState {
  bool visible = false;
  bool displayAlerts = true;
  std::wstring userName = L"Fake User";
  std::vector<std::shared_ptr<Book>> books;
  int created = 0;
};

AppState& App() {
  static AppState state;
  return state;
}

bool FileExists(const std::wstring& name) { return GetFileAttributesW(name.c_str()) != INVALID_FILE_ATTRIBUTES; }

std::wstring CellText(const VARIANT& value) {
  Value text;
  if (FAILED(VariantChangeTypeEx(&text.v, const_cast<VARIANT*>(&value), 0x0409, 0, VT_BSTR))) return L"";
  return text.v.bstrVal ? text.v.bstrVal : L"";
}

// One line per cell: R<row>C<col> TAB <type> TAB <text>, then one per
// comment: R<row>C<col> TAB NOTE TAB <author> TAB <text>.
bool WriteBook(const Book& book, const std::wstring& name) {
  std::wstring out;
  wchar_t where[64];
  for (const auto& cell : book.cells) {
    swprintf(where, 64, L"R%ldC%ld\t", cell.first.first, cell.first.second);
    const std::wstring kind = Describe(cell.second.v);
    out += where + kind.substr(0, kind.find(L':')) + L"\t" + CellText(cell.second.v) + L"\n";
  }
  for (const auto& note : book.notes) {
    swprintf(where, 64, L"R%ldC%ld\t", note.first.first, note.first.second);
    out += where + std::wstring(L"NOTE\t") + note.second.author + L"\t" + note.second.text + L"\n";
  }
  FILE* file = _wfopen(name.c_str(), L"wb");
  if (!file) return false;
  const int size = WideCharToMultiByte(CP_UTF8, 0, out.c_str(), static_cast<int>(out.size()), nullptr, 0, nullptr, nullptr);
  std::string bytes(static_cast<size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, out.c_str(), static_cast<int>(out.size()), &bytes[0], size, nullptr, nullptr);
  const bool ok = fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  return fclose(file) == 0 && ok;
}

// Reads what WriteBook wrote (cells as text or numbers).
bool ReadBook(Book& book, const std::wstring& name) {
  FILE* file = _wfopen(name.c_str(), L"rb");
  if (!file) return false;
  std::string bytes;
  char chunk[4096];
  size_t got;
  while ((got = fread(chunk, 1, sizeof chunk, file)) > 0) bytes.append(chunk, got);
  fclose(file);
  const int size = MultiByteToWideChar(CP_UTF8, 0, bytes.data(), static_cast<int>(bytes.size()), nullptr, 0);
  std::wstring text(static_cast<size_t>(size), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, bytes.data(), static_cast<int>(bytes.size()), &text[0], size);
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find(L'\n', start);
    if (end == std::wstring::npos) end = text.size();
    const std::wstring line = text.substr(start, end - start);
    start = end + 1;
    long row = 0, column = 0;
    wchar_t kind[16] = {0};
    if (swscanf(line.c_str(), L"R%ldC%ld\t%15[^\t]", &row, &column, kind) != 3) continue;
    const size_t tab1 = line.find(L'\t'), tab2 = line.find(L'\t', tab1 + 1);
    const std::wstring rest = tab2 == std::wstring::npos ? L"" : line.substr(tab2 + 1);
    if (std::wstring(kind) == L"NOTE") {
      const size_t tab3 = rest.find(L'\t');
      book.notes[Position(row, column)] = {rest.substr(0, tab3), tab3 == std::wstring::npos ? L"" : rest.substr(tab3 + 1)};
      continue;
    }
    Value cell;
    if (std::wstring(kind) == L"I4") {
      cell.v.vt = VT_I4;
      cell.v.lVal = wcstol(rest.c_str(), nullptr, 10);
    } else if (std::wstring(kind) == L"R8") {
      cell.v.vt = VT_R8;
      cell.v.dblVal = wcstod(rest.c_str(), nullptr);
    } else {
      cell.v.vt = VT_BSTR;
      cell.v.bstrVal = SysAllocString(rest.c_str());
    }
    book.cells[Position(row, column)] = cell;
  }
  book.fileName = name;
  return true;
}

enum Kind { Method, Get, Put, GetOrPut };

struct Call {
  std::wstring member;
  WORD flags;
  std::vector<VARIANT*> args;  // declared order
  VARIANT* result;
};

HRESULT Fail(EXCEPINFO* exception, const wchar_t* why) {
  if (exception) {
    exception->scode = DISP_E_EXCEPTION;
    exception->bstrSource = SysAllocString(L"fake_excel");
    exception->bstrDescription = SysAllocString(why);
  }
  return DISP_E_EXCEPTION;
}

class Object : public IDispatch {
 public:
  explicit Object(const wchar_t* kind) : kind_(kind) { AddServerReference(); }
  virtual ~Object() { ReleaseServerReference(); }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    if (!out) return E_POINTER;
    if (iid == IID_IUnknown || iid == IID_IDispatch) {
      *out = static_cast<IDispatch*>(this);
      AddRef();
      return S_OK;
    }
    *out = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&references_)); }
  ULONG STDMETHODCALLTYPE Release() override {
    const LONG left = InterlockedDecrement(&references_);
    if (left == 0) delete this;
    return static_cast<ULONG>(left);
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count) *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    if (!names || !ids || count < 1) return E_INVALIDARG;
    const std::wstring name = names[0] ? names[0] : L"";
    for (UINT i = 1; i < count; ++i) ids[i] = DISPID_UNKNOWN;
    ids[0] = Settings().failLookup.count(name) ? DISPID_UNKNOWN : DispidOf(name);
    wchar_t id[16];
    swprintf(id, 16, L"%lx", static_cast<unsigned long>(ids[0]));
    Log(L"lookup " + kind_ + L"." + name + L" " + (ids[0] == DISPID_UNKNOWN ? L"unknown" : id));
    return ids[0] == DISPID_UNKNOWN ? DISP_E_UNKNOWNNAME : S_OK;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params, VARIANT* result,
                                   EXCEPINFO* exception, UINT*) override {
    Call call;
    call.member = NameOf(id);
    call.flags = flags;
    call.result = result;
    if (result) VariantInit(result);
    std::wstring line = L"call " + kind_ + L"." + call.member + L" " + std::to_wstring(flags);
    const UINT count = params ? params->cArgs : 0;
    for (UINT i = count; i > 0; --i) {
      call.args.push_back(&params->rgvarg[i - 1]);
      line += L" " + Describe(params->rgvarg[i - 1]);
    }
    if (params && params->cNamedArgs > 0 && params->rgdispidNamedArgs) {
      line += L" named=" + std::to_wstring(params->rgdispidNamedArgs[0]);
    }
    Log(line);
    if (call.member.empty()) return DISP_E_MEMBERNOTFOUND;
    if (Settings().failInvoke.count(call.member)) return Fail(exception, L"failure asked for by the test");
    const bool put = (flags & DISPATCH_PROPERTYPUT) != 0;
    if (put && (!params || params->cNamedArgs != 1 || params->rgdispidNamedArgs[0] != DISPID_PROPERTYPUT)) {
      return DISP_E_PARAMNOTOPTIONAL;
    }
    return invoke(call, exception);
  }

 protected:
  // The member's declared kind against the flags of the call.
  static bool Is(const Call& call, Kind kind) {
    switch (kind) {
      case Method: return call.flags == DISPATCH_METHOD;
      case Get: return call.flags == DISPATCH_PROPERTYGET;
      case Put: return call.flags == DISPATCH_PROPERTYPUT;
      case GetOrPut: return call.flags == DISPATCH_PROPERTYGET || call.flags == DISPATCH_PROPERTYPUT;
    }
    return false;
  }
  static HRESULT Answer(const Call& call, IDispatch* object) {
    if (!call.result) {
      object->Release();
      return S_OK;
    }
    call.result->vt = VT_DISPATCH;
    call.result->pdispVal = object;
    return S_OK;
  }
  static HRESULT Answer(const Call& call, const VARIANT& value) {
    return call.result ? VariantCopy(call.result, const_cast<VARIANT*>(&value)) : S_OK;
  }
  static HRESULT AnswerBool(const Call& call, bool value) {
    VARIANT v;
    v.vt = VT_BOOL;
    v.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
    return Answer(call, v);
  }
  static HRESULT AnswerText(const Call& call, const std::wstring& text) {
    Value v;
    v.v.vt = VT_BSTR;
    v.v.bstrVal = SysAllocString(text.c_str());
    return Answer(call, v.v);
  }
  static bool ArgAs(const Call& call, size_t i, VARTYPE type, Value* out) {
    if (i >= call.args.size()) return false;
    return SUCCEEDED(VariantChangeType(&out->v, call.args[i], 0, type));
  }

  virtual HRESULT invoke(const Call& call, EXCEPINFO* exception) = 0;

  std::wstring kind_;

 private:
  LONG references_ = 1;
};

class Comment : public Object {
 public:
  Comment(std::shared_ptr<Book> book, Position at) : Object(L"Comment"), book_(std::move(book)), at_(at) {}

 protected:
  HRESULT invoke(const Call& call, EXCEPINFO* exception) override {
    auto found = book_->notes.find(at_);
    if (found == book_->notes.end()) return Fail(exception, L"the comment was deleted");
    Note& note = found->second;
    // Text is a method: without an argument it reads, with one it replaces.
    if (call.member == L"Text" && Is(call, Method)) {
      if (!call.args.empty()) {
        Value text;
        if (!ArgAs(call, 0, VT_BSTR, &text)) return DISP_E_TYPEMISMATCH;
        note.text = text.v.bstrVal ? text.v.bstrVal : L"";
        book_->saved = false;
      }
      return AnswerText(call, note.text);
    }
    if (call.member == L"Author" && Is(call, Get)) return AnswerText(call, note.author);
    return DISP_E_MEMBERNOTFOUND;
  }

 private:
  std::shared_ptr<Book> book_;
  Position at_;
};

class Range : public Object {
 public:
  Range(std::shared_ptr<Book> book, Position at) : Object(L"Range"), book_(std::move(book)), at_(at) {}

 protected:
  HRESULT invoke(const Call& call, EXCEPINFO*) override {
    if (call.member == L"Value" && Is(call, Get)) {
      auto found = book_->cells.find(at_);
      return found == book_->cells.end() ? S_OK : Answer(call, found->second.v);
    }
    if (call.member == L"Value" && Is(call, Put)) {
      if (call.args.size() != 1) return DISP_E_BADPARAMCOUNT;
      Value copy;
      if (FAILED(VariantCopy(&copy.v, call.args[0]))) return DISP_E_TYPEMISMATCH;
      book_->cells[at_] = copy;
      book_->saved = false;
      return S_OK;
    }
    if (call.member == L"Comment" && Is(call, Get)) {
      if (!book_->notes.count(at_)) {
        // No comment: an empty object reference, as the real object model answers.
        if (call.result) {
          call.result->vt = VT_DISPATCH;
          call.result->pdispVal = nullptr;
        }
        return S_OK;
      }
      return Answer(call, new Comment(book_, at_));
    }
    if (call.member == L"AddComment" && Is(call, Method)) {
      Note note;
      note.author = App().userName;
      Value text;
      if (!call.args.empty() && ArgAs(call, 0, VT_BSTR, &text)) note.text = text.v.bstrVal ? text.v.bstrVal : L"";
      book_->notes[at_] = note;
      book_->saved = false;
      return Answer(call, new Comment(book_, at_));
    }
    return DISP_E_MEMBERNOTFOUND;
  }

 private:
  std::shared_ptr<Book> book_;
  Position at_;
};

// "B3" -> (3, 2); the first cell of "A1:B2".
bool ParseAddress(const std::wstring& text, Position* at) {
  long column = 0;
  size_t i = 0;
  while (i < text.size() && std::iswalpha(text[i])) column = column * 26 + (std::towupper(text[i++]) - L'A' + 1);
  const long row = wcstol(text.c_str() + i, nullptr, 10);
  if (column <= 0 || row <= 0) return false;
  *at = Position(row, column);
  return true;
}

class Sheet : public Object {
 public:
  explicit Sheet(std::shared_ptr<Book> book) : Object(L"Sheet"), book_(std::move(book)) {}

 protected:
  HRESULT invoke(const Call& call, EXCEPINFO* exception) override {
    if (call.member == L"Cells" && Is(call, Get)) {
      Value row, column;
      if (!ArgAs(call, 0, VT_I4, &row) || !ArgAs(call, 1, VT_I4, &column)) return DISP_E_TYPEMISMATCH;
      return Answer(call, new Range(book_, Position(row.v.lVal, column.v.lVal)));
    }
    if (call.member == L"Range" && Is(call, Get)) {
      Value text;
      Position at;
      if (!ArgAs(call, 0, VT_BSTR, &text) || !ParseAddress(text.v.bstrVal ? text.v.bstrVal : L"", &at)) {
        return Fail(exception, L"not a cell address");
      }
      return Answer(call, new Range(book_, at));
    }
    if (call.member == L"Activate" && Is(call, Method)) return S_OK;
    if (call.member == L"Name" && Is(call, Get)) return AnswerText(call, L"Sheet1");
    if (call.member == L"SaveAs" && Is(call, Method)) {
      Value name, format;
      if (!ArgAs(call, 0, VT_BSTR, &name)) return DISP_E_TYPEMISMATCH;
      std::wstring page = L"<html><!-- format ";
      if (ArgAs(call, 1, VT_I4, &format)) page += std::to_wstring(format.v.lVal);
      page += L" --><table>\n";
      for (const auto& cell : book_->cells) {
        page += L"<tr><td>R" + std::to_wstring(cell.first.first) + L"C" + std::to_wstring(cell.first.second) +
                L"</td><td>" + CellText(cell.second.v) + L"</td></tr>\n";
      }
      page += L"</table></html>\n";
      FILE* file = _wfopen(name.v.bstrVal, L"wb");
      if (!file) return Fail(exception, L"cannot write the page");
      std::string bytes(page.begin(), page.end());
      fwrite(bytes.data(), 1, bytes.size(), file);
      fclose(file);
      return S_OK;
    }
    return DISP_E_MEMBERNOTFOUND;
  }

 private:
  std::shared_ptr<Book> book_;
};

class Sheets : public Object {
 public:
  explicit Sheets(std::shared_ptr<Book> book) : Object(L"Sheets"), book_(std::move(book)) {}

 protected:
  HRESULT invoke(const Call& call, EXCEPINFO*) override {
    if (call.member == L"Item" && (Is(call, Get) || Is(call, Method))) {
      Value index;
      if (!ArgAs(call, 0, VT_I4, &index)) return DISP_E_TYPEMISMATCH;
      if (index.v.lVal != 1) return DISP_E_BADINDEX;
      return Answer(call, new Sheet(book_));
    }
    if (call.member == L"Count" && Is(call, Get)) {
      VARIANT one;
      one.vt = VT_I4;
      one.lVal = 1;
      return Answer(call, one);
    }
    return DISP_E_MEMBERNOTFOUND;
  }

 private:
  std::shared_ptr<Book> book_;
};

class Workbook : public Object {
 public:
  explicit Workbook(std::shared_ptr<Book> book) : Object(L"Workbook"), book_(std::move(book)) {}

 protected:
  HRESULT invoke(const Call& call, EXCEPINFO* exception) override {
    if (call.member == L"Sheets" && Is(call, Get)) return Answer(call, new Sheets(book_));
    if (call.member == L"ActiveSheet" && Is(call, Get)) return Answer(call, new Sheet(book_));
    if (call.member == L"Activate" && Is(call, Method)) return S_OK;
    if (call.member == L"Saved" && Is(call, Get)) return AnswerBool(call, book_->saved);
    if (call.member == L"Saved" && Is(call, Put)) {
      Value flag;
      if (!ArgAs(call, 0, VT_BOOL, &flag)) return DISP_E_TYPEMISMATCH;
      book_->saved = flag.v.boolVal != VARIANT_FALSE;
      return S_OK;
    }
    if (call.member == L"SaveAs" && Is(call, Method)) {
      Value name;
      if (!ArgAs(call, 0, VT_BSTR, &name)) return DISP_E_TYPEMISMATCH;
      const std::wstring file = name.v.bstrVal ? name.v.bstrVal : L"";
      // With alerts on, the user is asked before a file is replaced; the
      // stand-in answers No.
      if (App().displayAlerts && FileExists(file)) return Fail(exception, L"the user kept the existing file");
      return save(file, exception);
    }
    if (call.member == L"Save" && Is(call, Method)) {
      if (book_->fileName.empty()) return Fail(exception, L"the workbook has no file yet");
      return save(book_->fileName, exception);
    }
    if (call.member == L"Close" && Is(call, Method)) {
      Value saveChanges;
      if (ArgAs(call, 0, VT_BOOL, &saveChanges) && saveChanges.v.boolVal != VARIANT_FALSE && !book_->saved) {
        if (book_->fileName.empty()) return Fail(exception, L"the workbook has no file yet");
        if (FAILED(save(book_->fileName, exception))) return DISP_E_EXCEPTION;
      }
      auto& books = App().books;
      for (auto it = books.begin(); it != books.end(); ++it) {
        if (*it == book_) {
          books.erase(it);
          break;
        }
      }
      return S_OK;
    }
    return DISP_E_MEMBERNOTFOUND;
  }

 private:
  HRESULT save(const std::wstring& file, EXCEPINFO* exception) {
    if (!WriteBook(*book_, file)) return Fail(exception, L"cannot write the workbook");
    book_->fileName = file;
    book_->saved = true;
    return S_OK;
  }

  std::shared_ptr<Book> book_;
};

class Workbooks : public Object {
 public:
  Workbooks() : Object(L"Workbooks") {}

 protected:
  HRESULT invoke(const Call& call, EXCEPINFO* exception) override {
    if (call.member == L"Add" && Is(call, Method)) {
      App().books.push_back(std::make_shared<Book>());
      return Answer(call, new Workbook(App().books.back()));
    }
    if (call.member == L"Open" && Is(call, Method)) {
      Value name;
      if (!ArgAs(call, 0, VT_BSTR, &name)) return DISP_E_TYPEMISMATCH;
      auto book = std::make_shared<Book>();
      if (!ReadBook(*book, name.v.bstrVal ? name.v.bstrVal : L"")) return Fail(exception, L"cannot read the file");
      App().books.push_back(book);
      return Answer(call, new Workbook(book));
    }
    if (call.member == L"Count" && Is(call, Get)) {
      VARIANT count;
      count.vt = VT_I4;
      count.lVal = static_cast<LONG>(App().books.size());
      return Answer(call, count);
    }
    return DISP_E_MEMBERNOTFOUND;
  }
};

class Application : public Object {
 public:
  Application() : Object(L"Application") {}

 protected:
  HRESULT invoke(const Call& call, EXCEPINFO* exception) override {
    AppState& app = App();
    if (call.member == L"Workbooks" && Is(call, Get)) return Answer(call, new Workbooks());
    if (call.member == L"ActiveCell" && Is(call, Get)) {
      if (app.books.empty()) return Fail(exception, L"no workbook is open");
      return Answer(call, new Range(app.books.back(), Position(1, 1)));
    }
    if (call.member == L"ActiveSheet" && Is(call, Get)) {
      if (app.books.empty()) return Fail(exception, L"no workbook is open");
      return Answer(call, new Sheet(app.books.back()));
    }
    if (call.member == L"Visible" || call.member == L"DisplayAlerts") {
      bool& flag = call.member == L"Visible" ? app.visible : app.displayAlerts;
      if (Is(call, Get)) return AnswerBool(call, flag);
      if (!Is(call, Put)) return DISP_E_MEMBERNOTFOUND;
      Value value;
      if (!ArgAs(call, 0, VT_BOOL, &value)) return DISP_E_TYPEMISMATCH;
      flag = value.v.boolVal != VARIANT_FALSE;
      return S_OK;
    }
    if (call.member == L"UserName" && Is(call, Get)) return AnswerText(call, app.userName);
    if (call.member == L"UserName" && Is(call, Put)) {
      Value value;
      if (!ArgAs(call, 0, VT_BSTR, &value)) return DISP_E_TYPEMISMATCH;
      app.userName = value.v.bstrVal ? value.v.bstrVal : L"";
      return S_OK;
    }
    if (call.member == L"Quit" && Is(call, Method)) {
      for (const auto& book : app.books) {
        if (!book->saved && app.displayAlerts) return Fail(exception, L"the user cancelled quitting");
      }
      app.books.clear();
      RevokeActive();
      return S_OK;
    }
    if (call.member == L"Name" && Is(call, Get)) return AnswerText(call, L"Fake spreadsheet");
    return DISP_E_MEMBERNOTFOUND;
  }
};

class Plain : public IUnknown {
 public:
  Plain() { AddServerReference(); }
  virtual ~Plain() { ReleaseServerReference(); }
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    if (!out) return E_POINTER;
    if (iid == IID_IUnknown) {
      *out = this;
      AddRef();
      return S_OK;
    }
    *out = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&references_)); }
  ULONG STDMETHODCALLTYPE Release() override {
    const LONG left = InterlockedDecrement(&references_);
    if (left == 0) delete this;
    return static_cast<ULONG>(left);
  }

 private:
  LONG references_ = 1;
};

}  // namespace

void AddServerReference() { InterlockedIncrement(&g_references); }

void ReleaseServerReference() {
  if (InterlockedDecrement(&g_references) == 0 && g_mainThread) PostThreadMessageW(g_mainThread, WM_QUIT, 0, 0);
}

void SetMainThread(DWORD thread) { g_mainThread = thread; }

IDispatch* NewApplication() { return new Application(); }

IUnknown* NewPlainObject() { return new Plain(); }

void SetActiveRegistration(DWORD registration) { g_activeRegistration = registration; }

void RevokeActive() {
  if (!g_activeRegistration) return;
  RevokeActiveObject(g_activeRegistration, nullptr);
  g_activeRegistration = 0;
}

}  // namespace fake_excel
