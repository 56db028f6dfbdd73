// Unicode conversions that give the same bytes on every target. wchar_t
// holds UTF-16 on Windows and UTF-32 on Linux, while the files and registry
// values both targets share are UTF-16LE and the paths handed to portable
// libraries are UTF-8; these functions go by the width of wchar_t, not by
// platform.
//
// Where wchar_t holds UTF-16, its units pass to and from UTF-16LE as they
// are, unpaired halves included, whatever the flags. Wide lengths count
// wchar_t elements; the default length means "up to the first zero".
// Nothing here throws: a function returning a standard string answers an
// empty one when memory runs out, so a non-empty input that comes back
// empty has failed.
#ifndef QUILTOOL_QN_UTF_H
#define QUILTOOL_QN_UTF_H

#include <cstddef>
#include <string>

#include "quiltool_export.h"

enum qn_utf_flags : unsigned {
  // Decoding UTF-16LE ends at the first zero unit, which is left out.
  QN_UTF_STOP_AT_ZERO = 0x1,
  // Code values that are no character become U+FFFD: unpaired surrogates,
  // and values beyond U+10FFFF that a 32-bit wchar_t can hold. Without it
  // they are carried over as they are, so that any UTF-16 text, well-formed
  // or not, goes to wide text (and on to UTF-8) and back unchanged.
  QN_UTF_REPLACE_INVALID = 0x2,
};

// Wide text as UTF-16LE bytes, characters beyond the BMP as surrogate pairs.
// A value beyond U+10FFFF has no UTF-16 form and always becomes U+FFFD.
QT_API std::string qn_wide_to_utf16le(const wchar_t* text, size_t length = static_cast<size_t>(-1),
                                      unsigned flags = 0);

// UTF-16LE bytes as wide text; an odd trailing byte is dropped. Where
// wchar_t is 32 bits wide, surrogate pairs become one character.
QT_API std::wstring qn_utf16le_to_wide(const void* bytes, size_t size, unsigned flags = 0);
// The same into a caller's buffer: at most outChars - 1 characters and a
// terminating zero (nothing at all when outChars is 0). Where wchar_t is 16
// bits wide a full buffer may end between the two halves of a pair.
// Allocates nothing; returns the number of characters written before the
// terminator.
QT_API size_t qn_utf16le_to_wide(const void* bytes, size_t size, wchar_t* out, size_t outChars,
                                 unsigned flags = 0);

// Wide text as UTF-8. Without QN_UTF_REPLACE_INVALID an unpaired surrogate
// takes its three-byte form and a value beyond U+10FFFF the four-byte
// pattern (which holds 21 bits; higher bits are lost).
QT_API std::string qn_wide_to_utf8(const wchar_t* text, size_t length = static_cast<size_t>(-1),
                                   unsigned flags = 0);
// UTF-8 as wide text, the same characters on both targets. Ill-formed
// input (bytes C0, C1 and F5-FF, overlong forms, surrogates, values beyond
// U+10FFFF, a sequence cut short) becomes U+FFFD, one for each maximal
// ill-formed part as Unicode recommends: "\xE2\x82" is one U+FFFD,
// "\xFF\x98" two. Where wchar_t is 16 bits wide, characters beyond the BMP
// become surrogate pairs. So a lone surrogate that qn_wide_to_utf8 wrote in
// its three-byte form comes back as U+FFFD: only well-formed text makes the
// round trip through UTF-8.
//
// This is the decoder for text that is shown, logged or handed on. On Linux
// qn_ansi_to_wide is this function, so it serves every 8-bit argument of
// the library, the 8-bit log, user and module names from the system, texts
// read back from the settings store and the program's arguments.
QT_API std::wstring qn_utf8_to_wide(const char* text, size_t length = static_cast<size_t>(-1));
// The same decoder for formats that must be exact, where a U+FFFD would
// rename something: false, and out left empty, when the input holds
// anything ill-formed. A null text is the empty text. A registry file read
// on Linux, whose 8-bit text is UTF-8 there, is such a format: an ill-formed
// key name must be refused with its line, not imported under another name.
QT_API bool qn_utf8_to_wide_strict(const char* text, size_t length, std::wstring* out);

#endif
