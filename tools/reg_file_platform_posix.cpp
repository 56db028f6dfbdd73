#include "reg_file_platform.h"

#include "qn_utf.h"

namespace qt {
namespace reg_file {
namespace platform {

bool EightBitToWide(const char* text, size_t size, std::wstring* out) {
  return qn_utf8_to_wide_strict(text, size, out);
}

const char* EightBitName() { return "UTF-8"; }

}  // namespace platform
}  // namespace reg_file
}  // namespace qt
