// Helpers over the store seam that both targets share.
#include "settings/regstore.h"

#include <algorithm>
#include <new>

#include "qn_utf.h"

namespace qt_reg {

long ReadValue(HKEY key, const wchar_t* name, DWORD* type, std::vector<BYTE>* data) {
  if (!data) return kInvalidParameter;
  try {
    // The value may grow between asking its size and reading it.
    for (int attempt = 0; attempt < 4; ++attempt) {
      DWORD valueType = 0, size = 0;
      long rc = QueryValue(key, name, &valueType, nullptr, &size);
      if (rc != kOk) return rc;
      data->assign(size + 1, 0);
      rc = QueryValue(key, name, &valueType, data->data(), &size);
      if (rc == kMoreData) continue;
      if (rc != kOk) return rc;
      data->resize(size);
      if (type) *type = valueType;
      return kOk;
    }
    return kMoreData;
  } catch (const std::bad_alloc&) {
    return kNotEnoughMemory;
  }
}

long SetValueExact(HKEY key, const wchar_t* name, DWORD type, const BYTE* data, DWORD size) {
  if (type != REG_SZ && type != REG_EXPAND_SZ && type != REG_MULTI_SZ) return SetValue(key, name, type, data, size);
  try {
    std::vector<BYTE> guarded(data, data + (data ? size : 0));
    guarded.push_back(0xFF);
    guarded.push_back(0xFF);
    guarded.push_back(0xFF);
    return SetValue(key, name, type, guarded.data(), size);
  } catch (const std::bad_alloc&) {
    return kNotEnoughMemory;
  }
}

long GetSzValue(HKEY key, const wchar_t* name, wchar_t* buffer, DWORD* size) {
  if (buffer && !size) return kInvalidParameter;
  try {
    DWORD type = 0;
    std::vector<BYTE> bytes;
    const long rc = ReadValue(key, name, &type, &bytes);
    if (rc != kOk) return rc;
    if (type != REG_SZ && type != REG_EXPAND_SZ) return kUnsupportedType;
    std::wstring text = FromUtf16Bytes(bytes.data(), bytes.size());
    if (type == REG_EXPAND_SZ) text = ExpandEnvironmentText(text);
    const DWORD needed = static_cast<DWORD>(2 * (Utf16Length(text.c_str()) + 1));
    if (!size) return kOk;
    if (buffer && *size < needed) {
      *size = needed;
      return kMoreData;
    }
    if (buffer) std::copy(text.c_str(), text.c_str() + text.size() + 1, buffer);
    *size = needed;
    return kOk;
  } catch (const std::bad_alloc&) {
    return kNotEnoughMemory;
  }
}

long DeleteTree(HKEY parent, const wchar_t* subKey) {
  HKEY key = nullptr;
  long rc = OpenKey(parent, subKey, kKeyAllAccess, &key);
  if (rc != kOk) return rc;
  try {
    // Deleting shifts the indexes, so always take the first until none is left.
    std::wstring child;
    while ((rc = EnumKey(key, 0, &child)) == kOk) {
      rc = DeleteTree(key, child.c_str());
      if (rc != kOk) break;
    }
  } catch (const std::bad_alloc&) {
    rc = kNotEnoughMemory;
  }
  if (rc == kNoMoreItems) rc = DeleteKey(key, L"");
  CloseKey(key);
  return rc;
}

std::vector<BYTE> ToUtf16Bytes(const std::wstring& text, bool terminator) {
  // c_str() is followed by its zero, which becomes the terminator.
  const std::string bytes = qn_wide_to_utf16le(text.c_str(), text.size() + (terminator ? 1 : 0));
  return std::vector<BYTE>(bytes.begin(), bytes.end());
}

std::wstring FromUtf16Bytes(const BYTE* data, size_t size) { return qn_utf16le_to_wide(data, size, QN_UTF_STOP_AT_ZERO); }

size_t Utf16Length(const wchar_t* text) {
  size_t n = 0;
  if (!text) return 0;
  for (; *text; ++text) {
    const unsigned long cp = static_cast<unsigned long>(*text);
    n += cp > 0xFFFF ? 2 : 1;
  }
  return n;
}

}  // namespace qt_reg
