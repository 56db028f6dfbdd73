#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "settings/lng_test_support.h"
#include "settings/qlg_format.h"
#include "settings/qlg_reader.h"

namespace {

class QlgReader : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(lng_test::WriteText(dir_.file("QuilQlg.ddq"), lng_test::kDefinition)); }

  bool load(const std::string& text) {
    lng_test::WriteText(dir_.file("m.qlg"), text);
    return reader_.init(dir_.wfile("QuilQlg.ddq").c_str(), dir_.wfile("m.qlg").c_str());
  }
  std::wstring get(long id, const wchar_t* fallback = L"<default>") {
    CWsz out;
    reader_.getText(id, out, fallback);
    return out.c_str();
  }

  qt_test::TempDir dir_;
  CQlg reader_;
};

TEST_F(QlgReader, ReadsTextsOfTheActiveLanguage) {
  ASSERT_TRUE(load(
      "\xEF\xBB\xBF# a comment\r\n"
      "qlg 1\r\n"
      "module HPV\r\n"
      "\r\n"
      "text 1\r\n"
      "  note \"for translators\"\r\n"
      "  1512 \"Line\\none \\\"quoted\\\" \\\\ tab\\t end\"\r\n"
      "  1513 \"Gr\xC3\xBC\xC3\x9F""e \xF0\x9F\x98\x80\"   \r\n"
      "text -5\r\n"
      "\t1513 \"\\x01\"\r\n"))
      << reader_.lastError();
  EXPECT_EQ(reader_.textCount(), 3u);
  EXPECT_EQ(get(1), L"<default>");  // no language chosen yet

  EXPECT_TRUE(reader_.setActiveLanguage(1512));
  EXPECT_EQ(get(1), L"Line\none \"quoted\" \\ tab\t end");
  EXPECT_EQ(get(-5), L"<default>");
  EXPECT_EQ(get(2, nullptr), L"");

  EXPECT_TRUE(reader_.setActiveLanguage(1513));
  const std::wstring german = get(1);
  // U+1F600 is a surrogate pair where wchar_t has 16 bits.
  EXPECT_EQ(german.size(), sizeof(wchar_t) == 2 ? 8u : 7u);
  EXPECT_EQ(german.substr(0, 5), L"Gr\u00FC\u00DFe");
  EXPECT_EQ(get(-5), std::wstring(1, L'\x01'));

  EXPECT_FALSE(reader_.setActiveLanguage(1515));  // defined, but no texts
  EXPECT_EQ(reader_.activeLanguageId(), 1515);
  EXPECT_EQ(get(1), L"<default>");
}

TEST_F(QlgReader, ManyTextsAreAllFound) {
  std::string text = "qlg 1\nmodule HPV\n";
  for (int id = 0; id < 5000; ++id) {
    text += "text " + std::to_string(id * 7 - 9000) + "\n\t1513 \"t" + std::to_string(id) + "\"\n";
  }
  ASSERT_TRUE(load(text)) << reader_.lastError();
  reader_.setActiveLanguage(1513);
  for (int id = 0; id < 5000; ++id) {
    ASSERT_EQ(get(id * 7 - 9000), L"t" + std::to_wstring(id));
    ASSERT_EQ(get(id * 7 - 8999), L"<default>");
  }
}

struct Broken {
  const char* text;
  int line;
  const char* message;
};

TEST_F(QlgReader, MalformedFilesNameFileAndLineAndLeaveTheReaderEmpty) {
  const Broken cases[] = {
      {"", 0, "empty file"},
      {"qlg 2\n", 1, "unsupported format version 2"},
      {"text 1\n", 1, "header line"},
      {"qlg 1\ntext 1\n", 2, "before the \"module\" line"},
      {"qlg 1\nmodule A\nmodule B\n", 3, "second \"module\""},
      {"qlg 1\nmodule A\n1512 \"x\"\n", 3, "outside a \"text\""},
      {"qlg 1\nmodule A\ntext x1\n", 3, "not a number"},
      {"qlg 1\nmodule A\ntext 99999999999\n", 3, "out of range"},
      {"qlg 1\nmodule A\ntext 1\n\t1599 \"x\"\n", 4, "language 1599 is not defined"},
      {"qlg 1\nmodule A\ntext 1\n\t1513 \"a\"\n\t1513 \"b\"\n", 5, "first at line 4"},
      {"qlg 1\nmodule A\ntext 1\n\t1513 \"a\"\ntext 2\ntext 1\n", 6, "text 1 appears twice"},
      {"qlg 1\nmodule A\ntext 1\n\t1513 \"open\n", 4, "no closing double quote"},
      {"qlg 1\nmodule A\ntext 1\n\t1513 \"a\" b\n", 4, "after the closing double quote"},
      {"qlg 1\nmodule A\ntext 1\n\t1513 \"\\q\"\n", 4, "unknown escape \\q"},
      {"qlg 1\nmodule A\ntext 1\n\t1513 \"\\x00\"\n", 4, "\\x takes two hex digits"},
      {"qlg 1\nmodule A\ntext 1\n\t1513 \"\xC3\x28\"\n", 4, "not valid UTF-8"},
      {"qlg 1\nmodule A\ntext 1\n\t1513 \"\xED\xA0\x80\"\n", 4, "not valid UTF-8"},  // a lone surrogate
      {"qlg 1\nmodule A\ntext 1\n\t1513 \"a\x01\"\n", 4, "control character"},
      {"qlg 1\nmodule A\ntext 1\nnote \"a\"\nnote \"b\"\n", 5, "second note"},
      {"qlg 1\nmodule A\nphrase 1\n", 3, "unknown line \"phrase\""},
  };
  for (const Broken& c : cases) {
    SCOPED_TRACE(c.text);
    // A good file first, so that a failure visibly empties the reader.
    ASSERT_TRUE(load("qlg 1\nmodule A\ntext 1\n\t1513 \"good\"\n"));
    reader_.setActiveLanguage(1513);
    ASSERT_EQ(get(1), L"good");

    EXPECT_FALSE(load(c.text));
    const std::string& error = reader_.lastError();
    const std::string where = c.line ? "m.qlg:" + std::to_string(c.line) + ": " : "m.qlg: ";
    EXPECT_NE(error.find(where), std::string::npos) << error;
    EXPECT_NE(error.find(c.message), std::string::npos) << error;
    EXPECT_EQ(get(1), L"<default>");
    EXPECT_EQ(reader_.textCount(), 0u);
    EXPECT_EQ(reader_.activeLanguageId(), 1513);
  }
}

TEST_F(QlgReader, MissingOrBrokenDefinitionFile) {
  EXPECT_FALSE(reader_.init(dir_.wfile("none.ddq").c_str(), dir_.wfile("m.qlg").c_str()));
  EXPECT_NE(reader_.lastError().find("none.ddq: cannot read"), std::string::npos) << reader_.lastError();

  lng_test::WriteText(dir_.file("QuilQlg.ddq"), "qlgdef 1\nsource 1512\nlanguage 1513 de \"German\"\n");
  EXPECT_FALSE(load("qlg 1\nmodule A\n"));
  EXPECT_NE(reader_.lastError().find("QuilQlg.ddq:2: the source language 1512 is not defined"), std::string::npos)
      << reader_.lastError();

  const char* defs[] = {
      "qlgdef 1\nsource 1512\nlanguage 1512 en \"E\"\nlanguage 1512 de \"G\"\n",
      "qlgdef 1\nsource 1512\nlanguage 1512 en \"E\"\nlanguage 1513 EN \"G\"\n",
      "qlgdef 1\nlanguage 1512 en \"E\"\n",
      "qlgdef 1\nsource 1512\nlanguage 1512 e/n \"E\"\n",
  };
  for (const char* def : defs) {
    qt::qlg::Definition parsed;
    qt::qlg::ParseError error;
    EXPECT_FALSE(qt::qlg::ParseDefinition(def, std::strlen(def), "d.ddq", &parsed, &error)) << def;
    EXPECT_EQ(error.file, "d.ddq");
  }
}

TEST(QlgFormat, QuotedTextsReadBackUnchanged) {
  const std::string samples[] = {"plain", "", "  edges  ", "a\"b\\c", "line\r\nbreak\ttab", "\x01\x1F\x7F",
                                 "\xE2\x82\xAC 100 %d%%"};
  struct Collect : qt::qlg::QlgHandler {
    std::string got;
    void onText(int, int) override {}
    void onTranslation(int, const char* utf8, size_t length, int) override { got.assign(utf8, length); }
  };
  qt::qlg::Definition def;
  def.sourceLanguage = 1512;
  def.languages.push_back(qt::qlg::Language{1512, "en", "English"});
  for (const std::string& s : samples) {
    const std::string file = "qlg 1\nmodule M\ntext 1\n\t1512 " + qt::qlg::QuoteText(s) + "\n";
    Collect collect;
    qt::qlg::ParseError error;
    ASSERT_TRUE(qt::qlg::ParseQlg(file.data(), file.size(), "f", def, collect, &error)) << error.describe();
    EXPECT_EQ(collect.got, s);
  }
}

}  // namespace
