// Pinyin, encoding recognition, country detection and folder listing.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "TestDataDir.h"
#include "utility/CodePage.h"
#include "utility/CodeTrans.h"
#include "utility/CountryDetect.h"
#include "utility/DirBrowser.h"
#include "utility/Pinyin.h"

namespace {

TEST(ServicesTest, PinyinWithoutTones) {
  struct { const char* szWord; const char* szFull; const char* szInitials; } kCases[] = {
      {"中国", "zhongguo", "zg"},
      {"中华人民共和国", "zhonghuarenmingongheguo", "zhrmghg"},
      {"绿色", "luse", "ls"},  // ICU writes lǜ; without marks that is lu
      {"abc", "abc", "a"},
      {"", "", ""},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(GetPinyin(c.szWord), c.szFull) << c.szWord;
    EXPECT_EQ(GetPinyinInitials(c.szWord), c.szInitials) << c.szWord;
  }
}

TEST(ServicesTest, EncodingRecognition) {
  ASSERT_GT(CodeTrans_Initialize((std::string(TARVOS_TEST_DATA_DIR) + "/Data/CodeTrans.model").c_str()), 0);
  std::string sText = "本报告依据国家标准编写，适用于工程建设项目的可行性研究与审查。各章节按照规定的格式排版。";
  std::string sGbk, sBig5;
  ASSERT_TRUE(ConvertCodeSet(sText + sText, "UTF-8", "GB18030", sGbk));
  ASSERT_TRUE(ConvertCodeSet("本報告依據國家標準編寫，適用於工程建設項目的可行性研究與審查。各章節按照規定的格式排版。", "UTF-8",
                             "BIG5", sBig5));
  struct { std::string sData; const char* szWant; } kCases[] = {
      {sText, "UTF-8"},
      {"plain ascii", "UTF-8"},
      {"\xEF\xBB\xBFwith bom", "UTF-8"},
      {std::string("\xFF\xFEh\0i\0", 6), "UTF-16LE"},
      {std::string("\xFE\xFF\0h\0i", 6), "UTF-16BE"},
      {sGbk, "GB18030"},
      {sBig5, "BIG5"},
  };
  for (const auto& c : kCases) EXPECT_EQ(CodeTrans_Detect(c.sData.data(), c.sData.size()), c.szWant) << c.szWant;
  EXPECT_EQ(CodeTrans_Detect(nullptr, 5), "");
  CodeTrans_Destroy();
  EXPECT_EQ(CodeTrans_Detect(sGbk.data(), sGbk.size()), "") << "no candidates without a model";
  EXPECT_EQ(CodeTrans_Initialize("/no/such/model"), -1);
}

TEST(ServicesTest, CountryNamesLongestFirstAndWholeWords) {
  ASSERT_EQ(CountryDetect_Init(TARVOS_TEST_DATA_DIR), 1);
  struct { const char* szText; const char* szWant; } kCases[] = {
      {"中国与印度尼西亚签订协议", "中国|印度尼西亚|"},
      {"中华人民共和国和美利坚合众国", "中国|美国|"},
      {"Trade between China and Viet Nam", "中国|越南|"},
      {"Chadwick visited Chad.", "乍得|"},
      {"南苏丹与苏丹", "南苏丹|苏丹|"},
      {"赤道几内亚、几内亚比绍", "赤道几内亚|几内亚比绍|"},
      {"刚果（金）", "刚果（金）|"},
      {"没有国家名", ""},
  };
  for (const auto& c : kCases) {
    std::string sFound;
    for (const auto& m : CountryDetect_Find(c.szText)) sFound += CountryDetect_GetName(m.country) + "|";
    EXPECT_EQ(sFound, c.szWant) << c.szText;
  }
  CountryDetect_Exit();
  EXPECT_TRUE(CountryDetect_Find("中国").empty());
  EXPECT_EQ(CountryDetect_Init("/no/such/dir"), 0);
}

TEST(ServicesTest, ListsMatchingFilesSortedWithoutDescending) {
  CTempDir dir;
  for (const char* szName : {"b.DOCX", "a.docx", "c.pdf", "noext", "d_tuple.txt"})
    std::ofstream(dir.Path() + "/" + szName) << "x";
  std::filesystem::create_directory(dir.Path() + "/sub");
  std::ofstream(dir.Path() + "/sub/e.docx") << "x";

  auto fnNames = [&](const std::vector<std::string>& vecPaths) {
    std::string s;
    for (const auto& sPath : vecPaths) s += sPath.substr(dir.Path().size() + 1) + "|";
    return s;
  };
  EXPECT_EQ(fnNames(ListFiles(dir.Path(), "*.*", true)), "a.docx|b.DOCX|c.pdf|d_tuple.txt|noext|");
  EXPECT_EQ(fnNames(ListFiles(dir.Path() + "/", "*.docx", true)), "a.docx|b.DOCX|");
  EXPECT_EQ(fnNames(ListFiles(dir.Path(), "*", false)), "a.docx|b.DOCX|c.pdf|d_tuple.txt|noext|sub|");
  EXPECT_TRUE(ListFiles(dir.Path() + "/absent").empty());
}

TEST(ServicesTest, SplitsPaths) {
  struct { const char* szPath; const char* szDir; const char* szName; const char* szExt; } kCases[] = {
      {"/a/b/report.final.docx", "/a/b", "report.final", "docx"},
      {"report.docx", "", "report", "docx"},
      {"/a/.profile", "/a", ".profile", ""},
      {"/a/noext", "/a", "noext", ""},
      {"/a/b.c/name", "/a/b.c", "name", ""},
      {"/file.", "", "file", ""},
  };
  for (const auto& c : kCases) {
    std::string sDir, sName, sExt;
    SplitPath(c.szPath, sDir, sName, sExt);
    EXPECT_EQ(sDir, c.szDir) << c.szPath;
    EXPECT_EQ(sName, c.szName) << c.szPath;
    EXPECT_EQ(sExt, c.szExt) << c.szPath;
  }
}

}  // namespace
