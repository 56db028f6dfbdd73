#include <sodium.h>

#include "project/qb_platform.h"

namespace qb {
namespace platform {

bool Base64(const unsigned char* data, size_t size, std::wstring* text) {
  text->clear();
  if (!data && size > 0) return false;
  const size_t room = sodium_base64_encoded_len(size, sodium_base64_VARIANT_ORIGINAL);
  std::string narrow(room, '\0');
  if (!sodium_bin2base64(&narrow[0], room, data, size, sodium_base64_VARIANT_ORIGINAL)) return false;
  narrow.resize(room - 1);  // the library counts the terminator
  text->assign(narrow.begin(), narrow.end());
  return true;
}

}  // namespace platform
}  // namespace qb
