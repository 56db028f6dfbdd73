// Language texts: the application table, the language list, texts by
// (module, number, English default) and dialog captions and item texts.
#ifndef QUILTOOL_LNG_H
#define QUILTOOL_LNG_H

#include "LngAppID.h"
#include "qn_wintypes.h"
#include "quiltool_export.h"
#include "ustr.h"

namespace Lng {
QT_API AppID GetAppId(const wchar_t* tag);
QT_API ustr GetAppName(AppID id, bool shortName);
QT_API ustr GetAppTag(AppID id);
QT_API ustr GetInitialsForLanguageId(int languageId);

QT_API void init(short languageId);
QT_API ustr text(AppID id, int textId, const wchar_t* defaultText);
QT_API ustr makeDlgHeader(AppID textApp, int textId, const wchar_t* defaultText, AppID headerApp);
QT_API void setdlgheader(HWND window, const wchar_t* text, AppID headerApp);
QT_API void setdlgheader(AppID textApp, HWND window, int textId, const wchar_t* defaultText, AppID headerApp);
QT_API void setdlgitemtext(HWND dialog, int controlId, const ustr& text, bool addColon);
QT_API void setdlgitemtext(AppID textApp, HWND dialog, int controlId, int textId, const wchar_t* defaultText, bool addColon);
}  // namespace Lng

#endif
