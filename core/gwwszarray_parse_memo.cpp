#include <cstring>

#include "core/gwarray_strings.h"
#include "gwarray.h"
#include "gwframe.h"

namespace {

const int kMaxLines = 100000;
const int kWorkLineTag = 1221;

bool IsBreakBlank(wchar_t c) { return static_cast<unsigned>(c) < 33u; }

// Where a full line is wrapped: the line's length and how many characters
// it uses up from the text.
struct Wrap {
  size_t length;
  size_t consumed;
};

Wrap WrapFullLine(const wchar_t* line, size_t full) {
  for (size_t i = full; i-- > 0;) {
    if (IsBreakBlank(line[i])) return {i, i + 1};         // the blank is dropped
    if (line[i] == L',' || line[i] == L';') return {i + 1, i + 1};  // the mark stays
  }
  return {full, full};
}

}  // namespace

int gwWszarray_parse_memo(gwarraytype* array, const wchar_t* text, int lineLength) {
  if (!qt::gwarray::StringArray<wchar_t>::Holds(array) || !text || lineLength < 2) return -1;
  gwWszarray_reset(array);
  const size_t limit = static_cast<size_t>(lineLength) - 1;
  const unsigned long long workBytes = (static_cast<unsigned long long>(lineLength) + 10) * sizeof(wchar_t);
  if (workBytes > static_cast<unsigned long>(-1)) return -2;
  wchar_t* line = static_cast<wchar_t*>(gwGmalloc(static_cast<unsigned long>(workBytes), kWorkLineTag));
  if (!line) return -2;

  const wchar_t* p = text;
  while (array->count <= kMaxLines) {
    if (!*p) {
      gwGfree(line);
      return 0;
    }
    size_t taken = 0;
    while (taken < limit && *p && *p != 13) line[taken++] = *p++;
    size_t length = taken;
    if (*p == 13) {
      ++p;
      if (*p == 10) ++p;
    } else if (*p) {
      // The line is full and the text goes on.
      const Wrap wrap = WrapFullLine(line, taken);
      length = wrap.length;
      p -= taken - wrap.consumed;
    }
    line[length] = 0;
    if (gwWszarray_append(array, line) != 0) {
      // Half a text is no use to anyone.
      gwGfree(line);
      gwWszarray_reset(array);
      return -2;
    }
  }
  // A text of more lines than that is refused as a whole.
  gwGfree(line);
  gwWszarray_reset(array);
  return -1;
}
