#include "fake_excel_log.h"

#include <cstdio>

namespace fake_excel {

Options& Settings() {
  static Options options;
  return options;
}

void Log(const std::wstring& line) {
  if (Settings().logFile.empty()) return;
  FILE* file = _wfopen(Settings().logFile.c_str(), L"ab");
  if (!file) return;
  const std::wstring withEnd = line + L"\n";
  const int size = WideCharToMultiByte(CP_UTF8, 0, withEnd.c_str(), static_cast<int>(withEnd.size()), nullptr, 0,
                                       nullptr, nullptr);
  std::string bytes(static_cast<size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, withEnd.c_str(), static_cast<int>(withEnd.size()), &bytes[0], size, nullptr,
                      nullptr);
  fwrite(bytes.data(), 1, bytes.size(), file);
  fclose(file);
}

std::wstring Describe(const VARIANT& value) {
  wchar_t buffer[64];
  switch (value.vt) {
    case VT_EMPTY: return L"EMPTY";
    case VT_I4: swprintf(buffer, 64, L"I4:%ld", static_cast<long>(value.lVal)); return buffer;
    case VT_R8: swprintf(buffer, 64, L"R8:%.17g", value.dblVal); return buffer;
    case VT_BOOL: swprintf(buffer, 64, L"BOOL:%d", static_cast<int>(value.boolVal)); return buffer;
    case VT_BSTR: return std::wstring(L"BSTR:") + (value.bstrVal ? value.bstrVal : L"");
    case VT_DISPATCH: return L"DISPATCH";
    default: swprintf(buffer, 64, L"VT%u", static_cast<unsigned>(value.vt)); return buffer;
  }
}

}  // namespace fake_excel
