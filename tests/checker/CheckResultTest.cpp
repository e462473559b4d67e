// Findings: the admission filters, de-duplication, scores capped per id and
// floored in total, chapter counts, the XML and JSON renderings, and reading
// a saved result back.
#include <gtest/gtest.h>
#include <json/json.h>

#include <fstream>
#include <memory>
#include <string>

#include "TestDataDir.h"
#include "checker/CheckResult.h"
#include "checker/ID2Message.h"

namespace {

class CheckResultTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string sList = m_dir.Path() + "/list.txt";
    std::ofstream(sList) << "ID Message Each Max\n9.1 三次 2 5\n9.2 多次 30 60\n9.3 无分\n9.4 重 50 80\n";
    ASSERT_EQ(m_messages.Import(sList.c_str()), 4);
  }

  static _tCheckResult Finding(uint32_t nParaId, uint32_t nOffset, const char* szId, const char* szOrg,
                               int nField = 2, int nRevise = 1, const char* szNew = "新") {
    _tCheckResult r;
    r.para_id = nParaId;
    r.offset = nOffset;
    r.error_id = szId;
    r.org_str = szOrg;
    r.field_id = nField;
    r.revise_type = nRevise;
    r.new_str = szNew;
    r.text = "段落";
    return r;
  }
  std::string Render() { return m_results.GetResult("/p", "doc", 1, "u", nullptr); }

  CTempDir m_dir;
  CID2Message m_messages;
  CCheckResult m_results{&m_messages};
};

TEST_F(CheckResultTest, AdmissionFilters) {
  struct { _tCheckResult r; bool bAdmitted; const char* szOrgAfter; } kCases[] = {
      {Finding(1, 0, "9.1", " \r\n\t", 0), false, ""},       // empty font finding
      {Finding(2, 0, "9.1", " \r\n\t", 1), true, ""},        // empty size finding stays
      {Finding(3, 0, "9.1", "同", 2, 1, "同"), false, ""},   // replaced by itself
      {Finding(4, 0, "9.1", "同", 2, 2, "同"), true, "同"},  // not a replacement
      {Finding(5, 0, "9.1", "尾 \t", 2), true, "尾"},
  };
  for (auto& c : kCases) {
    size_t nBefore = m_results.GetFindings().size();
    m_results.AddResult(c.r);
    ASSERT_EQ(m_results.GetFindings().size(), nBefore + (c.bAdmitted ? 1 : 0)) << c.r.para_id;
    if (c.bAdmitted) {
      EXPECT_EQ(m_results.GetFindings().back().org_str, c.szOrgAfter);
      EXPECT_EQ(m_results.GetFindings().back().error_msg, "三次");
    }
  }
  _tCheckResult unknown = Finding(9, 0, "7.7", "x");
  m_results.AddResult(unknown);
  EXPECT_EQ(m_results.GetFindings().back().error_msg, "Wrong text id 7.7");
}

TEST_F(CheckResultTest, DuplicatesCountOnceAndScoresAreCapped) {
  for (int i = 0; i < 2; ++i) {
    _tCheckResult r = Finding(10, 4, "9.1", "错");
    m_results.AddResult(r);  // the same finding twice
  }
  for (uint32_t n : {20u, 30u}) {
    _tCheckResult r = Finding(n, 0, "9.1", "错");
    m_results.AddResult(r);
  }
  std::string sXml = Render();
  EXPECT_EQ(m_results.GetErrorCount(), 3u);
  EXPECT_NE(sXml.find("<errorno>9.1</errorno>\r\n<errormsg>三次</errormsg>\r\n<count>3</count>\r\n<each_score>2.00</each_score>\r\n"
                      "<max_score>5.00</max_score>\r\n<score>5.00</score>\r\n"),
            std::string::npos) << sXml;
  EXPECT_NE(sXml.find("<TotalScore>95.00</TotalScore>"), std::string::npos);
  size_t nChecks = 0;
  for (size_t i = sXml.find("<check>"); i != std::string::npos; i = sXml.find("<check>", i + 1)) ++nChecks;
  EXPECT_EQ(nChecks, 3u);
}

// Equal findings are dropped even when another finding at the same place
// was added between them.
TEST_F(CheckResultTest, EqualFindingsApartInTheListCountOnce) {
  for (const char* szId : {"9.1", "9.3", "9.1", "9.3", "9.1"}) {
    _tCheckResult r = Finding(10, 4, szId, "错");
    m_results.AddResult(r);
  }
  Render();
  EXPECT_EQ(m_results.GetErrorCount(), 2u);
  ASSERT_EQ(m_results.GetFindings().size(), 2u);
  EXPECT_EQ(m_results.GetFindings()[0].error_id, "9.1");
  EXPECT_EQ(m_results.GetFindings()[1].error_id, "9.3");
}

TEST_F(CheckResultTest, TotalScoreIsFlooredAtZero) {
  for (uint32_t n = 1; n <= 3; ++n) {
    _tCheckResult r = Finding(n, 0, "9.2", "错");
    m_results.AddResult(r);
  }
  _tCheckResult r = Finding(9, 0, "9.3", "无");
  m_results.AddResult(r);
  std::string sXml = Render();
  EXPECT_NE(sXml.find("<score>60.00</score>"), std::string::npos);
  EXPECT_NE(sXml.find("<errorno>9.3</errorno>\r\n<errormsg>无分</errormsg>\r\n<count>1</count>\r\n<each_score>0.00</each_score>"),
            std::string::npos);
  for (uint32_t n = 4; n <= 9; ++n) {
    _tCheckResult more = Finding(n * 100, 0, "9.2", "错");
    m_results.AddResult(more);
  }
  EXPECT_NE(Render().find("<TotalScore>40.00</TotalScore>"), std::string::npos) << "one id deducts at most its maximum";
  for (uint32_t n : {7000u, 8000u}) {
    _tCheckResult heavy = Finding(n, 0, "9.4", "重");
    m_results.AddResult(heavy);
  }
  EXPECT_NE(Render().find("<TotalScore>0.00</TotalScore>"), std::string::npos) << "140 points deducted: 0, not -40";
}

TEST_F(CheckResultTest, RecordLayoutAndMoveTarget) {
  _tCheckResult move = Finding(0x1A, 3, "9.1", "挪", 3, 3, "");
  move.new_para_id = 0x2B;
  _tCheckResult noTarget = Finding(0x1B, 0, "9.1", "挪", 3, 3, "");
  m_results.AddResult(move);
  m_results.AddResult(noTarget);
  std::string sXml = Render();
  EXPECT_NE(sXml.find("<check>\r\n<paraId>0000001A</paraId>\r\n<page_num>0</page_num>\r\n<new_paraId>0000002B</new_paraId>\r\n"
                      "<errorno>9.1</errorno>\r\n<errormsg>三次</errormsg>\r\n<field>level</field>\r\n<text>段落</text>\r\n"
                      "<revisetype>C</revisetype>\r\n<offset>3</offset>\r\n<OrgStr>挪</OrgStr>\r\n<NewStr></NewStr>\r\n</check>\r\n"),
            std::string::npos) << sXml;
  EXPECT_EQ(sXml.find("<new_paraId>0000000"), std::string::npos);
  EXPECT_EQ(sXml.rfind("<CheckResults>\r\n<docxPath>/p</docxPath>\r\n<docxFile>doc</docxFile>\r\n<reportType>1</reportType>\r\n", 0), 0u);
  EXPECT_NE(sXml.find("<ChapterStat>\r\n<ChapterCount>0</ChapterCount>\r\n</ChapterStat>\r\n<Errors>\r\n"), std::string::npos);

  Json::Value root;
  std::string sJson = m_results.GetResultJson("/p", "doc", 1, "u", nullptr);
  Json::CharReaderBuilder builder;
  std::unique_ptr<Json::CharReader> pReader(builder.newCharReader());
  ASSERT_TRUE(pReader->parse(sJson.data(), sJson.data() + sJson.size(), &root, nullptr));
  EXPECT_EQ(root["Errors"].size(), 2u);
  EXPECT_EQ(root["Errors"][0]["new_paraId"].asString(), "0000002B");
  EXPECT_FALSE(root["Errors"][1].isMember("new_paraId"));
  EXPECT_DOUBLE_EQ(root["Statistics"]["TotalScore"].asDouble(), 96.0);
}

TEST_F(CheckResultTest, SavedResultsReadBackInBothFormats) {
  const char* kFields[] = {"font", "fontSize", "text", "level", "line_space", "content"};
  for (int f = 0; f < 6; ++f) {
    _tCheckResult r = Finding(0x100 + f, (uint32_t)f, "9.1", "原", f, f % 5, "新");
    m_results.AddResult(r);
  }
  std::string sXmlFile = m_dir.Path() + "/r_Check.xml", sJsonFile = m_dir.Path() + "/r_Check.json";
  std::ofstream(sXmlFile, std::ios::binary) << "<?xml version=\"1.0\"?>\n<TARVOS>\n" << Render() << "</TARVOS>\n";
  std::ofstream(sJsonFile, std::ios::binary) << m_results.GetResultJson("/p", "doc", 1, "u", nullptr);
  for (const std::string& sFile : {sXmlFile, sJsonFile}) {
    CCheckResult loaded(&m_messages);
    ASSERT_EQ(loaded.Import(sFile.c_str()), 1) << sFile;
    EXPECT_EQ(loaded.m_sPath, "/p");
    EXPECT_EQ(loaded.m_sFilename, "doc");
    EXPECT_EQ(loaded.m_sURLPrefix, "u");
    EXPECT_EQ(loaded.m_nReportType, 1);
    ASSERT_EQ(loaded.GetFindings().size(), 6u) << sFile;
    for (int f = 0; f < 6; ++f) {
      const _tCheckResult& r = loaded.GetFindings()[f];
      EXPECT_EQ(r.field_id, f) << kFields[f];
      EXPECT_EQ(r.revise_type, f % 5);
      EXPECT_EQ(r.para_id, 0x100u + f);
      EXPECT_EQ(r.org_str, "原");
      EXPECT_EQ(r.error_msg, "三次");
    }
  }
  CCheckResult missing(&m_messages);
  EXPECT_EQ(missing.Import((m_dir.Path() + "/none.xml").c_str()), -1);
  EXPECT_EQ(missing.Remove("9.1"), 0u);
  EXPECT_EQ(m_results.Remove("9.1"), 6u);
}

}  // namespace

namespace {

// Everything from the statistics on: what a round trip must keep.
std::string FromStatistics(const std::string& sText) { return sText.substr(sText.find("<Statistics>")); }

TEST_F(CheckResultTest, RenderImportRenderKeepsFindingsAndStatistics) {
  for (uint32_t n = 1; n <= 5; ++n) {
    _tCheckResult r = Finding(n * 16, n, n % 2 ? "9.1" : "9.2", "原&<x>", (int)n % 6, (int)n % 5, "新");
    m_results.AddResult(r);
  }
  const std::string sXml = Render();
  const std::string sJson = m_results.GetResultJson("/p", "doc", 1, "u", nullptr);
  std::string sXmlFile = m_dir.Path() + "/a_Check.xml", sJsonFile = m_dir.Path() + "/a_Check.json";
  std::ofstream(sXmlFile, std::ios::binary) << sXml;
  std::ofstream(sJsonFile, std::ios::binary) << sJson;
  CCheckResult fromXml(&m_messages), fromJson(&m_messages);
  ASSERT_EQ(fromXml.Import(sXmlFile.c_str()), 1);
  ASSERT_EQ(fromJson.Import(sJsonFile.c_str()), 1);
  EXPECT_EQ(FromStatistics(fromXml.GetResult("/p", "doc", 1, "u", nullptr)), FromStatistics(sXml));
  EXPECT_EQ(fromJson.GetResultJson("/p", "doc", 1, "u", nullptr), sJson);
}

TEST_F(CheckResultTest, BrokenSavedResultsNeverCrash) {
  _tCheckResult r = Finding(1, 0, "9.1", "原");
  m_results.AddResult(r);
  const std::string sXml = Render();
  std::string sFile = m_dir.Path() + "/broken_Check.xml";
  for (size_t nCut = 0; nCut < sXml.size(); nCut += 5) {
    std::ofstream(sFile, std::ios::binary | std::ios::trunc) << sXml.substr(0, nCut) << "<check><paraId>zz";
    CCheckResult loaded(&m_messages);
    EXPECT_EQ(loaded.Import(sFile.c_str()), 1) << "a damaged result reads what it can";
  }
  std::ofstream(sFile + ".json", std::ios::binary) << "{\"Errors\": [1, {\"paraId\": 5}], \"docxPath\": 7";
  CCheckResult loaded(&m_messages);
  EXPECT_EQ(loaded.Import((sFile + ".json").c_str()), -1);
}

}  // namespace
