#include "png_writer.h"

#include <cstdint>
#include <cstdio>
#include <memory>

namespace qt_test {
namespace {

uint32_t Crc32(const unsigned char* data, size_t size, uint32_t crc = 0) {
  static uint32_t table[256];
  static bool ready = false;
  if (!ready) {
    for (uint32_t n = 0; n < 256; ++n) {
      uint32_t c = n;
      for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
      table[n] = c;
    }
    ready = true;
  }
  crc = ~crc;
  for (size_t i = 0; i < size; ++i) crc = table[(crc ^ data[i]) & 0xFF] ^ (crc >> 8);
  return ~crc;
}

void PutBig32(std::vector<unsigned char>& out, uint32_t v) {
  for (int shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<unsigned char>(v >> shift));
}

void PutChunk(std::vector<unsigned char>& out, const char* type, const std::vector<unsigned char>& body) {
  PutBig32(out, static_cast<uint32_t>(body.size()));
  size_t start = out.size();
  out.insert(out.end(), type, type + 4);
  out.insert(out.end(), body.begin(), body.end());
  PutBig32(out, Crc32(out.data() + start, out.size() - start));
}

// zlib stream of stored blocks (at most 65535 bytes each) with its Adler-32.
std::vector<unsigned char> StoredZlib(const std::vector<unsigned char>& raw) {
  std::vector<unsigned char> z = {0x78, 0x01};
  size_t pos = 0;
  do {
    size_t n = raw.size() - pos < 65535 ? raw.size() - pos : 65535;
    bool last = pos + n == raw.size();
    z.push_back(last ? 1 : 0);
    z.push_back(static_cast<unsigned char>(n));
    z.push_back(static_cast<unsigned char>(n >> 8));
    z.push_back(static_cast<unsigned char>(~n));
    z.push_back(static_cast<unsigned char>(~n >> 8));
    z.insert(z.end(), raw.begin() + static_cast<std::ptrdiff_t>(pos), raw.begin() + static_cast<std::ptrdiff_t>(pos + n));
    pos += n;
  } while (pos < raw.size());
  uint32_t a = 1, b = 0;
  for (unsigned char c : raw) {
    a = (a + c) % 65521;
    b = (b + a) % 65521;
  }
  PutBig32(z, (b << 16) | a);
  return z;
}

}  // namespace

bool WritePng(const std::string& path, int width, int height, const std::vector<unsigned char>& rgb) {
  if (width <= 0 || height <= 0 || rgb.size() != static_cast<size_t>(width) * height * 3) return false;
  std::vector<unsigned char> raw;
  raw.reserve(static_cast<size_t>(height) * (width * 3 + 1));
  for (int y = 0; y < height; ++y) {
    raw.push_back(0);  // filter: none
    auto row = rgb.begin() + static_cast<std::ptrdiff_t>(y) * width * 3;
    raw.insert(raw.end(), row, row + width * 3);
  }
  std::vector<unsigned char> png = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  std::vector<unsigned char> header;
  PutBig32(header, static_cast<uint32_t>(width));
  PutBig32(header, static_cast<uint32_t>(height));
  header.insert(header.end(), {8, 2, 0, 0, 0});  // 8-bit RGB, no interlace
  PutChunk(png, "IHDR", header);
  PutChunk(png, "IDAT", StoredZlib(raw));
  PutChunk(png, "IEND", {});

  std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "wb"), &std::fclose);
  if (!file) return false;
  return std::fwrite(png.data(), 1, png.size(), file.get()) == png.size();
}

}  // namespace qt_test
