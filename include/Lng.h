// Language texts: the application table, the language list, texts by
// (module, number, English default) and dialog captions and item texts.
#ifndef QUILTOOL_LNG_H
#define QUILTOOL_LNG_H

#include "CountryData.h"
#include "LngAppID.h"
#include "qn_wintypes.h"
#include "quiltool_export.h"
#include "ustr.h"

namespace Lng {
// Application table. An empty tag names row 0; unknown tags give
// APP_UNKNOWN, unknown ids an empty name or tag.
QT_API AppID GetAppId(const wchar_t* tag);
QT_API ustr GetAppName(AppID id, bool shortName);
QT_API ustr GetAppTag(AppID id);
// "EN", "DE", "FR", "RU", "CN", or empty.
QT_API ustr GetInitialsForLanguageId(int languageId);

// Loads the language files beside this library for languageId; does
// nothing when that language is already loaded.
QT_API void init(short languageId);
// The text in the loaded language, else defaultText. Unknown modules take
// the main module's texts.
QT_API ustr text(AppID id, int textId, const wchar_t* defaultText);
// "<short name of headerApp> - <text>", without the separator when either
// part is empty.
QT_API ustr makeDlgHeader(AppID textApp, int textId, const wchar_t* defaultText, AppID headerApp);
QT_API void setdlgheader(HWND window, const wchar_t* text, AppID headerApp);
QT_API void setdlgheader(AppID textApp, HWND window, int textId, const wchar_t* defaultText, AppID headerApp);
QT_API void setdlgitemtext(HWND dialog, int controlId, const ustr& text, bool addColon);
QT_API void setdlgitemtext(AppID textApp, HWND dialog, int controlId, int textId, const wchar_t* defaultText, bool addColon);
}  // namespace Lng

// Sets a window's title to "<name> - <text>" (just the name when the text
// is null or empty, just the text when the name is).
QT_API void gwrenamewindow(HWND window, const wchar_t* name, const wchar_t* text);

#endif
