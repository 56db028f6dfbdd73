#include <gtest/gtest.h>

#include "FileNames.h"

TEST(FileNamesAreSame, IgnoresCaseAndSeparatorStyle) {
  EXPECT_TRUE(FileNamesAreSame(L"C:\\Work\\Plan.DWG", L"c:\\work\\plan.dwg"));
  EXPECT_TRUE(FileNamesAreSame(L"C:/Work/Plan.dwg", L"C:\\Work\\Plan.dwg"));
  EXPECT_TRUE(FileNamesAreSame(L"/home/ann/Plan.dwg", L"\\home\\ann\\plan.dwg"));
  EXPECT_TRUE(FileNamesAreSame(L"\\\\Server\\Share\\a.txt", L"//server/share/A.TXT"));
  // Upper-casing reaches beyond ASCII, as the library's other comparisons.
  EXPECT_TRUE(FileNamesAreSame(L"C:\\\u00c4rger\\\u00fcber.txt", L"c:\\\u00e4rger\\\u00dcBER.TXT"));
  EXPECT_TRUE(FileNamesAreSame(nullptr, nullptr));
  EXPECT_FALSE(FileNamesAreSame(nullptr, L"a"));
  EXPECT_FALSE(FileNamesAreSame(L"a", nullptr));
}

TEST(FileNamesAreSame, ResolvesDotSegmentsAndRepeatedSeparators) {
  EXPECT_TRUE(FileNamesAreSame(L".\\plan.dwg", L"plan.dwg"));
  EXPECT_TRUE(FileNamesAreSame(L"./sub/plan.dwg", L"sub\\.\\plan.dwg"));
  EXPECT_TRUE(FileNamesAreSame(L"C:\\a\\b\\..\\c\\x.txt", L"C:\\a\\c\\x.txt"));
  EXPECT_TRUE(FileNamesAreSame(L"C:\\a\\\\c//x.txt", L"C:\\a\\c\\x.txt"));
  EXPECT_TRUE(FileNamesAreSame(L"C:\\..\\x.txt", L"C:\\x.txt")) << "nothing lies above a drive's root";
  EXPECT_TRUE(FileNamesAreSame(L"\\\\?\\C:\\a\\x.txt", L"C:\\a\\x.txt"));
  EXPECT_TRUE(FileNamesAreSame(L"\\\\?\\UNC\\srv\\sh\\x.txt", L"\\\\srv\\sh\\x.txt"));
  EXPECT_TRUE(FileNamesAreSame(L"..\\a\\..\\x.txt", L"..\\x.txt"));

  EXPECT_FALSE(FileNamesAreSame(L"..\\x.txt", L"x.txt")) << "a leading .. of a relative name stays";
  EXPECT_FALSE(FileNamesAreSame(L"\\\\srv\\sh\\..\\x.txt", L"\\\\srv\\x.txt")) << "the share is part of the root";
  EXPECT_FALSE(FileNamesAreSame(L"C:\\a\\x.txt", L"D:\\a\\x.txt"));
  EXPECT_FALSE(FileNamesAreSame(L"C:\\a\\x.txt", L"a\\x.txt"));
  EXPECT_FALSE(FileNamesAreSame(L"C:x.txt", L"C:\\x.txt")) << "drive-relative is not the root";
  EXPECT_FALSE(FileNamesAreSame(L"C:\\a\\x.txt", L"C:\\a\\x.txt.bak"));
  EXPECT_FALSE(FileNamesAreSame(L"C:\\a\\", L"C:\\a")) << "the parts after the last separators differ";
}

TEST(GwFileExtension, TheLastNamesExtensionWithoutItsDotCutToFit) {
  wchar_t ext[32];
  const struct {
    const wchar_t* path;
    const wchar_t* extension;
  } cases[] = {{L"C:\\Prj\\Plant.EPJ", L"EPJ"}, {L"/p/archive.tar.gz", L"gz"}, {L"C:\\a.b\\plant", L""},
               {L"a.b/plant", L""},             {L"plant.", L""},           {L".profile", L"profile"},
               {L"epj", L""},                   {L"", L""}};
  for (const auto& c : cases) {
    ext[0] = L'x';
    EXPECT_EQ(gwfileextension(c.path, ext, 32), 0);
    EXPECT_STREQ(ext, c.extension) << c.path;
  }
  wchar_t small[3];
  EXPECT_EQ(gwfileextension(L"plant.qrdx", small, 3), 0);
  EXPECT_STREQ(small, L"qr");
  EXPECT_EQ(gwfileextension(nullptr, ext, 32), -1);
  EXPECT_EQ(gwfileextension(L"a.b", nullptr, 32), -1);
  EXPECT_EQ(gwfileextension(L"a.b", ext, 0), -1);
}
