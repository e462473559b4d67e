// The template store: what survives a reopen, key-only edits, deletion with
// compaction, the wildcard search and the listing of arguments and areas.
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <map>
#include <string>
#include <vector>

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
  EXPECT_EQ(store.EditTemplate(1, 3, "丁大学", "*", "博士", m_sSample.c_str()), -1) << "no template 1 to replace";
  EXPECT_EQ(store.EditTemplate(-1, 3, "丁大学", "*", "博士", nullptr), -1);
  EXPECT_EQ(store.GetCount(), 1u) << "nothing appended";
}

// Saving a store whose templates did not change writes the same index: the
// pool of lists is rebuilt, not appended to.
TEST_F(DocxTemplateTest, SavingAnUnchangedStoreKeepsTheIndexSize) {
  CDocxTemplate store(m_dir.Path().c_str());
  store.ImportTemplate(1, "甲大学", "*", "本科", m_sSample.c_str());
  store.ImportTemplate(2, "乙大学", "北京", "*", m_sSample.c_str());
  ASSERT_EQ(store.Save(), 1);
  const std::string sIndex = m_dir.Path() + "/data/template/docTemplate.index";
  const std::string sFirst = ReadWholeFile(sIndex);
  for (int i = 0; i < 3; ++i) {
    ASSERT_EQ(store.EditTemplate(0, 1, "甲大学", "*", "本科", nullptr), 0) << "the same keys again";
    EXPECT_EQ(ReadWholeFile(sIndex).size(), sFirst.size()) << "save " << i;
  }
  CDocxTemplate reopened(m_dir.Path().c_str());
  EXPECT_EQ(reopened.FindTemplate(2, "乙大学", "北京", "*", true), 1);
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
  EXPECT_EQ(store.GetTemplateList(1, "甲大学"),
               "{\r\n  \"ArguCount\": 2,\r\n  \"ArguList\": [\r\n    {\"argu\": \"本科\"},\r\n    {\"argu\": \"硕士\"}"
               "\r\n  ],\"AreaCount\": 2,\r\n  \"AreaList\": [\r\n    {\"area\": \"北京\"},\r\n    {\"area\": \"上海\"}\r\n  ]\r\n}");
  EXPECT_NE(std::string(store.GetTemplateList(-1, "甲大学")).find("广州"), std::string::npos) << "every type";
  EXPECT_NE(std::string(store.GetTemplateList(1, "无名")).find("\"ArguCount\": 0"), std::string::npos);
}

// Reads little-endian fields one after another from a byte string.
class CFields {
 public:
  explicit CFields(std::string sBytes) : m_sBytes(std::move(sBytes)) {}
  template <class T>
  T Next() {
    T value{};
    if (m_nAt + sizeof(T) <= m_sBytes.size()) memcpy(&value, m_sBytes.data() + m_nAt, sizeof(T));
    m_nAt += sizeof(T);
    return value;
  }
  size_t At() const { return m_nAt; }

 private:
  std::string m_sBytes;
  size_t m_nAt = 0;
};

TEST_F(DocxTemplateTest, TheIndexFileHasItsExactLayout) {
  CDocxTemplate store(m_dir.Path().c_str());
  store.ImportTemplate(1, "甲", "*", "本科", m_sSample.c_str());
  store.ImportTemplate(2, "乙", "北京", "*", m_sSample.c_str());
  store.ImportTemplate(1, "甲", "*", "硕士", m_sSample.c_str());
  ASSERT_EQ(store.Save(), 1);
  const std::string sDir = m_dir.Path() + "/data/template/";
  const uint64_t nTextSize = ReadWholeFile(sDir + "docTemplate.dat").size() / 3;
  CFields index(ReadWholeFile(sDir + "docTemplate.index"));
  ASSERT_EQ(index.Next<uint64_t>(), 3u);
  // Keys go to the dictionary as organisation, argument, area: 甲 0, 本科 1,
  // * 2, 乙 3, 北京 4, 硕士 5.
  const struct { int32_t nType, nOrg, nArea, nArgu; } kRecords[] = {{1, 0, 2, 1}, {2, 3, 4, 2}, {1, 0, 2, 5}};
  for (int i = 0; i < 3; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(index.Next<int32_t>(), kRecords[i].nType);
    EXPECT_EQ(index.Next<int32_t>(), 0) << "padding";
    EXPECT_EQ(index.Next<uint64_t>(), i * nTextSize) << "offset";
    EXPECT_EQ(index.Next<uint64_t>(), nTextSize) << "size";
    EXPECT_GT(index.Next<int64_t>(), 1700000000) << "insert time";
    EXPECT_EQ(index.Next<int32_t>(), kRecords[i].nOrg);
    EXPECT_EQ(index.Next<int32_t>(), kRecords[i].nArea);
    EXPECT_EQ(index.Next<int32_t>(), kRecords[i].nArgu);
    EXPECT_EQ(index.Next<int32_t>(), 0) << "padding";
  }
  EXPECT_EQ(index.At(), 8u + 3 * 48);
  const uint64_t nLists = index.Next<uint64_t>();
  ASSERT_EQ(nLists, (6u + 10) * 2);
  // Non-empty lists: type 1, type 2, 甲, 乙, then (20 + 6 +) 本科, *, 北京, 硕士.
  const std::map<uint64_t, std::vector<int32_t>> kWant = {
      {1, {0, 2}}, {2, {1}}, {20, {0, 2}}, {23, {1}}, {27, {0}}, {28, {0, 1, 2}}, {30, {1}}, {31, {2}}};
  std::vector<std::pair<int32_t, int32_t>> vecRanges;
  for (uint64_t i = 0; i < nLists; ++i) {
    const uint64_t nDf = index.Next<uint64_t>();
    const int32_t nStart = index.Next<int32_t>(), nEnd = index.Next<int32_t>();
    auto it = kWant.find(i);
    EXPECT_EQ(nDf, it == kWant.end() ? 0u : it->second.size()) << "list " << i;
    vecRanges.emplace_back(nStart, nEnd);
  }
  const int32_t nPool = index.Next<int32_t>();
  EXPECT_EQ(nPool, 12) << "every list once, in list order";
  std::vector<int32_t> vecPool;
  for (int32_t i = 0; i < nPool; ++i) vecPool.push_back(index.Next<int32_t>());
  for (const auto& want : kWant) {
    const auto& range = vecRanges[want.first];
    ASSERT_TRUE(range.first >= 0 && range.second <= nPool && range.first <= range.second) << want.first;
    EXPECT_EQ(std::vector<int32_t>(vecPool.begin() + range.first, vecPool.begin() + range.second), want.second)
        << "list " << want.first;
  }
  const uint64_t nStrings = index.Next<uint64_t>();
  EXPECT_EQ(index.At() + nStrings, ReadWholeFile(sDir + "docTemplate.index").size()) << "the string pool ends the file";
}

TEST_F(DocxTemplateTest, ALeftoverFromAnInterruptedCompactionDoesNoHarm) {
  std::string sText;
  {
    CDocxTemplate store(m_dir.Path().c_str());
    store.ImportTemplate(1, "甲", "*", "本科", m_sSample.c_str());
    store.ImportTemplate(1, "乙", "*", "本科", m_sSample.c_str());
    store.Save();
    sText = store.GetTemplate(1);
  }
  // A crash while the compacted copy was written leaves it half done.
  const std::string sDir = m_dir.Path() + "/data/template/";
  std::ofstream(sDir + "docTemplate2.dat", std::ios::binary) << "<DocTemplate><DocFor";
  CDocxTemplate store(m_dir.Path().c_str());
  ASSERT_EQ(store.GetCount(), 2u);
  EXPECT_EQ(std::string(store.GetTemplate(1)), sText);
  EXPECT_EQ(store.DeleteTemplate(0), 0);
  EXPECT_EQ(store.EditTemplate(0, 1, "乙", "*", "硕士", nullptr), 0) << "compacts again";
  CDocxTemplate reopened(m_dir.Path().c_str());
  ASSERT_EQ(reopened.GetCount(), 1u);
  std::string sAfter = reopened.GetTemplate(0);
  EXPECT_EQ(sAfter.substr(sAfter.find("\"zyg_format\"")), sText.substr(sText.find("\"zyg_format\"")));
}

}  // namespace
