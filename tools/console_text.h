// Text handling the quiltool program needs on every target: UTF-8 arriving
// in pieces, and bytes that claim to be UTF-8.
#ifndef QUILTOOL_TOOLS_CONSOLE_TEXT_H
#define QUILTOOL_TOOLS_CONSOLE_TEXT_H

#include <cstddef>
#include <string>

namespace qt_tool {

// The length of the longest prefix of [data, data + size) that does not end
// inside a UTF-8 sequence, so that a chunked stream is converted only
// in whole characters. Bytes that can never complete a sequence count as
// complete (they are going to be replaced anyway).
size_t CompleteUtf8Prefix(const char* data, size_t size);

// The bytes as well-formed UTF-8: every ill-formed part (bad lead or
// continuation bytes, overlong forms, surrogates, values above U+10FFFF, a
// cut-off sequence) becomes one U+FFFD.
std::string SanitizeUtf8(const std::string& bytes);

// Text in the engine's 8-bit encoding (the system code page; UTF-8 on
// Linux) as well-formed UTF-8.
std::string EightBitToUtf8(const std::string& bytes);

}  // namespace qt_tool

#endif
