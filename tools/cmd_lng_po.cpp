// gettext PO files for one module and one language: msgctxt names the text
// ("HPV:607"), msgid holds the English text, msgstr the translation.
#include <cstdlib>
#include <cstring>

#include "cmd_lng_exchange.h"

namespace qt_lng {

std::string UnitId(const std::string& module, int textId) { return module + ":" + std::to_string(textId); }

bool SplitUnitId(const std::string& id, std::string* module, int* textId) {
  const size_t colon = id.rfind(':');
  if (colon == std::string::npos || colon == 0 || colon + 1 >= id.size()) return false;
  const std::string number = id.substr(colon + 1);
  size_t i = number[0] == '-' ? 1 : 0;
  if (i >= number.size() || number.size() > 11) return false;
  for (; i < number.size(); ++i) {
    if (number[i] < '0' || number[i] > '9') return false;
  }
  const long long v = std::strtoll(number.c_str(), nullptr, 10);
  if (v < -2147483647LL - 1 || v > 2147483647LL) return false;
  *module = id.substr(0, colon);
  *textId = static_cast<int>(v);
  return true;
}

namespace {

std::string PoQuote(const std::string& text) {
  std::string s = "\"";
  for (char c : text) {
    switch (c) {
      case '\\': s += "\\\\"; break;
      case '"': s += "\\\""; break;
      case '\n': s += "\\n"; break;
      case '\r': s += "\\r"; break;
      case '\t': s += "\\t"; break;
      default: s.push_back(c);
    }
  }
  return s + "\"";
}

// Texts with line breaks are written gettext's way: an empty first string,
// then one string per line, so translators see the lines.
std::string PoField(const char* keyword, const std::string& text) {
  const size_t nl = text.find('\n');
  if (nl == std::string::npos || nl + 1 == text.size()) return std::string(keyword) + " " + PoQuote(text) + "\n";
  std::string s = std::string(keyword) + " \"\"\n";
  size_t from = 0;
  while (from < text.size()) {
    size_t end = text.find('\n', from);
    end = (end == std::string::npos) ? text.size() : end + 1;
    s += PoQuote(text.substr(from, end - from)) + "\n";
    from = end;
  }
  return s;
}

void CommentLines(const char* prefix, const std::string& text, std::string* out) {
  size_t from = 0;
  for (;;) {
    const size_t nl = text.find('\n', from);
    *out += std::string(prefix) + text.substr(from, nl == std::string::npos ? std::string::npos : nl - from) + "\n";
    if (nl == std::string::npos) break;
    from = nl + 1;
  }
}

}  // namespace

std::string WritePo(const Document& doc, const qt::qlg::Definition& def, const qt::qlg::Language& target) {
  std::string s;
  s += "# " + target.name + " texts of module " + doc.module + " (" + BaseName(doc.fileName) + ").\n";
  s += "# Merge back with: quiltool lng import " + BaseName(doc.fileName) + " <this file>\n";
  s += "msgid \"\"\nmsgstr \"\"\n";
  s += "\"Project-Id-Version: QuilTool " + doc.module + "\\n\"\n";
  // Placeholders that PO editors fill in when the translator saves.
  s += "\"PO-Revision-Date: YEAR-MO-DA HO:MI+ZONE\\n\"\n";
  s += "\"Last-Translator: FULL NAME <EMAIL@ADDRESS>\\n\"\n";
  s += "\"Language-Team: " + target.name + "\\n\"\n";
  s += "\"Language: " + target.code + "\\n\"\n";
  s += "\"MIME-Version: 1.0\\n\"\n";
  s += "\"Content-Type: text/plain; charset=UTF-8\\n\"\n";
  s += "\"Content-Transfer-Encoding: 8bit\\n\"\n";
  s += "\"X-Qlg-Module: " + doc.module + "\\n\"\n";
  s += "\"X-Qlg-Language-Id: " + std::to_string(target.id) + "\\n\"\n";
  for (const Entry& e : doc.entries) {
    const std::string* source = e.text(def.sourceLanguage);
    if (!source || source->empty()) continue;  // nothing to translate
    const std::string* translation = e.text(target.id);
    s += "\n";
    if (e.hasNote) CommentLines("#. ", e.note, &s);
    // Lets PO editors check the placeholders too.
    if (!Placeholders(*source).empty()) s += "#, c-format\n";
    s += "msgctxt " + PoQuote(UnitId(doc.module, e.id)) + "\n";
    s += PoField("msgid", *source);
    s += PoField("msgstr", translation ? *translation : std::string());
  }
  return s;
}

namespace {

class PoReader {
 public:
  PoReader(const std::string& bytes, const std::string& fileName, Exchange* out, std::string* error)
      : bytes_(bytes), fileName_(fileName), out_(out), error_(error) {}

  bool run() {
    size_t pos = 0;
    if (bytes_.compare(0, 3, "\xEF\xBB\xBF") == 0) pos = 3;
    int lineNo = 0;
    while (pos <= bytes_.size()) {
      size_t nl = bytes_.find('\n', pos);
      if (nl == std::string::npos) nl = bytes_.size();
      std::string line = bytes_.substr(pos, nl - pos);
      pos = nl + 1;
      ++lineNo;
      if (!line.empty() && line.back() == '\r') line.pop_back();
      if (!handle(line, lineNo)) return false;
      if (nl == bytes_.size()) break;
    }
    return flush();
  }

 private:
  enum Field { kNone, kContext, kId, kPlural, kStr, kOtherStr };

  bool fail(int line, const std::string& message) {
    *error_ = fileName_ + ":" + std::to_string(line) + ": " + message;
    return false;
  }

  bool handle(const std::string& raw, int lineNo) {
    size_t i = 0;
    while (i < raw.size() && (raw[i] == ' ' || raw[i] == '\t')) ++i;
    const std::string line = raw.substr(i);
    if (line.empty()) return true;
    if (line[0] == '#') {
      // Obsolete entries ("#~") are history, not texts.
      if (line.compare(0, 2, "#,") == 0) {
        if (started_ && field_ != kContext) {
          if (!flush()) return false;
        }
        if (line.find("fuzzy") != std::string::npos) fuzzy_ = true;
      } else if (started_ && field_ >= kStr) {
        if (!flush()) return false;
      }
      return true;
    }
    if (line[0] == '"') {
      if (field_ == kNone) return fail(lineNo, "a string without msgid, msgstr or msgctxt before it");
      std::string piece;
      if (!unquote(line, lineNo, &piece)) return false;
      target()->append(piece);
      return true;
    }
    const size_t space = line.find_first_of(" \t");
    const std::string keyword = line.substr(0, space);
    const std::string rest = space == std::string::npos ? std::string() : line.substr(space + 1);
    Field next;
    if (keyword == "msgctxt") {
      next = kContext;
    } else if (keyword == "msgid") {
      next = kId;
    } else if (keyword == "msgid_plural") {
      next = kPlural;
    } else if (keyword == "msgstr") {
      next = kStr;
    } else if (keyword.compare(0, 7, "msgstr[") == 0) {
      next = kOtherStr;
    } else {
      return fail(lineNo, "unknown keyword \"" + keyword + "\"");
    }
    // A new msgctxt or msgid after a msgstr starts the next entry.
    if ((next == kContext || next == kId) && field_ >= kStr) {
      if (!flush()) return false;
    }
    if (next == kContext && field_ != kNone) return fail(lineNo, "msgctxt in the middle of an entry");
    if (next == kId && field_ != kNone && field_ != kContext) return fail(lineNo, "msgid in the middle of an entry");
    if ((next == kStr || next == kOtherStr || next == kPlural) && field_ == kNone) {
      return fail(lineNo, keyword + " without msgid");
    }
    if (!started_) {
      started_ = true;
      entryLine_ = lineNo;
    }
    field_ = next;
    if (next == kPlural || next == kOtherStr) plural_ = true;
    if (next == kContext) hasContext_ = true;
    std::string piece;
    if (!unquote(rest, lineNo, &piece)) return false;
    target()->append(piece);
    return true;
  }

  std::string* target() {
    switch (field_) {
      case kContext: return &context_;
      case kId: return &id_;
      case kStr: return &str_;
      default: return &ignored_;
    }
  }

  bool unquote(const std::string& text, int lineNo, std::string* out) {
    size_t i = 0;
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
    if (i >= text.size() || text[i] != '"') return fail(lineNo, "expected a string in double quotes");
    ++i;
    for (; i < text.size(); ++i) {
      const char c = text[i];
      if (c == '"') {
        for (size_t j = i + 1; j < text.size(); ++j) {
          if (text[j] != ' ' && text[j] != '\t') return fail(lineNo, "characters after the closing double quote");
        }
        return true;
      }
      if (c != '\\') {
        out->push_back(c);
        continue;
      }
      if (++i >= text.size()) break;
      switch (text[i]) {
        case 'n': out->push_back('\n'); break;
        case 't': out->push_back('\t'); break;
        case 'r': out->push_back('\r'); break;
        case '\\': out->push_back('\\'); break;
        case '"': out->push_back('"'); break;
        case 'a': out->push_back('\a'); break;
        case 'b': out->push_back('\b'); break;
        case 'f': out->push_back('\f'); break;
        case 'v': out->push_back('\v'); break;
        default: return fail(lineNo, std::string("unknown escape \\") + text[i]);
      }
    }
    return fail(lineNo, "the string has no closing double quote");
  }

  bool flush() {
    if (started_) {
      if (field_ < kStr) return fail(entryLine_, "entry without msgstr");
      if (!hasContext_ && id_.empty()) {
        parseHeader();
      } else if (!plural_) {
        Unit u;
        u.id = context_;
        u.source = id_;
        u.target = str_;
        u.usable = !fuzzy_;
        u.line = entryLine_;
        out_->units.push_back(u);
      }
    }
    started_ = hasContext_ = fuzzy_ = plural_ = false;
    field_ = kNone;
    context_.clear();
    id_.clear();
    str_.clear();
    ignored_.clear();
    return true;
  }

  void parseHeader() {
    size_t from = 0;
    while (from < str_.size()) {
      size_t nl = str_.find('\n', from);
      if (nl == std::string::npos) nl = str_.size();
      const std::string line = str_.substr(from, nl - from);
      from = nl + 1;
      const size_t colon = line.find(':');
      if (colon == std::string::npos) continue;
      const std::string key = line.substr(0, colon);
      size_t v = colon + 1;
      while (v < line.size() && line[v] == ' ') ++v;
      const std::string value = line.substr(v);
      if (key == "Language") out_->language = value;
      if (key == "X-Qlg-Module") out_->module = value;
    }
  }

  const std::string& bytes_;
  std::string fileName_;
  Exchange* out_;
  std::string* error_;
  Field field_ = kNone;
  bool started_ = false, hasContext_ = false, fuzzy_ = false, plural_ = false;
  int entryLine_ = 0;
  std::string context_, id_, str_, ignored_;
};

}  // namespace

bool ReadPo(const std::string& bytes, const std::string& fileName, Exchange* out, std::string* error) {
  Exchange ex;
  PoReader reader(bytes, fileName, &ex, error);
  if (!reader.run()) return false;
  *out = std::move(ex);
  return true;
}

}  // namespace qt_lng
