#include "core/gwarray_strings.h"
#include "gwarray.h"

namespace {

// The record block's failures are those of gwarray_append / gwarray_insert,
// which these functions are built on.
const qt::gwarray::StringFamilyTexts kTexts = {
    "gwszarray_append() out of memory", "gwszarray_insert() out of memory", "gwszarray_update() out of memory",
    "gwarray_append() out of memory",   "gwarray_insert() out of memory",   1210};

const qt::gwarray::StringArray<char> kStrings(kTexts);

}  // namespace

int gwszarray_init(gwarraytype* array) { return kStrings.Init(array); }
int gwszarray_append(gwarraytype* array, const char* text) { return kStrings.Append(array, text); }
int gwszarray_insert(gwarraytype* array, int index, const char* text) { return kStrings.Insert(array, index, text); }
int gwszarray_append_array(gwarraytype* array, const gwarraytype* other) { return kStrings.AppendArray(array, other); }
int gwszarray_delete(gwarraytype* array, int index) { return kStrings.Delete(array, index); }
int gwszarray_get(const gwarraytype* array, int index, char* buffer, int size) {
  return kStrings.Get(array, index, buffer, size);
}
int gwszarray_update(gwarraytype* array, int index, const char* text) { return kStrings.Update(array, index, text); }
int gwszarray_reset(gwarraytype* array) { return kStrings.Reset(array); }
int gwszarray_release(gwarraytype* array) { return kStrings.Release(array); }
