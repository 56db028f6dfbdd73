// The language list and the initials of the languages the suite has
// texts for.
#include "CountryData.h"
#include "Lng.h"
#include "gwframe.h"
#include "core/boundary.h"

namespace {

// Several codes share a language, and most languages without texts of
// their own run in English (1512). "Lettish" is the suite's word for Latvian.
const CountryData::Item_t kCountries[] = {
    {"FIN", 36195, L"Finnish", 1510},    {"SWE", 36196, L"Swedish", 1511},     {"GBR", 36194, L"English", 1512},
    {"DEU", 36197, L"German", 1513},     {"GER", 36197, L"German", 1513},      {"NOR", 36198, L"Norwegian", 1514},
    {"FRA", 36199, L"French", 1515},     {"ESP", 36200, L"Spanish", 1516},     {"SPA", 36200, L"Spanish", 1516},
    {"ITA", 36201, L"Italian", 1517},    {"POL", 36202, L"Polish", 1518},      {"DNK", 36203, L"Danish", 1519},
    {"DEN", 36203, L"Danish", 1519},     {"CZE", 36204, L"Czech", 1512},       {"PRT", 36205, L"Portuguese", 1512},
    {"HUN", 36206, L"Hungarian", 1512},  {"NLD", 36207, L"Dutch", 1523},       {"NED", 36207, L"Dutch", 1523},
    {"BEL", 36902, L"Belgian", 1512},    {"ISL", 36208, L"Icelandic", 1512},   {"EST", 36209, L"Estonian", 1512},
    {"LTU", 36210, L"Lithuanian", 1512}, {"LVA", 36211, L"Lettish", 1527},     {"LAT", 36211, L"Lettish", 1527},
    {"RUS", 36212, L"Russian", 1528},    {"FL", 36213, L"Flemish", 1512},      {"SVK", 36214, L"Slovak", 1512},
    {"BGR", 36215, L"Bulgarian", 1512},  {"ROU", 36216, L"Romanian", 1532},    {"ROM", 36216, L"Romanian", 1532},
    {"BIH", 36217, L"Bosnian", 1512},    {"HRV", 36218, L"Croatian", 1512},    {"SVN", 36219, L"Slovenian", 1512},
    {"AR", 36220, L"Arabic", 1512},      {"JPN", 36221, L"Japanese", 1512},    {"TUR", 36222, L"Turkish", 1538},
    {"CHN", 36223, L"Chinese", 1539},    {"AUT", 36903, L"Austrian", 1512},    {"UKR", 36904, L"Ukrainian", 1512},
    {"CHE", 36905, L"Swiss", 1512},      {"AUS", 36906, L"Australian", 1512},
};
const int kCountryCount = static_cast<int>(sizeof kCountries / sizeof kCountries[0]);
static_assert(sizeof kCountries / sizeof kCountries[0] == 41, "the language list has 41 rows");

struct Initials {
  const wchar_t* initials;
  int languageId;
};
// Null-terminated, as callers of the original table walked it.
const Initials kInitials[] = {{L"EN", 1512}, {L"DE", 1513}, {L"FR", 1515}, {L"RU", 1528}, {L"CN", 1539}, {nullptr, 0}};

}  // namespace

const CountryData::Item_t* CountryData::Get(const char* code) {
  if (!code || !*code) return nullptr;
  for (const Item_t& item : kCountries) {
    if (qn_stricmp(item.code, code) == 0) return &item;
  }
  return nullptr;
}

ustr CountryData::GetLanguageName(int languageId) {
  return qt::NoThrow<ustr>("CountryData::GetLanguageName", ustr(), [&]() -> ustr {
    for (const Item_t& item : kCountries) {
      if (item.languageId == languageId) return Lng::text(Lng::APP_HPV, item.nameTextId, item.defaultName);
    }
    return ustr();
  });
}

int CountryData::Count() { return kCountryCount; }

const CountryData::Item_t* CountryData::At(int index) {
  return index >= 0 && index < kCountryCount ? &kCountries[index] : nullptr;
}

ustr Lng::GetInitialsForLanguageId(int languageId) {
  return qt::NoThrow<ustr>("Lng::GetInitialsForLanguageId", ustr(), [&]() -> ustr {
    for (const Initials* p = kInitials; p->initials; ++p) {
      if (p->languageId == languageId) return ustr(p->initials);
    }
    return ustr();
  });
}
