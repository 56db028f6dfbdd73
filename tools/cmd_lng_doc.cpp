#include "cmd_lng_doc.h"

#include <cstring>

#include "file_problem.h"
#include "gwframe.h"
#include "qn_utf.h"
#include "core/fs.h"
#include "settings/qlg_utf8.h"

namespace qt_lng {

const std::string* Entry::text(int languageId) const {
  for (const auto& t : texts) {
    if (t.first == languageId) return &t.second;
  }
  return nullptr;
}

int Entry::lineOf(int languageId) const {
  for (size_t i = 0; i < texts.size(); ++i) {
    if (texts[i].first == languageId) return i < textLines.size() ? textLines[i] : line;
  }
  return line;
}

bool Entry::setText(int languageId, const std::string& text) {
  for (auto& t : texts) {
    if (t.first == languageId) {
      if (t.second == text) return false;
      t.second = text;
      return true;
    }
  }
  texts.emplace_back(languageId, text);
  textLines.push_back(line);
  return true;
}

const Entry* Document::find(int id) const {
  for (const Entry& e : entries) {
    if (e.id == id) return &e;
  }
  return nullptr;
}

Entry* Document::find(int id) {
  for (Entry& e : entries) {
    if (e.id == id) return &e;
  }
  return nullptr;
}

bool ReadFile(const std::string& path, std::string* bytes) {
  return !path.empty() && qt::fs::ReadWholeFile(qn_utf8_to_wide(path.c_str()), bytes) == qt::fs::FsError::kOk;
}

bool WriteFile(const std::string& path, const std::string& bytes) {
  // Only a file the account may write itself is replaced, keeping its owner
  // and permissions: a writable folder is not enough.
  return !path.empty() && qt::fs::ReplaceWholeFile(qn_utf8_to_wide(path.c_str()), bytes) == qt::fs::FsError::kOk;
}

bool LoadDefinition(const std::string& path, qt::qlg::Definition* out, std::string* error) {
  std::string bytes;
  if (!ReadFile(path, &bytes)) {
    *error = qt_tool::CannotRead(path);
    return false;
  }
  qt::qlg::ParseError parseError;
  if (!qt::qlg::ParseDefinition(bytes.data(), bytes.size(), path, out, &parseError)) {
    *error = parseError.describe();
    return false;
  }
  return true;
}

namespace {

class DocumentBuilder : public qt::qlg::QlgHandler {
 public:
  explicit DocumentBuilder(Document* doc) : doc_(doc) {}

  void onComment(const char* text, size_t length, int, bool beforeHeader) override {
    (beforeHeader ? doc_->fileComments : pending_).emplace_back(text, length);
  }
  void onModule(const std::string& tag, int) override { doc_->module = tag; }
  void onText(int textId, int line) override {
    doc_->entries.emplace_back();
    Entry& e = doc_->entries.back();
    e.id = textId;
    e.line = line;
    e.comments.swap(pending_);
  }
  void onNote(const char* utf8, size_t length, int) override {
    doc_->entries.back().hasNote = true;
    doc_->entries.back().note.assign(utf8, length);
  }
  void onTranslation(int languageId, const char* utf8, size_t length, int line) override {
    doc_->entries.back().texts.emplace_back(languageId, std::string(utf8, length));
    doc_->entries.back().textLines.push_back(line);
  }
  void finish() { doc_->trailingComments.swap(pending_); }

 private:
  Document* doc_;
  std::vector<std::string> pending_;
};

}  // namespace

bool ParseDocument(const std::string& bytes, const std::string& fileName, const qt::qlg::Definition& def, Document* out,
                   std::string* error) {
  Document doc;
  doc.fileName = fileName;
  DocumentBuilder builder(&doc);
  qt::qlg::ParseError parseError;
  if (!qt::qlg::ParseQlg(bytes.data(), bytes.size(), fileName, def, builder, &parseError)) {
    *error = parseError.describe();
    return false;
  }
  builder.finish();
  *out = std::move(doc);
  return true;
}

bool LoadDocument(const std::string& path, const qt::qlg::Definition& def, Document* out, std::string* error) {
  std::string bytes;
  if (!ReadFile(path, &bytes)) {
    *error = qt_tool::CannotRead(path);
    return false;
  }
  return ParseDocument(bytes, path, def, out, error);
}

namespace {

// A comment line as written back: the reader takes one '\r' before a line
// end for a CRLF, so a comment that ends in '\r' would lose one on every
// round trip; they are dropped here once and for all.
std::string CommentLine(const std::string& comment) {
  size_t n = comment.size();
  while (n > 0 && comment[n - 1] == '\r') --n;
  return comment.substr(0, n) + "\n";
}

}  // namespace

std::string Serialize(const Document& doc) {
  std::string s;
  for (const std::string& c : doc.fileComments) s += CommentLine(c);
  s += "qlg 1\nmodule " + doc.module + "\n";
  for (const Entry& e : doc.entries) {
    s += "\n";
    for (const std::string& c : e.comments) s += CommentLine(c);
    s += "text " + std::to_string(e.id) + "\n";
    if (e.hasNote) s += "\tnote " + qt::qlg::QuoteText(e.note) + "\n";
    for (const auto& t : e.texts) s += "\t" + std::to_string(t.first) + " " + qt::qlg::QuoteText(t.second) + "\n";
  }
  if (!doc.trailingComments.empty()) {
    s += "\n";
    for (const std::string& c : doc.trailingComments) s += CommentLine(c);
  }
  return s;
}

std::vector<std::string> Placeholders(const std::string& text) {
  std::vector<std::string> found;
  const char* s = text.c_str();
  for (size_t i = 0; s[i]; ++i) {
    if (s[i] != '%') continue;
    if (s[i + 1] == '%') {
      ++i;
      continue;
    }
    size_t j = i + 1;
    while (s[j] && std::strchr("-+ #0", s[j])) ++j;
    if (s[j] == '*') {
      ++j;
    } else {
      while (s[j] >= '0' && s[j] <= '9') ++j;
    }
    if (s[j] == '.') {
      ++j;
      if (s[j] == '*') {
        ++j;
      } else {
        while (s[j] >= '0' && s[j] <= '9') ++j;
      }
    }
    static const char* const kLengths[] = {"I64", "I32", "hh", "ll", "h", "l", "L", "I", "w", "z", "j", "t"};
    for (const char* len : kLengths) {
      const size_t n = std::strlen(len);
      if (std::strncmp(s + j, len, n) == 0) {
        j += n;
        break;
      }
    }
    if (s[j] && std::strchr("diouxXeEfFgGaAcCsSpn", s[j])) {
      found.emplace_back(s + i, j + 1 - i);
      i = j;
    }
  }
  return found;
}

std::string JoinPlaceholders(const std::vector<std::string>& list) {
  if (list.empty()) return "(none)";
  std::string s;
  for (const std::string& p : list) s += (s.empty() ? "" : " ") + p;
  return s;
}

std::string BaseName(const std::string& path) {
  const size_t cut = path.find_last_of("/\\");
  return cut == std::string::npos ? path : path.substr(cut + 1);
}

std::string JoinPath(const std::string& folder, const std::string& name) {
  if (folder.empty()) return name;
  const char last = folder.back();
  if (last == '/' || last == '\\') return folder + name;
  // Keep the folder's own separator; both targets accept '/'.
  return folder + (folder.find('\\') != std::string::npos ? "\\" : "/") + name;
}

std::string DefinitionBeside(const std::string& qlgPath) {
  const size_t cut = qlgPath.find_last_of("/\\");
  return cut == std::string::npos ? std::string("QuilQlg.ddq") : qlgPath.substr(0, cut + 1) + "QuilQlg.ddq";
}

std::string LibraryFolder() {
  ustr folder;
  if (GetModuleDirectory(static_cast<HMODULE>(nullptr), folder) != 0) return std::string();
  std::wstring found = folder.str();
#ifdef QT_TOOL_DATA_FROM_PROGRAM
  // An installed program sits in bin/, the language files in the library's
  // folder; the build tree keeps copies beside the program.
  if (!qt::fs::IsFile(found + L"/QuilQlg.qlg")) {
    const std::wstring installed = found + L"/" + qn_utf8_to_wide(QT_TOOL_DATA_FROM_PROGRAM);
    if (qt::fs::IsFile(installed + L"/QuilQlg.qlg")) found = installed;
  }
#endif
  return qn_wide_to_utf8(found.c_str(), static_cast<size_t>(-1), QN_UTF_REPLACE_INVALID);
}

}  // namespace qt_lng
