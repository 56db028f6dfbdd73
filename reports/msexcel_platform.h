// The component-library steps behind AutoWrap and MsExcel
// (msexcel_platform_win.cpp / msexcel_platform_posix.cpp). On Linux there is
// no component library: no class is found and no object exists.
#ifndef QUILTOOL_REPORTS_MSEXCEL_PLATFORM_H
#define QUILTOOL_REPORTS_MSEXCEL_PLATFORM_H

#include "MsExcel.h"

namespace qt {
namespace msexcel {
namespace platform {

struct ClassId {
  unsigned char bytes[16];
};

struct CallOutcome {
  enum Stage { Done, LookupFailed, InvokeFailed };
  Stage stage;
  HRESULT code;
  DISPID dispid;
};

// GetIDsOfNames, then Invoke with the arguments as the server expects them
// (last argument first); a property put names its value DISPID_PROPERTYPUT.
CallOutcome Call(int kind, VARIANT* result, IDispatch* object, const wchar_t* name, VARIANT* reversedArgs,
                 int argCount);

// CoInitialize on this thread; true when it must be matched by EndCom.
bool StartCom();
void EndCom();

HRESULT FindClass(const wchar_t* progId, ClassId* id);
// The running server's IDispatch: 0, -2 (none running) or -3 (no IDispatch).
int Attach(const ClassId& id, IDispatch** application);
// A new local-server instance.
HRESULT Start(const ClassId& id, IDispatch** application);
void Release(IDispatch* object);

void InitVariant(VARIANT* value);
void ClearVariant(VARIANT* value);
HRESULT CopyVariant(VARIANT* to, const VARIANT* from);
// A text VARIANT owning its own copy; false when out of memory.
bool MakeText(VARIANT* value, const wchar_t* text);
// to receives from converted to type (to is cleared first by the caller).
HRESULT Convert(VARIANT* to, const VARIANT* from, VARTYPE type);

}  // namespace platform
}  // namespace msexcel
}  // namespace qt

#endif
