// Base64 with the standard alphabet and '=' padding in one line without
// breaks: the form streams have always been exported in, on every target.
#ifndef QUILTOOL_PROJECT_QB_BASE64_H
#define QUILTOOL_PROJECT_QB_BASE64_H

#include <cstddef>
#include <string>

namespace qb {

std::string Base64Encode(const unsigned char* data, size_t size);
// Strict: only the alphabet, a length that is a multiple of four, padding
// only at the end, and unused bits zero, so that every text decodes to at
// most one byte string and encodes back to itself. False (and *bytes
// untouched) otherwise.
bool Base64Decode(const char* text, size_t size, std::string* bytes);

}  // namespace qb

#endif
