#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#include <wincrypt.h>

#include "project/qb_platform.h"

namespace qb {
namespace platform {

bool Base64(const unsigned char* data, size_t size, std::wstring* text) {
  text->clear();
  if (size > 0xC0000000u || (!data && size > 0)) return false;
  if (size == 0) return true;
  const DWORD flags = CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF;
  DWORD length = 0;
  if (!CryptBinaryToStringW(data, static_cast<DWORD>(size), flags, nullptr, &length) || length == 0) return false;
  std::wstring out(length, L'\0');
  if (!CryptBinaryToStringW(data, static_cast<DWORD>(size), flags, &out[0], &length)) return false;
  out.resize(length);  // the second call answers the length without the terminator
  *text = out;
  return true;
}

}  // namespace platform
}  // namespace qb
