// The 200 bytes of a plain lock file: the user's name in UTF-16LE followed
// by '*' up to 100 units; the same bytes on every target.
#ifndef QUILTOOL_FILES_LOCK_CONTENT_H
#define QUILTOOL_FILES_LOCK_CONTENT_H

#include <cstddef>
#include <string>

namespace qt {
namespace lock_file {

const size_t kContentUnits = 100;
const size_t kContentBytes = 2 * kContentUnits;
// Readers take no more than this, so a name that fills the whole content
// loses its last two characters on the way back.
const size_t kHolderReadBytes = 196;

// Names longer than 100 UTF-16 units are cut, never inside a surrogate pair.
std::string LockContent(const wchar_t* user);
// The name up to the first '*' (or a NUL unit); empty when the content
// starts with '*' or is empty (a holder that has not written yet). False
// when the bytes are not a lock file's content, so that no stray file is
// shown as somebody's name: an odd number of bytes, a half surrogate pair or
// a control character in the name, a name that ends before the bytes do
// without its '*' padding, or padding that is not '*'. `size` is what a
// reader got of its kHolderReadBytes.
bool HolderName(const void* bytes, size_t size, std::wstring* name);

}  // namespace lock_file
}  // namespace qt

#endif
