#include <cwchar>

#include "FileNames.h"
#include "core/gwarray_strings.h"
#include "gwarray.h"

namespace {

// This family fails silently: no text of its own reaches the error hook.
const qt::gwarray::StringFamilyTexts kTexts = {nullptr, nullptr, nullptr, nullptr, nullptr, 1220};

const qt::gwarray::StringArray<wchar_t> kStrings(kTexts);

// Folds A-Z only, as the C runtime's _wcsicmp does in its default locale,
// so that both targets agree whatever locale the host has set.
wchar_t FoldAscii(wchar_t c) { return (c >= L'a' && c <= L'z') ? static_cast<wchar_t>(c - L'a' + L'A') : c; }

bool EqualIgnoringCase(const wchar_t* a, const wchar_t* b) {
  for (; *a && *b; ++a, ++b) {
    if (FoldAscii(*a) != FoldAscii(*b)) return false;
  }
  return *a == *b;
}

bool Matches(const wchar_t* held, const wchar_t* text, bool caseSensitive, bool asFileNames) {
  if (asFileNames) return FileNamesAreSame(held, text);
  if (caseSensitive) return std::wcscmp(held, text) == 0;
  return EqualIgnoringCase(held, text);
}

}  // namespace

int gwWszarray_init(gwarraytype* array) { return kStrings.Init(array); }
int gwWszarray_append(gwarraytype* array, const wchar_t* text) { return kStrings.Append(array, text); }
int gwWszarray_insert(gwarraytype* array, int index, const wchar_t* text) {
  return kStrings.Insert(array, index, text);
}
int gwWszarray_append_array(gwarraytype* array, const gwarraytype* other) {
  return kStrings.AppendArray(array, other);
}
int gwWszarray_delete(gwarraytype* array, int index) { return kStrings.Delete(array, index); }
int gwWszarray_get(const gwarraytype* array, int index, wchar_t* buffer, int size) {
  return kStrings.Get(array, index, buffer, size);
}
wchar_t* gwWszarray_at(const gwarraytype* array, int index) { return kStrings.At(array, index); }
int gwWszarray_update(gwarraytype* array, int index, const wchar_t* text) {
  return kStrings.Update(array, index, text);
}
int gwWszarray_reset(gwarraytype* array) { return kStrings.Reset(array); }
int gwWszarray_release(gwarraytype* array) { return kStrings.Release(array); }

int gwWszarray_find(const gwarraytype* array, const wchar_t* text, bool caseSensitive, bool asFileNames) {
  if (!text || !qt::gwarray::StringArray<wchar_t>::Holds(array)) return -1;
  for (int i = 0; i < array->count; ++i) {
    const wchar_t* held = kStrings.At(array, i);
    if (held && Matches(held, text, caseSensitive, asFileNames)) return i;
  }
  return -1;
}

int gwWszarray_append_unique(gwarraytype* array, const wchar_t* text, bool caseSensitive, bool asFileNames) {
  if (gwWszarray_find(array, text, caseSensitive, asFileNames) >= 0) return 0;
  return gwWszarray_append(array, text);
}

int gwWszarray_append_array_unique(gwarraytype* array, const gwarraytype* other, bool caseSensitive,
                                   bool asFileNames) {
  if (!qt::gwarray::StringArray<wchar_t>::Holds(array) || !qt::gwarray::Usable(other)) return -1;
  if (other->count > 0 && other->recordSize != qt::gwarray::kStringRecordSize) return -3;
  const int n = other->count;
  for (int i = 0; i < n; ++i) {
    if (const wchar_t* s = kStrings.At(other, i)) gwWszarray_append_unique(array, s, caseSensitive, asFileNames);
  }
  return 0;
}
