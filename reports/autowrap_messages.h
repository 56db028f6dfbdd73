// The texts of AutoWrap's failure messages.
#ifndef QUILTOOL_REPORTS_AUTOWRAP_MESSAGES_H
#define QUILTOOL_REPORTS_AUTOWRAP_MESSAGES_H

#include <string>

#include "MsExcel.h"

namespace qt {
namespace autowrap {

std::wstring NullObjectText();
std::wstring LookupFailedText(const wchar_t* name, HRESULT code);
std::wstring InvokeFailedText(const wchar_t* name, DISPID dispid, HRESULT code);

}  // namespace autowrap
}  // namespace qt

#endif
