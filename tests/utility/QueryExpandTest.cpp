#include "utility/QueryExpand.h"

#include <gtest/gtest.h>

#include "TestDataDir.h"
#include "utility/ErrorLog.h"

namespace {

std::vector<std::string> Forms(const CQueryExpand& dict, const std::string& sWord) {
  const std::vector<tstring>* pForms = dict.Expand(sWord);
  return pForms ? *pForms : std::vector<std::string>{};
}

std::string WriteList(const CTempDir& dir, const std::string& sName, const std::string& sText) {
  const std::string sPath = dir.Path() + "/" + sName;
  FILE* fp = fopen(sPath.c_str(), "wb");
  fwrite(sText.data(), 1, sText.size(), fp);
  fclose(fp);
  return sPath;
}

TEST(QueryExpandTest, ImportsLinesOfEveryFormAndRefusesTheBadOnes) {
  CTempDir dir;
  CQueryExpand dict(dir.Path().c_str(), nullptr);
  const std::string sList = WriteList(dir, "sim.txt",
                                      "\xEF\xBB\xBF# similar words\n"
                                      "部署 布署 部属\r\n"
                                      "按装-->安装\n"
                                      "\n"
                                      "孤词\n"                 // no form
                                      "坏\xFF\xFE 词\n"        // not UTF-8
                                      "部署\t部暑 布署\n");    // again: new forms only
  EXPECT_EQ(dict.SimDictGenerate(sList.c_str(), nullptr), 3);
  EXPECT_EQ(Forms(dict, "部署"), (std::vector<std::string>{"布署", "部属", "部暑"}));
  EXPECT_EQ(Forms(dict, "按装"), std::vector<std::string>{"安装"});
  EXPECT_TRUE(Forms(dict, "孤词").empty());
  EXPECT_EQ(dict.GetCount(), 2u);
}

TEST(QueryExpandTest, SavedDictionaryIsReadBackWithItsUserWords) {
  CTempDir dir;
  {
    CQueryExpand dict(dir.Path().c_str(), "SpellError");
    const std::string sList = WriteList(dir, "a.txt", "按装 安装\n");
    const std::string sMore = WriteList(dir, "b.txt", "既使 即使\n");
    EXPECT_EQ(dict.SimDictGenerate(sList.c_str(), sMore.c_str()), 2);
    EXPECT_EQ(dict.GetFilename(), dir.Path() + "/SpellError");
  }
  CQueryExpand reread(dir.Path().c_str(), "SpellError");
  EXPECT_EQ(Forms(reread, "按装"), std::vector<std::string>{"安装"});
  EXPECT_EQ(Forms(reread, "既使"), std::vector<std::string>{"即使"});
  EXPECT_EQ(ReadWholeFile(dir.Path() + "/SpellError_userdict.txt"), "按装\tn\n既使\tn\n");
}

TEST(QueryExpandTest, AFailedImportLeavesTheDictionaryAndItsFileWhole) {
  CTempDir dir;
  CQueryExpand dict(dir.Path().c_str(), nullptr);
  ASSERT_EQ(dict.SimDictGenerate(WriteList(dir, "a.txt", "按装 安装\n").c_str(), nullptr), 1);
  const std::string sSaved = ReadWholeFile(dir.Path() + "/SimDict.txt");
  EXPECT_EQ(dict.SimDictGenerate((dir.Path() + "/missing.txt").c_str(), nullptr), 0);
  EXPECT_NE(GetLastError().find("missing.txt"), std::string::npos);
  EXPECT_EQ(dict.SimDictGenerate(WriteList(dir, "b.txt", "新词 新字\n").c_str(), (dir.Path() + "/gone.txt").c_str()), 0);
  EXPECT_EQ(dict.SimDictGenerate(nullptr, nullptr), 0);
  EXPECT_EQ(ReadWholeFile(dir.Path() + "/SimDict.txt"), sSaved);
  EXPECT_TRUE(Forms(dict, "新词").empty());
  EXPECT_EQ(Forms(dict, "按装"), std::vector<std::string>{"安装"});
}

}  // namespace
