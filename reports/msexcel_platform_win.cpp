#include <windows.h>
#include <ole2.h>

#include <cstring>

#include "reports/msexcel_platform.h"

namespace qt {
namespace msexcel {
namespace platform {

CallOutcome Call(int kind, VARIANT* result, IDispatch* object, const wchar_t* name, VARIANT* reversedArgs,
                 int argCount) {
  CallOutcome outcome;
  outcome.stage = CallOutcome::Done;
  outcome.dispid = 0;
  LPOLESTR names[1] = {const_cast<LPOLESTR>(name)};
  outcome.code = object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &outcome.dispid);
  if (FAILED(outcome.code)) {
    outcome.stage = CallOutcome::LookupFailed;
    return outcome;
  }
  DISPID namedPut = DISPID_PROPERTYPUT;
  DISPPARAMS params = {reversedArgs, nullptr, static_cast<UINT>(argCount), 0};
  if (kind & DISPATCH_PROPERTYPUT) {
    params.cNamedArgs = 1;
    params.rgdispidNamedArgs = &namedPut;
  }
  EXCEPINFO exception;
  std::memset(&exception, 0, sizeof exception);
  UINT badArgument = 0;
  outcome.code = object->Invoke(outcome.dispid, IID_NULL, LOCALE_SYSTEM_DEFAULT, static_cast<WORD>(kind), &params,
                                result, &exception, &badArgument);
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrDescription);
  SysFreeString(exception.bstrHelpFile);
  if (FAILED(outcome.code)) outcome.stage = CallOutcome::InvokeFailed;
  return outcome;
}

bool StartCom() { return SUCCEEDED(CoInitialize(nullptr)); }

void EndCom() { CoUninitialize(); }

HRESULT FindClass(const wchar_t* progId, ClassId* id) {
  CLSID clsid;
  const HRESULT code = CLSIDFromProgID(progId, &clsid);
  if (SUCCEEDED(code)) std::memcpy(id->bytes, &clsid, sizeof clsid);
  return code;
}

int Attach(const ClassId& id, IDispatch** application) {
  *application = nullptr;
  CLSID clsid;
  std::memcpy(&clsid, id.bytes, sizeof clsid);
  IUnknown* running = nullptr;
  if (FAILED(GetActiveObject(clsid, nullptr, &running)) || !running) return -2;
  const HRESULT code = running->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(application));
  running->Release();
  if (FAILED(code) || !*application) {
    *application = nullptr;
    return -3;
  }
  return 0;
}

HRESULT Start(const ClassId& id, IDispatch** application) {
  *application = nullptr;
  CLSID clsid;
  std::memcpy(&clsid, id.bytes, sizeof clsid);
  return CoCreateInstance(clsid, nullptr, CLSCTX_LOCAL_SERVER, IID_IDispatch, reinterpret_cast<void**>(application));
}

void Release(IDispatch* object) { object->Release(); }

void InitVariant(VARIANT* value) { VariantInit(value); }

void ClearVariant(VARIANT* value) { VariantClear(value); }

HRESULT CopyVariant(VARIANT* to, const VARIANT* from) {
  VariantInit(to);
  return VariantCopy(to, const_cast<VARIANT*>(from));
}

bool MakeText(VARIANT* value, const wchar_t* text) {
  VariantInit(value);
  BSTR copy = SysAllocString(text);
  if (!copy) return false;
  value->vt = VT_BSTR;
  value->bstrVal = copy;
  return true;
}

HRESULT Convert(VARIANT* to, const VARIANT* from, VARTYPE type) {
  VariantInit(to);
  // The user's locale: a cell read as text looks as the user sees numbers.
  return VariantChangeTypeEx(to, const_cast<VARIANT*>(from), LOCALE_USER_DEFAULT, 0, type);
}

}  // namespace platform
}  // namespace msexcel
}  // namespace qt
