// The settings store on Windows is the registry: each operation is its
// advapi32 call.
#include "settings/regstore.h"

namespace qt_reg {

long OpenKey(HKEY parent, const wchar_t* subKey, DWORD access, HKEY* key) {
  if (!key) return kInvalidParameter;
  *key = nullptr;
  if (!parent) return kInvalidHandle;
  return RegOpenKeyExW(parent, subKey ? subKey : L"", 0, access, key);
}

long CreateKey(HKEY parent, const wchar_t* subKey, DWORD access, HKEY* key) {
  if (!key) return kInvalidParameter;
  *key = nullptr;
  if (!parent) return kInvalidHandle;
  wchar_t emptyClass[1] = {0};
  return RegCreateKeyExW(parent, subKey ? subKey : L"", 0, emptyClass, REG_OPTION_NON_VOLATILE, access, nullptr, key,
                         nullptr);
}

long CloseKey(HKEY key) { return key ? RegCloseKey(key) : kInvalidHandle; }

long FlushKey(HKEY key) { return key ? RegFlushKey(key) : kInvalidHandle; }

long QueryValue(HKEY key, const wchar_t* name, DWORD* type, BYTE* data, DWORD* size) {
  if (!key) return kInvalidHandle;
  return RegQueryValueExW(key, name, nullptr, type, data, size);
}

long SetValue(HKEY key, const wchar_t* name, DWORD type, const BYTE* data, DWORD size) {
  if (!key) return kInvalidHandle;
  return RegSetValueExW(key, name, 0, type, data, size);
}

long DeleteValue(HKEY key, const wchar_t* name) { return key ? RegDeleteValueW(key, name) : kInvalidHandle; }

long DeleteKey(HKEY key, const wchar_t* subKey) {
  return key ? RegDeleteKeyW(key, subKey ? subKey : L"") : kInvalidHandle;
}

long QueryInfo(HKEY key, DWORD* subKeys, DWORD* maxSubKeyLength, DWORD* values, DWORD* maxValueNameLength) {
  if (!key) return kInvalidHandle;
  return RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, subKeys, maxSubKeyLength, nullptr, values,
                          maxValueNameLength, nullptr, nullptr, nullptr);
}

long EnumKey(HKEY key, DWORD index, std::wstring* name) {
  if (!key || !name) return kInvalidHandle;
  // Key names are at most 255 characters.
  wchar_t buffer[256];
  DWORD length = 256;
  const long rc = RegEnumKeyExW(key, index, buffer, &length, nullptr, nullptr, nullptr, nullptr);
  if (rc == kOk) name->assign(buffer, length);
  return rc;
}

long EnumValue(HKEY key, DWORD index, std::wstring* name, DWORD* type, std::vector<BYTE>* data) {
  if (!key || !name) return kInvalidHandle;
  DWORD maxName = 0, maxData = 0;
  long rc = RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &maxName, &maxData,
                             nullptr, nullptr);
  if (rc != kOk) return rc;
  // Another writer may grow a value between the two calls; try again then.
  for (int attempt = 0; attempt < 4; ++attempt) {
    std::wstring buffer(maxName + 1, L'\0');
    std::vector<BYTE> bytes(maxData + 1);
    DWORD nameLength = maxName + 1, dataSize = maxData + 1, valueType = 0;
    rc = RegEnumValueW(key, index, &buffer[0], &nameLength, nullptr, &valueType, data ? bytes.data() : nullptr,
                       data ? &dataSize : nullptr);
    if (rc == kMoreData) {
      maxName = maxName * 2 + 256;
      maxData = maxData * 2 + 256;
      continue;
    }
    if (rc != kOk) return rc;
    name->assign(buffer.data(), nameLength);
    if (type) *type = valueType;
    if (data) data->assign(bytes.begin(), bytes.begin() + dataSize);
    return kOk;
  }
  return rc;
}

std::wstring ExpandEnvironmentText(const std::wstring& text) {
  const DWORD needed = ExpandEnvironmentStringsW(text.c_str(), nullptr, 0);
  if (needed == 0) return text;
  std::wstring out(needed, L'\0');
  const DWORD written = ExpandEnvironmentStringsW(text.c_str(), &out[0], needed);
  if (written == 0 || written > needed) return text;
  out.resize(written - 1);
  return out;
}

void BeginRead() {}
void EndRead() {}

long BeginWrite(HKEY root) { return root == HKEY_CURRENT_USER || root == HKEY_LOCAL_MACHINE ? kOk : kInvalidHandle; }
long EndWrite(HKEY root, bool) { return BeginWrite(root); }

std::string StoreProblem(HKEY) { return std::string(); }

std::string StoreFile(HKEY) { return std::string(); }

}  // namespace qt_reg
