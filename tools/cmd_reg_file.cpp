#include "cmd_reg_file.h"

#include <cstdio>
#include <cwctype>

#include "qn_utf.h"
#include "reg_file_platform.h"
#include "settings/regstore.h"
#include "ustr.h"

namespace qt_regfile {

namespace {

const wchar_t kVersion5[] = L"Windows Registry Editor Version 5.00";
const wchar_t kVersion4[] = L"REGEDIT4";
// Hex data lines are wrapped before this column, as the registry editor does.
const size_t kHexLineLimit = 80;
// The registry's limits on names, in characters.
const size_t kMaxKeyPart = 255;
const size_t kMaxValueName = 16383;

bool EqualNoCase(const std::wstring& a, const wchar_t* b) {
  size_t i = 0;
  for (; i < a.size() && b[i]; ++i) {
    if (qn_charupper(a[i]) != qn_charupper(b[i])) return false;
  }
  return i == a.size() && !b[i];
}

bool StartsNoCase(const std::wstring& s, size_t at, const wchar_t* prefix) {
  for (size_t i = 0; prefix[i]; ++i) {
    if (at + i >= s.size() || qn_charupper(s[at + i]) != qn_charupper(prefix[i])) return false;
  }
  return true;
}

std::wstring Trim(const std::wstring& s) {
  size_t b = 0, e = s.size();
  while (b < e && (s[b] == L' ' || s[b] == L'\t')) ++b;
  while (e > b && (s[e - 1] == L' ' || s[e - 1] == L'\t')) --e;
  return s.substr(b, e - b);
}

// Splits at "\r\n", "\r" and "\n" alike; the same for bytes and for wide
// text, so that a line number means the same line in either.
template <class Text>
std::vector<Text> Lines(const Text& text) {
  std::vector<Text> lines;
  Text current;
  for (size_t i = 0; i < text.size(); ++i) {
    const auto c = text[i];
    if (c == '\r' || c == '\n') {
      lines.push_back(current);
      current.clear();
      if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
    } else {
      current += c;
    }
  }
  if (!current.empty()) lines.push_back(current);
  return lines;
}

// The file's lines as wide text. 8-bit text is decoded line by line, so
// that bytes which are no text are refused with the line that holds them;
// the line breaks themselves are ASCII in every encoding read here (also
// in the double-byte code pages, whose second bytes are never below 0x40).
bool DecodeLines(const std::string& bytes, std::vector<std::wstring>* lines, std::string* error) {
  if (bytes.size() >= 2 && static_cast<unsigned char>(bytes[0]) == 0xFF &&
      static_cast<unsigned char>(bytes[1]) == 0xFE) {
    // Not FromUtf16Bytes: a zero character must not end the text here.
    *lines = Lines(qn_utf16le_to_wide(bytes.data() + 2, bytes.size() - 2));
    return true;
  }
  // A UTF-8 byte-order mark says what the 8-bit text is, on every system.
  const bool utf8 = bytes.size() >= 3 && bytes.compare(0, 3, "\xEF\xBB\xBF") == 0;
  const std::vector<std::string> raw = Lines(bytes.substr(utf8 ? 3 : 0));
  lines->clear();
  lines->reserve(raw.size());
  for (size_t i = 0; i < raw.size(); ++i) {
    std::wstring line;
    const bool decoded = utf8 ? qn_utf8_to_wide_strict(raw[i].data(), raw[i].size(), &line)
                              : qt::reg_file::platform::EightBitToWide(raw[i].data(), raw[i].size(), &line);
    if (!decoded) {
      *error = "line " + std::to_string(i + 1) + ": the line is not valid " +
               (utf8 ? "UTF-8" : qt::reg_file::platform::EightBitName()) + " text";
      return false;
    }
    lines->push_back(std::move(line));
  }
  return true;
}

// A lone half of a UTF-16 surrogate pair is no character: the Linux store
// keeps names as UTF-8, which has no form for it, so the name would come
// back as another one. Whole pairs are fine in either width of wchar_t.
bool HasUnpairedSurrogate(const std::wstring& s) {
  for (size_t i = 0; i < s.size(); ++i) {
    const unsigned long c = static_cast<unsigned long>(s[i]);
    if (c < 0xD800 || c > 0xDFFF) continue;
    if (c <= 0xDBFF && i + 1 < s.size() && static_cast<unsigned long>(s[i + 1]) >= 0xDC00 &&
        static_cast<unsigned long>(s[i + 1]) <= 0xDFFF) {
      ++i;
      continue;
    }
    return true;
  }
  return false;
}

class Parser {
 public:
  Parser(const std::vector<std::wstring>& lines, Document* doc) : lines_(lines), doc_(doc) {}

  bool run(std::string* error) {
    size_t i = 0;
    while (i < lines_.size() && Trim(lines_[i]).empty()) ++i;
    if (i == lines_.size()) return fail(0, "the file is empty", error);
    const std::wstring header = Trim(lines_[i]);
    if (header == kVersion5) {
      unicode_ = true;
    } else if (header == kVersion4) {
      unicode_ = false;
    } else {
      return fail(static_cast<int>(i) + 1, "not a registry file (expected \"Windows Registry Editor Version 5.00\" or \"REGEDIT4\")", error);
    }
    for (++i; i < lines_.size(); ++i) {
      line_ = static_cast<int>(i) + 1;
      std::wstring text = Trim(lines_[i]);
      if (text.empty() || text[0] == L';' || text[0] == L'#') continue;
      if (text[0] == L'[') {
        if (!parseKey(text)) return fail(line_, message_, error);
        continue;
      }
      // Hex data may go on over several lines, each ending in "\".
      while (!text.empty() && text.back() == L'\\' && i + 1 < lines_.size()) {
        text.pop_back();
        text += Trim(lines_[++i]);
      }
      if (!parseValue(text)) return fail(line_, message_, error);
    }
    return true;
  }

 private:
  bool fail(int line, const std::string& message, std::string* error) {
    if (error) *error = line ? "line " + std::to_string(line) + ": " + message : message;
    return false;
  }
  bool bad(const std::string& message) {
    message_ = message;
    return false;
  }

  bool parseKey(const std::wstring& text) {
    const size_t close = text.rfind(L']');
    if (close == std::wstring::npos) return bad("a key line lacks its closing \"]\"");
    const std::wstring rest = Trim(text.substr(close + 1));
    if (!rest.empty() && rest[0] != L';') return bad("unexpected text after the key name");
    Key key;
    key.line = line_;
    std::wstring name = text.substr(1, close - 1);
    if (!name.empty() && name[0] == L'-') {
      key.remove = true;
      name.erase(0, 1);
    }
    if (name.find(L'\0') != std::wstring::npos) return bad("a key name holds a zero character");
    if (HasUnpairedSurrogate(name)) return bad("a key name holds half of a UTF-16 surrogate pair");
    if (!SplitKeyName(name, &key.root, &key.path))
      return bad("unknown root, malformed key name or a part longer than 255 characters: \"" +
                 qn_wide_to_utf8(name.c_str(), name.size()) + "\"");
    doc_->keys.push_back(key);
    return true;
  }

  // A quoted text starting at s[at] (the opening quote); at ends after the
  // closing quote.
  bool quoted(const std::wstring& s, size_t* at, std::wstring* out) {
    out->clear();
    for (size_t i = *at + 1; i < s.size(); ++i) {
      const wchar_t c = s[i];
      if (c == L'"') {
        *at = i + 1;
        return true;
      }
      if (c == L'\\' && i + 1 < s.size()) {
        const wchar_t e = s[++i];
        switch (e) {
          case L'\\': *out += L'\\'; break;
          case L'"': *out += L'"'; break;
          case L'n': *out += L'\n'; break;
          case L'r': *out += L'\r'; break;
          case L'0': *out += L'\0'; break;
          default:
            *out += L'\\';
            *out += e;
        }
        continue;
      }
      *out += c;
    }
    return bad("a quoted text lacks its closing quote");
  }

  bool onlyComment(const std::wstring& s, size_t at) {
    const std::wstring rest = Trim(s.substr(at));
    return rest.empty() || rest[0] == L';';
  }

  bool hexBytes(const std::wstring& s, size_t at, std::vector<BYTE>* out) {
    std::wstring digits;
    for (size_t i = at; i <= s.size(); ++i) {
      const wchar_t c = i < s.size() ? s[i] : L',';
      if (c == L';' && i < s.size()) return hexBytes(s.substr(0, i), at, out);
      if (c == L' ' || c == L'\t') continue;
      if (c == L',') {
        if (digits.empty()) {
          if (i == s.size()) break;
          return bad("empty byte in hex data");
        }
        if (digits.size() > 2) return bad("a byte of hex data has more than two digits");
        out->push_back(static_cast<BYTE>(std::wcstoul(digits.c_str(), nullptr, 16)));
        digits.clear();
        continue;
      }
      if (!std::iswxdigit(static_cast<wint_t>(c))) return bad("hex data holds a character that is no hex digit");
      digits += c;
    }
    return true;
  }

  bool parseValue(const std::wstring& text) {
    if (doc_->keys.empty()) return bad("a value comes before any key");
    Key& key = doc_->keys.back();
    Value value;
    value.line = line_;
    size_t at = 0;
    if (text[0] == L'@') {
      at = 1;
    } else if (text[0] == L'"') {
      if (!quoted(text, &at, &value.name)) return false;
      // A name is passed on as a C string; a zero would make it another name.
      if (value.name.find(L'\0') != std::wstring::npos) return bad("a value name holds a zero character");
      if (HasUnpairedSurrogate(value.name)) return bad("a value name holds half of a UTF-16 surrogate pair");
      if (value.name.size() > kMaxValueName) return bad("a value name is longer than 16383 characters");
    } else {
      return bad("a line is neither a key, a value nor a comment");
    }
    while (at < text.size() && (text[at] == L' ' || text[at] == L'\t')) ++at;
    if (at >= text.size() || text[at] != L'=') return bad("a value name is not followed by \"=\"");
    ++at;
    while (at < text.size() && (text[at] == L' ' || text[at] == L'\t')) ++at;
    if (key.remove) return bad("a key that is being deleted cannot take values");
    if (at < text.size() && text[at] == L'-') {
      if (!onlyComment(text, at + 1)) return bad("unexpected text after \"-\"");
      value.remove = true;
    } else if (at < text.size() && text[at] == L'"') {
      std::wstring data;
      if (!quoted(text, &at, &data)) return false;
      if (!onlyComment(text, at)) return bad("unexpected text after a string value");
      value.type = REG_SZ;
      value.data = qt_reg::ToUtf16Bytes(data, true);
    } else if (StartsNoCase(text, at, L"dword:")) {
      at += 6;
      std::wstring digits;
      while (at < text.size() && std::iswxdigit(static_cast<wint_t>(text[at]))) digits += text[at++];
      if (digits.empty() || digits.size() > 8) return bad("dword: takes one to eight hex digits");
      if (!onlyComment(text, at)) return bad("unexpected text after dword data");
      const unsigned long v = std::wcstoul(digits.c_str(), nullptr, 16);
      value.type = REG_DWORD;
      value.data = {static_cast<BYTE>(v), static_cast<BYTE>(v >> 8), static_cast<BYTE>(v >> 16),
                    static_cast<BYTE>(v >> 24)};
    } else if (StartsNoCase(text, at, L"hex")) {
      at += 3;
      value.type = REG_BINARY;
      if (at < text.size() && text[at] == L'(') {
        const size_t close = text.find(L')', at);
        const std::wstring digits = close == std::wstring::npos ? L"" : text.substr(at + 1, close - at - 1);
        if (digits.empty() || digits.size() > 8 ||
            digits.find_first_not_of(L"0123456789abcdefABCDEF") != std::wstring::npos)
          return bad("hex(...) takes the value type as hex digits");
        value.type = static_cast<DWORD>(std::wcstoul(digits.c_str(), nullptr, 16));
        at = close + 1;
      }
      if (at >= text.size() || text[at] != L':') return bad("hex data lacks its \":\"");
      if (!hexBytes(text, at + 1, &value.data)) return false;
      // In the old format expandable and multiple texts are 8-bit bytes.
      if (!unicode_ && (value.type == REG_EXPAND_SZ || value.type == REG_MULTI_SZ)) {
        std::wstring wide;
        if (!qt::reg_file::platform::EightBitToWide(reinterpret_cast<const char*>(value.data.data()),
                                                    value.data.size(), &wide))
          return bad(std::string("the text data is not valid ") + qt::reg_file::platform::EightBitName() + " text");
        value.data = qt_reg::ToUtf16Bytes(wide, false);
      }
    } else {
      return bad("unrecognised value data (expected \"text\", dword:, hex: or -)");
    }
    key.values.push_back(value);
    return true;
  }

  const std::vector<std::wstring>& lines_;
  Document* doc_;
  bool unicode_ = true;
  int line_ = 0;
  std::string message_;
};

std::wstring Escape(const std::wstring& s) {
  std::wstring out;
  for (wchar_t c : s) {
    if (c == L'\\' || c == L'"') {
      out += L'\\';
      out += c;
    } else if (c == L'\n') {
      out += L"\\n";
    } else if (c == L'\r') {
      out += L"\\r";
    } else {
      out += c;
    }
  }
  return out;
}

// A REG_SZ that reads back unchanged from its quoted form: whole UTF-16
// characters and no zero before the end. A missing terminator is added
// on import, as the registry editor does.
bool PlainText(const std::vector<BYTE>& data) {
  if (data.size() % 2) return false;
  for (size_t i = 0; i + 1 < data.size(); i += 2) {
    if (data[i] == 0 && data[i + 1] == 0 && i + 2 != data.size()) return false;
  }
  return true;
}

void AppendHex(std::wstring* out, size_t lineStart, const std::vector<BYTE>& data) {
  wchar_t byte[4];
  for (size_t i = 0; i < data.size(); ++i) {
    std::swprintf(byte, 4, L"%02x", data[i]);
    *out += byte;
    if (i + 1 < data.size()) {
      *out += L',';
      if (out->size() - lineStart > kHexLineLimit - 5) {
        *out += L"\\\r\n  ";
        lineStart = out->size() - 2;
      }
    }
  }
}

}  // namespace

const wchar_t* RootName(HKEY root) {
  if (root == HKEY_CURRENT_USER) return L"HKEY_CURRENT_USER";
  if (root == HKEY_LOCAL_MACHINE) return L"HKEY_LOCAL_MACHINE";
  return L"";
}

bool SplitKeyName(const std::wstring& name, HKEY* root, std::wstring* path) {
  const size_t cut = name.find(L'\\');
  const std::wstring head = name.substr(0, cut);
  if (EqualNoCase(head, L"HKCU") || EqualNoCase(head, L"HKEY_CURRENT_USER")) {
    *root = HKEY_CURRENT_USER;
  } else if (EqualNoCase(head, L"HKLM") || EqualNoCase(head, L"HKEY_LOCAL_MACHINE")) {
    *root = HKEY_LOCAL_MACHINE;
  } else {
    return false;
  }
  path->clear();
  if (name.find(L'\0') != std::wstring::npos) return false;
  if (cut == std::wstring::npos) return true;
  *path = name.substr(cut + 1);
  if (!path->empty() && path->back() == L'\\') path->pop_back();
  if (path->empty()) return false;
  // No empty parts: "a\\b" and a leading separator name no key.
  size_t start = 0;
  for (;;) {
    const size_t next = path->find(L'\\', start);
    if (next == start) return false;
    if ((next == std::wstring::npos ? path->size() : next) - start > kMaxKeyPart) return false;
    if (next == std::wstring::npos) return true;
    start = next + 1;
  }
}

bool Parse(const std::string& bytes, Document* document, std::string* error) {
  std::string ignored;
  try {
    std::vector<std::wstring> lines;
    if (!DecodeLines(bytes, &lines, error ? error : &ignored)) return false;
    Document parsed;
    Parser parser(lines, &parsed);
    if (!parser.run(error)) return false;
    *document = parsed;
    return true;
  } catch (const std::exception&) {
    if (error) *error = "the file is too large";
    return false;
  }
}

std::string Format(const Document& document) {
  std::wstring text = kVersion5;
  text += L"\r\n\r\n";
  for (const Key& key : document.keys) {
    text += L"[";
    if (key.remove) text += L"-";
    text += RootName(key.root);
    if (!key.path.empty()) text += L"\\" + key.path;
    text += L"]\r\n";
    for (const Value& value : key.values) {
      const size_t lineStart = text.size();
      text += value.name.empty() ? std::wstring(L"@") : L"\"" + Escape(value.name) + L"\"";
      text += L"=";
      if (value.remove) {
        text += L"-";
      } else if (value.type == REG_SZ && PlainText(value.data)) {
        text += L"\"" + Escape(qt_reg::FromUtf16Bytes(value.data.data(), value.data.size())) + L"\"";
      } else if (value.type == REG_DWORD && value.data.size() == 4) {
        wchar_t number[16];
        const unsigned long v = value.data[0] | (value.data[1] << 8) | (value.data[2] << 16) |
                                (static_cast<unsigned long>(value.data[3]) << 24);
        std::swprintf(number, 16, L"dword:%08lx", v);
        text += number;
      } else {
        if (value.type == REG_BINARY) {
          text += L"hex:";
        } else {
          wchar_t prefix[24];
          std::swprintf(prefix, 24, L"hex(%lx):", static_cast<unsigned long>(value.type));
          text += prefix;
        }
        AppendHex(&text, lineStart, value.data);
      }
      text += L"\r\n";
    }
    text += L"\r\n";
  }
  const std::vector<BYTE> bytes = qt_reg::ToUtf16Bytes(text, false);
  std::string out("\xFF\xFE", 2);
  out.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  return out;
}

}  // namespace qt_regfile
