#include "project/qb_base64.h"

namespace qb {

namespace {

const char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

int Value(unsigned char c) {
  if (c >= 'A' && c <= 'Z') return c - 'A';
  if (c >= 'a' && c <= 'z') return c - 'a' + 26;
  if (c >= '0' && c <= '9') return c - '0' + 52;
  if (c == '+') return 62;
  if (c == '/') return 63;
  return -1;
}

}  // namespace

std::string Base64Encode(const unsigned char* data, size_t size) {
  std::string out;
  if (!data) return out;
  out.reserve((size + 2) / 3 * 4);
  size_t i = 0;
  for (; i + 3 <= size; i += 3) {
    const unsigned v = (data[i] << 16) | (data[i + 1] << 8) | data[i + 2];
    out += kAlphabet[v >> 18];
    out += kAlphabet[(v >> 12) & 63];
    out += kAlphabet[(v >> 6) & 63];
    out += kAlphabet[v & 63];
  }
  if (size - i == 1) {
    const unsigned v = data[i] << 16;
    out += kAlphabet[v >> 18];
    out += kAlphabet[(v >> 12) & 63];
    out += "==";
  } else if (size - i == 2) {
    const unsigned v = (data[i] << 16) | (data[i + 1] << 8);
    out += kAlphabet[v >> 18];
    out += kAlphabet[(v >> 12) & 63];
    out += kAlphabet[(v >> 6) & 63];
    out += '=';
  }
  return out;
}

bool Base64Decode(const char* text, size_t size, std::string* bytes) {
  if (size % 4 != 0 || (!text && size > 0)) return false;
  std::string out;
  out.reserve(size / 4 * 3);
  const unsigned char* t = reinterpret_cast<const unsigned char*>(text);
  for (size_t i = 0; i < size; i += 4) {
    const bool last = i + 4 == size;
    const int pad = last ? (t[i + 3] == '=') + (t[i + 2] == '=' && t[i + 3] == '=') : 0;
    int v[4];
    for (int k = 0; k < 4 - pad; ++k) {
      v[k] = Value(t[i + k]);
      if (v[k] < 0) return false;
    }
    for (int k = 4 - pad; k < 4; ++k) v[k] = 0;
    const unsigned n = (v[0] << 18) | (v[1] << 12) | (v[2] << 6) | v[3];
    // Bits that the padding leaves over must be zero: otherwise two texts
    // would stand for the same bytes.
    if ((pad == 1 && (n & 0xFF)) || (pad == 2 && (n & 0xFFFF))) return false;
    out += static_cast<char>(n >> 16);
    if (pad < 2) out += static_cast<char>((n >> 8) & 0xFF);
    if (pad < 1) out += static_cast<char>(n & 0xFF);
  }
  bytes->swap(out);
  return true;
}

}  // namespace qb
