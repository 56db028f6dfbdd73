// Path names of files.
#ifndef QUILTOOL_FILENAMES_H
#define QUILTOOL_FILENAMES_H

#include "quiltool_export.h"

// Whether two file names name the same file as far as their text tells
// (nothing on disk is looked at). Letter case never matters. Both '\' and
// '/' separate folders; "." segments, repeated separators and ".." after a
// folder name are resolved, and a "\\?\" prefix is dropped. Relative names
// are compared as they stand: "a\b" and "C:\x\a\b" differ. Two null names
// are the same; a null and a non-null name are not.
QT_API bool FileNamesAreSame(const wchar_t* a, const wchar_t* b);

// The extension of the last name in path, without its dot, cut to fit
// extensionLen characters (terminator included): "C:\Prj\Plant.EPJ" gives
// "EPJ". A last name without a dot gives "". Returns 0, or -1 for a null
// path or buffer or a length below 1.
QT_API int gwfileextension(const wchar_t* path, wchar_t* extension, int extensionLen);

#endif
