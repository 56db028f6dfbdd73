// AutoWrap: one late-bound automation call. Its three failures are shown to
// the user with fixed texts and captions that support staff know by heart.
#include <cstdarg>
#include <cstdio>
#include <string>
#include <vector>

#include "MsExcel.h"
#include "core/boundary.h"
#include "core/msgbox_platform.h"
#include "qn_presenter.h"
#include "reports/autowrap_messages.h"
#include "reports/msexcel_platform.h"

namespace qt {
namespace autowrap {

namespace platform = qt::msexcel::platform;

namespace {

QnMessagePresenter& CurrentPresenter() {
  QnMessagePresenter* installed = qn_set_message_presenter(nullptr);
  qn_set_message_presenter(installed);
  return installed ? *installed : qt::msgbox::platform::DefaultPresenter();
}

std::wstring Hex8(unsigned long value) {
  char digits[16];
  std::snprintf(digits, sizeof digits, "%08lx", value & 0xFFFFFFFFul);
  return std::wstring(digits, digits + std::char_traits<char>::length(digits));
}

void Show(const std::wstring& text, const wchar_t* caption) {
  HWND focused = qt::msgbox::platform::FocusedWindow();
  CurrentPresenter().showMessage(nullptr, text.c_str(), caption, MB_OK | MB_ICONERROR | MB_TASKMODAL);
  qt::msgbox::platform::RestoreFocus(focused);
}

}  // namespace

std::wstring NullObjectText() { return L"NULL IDispatch passed to AutoWrap()"; }

std::wstring LookupFailedText(const wchar_t* name, HRESULT code) {
  return L"IDispatch::GetIDsOfNames(\"" + std::wstring(name ? name : L"") + L"\") failed w/err 0x" +
         Hex8(static_cast<unsigned long>(code));
}

std::wstring InvokeFailedText(const wchar_t* name, DISPID dispid, HRESULT code) {
  return L"IDispatch::Invoke(\"" + std::wstring(name ? name : L"") + L"\"=" + Hex8(static_cast<unsigned long>(dispid)) +
         L") failed w/err 0x" + Hex8(static_cast<unsigned long>(code));
}

HRESULT Run(int kind, VARIANT* result, IDispatch* object, const wchar_t* name, std::vector<VARIANT>& args) {
  if (result) platform::InitVariant(result);
  if (!object) {
    Show(NullObjectText(), L"Error");
    return E_POINTER;
  }
  // Invoke takes the arguments last first.
  std::vector<VARIANT> reversed(args.rbegin(), args.rend());
  const platform::CallOutcome outcome = platform::Call(kind, result, object, name ? name : L"",
                                                       reversed.empty() ? nullptr : reversed.data(),
                                                       static_cast<int>(reversed.size()));
  if (outcome.stage == platform::CallOutcome::LookupFailed) {
    Show(LookupFailedText(name, outcome.code), L"AutoWrap()");
  } else if (outcome.stage == platform::CallOutcome::InvokeFailed) {
    Show(InvokeFailedText(name, outcome.dispid, outcome.code), L"AutoWrap()");
  }
  return outcome.code;
}

}  // namespace autowrap
}  // namespace qt

HRESULT AutoWrap(int kind, VARIANT* result, IDispatch* object, const wchar_t* name, int argCount, ...) {
  std::vector<VARIANT> args;
  va_list marker;
  va_start(marker, argCount);
  // Read before anything can throw: va_end must follow on every path.
  bool readAll = true;
  try {
    for (int i = 0; i < argCount; ++i) args.push_back(va_arg(marker, VARIANT));
  } catch (...) {
    readAll = false;
  }
  va_end(marker);
  return qt::NoThrow<HRESULT>("AutoWrap", E_OUTOFMEMORY, [&]() -> HRESULT {
    if (!readAll) return E_OUTOFMEMORY;
    return qt::autowrap::Run(kind, result, object, name, args);
  });
}
