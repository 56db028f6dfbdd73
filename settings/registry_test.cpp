#include <gtest/gtest.h>

#include <set>
#include <string>

#include "Registry.h"
#include "failure_points.h"
#include "qt_test.h"
#include "settings/reg_internal.h"
#include "settings/reg_test_util.h"

namespace {

using reg_test::AppKeyTest;
using reg_test::ReadRaw;
using reg_test::Utf16;
using reg_test::WriteRaw;

std::pair<std::wstring, std::wstring> Split(const wchar_t* path) {
  wchar_t key[qt_registry::kPathChars], value[qt_registry::kPathChars];
  qt_registry::SplitSettingPath(path, key, value);
  return {key, value};
}

TEST(SettingPath, SplitsAtTheLastSeparatorAfterCuttingAndTurningSlashes) {
  EXPECT_EQ(Split(L"Developer/ShowStringIDs"), std::make_pair(std::wstring(L"Developer"), std::wstring(L"ShowStringIDs")));
  EXPECT_EQ(Split(L"Software\\Velmora\\Quillon\\InterfaceLng"),
            std::make_pair(std::wstring(L"Software\\Velmora\\Quillon"), std::wstring(L"InterfaceLng")));
  EXPECT_EQ(Split(L"a/b\\c/"), std::make_pair(std::wstring(L"a\\b\\c"), std::wstring()));
  EXPECT_EQ(Split(L"Plain"), std::make_pair(std::wstring(), std::wstring(L"Plain")));
  EXPECT_EQ(Split(L"\\AutoSize"), std::make_pair(std::wstring(), std::wstring(L"AutoSize")));
  EXPECT_EQ(Split(nullptr), std::make_pair(std::wstring(), std::wstring()));

  // The cut comes first: a separator beyond character 259 is never seen.
  std::wstring longKey(258, L'k');
  EXPECT_EQ(Split((longKey + L"/value").c_str()), std::make_pair(longKey, std::wstring()));
  const std::wstring longValue = L"k/" + std::wstring(300, L'v');
  EXPECT_EQ(Split(longValue.c_str()).second, std::wstring(257, L'v'));
}

class RegistryPaths : public AppKeyTest {};

TEST_F(RegistryPaths, ValuesLandUnderTheApplicationKeyOrTheGivenRoot) {
  ASSERT_TRUE(Registry::SetIntAtt(nullptr, L"Grid/Columns/Width", 5));
  EXPECT_EQ(ReadRaw(HKEY_CURRENT_USER, under(L"Grid\\Columns"), L"Width").data, std::vector<BYTE>({5, 0, 0, 0}));
  // Key and value names are found whatever their case.
  EXPECT_EQ(Registry::GetIntAtt(nullptr, L"GRID\\columns/WIDTH", 0), 5);

  const std::wstring explicitPath = under(L"Direct/Value");
  ASSERT_TRUE(Registry::SetStringAtt(HKEY_CURRENT_USER, explicitPath.c_str(), L"here"));
  EXPECT_EQ(ReadRaw(HKEY_CURRENT_USER, under(L"Direct"), L"Value").data, Utf16(L"here", false));

  // A path without separator names a value in the application key itself.
  ASSERT_TRUE(Registry::SetIntAtt(nullptr, L"TopLevel", 9));
  EXPECT_EQ(ReadRaw(HKEY_CURRENT_USER, base_, L"TopLevel").rc, qt_reg::kOk);
}

class RegistryReaders : public AppKeyTest {};

TEST_F(RegistryReaders, IntegersReadRawBytesWhateverTheType) {
  EXPECT_EQ(Registry::GetIntAtt(nullptr, L"Reader/Missing", 7), 7);
  ASSERT_EQ(WriteRaw(HKEY_CURRENT_USER, under(L"Reader"), L"Dword", REG_DWORD, {0x78, 0x56, 0x34, 0x12}), 0);
  EXPECT_EQ(Registry::GetIntAtt(nullptr, L"Reader/Dword", 7), 0x12345678);
  // A 4-byte text "ab" yields its bytes; a longer text does not fit.
  ASSERT_EQ(WriteRaw(HKEY_CURRENT_USER, under(L"Reader"), L"Text", REG_SZ, Utf16(L"ab", false)), 0);
  EXPECT_EQ(Registry::GetIntAtt(nullptr, L"Reader/Text", 7), 0x00620061);
  ASSERT_EQ(WriteRaw(HKEY_CURRENT_USER, under(L"Reader"), L"Long", REG_SZ, Utf16(L"abc", false)), 0);
  EXPECT_EQ(Registry::GetIntAtt(nullptr, L"Reader/Long", 7), 7);
  // Fewer bytes leave the rest zero.
  ASSERT_EQ(WriteRaw(HKEY_CURRENT_USER, under(L"Reader"), L"Byte", REG_BINARY, {0xFF}), 0);
  EXPECT_EQ(Registry::GetIntAtt(nullptr, L"Reader/Byte", 7), 0xFF);
}

TEST_F(RegistryReaders, FloatsAreParsedTextAndABadParseIsZero) {
  EXPECT_EQ(Registry::GetFloatAtt(nullptr, L"Reader/Missing", 1.5f), 1.5f);
  ASSERT_TRUE(Registry::SetStringAtt(nullptr, L"Reader/Word", L"wide"));
  EXPECT_EQ(Registry::GetFloatAtt(nullptr, L"Reader/Word", 1.5f), 0.0f);
  ASSERT_TRUE(Registry::SetStringAtt(nullptr, L"Reader/Number", L" -3.25 metres"));
  EXPECT_EQ(Registry::GetFloatAtt(nullptr, L"Reader/Number", 1.5f), -3.25f);
  // 80 bytes at most: a 41-character text is too long and gives the default.
  ASSERT_TRUE(Registry::SetStringAtt(nullptr, L"Reader/Huge", std::wstring(41, L'1').c_str()));
  EXPECT_EQ(Registry::GetFloatAtt(nullptr, L"Reader/Huge", 1.5f), 1.5f);
}

TEST_F(RegistryReaders, OwnedStringsTakeOnlyTexts) {
  EXPECT_EQ(Registry::GetStringAtt(nullptr, L"Reader/Missing", ustr(L"dflt")).str(), L"dflt");
  ASSERT_TRUE(Registry::SetStringAtt(nullptr, L"Reader/Name", L"Ünïcode \U0001F600 text"));
  EXPECT_EQ(Registry::GetStringAtt(nullptr, L"Reader/Name", ustr(L"dflt")).str(), L"Ünïcode \U0001F600 text");
  ASSERT_TRUE(Registry::SetStringAtt(nullptr, L"Reader/Empty", L""));
  EXPECT_EQ(Registry::GetStringAtt(nullptr, L"Reader/Empty", ustr(L"dflt")).str(), L"");
  // Longer than any ring buffer, still whole.
  const std::wstring big(3000, L'x');
  ASSERT_TRUE(Registry::SetStringAtt(nullptr, L"Reader/Big", big.c_str()));
  EXPECT_EQ(Registry::GetStringAtt(nullptr, L"Reader/Big", ustr(L"dflt")).str(), big);
  ASSERT_TRUE(Registry::SetIntAtt(nullptr, L"Reader/Number", 3));
  EXPECT_EQ(Registry::GetStringAtt(nullptr, L"Reader/Number", ustr(L"dflt")).str(), L"dflt");
}

TEST_F(RegistryReaders, ReadsWithoutRootComeFromTheUserAlone) {
  // A machine key exists now, so the application key is complete.
  ASSERT_EQ(WriteRaw(HKEY_LOCAL_MACHINE, under(L"Shared"), L"Only", REG_DWORD, {4, 0, 0, 0}), 0);
  EXPECT_TRUE(RegInt_Init(company_.c_str(), L"App", L"1.0"));
  EXPECT_EQ(Registry::GetIntAtt(nullptr, L"Shared/Only", 7), 7);
  EXPECT_EQ(Registry::GetIntAtt(HKEY_LOCAL_MACHINE, under(L"Shared/Only").c_str(), 7), 4);
  // Without a machine key the user key still works, but the answer is false.
  const std::wstring other = company_ + L"-other";
  EXPECT_FALSE(RegInt_Init(other.c_str(), L"App", L"1.0"));
  EXPECT_TRUE(Registry::SetIntAtt(nullptr, L"Shared/Only", 1));
  EXPECT_EQ(Registry::GetIntAtt(nullptr, L"Shared/Only", 7), 1);
  qt_reg::DeleteTree(HKEY_CURRENT_USER, (L"Software\\" + other).c_str());
}

class RegistryWriters : public AppKeyTest {};

TEST_F(RegistryWriters, StoreTheRegistryTypesAndBytes) {
  ASSERT_TRUE(Registry::SetStringAtt(nullptr, L"Developer/ShowStringIDs", L"yesplease"));
  reg_test::Raw raw = ReadRaw(HKEY_CURRENT_USER, under(L"Developer"), L"ShowStringIDs");
  EXPECT_EQ(raw.type, static_cast<DWORD>(REG_SZ));
  EXPECT_EQ(raw.data, Utf16(L"yesplease", false)) << "stored without its terminating zero";

  ASSERT_TRUE(Registry::SetStringAtt(nullptr, L"W/Smile", L"\U0001F600"));
  EXPECT_EQ(ReadRaw(HKEY_CURRENT_USER, under(L"W"), L"Smile").data, std::vector<BYTE>({0x3D, 0xD8, 0x00, 0xDE}));

  ASSERT_TRUE(Registry::SetIntAtt(nullptr, L"W/Int", -2));
  raw = ReadRaw(HKEY_CURRENT_USER, under(L"W"), L"Int");
  EXPECT_EQ(raw.type, static_cast<DWORD>(REG_DWORD));
  EXPECT_EQ(raw.data, std::vector<BYTE>({0xFE, 0xFF, 0xFF, 0xFF}));
  EXPECT_EQ(Registry::GetIntAtt(nullptr, L"W/Int", 0), -2);

  ASSERT_TRUE(Registry::SetFloatAtt(nullptr, L"W/Float", 2.5f));
  raw = ReadRaw(HKEY_CURRENT_USER, under(L"W"), L"Float");
  EXPECT_EQ(raw.type, static_cast<DWORD>(REG_SZ));
  EXPECT_EQ(raw.data, Utf16(L"2.500000", false));
  EXPECT_EQ(Registry::GetFloatAtt(nullptr, L"W/Float", 0), 2.5f);

  // A later write of another type replaces the value.
  ASSERT_TRUE(Registry::SetStringAtt(nullptr, L"W/Int", L"now text"));
  EXPECT_EQ(ReadRaw(HKEY_CURRENT_USER, under(L"W"), L"Int").type, static_cast<DWORD>(REG_SZ));
  EXPECT_FALSE(Registry::SetStringAtt(nullptr, L"W/Null", nullptr));
}

TEST(RegistryInit, NullArgumentsNameAnyCompanyApplicationAndVersion) {
  const std::wstring key = L"Software\\Any company\\Any application\\Any version";
  const bool existed = reg_test::KeyExists(HKEY_CURRENT_USER, L"Software\\Any company");
  RegInt_Init(nullptr, nullptr, nullptr);
  EXPECT_TRUE(reg_test::KeyExists(HKEY_CURRENT_USER, key));
  ASSERT_TRUE(Registry::SetIntAtt(nullptr, L"Probe", 3));
  EXPECT_EQ(ReadRaw(HKEY_CURRENT_USER, key, L"Probe").data, std::vector<BYTE>({3, 0, 0, 0}));
  Registry::DeleteAtt(nullptr, L"Probe");
  if (!existed) qt_reg::DeleteTree(HKEY_CURRENT_USER, L"Software\\Any company");
}

// A fresh process has no application key: reads give their defaults and
// writes without a root fail.
QT_TEST_CHILD(registry_before_init) {
  wchar_t fallback[] = L"fallback";
  if (Registry::GetIntAtt(nullptr, L"Developer/X", 7) != 7) return 1;
  if (Registry::GetStringAtt(nullptr, L"Developer/X", fallback) != fallback) return 2;
  if (Registry::GetStringAtt(nullptr, L"Developer/X", ustr(L"d")) != L"d") return 3;
  if (Registry::SetIntAtt(nullptr, L"Developer/X", 1)) return 4;
  if (Registry::DeleteKey(nullptr, L"Developer/")) return 5;
  if (!Registry::EnumerateValues(nullptr, L"").empty()) return 6;
  return 0;
}

TEST(RegistryInit, BeforeTheFirstCallNothingWorksWithoutARoot) { EXPECT_EQ(qt_test::RunChild("registry_before_init"), 0); }

class RegistryDeletes : public AppKeyTest {};

TEST_F(RegistryDeletes, DeleteKeyDropsTheLastPathPart) {
  ASSERT_TRUE(Registry::SetIntAtt(nullptr, L"Solo/Value", 1));
  EXPECT_TRUE(Registry::DeleteAtt(nullptr, L"Solo/Value"));
  EXPECT_FALSE(Registry::DeleteAtt(nullptr, L"Solo/Value"));
  ASSERT_TRUE(Registry::SetIntAtt(nullptr, L"Solo/Value", 1));
  EXPECT_TRUE(Registry::DeleteKey(nullptr, L"Solo/anything"));
  EXPECT_FALSE(reg_test::KeyExists(HKEY_CURRENT_USER, under(L"Solo")));

  ASSERT_TRUE(Registry::SetIntAtt(nullptr, L"Outer/Inner/Value", 1));
  EXPECT_FALSE(Registry::DeleteKey(nullptr, L"Outer/Inner")) << "Outer still has a subkey";
  EXPECT_TRUE(reg_test::KeyExists(HKEY_CURRENT_USER, under(L"Outer\\Inner")));
  EXPECT_TRUE(Registry::DeleteKey(nullptr, L"Outer/Inner/"));
  EXPECT_FALSE(reg_test::KeyExists(HKEY_CURRENT_USER, under(L"Outer\\Inner")));
  EXPECT_TRUE(reg_test::KeyExists(HKEY_CURRENT_USER, under(L"Outer")));
  EXPECT_FALSE(Registry::DeleteKey(nullptr, L"Nowhere/"));
}

TEST_F(RegistryDeletes, EnumerationListsTheKeyPart) {
  ASSERT_TRUE(Registry::SetIntAtt(nullptr, L"List/beta/x", 1));
  ASSERT_TRUE(Registry::SetIntAtt(nullptr, L"List/Alpha/x", 1));
  ASSERT_TRUE(Registry::SetStringAtt(nullptr, L"List/Second", L"s"));
  ASSERT_TRUE(Registry::SetIntAtt(nullptr, L"List/First", 1));
  const auto keys = Registry::EnumerateSubKeys(nullptr, L"List/ignored");
  ASSERT_EQ(keys.size(), 2u);
  EXPECT_EQ(keys[0].first, L"Alpha");
  EXPECT_EQ(keys[1].first, L"beta");
  const auto values = Registry::EnumerateValues(nullptr, L"List/");
  std::set<std::wstring> names;
  for (const auto& v : values) {
    names.insert(v.first.str());
    EXPECT_EQ(v.second, v.first == L"First" ? static_cast<unsigned long>(REG_DWORD) : static_cast<unsigned long>(REG_SZ));
  }
  EXPECT_EQ(names, std::set<std::wstring>({L"First", L"Second"}));
  EXPECT_TRUE(Registry::EnumerateSubKeys(nullptr, L"Missing/").empty());
}

class RegistryRing : public AppKeyTest {};

TEST_F(RegistryRing, FiveBuffersInTurnEachValidForFourMoreCalls) {
  ASSERT_TRUE(Registry::SetStringAtt(nullptr, L"Ring/A", L"first"));
  ASSERT_TRUE(Registry::SetStringAtt(nullptr, L"Ring/B", L"second"));
  wchar_t fallback[] = L"fallback";
  std::vector<wchar_t*> results;
  for (int i = 0; i < 6; ++i) results.push_back(Registry::GetStringAtt(nullptr, i % 2 ? L"Ring/B" : L"Ring/A", fallback));
  EXPECT_EQ(std::set<wchar_t*>(results.begin(), results.begin() + 5).size(), 5u);
  EXPECT_EQ(results[5], results[0]);
  EXPECT_STREQ(results[1], L"second") << "still intact four calls later";
  EXPECT_STREQ(results[5], L"second");
  EXPECT_EQ(Registry::GetStringAtt(nullptr, L"Ring/Missing", fallback), fallback);
}

TEST_F(RegistryRing, TextsOfMoreThan1024BytesGiveTheDefault) {
  wchar_t fallback[] = L"fallback";
  // 511 characters and a terminator fit in 1024 bytes, 512 do not; a text
  // written here has no terminator, so 512 of its characters still fit.
  ASSERT_EQ(WriteRaw(HKEY_CURRENT_USER, under(L"Ring"), L"Fits", REG_SZ, Utf16(std::wstring(511, L'a'), true)), 0);
  ASSERT_EQ(WriteRaw(HKEY_CURRENT_USER, under(L"Ring"), L"TooLong", REG_SZ, Utf16(std::wstring(512, L'b'), true)), 0);
  ASSERT_TRUE(Registry::SetStringAtt(nullptr, L"Ring/Unterminated", std::wstring(512, L'c').c_str()));
  ASSERT_TRUE(Registry::SetStringAtt(nullptr, L"Ring/Longer", std::wstring(513, L'd').c_str()));
  ASSERT_TRUE(Registry::SetStringAtt(nullptr, L"Ring/MuchTooLong", std::wstring(600, L'e').c_str()));
  EXPECT_EQ(std::wstring(Registry::GetStringAtt(nullptr, L"Ring/Fits", fallback)), std::wstring(511, L'a'));
  EXPECT_EQ(Registry::GetStringAtt(nullptr, L"Ring/TooLong", fallback), fallback);
  EXPECT_EQ(std::wstring(Registry::GetStringAtt(nullptr, L"Ring/Unterminated", fallback)), std::wstring(512, L'c'));
  EXPECT_EQ(Registry::GetStringAtt(nullptr, L"Ring/Longer", fallback), fallback);
  EXPECT_EQ(Registry::GetStringAtt(nullptr, L"Ring/MuchTooLong", fallback), fallback);
  // The ring form ignores the type: a number reads as its bytes.
  ASSERT_EQ(WriteRaw(HKEY_CURRENT_USER, under(L"Ring"), L"Bytes", REG_BINARY, {'h', 0, 'i', 0}), 0);
  EXPECT_STREQ(Registry::GetStringAtt(nullptr, L"Ring/Bytes", fallback), L"hi");
}

}  // namespace

// Out of memory at each allocation in turn: readers answer the value or the
// default (empty text only when even the default cannot be copied), writers
// true with the value stored or false, listings whole or empty.
class RegistryOutOfMemory : public AppKeyTest {};

TEST_F(RegistryOutOfMemory, ReadersWritersAndListingsKeepTheirAnswers) {
  const std::wstring stored(200, L's');
  ASSERT_TRUE(Registry::SetStringAtt(nullptr, L"Oom/Text", stored.c_str()));
  ASSERT_TRUE(Registry::SetIntAtt(nullptr, L"Oom/Number", 3));
  const ustr fallback(std::wstring(300, L'd'));
  ustr text;
  qt_test::AtEveryFailurePoint([&] { text = Registry::GetStringAtt(nullptr, L"Oom/Text", fallback); },
                               [&](bool refused) {
                                 if (!refused || text == stored) {
                                   EXPECT_EQ(stored, text.str());
                                 } else {
                                   EXPECT_TRUE(text == fallback || text.empty()) << text.length();
                                 }
                               });

  const std::wstring written(150, L'w');
  bool ok = false;
  qt_test::AtEveryFailurePoint([&] { ok = Registry::SetStringAtt(nullptr, L"Oom/Written", written.c_str()); },
                               [&](bool refused) {
                                 if (!refused) {
                                   EXPECT_TRUE(ok);
                                 }
                                 if (ok) {
                                   EXPECT_EQ(ReadRaw(HKEY_CURRENT_USER, under(L"Oom"), L"Written").data,
                                             Utf16(written, false));
                                 }
                               });

  std::vector<std::pair<ustr_pre<32>, unsigned long>> values;
  qt_test::AtEveryFailurePoint([&] { values = Registry::EnumerateValues(nullptr, L"Oom/"); },
                               [&](bool refused) {
                                 if (!refused || !values.empty()) {
                                   EXPECT_EQ(3u, values.size());
                                 }
                               });
}
