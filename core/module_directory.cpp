#include <cwchar>

#include "core/frame_state.h"
#include "core/module_platform.h"
#include "gwframe.h"
#include "core/boundary.h"

namespace {

const int kNameBuffer = 260;

int DirectoryInto(HMODULE module, wchar_t* buffer, int size) {
  std::wstring name;
  if (!qt::module::platform::ModuleFileName(module ? module : qt::Frame().instance, &name)) return -1;
  if (name.size() >= static_cast<size_t>(kNameBuffer)) name.resize(kNameBuffer - 1);
  const size_t cut = name.rfind(qt::module::platform::PathSeparator());
  if (cut != std::wstring::npos) name.resize(cut);
  if (buffer && size > 0) {
    buffer[0] = 0;
    QN_wcscpy_s(buffer, static_cast<size_t>(size), name.c_str());
  }
  return 0;
}

int WithTail(HMODULE module, const wchar_t* tail, wchar_t* buffer, int size) {
  const int result = DirectoryInto(module, buffer, size);
  if (result == 0 && buffer && buffer[0] && tail && tail[0]) QN_wcscat_s(buffer, static_cast<size_t>(size), tail);
  return result;
}

int IntoUstr(int result, const wchar_t* buffer, ustr& out) {
  if (result == 0) out = buffer;
  return result;
}

}  // namespace

int GetModuleDirectory(HMODULE module, wchar_t* buffer, int size) {
  return qt::NoThrow<int>("GetModuleDirectory", -1, [&]() -> int {
    return DirectoryInto(module, buffer, size);
  });
}

int GetModuleDirectory(HMODULE module, ustr& result) {
  return qt::NoThrow<int>("GetModuleDirectory", -1, [&]() -> int {
    wchar_t buffer[kNameBuffer];
    return IntoUstr(DirectoryInto(module, buffer, kNameBuffer), buffer, result);
  });
}

int GetModuleDirectory(HMODULE module, const wchar_t* tail, wchar_t* buffer, int size) {
  return qt::NoThrow<int>("GetModuleDirectory", -1, [&]() -> int {
    return WithTail(module, tail, buffer, size);
  });
}

int GetModuleDirectory(HMODULE module, const wchar_t* tail, ustr& result) {
  return qt::NoThrow<int>("GetModuleDirectory", -1, [&]() -> int {
    wchar_t buffer[kNameBuffer];
    return IntoUstr(WithTail(module, tail, buffer, kNameBuffer), buffer, result);
  });
}

int GetModuleDirectory(const wchar_t* moduleFileName, const wchar_t* tail, wchar_t* buffer, int size) {
  return qt::NoThrow<int>("GetModuleDirectory", -1, [&]() -> int {
    // A name that is not loaded resolves to null, which is this library.
    HMODULE module = moduleFileName ? qt::module::platform::LoadedModule(moduleFileName) : nullptr;
    return WithTail(module, tail, buffer, size);
  });
}

int GetModuleDirectory(const wchar_t* moduleFileName, const wchar_t* tail, ustr& result) {
  return qt::NoThrow<int>("GetModuleDirectory", -1, [&]() -> int {
    wchar_t buffer[kNameBuffer];
    return IntoUstr(GetModuleDirectory(moduleFileName, tail, buffer, kNameBuffer), buffer, result);
  });
}
