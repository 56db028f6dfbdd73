#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "Registry.h"
#include "core/fs.h"
#include "core/fs_platform.h"
#include "command.h"
#include "tool_test_support.h"
#include "qt_test.h"
#include "qn_utf.h"
#include "settings/regstore.h"

namespace {

using qt_tool_test::Result;

Result Reg(const std::vector<std::string>& args) { return qt_tool_test::RunTool("reg", args); }

std::vector<BYTE> Raw(HKEY root, const std::wstring& key, const std::wstring& name, DWORD* type = nullptr) {
  std::vector<BYTE> data;
  HKEY k = nullptr;
  if (qt_reg::OpenKey(root, key.c_str(), qt_reg::kKeyQueryValue, &k) != 0) return {0xEE};
  if (qt_reg::ReadValue(k, name.c_str(), type, &data) != 0) data = {0xEE};
  qt_reg::CloseKey(k);
  return data;
}

bool Exists(HKEY root, const std::wstring& key) {
  HKEY k = nullptr;
  if (qt_reg::OpenKey(root, key.c_str(), qt_reg::kKeyQueryValue, &k) != 0) return false;
  qt_reg::CloseKey(k);
  return true;
}

std::string Utf16File(const std::wstring& text) {
  const std::vector<BYTE> bytes = qt_reg::ToUtf16Bytes(text, false);
  return std::string("\xFF\xFE", 2) + std::string(bytes.begin(), bytes.end());
}

void WriteFile(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

class RegCommand : public ::testing::Test {
 protected:
  void SetUp() override {
    company_ = qt_test::UniqueName("QtRegTool");
    key_ = "HKCU\\Software\\" + company_;
    wkey_ = L"Software\\" + qt_test::Widen(company_);
  }
  void TearDown() override { qt_reg::DeleteTree(HKEY_CURRENT_USER, wkey_.c_str()); }
  std::string company_, key_;
  std::wstring wkey_;
  qt_test::TempDir dir_;
};

TEST_F(RegCommand, BadArgumentsChangeNothing) {
  const std::vector<std::vector<std::string>> bad = {
      {},
      {"frobnicate", key_},
      {"add"},
      {"add", "HKXX\\Software\\x", "/v", "a", "/d", "1"},
      {"add", key_, "/v", "a", "/ve"},
      {"add", key_, "/v", "a", "/t", "REG_WHATEVER"},
      {"add", key_, "/v", "a", "/t", "REG_DWORD", "/d", "12abc"},
      {"add", key_, "/v", "a", "/t", "REG_DWORD", "/d", "0x100000000"},
      {"add", key_, "/v", "a", "/t", "REG_BINARY", "/d", "abc"},
      {"add", key_, "/v", "a", "/s", ","},
      {"add", key_, "/v"},
      {"add", key_, "/v", "a", "/v", "b"},
      {"add", "HKCU\\Software\\\\double"},
      {"delete", key_},
      {"export", key_},
      {"import"},
  };
  for (const auto& args : bad) {
    const Result r = Reg(args);
    EXPECT_EQ(r.code, 2) << args.size();
    EXPECT_NE(r.err.find("usage"), std::string::npos);
  }
  EXPECT_FALSE(Exists(HKEY_CURRENT_USER, wkey_));
}

TEST_F(RegCommand, AddQueryAndDeleteWithRegExeArguments) {
  EXPECT_EQ(Reg({"add", key_ + "\\Values", "/v", "Text", "/d", "yes please"}).code, 0);
  EXPECT_EQ(Reg({"add", key_ + "\\Values", "/v", "Hex", "/t", "REG_DWORD", "/d", "0x1F"}).code, 0);
  EXPECT_EQ(Reg({"add", key_ + "\\Values", "-v", "Big", "-t", "reg_qword", "-d", "4294967296"}).code, 0);
  EXPECT_EQ(Reg({"add", key_ + "\\Values", "/v", "List", "/t", "REG_MULTI_SZ", "/d", "a;bc", "/s", ";"}).code, 0);
  EXPECT_EQ(Reg({"add", key_ + "\\Values", "/v", "Blob", "/t", "REG_BINARY", "/d", "00ff10"}).code, 0);
  EXPECT_EQ(Reg({"add", key_ + "\\Values", "/ve", "/t", "REG_EXPAND_SZ", "/d", "%TEMP%\\x"}).code, 0);

  DWORD type = 0;
  EXPECT_EQ(Raw(HKEY_CURRENT_USER, wkey_ + L"\\Values", L"Text", &type), qt_reg::ToUtf16Bytes(L"yes please", true));
  EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
  EXPECT_EQ(Raw(HKEY_CURRENT_USER, wkey_ + L"\\Values", L"Hex", &type), std::vector<BYTE>({0x1F, 0, 0, 0}));
  EXPECT_EQ(type, static_cast<DWORD>(REG_DWORD));
  EXPECT_EQ(Raw(HKEY_CURRENT_USER, wkey_ + L"\\Values", L"Big", &type), std::vector<BYTE>({0, 0, 0, 0, 1, 0, 0, 0}));
  EXPECT_EQ(Raw(HKEY_CURRENT_USER, wkey_ + L"\\Values", L"List"),
            std::vector<BYTE>({'a', 0, 0, 0, 'b', 0, 'c', 0, 0, 0, 0, 0}));
  EXPECT_EQ(Raw(HKEY_CURRENT_USER, wkey_ + L"\\Values", L"Blob"), std::vector<BYTE>({0, 0xFF, 0x10}));
  EXPECT_EQ(Raw(HKEY_CURRENT_USER, wkey_ + L"\\Values", L"", &type), qt_reg::ToUtf16Bytes(L"%TEMP%\\x", true));
  EXPECT_EQ(type, static_cast<DWORD>(REG_EXPAND_SZ));

  // An existing value is kept unless /f says otherwise.
  Result r = Reg({"add", key_ + "\\Values", "/v", "Text", "/d", "no"});
  EXPECT_EQ(r.code, 1);
  EXPECT_NE(r.err.find("/f"), std::string::npos);
  EXPECT_EQ(Reg({"add", key_ + "\\Values", "/v", "text", "/d", "no", "/f"}).code, 0);
  EXPECT_EQ(Raw(HKEY_CURRENT_USER, wkey_ + L"\\Values", L"Text"), qt_reg::ToUtf16Bytes(L"no", true));

  r = Reg({"query", key_ + "\\Values", "/v", "Hex"});
  EXPECT_EQ(r.code, 0);
  EXPECT_NE(r.out.find("    Hex    REG_DWORD    0x1f\n"), std::string::npos) << r.out;
  r = Reg({"query", key_, "/s"});
  EXPECT_EQ(r.code, 0);
  EXPECT_NE(r.out.find("    List    REG_MULTI_SZ    a\\0bc\n"), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("    Blob    REG_BINARY    00FF10\n"), std::string::npos);
  EXPECT_NE(r.out.find("    (Default)    REG_EXPAND_SZ    %TEMP%\\x\n"), std::string::npos);
  r = Reg({"query", key_});
  EXPECT_NE(r.out.find("\\" + company_ + "\\Values\n"), std::string::npos) << "subkeys are listed" << r.out;
  EXPECT_EQ(r.out.find("REG_DWORD"), std::string::npos) << "without /s values below are not";

  EXPECT_EQ(Reg({"delete", key_ + "\\Values", "/v", "Hex", "/f"}).code, 0);
  r = Reg({"query", key_ + "\\Values", "/v", "Hex"});
  EXPECT_EQ(r.code, 1);
  EXPECT_NE(r.err.find("unable to find"), std::string::npos);
  EXPECT_EQ(Reg({"delete", key_ + "\\Values", "/va", "/f"}).code, 0);
  EXPECT_EQ(Raw(HKEY_CURRENT_USER, wkey_ + L"\\Values", L"Blob"), std::vector<BYTE>({0xEE}));
  EXPECT_EQ(Reg({"delete", key_, "/f"}).code, 0);
  EXPECT_FALSE(Exists(HKEY_CURRENT_USER, wkey_));
  EXPECT_EQ(Reg({"delete", key_, "/f"}).code, 1);
}

TEST_F(RegCommand, TurnsOnTheStringIdSwitch) {
  const std::string developer = key_ + "\\Designer\\2024\\Developer";
  ASSERT_EQ(Reg({"add", developer, "/v", "ShowStringIDs", "/d", "yesplease", "/f"}).code, 0);
  RegInt_Init(qt_test::Widen(company_).c_str(), L"Designer", L"2024");
  EXPECT_EQ(Registry::GetStringAtt(nullptr, L"Developer/ShowStringIDs", ustr(L"no")).str(), L"yesplease");
}

TEST_F(RegCommand, ExportWritesVersion5TextThatImportRestores) {
  const std::wstring values = wkey_ + L"\\Export";
  ASSERT_EQ(Reg({"add", key_ + "\\Export", "/v", "Quote \"and\" slash\\", "/d", "C:\\dir \"x\""}).code, 0);
  ASSERT_EQ(Reg({"add", key_ + "\\Export", "/v", "Num", "/t", "REG_DWORD", "/d", "10"}).code, 0);
  ASSERT_EQ(Reg({"add", key_ + "\\Export", "/v", "Long", "/t", "REG_BINARY", "/d", std::string(100, 'a')}).code, 0);
  ASSERT_EQ(Reg({"add", key_ + "\\Export\\Child", "/v", "Q", "/t", "REG_QWORD", "/d", "1"}).code, 0);
  {
    HKEY k = nullptr;
    ASSERT_EQ(qt_reg::OpenKey(HKEY_CURRENT_USER, values.c_str(), qt_reg::kKeyAllAccess, &k), 0);
    const std::vector<BYTE> unterminated = qt_reg::ToUtf16Bytes(L"bare", false);
    qt_reg::SetValueExact(k, L"Bare", REG_SZ, unterminated.data(), 8);
    qt_reg::CloseKey(k);
  }
  const std::string file = dir_.file("export.reg");
  ASSERT_EQ(Reg({"export", key_ + "\\Export", file}).code, 0);
  const std::string bytes = qt_test::ReadFileBytes(file);
  const std::string expectedStart =
      Utf16File(L"Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\" + values + L"]\r\n");
  EXPECT_EQ(bytes.substr(0, expectedStart.size()), expectedStart);
  // Values come in the order the registry lists them, which differs.
  for (const wchar_t* line : {L"\r\n\"Quote \\\"and\\\" slash\\\\\"=\"C:\\\\dir \\\"x\\\"\"\r\n",
                              L"\r\n\"Num\"=dword:0000000a\r\n", L"\r\n\"Long\"=hex:aa,aa,"})
    EXPECT_NE(bytes.find(Utf16File(line).substr(2)), std::string::npos) << qt_test::Narrow(line);
  EXPECT_NE(bytes.find(Utf16File(L",\\\r\n  aa,").substr(2)), std::string::npos) << "long hex data is wrapped";
  EXPECT_NE(bytes.find(Utf16File(L"\"Q\"=hex(b):01,00,00,00,00,00,00,00\r\n").substr(2)), std::string::npos);

  // A second export needs /y; the file stays as it was without it.
  Result r = Reg({"export", key_ + "\\Export", file});
  EXPECT_EQ(r.code, 1);
  EXPECT_EQ(qt_test::ReadFileBytes(file), bytes);
  EXPECT_EQ(Reg({"export", key_ + "\\Export", file, "/y"}).code, 0);

  const std::vector<BYTE> longBefore = Raw(HKEY_CURRENT_USER, values, L"Long");
  ASSERT_EQ(Reg({"delete", key_, "/f"}).code, 0);
  r = Reg({"import", file});
  ASSERT_EQ(r.code, 0) << r.err;
  EXPECT_EQ(Raw(HKEY_CURRENT_USER, values, L"Quote \"and\" slash\\"), qt_reg::ToUtf16Bytes(L"C:\\dir \"x\"", true));
  EXPECT_EQ(Raw(HKEY_CURRENT_USER, values, L"Num"), std::vector<BYTE>({10, 0, 0, 0}));
  EXPECT_EQ(Raw(HKEY_CURRENT_USER, values, L"Long"), longBefore);
  EXPECT_EQ(Raw(HKEY_CURRENT_USER, values + L"\\Child", L"Q"), std::vector<BYTE>({1, 0, 0, 0, 0, 0, 0, 0}));
  // As with the registry editor, a text comes back with its terminator.
  EXPECT_EQ(Raw(HKEY_CURRENT_USER, values, L"Bare"), qt_reg::ToUtf16Bytes(L"bare", true));
}

TEST_F(RegCommand, ImportReadsRegedit4AndDeletions) {
  const std::string k = "HKEY_CURRENT_USER\\Software\\" + company_;
  const std::string file = dir_.file("old.reg");
  ASSERT_EQ(Reg({"add", key_ + "\\Gone", "/v", "x", "/d", "1"}).code, 0);
  ASSERT_EQ(Reg({"add", key_ + "\\Kept", "/v", "drop", "/d", "1"}).code, 0);
  WriteFile(file, "REGEDIT4\n\n; a comment\n[-" + k + "\\Gone]\n\n[" + k + "\\Kept]\n\"drop\"=-\n"
                  "\"path\"=hex(2):25,54,45,4d,50,25,\\\n    5c,61,00\n"
                  "@=\"default\"\n\"n\"=dword:FFFFFFFF ; trailing comment\n");
  const Result r = Reg({"import", file});
  ASSERT_EQ(r.code, 0) << r.err;
  EXPECT_FALSE(Exists(HKEY_CURRENT_USER, wkey_ + L"\\Gone"));
  EXPECT_EQ(Raw(HKEY_CURRENT_USER, wkey_ + L"\\Kept", L"drop"), std::vector<BYTE>({0xEE}));
  DWORD type = 0;
  // Expandable text in an old file is 8-bit; it is stored as UTF-16.
  EXPECT_EQ(Raw(HKEY_CURRENT_USER, wkey_ + L"\\Kept", L"path", &type), qt_reg::ToUtf16Bytes(L"%TEMP%\\a", true));
  EXPECT_EQ(type, static_cast<DWORD>(REG_EXPAND_SZ));
  EXPECT_EQ(Raw(HKEY_CURRENT_USER, wkey_ + L"\\Kept", L""), qt_reg::ToUtf16Bytes(L"default", true));
  EXPECT_EQ(Raw(HKEY_CURRENT_USER, wkey_ + L"\\Kept", L"n"), std::vector<BYTE>({0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST_F(RegCommand, MalformedFilesAreRefusedWholeWithTheirLine) {
  const std::wstring k = L"HKEY_CURRENT_USER\\" + wkey_;
  const std::wstring good = L"Windows Registry Editor Version 5.00\r\n\r\n[" + k + L"\\First]\r\n\"a\"=\"1\"\r\n";
  struct Case {
    std::wstring tail;
    const char* line;
  };
  const std::vector<Case> cases = {
      {L"[" + k + L"\\Second]\r\n\"b\"=hex:01,0g\r\n", "line 6"},
      {L"[" + k + L"\\Second]\r\n\"b\"=hex:01,\\\r\n  02,,03\r\n", "line 6"},
      {L"\"b\"=\"unterminated\r\n", "line 5"},
      {L"\"b\"=dword:123456789\r\n", "line 5"},
      {L"\"b\"=word:1\r\n", "line 5"},
      {L"[HKEY_NOWHERE\\x]\r\n", "line 5"},
      {L"[" + k + L"\\Second\r\n", "line 5"},
      {L"b=1\r\n", "line 5"},
      {L"[-HKEY_CURRENT_USER]\r\n", "line 5"},
  };
  const std::string file = dir_.file("bad.reg");
  for (const Case& c : cases) {
    WriteFile(file, Utf16File(good + c.tail));
    const Result r = Reg({"import", file});
    EXPECT_EQ(r.code, 1) << qt_test::Narrow(c.tail);
    EXPECT_NE(r.err.find(c.line), std::string::npos) << r.err;
    EXPECT_FALSE(Exists(HKEY_CURRENT_USER, wkey_)) << "nothing was written for " << qt_test::Narrow(c.tail);
  }
  WriteFile(file, Utf16File(L"Windows Registry Editor Version 4.00\r\n[" + k + L"]\r\n"));
  EXPECT_EQ(Reg({"import", file}).code, 1);
  WriteFile(file, "REGEDIT4\n\"value\"=\"before any key\"\n");
  EXPECT_EQ(Reg({"import", file}).code, 1);
  EXPECT_EQ(Reg({"import", dir_.file("missing.reg")}).code, 1);
  EXPECT_FALSE(Exists(HKEY_CURRENT_USER, wkey_));
}

// "日本語" and "名前" as UTF-8 bytes and as wide text.
const char kJapanese[] = "\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E";
const char kName[] = "\xE5\x90\x8D\xE5\x89\x8D";
const wchar_t kWideJapanese[] = L"\u65E5\u672C\u8A9E";
const wchar_t kWideName[] = L"\u540D\u524D";

TEST_F(RegCommand, HelpForEveryOperationAndUnknownOptionsByName) {
  for (const std::vector<std::string>& args : std::vector<std::vector<std::string>>{
           {"--help"}, {"/?"}, {"-h"}, {"add", "/?"}, {"query", "--help"}, {"delete", key_, "-?"},
           {"export", "/h"}, {"import", "--help"}}) {
    const Result r = Reg(args);
    EXPECT_EQ(r.code, 0) << args[0];
    EXPECT_NE(r.out.find("usage"), std::string::npos) << args[0];
    EXPECT_EQ(r.err, "") << args[0];
  }
  for (const std::string option : {"/x", "--frobnicate", "-vv", "/reg:64"}) {
    const Result r = Reg({"add", key_, "/v", "a", option});
    EXPECT_EQ(r.code, 2) << option;
    EXPECT_NE(r.err.find("unknown option '" + option + "'"), std::string::npos) << r.err;
  }
  // A path is no option, also where it starts with "/".
  EXPECT_NE(Reg({"import", dir_.file("none.reg")}).err.find("cannot read"), std::string::npos);
  EXPECT_FALSE(Exists(HKEY_CURRENT_USER, wkey_));
}

TEST_F(RegCommand, NonAnsiArgumentsAndOutputAreUtf8) {
  const std::string key = key_ + "\\" + kName;
  ASSERT_EQ(Reg({"add", key, "/v", kName, "/d", kJapanese, "/f"}).code, 0);
  EXPECT_EQ(Raw(HKEY_CURRENT_USER, wkey_ + L"\\" + kWideName, kWideName), qt_reg::ToUtf16Bytes(kWideJapanese, true));
  const Result r = Reg({"query", key, "/v", kName});
  EXPECT_EQ(r.code, 0);
  EXPECT_NE(r.out.find(std::string(kName) + "    REG_SZ    " + kJapanese), std::string::npos) << r.out;
  EXPECT_NE(Reg({"query", key_, "/s"}).out.find(std::string("\\") + kName), std::string::npos);
  EXPECT_EQ(Reg({"delete", key, "/v", kName, "/f"}).code, 0);
  EXPECT_EQ(Raw(HKEY_CURRENT_USER, wkey_ + L"\\" + kWideName, kWideName), std::vector<BYTE>{0xEE});
}

// A zero inside a name would cut it short where it is passed on: a key
// line deleting "Company" + zero + "\\Junk" deleted all of "Company".
TEST_F(RegCommand, NamesWithAZeroAreRefusedAndDataKeepsIt) {
  ASSERT_EQ(Reg({"add", key_ + "\\Kept", "/v", "a", "/d", "1"}).code, 0);
  const std::wstring k = L"HKEY_CURRENT_USER\\" + wkey_;
  const std::wstring head = L"Windows Registry Editor Version 5.00\r\n\r\n";
  const std::wstring zero(1, L'\0');
  const std::string file = dir_.file("zero.reg");
  // Each file first makes a key of its own, which must not be there after.
  const std::wstring fresh = L"[" + k + L"\\Fresh]\r\n\"f\"=dword:1\r\n";
  for (const std::wstring& body :
       {L"[-" + k + zero + L"\\Junk]\r\n", L"[" + k + L"\\Kept]\r\n\"kept" + zero + L"x\"=-\r\n",
        L"[" + k + L"\\Kept]\r\n\"Cu" + zero + L"t\"=dword:1\r\n", L"[" + k + L"\\Kept]\r\n\"a\\0b\"=\"2\"\r\n"}) {
    WriteFile(file, Utf16File(head + fresh + body));
    const Result r = Reg({"import", file});
    EXPECT_EQ(r.code, 1);
    EXPECT_NE(r.err.find("zero character"), std::string::npos) << r.err;
    EXPECT_NE(r.err.find(body[1] == L'-' ? "line 5" : "line 6"), std::string::npos) << r.err;
    EXPECT_FALSE(Exists(HKEY_CURRENT_USER, wkey_ + L"\\Fresh"));
    EXPECT_EQ(Raw(HKEY_CURRENT_USER, wkey_ + L"\\Kept", L"a"), qt_reg::ToUtf16Bytes(L"1", true));
  }
  WriteFile(file, Utf16File(head + L"[-" + k + zero + L"\\Junk]\r\n"));
  EXPECT_NE(Reg({"import", file}).err.find("line 3"), std::string::npos);
  WriteFile(file, "REGEDIT4\n\n[-" + key_ + std::string(1, '\0') + "\\Junk]\n");
  EXPECT_EQ(Reg({"import", file}).code, 1);
  EXPECT_TRUE(Exists(HKEY_CURRENT_USER, wkey_ + L"\\Kept"));

  // In data a zero is just a character, and all of the text is kept.
  WriteFile(file, Utf16File(head + L"[" + k + L"\\Kept]\r\n\"b\"=\"x\\0y\"\r\n"));
  ASSERT_EQ(Reg({"import", file}).code, 0);
  EXPECT_EQ(Raw(HKEY_CURRENT_USER, wkey_ + L"\\Kept", L"b"), std::vector<BYTE>({'x', 0, 0, 0, 'y', 0, 0, 0}));
}

TEST_F(RegCommand, AnImportThatFailsLateChangesNothing) {
  const std::wstring k = L"HKEY_CURRENT_USER\\" + wkey_;
  const std::string file = dir_.file("late.reg");
  WriteFile(file, Utf16File(L"Windows Registry Editor Version 5.00\r\n\r\n[" + k + L"\\First]\r\n\"a\"=\"1\"\r\n\r\n[" +
                            k + L"\\" + std::wstring(256, L'n') + L"]\r\n\"b\"=\"2\"\r\n"));
  const Result r = Reg({"import", file});
  EXPECT_EQ(r.code, 1);
  EXPECT_NE(r.err.find("line 6"), std::string::npos) << r.err;
  EXPECT_FALSE(Exists(HKEY_CURRENT_USER, wkey_));
  // The longest name the registry takes is still fine.
  WriteFile(file, Utf16File(L"Windows Registry Editor Version 5.00\r\n\r\n[" + k + L"\\" + std::wstring(255, L'n') +
                            L"]\r\n\"b\"=\"2\"\r\n"));
  EXPECT_EQ(Reg({"import", file}).code, 0);
}

// File names are UTF-8 arguments on every system, also where the system's
// own 8-bit text is no UTF-8; failures say why.
TEST_F(RegCommand, FilesAreNamedInUtf8AndFailuresGiveTheReason) {
  ASSERT_EQ(Reg({"add", key_ + "\\" + kName, "/v", kName, "/d", kJapanese}).code, 0);
  const std::string file = dir_.file(std::string(kJapanese) + ".reg");
  Result r = Reg({"export", key_, file});
  ASSERT_EQ(r.code, 0) << r.err;
  std::string exported;
  ASSERT_EQ(qt::fs::ReadWholeFile(qt_test::Widen(file), &exported), qt::fs::FsError::kOk);
  EXPECT_NE(exported.find(Utf16File(L"\"" + std::wstring(kWideName) + L"\"=\"" + kWideJapanese + L"\"").substr(2)),
            std::string::npos);
  ASSERT_EQ(Reg({"delete", key_, "/f"}).code, 0);
  r = Reg({"import", file});
  ASSERT_EQ(r.code, 0) << r.err;
  EXPECT_EQ(Raw(HKEY_CURRENT_USER, wkey_ + L"\\" + kWideName, kWideName), qt_reg::ToUtf16Bytes(kWideJapanese, true));

  const std::string missing = dir_.file("missing.reg");
  r = Reg({"import", missing});
  EXPECT_EQ(r.code, 1);
  EXPECT_NE(r.err.find("cannot read " + missing + ": no such file or folder"), std::string::npos) << r.err;
  r = Reg({"import", dir_.path()});
  EXPECT_EQ(r.code, 1);
  EXPECT_NE(r.err.find("cannot read " + dir_.path() + ": "), std::string::npos) << r.err;
  const std::string nowhere = dir_.file("none") + "/x.reg";
  r = Reg({"export", key_, nowhere});
  EXPECT_EQ(r.code, 1);
  EXPECT_NE(r.err.find("cannot write " + nowhere + ": no such file or folder"), std::string::npos) << r.err;
  r = Reg({"export", key_, dir_.path(), "/y"});
  EXPECT_EQ(r.code, 1);
  EXPECT_NE(r.err.find("is a folder"), std::string::npos) << r.err;
  EXPECT_TRUE(qt::fs::IsDirectory(dir_.wpath()));
}

// An export that fails on the way leaves the earlier one as it was.
TEST_F(RegCommand, AFailedExportKeepsTheFileItReplaces) {
  ASSERT_EQ(Reg({"add", key_, "/v", "n", "/d", "1"}).code, 0);
  const std::string file = dir_.file("kept.reg");
  ASSERT_EQ(Reg({"export", key_, file}).code, 0);
  const std::string before = qt_test::ReadFileBytes(file);
  ASSERT_FALSE(before.empty());
  ASSERT_EQ(Reg({"add", key_, "/v", "m", "/d", "2"}).code, 0);
  Result r;
  {
    qt::fs::platform::CallsOverride calls;
    calls->write = [](qt::fs::platform::Handle, const void*, size_t, size_t*) { return qt::fs::FsError::kNoSpace; };
    r = Reg({"export", key_, file, "/y"});
  }
  EXPECT_EQ(r.code, 1);
  EXPECT_NE(r.err.find("cannot write " + file + ": no space left on the disk"), std::string::npos) << r.err;
  EXPECT_EQ(qt_test::ReadFileBytes(file), before);
  EXPECT_EQ(Reg({"export", key_, file, "/y"}).code, 0);
  EXPECT_NE(qt_test::ReadFileBytes(file), before);
}

// A lone half of a surrogate pair in a name is refused with its line; whole
// pairs and lone halves in data are kept.
TEST_F(RegCommand, UnpairedSurrogatesInNamesAreRefused) {
  const std::wstring k = L"HKEY_CURRENT_USER\\" + wkey_;
  const std::wstring head = L"Windows Registry Editor Version 5.00\r\n\r\n[" + k + L"\\First]\r\n\"a\"=\"1\"\r\n";
  const std::wstring high(1, static_cast<wchar_t>(0xD800)), low(1, static_cast<wchar_t>(0xDC00));
  const std::string file = dir_.file("surrogate.reg");
  for (const std::wstring& tail : {L"[" + k + L"\\x" + high + L"]\r\n", L"[" + k + L"\\" + low + high + L"]\r\n",
                                   L"\"v" + low + L"\"=dword:1\r\n", L"\"" + high + L"\"=-\r\n"}) {
    WriteFile(file, Utf16File(head + tail));
    const Result r = Reg({"import", file});
    EXPECT_EQ(r.code, 1);
    EXPECT_NE(r.err.find("line 5: "), std::string::npos) << r.err;
    EXPECT_NE(r.err.find("surrogate"), std::string::npos) << r.err;
    EXPECT_FALSE(Exists(HKEY_CURRENT_USER, wkey_));
  }
  const std::wstring pair = high + low;  // U+10000
  WriteFile(file, Utf16File(head + L"\"p" + pair + L"\"=\"" + high + L"\"\r\n"));
  const Result r = Reg({"import", file});
  ASSERT_EQ(r.code, 0) << r.err;
  std::wstring name;
  HKEY key = nullptr;
  ASSERT_EQ(qt_reg::OpenKey(HKEY_CURRENT_USER, (wkey_ + L"\\First").c_str(), qt_reg::kKeyRead, &key), 0);
  std::vector<std::wstring> names;
  for (DWORD i = 0; qt_reg::EnumValue(key, i, &name, nullptr, nullptr) == 0; ++i) names.push_back(name);
  qt_reg::CloseKey(key);
  const std::wstring wanted = L"p" + qn_utf16le_to_wide("\x00\xD8\x00\xDC", 4);
  EXPECT_NE(std::find(names.begin(), names.end(), wanted), names.end());
  EXPECT_EQ(Raw(HKEY_CURRENT_USER, wkey_ + L"\\First", wanted), std::vector<BYTE>({0x00, 0xD8, 0, 0}));
}

// With a UTF-8 byte-order mark an 8-bit file is UTF-8 on every system, and
// its names import and export unchanged.
TEST_F(RegCommand, Regedit4WithAUtf8MarkKeepsNonAsciiNames) {
  const std::string file = dir_.file("marked.reg");
  WriteFile(file, "\xEF\xBB\xBFREGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\" + company_ + "\\" + kJapanese +
                      "]\r\n\"" + kName + "\"=\"" + kJapanese + "\"\r\n");
  Result r = Reg({"import", file});
  ASSERT_EQ(r.code, 0) << r.err;
  EXPECT_EQ(Raw(HKEY_CURRENT_USER, wkey_ + L"\\" + kWideJapanese, kWideName), qt_reg::ToUtf16Bytes(kWideJapanese, true));
  const std::string out = dir_.file("out.reg");
  ASSERT_EQ(Reg({"export", key_ + "\\" + kJapanese, out}).code, 0);
  EXPECT_NE(qt_test::ReadFileBytes(out).find(Utf16File(L"\\" + std::wstring(kWideJapanese) + L"]\r\n\"" + kWideName +
                                                       L"\"=\"" + kWideJapanese + L"\"\r\n")
                                                  .substr(2)),
            std::string::npos);
  WriteFile(file, "\xEF\xBB\xBFREGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\" + company_ + "\\New]\r\n\"" + kName +
                      "\xFF\"=\"1\"\r\n");
  r = Reg({"import", file});
  EXPECT_EQ(r.code, 1);
  EXPECT_NE(r.err.find("line 4: "), std::string::npos) << r.err;
  EXPECT_FALSE(Exists(HKEY_CURRENT_USER, wkey_ + L"\\New"));
}

}  // namespace
