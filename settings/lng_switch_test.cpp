// The developer switch that decorates texts with their ids is kept between
// calls of Lng::text; these tests make sure a kept answer never outlives a
// change, from this process or another, or a change of application key.
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "Lng.h"
#include "Registry.h"
#include "settings/lng_test_support.h"
#include "settings/regstore.h"
#include "settings/setting_watch_platform.h"
#include "testsupport/qt_test.h"

namespace {

const char kTexts[] =
    "qlg 1\n"
    "module HPV\n"
    "text 100\n"
    "\t1513 \"Bezeichnung\"\n";

const wchar_t kSwitch[] = L"Developer/ShowStringIDs";

// Another process of the suite: sets the switch under company\app\1 (an
// empty value deletes it) and exits.
QT_TEST_CHILD(lng_switch_writer) {
  if (args.size() != 3) return 90;
  RegInt_Init(qt_test::Widen(args[0]).c_str(), qt_test::Widen(args[1]).c_str(), L"1");
  const std::wstring value = qt_test::Widen(args[2]);
  const bool ok = value.empty() ? Registry::DeleteAtt(nullptr, kSwitch)
                                : Registry::SetStringAtt(nullptr, kSwitch, value.c_str());
  return ok ? 0 : 1;
}

int SetFromChild(const lng_test::AppKey& key, const std::string& value) {
  return qt_test::RunChild("lng_switch_writer", {"QuilToolTests", qt_test::Narrow(key.app()), value});
}

ustr Text() { return Lng::text(Lng::APP_HPV, 100, L"Name"); }

// The watch must really hold a mark while nothing changes: one that never
// could would leave every text paying a settings read, unnoticed.
TEST(SettingWatch, AMarkHoldsUntilAnotherProcessChangesASettingUnderTheKey) {
  namespace watch = qt::setting_watch::platform;
  lng_test::AppKey key;
  key.set(L"Developer/Other", L"1");
  const std::wstring path = L"Software\\QuilToolTests\\" + key.app() + L"\\1\\";
  watch::Watch* w = watch::Open(path.c_str());
  ASSERT_NE(nullptr, w);
  watch::Mark first, again, after;
  ASSERT_TRUE(watch::Take(w, &first));
  ASSERT_TRUE(watch::Take(w, &again));
  // The Linux store looks at its files now and then, which moves the mark:
  // a pair taken across such a look is taken again.
  for (int i = 0; i < 3 && first != again; ++i) {
    ASSERT_TRUE(watch::Take(w, &first));
    ASSERT_TRUE(watch::Take(w, &again));
  }
  EXPECT_TRUE(first == again);
  ASSERT_EQ(SetFromChild(key, "yesplease"), 0);
  ASSERT_TRUE(watch::Take(w, &after));
  EXPECT_TRUE(after != again);
  watch::Close(w);
  Registry::DeleteAtt(nullptr, L"Developer/Other");
}

TEST(LngSwitch, AnotherProcessFlipsTheSwitchForTheVeryNextText) {
  lng_test::AppKey key;
  lng_test::LanguageFolder folder;
  ASSERT_TRUE(folder.write("QuilQlg.qlg", kTexts));
  Lng::init(1513);

  // Asked twice, so that the second answer may come from what was kept.
  EXPECT_EQ(Text(), L"Bezeichnung");
  EXPECT_EQ(Text(), L"Bezeichnung");
  ASSERT_EQ(SetFromChild(key, "yesplease"), 0);
  EXPECT_EQ(Text(), L"100>Bezeichnung");
  EXPECT_EQ(Text(), L"100>Bezeichnung");
  ASSERT_EQ(SetFromChild(key, "no"), 0);
  EXPECT_EQ(Text(), L"Bezeichnung");
  ASSERT_EQ(SetFromChild(key, "yesplease"), 0);
  EXPECT_EQ(Text(), L"100>Bezeichnung");
  ASSERT_EQ(SetFromChild(key, ""), 0);  // deleted
  EXPECT_EQ(Text(), L"Bezeichnung");
}

TEST(LngSwitch, ChangesInThisProcessAndDeletedKeysAreSeen) {
  lng_test::AppKey key;
  lng_test::LanguageFolder folder;
  ASSERT_TRUE(folder.write("QuilQlg.qlg", kTexts));
  Lng::init(1513);

  EXPECT_EQ(Text(), L"Bezeichnung");
  key.set(kSwitch, L"yesplease");
  EXPECT_EQ(Text(), L"100>Bezeichnung");
  // The value's key goes and comes back: a watch on it must not go blind.
  ASSERT_TRUE(Registry::DeleteKey(nullptr, L"Developer/ShowStringIDs"));
  EXPECT_EQ(Text(), L"Bezeichnung");
  key.set(kSwitch, L"yesplease");
  EXPECT_EQ(Text(), L"100>Bezeichnung");
}

// Reads grouped together see one state of the settings, which may be
// older than another process's change; what such a read found must not be
// kept as the answer for after the group.
TEST(LngSwitch, AnswersReadInsideAReadGroupAreNotKeptBeyondIt) {
  lng_test::AppKey key;
  lng_test::LanguageFolder folder;
  ASSERT_TRUE(folder.write("QuilQlg.qlg", kTexts));
  Lng::init(1513);
  key.set(L"Developer/Other", L"1");
  EXPECT_EQ(Text(), L"Bezeichnung");
  {
    qt_reg::ReadScope group;
    // A value that is there and not yet read: the group's state is fixed here.
    EXPECT_EQ(L"1", ustr(Registry::GetStringAtt(nullptr, L"Developer/Other", ustr(L"?"))));
    ASSERT_EQ(SetFromChild(key, "yesplease"), 0);
    Text();  // either answer is right inside the group
  }
  EXPECT_EQ(Text(), L"100>Bezeichnung");
  Registry::DeleteAtt(nullptr, L"Developer/Other");
}

TEST(LngSwitch, SwitchingTheApplicationKeyIsHonoured) {
  lng_test::LanguageFolder folder;
  ASSERT_TRUE(folder.write("QuilQlg.qlg", kTexts));
  Lng::init(1513);
  lng_test::AppKey on;
  on.set(kSwitch, L"yesplease");
  EXPECT_EQ(Text(), L"100>Bezeichnung");
  {
    lng_test::AppKey off;  // made current by its constructor
    EXPECT_EQ(Text(), L"Bezeichnung");
    ASSERT_EQ(SetFromChild(off, "yesplease"), 0);
    EXPECT_EQ(Text(), L"100>Bezeichnung");
    ASSERT_EQ(SetFromChild(off, ""), 0);
    EXPECT_EQ(Text(), L"Bezeichnung");

    RegInt_Init(L"QuilToolTests", on.app().c_str(), L"1");
    EXPECT_EQ(Text(), L"100>Bezeichnung");
    // A change under the key no longer current is no reason to answer
    // differently, but one under the current key is.
    ASSERT_EQ(SetFromChild(off, "yesplease"), 0);
    ASSERT_EQ(SetFromChild(on, "no"), 0);
    EXPECT_EQ(Text(), L"Bezeichnung");
    RegInt_Init(L"QuilToolTests", off.app().c_str(), L"1");
    EXPECT_EQ(Text(), L"100>Bezeichnung");
  }
  // "off" cleaned up under its own key; "on" cleans up under the current one.
  RegInt_Init(L"QuilToolTests", on.app().c_str(), L"1");
}

TEST(LngSwitch, ThreadsAskingAtOnceAllSeeTheSwitch) {
  lng_test::AppKey key;
  lng_test::LanguageFolder folder;
  ASSERT_TRUE(folder.write("QuilQlg.qlg", kTexts));
  Lng::init(1513);
  key.set(kSwitch, L"yesplease");

  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 2000; ++i) {
        if (Text() != L"100>Bezeichnung") ++wrong;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong.load(), 0);
}

}  // namespace
