// The language-file reader: one module's .qlg file loaded against the
// suite's QuilQlg.ddq, answering texts of the active language by number.
//
// Texts live in one pool; each language has an open-addressing table from
// text id to its slice of the pool, so a lookup is a hash probe, not a scan.
#ifndef QUILTOOL_SETTINGS_QLG_READER_H
#define QUILTOOL_SETTINGS_QLG_READER_H

#include <cstddef>
#include <memory>
#include <string>


// The reader's wide string.
class CWsz {
 public:
  CWsz() {}
  CWsz(const wchar_t* text) { *this = text; }
  CWsz& operator=(const wchar_t* text) {
    s_.assign(text ? text : L"");
    return *this;
  }
  void assign(const wchar_t* text, size_t length) { s_.assign(text, length); }
  const wchar_t* c_str() const { return s_.c_str(); }
  operator const wchar_t*() const { return s_.c_str(); }
  size_t length() const { return s_.size(); }
  bool empty() const { return s_.empty(); }

 private:
  std::wstring s_;
};

class CQlg {
 public:
  CQlg();
  ~CQlg();
  CQlg(const CQlg&) = delete;
  CQlg& operator=(const CQlg&) = delete;

  // Replaces what the reader held with languageFilePath read against
  // definitionPath. On any fault (missing or malformed file) the reader is
  // left empty, so every text falls back to its default, and lastError()
  // says which file and line. The active language is kept.
  bool init(const wchar_t* definitionPath, const wchar_t* languageFilePath);
  // Texts are answered in this language from now on. False when the loaded
  // file has no text in it (the language is still remembered).
  bool setActiveLanguage(short languageId);
  short activeLanguageId() const;
  // The text of textId in the active language, else defaultText (null
  // counts as empty). True when the file had the text.
  bool getText(long textId, CWsz& out, const wchar_t* defaultText) const;
  // The same without copying: a pointer into the reader valid until the
  // next init, or null.
  const wchar_t* find(long textId, size_t* length) const;

  void clear();
  size_t textCount() const;  // translations of all languages
  const std::string& lastError() const;

  struct Impl;

 private:
  std::unique_ptr<Impl> impl_;
};

#endif
