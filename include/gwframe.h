// The library frame: version check, module directories, global-memory
// blocks, message boxes, the debug trace, bounded string copies and
// case-insensitive comparison.
#ifndef QUILTOOL_GWFRAME_H
#define QUILTOOL_GWFRAME_H

#include <stddef.h>

#include "LngAppID.h"
#include "qn_wintypes.h"
#include "quiltool_export.h"
#include "ustr.h"

#define QUILTOOL_VERSION_NMB 20160101L

// 20160101 for a caller built against this library, -20160101 otherwise.
QT_API long quiltool_version_nmb(long version);

// Directory of a module's file, without a trailing separator; 0 or -1.
// A null module is this library. On Linux a module is a dlopen() handle and
// a module name is looked up among the loaded objects (RTLD_NOLOAD).
QT_API int GetModuleDirectory(HMODULE module, wchar_t* buffer, int size);
QT_API int GetModuleDirectory(HMODULE module, ustr& result);
QT_API int GetModuleDirectory(HMODULE module, const wchar_t* tail, wchar_t* buffer, int size);
QT_API int GetModuleDirectory(HMODULE module, const wchar_t* tail, ustr& result);
QT_API int GetModuleDirectory(const wchar_t* moduleFileName, const wchar_t* tail, wchar_t* buffer, int size);
QT_API int GetModuleDirectory(const wchar_t* moduleFileName, const wchar_t* tail, ustr& result);

// Movable global-memory blocks (Windows: Global*; Linux: heap blocks with a
// header by which the block is found again from its pointer).
QT_API void* gwGmalloc(unsigned long size, int tag);
QT_API void* gwGrealloc(void* block, unsigned long size, int tag);
QT_API void* gwGfree(void* block);
QT_API void* gwGmallocH(unsigned long size, void** handle);

// Message boxes; results are the button codes IDOK, IDCANCEL, IDYES, IDNO,
// or 0 when the box could not be shown.
QT_API int gwmsgbox(HWND owner, const wchar_t* text, unsigned int style);
QT_API void gwmsg(HWND owner, const wchar_t* text);
QT_API void gwmsg(HWND owner, const char* text);
QT_API int gwokcancelmsg(HWND owner, const wchar_t* text);
QT_API int gwyesnocancelmsg(HWND owner, const wchar_t* text);
QT_API int gwyesnomsg(HWND owner, const wchar_t* text);
QT_API int gwyesnomsg(HWND owner, Lng::AppID app, const wchar_t* text);
QT_API void gwsetmsgboxlng(const char* ok, const char* cancel, const char* yes, const char* no);
QT_API void gwsetmsgboxmode(int mode);

// Appends one printf-formatted line to GWDEBUG.TXT in the current directory;
// the first call of a process starts the file anew.
QT_API void gwdebug(const char* format, ...);

// Bounded copies: size is the destination's capacity in characters,
// terminator included; truncation is silent and the result is always 0.
QT_API int QN_strcpy_s(char* dst, size_t size, const char* src, bool = false);
QT_API int QN_strcat_s(char* dst, size_t size, const char* src, bool = false);
QT_API int QN_wcscpy_s(wchar_t* dst, size_t size, const wchar_t* src, bool = false);
QT_API int QN_wcscat_s(wchar_t* dst, size_t size, const wchar_t* src, bool = false);
// Returns the length of the whole formatted text, which may exceed what fit.
QT_API int QN_sprintf_s(char* dst, size_t size, const char* format, ...);
QT_API int QN_swprintf_s(wchar_t* dst, size_t size, const wchar_t* format, ...);

// Case-insensitive order; each character upper-cased alone (8-bit
// characters sign-extended first).
QT_API int qn_stricmp(const char* a, const char* b);
QT_API int qn_wcsicmp(const wchar_t* a, const wchar_t* b);

// Shared solid pens and brushes in system colours; at most 20 of each are
// ever created. They belong to the library: never delete them.
QT_API HPEN gwpen(int sysColorIndex);
QT_API HBRUSH gwbrush(int sysColorIndex);
QT_API void gwrelease();

// Copies text into a buffer of size characters, dropping trailing blanks;
// a null text gives an empty buffer.
QT_API char* gwmakesz(char* dst, const char* src, int size);
QT_API wchar_t* gwmakeszw(wchar_t* dst, const wchar_t* src, int size);

#endif
