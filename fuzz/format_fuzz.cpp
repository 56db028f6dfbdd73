// The suite's format strings use the Windows runtime's spellings (%s of the
// format's own width, %S of the other, %I64d, %Iu, %ws); the library
// rewrites them for the C99 runtime. A format is built here from what each
// conversion means, spelled both ways: the library's result for the
// Windows spelling must equal the C runtime's for the C99 spelling, the
// 8-bit and wide functions must agree, and a short buffer gets the front
// of the same text.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <string>
#include <vector>

#include "fuzz_support.h"
#include "gwframe.h"
#include "qn_utf.h"

namespace {

enum Kind { kInt, kLongLong, kSize, kDouble, kNarrowText, kWideText, kNarrowChar, kWideChar, kPercent };

struct Arg {
  Kind kind;
  long long integer = 0;
  double real = 0;
  std::string narrow;
  std::wstring wide;
};

struct Spelled {
  std::string windows8, c99_8;   // for the 8-bit functions
  std::wstring windows16, c99_16;  // for the wide functions
};

const char* Pick(qt_fuzz::Reader& in, std::initializer_list<const char*> options) {
  return options.begin()[in.below(static_cast<unsigned>(options.size()))];
}

// Plain ASCII without '%', so that texts mean the same in any locale.
std::string AsciiText(qt_fuzz::Reader& in, size_t most) {
  std::string s;
  const size_t n = in.below(static_cast<unsigned>(most + 1));
  for (size_t i = 0; i < n && !in.empty(); ++i) {
    char c = static_cast<char>(0x20 + in.below(0x5F));
    if (c == '%') c = '_';
    s.push_back(c);
  }
  return s;
}

void AppendBoth(Spelled& f, const std::string& windows, const std::string& c99) {
  f.windows8 += windows;
  f.c99_8 += c99;
}

// One conversion: its argument and both spellings for each width.
void AddConversion(qt_fuzz::Reader& in, Spelled& f, std::vector<Arg>& args) {
  Arg arg;
  arg.kind = static_cast<Kind>(in.below(kPercent + 1));
  std::string flags;
  const unsigned flagBits = in.byte();
  const char* allFlags = "-+ #0";
  for (int i = 0; i < 5; ++i) {
    if (flagBits & (1u << i)) flags += allFlags[i];
  }
  std::string width, precision;
  if (in.byte() & 1) width = std::to_string(in.below(24));
  if (in.byte() & 1) precision = "." + std::to_string(in.below(24));

  std::string head = "%" + flags + width;
  std::string w8, c8, w16, c16;  // from the length modifier on
  switch (arg.kind) {
    case kInt: case kLongLong: case kSize: {
      const char* conv = Pick(in, {"d", "i", "u", "x", "X", "o"});
      long long v = 0;
      for (int i = 0; i < 8; ++i) v = (v << 8) | in.byte();
      arg.integer = v;
      const char* win = arg.kind == kInt ? Pick(in, {"", "I32"}) : arg.kind == kLongLong ? Pick(in, {"I64", "ll"}) : Pick(in, {"I", "z"});
      const char* c99 = arg.kind == kInt ? "" : arg.kind == kLongLong ? "ll" : "z";
      w8 = w16 = std::string(win) + conv;
      c8 = c16 = std::string(c99) + conv;
      head += precision;
      break;
    }
    case kDouble: {
      const char* conv = Pick(in, {"f", "e", "E", "g", "G", "a"});
      uint64_t bits = 0;
      for (int i = 0; i < 8; ++i) bits = (bits << 8) | in.byte();
      std::memcpy(&arg.real, &bits, sizeof bits);
      w8 = w16 = std::string(Pick(in, {"", "l"})) + conv;
      c8 = c16 = conv;
      head += precision;
      break;
    }
    case kNarrowText: case kWideText: {
      const std::string text = AsciiText(in, 12);
      arg.narrow = text;
      arg.wide.assign(text.begin(), text.end());
      if (arg.kind == kNarrowText) {
        w8 = Pick(in, {"s", "hs", "hS"});
        w16 = Pick(in, {"S", "hs", "hS"});
        c8 = "s";
        c16 = "s";
      } else {
        w8 = Pick(in, {"S", "ls", "ws", "lS", "wS"});
        w16 = Pick(in, {"s", "ls", "ws", "lS"});
        c8 = "ls";
        c16 = "ls";
      }
      head += precision;
      break;
    }
    case kNarrowChar: case kWideChar: {
      arg.integer = 0x20 + in.below(0x5F);
      if (arg.kind == kNarrowChar) {
        w8 = Pick(in, {"c", "hc", "hC"});
        w16 = Pick(in, {"C", "hc", "hC"});
        c8 = c16 = "c";
      } else {
        w8 = Pick(in, {"C", "lc", "wc"});
        w16 = Pick(in, {"c", "lc", "wc", "lC"});
        c8 = c16 = "lc";
      }
      break;
    }
    case kPercent:
      head = "%";
      w8 = w16 = c8 = c16 = "%";
      break;
  }
  AppendBoth(f, head + w8, head + c8);
  const std::string wideHead16 = head + w16, c99Head16 = head + c16;
  f.windows16 += std::wstring(wideHead16.begin(), wideHead16.end());
  f.c99_16 += std::wstring(c99Head16.begin(), c99Head16.end());
  if (arg.kind != kPercent) args.push_back(arg);
}

// At most this many arguments per format, which bounds the dispatch below.
const size_t kMostArgs = 3;

struct Outcome {
  int windows8 = 0, c99_8 = 0, windows16 = 0, c99_16 = 0;
  std::string text8, ref8;
  std::wstring text16, ref16;
  std::string shortText8;
  std::wstring shortText16;
};

const size_t kRoom = 4096;
const size_t kShort = 7;

// The formats are made at run time: that is what is being tested.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wformat-security"
#pragma clang diagnostic ignored "-Wformat-nonliteral"
template <class... A>
void Call(const Spelled& f, Outcome* o, A... a) {
  std::vector<char> b8(kRoom), r8(kRoom), s8(kShort);
  std::vector<wchar_t> b16(kRoom), r16(kRoom), s16(kShort);
  o->windows8 = QN_sprintf_s(b8.data(), kRoom, f.windows8.c_str(), a...);
  o->c99_8 = std::snprintf(r8.data(), kRoom, f.c99_8.c_str(), a...);
  o->windows16 = QN_swprintf_s(b16.data(), kRoom, f.windows16.c_str(), a...);
  o->c99_16 = std::swprintf(r16.data(), kRoom, f.c99_16.c_str(), a...);
  QN_sprintf_s(s8.data(), kShort, f.windows8.c_str(), a...);
  QN_swprintf_s(s16.data(), kShort, f.windows16.c_str(), a...);
  if (o->windows8 >= 0 && static_cast<size_t>(o->windows8) < kRoom) o->text8.assign(b8.data(), o->windows8);
  if (o->c99_8 >= 0 && static_cast<size_t>(o->c99_8) < kRoom) o->ref8.assign(r8.data(), o->c99_8);
  if (o->windows16 >= 0 && static_cast<size_t>(o->windows16) < kRoom) o->text16.assign(b16.data(), o->windows16);
  if (o->c99_16 >= 0 && static_cast<size_t>(o->c99_16) < kRoom) o->ref16.assign(r16.data(), o->c99_16);
  o->shortText8.assign(s8.data(), strnlen(s8.data(), kShort));
  o->shortText16.assign(s16.data(), wcsnlen(s16.data(), kShort));
}
#pragma clang diagnostic pop

template <class... A>
void DispatchNext(const Spelled& f, const std::vector<Arg>& args, size_t i, Outcome* o, A... a);

// Hands each argument over with the type its conversion reads.
template <class... A>
void Dispatch(const Spelled& f, const std::vector<Arg>& args, size_t i, Outcome* o, A... a) {
  if constexpr (sizeof...(A) >= kMostArgs) {
    Call(f, o, a...);
  } else {
    if (i == args.size()) {
      Call(f, o, a...);
      return;
    }
    DispatchNext(f, args, i, o, a...);
  }
}

template <class... A>
void DispatchNext(const Spelled& f, const std::vector<Arg>& args, size_t i, Outcome* o, A... a) {
  const Arg& g = args[i];
  switch (g.kind) {
    case kInt: Dispatch(f, args, i + 1, o, a..., static_cast<int>(g.integer)); break;
    case kLongLong: Dispatch(f, args, i + 1, o, a..., g.integer); break;
    case kSize: Dispatch(f, args, i + 1, o, a..., static_cast<size_t>(g.integer)); break;
    case kDouble: Dispatch(f, args, i + 1, o, a..., g.real); break;
    case kNarrowText: Dispatch(f, args, i + 1, o, a..., g.narrow.c_str()); break;
    case kWideText: Dispatch(f, args, i + 1, o, a..., g.wide.c_str()); break;
    case kNarrowChar: Dispatch(f, args, i + 1, o, a..., static_cast<int>(g.integer)); break;
    case kWideChar: Dispatch(f, args, i + 1, o, a..., static_cast<wint_t>(g.integer)); break;
    case kPercent: break;
  }
}

// Texts of the other width hold any character: they are converted with the
// library's own codec (UTF-8 for 8-bit text on Linux), whatever locale the
// process runs in.
void CheckOtherWidthText(qt_fuzz::Reader& in) {
  std::wstring wide;
  while (in.left() >= 3 && wide.size() < 40) {
    unsigned long c = in.byte();
    c |= static_cast<unsigned long>(in.byte()) << 8;
    c |= static_cast<unsigned long>(in.byte() % 0x11) << 16;
    if (c == 0 || (c >= 0xD800 && c <= 0xDFFF)) continue;
    wide += static_cast<wchar_t>(c);
  }
  const std::string utf8 = qn_wide_to_utf8(wide.c_str(), wide.size());
  wchar_t w[256];
  const int nw = QN_swprintf_s(w, 256, L"[%S]", utf8.c_str());
  QT_FUZZ_CHECK(nw >= 0 && std::wstring(w, static_cast<size_t>(nw)) == L"[" + wide + L"]",
                "%S of the 8-bit text " + qt_fuzz::Printable(utf8) + " gives " + std::to_string(nw) + " \"" +
                    qt_fuzz::Printable(std::wstring(w, nw > 0 ? static_cast<size_t>(nw) : 0)) + "\"");
  char n8[1024];
  const int n = QN_sprintf_s(n8, sizeof n8, "[%S]", wide.c_str());
  QT_FUZZ_CHECK(n >= 0 && std::string(n8, static_cast<size_t>(n)) == "[" + utf8 + "]",
                "%S of the wide text " + qt_fuzz::Printable(wide) + " gives " + std::to_string(n) + " \"" +
                    qt_fuzz::Printable(std::string(n8, n > 0 ? static_cast<size_t>(n) : 0)) + "\"");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  qt_fuzz::Reader in(data, size);
  if (in.byte() & 0x80) {
    CheckOtherWidthText(in);
    return 0;
  }
  Spelled f;
  std::vector<Arg> args;
  const std::string lead = AsciiText(in, 8);
  AppendBoth(f, lead, lead);
  f.windows16.assign(lead.begin(), lead.end());
  f.c99_16 = f.windows16;
  while (!in.empty() && args.size() < kMostArgs) {
    AddConversion(in, f, args);
    const std::string text = AsciiText(in, 6);
    AppendBoth(f, text, text);
    f.windows16 += std::wstring(text.begin(), text.end());
    f.c99_16 += std::wstring(text.begin(), text.end());
  }

  Outcome o;
  Dispatch(f, args, 0, &o);
  const std::string what = " for \"" + qt_fuzz::Printable(f.windows8) + "\" / \"" + qt_fuzz::Printable(f.c99_8) + "\"";
  QT_FUZZ_CHECK(o.windows8 == o.c99_8, "8-bit length " + std::to_string(o.windows8) + " vs " + std::to_string(o.c99_8) + what);
  QT_FUZZ_CHECK(o.text8 == o.ref8, "8-bit \"" + qt_fuzz::Printable(o.text8) + "\" vs \"" + qt_fuzz::Printable(o.ref8) + "\"" + what);
  QT_FUZZ_CHECK(o.windows16 == o.c99_16,
                "wide length " + std::to_string(o.windows16) + " vs " + std::to_string(o.c99_16) + what);
  QT_FUZZ_CHECK(o.text16 == o.ref16, "wide \"" + qt_fuzz::Printable(o.text16) + "\" vs \"" +
                                         qt_fuzz::Printable(o.ref16) + "\"" + what);
  // Every piece is ASCII, so both widths write the same characters.
  QT_FUZZ_CHECK(o.text16 == std::wstring(o.text8.begin(), o.text8.end()),
                "8-bit and wide differ: \"" + qt_fuzz::Printable(o.text8) + "\" vs \"" + qt_fuzz::Printable(o.text16) + "\"" + what);
  if (o.windows8 >= 0) {
    QT_FUZZ_CHECK(o.shortText8 == o.text8.substr(0, std::min(o.text8.size(), kShort - 1)).c_str(),
                  "a short buffer holds \"" + qt_fuzz::Printable(o.shortText8) + "\"" + what);
  }
  if (o.windows16 >= 0) {
    const std::wstring front = o.text16.substr(0, std::min(o.text16.size(), kShort - 1));
    QT_FUZZ_CHECK(o.shortText16 == front.c_str(), "a short wide buffer holds \"" + qt_fuzz::Printable(o.shortText16) + "\"" + what);
  }
  return 0;
}
