#include "project/qb_stream.h"

#include <array>
#include <cstring>

#include "qb.h"

namespace qb {

namespace {

const char kMagic[8] = {'Q', 'B', 'S', 'T', 'R', 'E', 'A', 'M'};
const uint32_t kVersion = 1;

void Put(std::string* out, uint64_t v, int bytes) {
  for (int i = 0; i < bytes; ++i) out->push_back(static_cast<char>((v >> (8 * i)) & 0xFF));
}

uint64_t Get(const unsigned char* p, int bytes) {
  uint64_t v = 0;
  for (int i = bytes - 1; i >= 0; --i) v = (v << 8) | p[i];
  return v;
}

}  // namespace

uint32_t Crc32(const unsigned char* data, size_t size) {
  static const std::array<uint32_t, 256> table = [] {
    std::array<uint32_t, 256> t{};
    for (uint32_t i = 0; i < 256; ++i) {
      uint32_t c = i;
      for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
      t[i] = c;
    }
    return t;
  }();
  uint32_t crc = 0xFFFFFFFFu;
  for (size_t i = 0; i < size; ++i) crc = table[(crc ^ data[i]) & 0xFF] ^ (crc >> 8);
  return crc ^ 0xFFFFFFFFu;
}

std::string WrapStream(const std::string& image) {
  std::string out(kMagic, sizeof kMagic);
  out.reserve(kStreamHeader + image.size());
  Put(&out, kVersion, 4);
  Put(&out, 0, 4);
  Put(&out, image.size(), 8);
  Put(&out, Crc32(reinterpret_cast<const unsigned char*>(image.data()), image.size()), 4);
  Put(&out, 0, 4);
  out += image;
  return out;
}

short UnwrapStream(const unsigned char* data, size_t size, std::string* image) {
  if (!data || size < kStreamHeader || std::memcmp(data, kMagic, sizeof kMagic) != 0) return QBERR_BADSTREAM;
  if (Get(data + 8, 4) != kVersion) return QBERR_BADSTREAM;
  // Words no writer sets: a stream with them set is not one of ours, and
  // taken as it is it would not write back to the same bytes.
  if (Get(data + 12, 4) != 0 || Get(data + 28, 4) != 0) return QBERR_BADSTREAM;
  const uint64_t length = Get(data + 16, 8);
  if (length != size - kStreamHeader) return QBERR_BADSTREAM;
  const unsigned char* body = data + kStreamHeader;
  if (Get(data + 24, 4) != Crc32(body, static_cast<size_t>(length))) return QBERR_BADSTREAM;
  image->assign(reinterpret_cast<const char*>(body), static_cast<size_t>(length));
  return QB_OK;
}

}  // namespace qb
