// No component library on Linux: no class is ever found, so no object is
// ever made, and a call can only be reached with a pointer that is not one.
// The VARIANT helpers keep their meaning for the few types the wrapper uses,
// so that values built by callers are copied and freed alike everywhere.
#include <cstdlib>
#include <cwchar>
#include <string>

#include "reports/msexcel_platform.h"

namespace qt {
namespace msexcel {
namespace platform {

CallOutcome Call(int, VARIANT* result, IDispatch*, const wchar_t*, VARIANT*, int) {
  if (result) InitVariant(result);
  CallOutcome outcome;
  outcome.stage = CallOutcome::LookupFailed;
  outcome.code = E_NOTIMPL;
  outcome.dispid = 0;
  return outcome;
}

bool StartCom() { return false; }

void EndCom() {}

HRESULT FindClass(const wchar_t*, ClassId*) { return E_NOTIMPL; }

int Attach(const ClassId&, IDispatch** application) {
  *application = nullptr;
  return -2;
}

HRESULT Start(const ClassId&, IDispatch** application) {
  *application = nullptr;
  return E_NOTIMPL;
}

void Release(IDispatch*) {}

void InitVariant(VARIANT* value) {
  value->vt = VT_EMPTY;
  value->wReserved1 = value->wReserved2 = value->wReserved3 = 0;
  value->byref = nullptr;
}

void ClearVariant(VARIANT* value) {
  if (value->vt == VT_BSTR) std::free(value->bstrVal);
  InitVariant(value);
}

bool MakeText(VARIANT* value, const wchar_t* text) {
  const size_t length = std::wcslen(text);
  wchar_t* copy = static_cast<wchar_t*>(std::malloc((length + 1) * sizeof(wchar_t)));
  if (!copy) return false;
  std::wmemcpy(copy, text, length + 1);
  InitVariant(value);
  value->vt = VT_BSTR;
  value->bstrVal = copy;
  return true;
}

HRESULT CopyVariant(VARIANT* to, const VARIANT* from) {
  if (from->vt == VT_BSTR) return MakeText(to, from->bstrVal ? from->bstrVal : L"") ? S_OK : E_OUTOFMEMORY;
  // Objects cannot exist here; every other type the wrapper uses is a plain value.
  if (from->vt == VT_DISPATCH) return E_NOTIMPL;
  *to = *from;
  return S_OK;
}

HRESULT Convert(VARIANT* to, const VARIANT* from, VARTYPE type) {
  double number = 0;
  switch (from->vt) {
    case VT_EMPTY: break;
    case VT_I4: number = from->lVal; break;
    case VT_R8: number = from->dblVal; break;
    case VT_BOOL: number = from->boolVal ? -1 : 0; break;
    case VT_BSTR:
      if (type == VT_BSTR) return CopyVariant(to, from);
      return E_NOTIMPL;
    default: return E_NOTIMPL;
  }
  InitVariant(to);
  switch (type) {
    case VT_I4: to->vt = VT_I4; to->lVal = static_cast<LONG>(number < 0 ? number - 0.5 : number + 0.5); return S_OK;
    case VT_R8: to->vt = VT_R8; to->dblVal = number; return S_OK;
    case VT_BOOL: to->vt = VT_BOOL; to->boolVal = number != 0 ? VARIANT_TRUE : VARIANT_FALSE; return S_OK;
    case VT_BSTR: {
      std::wstring text;
      if (from->vt != VT_EMPTY) {
        wchar_t buffer[64];
        std::swprintf(buffer, 64, from->vt == VT_R8 ? L"%.15g" : L"%.0f", number);
        text = buffer;
      }
      return MakeText(to, text.c_str()) ? S_OK : E_OUTOFMEMORY;
    }
    default: return E_NOTIMPL;
  }
}

}  // namespace platform
}  // namespace msexcel
}  // namespace qt
