// Typed settings addressed by setting paths, over the store seam.
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <new>

#include "Registry.h"
#include "core/boundary.h"
#include "gwframe.h"
#include "qn_utf.h"
#include "settings/reg_internal.h"
#include "settings/regstore.h"

namespace qt_registry {

State& Reg() {
  static State state;
  return state;
}

void SplitSettingPath(const wchar_t* path, wchar_t* key, wchar_t* value) {
  wchar_t cut[kPathChars];
  QN_wcscpy_s(cut, kPathChars, path ? path : L"");
  for (wchar_t* p = cut; *p; ++p) {
    if (*p == L'/') *p = L'\\';
  }
  wchar_t* last = std::wcsrchr(cut, L'\\');
  if (!last) {
    key[0] = 0;
    QN_wcscpy_s(value, kPathChars, cut);
    return;
  }
  *last = 0;
  QN_wcscpy_s(key, kPathChars, cut);
  QN_wcscpy_s(value, kPathChars, last + 1);
}

bool OpenUserKey() {
  State& st = Reg();
  if (qt_reg::CreateKey(HKEY_CURRENT_USER, st.basePath, qt_reg::kKeyAllAccess, &st.userKey) == qt_reg::kOk &&
      st.userKey)
    return true;
  st.userKey = nullptr;
  return false;
}

// The key a call without a root means. A user key that could not be opened
// (a store that was briefly unreachable) is tried again on each use rather
// than leaving the application without settings until it restarts.
HKEY Base(HKEY root) {
  if (root) return root;
  State& st = Reg();
  if (!st.userKey && st.basePath[0]) OpenUserKey();
  return st.userKey;
}

namespace {

void Split(const wchar_t* path) { SplitSettingPath(path, Reg().keyPart, Reg().valuePart); }

}  // namespace

bool OpenForRead(HKEY root, const wchar_t* path, HKEY* key, DWORD* size) {
  State& st = Reg();
  Split(path);
  *key = nullptr;
  const HKEY base = Base(root);
  if (!base) return false;
  long rc = qt_reg::OpenKey(base, st.keyPart, qt_reg::kKeyQueryValue, key);
  // Only an open that reports success without a handle falls back to the
  // machine key; a failed open is the answer, so that settings without a
  // root come from the current user alone.
  if (rc == qt_reg::kOk && !*key && !root && st.machineKey)
    rc = qt_reg::OpenKey(st.machineKey, st.keyPart, qt_reg::kKeyQueryValue, key);
  if (rc != qt_reg::kOk || !*key) {
    *key = nullptr;
    return false;
  }
  DWORD type = 0;
  *size = 0;
  if (qt_reg::QueryValue(*key, st.valuePart, &type, nullptr, size) != qt_reg::kOk) {
    qt_reg::CloseKey(*key);
    *key = nullptr;
    return false;
  }
  return true;
}

bool RawRead(HKEY key, DWORD valueSize, BYTE* buffer, DWORD bufferSize) {
  if (valueSize > bufferSize) return false;
  DWORD size = bufferSize;
  return qt_reg::QueryValue(key, Reg().valuePart, nullptr, buffer, &size) == qt_reg::kOk;
}

bool ReadLimitedText(HKEY root, const wchar_t* path, DWORD limitBytes, wchar_t* out, int outChars) {
  qt_reg::ReadScope scope;
  HKEY key = nullptr;
  DWORD size = 0;
  if (!OpenForRead(root, path, &key, &size)) return false;
  // Two spare zero bytes keep the text terminated however the value ends.
  BYTE bytes[kRingChars * 2 + 2] = {0};
  if (limitBytes > kRingChars * 2) limitBytes = kRingChars * 2;
  const bool ok = RawRead(key, size, bytes, limitBytes);
  qt_reg::CloseKey(key);
  if (!ok) return false;
  qn_utf16le_to_wide(bytes, limitBytes, out, static_cast<size_t>(outChars), QN_UTF_STOP_AT_ZERO);
  return true;
}

}  // namespace qt_registry

using qt_registry::Reg;
using qt_registry::State;

namespace {

void CloseApplicationKey(HKEY* key) {
  if (!*key) return;
  qt_reg::FlushKey(*key);
  qt_reg::CloseKey(*key);
  *key = nullptr;
}

bool Write(HKEY root, const wchar_t* path, DWORD type, const BYTE* data, DWORD size) {
  State& st = Reg();
  qt_registry::SplitSettingPath(path, st.keyPart, st.valuePart);
  const HKEY base = qt_registry::Base(root);
  if (!base) return false;
  HKEY key = nullptr;
  if (qt_reg::OpenKey(base, st.keyPart, qt_reg::kKeyWrite, &key) != qt_reg::kOk &&
      qt_reg::CreateKey(base, st.keyPart, qt_reg::kKeyAllAccess, &key) != qt_reg::kOk)
    return false;
  const long rc = qt_reg::SetValueExact(key, st.valuePart, type, data, size);
  qt_reg::CloseKey(key);
  return rc == qt_reg::kOk;
}

HKEY OpenForDelete(HKEY root, const wchar_t* path) {
  State& st = Reg();
  qt_registry::SplitSettingPath(path, st.keyPart, st.valuePart);
  const HKEY base = qt_registry::Base(root);
  HKEY key = nullptr;
  if (!base || qt_reg::OpenKey(base, st.keyPart, qt_reg::kKeyAllAccess, &key) != qt_reg::kOk) return nullptr;
  return key;
}

std::vector<std::pair<ustr_pre<32>, unsigned long>> Enumerate(HKEY root, const wchar_t* path, bool subKeys) {
  std::vector<std::pair<ustr_pre<32>, unsigned long>> result;
  qt_reg::ReadScope scope;
  State& st = Reg();
  qt_registry::SplitSettingPath(path, st.keyPart, st.valuePart);
  const HKEY base = qt_registry::Base(root);
  HKEY key = nullptr;
  if (!base || qt_reg::OpenKey(base, st.keyPart, qt_reg::kKeyRead, &key) != qt_reg::kOk) return result;
  struct Closer {
    HKEY key;
    ~Closer() { qt_reg::CloseKey(key); }
  } closer{key};
  DWORD keys = 0, values = 0;
  if (qt_reg::QueryInfo(key, &keys, nullptr, &values, nullptr) == qt_reg::kOk) {
    const DWORD count = subKeys ? keys : values;
    for (DWORD i = 0; i < count; ++i) {
      std::wstring name;
      DWORD type = 0;
      const long rc = subKeys ? qt_reg::EnumKey(key, i, &name) : qt_reg::EnumValue(key, i, &name, &type, nullptr);
      if (rc != qt_reg::kOk) break;
      // Subkeys carry the length of their name, values their type.
      const unsigned long number = subKeys ? static_cast<unsigned long>(qt_reg::Utf16Length(name.c_str())) : type;
      result.push_back(std::make_pair(ustr_pre<32>(name.c_str()), number));
    }
  }
  return result;
}

}  // namespace

bool RegInt_Init(const wchar_t* company, const wchar_t* application, const wchar_t* version) {
  State& st = Reg();
  CloseApplicationKey(&st.userKey);
  CloseApplicationKey(&st.machineKey);
  ++st.keyGeneration;
  st.basePath[0] = 0;
  QN_swprintf_s(st.basePath, qt_registry::kPathChars, L"Software\\%s\\%s\\%s\\", company ? company : L"Any company",
                application ? application : L"Any application", version ? version : L"Any version");
  if (!qt_registry::OpenUserKey()) return false;
  if (qt_reg::OpenKey(HKEY_LOCAL_MACHINE, st.basePath, qt_reg::kKeyQueryValue, &st.machineKey) != qt_reg::kOk) {
    st.machineKey = nullptr;
    return false;
  }
  return true;
}

namespace Registry {

int GetIntAtt(HKEY root, const wchar_t* path, int defaultValue) {
  qt_reg::ReadScope scope;
  HKEY key = nullptr;
  DWORD size = 0;
  if (!qt_registry::OpenForRead(root, path, &key, &size)) return defaultValue;
  BYTE bytes[4] = {0, 0, 0, 0};
  const bool ok = qt_registry::RawRead(key, size, bytes, sizeof bytes);
  qt_reg::CloseKey(key);
  if (!ok) return defaultValue;
  // The stored bytes are little-endian, whatever type the value has.
  const unsigned long v = bytes[0] | (bytes[1] << 8) | (bytes[2] << 16) | (static_cast<unsigned long>(bytes[3]) << 24);
  return static_cast<int>(static_cast<unsigned int>(v));
}

float GetFloatAtt(HKEY root, const wchar_t* path, float defaultValue) {
  wchar_t text[41] = {0};
  if (!qt_registry::ReadLimitedText(root, path, 80, text, 41)) return defaultValue;
  float value = 0;
  // A value that is there but no number reads as 0, not as the default.
  if (std::swscanf(text, L"%f", &value) != 1) return 0;
  return value;
}

ustr GetStringAtt(HKEY root, const wchar_t* path, const ustr& defaultValue) {
  // The default is the answer to any failure; when even its copy cannot be
  // made, empty text is all that is left.
  const auto giveDefault = [&](bool) {
    return qt::NoThrow<ustr>("Registry::GetStringAtt", ustr(), [&] { return defaultValue; });
  };
  return qt::NoThrowWith<ustr>("Registry::GetStringAtt", giveDefault, [&]() -> ustr {
    qt_reg::ReadScope scope;
    HKEY key = nullptr;
    DWORD size = 0;
    if (!qt_registry::OpenForRead(root, path, &key, &size)) return defaultValue;
    struct Closer {
      HKEY key;
      ~Closer() { qt_reg::CloseKey(key); }
    } closer{key};
    const wchar_t* valueName = Reg().valuePart;
    DWORD needed = 0;
    ustr result;
    if (qt_reg::GetSzValue(key, valueName, nullptr, &needed) != qt_reg::kOk || needed < 2) return defaultValue;
    wchar_t* buffer = result.buffer(needed / 2 - 1);
    if (qt_reg::GetSzValue(key, valueName, buffer, &needed) != qt_reg::kOk) return defaultValue;
    result.fixLength();
    return result;
  });
}

wchar_t* GetStringAtt(HKEY root, const wchar_t* path, wchar_t* defaultValue) {
  qt_reg::ReadScope scope;
  State& st = Reg();
  HKEY key = nullptr;
  DWORD size = 0;
  if (!qt_registry::OpenForRead(root, path, &key, &size)) return defaultValue;
  // The counter steps by two, so only the odd buffers are used and a
  // result stays valid for the next four calls; callers depend on that.
  const int index = (st.ringCounter + 1) % qt_registry::kRingSize;
  st.ringCounter = index + 1;
  wchar_t* out = st.ring[index];
  std::memset(out, 0, sizeof st.ring[index]);
  BYTE bytes[qt_registry::kRingChars + 2] = {0};
  // 1024 bytes at most: a longer value (a terminated text of more than 511
  // characters) gives the default.
  const bool ok = qt_registry::RawRead(key, size, bytes, qt_registry::kRingChars);
  qt_reg::CloseKey(key);
  if (!ok) return defaultValue;
  qn_utf16le_to_wide(bytes, qt_registry::kRingChars, out, qt_registry::kRingChars, QN_UTF_STOP_AT_ZERO);
  return out;
}

bool SetIntAtt(HKEY root, const wchar_t* path, int value) {
  const unsigned int v = static_cast<unsigned int>(value);
  const BYTE bytes[4] = {static_cast<BYTE>(v), static_cast<BYTE>(v >> 8), static_cast<BYTE>(v >> 16),
                         static_cast<BYTE>(v >> 24)};
  return Write(root, path, REG_DWORD, bytes, 4);
}

bool SetStringAtt(HKEY root, const wchar_t* path, const wchar_t* value) {
  if (!value) return false;
  return qt::NoThrow<bool>("Registry::SetStringAtt", false, [&] {
    // Stored without its terminating zero, as the suite always has.
    const std::vector<BYTE> bytes = qt_reg::ToUtf16Bytes(value, false);
    return Write(root, path, REG_SZ, bytes.data(), static_cast<DWORD>(bytes.size()));
  });
}

bool SetFloatAtt(HKEY root, const wchar_t* path, float value) {
  wchar_t text[40] = {0};
  QN_swprintf_s(text, 40, L"%f", static_cast<double>(value));
  return SetStringAtt(root, path, text);
}

bool DeleteAtt(HKEY root, const wchar_t* path) {
  HKEY key = OpenForDelete(root, path);
  if (!key) return false;
  const long rc = qt_reg::DeleteValue(key, Reg().valuePart);
  qt_reg::CloseKey(key);
  return rc == qt_reg::kOk;
}

bool DeleteKey(HKEY root, const wchar_t* path) {
  HKEY key = OpenForDelete(root, path);
  if (!key) return false;
  const long rc = qt_reg::DeleteKey(key, L"");
  qt_reg::CloseKey(key);
  return rc == qt_reg::kOk;
}

std::vector<std::pair<ustr_pre<32>, unsigned long>> EnumerateSubKeys(HKEY root, const wchar_t* path) {
  using Listing = std::vector<std::pair<ustr_pre<32>, unsigned long>>;
  return qt::NoThrow<Listing>("Registry::EnumerateSubKeys", Listing(), [&] { return Enumerate(root, path, true); });
}

std::vector<std::pair<ustr_pre<32>, unsigned long>> EnumerateValues(HKEY root, const wchar_t* path) {
  using Listing = std::vector<std::pair<ustr_pre<32>, unsigned long>>;
  return qt::NoThrow<Listing>("Registry::EnumerateValues", Listing(), [&] { return Enumerate(root, path, false); });
}

}  // namespace Registry
