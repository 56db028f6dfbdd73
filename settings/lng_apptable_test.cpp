#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>

#include "Lng.h"
#include "settings/lng_apptable.h"
#include "settings/lng_internal.h"

namespace {

TEST(LngAppTable, IdsFromTags) {
  EXPECT_EQ(Lng::GetAppId(L""), Lng::APP_NONE);
  EXPECT_EQ(Lng::GetAppId(nullptr), Lng::APP_NONE);
  EXPECT_EQ(Lng::GetAppId(L"hvac"), 100);
  EXPECT_EQ(Lng::GetAppId(L"QnPp"), 9);
  EXPECT_EQ(Lng::GetAppId(L"QNS"), Lng::APP_UNKNOWN);  // a prefix of QNSD and QNSS is no tag
  EXPECT_EQ(Lng::GetAppId(L"HPVX"), -1);
}

TEST(LngAppTable, NamesAndTags) {
  EXPECT_EQ(Lng::GetAppName(Lng::APP_QNE, true), L"Quillon-E");
  EXPECT_EQ(Lng::GetAppName(Lng::APP_QNE, false), L"Quillon Electrical");
  EXPECT_EQ(Lng::GetAppName(Lng::APP_NONE, true), L"Quillon");
  EXPECT_EQ(Lng::GetAppName(Lng::APP_QNH, true), L"Heat Exchanger");
  EXPECT_EQ(Lng::GetAppName(Lng::APP_QNPP, false), L"Quillon Properties Palette");
  EXPECT_EQ(Lng::GetAppName(static_cast<Lng::AppID>(55), true), L"");
  EXPECT_EQ(Lng::GetAppTag(Lng::APP_QNCS), L"QNCS");
  EXPECT_EQ(Lng::GetAppTag(Lng::APP_NONE), L"");
  EXPECT_EQ(Lng::GetAppTag(Lng::APP_UNKNOWN), L"");
}

TEST(LngAppTable, RowOrderAndLanguageFiles) {
  // Lookups are linear, so the order is behaviour: id 9 stands after the
  // 100-range rows.
  const int ids[qt::kAppRows] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 100, 101, 102, 103, 9};
  std::set<std::wstring> files;
  int withFile = 0;
  for (int i = 0; i < qt::kAppRows; ++i) {
    EXPECT_EQ(qt::kAppTable[i].id, ids[i]) << "row " << i;
    if (qt::kAppTable[i].languageFile) {
      ++withFile;
      files.insert(qt::kAppTable[i].languageFile);
    }
  }
  EXPECT_EQ(withFile, 10);
  EXPECT_EQ(files.size(), 10u);
  EXPECT_EQ(files.count(L"QuilQlg.qlg"), 1u);
  EXPECT_EQ(qt::kAppTable[qt::AppRowIndex(Lng::APP_QNR)].languageFile, std::wstring(L"QRP.qlg"));
  EXPECT_EQ(qt::kAppTable[qt::AppRowIndex(Lng::APP_QNU)].languageFile, nullptr);
}

TEST(CountryDataTable, RowsAndLookups) {
  ASSERT_EQ(CountryData::Count(), 41);
  EXPECT_STREQ(CountryData::At(0)->code, "FIN");
  EXPECT_STREQ(CountryData::At(40)->code, "AUS");
  EXPECT_EQ(CountryData::At(41), nullptr);
  EXPECT_EQ(CountryData::At(-1), nullptr);

  const CountryData::Item_t* ger = CountryData::Get("ger");
  const CountryData::Item_t* deu = CountryData::Get("DEU");
  ASSERT_TRUE(ger && deu);
  EXPECT_EQ(ger->languageId, 1513);
  EXPECT_EQ(deu->languageId, 1513);
  EXPECT_STREQ(ger->code, "GER");
  EXPECT_EQ(CountryData::Get(nullptr), nullptr);
  EXPECT_EQ(CountryData::Get(""), nullptr);
  EXPECT_EQ(CountryData::Get("XYZ"), nullptr);
  EXPECT_EQ(CountryData::Get("fl")->nameTextId, 36213);

  const CountryData::Item_t* lva = CountryData::Get("LVA");
  ASSERT_TRUE(lva);
  EXPECT_STREQ(lva->defaultName, L"Lettish");
  EXPECT_EQ(lva->languageId, 1527);

  // Each code once; two or three upper-case letters.
  std::set<std::string> codes;
  for (int i = 0; i < CountryData::Count(); ++i) {
    const char* code = CountryData::At(i)->code;
    EXPECT_TRUE(codes.insert(code).second) << code;
    const size_t n = std::strlen(code);
    EXPECT_TRUE(n == 2 || n == 3) << code;
  }
}

TEST(CountryDataTable, LanguageNamesAndInitials) {
  qt_lng_reset();
  // Many rows carry 1512; the first of them is the English row.
  EXPECT_EQ(CountryData::GetLanguageName(1512), L"English");
  EXPECT_EQ(CountryData::GetLanguageName(1539), L"Chinese");
  EXPECT_EQ(CountryData::GetLanguageName(1600), L"");
  EXPECT_EQ(Lng::GetInitialsForLanguageId(1513), L"DE");
  EXPECT_EQ(Lng::GetInitialsForLanguageId(1539), L"CN");
  EXPECT_EQ(Lng::GetInitialsForLanguageId(1510), L"");
  EXPECT_EQ(Lng::GetInitialsForLanguageId(0), L"");
}

}  // namespace
