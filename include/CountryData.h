// The fixed list of countries and their interface languages.
#ifndef QUILTOOL_COUNTRYDATA_H
#define QUILTOOL_COUNTRYDATA_H

#include "quiltool_export.h"
#include "ustr.h"

class QT_API CountryData {
 public:
  struct Item_t {
    char code[4];              // two or three upper-case letters
    int nameTextId;            // the language's name in the main module's texts
    const wchar_t* defaultName;
    int languageId;            // 1512 (English) for languages without texts of their own
  };

  // The first row whose code matches without regard to case; null for a
  // null, empty or unknown code.
  static const Item_t* Get(const char* code);
  // The translated name of the first row with this language id; empty when
  // no row has it.
  static ustr GetLanguageName(int languageId);

  // The whole table, in its fixed order.
  static int Count();
  static const Item_t* At(int index);  // null outside 0..Count()-1
};

#endif
