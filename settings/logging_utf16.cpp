#include "settings/logging_internal.h"

namespace qt {
namespace logging {

namespace {
inline void PutUnit(std::string& out, unsigned unit) {
  out += static_cast<char>(unit & 0xFF);
  out += static_cast<char>((unit >> 8) & 0xFF);
}
}  // namespace

void AppendUtf16le(std::string& out, const wchar_t* text) {
  for (const wchar_t* p = text; *p; ++p) {
    const unsigned long c = static_cast<unsigned long>(*p);
    if (sizeof(wchar_t) > 2 && c > 0xFFFF) {
      if (c > 0x10FFFF) {
        PutUnit(out, 0xFFFD);  // no UTF-16 form; keep the position visible
        continue;
      }
      const unsigned long v = c - 0x10000;
      PutUnit(out, 0xD800 | static_cast<unsigned>(v >> 10));
      PutUnit(out, 0xDC00 | static_cast<unsigned>(v & 0x3FF));
    } else {
      PutUnit(out, static_cast<unsigned>(c));
    }
  }
}

}  // namespace logging
}  // namespace qt
