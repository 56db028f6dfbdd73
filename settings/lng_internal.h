// Hooks of the language texts for tests, tools and the module bridge; not
// part of the interface that application modules use.
#ifndef QUILTOOL_SETTINGS_LNG_INTERNAL_H
#define QUILTOOL_SETTINGS_LNG_INTERNAL_H

#include "Lng.h"
#include "ustr.h"

class CQlg;

// The folder Lng::init reads the language files from; null or empty means
// this library's own folder (the normal case).
void qt_lng_set_folder(const wchar_t* folder);
// Back to the state at load: init not run, every reader empty.
void qt_lng_reset();
// Lng::text for texts that are part of a longer one: a failure (memory
// running out) is thrown rather than answered as an empty text, so that
// the caller can drop the whole rather than show a piece.
ustr qt_lng_text(Lng::AppID id, int textId, const wchar_t* defaultText);
// The reader of an application-table row (0..13), or null.
const CQlg* qt_lng_reader(int row);

#endif
