#include "project/qb_text.h"

#include "qn_utf.h"

namespace qb {

// Where a conversion can tell, a code value without Unicode meaning becomes
// U+FFFD instead of being carried along; SQLite takes well-formed UTF-8
// file names only.

std::string WideToUtf16le(const wchar_t* text, size_t len) {
  return qn_wide_to_utf16le(text, len, QN_UTF_REPLACE_INVALID);
}

std::wstring Utf16leToWide(const unsigned char* bytes, size_t size) {
  return qn_utf16le_to_wide(bytes, size, QN_UTF_REPLACE_INVALID);
}

std::string WideToUtf8(const wchar_t* text) { return qn_wide_to_utf8(text, static_cast<size_t>(-1), QN_UTF_REPLACE_INVALID); }

}  // namespace qb
