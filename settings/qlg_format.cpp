#include "settings/qlg_format.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "settings/qlg_utf8.h"

namespace qt {
namespace qlg {

std::string ParseError::describe() const {
  std::string s = file;
  if (line > 0) s += ":" + std::to_string(line);
  s += ": " + message;
  return s;
}

const Language* Definition::byId(int id) const {
  for (const Language& l : languages) {
    if (l.id == id) return &l;
  }
  return nullptr;
}

namespace {

char AsciiLower(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

bool EqualsNoCase(const std::string& a, const std::string& b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (AsciiLower(a[i]) != AsciiLower(b[i])) return false;
  }
  return true;
}

int HexValue(char c);

// Bytes that end a plain run inside a quoted text: the closing quote, the
// escape character and control characters other than tab.
struct SpecialBytes {
  bool table[256];
  SpecialBytes() {
    for (int i = 0; i < 256; ++i) table[i] = (i < 0x20 && i != '\t') || i == '"' || i == '\\';
  }
  bool operator[](unsigned char c) const { return table[c]; }
};
const SpecialBytes kSpecial;

// One line of a file, without its line end, and a cursor over it.
struct Line {
  const char* p;
  const char* end;
  int number;

  void skipBlanks() {
    while (p < end && (*p == ' ' || *p == '\t')) ++p;
  }
  bool atEnd() const { return p >= end; }
  // A run of characters up to the next blank.
  std::string word() {
    const char* start = p;
    while (p < end && *p != ' ' && *p != '\t') ++p;
    return std::string(start, p);
  }
};

// Splits data into lines; strips a UTF-8 byte-order mark and CR before LF.
class LineReader {
 public:
  LineReader(const char* data, size_t size) : p_(data), end_(data + size) {
    if (size >= 3 && std::memcmp(data, "\xEF\xBB\xBF", 3) == 0) p_ += 3;
  }
  bool next(Line* line) {
    if (p_ >= end_) return false;
    const char* nl = static_cast<const char*>(std::memchr(p_, '\n', static_cast<size_t>(end_ - p_)));
    const char* stop = nl ? nl : end_;
    line->p = p_;
    line->end = stop;
    if (line->end > line->p && line->end[-1] == '\r') --line->end;
    line->number = ++number_;
    p_ = nl ? nl + 1 : end_;
    return true;
  }

 private:
  const char* p_;
  const char* end_;
  int number_ = 0;
};

class Parser {
 public:
  Parser(const std::string& file, ParseError* error) : file_(file), error_(error) {}

  bool fail(int line, const std::string& message) {
    if (error_) {
      error_->file = file_;
      error_->line = line;
      error_->message = message;
    }
    return false;
  }

  // A signed 32-bit decimal number filling the whole word.
  bool number(const std::string& word, int line, const char* what, int* out) {
    const char* s = word.c_str();
    const bool negative = *s == '-';
    const char* digits = negative ? s + 1 : s;
    if (!*digits) return fail(line, std::string("expected ") + what);
    long long v = 0;
    for (const char* q = digits; *q; ++q) {
      if (*q < '0' || *q > '9') return fail(line, std::string(what) + " is not a number: \"" + word + "\"");
      v = v * 10 + (*q - '0');
      if (v > 2147483648LL) return fail(line, std::string(what) + " out of range: " + word);
    }
    if (negative) v = -v;
    if (v < INT_MIN || v > INT_MAX) return fail(line, std::string(what) + " out of range: " + word);
    *out = static_cast<int>(v);
    return true;
  }

  // A quoted text running to the end of the line (trailing blanks allowed).
  // The text is handed back as a range: straight into the line when it has
  // no escapes (the common case), else in `buffer` with the escapes resolved.
  bool quoted(Line& line, std::string* buffer, const char** text, size_t* length) {
    line.skipBlanks();
    if (line.atEnd() || *line.p != '"') return fail(line.number, "expected a text in double quotes");
    const char* p = line.p + 1;
    const char* runStart = p;
    bool escaped = false;
    for (;;) {
      while (p < line.end && !kSpecial[static_cast<unsigned char>(*p)]) ++p;
      if (p >= line.end) return fail(line.number, "the text has no closing double quote");
      const char c = *p;
      if (c == '"') break;
      if (c != '\\') return fail(line.number, "control character in the text (write it as an escape)");
      if (!escaped) {
        buffer->clear();
        escaped = true;
      }
      buffer->append(runStart, p);
      if (p + 1 >= line.end) return fail(line.number, "the text ends in a lone backslash");
      switch (p[1]) {
        case '\\': buffer->push_back('\\'); break;
        case '"': buffer->push_back('"'); break;
        case 'n': buffer->push_back('\n'); break;
        case 'r': buffer->push_back('\r'); break;
        case 't': buffer->push_back('\t'); break;
        case 'x': {
          const int hi = p + 3 < line.end ? HexValue(p[2]) : -1, lo = p + 3 < line.end ? HexValue(p[3]) : -1;
          const int value = hi * 16 + lo;
          if (hi < 0 || lo < 0 || value == 0 || value >= 0x80) {
            return fail(line.number, "\\x takes two hex digits naming an ASCII character other than 00");
          }
          buffer->push_back(static_cast<char>(value));
          p += 2;
          break;
        }
        default:
          return fail(line.number, std::string("unknown escape \\") + p[1] + " (known: \\\\ \\\" \\n \\r \\t \\xHH)");
      }
      p += 2;
      runStart = p;
    }
    if (escaped) {
      buffer->append(runStart, p);
      *text = buffer->data();
      *length = buffer->size();
    } else {
      *text = runStart;
      *length = static_cast<size_t>(p - runStart);
    }
    if (ValidUtf8Prefix(*text, *length) != *length) return fail(line.number, "the text is not valid UTF-8");
    line.p = p + 1;
    line.skipBlanks();
    if (!line.atEnd()) return fail(line.number, "unexpected characters after the closing double quote");
    return true;
  }

  bool quoted(Line& line, std::string* out) {
    std::string buffer;
    const char* text = nullptr;
    size_t length = 0;
    if (!quoted(line, &buffer, &text, &length)) return false;
    out->assign(text, length);
    return true;
  }

  bool header(Line& line, const char* keyword) {
    const std::string kw = line.word();
    if (kw != keyword) return fail(line.number, std::string("expected the header line \"") + keyword + " 1\"");
    line.skipBlanks();
    int version = 0;
    if (!number(line.word(), line.number, "format version", &version)) return false;
    if (version != 1) return fail(line.number, "unsupported format version " + std::to_string(version));
    line.skipBlanks();
    if (!line.atEnd()) return fail(line.number, "unexpected characters after the header");
    return true;
  }

  const std::string& file() const { return file_; }

 private:
  std::string file_;
  ParseError* error_;
};

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

bool IsCodeChar(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
}

}  // namespace

const Language* Definition::byCodeOrId(const std::string& codeOrId) const {
  if (codeOrId.empty()) return nullptr;
  bool numeric = true;
  for (char c : codeOrId) numeric = numeric && c >= '0' && c <= '9';
  if (numeric && codeOrId.size() < 10) return byId(std::atoi(codeOrId.c_str()));
  for (const Language& l : languages) {
    if (EqualsNoCase(l.code, codeOrId)) return &l;
  }
  return nullptr;
}

bool ParseDefinition(const char* data, size_t size, const std::string& fileName, Definition* out,
                     ParseError* error) {
  Parser parser(fileName, error);
  Definition def;
  LineReader reader(data, size);
  Line line;
  bool sawHeader = false;
  int sourceLine = 0;
  while (reader.next(&line)) {
    line.skipBlanks();
    if (line.atEnd() || *line.p == '#') continue;
    if (!sawHeader) {
      if (!parser.header(line, "qlgdef")) return false;
      sawHeader = true;
      continue;
    }
    const std::string kw = line.word();
    line.skipBlanks();
    if (kw == "source") {
      if (sourceLine) return parser.fail(line.number, "second \"source\" line (first at line " + std::to_string(sourceLine) + ")");
      if (!parser.number(line.word(), line.number, "language id", &def.sourceLanguage)) return false;
      line.skipBlanks();
      if (!line.atEnd()) return parser.fail(line.number, "unexpected characters after the language id");
      sourceLine = line.number;
    } else if (kw == "language") {
      Language lang;
      if (!parser.number(line.word(), line.number, "language id", &lang.id)) return false;
      if (lang.id <= 0 || lang.id > SHRT_MAX) return parser.fail(line.number, "language id out of range: " + std::to_string(lang.id));
      line.skipBlanks();
      lang.code = line.word();
      if (lang.code.empty()) return parser.fail(line.number, "expected a language code");
      for (char c : lang.code) {
        if (!IsCodeChar(c)) return parser.fail(line.number, "bad language code \"" + lang.code + "\"");
      }
      if (!parser.quoted(line, &lang.name)) return false;
      if (def.byId(lang.id)) return parser.fail(line.number, "language " + std::to_string(lang.id) + " defined twice");
      if (def.byCodeOrId(lang.code)) return parser.fail(line.number, "language code \"" + lang.code + "\" used twice");
      def.languages.push_back(lang);
    } else {
      return parser.fail(line.number, "unknown line \"" + kw + "\" (expected \"source\" or \"language\")");
    }
  }
  if (!sawHeader) return parser.fail(0, "empty file (expected the header line \"qlgdef 1\")");
  if (!sourceLine) return parser.fail(0, "no \"source\" line");
  if (!def.byId(def.sourceLanguage)) {
    return parser.fail(sourceLine, "the source language " + std::to_string(def.sourceLanguage) + " is not defined");
  }
  *out = std::move(def);
  return true;
}

bool ParseQlg(const char* data, size_t size, const std::string& fileName, const Definition& definition,
              QlgHandler& handler, ParseError* error) {
  Parser parser(fileName, error);
  LineReader reader(data, size);
  Line line;
  bool sawHeader = false;
  int moduleLine = 0;
  int currentText = 0, currentTextLine = 0;
  int noteLine = 0;
  bool inText = false;
  // For each defined language, the line of the current text's translation
  // into it (0 = none yet): catches a language given twice in one text.
  std::vector<int> seenInText(definition.languages.size(), 0);
  std::vector<std::pair<int, int>> textLines;  // (text id, line), checked for repeats at the end
  std::string buffer;
  const char* text = nullptr;
  size_t length = 0;

  while (reader.next(&line)) {
    line.skipBlanks();
    if (line.atEnd()) continue;
    if (*line.p == '#') {
      handler.onComment(line.p, static_cast<size_t>(line.end - line.p), line.number, !sawHeader);
      continue;
    }
    if (!sawHeader) {
      if (!parser.header(line, "qlg")) return false;
      sawHeader = true;
      continue;
    }
    const char first = *line.p;
    if (first == '-' || (first >= '0' && first <= '9')) {
      int languageId = 0;
      if (!parser.number(line.word(), line.number, "language id", &languageId)) return false;
      if (!inText) return parser.fail(line.number, "translation outside a \"text\" block");
      size_t index = 0;
      while (index < definition.languages.size() && definition.languages[index].id != languageId) ++index;
      if (index == definition.languages.size()) {
        return parser.fail(line.number, "language " + std::to_string(languageId) + " is not defined in the definition file");
      }
      if (seenInText[index]) {
        return parser.fail(line.number, "text " + std::to_string(currentText) + " has a second translation into language " +
                                            std::to_string(languageId) + " (first at line " +
                                            std::to_string(seenInText[index]) + ")");
      }
      if (!parser.quoted(line, &buffer, &text, &length)) return false;
      seenInText[index] = line.number;
      handler.onTranslation(languageId, text, length, line.number);
      continue;
    }
    const std::string kw = line.word();
    line.skipBlanks();
    if (kw == "text") {
      if (!moduleLine) return parser.fail(line.number, "\"text\" before the \"module\" line");
      if (!parser.number(line.word(), line.number, "text id", &currentText)) return false;
      line.skipBlanks();
      if (!line.atEnd()) return parser.fail(line.number, "unexpected characters after the text id");
      inText = true;
      currentTextLine = line.number;
      noteLine = 0;
      std::fill(seenInText.begin(), seenInText.end(), 0);
      textLines.emplace_back(currentText, currentTextLine);
      handler.onText(currentText, line.number);
    } else if (kw == "note") {
      if (!inText) return parser.fail(line.number, "\"note\" outside a \"text\" block");
      if (noteLine) return parser.fail(line.number, "second note of text " + std::to_string(currentText));
      if (!parser.quoted(line, &buffer, &text, &length)) return false;
      noteLine = line.number;
      handler.onNote(text, length, line.number);
    } else if (kw == "module") {
      if (moduleLine) return parser.fail(line.number, "second \"module\" line (first at line " + std::to_string(moduleLine) + ")");
      if (inText) return parser.fail(line.number, "\"module\" after the first text");
      const std::string tag = line.word();
      line.skipBlanks();
      if (tag.empty() || !line.atEnd()) return parser.fail(line.number, "expected one module tag");
      moduleLine = line.number;
      handler.onModule(tag, line.number);
    } else {
      return parser.fail(line.number, "unknown line \"" + kw + "\" (expected \"module\", \"text\", \"note\" or a language id)");
    }
  }
  if (!sawHeader) return parser.fail(0, "empty file (expected the header line \"qlg 1\")");
  if (!moduleLine) return parser.fail(0, "no \"module\" line");

  std::sort(textLines.begin(), textLines.end());
  for (size_t i = 1; i < textLines.size(); ++i) {
    if (textLines[i].first == textLines[i - 1].first) {
      return parser.fail(textLines[i].second, "text " + std::to_string(textLines[i].first) + " appears twice (first at line " +
                                                  std::to_string(textLines[i - 1].second) + ")");
    }
  }
  return true;
}

std::string QuoteText(const std::string& utf8) {
  std::string out;
  out.reserve(utf8.size() + 2);
  out.push_back('"');
  for (char c : utf8) {
    switch (c) {
      case '\\': out += "\\\\"; break;
      case '"': out += "\\\""; break;
      case '\n': out += "\\n"; break;
      case '\r': out += "\\r"; break;
      case '\t': out += "\\t"; break;
      default:
        if ((c > 0 && c < 0x20) || c == 0x7F) {
          static const char kHex[] = "0123456789ABCDEF";
          out += "\\x";
          out.push_back(kHex[(c >> 4) & 0xF]);
          out.push_back(kHex[c & 0xF]);
        } else {
          out.push_back(c);
        }
    }
  }
  out.push_back('"');
  return out;
}

}  // namespace qlg
}  // namespace qt
