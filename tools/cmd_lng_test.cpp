#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "command.h"
#include "tool_test_support.h"
#include "testsupport/qt_test.h"

namespace {

using qt_tool_test::Result;

const char kDefinition[] =
    "qlgdef 1\nsource 1512\nlanguage 1512 en \"English\"\nlanguage 1513 de \"German\"\nlanguage 1515 fr \"French\"\n";

// Texts that exercise the exchange formats: quotes, markup characters,
// line breaks with CR, edge blanks, placeholders, a note over two lines.
const char kModule[] =
    "# File comment\n"
    "qlg 1\n"
    "module QNC\n"
    "\n"
    "# About the first text\n"
    "text 607\n"
    "\tnote \"Shown when\\nthe file is gone\"\n"
    "\t1512 \"File not found\"\n"
    "\t1513 \"Datei nicht gefunden\"\n"
    "\n"
    "text 700\n"
    "\t1512 \"Line one\\r\\nLine \\\"two\\\" <&> %s of %d\"\n"
    "\t1513 \"Zeile eins\\r\\nZeile \\\"zwei\\\" <&> %s von %d\"\n"
    "\n"
    "text 701\n"
    "\t1512 \"  padded  \"\n"
    "\n"
    "text 702\n"
    "\t1512 \"100 %% of %s\"\n"
    "\t1515 \"100 %% de %s\"\n";

Result Lng(const std::vector<std::string>& args) { return qt_tool_test::RunTool("lng", args); }

bool Write(const std::string& path, const std::string& text) {
  FILE* f = std::fopen(path.c_str(), "wb");
  if (!f) return false;
  std::fwrite(text.data(), 1, text.size(), f);
  return std::fclose(f) == 0;
}

class LngTool : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(Write(dir_.file("QuilQlg.ddq"), kDefinition));
    ASSERT_TRUE(Write(qlg(), kModule));
  }
  std::string qlg() const { return dir_.file("QNCommon.qlg"); }
  std::string qlgText() const { return qt_test::ReadFileBytes(qlg()); }
  std::string replaced(std::string text, const std::string& what, const std::string& with) {
    const size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    if (at != std::string::npos) text.replace(at, what.size(), with);
    return text;
  }

  qt_test::TempDir dir_;
};

TEST_F(LngTool, PoExportNamesUnitsByModuleAndId) {
  const Result r = Lng({"export", "--lang", "de", qlg()});
  ASSERT_EQ(r.code, 0) << r.err;
  EXPECT_NE(r.out.find("\"Language: de\\n\""), std::string::npos);
  EXPECT_NE(r.out.find("#. Shown when\n#. the file is gone\nmsgctxt \"QNC:607\"\nmsgid \"File not found\"\n"
                       "msgstr \"Datei nicht gefunden\"\n"),
            std::string::npos)
      << r.out;
  EXPECT_NE(r.out.find("#, c-format\nmsgctxt \"QNC:700\"\nmsgid \"\"\n\"Line one\\r\\n\"\n"), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("msgctxt \"QNC:701\"\nmsgid \"  padded  \"\nmsgstr \"\"\n"), std::string::npos) << r.out;

  EXPECT_EQ(Lng({"export", "--lang", "en", qlg()}).code, 2);  // nothing to translate into
  EXPECT_EQ(Lng({"export", "--lang", "xx", qlg()}).code, 2);
  EXPECT_EQ(Lng({"export", qlg()}).code, 2);
}

TEST_F(LngTool, UntouchedExportsImportWithoutChange) {
  const std::string before = qlgText();
  for (const char* name : {"de.po", "de.xlf", "fr.po", "fr.xlf"}) {
    SCOPED_TRACE(name);
    const std::string lang(name, 2);
    ASSERT_EQ(Lng({"export", "--lang", lang, "-o", dir_.file(name), qlg()}).code, 0);
    const Result r = Lng({"import", qlg(), dir_.file(name)});
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_NE(r.out.find(": 0 updated"), std::string::npos) << r.out;
    EXPECT_EQ(qlgText(), before);
  }
}

TEST_F(LngTool, TranslatedPoMergesBack) {
  ASSERT_EQ(Lng({"export", "--lang", "fr", "-o", dir_.file("fr.po"), qlg()}).code, 0);
  std::string po = qt_test::ReadFileBytes(dir_.file("fr.po"));
  po = replaced(po, "msgid \"File not found\"\nmsgstr \"\"", "msgid \"File not found\"\nmsgstr \"Fichier \\\"introuvable\\\"\"");
  po = replaced(po, "msgid \"  padded  \"\nmsgstr \"\"", "msgid \"  padded  \"\nmsgstr \"\"\n\" rembourr\xC3\xA9 \"");
  ASSERT_TRUE(Write(dir_.file("fr.po"), po));

  const Result r = Lng({"import", qlg(), dir_.file("fr.po")});
  ASSERT_EQ(r.code, 0) << r.err;
  EXPECT_NE(r.out.find("2 updated"), std::string::npos) << r.out;
  const std::string merged = qlgText();
  // Comments and notes survive; the new line goes after the existing ones.
  EXPECT_EQ(merged.find("# File comment\nqlg 1\nmodule QNC\n\n# About the first text\ntext 607\n"), 0u) << merged;
  EXPECT_NE(merged.find("\t1513 \"Datei nicht gefunden\"\n\t1515 \"Fichier \\\"introuvable\\\"\"\n"), std::string::npos)
      << merged;

  const Result look = Lng({"lookup", "--dir", dir_.path(), "QNCommon.qlg", "701", "fr"});
  EXPECT_EQ(look.code, 0) << look.err;
  EXPECT_EQ(look.out, " rembourr\xC3\xA9 \n");
}

TEST_F(LngTool, TranslatedXliffMergesBackKeepingSpecialCharacters) {
  ASSERT_EQ(Lng({"export", "--lang", "fr", "-o", dir_.file("fr.xlf"), qlg()}).code, 0);
  std::string xlf = qt_test::ReadFileBytes(dir_.file("fr.xlf"));
  xlf = replaced(xlf,
                 "<source>Line one&#13;\nLine \"two\" &lt;&amp;&gt; %s of %d</source>\n"
                 "                <target state=\"needs-translation\"/>",
                 "<source>Line one&#13;\nLine \"two\" &lt;&amp;&gt; %s of %d</source>\n"
                 "<target state=\"translated\">Ligne un&#13;\nLigne \"deux\" &lt;&amp;&gt; %s sur %d</target>");
  ASSERT_TRUE(Write(dir_.file("fr.xlf"), xlf));
  const Result r = Lng({"import", qlg(), dir_.file("fr.xlf")});
  ASSERT_EQ(r.code, 0) << r.err;
  EXPECT_NE(r.out.find("1 updated"), std::string::npos) << r.out;
  EXPECT_NE(qlgText().find("\t1515 \"Ligne un\\r\\nLigne \\\"deux\\\" <&> %s sur %d\"\n"), std::string::npos)
      << qlgText();
}

TEST_F(LngTool, ImportRejectsWhatWouldBreakTheHost) {
  const std::string before = qlgText();
  const std::string header = "msgid \"\"\nmsgstr \"Language: fr\\nX-Qlg-Module: QNC\\n\"\n\n";
  // Swapped placeholders, a stale English text, an unknown text, another
  // module, broken UTF-8: each skipped with its line; the good unit still
  // goes in.
  ASSERT_TRUE(Write(dir_.file("fr.po"), header +
                                            "msgctxt \"QNC:700\"\nmsgid \"Line one\\r\\nLine \\\"two\\\" <&> %s of %d\"\n"
                                            "msgstr \"%d sur %s\"\n\n"
                                            "msgctxt \"QNC:607\"\nmsgid \"File missing\"\nmsgstr \"Absent\"\n\n"
                                            "msgctxt \"QNC:999\"\nmsgid \"x\"\nmsgstr \"y\"\n\n"
                                            "msgctxt \"HPV:607\"\nmsgid \"File not found\"\nmsgstr \"z\"\n\n"
                                            "#, fuzzy\nmsgctxt \"QNC:701\"\nmsgid \"  padded  \"\nmsgstr \"guess\"\n\n"
                                            "msgctxt \"QNC:701\"\nmsgid \"  padded  \"\nmsgstr \"\xC3(\"\n\n"
                                            "msgctxt \"QNC:702\"\nmsgid \"100 %% of %s\"\nmsgstr \"100 %% sur %s\"\n"));
  const Result r = Lng({"import", qlg(), dir_.file("fr.po")});
  EXPECT_EQ(r.code, 1);
  EXPECT_NE(r.err.find("fr.po:4: text 700: placeholders %d %s differ from the English %s %d"), std::string::npos) << r.err;
  EXPECT_NE(r.err.find("fr.po:8: the English text of 607 changed"), std::string::npos) << r.err;
  EXPECT_NE(r.err.find("fr.po:12: text 999 is not in"), std::string::npos) << r.err;
  EXPECT_NE(r.err.find("unit \"HPV:607\" is not a text of module QNC"), std::string::npos) << r.err;
  EXPECT_NE(r.err.find("fr.po:25: text 701: the translation is not valid UTF-8"), std::string::npos) << r.err;
  EXPECT_NE(r.out.find("1 updated, 0 unchanged, 1 untranslated, 5 rejected"), std::string::npos) << r.out;
  EXPECT_EQ(qlgText(), replaced(before, "\t1515 \"100 %% de %s\"", "\t1515 \"100 %% sur %s\""));

  // Broken exchange files change nothing and say where they broke.
  const std::string now = qlgText();
  ASSERT_TRUE(Write(dir_.file("bad.po"), header + "msgctxt \"QNC:607\"\nmsgid \"File not found\nmsgstr \"x\"\n"));
  Result bad = Lng({"import", qlg(), dir_.file("bad.po")});
  EXPECT_EQ(bad.code, 1);
  EXPECT_NE(bad.err.find("bad.po:5: the string has no closing double quote"), std::string::npos) << bad.err;
  ASSERT_TRUE(Write(dir_.file("bad.xlf"), "<xliff version=\"1.2\"><file target-language=\"fr\"><body>\n<trans-unit>"));
  bad = Lng({"import", qlg(), dir_.file("bad.xlf")});
  EXPECT_EQ(bad.code, 1);
  EXPECT_NE(bad.err.find("bad.xlf:2: not well-formed XML"), std::string::npos) << bad.err;
  EXPECT_EQ(qlgText(), now);
}

TEST_F(LngTool, CheckReportsErrorsAndUntranslatedTexts) {
  Result r = Lng({"check", qlg()});
  EXPECT_EQ(r.code, 0) << r.err;
  EXPECT_NE(r.out.find("2 untranslated into de (1513): 701, 702"), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("3 untranslated into fr (1515): 607, 700, 701"), std::string::npos) << r.out;

  ASSERT_TRUE(Write(qlg(), replaced(kModule, "%s von %d", "%d von %s")));
  r = Lng({"check", "--lang", "de", qlg()});
  EXPECT_EQ(r.code, 1);
  EXPECT_NE(r.err.find("QNCommon.qlg:13: text 700 (de): placeholders %d %s differ from the English %s %d"),
            std::string::npos)
      << r.err;
  EXPECT_EQ(r.out.find("into fr"), std::string::npos) << r.out;

  ASSERT_TRUE(Write(qlg(), std::string(kModule) + "\ntext 607\n\t1512 \"again\"\n"));
  r = Lng({"check", qlg()});
  EXPECT_EQ(r.code, 1);
  EXPECT_NE(r.err.find("QNCommon.qlg:22: text 607 appears twice (first at line 6)"), std::string::npos) << r.err;
}

TEST_F(LngTool, LookupAnswersAsTheLibraryReads) {
  Result r = Lng({"lookup", "--dir", dir_.path(), "QNC", "607", "1513"});
  EXPECT_EQ(r.code, 0) << r.err;
  EXPECT_EQ(r.out, "Datei nicht gefunden\n");
  r = Lng({"lookup", "--dir", dir_.path(), "3", "701", "de"});
  EXPECT_EQ(r.code, 1);
  EXPECT_NE(r.err.find("no text 701"), std::string::npos);
  EXPECT_EQ(Lng({"lookup", "--dir", dir_.path(), "QNU", "1", "de"}).code, 2);  // a module without texts

  // The files installed beside the library.
  r = Lng({"lookup", "HPV", "36197", "de"});
  EXPECT_EQ(r.code, 0) << r.err;
  EXPECT_EQ(r.out, "Deutsch\n");
}

}  // namespace

TEST_F(LngTool, ImportRefusesATranslationIntoAnotherLanguageThanNamed) {
  ASSERT_EQ(Lng({"export", "--lang", "fr", "-o", dir_.file("fr.po"), qlg()}).code, 0);
  std::string po = qt_test::ReadFileBytes(dir_.file("fr.po"));
  po = replaced(po, "msgid \"File not found\"\nmsgstr \"\"", "msgid \"File not found\"\nmsgstr \"Fichier introuvable\"");
  ASSERT_TRUE(Write(dir_.file("fr.po"), po));
  const std::string before = qlgText();
  for (const char* named : {"de", "de_DE", "1513"}) {
    SCOPED_TRACE(named);
    const Result r = Lng({"import", "--lang", named, qlg(), dir_.file("fr.po")});
    EXPECT_EQ(r.code, 1);
    EXPECT_NE(r.err.find("a translation into fr, not " + std::string(named)), std::string::npos) << r.err;
    EXPECT_EQ(qlgText(), before);
  }
  // Naming the file's own language, in any of its forms, is fine.
  const Result r = Lng({"import", "--lang", "fr_FR", qlg(), dir_.file("fr.po")});
  EXPECT_EQ(r.code, 0) << r.err;
  EXPECT_NE(qlgText().find("\t1515 \"Fichier introuvable\"\n"), std::string::npos);
}

TEST_F(LngTool, SaysWhyAFileCannotBeRead) {
  Result r = Lng({"import", qlg(), dir_.file("missing.po")});
  EXPECT_EQ(r.code, 1);
  EXPECT_NE(r.err.find("missing.po: cannot read the file: no such file"), std::string::npos) << r.err;
  std::filesystem::create_directory(std::filesystem::u8path(dir_.file("folder.qlg")));
  r = Lng({"check", dir_.file("folder.qlg")});
  EXPECT_EQ(r.code, 1);
  EXPECT_NE(r.err.find("folder.qlg: cannot read the file: it is a folder"), std::string::npos) << r.err;
  r = Lng({"export", "--lang", "de", "--ddq", dir_.file("none.ddq"), qlg()});
  EXPECT_EQ(r.code, 1);
  EXPECT_NE(r.err.find("none.ddq: cannot read the file: no such file"), std::string::npos) << r.err;
}

TEST_F(LngTool, FilesNamedOutsideTheAnsiCodePageAreFound) {
  const std::string folder = dir_.path() + "/\xe7\xbf\xbb\xe8\xa8\xb3 \xc3\xbc";
  std::filesystem::create_directory(std::filesystem::u8path(folder));
  const auto put = [](const std::string& path, const std::string& text) {
    std::ofstream(std::filesystem::u8path(path), std::ios::binary) << text;
  };
  put(folder + "/QuilQlg.ddq", kDefinition);
  put(folder + "/QNCommon.qlg", kModule);
  const std::string qlgFile = folder + "/QNCommon.qlg", po = folder + "/\xce\xb4.po";
  Result r = Lng({"export", "--lang", "fr", "-o", po, qlgFile});
  ASSERT_EQ(r.code, 0) << r.err;
  std::ifstream in(std::filesystem::u8path(po), std::ios::binary);
  std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  text = replaced(text, "msgid \"File not found\"\nmsgstr \"\"", "msgid \"File not found\"\nmsgstr \"Fichier\"");
  put(po, text);
  r = Lng({"import", qlgFile, po});
  EXPECT_EQ(r.code, 0) << r.err;
  EXPECT_NE(r.out.find(qlgFile + ": 1 updated"), std::string::npos) << r.out;
  r = Lng({"check", qlgFile});
  EXPECT_EQ(r.code, 0) << r.err;
}
