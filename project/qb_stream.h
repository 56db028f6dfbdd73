// The envelope around a database image in a stream: a magic, the image's
// length and a CRC-32, so that a truncated or damaged stream is refused
// before any of it is taken for a database.
//   0  "QBSTREAM"   8  u32 version (1)   12 u32 zero
//   16 u64 image length   24 u32 CRC-32 of the image   28 u32 zero
//   32 the image
#ifndef QUILTOOL_PROJECT_QB_STREAM_H
#define QUILTOOL_PROJECT_QB_STREAM_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace qb {

const size_t kStreamHeader = 32;

uint32_t Crc32(const unsigned char* data, size_t size);
std::string WrapStream(const std::string& image);
// QB_OK or QBERR_BADSTREAM.
short UnwrapStream(const unsigned char* data, size_t size, std::string* image);

}  // namespace qb

#endif
