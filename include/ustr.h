// Owned strings of the interface: ustr (wide), astr (8-bit) and their
// fixed-capacity-hint forms ustr_pre<N> / astr_pre<N>.
//
// wchar_t is UTF-16 on Windows and UTF-32 on Linux. 8-bit text is in the
// system's ANSI code page on Windows and UTF-8 on Linux.
#ifndef QUILTOOL_USTR_H
#define QUILTOOL_USTR_H

#include "quiltool_export.h"

#include <cstdarg>
#include <cstddef>
#include <string>
#include <vector>

class ustr;
class astr;

// printf-style formatting into an owned string. The format takes the
// Windows runtime's conventions on every target (%s is a string of the
// format's own width, %S of the other width, %I64d a 64-bit number), so the
// suite's format strings work unchanged. Returns the formatted length, or -1
// for a broken format.
QT_API int qn_vformat(std::wstring& out, const wchar_t* format, va_list args);
QT_API int qn_vformat(std::string& out, const char* format, va_list args);

// One character upper-cased as the platform's CharUpperW does it.
QT_API wchar_t qn_charupper(wchar_t c);
QT_API wchar_t qn_charlower(wchar_t c);

// 8-bit <-> wide conversion through the system code page.
QT_API std::wstring qn_ansi_to_wide(const char* text, size_t length = static_cast<size_t>(-1));
QT_API std::string qn_wide_to_ansi(const wchar_t* text, size_t length = static_cast<size_t>(-1));

namespace qn_detail {

inline char upper(char c) {
  // Only ASCII letters change: 8-bit text is upper-cased without a code page.
  return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
}
inline char lower(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}
inline wchar_t upper(wchar_t c) { return qn_charupper(c); }
inline wchar_t lower(wchar_t c) { return qn_charlower(c); }
inline bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
inline bool isBlank(wchar_t c) { return c == L' ' || c == L'\t' || c == L'\r' || c == L'\n'; }

// The operations both owned strings share; D is the concrete string type.
template <class D, class C>
class owned_string {
 public:
  typedef C char_type;
  typedef std::basic_string<C> std_type;
  static const size_t npos = static_cast<size_t>(-1);

  owned_string() {}
  owned_string(const C* s) : s_(s ? s : emptyText()) {}
  owned_string(const C* s, size_t n) : s_(s ? std_type(s, n) : std_type()) {}
  owned_string(const std_type& s) : s_(s) {}
  owned_string(size_t n, C c) : s_(n, c) {}

  const C* c_str() const { return s_.c_str(); }
  operator const C*() const { return s_.c_str(); }
  const std_type& str() const { return s_; }
  std_type& str() { return s_; }
  size_t length() const { return s_.size(); }
  size_t size() const { return s_.size(); }
  bool empty() const { return s_.empty(); }
  void clear() { s_.clear(); }
  // Writable buffer of n characters (plus terminator); call fixLength()
  // after writing a terminated text into it.
  C* buffer(size_t n) { s_.resize(n); return &s_[0]; }
  void fixLength() { s_.resize(std::char_traits<C>::length(s_.c_str())); }

  D& operator=(const C* s) { s_ = s ? s : emptyText(); return self(); }
  D& operator+=(const D& o) { s_ += o.s_; return self(); }
  D& operator+=(const C* s) { if (s) s_ += s; return self(); }
  D& operator+=(C c) { s_ += c; return self(); }
  D& append(const C* s, size_t n) { if (s) s_.append(s, n); return self(); }

  int compare(const C* o) const { return s_.compare(o ? o : emptyText()); }
  int compareNoCase(const C* o) const {
    const std_type a = D(s_).makeUpper().s_, b = D(o).makeUpper().s_;
    return a.compare(b);
  }
  bool equalsNoCase(const C* o) const { return compareNoCase(o) == 0; }

  size_t find(const C* what, size_t from = 0) const { return what ? s_.find(what, from) : npos; }
  size_t find(C c, size_t from = 0) const { return s_.find(c, from); }
  size_t rfind(C c) const { return s_.rfind(c); }
  bool startsWith(const C* p) const { return p && s_.compare(0, std::char_traits<C>::length(p), p) == 0; }
  bool endsWith(const C* p) const {
    if (!p) return false;
    const size_t n = std::char_traits<C>::length(p);
    return n <= s_.size() && s_.compare(s_.size() - n, n, p) == 0;
  }

  D mid(size_t pos, size_t n = npos) const { return pos >= s_.size() ? D() : D(s_.substr(pos, n)); }
  D left(size_t n) const { return D(s_.substr(0, n)); }
  D right(size_t n) const { return n >= s_.size() ? D(s_) : D(s_.substr(s_.size() - n)); }

  D& trimLeft() {
    size_t i = 0;
    while (i < s_.size() && isBlank(s_[i])) ++i;
    s_.erase(0, i);
    return self();
  }
  D& trimRight() {
    size_t n = s_.size();
    while (n > 0 && isBlank(s_[n - 1])) --n;
    s_.resize(n);
    return self();
  }
  D& trim() { trimRight(); return trimLeft(); }

  // Replaces every occurrence of `what`; returns how many were replaced.
  size_t replace(const C* what, const C* with) {
    if (!what || !*what) return 0;
    const std_type w(what), r(with ? with : emptyText());
    size_t count = 0;
    for (size_t at = s_.find(w); at != npos; at = s_.find(w, at + r.size())) {
      s_.replace(at, w.size(), r);
      ++count;
    }
    return count;
  }

  D& makeUpper() { for (C& c : s_) c = upper(c); return self(); }
  D& makeLower() { for (C& c : s_) c = lower(c); return self(); }

  int formatVaList(const C* format, va_list args) { return qn_vformat(s_, format, args); }
  int format(const C* format, ...) {
    va_list args;
    va_start(args, format);
    const int n = qn_vformat(s_, format, args);
    va_end(args);
    return n;
  }

  // Splits at every separator; n separators give n + 1 fields.
  std::vector<D> split(C separator) const {
    std::vector<D> fields;
    size_t from = 0;
    for (size_t at = s_.find(separator); at != npos; at = s_.find(separator, from)) {
      fields.push_back(D(s_.substr(from, at - from)));
      from = at + 1;
    }
    fields.push_back(D(s_.substr(from)));
    return fields;
  }

  friend bool operator==(const D& a, const D& b) { return a.s_ == b.s_; }
  friend bool operator==(const D& a, const C* b) { return a.compare(b) == 0; }
  friend bool operator==(const C* a, const D& b) { return b.compare(a) == 0; }
  friend bool operator!=(const D& a, const D& b) { return !(a == b); }
  friend bool operator!=(const D& a, const C* b) { return !(a == b); }
  friend bool operator!=(const C* a, const D& b) { return !(b == a); }
  friend bool operator<(const D& a, const D& b) { return a.s_ < b.s_; }
  friend D operator+(const D& a, const D& b) { D r(a); r += b; return r; }
  friend D operator+(const D& a, const C* b) { D r(a); r += b; return r; }
  friend D operator+(const C* a, const D& b) { D r(a); r += b; return r; }

 protected:
  static const C* emptyText() { static const C e[1] = {0}; return e; }
  D& self() { return static_cast<D&>(*this); }
  std_type s_;
};

}  // namespace qn_detail

class astr : public qn_detail::owned_string<astr, char> {
 public:
  using owned_string::owned_string;
  astr() {}
  // Wide text converted to the system code page.
  static astr fromWide(const wchar_t* w) { return astr(qn_wide_to_ansi(w ? w : L"")); }
};

class ustr : public qn_detail::owned_string<ustr, wchar_t> {
 public:
  using owned_string::owned_string;
  ustr() {}
  // 8-bit text from the system code page.
  static ustr fromAnsi(const char* a) { return ustr(qn_ansi_to_wide(a ? a : "")); }
  astr toAnsi() const { return astr::fromWide(c_str()); }
};

// Strings sized for N characters in the original base library; here the
// capacity is a hint only, so they are plain owned strings.
template <size_t N>
class ustr_pre : public ustr {
 public:
  using ustr::ustr;
  ustr_pre() {}
  ustr_pre(const ustr& s) : ustr(s) {}
};

template <size_t N>
class astr_pre : public astr {
 public:
  using astr::astr;
  astr_pre() {}
  astr_pre(const astr& s) : astr(s) {}
};

#endif
