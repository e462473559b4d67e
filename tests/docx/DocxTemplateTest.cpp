// The template store: what survives a reopen, key-only edits, deletion with
// compaction, the wildcard search and the listing of arguments and areas.
#include <gtest/gtest.h>

#include <string>

#include "DocxFixture.h"
#include "TestDataDir.h"
#include "docx/DocFormat.h"
#include "docx/DocxTemplate.h"

namespace {

class DocxTemplateTest : public ::testing::Test {
 protected:
  void SetUp() override {
    m_sSample = m_dir.Path() + "/sample.docx";
    ASSERT_TRUE(WriteDocx(m_sSample, Para(TextRun("第一章 绪论"), "<w:outlineLvl w:val=\"0\"/>") + Para(TextRun("正文"))));
  }
  CTempDir m_dir;
  std::string m_sSample;
};

TEST_F(DocxTemplateTest, TemplatesSurviveAReopen) {
  {
    CDocxTemplate store(m_dir.Path().c_str());
    EXPECT_EQ(store.ImportTemplate(1, "甲大学", "*", "本科", m_sSample.c_str()), 0);
    EXPECT_EQ(store.ImportTemplate(1, "乙大学", "北京", "硕士", m_sSample.c_str()), 1);
    EXPECT_EQ(store.Save(), 1);
    EXPECT_EQ(store.Save(), 0) << "nothing changed since";
  }
  CDocxTemplate store(m_dir.Path().c_str());
  ASSERT_EQ(store.GetCount(), 2u);
  EXPECT_EQ(store.FindTemplate(1, "乙大学", "北京", "硕士", true), 1);
  EXPECT_EQ(store.FindTemplate(1, "乙大学", "上海", "硕士", true), -1) << "precise: an unknown area is no wildcard";
  std::string sJson = store.GetTemplate(1);
  EXPECT_EQ(sJson.rfind("{\r\n  \"docReportType\": \"1\",\r\n  \"zyg_organization\": \"乙大学\",\r\n", 0), 0u) << sJson;
  EXPECT_NE(sJson.find("\"zyg_format\": \""), std::string::npos);
  EXPECT_EQ(sJson.substr(sJson.size() - 3), "}\r\n");
  CDocFormat format;
  EXPECT_EQ(store.GetTemplate(1, format), 1);
  EXPECT_FALSE(format.m_leve2Format.empty()) << "the stored text reads back as a format";
}

TEST_F(DocxTemplateTest, ReimportingTheSameKeysReplacesTheTemplate) {
  CDocxTemplate store(m_dir.Path().c_str());
  EXPECT_EQ(store.ImportTemplate(2, "甲大学", "*", "本科", m_sSample.c_str()), 0);
  store.Save();
  EXPECT_EQ(store.ImportTemplate(2, "甲大学", "*", "本科", m_sSample.c_str()), 0);
  store.Save();
  EXPECT_EQ(store.GetCount(), 1u);
  EXPECT_EQ(store.ImportTemplate(2, "甲大学", "*", "本科", (m_dir.Path() + "/none.docx").c_str()), -1);
  EXPECT_EQ(store.Save(), 0) << "a failed import changes nothing";
}

TEST_F(DocxTemplateTest, EditWithoutAFileChangesOnlyTheKeys) {
  CDocxTemplate store(m_dir.Path().c_str());
  store.ImportTemplate(1, "甲大学", "*", "本科", m_sSample.c_str());
  store.Save();
  std::string sBefore = store.GetTemplate(0);
  std::string sFormat = sBefore.substr(sBefore.find("\"zyg_format\""));
  EXPECT_EQ(store.EditTemplate(0, 3, "丙大学", "*", "博士", nullptr), 0);
  EXPECT_EQ(store.FindTemplate(3, "丙大学", "*", "博士", true), 0);
  EXPECT_EQ(store.FindTemplate(1, "甲大学", "*", "本科", true), -1);
  std::string sAfter = store.GetTemplate(0);
  EXPECT_EQ(sAfter.substr(sAfter.find("\"zyg_format\"")), sFormat);
}

TEST_F(DocxTemplateTest, DeletingShiftsLaterIdsAndCompactionKeepsTheirTexts) {
  CDocxTemplate store(m_dir.Path().c_str());
  store.ImportTemplate(1, "甲大学", "*", "本科", m_sSample.c_str());
  store.ImportTemplate(1, "乙大学", "*", "本科", m_sSample.c_str());
  store.ImportTemplate(1, "丙大学", "*", "本科", m_sSample.c_str());
  store.Save();
  EXPECT_EQ(store.DeleteTemplate(0), 0);
  EXPECT_EQ(store.DeleteTemplate(0), -1) << "already marked deleted";
  EXPECT_EQ(store.DeleteTemplate(7), -1);
  store.Save();
  ASSERT_EQ(store.GetCount(), 2u);
  EXPECT_EQ(store.FindTemplate(1, "丙大学", "*", "本科", true), 1);
  std::string sText = store.GetTemplate(1);
  // A key-only edit compacts the data file; the remaining texts must still read.
  EXPECT_EQ(store.EditTemplate(0, 1, "乙大学", "*", "硕士", nullptr), 0);
  EXPECT_EQ(store.GetTemplate(1), sText);
  CDocxTemplate reopened(m_dir.Path().c_str());
  EXPECT_EQ(std::string(reopened.GetTemplate(1)), sText);
}

TEST_F(DocxTemplateTest, UnknownKeysFallBackToTheWildcard) {
  CDocxTemplate store(m_dir.Path().c_str());
  store.ImportTemplate(1, "*", "*", "*", m_sSample.c_str());
  store.ImportTemplate(2, "甲大学", "北京", "本科", m_sSample.c_str());
  store.Save();
  struct {
    int nType;
    const char *szOrg, *szArea, *szArgu;
    int nWant;
  } const kCases[] = {
      {1, "丁大学", "广州", "专科", 0},   // every key unknown: the "*" template
      {2, "甲大学", "北京", "本科", 1},   // exact
      {2, "甲大学", "广州", "本科", -1},  // area unknown becomes "*", which template 1 does not have
      {2, "丁大学", "北京", "本科", -1},  // the "*" organisation has only type 1: the lists are disjoint
      {5, "丁大学", "北京", "本科", -1},  // neither list
  };
  for (const auto& c : kCases)
    EXPECT_EQ(store.FindTemplate(c.nType, c.szOrg, c.szArea, c.szArgu, false), c.nWant)
        << c.nType << " " << c.szOrg << " " << c.szArea << " " << c.szArgu;
  CDocFormat format;
  EXPECT_EQ(store.FindTemplate(5, "丁大学", "北京", "本科", format), -1);
  EXPECT_FALSE(format.m_leve2Format.empty()) << "template 0's format all the same";
}

TEST_F(DocxTemplateTest, ListGivesDistinctArgumentsAndAreasInOrder) {
  CDocxTemplate store(m_dir.Path().c_str());
  store.ImportTemplate(1, "甲大学", "北京", "本科", m_sSample.c_str());
  store.ImportTemplate(1, "甲大学", "上海", "硕士", m_sSample.c_str());
  store.ImportTemplate(1, "甲大学", "北京", "硕士", m_sSample.c_str());
  store.ImportTemplate(2, "甲大学", "广州", "博士", m_sSample.c_str());
  store.Save();
  EXPECT_STREQ(store.GetTemplateList(1, "甲大学"),
               "{\r\n  \"ArguCount\": 2,\r\n  \"ArguList\": [\r\n    {\"argu\": \"本科\"},\r\n    {\"argu\": \"硕士\"}"
               "\r\n  ],\"AreaCount\": 2,\r\n  \"AreaList\": [\r\n    {\"area\": \"北京\"},\r\n    {\"area\": \"上海\"}\r\n  ]\r\n}");
  EXPECT_NE(std::string(store.GetTemplateList(-1, "甲大学")).find("广州"), std::string::npos) << "every type";
  EXPECT_NE(std::string(store.GetTemplateList(1, "无名")).find("\"ArguCount\": 0"), std::string::npos);
}

}  // namespace
