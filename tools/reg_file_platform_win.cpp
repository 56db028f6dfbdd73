#include "reg_file_platform.h"

#include "ustr.h"

namespace qt {
namespace reg_file {
namespace platform {

bool EightBitToWide(const char* text, size_t size, std::wstring* out) {
  *out = qn_ansi_to_wide(text, size);
  // An empty answer for bytes that are there means memory ran out.
  return size == 0 || !out->empty();
}

const char* EightBitName() { return "ANSI code page"; }

}  // namespace platform
}  // namespace reg_file
}  // namespace qt
