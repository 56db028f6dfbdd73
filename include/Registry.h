// Settings: the application key, typed values addressed by setting paths
// ("Developer/ShowStringIDs"), suite-wide values and window positions.
//
// Windows keeps them in the registry. Linux keeps them in a settings store
// of the same shape (roots, case-insensitive keys, typed values with the
// registry's data bytes).
#ifndef QUILTOOL_REGISTRY_H
#define QUILTOOL_REGISTRY_H

#include <utility>
#include <vector>

#include "qn_wintypes.h"
#include "quiltool_export.h"
#include "ustr.h"

// Chooses the application key "Software\company\application\version\";
// null arguments become "Any company", "Any application", "Any version".
QT_API bool RegInt_Init(const wchar_t* company, const wchar_t* application, const wchar_t* version);

// A null root is the application key of the current user. Readers never
// fail: they return the default. Writers and deleters return true on success.
namespace Registry {
QT_API int GetIntAtt(HKEY root, const wchar_t* path, int defaultValue);
QT_API float GetFloatAtt(HKEY root, const wchar_t* path, float defaultValue);
QT_API ustr GetStringAtt(HKEY root, const wchar_t* path, const ustr& defaultValue);
// Returns a pointer into a small ring of library buffers (valid for the next
// four such calls), or defaultValue itself.
QT_API wchar_t* GetStringAtt(HKEY root, const wchar_t* path, wchar_t* defaultValue);
QT_API bool SetIntAtt(HKEY root, const wchar_t* path, int value);
QT_API bool SetFloatAtt(HKEY root, const wchar_t* path, float value);
QT_API bool SetStringAtt(HKEY root, const wchar_t* path, const wchar_t* value);
QT_API bool DeleteAtt(HKEY root, const wchar_t* path);
// Deletes the key named by the path without its last part ("A/B" deletes
// "A", "A/B/" deletes "A\B"); the key must have no subkeys.
QT_API bool DeleteKey(HKEY root, const wchar_t* path);
// The subkeys (each with the length of its name) or the values (each with
// its registry type) of the key a path names. As with DeleteKey, the last
// part of the path is dropped: "Grid/" lists "Grid", "Grid/x" lists "Grid".
QT_API std::vector<std::pair<ustr_pre<32>, unsigned long>> EnumerateSubKeys(HKEY root, const wchar_t* path);
QT_API std::vector<std::pair<ustr_pre<32>, unsigned long>> EnumerateValues(HKEY root, const wchar_t* path);
}  // namespace Registry

// Suite-wide values under "Software\Velmora\Quillon".
namespace QnRegistry {
QT_API int GetActiveLanguageId();
QT_API const wchar_t* GetLocalDataDir();
QT_API const wchar_t* GetFixedFontName();
QT_API const wchar_t* GetVariableFontName();
}  // namespace QnRegistry

// Window positions kept as text under "<name>\Position", "<name>\Show",
// "<name>\MinMax". The readers check that the window would land on a
// connected monitor. Linux has no windows: the readers only read and check
// (and fail when given a window), the writers have nothing to save.
QT_API bool Reg_GetWindowPos(HKEY root, const wchar_t* name, HWND window, RECT* rect, int* showCommand, bool checkMonitor);
QT_API bool Reg_SetWindowPos(HKEY root, const wchar_t* name, HWND window);
QT_API bool Reg_GetWindowPosOnly(HKEY root, const wchar_t* name, HWND window, bool* minMax);
QT_API bool Reg_SetWindowPosOnly(HKEY root, const wchar_t* name, HWND window, bool minMax);

#endif
