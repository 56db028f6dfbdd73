// Parsers of the two language-file formats (described for translators and
// developers in docs/language-files.md):
//   QuilQlg.ddq  the languages of the suite: ids, codes, names;
//   *.qlg        one module's texts in every language, keyed by
//                (text id, language id).
// Both are UTF-8 text, line by line. Parsing stops at the first fault and
// reports the file and line.
#ifndef QUILTOOL_SETTINGS_QLG_FORMAT_H
#define QUILTOOL_SETTINGS_QLG_FORMAT_H

#include <cstddef>
#include <string>
#include <vector>


namespace qt {
namespace qlg {

struct ParseError {
  std::string file;
  int line = 0;  // 0: the file as a whole (unreadable, empty)
  std::string message;
  // "file:line: message" (or "file: message" for line 0).
  std::string describe() const;
};

struct Language {
  int id = 0;
  std::string code;  // as in PO and XLIFF headers: "en", "de"
  std::string name;  // English name, for people
};

struct Definition {
  int sourceLanguage = 0;  // the language of the defaults at every call site
  std::vector<Language> languages;

  const Language* byId(int id) const;
  // Code compared without regard to ASCII case; a decimal number is taken
  // as a language id.
  const Language* byCodeOrId(const std::string& codeOrId) const;
};

bool ParseDefinition(const char* data, size_t size, const std::string& fileName, Definition* out,
                            ParseError* error);

// Receives the parts of a .qlg file in file order.
class QlgHandler {
 public:
  virtual ~QlgHandler() {}
  // A whole comment line, from its '#' on; `beforeHeader` for comments
  // above the "qlg" line.
  virtual void onComment(const char* text, size_t length, int line, bool beforeHeader) {}
  virtual void onModule(const std::string& tag, int line) {}
  virtual void onText(int textId, int line) = 0;
  // Texts arrive as valid UTF-8 with the escapes resolved; the range is
  // valid during the call only.
  virtual void onNote(const char* utf8, size_t length, int line) {}
  virtual void onTranslation(int languageId, const char* utf8, size_t length, int line) = 0;
};

// Checks the syntax, that every language is defined, that no text id and
// no language within one text appears twice.
bool ParseQlg(const char* data, size_t size, const std::string& fileName, const Definition& definition,
                     QlgHandler& handler, ParseError* error);

// The quoted form of a text as the files write it (escapes for '\\', '"',
// line breaks and tabs).
std::string QuoteText(const std::string& utf8);

}  // namespace qlg
}  // namespace qt

#endif
