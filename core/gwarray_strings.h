// What the 8-bit and wide string arrays share. A record is the pointer to a
// string block (gwGmalloc, length + 1 characters) that the array owns.
#ifndef QUILTOOL_CORE_GWARRAY_STRINGS_H
#define QUILTOOL_CORE_GWARRAY_STRINGS_H

#include <cstring>
#include <string>

#include "core/frame_state.h"
#include "core/gwarray_records.h"
#include "gwarray.h"
#include "gwframe.h"

namespace qt {
namespace gwarray {

const int kStringRecordSize = 8;
static_assert(sizeof(void*) == kStringRecordSize, "a string record holds one pointer");

// Failure texts of one family; a null text is not reported.
struct StringFamilyTexts {
  const char* appendCopy;    // the string copy could not be allocated
  const char* insertCopy;
  const char* update;
  const char* appendRecord;  // the record block could not grow
  const char* insertRecord;
  int tag;                   // tag of the family's global-memory calls
};

template <class C>
class StringArray {
 public:
  explicit StringArray(const StringFamilyTexts& texts) : texts_(texts) {}

  static bool Holds(const gwarraytype* a) { return Usable(a) && a->recordSize == kStringRecordSize; }

  static C* At(const gwarraytype* a, int index) {
    if (!Holds(a) || !InRange(a, index)) return nullptr;
    C* s;
    std::memcpy(&s, Record(a, index), sizeof s);
    return s;
  }

  int Init(gwarraytype* a) const { return gwarray_init(a, kStringRecordSize); }

  int Append(gwarraytype* a, const C* text) const {
    if (!Holds(a) || !text) return -1;
    C* copy = Copy(text, texts_.appendCopy);
    if (!copy) return -2;
    // When the record cannot be added the copy is dropped with the rest.
    return AppendRecords(a, &copy, 1, texts_.appendRecord);
  }

  int Insert(gwarraytype* a, int index, const C* text) const {
    if (!Holds(a) || !text || index < 0) return -1;
    C* copy = Copy(text, texts_.insertCopy);
    if (!copy) return -2;
    return InsertRecord(a, index, &copy, texts_.insertRecord);
  }

  int AppendArray(gwarraytype* a, const gwarraytype* other) const {
    if (!Holds(a) || !Usable(other)) return -1;
    if (other->count > 0 && other->recordSize != kStringRecordSize) return -3;
    // Counted first: appending an array to itself copies each string once.
    const int n = other->count;
    for (int i = 0; i < n; ++i) {
      if (const C* s = At(other, i)) Append(a, s);
    }
    return 0;
  }

  int Delete(gwarraytype* a, int index) const {
    if (!Holds(a) || !InRange(a, index)) return -1;
    gwGfree(At(a, index));
    return gwarray_delete(a, index);
  }

  int Get(const gwarraytype* a, int index, C* buffer, int size) const {
    if (!buffer || size < 1) return -1;
    buffer[0] = 0;
    const C* s = At(a, index);
    if (!s) return -1;
    size_t n = std::char_traits<C>::length(s);
    if (n > static_cast<size_t>(size - 1)) n = static_cast<size_t>(size - 1);
    std::memcpy(buffer, s, n * sizeof(C));
    buffer[n] = 0;
    return 0;
  }

  int Update(gwarraytype* a, int index, const C* text) const {
    if (!Holds(a) || !InRange(a, index) || !text) return -1;
    C* old = At(a, index);
    const size_t length = std::char_traits<C>::length(text);
    // The new text may be (part of) the string being replaced.
    std::basic_string<C> own;
    if (old && text >= old && text <= old + std::char_traits<C>::length(old)) {
      try {
        own.assign(text, length);
      } catch (...) {
        return Fail(texts_.update);
      }
      text = own.c_str();
    }
    unsigned long bytes = 0;
    C* resized = BlockBytes(length, &bytes) ? static_cast<C*>(gwGrealloc(old, bytes, texts_.tag)) : nullptr;
    if (!resized) return Fail(texts_.update);
    std::memcpy(resized, text, (length + 1) * sizeof(C));
    std::memcpy(Record(a, index), &resized, sizeof resized);
    return 0;
  }

  int Reset(gwarraytype* a) const {
    if (!a) return -1;
    if (Holds(a)) {
      for (int i = 0; i < a->count; ++i) gwGfree(At(a, i));
    }
    return gwarray_reset(a);
  }

  int Release(gwarraytype* a) const {
    if (!a) return -1;
    Reset(a);
    return gwarray_release(a);
  }

 private:
  static bool BlockBytes(size_t length, unsigned long* bytes) {
    const unsigned long long total = (static_cast<unsigned long long>(length) + 1) * sizeof(C);
    if (total > static_cast<unsigned long>(-1)) return false;
    *bytes = static_cast<unsigned long>(total);
    return true;
  }

  static int Fail(const char* text) {
    if (text) ReportError(-2, text);
    return -2;
  }

  C* Copy(const C* text, const char* failureText) const {
    const size_t length = std::char_traits<C>::length(text);
    unsigned long bytes = 0;
    C* copy = BlockBytes(length, &bytes) ? static_cast<C*>(gwGmalloc(bytes, texts_.tag)) : nullptr;
    if (!copy) {
      Fail(failureText);
      return nullptr;
    }
    std::memcpy(copy, text, (length + 1) * sizeof(C));
    return copy;
  }

  StringFamilyTexts texts_;
};

}  // namespace gwarray
}  // namespace qt

#endif
