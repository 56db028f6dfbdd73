#include <gtest/gtest.h>

#include "Lng.h"
#include "QnColor.h"
#include "Registry.h"
#include "settings/lng_internal.h"
#include "failure_points.h"
#include "settings/lng_test_support.h"
#include "settings/qlg_reader.h"

namespace {

const char kMainTexts[] =
    "qlg 1\n"
    "module HPV\n"
    "text 100\n"
    "\t1512 \"Name\"\n"
    "\t1513 \"Bezeichnung\"\n"
    "text 101\n"
    "\t1512 \"Only English\"\n"
    "text -7\n"
    "\t1513 \"Variable\"\n"
    "text 102\n"
    "\t1513 \"\"\n";

const char kCommonTexts[] =
    "qlg 1\n"
    "module QNC\n"
    "text 100\n"
    "\t1513 \"Gemeinsam\"\n";

TEST(LngText, DefaultsBeforeInitAndForUnknownTexts) {
  lng_test::LanguageFolder folder;
  ASSERT_TRUE(folder.write("QuilQlg.qlg", kMainTexts));
  EXPECT_EQ(Lng::text(Lng::APP_HPV, 100, L"Name"), L"Name");  // not loaded yet
  EXPECT_EQ(Lng::text(Lng::APP_HPV, 100, nullptr), L"");

  Lng::init(1513);
  EXPECT_EQ(Lng::text(Lng::APP_HPV, 100, L"Name"), L"Bezeichnung");
  EXPECT_EQ(Lng::text(Lng::APP_HPV, 101, L"Only English"), L"Only English");  // no German
  EXPECT_EQ(Lng::text(Lng::APP_HPV, 999, L"Missing"), L"Missing");
  EXPECT_EQ(Lng::text(Lng::APP_HPV, 102, L"Was empty"), L"");  // an empty translation is a translation
}

TEST(LngText, ModulesAndFallbackToTheMainModule) {
  lng_test::LanguageFolder folder;
  ASSERT_TRUE(folder.write("QuilQlg.qlg", kMainTexts));
  ASSERT_TRUE(folder.write("QNCommon.qlg", kCommonTexts));
  Lng::init(1513);
  EXPECT_EQ(Lng::text(Lng::APP_QNC, 100, L"x"), L"Gemeinsam");
  // An id outside the table reads the main module; a module of the table
  // without texts of its own does not.
  EXPECT_EQ(Lng::text(static_cast<Lng::AppID>(55), 100, L"x"), L"Bezeichnung");
  EXPECT_EQ(Lng::text(Lng::APP_QNU, 100, L"x"), L"x");
  EXPECT_EQ(Lng::text(Lng::APP_QNE, 100, L"x"), L"x");  // its file is missing
}

TEST(LngText, InitReloadsOnlyForAnotherLanguage) {
  lng_test::LanguageFolder folder;
  ASSERT_TRUE(folder.write("QuilQlg.qlg", kMainTexts));
  Lng::init(1513);
  ASSERT_EQ(Lng::text(Lng::APP_HPV, 100, L"Name"), L"Bezeichnung");

  std::string changed = kMainTexts;
  changed.replace(changed.find("Bezeichnung"), 11, "Benennung");
  ASSERT_TRUE(folder.write("QuilQlg.qlg", changed));
  Lng::init(1513);  // already active: the reader keeps what it had
  EXPECT_EQ(Lng::text(Lng::APP_HPV, 100, L"Name"), L"Bezeichnung");

  Lng::init(1512);
  EXPECT_EQ(Lng::text(Lng::APP_HPV, 100, L"?"), L"Name");
  Lng::init(1513);
  EXPECT_EQ(Lng::text(Lng::APP_HPV, 100, L"Name"), L"Benennung");
  EXPECT_EQ(qt_lng_reader(1)->activeLanguageId(), 1513);
}

TEST(LngText, BrokenFileFallsBackToDefaults) {
  lng_test::LanguageFolder folder;
  std::string broken = kMainTexts;
  broken += "text 103\n\t1513 \"no end\n";
  ASSERT_TRUE(folder.write("QuilQlg.qlg", broken));
  ASSERT_TRUE(folder.write("QNCommon.qlg", kCommonTexts));
  Lng::init(1513);
  EXPECT_EQ(Lng::text(Lng::APP_HPV, 100, L"Name"), L"Name");
  EXPECT_EQ(Lng::text(Lng::APP_QNC, 100, L"x"), L"Gemeinsam");  // the other files still load
  const std::string& error = qt_lng_reader(1)->lastError();
  EXPECT_NE(error.find("QuilQlg.qlg:13:"), std::string::npos) << error;
}

TEST(LngText, ShowStringIdsDecoratesEveryText) {
  lng_test::AppKey key;
  lng_test::LanguageFolder folder;
  ASSERT_TRUE(folder.write("QuilQlg.qlg", kMainTexts));
  Lng::init(1513);

  key.set(L"Developer/ShowStringIDs", L"YesPlease");  // case counts
  EXPECT_EQ(Lng::text(Lng::APP_HPV, 100, L"Name"), L"Bezeichnung");
  key.set(L"Developer/ShowStringIDs", L"yesplease");
  EXPECT_EQ(Lng::text(Lng::APP_HPV, 100, L"Name"), L"100>Bezeichnung");
  EXPECT_EQ(Lng::text(Lng::APP_HPV, 1234, L"Name"), L"1234>Name");
  EXPECT_EQ(Lng::text(Lng::APP_HPV, 5, L""), L"5>");
  EXPECT_EQ(Lng::text(Lng::APP_HPV, -3, nullptr), L"-3>");
}

TEST(LngText, UserVariablesStayAsReadWithoutTheMainModule) {
  lng_test::LanguageFolder folder;
  ASSERT_TRUE(folder.write("QuilQlg.qlg", kMainTexts));
  Lng::init(1513);
  EXPECT_EQ(Lng::text(Lng::APP_HPV, -7, L"Var"), L"Variable");
  EXPECT_EQ(Lng::text(Lng::APP_HPV, -8, L"Other"), L"Other");
}

// The files shipped beside the library, switched through the suite-wide
// language setting.
TEST(LngText, InterfaceLanguageGermanChangesTheLibrarysTexts) {
  qt_lng_reset();
  const wchar_t* kSetting = L"Software\\Velmora\\Quillon\\InterfaceLng";
  // Under Wine every test program shares one registry: put back what was there.
  const int kAbsent = -424242;
  const int before = Registry::GetIntAtt(HKEY_CURRENT_USER, kSetting, kAbsent);
  ASSERT_TRUE(Registry::SetIntAtt(HKEY_CURRENT_USER, kSetting, 1513));
  const int active = QnRegistry::GetActiveLanguageId();
  if (before == kAbsent) {
    Registry::DeleteAtt(HKEY_CURRENT_USER, kSetting);
  } else {
    Registry::SetIntAtt(HKEY_CURRENT_USER, kSetting, before);
  }
  ASSERT_EQ(active, 1513);

  Lng::init(static_cast<short>(active));
  EXPECT_EQ(Lng::text(Lng::APP_QNC, 607, L"File not found"), L"Datei nicht gefunden");
  EXPECT_EQ(CountryData::GetLanguageName(1513), L"Deutsch");
  EXPECT_EQ(CountryData::GetLanguageName(1527), L"Lettisch");
  EXPECT_EQ(QnColor::GetColorName(256), L"VonLayer");
  wchar_t name[20];
  EXPECT_STREQ(QnColor::GetAcadColorName(0, name, 20), L"VonBlock");
  EXPECT_EQ(QnColor::GetColorFromName(L"vonlayer"), 256);

  Lng::init(1512);
  EXPECT_EQ(Lng::text(Lng::APP_QNC, 607, L"?"), L"File not found");
  EXPECT_EQ(CountryData::GetLanguageName(1513), L"German");
  qt_lng_reset();
}

}  // namespace

// Out of memory at each allocation in turn: a text is the translation or
// empty, and a load cut short leaves readers that answer the defaults.
TEST(LngTextOutOfMemory, TextsAreWholeOrEmptyAndInitNeverThrows) {
  lng_test::LanguageFolder folder;
  ASSERT_TRUE(folder.write("QuilQlg.qlg", kMainTexts));
  qt_test::AtEveryFailurePoint([] { Lng::init(1513); }, [](bool) {});
  Lng::init(1512);
  qt_test::AtEveryFailurePoint([] { Lng::init(1513); },
                               [](bool) {
                                 const ustr text = Lng::text(Lng::APP_HPV, 100, L"Name");
                                 EXPECT_TRUE(text == L"Bezeichnung" || text == L"Name") << text.str().size();
                               });
  Lng::init(1512);
  Lng::init(1513);
  ASSERT_EQ(Lng::text(Lng::APP_HPV, 100, L"Name"), L"Bezeichnung");

  ustr text;
  qt_test::AtEveryFailurePoint([&] { text = Lng::text(Lng::APP_HPV, 100, L"Name"); },
                               [&](bool refused) {
                                 if (!refused) EXPECT_EQ(L"Bezeichnung", text);
                                 else EXPECT_TRUE(text == L"Bezeichnung" || text.empty());
                               });
}
