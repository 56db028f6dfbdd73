// Dynamic arrays that cross module boundaries: a caller-owned header that
// points to one global-memory block (gwGmalloc and kin) of fixed-size
// records stored back to back, with no spare room.
//
// Families: gwarray_ (records of any size), gwszarray_ (8-bit strings),
// gwWszarray_ (wide strings), gwlongarray_ (signed 32-bit values). The
// string families hold one pointer per record to a string block of their
// own, which the array owns.
//
// Results: 0 for success, -1 for an index out of range or a missing or
// unusable argument, -2 when memory ran out, -3 for mismatched record sizes.
// Record-block growth failures leave the array empty and are reported as
// "<function>() out of memory" through the frame's error hook (except in
// the gwWszarray_ family, which fails silently).
#ifndef QUILTOOL_GWARRAY_H
#define QUILTOOL_GWARRAY_H

#include <utility>
#include <vector>

#include "qn_wintypes.h"
#include "quiltool_export.h"

struct gwarraytype {
  void* data;      // null until the first record, and after a reset
  int count;       // records held
  int recordSize;  // bytes per record, fixed by the init function
};

// ---- gwarray_: records of any size ----

// Zeroes the header and fixes the record size (-1 for a null header or a
// record size below 1, leaving the header zeroed).
QT_API int gwarray_init(gwarraytype* array, int recordSize);
QT_API int gwarray_append(gwarraytype* array, const void* record);
// Appends all of other's records with one reallocation; 0 when other is
// empty, -3 when the record sizes differ.
QT_API int gwarray_append_array(gwarraytype* array, const gwarraytype* other);
// An index at or beyond count appends; a negative index is -1.
QT_API int gwarray_insert(gwarraytype* array, int index, const void* record);
// The block is not shrunk.
QT_API int gwarray_delete(gwarraytype* array, int index);
// Out of range: out is filled with recordSize zero bytes and -1 returned.
QT_API int gwarray_get(const gwarraytype* array, int index, void* out);
// The record inside the block, valid until the array next changes; null
// when out of range.
QT_API void* gwarray_at(const gwarraytype* array, int index);
QT_API int gwarray_update(gwarraytype* array, int index, const void* record);

// Moves one record by delta places (negative: towards the front), shifting
// the ones in between. A delta of 0 returns 0 at once, whatever the index.
QT_API int gwarray_move(gwarraytype* array, int index, int delta);
// Moves the records at the given strictly ascending indexes by delta each,
// keeping their relative order. -1 for an empty list, for a list that is
// not strictly ascending or not inside the array, or when a record would
// leave the array. A delta of 0 returns 1 (not 0) without change.
QT_API int gwarray_move(gwarraytype* array, const std::vector<int>& indexes, int delta);

// Orders records 0..keys.size()-1 by ascending keys[i] (the key of record
// i). Unstable: records with equal keys end up in no defined order. -1 when
// the array is empty or there are more keys than records; -2 when no work
// space could be had.
QT_API int gwarray_sort(gwarraytype* array, const std::vector<int>& keys);
// pairs holds (position, key): the records at the listed positions are
// taken out in list order, ordered by ascending key and written back to the
// listed positions in list order. Unstable as above. -1 when the array is
// empty or a position is out of range or listed twice.
QT_API int gwarray_sort(gwarraytype* array, const std::vector<std::pair<int, int>>& pairs);

// Exchanges records i and j. Does nothing for a null header, equal indexes
// or an index outside the array.
QT_API void gwarray_swap(gwarraytype* array, int i, int j);

// Frees the block; the record size stays, so the array is usable at once.
QT_API int gwarray_reset(gwarraytype* array);
// Frees the block and zeroes the whole header.
QT_API int gwarray_release(gwarraytype* array);

// The debug monitor: a tool window of class "GWADEBWND" titled
// "Gwarray - Debug monitor" at (x, y) that shows "Initialized arrays: %ld".
// While it exists, every init and release of an array of any family
// changes that process-wide count; without it the count stands still.
// A null instance means this library. Calling it again while the monitor
// exists returns the same window.
// On Linux there are no windows: the monitor is a non-null pseudo handle
// that is never a real window, and the count is kept from the first call
// on for the rest of the process.
QT_API HWND gwarray_debugwnd_create(HINSTANCE instance, int x, int y);

// ---- gwszarray_: 8-bit strings (record size 8: one string pointer) ----

QT_API int gwszarray_init(gwarraytype* array);
// -1 for a null text; -2 (reported) when the copy cannot be allocated.
QT_API int gwszarray_append(gwarraytype* array, const char* text);
QT_API int gwszarray_insert(gwarraytype* array, int index, const char* text);
// Appends a copy of each of other's strings in order; 0 (-1 for a missing
// array, -3 when other's records are not string pointers).
QT_API int gwszarray_append_array(gwarraytype* array, const gwarraytype* other);
QT_API int gwszarray_delete(gwarraytype* array, int index);
// buffer is emptied first; the copy is cut to size - 1 characters. -1 when
// out of range or the record holds no string.
QT_API int gwszarray_get(const gwarraytype* array, int index, char* buffer, int size);
QT_API int gwszarray_update(gwarraytype* array, int index, const char* text);
QT_API int gwszarray_reset(gwarraytype* array);
QT_API int gwszarray_release(gwarraytype* array);

// ---- gwWszarray_: wide strings (record size 8); memory failures are -2
// without a report ----

QT_API int gwWszarray_init(gwarraytype* array);
QT_API int gwWszarray_append(gwarraytype* array, const wchar_t* text);
QT_API int gwWszarray_insert(gwarraytype* array, int index, const wchar_t* text);
QT_API int gwWszarray_append_array(gwarraytype* array, const gwarraytype* other);
QT_API int gwWszarray_delete(gwarraytype* array, int index);
QT_API int gwWszarray_get(const gwarraytype* array, int index, wchar_t* buffer, int size);
// The string itself (owned by the array), null when out of range.
QT_API wchar_t* gwWszarray_at(const gwarraytype* array, int index);
QT_API int gwWszarray_update(gwarraytype* array, int index, const wchar_t* text);
QT_API int gwWszarray_reset(gwarraytype* array);
QT_API int gwWszarray_release(gwarraytype* array);
// Index of the first string equal to text, or -1. asFileNames compares as
// paths with FileNamesAreSame and ignores caseSensitive; otherwise a
// case-insensitive comparison folds only the letters A-Z, as the C
// runtime's _wcsicmp does in its default locale.
QT_API int gwWszarray_find(const gwarraytype* array, const wchar_t* text, bool caseSensitive, bool asFileNames);
// Appends only when gwWszarray_find finds nothing; 0 when already held.
QT_API int gwWszarray_append_unique(gwarraytype* array, const wchar_t* text, bool caseSensitive, bool asFileNames);
QT_API int gwWszarray_append_array_unique(gwarraytype* array, const gwarraytype* other, bool caseSensitive,
                                          bool asFileNames);
// Replaces the array's contents with the lines of text, each at most
// lineLength - 1 characters: lines end at a carriage return (one line feed
// after it is skipped); longer lines wrap after the last blank, comma or
// semicolon that fits, or are cut hard. More than 100000 lines: the array
// is left empty and -1 returned. -1 also for a null text or a lineLength
// below 2 (the array is then left as it was).
QT_API int gwWszarray_parse_memo(gwarraytype* array, const wchar_t* text, int lineLength);

// ---- gwlongarray_: signed 32-bit values (record size 4) ----

QT_API int gwlongarray_init(gwarraytype* array);
QT_API int gwlongarray_append(gwarraytype* array, LONG value);
QT_API int gwlongarray_append_array(gwarraytype* array, const gwarraytype* other);
QT_API int gwlongarray_delete(gwarraytype* array, int index);
// Out of range: *value is set to 0 and -1 returned.
QT_API int gwlongarray_get(const gwarraytype* array, int index, LONG* value);
QT_API int gwlongarray_update(gwarraytype* array, int index, LONG value);
QT_API int gwlongarray_reset(gwarraytype* array);
QT_API int gwlongarray_release(gwarraytype* array);
// The value at index, 0 when out of range (as is a stored 0).
QT_API LONG gwlongarray_get_at(const gwarraytype* array, int index);
// First index at or after start (a negative start counts as 0), or -1.
QT_API int gwlongarray_find_index(const gwarraytype* array, LONG value, int start);
QT_API int gwlongarray_append_unique(gwarraytype* array, LONG value);
// Deletes, for each value of values in order, the first record holding it.
QT_API int gwlongarray_delete_array(gwarraytype* array, const gwarraytype* values);

#endif
