// The key operations of the settings store. Windows answers them with the
// registry itself (regstore_platform_win.cpp); Linux with a SQLite store of
// the same shape (regstore_platform_posix.cpp over sqlite_store_posix.h).
// Everything above this seam is portable.
//
// This header is the feature's platform declaration and its portable front
// in one: the platform step (OpenKey through StoreFile below) keeps the
// namespace qt_reg that the whole library calls it by, and the two
// regstore_platform_*.cpp files implement it in this order; the portable
// helpers over it are in regstore.cpp.
//
// The functions follow their advapi32 namesakes: results are Win32 error
// codes (0 success), handles are HKEYs that CloseKey releases, the
// predefined roots HKEY_CURRENT_USER and HKEY_LOCAL_MACHINE are always
// open, value data is the registry's byte form (strings UTF-16LE).
//
// Exported for the quiltool program and the tests; modules of the suite
// use include/Registry.h.
#ifndef QUILTOOL_SETTINGS_REGSTORE_H
#define QUILTOOL_SETTINGS_REGSTORE_H

#include <cstddef>
#include <string>
#include <vector>

#include "qn_wintypes.h"

namespace qt_reg {

// Win32 error codes as the store reports them.
enum : long {
  kOk = 0,
  kFileNotFound = 2,       // no such key or value
  kAccessDenied = 5,       // handle lacks the right, read-only store, key has subkeys
  kInvalidHandle = 6,
  kNotEnoughMemory = 8,
  kInvalidParameter = 87,
  kBadPathname = 161,
  kMoreData = 234,
  kNoMoreItems = 259,
  kBadDb = 1009,           // the store file is damaged or not a store
  kRegistryIoFailed = 1016,
  kKeyDeleted = 1018,
  kUnsupportedType = 1630,
};

// Access rights, as the registry spells them.
const DWORD kKeyQueryValue = 0x0001;
const DWORD kKeySetValue = 0x0002;
const DWORD kKeyCreateSubKey = 0x0004;
const DWORD kKeyEnumerateSubKeys = 0x0008;
const DWORD kKeyDelete = 0x00010000;
const DWORD kKeyRead = 0x00020019;
const DWORD kKeyWrite = 0x00020006;
const DWORD kKeyAllAccess = 0x000F003F;

// RegOpenKeyExW / RegCreateKeyExW (non-volatile, empty class). An empty
// subKey opens a new handle to parent itself.
long OpenKey(HKEY parent, const wchar_t* subKey, DWORD access, HKEY* key);
long CreateKey(HKEY parent, const wchar_t* subKey, DWORD access, HKEY* key);
long CloseKey(HKEY key);
long FlushKey(HKEY key);

// RegQueryValueExW: with data null only type and size are reported; a
// buffer that is too small gives kMoreData and the size needed.
long QueryValue(HKEY key, const wchar_t* name, DWORD* type, BYTE* data, DWORD* size);
long SetValue(HKEY key, const wchar_t* name, DWORD type, const BYTE* data, DWORD size);
long DeleteValue(HKEY key, const wchar_t* name);
// RegDeleteKeyW: the subkey (or, for an empty name, the key itself) must
// have no subkeys.
long DeleteKey(HKEY key, const wchar_t* subKey);

// RegQueryInfoKeyW; name lengths in characters without the terminator.
long QueryInfo(HKEY key, DWORD* subKeys, DWORD* maxSubKeyLength, DWORD* values, DWORD* maxValueNameLength);
// RegEnumKeyExW / RegEnumValueW by index; kNoMoreItems past the end.
// Subkeys come in the registry's order (case-insensitive alphabetical),
// values in the order they were first written.
long EnumKey(HKEY key, DWORD index, std::wstring* name);
long EnumValue(HKEY key, DWORD index, std::wstring* name, DWORD* type, std::vector<BYTE>* data);

// Marks a group of reads that belong together (Linux: they share one read
// transaction and see one state of the store). Groups nest; a write ends
// the shared transaction early. Windows has nothing to group.
void BeginRead();
void EndRead();
struct ReadScope {
  ReadScope() { BeginRead(); }
  ~ReadScope() { EndRead(); }
  ReadScope(const ReadScope&) = delete;
  ReadScope& operator=(const ReadScope&) = delete;
};

// A write group on one root's store: the changes made until EndWrite are
// kept or undone as a whole (Linux: one transaction, which other processes
// see at once or not at all). The registry has no such transactions, so on
// Windows both do nothing and EndWrite(root, false) undoes nothing: callers
// check everything they can before the first change. Groups do not nest.
long BeginWrite(HKEY root);
long EndWrite(HKEY root, bool keep);

// Linux only: why the root's store cannot be used, naming its file (for
// instance that it is damaged and no longer written, or another program's
// database), after a call failed with kBadDb; "" when nothing is known
// against it, and always on Windows. The same text goes once to the debug
// trace (gwdebug).
std::string StoreProblem(HKEY root);

// --- portable helpers over the seam (regstore.cpp) ---

// What RegGetValueW(key, null, name, RRF_RT_REG_SZ, ...) answers: a REG_SZ
// value (or a REG_EXPAND_SZ one, expanded) as text with its terminating
// zero, the size counted in bytes of UTF-16 text (the buffer holds size / 2
// wide characters). Unlike RegGetValueW, the size asked for beforehand
// always has room for the terminator, also for a text stored without one,
// as SetStringAtt stores texts: the second call then gets the whole text.
long GetSzValue(HKEY key, const wchar_t* name, wchar_t* buffer, DWORD* size);
// %NAME% replaced from the environment (ExpandEnvironmentStringsW).
std::wstring ExpandEnvironmentText(const std::wstring& text);

// SetValue that stores exactly size bytes. The registry counts a
// terminator the caller left out of a text's size whenever one follows the
// data in memory; this passes the data with a guard character behind it.
long SetValueExact(HKEY key, const wchar_t* name, DWORD type, const BYTE* data, DWORD size);

// A whole value, whatever its size.
long ReadValue(HKEY key, const wchar_t* name, DWORD* type, std::vector<BYTE>* data);
// Deletes a key with everything below it.
long DeleteTree(HKEY parent, const wchar_t* subKey);

// Text in the registry's byte form: UTF-16 little-endian, characters
// outside the BMP as surrogate pairs.
std::vector<BYTE> ToUtf16Bytes(const std::wstring& text, bool terminator);
// Decodes UTF-16LE up to the first zero character or the end.
std::wstring FromUtf16Bytes(const BYTE* data, size_t size);
// Number of UTF-16 code units the text takes.
size_t Utf16Length(const wchar_t* text);

// Linux only: the file holding a root's store ("" elsewhere, or for any
// other root). Reads the environment the first time a store is used.
std::string StoreFile(HKEY root);

}  // namespace qt_reg

#endif
