// The application table's constant columns; each row's language-file
// reader lives in lng_text.cpp.
#ifndef QUILTOOL_SETTINGS_LNG_APPTABLE_H
#define QUILTOOL_SETTINGS_LNG_APPTABLE_H

#include "Lng.h"

namespace qt {

struct AppRow {
  Lng::AppID id;
  const wchar_t* tag;
  const wchar_t* languageFile;  // null: the module has no language file
  const wchar_t* shortName;
  const wchar_t* longName;
};

const int kAppRows = 14;
// Exported for the quiltool command, which finds language files by module.
extern const AppRow kAppTable[kAppRows];

// Index of the first row with this id, or -1.
int AppRowIndex(Lng::AppID id);

}  // namespace qt

#endif
