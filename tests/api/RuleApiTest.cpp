// The rule calls through the engine, and the default rule sets on the
// documents they are written for: every rule finds its fact.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include <json/json.h>

#include "DocxFixture.h"
#include "TestDataDir.h"
#include "tarvos.h"

namespace fs = std::filesystem;

namespace {

// The sample report of examples/ packed as a DOCX.
std::string PackSampleReport(const std::string& sDir) {
  const fs::path src = fs::path(TARVOS_SOURCE_DIR) / "examples/sample_report";
  std::vector<std::pair<std::string, std::string>> vecEntries;
  for (const auto& entry : fs::recursive_directory_iterator(src))
    if (entry.is_regular_file())
      vecEntries.emplace_back(fs::relative(entry.path(), src).string(), ReadWholeFile(entry.path().string()));
  std::string sDoc = sDir + "/sample_report.docx";
  EXPECT_TRUE(WriteZip(sDoc, vecEntries));
  return sDoc;
}

// The rule numbers of a type's rules, by action.
std::map<std::string, std::string> RulesOfType(int nType) {
  std::map<std::string, std::string> mapRules;
  const Json::Value list = ParseJson(ZYG_GetRuleListId(nType));
  for (const Json::Value& rule : list)
    mapRules[rule["no"].asString()] = rule["action"].asString();
  return mapRules;
}

// What a scan of a document credits to each rule: values, single keys,
// tuples (by the generating rule's presence) and the check's findings.
std::set<std::string> RulesThatFound(const std::string& sDoc, int nType) {
  std::set<std::string> setFound;
  int handle = ZYG_NewInstance(nType);
  EXPECT_GE(handle, 0);
  EXPECT_STRNE(ZYG_ScanDoc(sDoc.c_str(), nType, false, handle), "") << ZYG_GetLastErrorMsg();
  ZYG_DeleteInstance(handle);
  std::string sBase = sDoc.substr(0, sDoc.rfind('.'));
  Json::Value root = ParseJson(ReadWholeFile(sBase + "_keyVal.json"));
  for (const char* szList : {"KeyVals", "SingleKey_result"})
    for (const Json::Value& value : root[szList]) setFound.insert(value["rule_used"].asString());
  if (!root["Tuples"].empty()) setFound.insert("tuple");
  for (const Json::Value& table : root["Tables"])
    for (const Json::Value& row : table["rows"])
      for (const Json::Value& cell : row["Cols"]) setFound.insert(cell["rule_used"].asString());
  const char* sJson = TARVOS_CheckReportF(sDoc.c_str(), "", "", nType, 1, false, 0);
  EXPECT_NE(sJson, nullptr) << TARVOS_GetLastErrorMsg();
  const Json::Value result = ParseJson(sJson ? sJson : "{}");
  for (const Json::Value& finding : result["Errors"]) setFound.insert(finding["errorno"].asString());
  return setFound;
}

void ExpectEveryRuleFinds(int nType, const std::set<std::string>& setFound) {
  std::set<std::string> setActions;
  for (const auto& rule : RulesOfType(nType)) {
    setActions.insert(rule.second);
    const bool bTuple = rule.second == "generate_tuple";
    EXPECT_TRUE(setFound.count(bTuple ? "tuple" : rule.first)) << "rule " << rule.first << " (" << rule.second
                                                                << ") of type " << nType << " found nothing";
  }
  EXPECT_GE(setActions.size(), 8u);
}

class RuleApiTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(TARVOS_Init(m_data.Root().c_str()), 1) << TARVOS_GetLastErrorMsg(); }
  void TearDown() override { TARVOS_Exit(); }
  CTestDataDir m_data;
};

TEST_F(RuleApiTest, DefaultReportRulesFindTheirFactsInTheSampleReport) {
  std::set<std::string> setFound = RulesThatFound(PackSampleReport(m_data.Root()), 1);
  ExpectEveryRuleFinds(1, setFound);
}

TEST_F(RuleApiTest, DefaultContractRulesFindTheirFactsInAContract) {
  std::string sBody;
  for (const char* szLine :
       {"建设工程施工合同", "甲方（发包人）：某市水务集团有限公司", "乙方（承包人）：华东建设工程有限公司",
        "合同总价款为人民币1,250,000.00元（大写：壹佰贰拾伍万元整）。", "合同工期：2023年6月1日至2024年5月31日。",
        "签订日期：2023年5月20日。", "签订地点：中国杭州。", "乙方联系电话：13812345678，电子邮箱：pm@huadong-build.cn。",
        "本工程执行《建筑工程施工质量验收统一标准》GB 50300-2013。"})
    sBody += Para(TextRun(szLine));
  std::string sDoc = m_data.Root() + "/contract.docx";
  ASSERT_TRUE(WriteDocx(sDoc, sBody));
  ExpectEveryRuleFinds(3, RulesThatFound(sDoc, 3));
}

TEST_F(RuleApiTest, RulesAreEditedThroughTheManagerAndSurviveARestart) {
  const int nType = 42;
  EXPECT_EQ(ParseJson(ZYG_GetRuleListId(nType)).size(), 0u);
  EXPECT_EQ(TARVOS_ImportZYGRulesFromMem(
                "<item><no>1</no><rule>{[联系人]}{[:]0}{[/nr]}s</rule><argument>contact|联系人</argument></item>", true,
                nType),
            1);
  EXPECT_EQ(ZYG_AddRule(R"({"no":"2","rule":"{[传真]}{[/m]}s","action":"extract","argument":"fax"})", nType), 1);
  EXPECT_EQ(ZYG_AddRule(R"({"no":"2","rule":"{[x]}"})", nType), -1);
  EXPECT_NE(std::string(TARVOS_GetLastErrorMsg()).find("is already exists"), std::string::npos);
  EXPECT_EQ(ZYG_EditRule(1, R"({"no":"2","name":"fax number","rule":"{[传真号]}{[/m]}s","argument":"fax"})", nType), 1);
  EXPECT_EQ(ParseJson(ZYG_GetRuleInfo(1, nType))["name"].asString(), "fax number");
  EXPECT_EQ(ParseJson(ZYG_GetSysInfo())["actions"].size(), 17u);

  TARVOS_Exit();
  ASSERT_EQ(TARVOS_Init(m_data.Root().c_str()), 1);
  Json::Value list = ParseJson(ZYG_GetRuleListId(nType));
  ASSERT_EQ(list.size(), 2u);
  EXPECT_EQ(list[1]["name"].asString(), "fax number");
  std::string sMatches = ZYG_ScanTextMem("传真号12345678", 1, nType, 0);
  EXPECT_NE(sMatches.find("<value>12345678</value>"), std::string::npos) << sMatches;
  EXPECT_EQ(ZYG_DelRule(0, nType), 1);
  EXPECT_EQ(ZYG_DelRule(5, nType), -1);
}

TEST_F(RuleApiTest, ExtractedKnowledgeTextsStayReadableTogether) {
  const char* sFirst = TARVOS_ExtractKnowledge("报告编制日期为2023年5月1日。联系电话：0571-87654321", 1);
  const char* sSecond = TARVOS_ExtractKnowledge("项目位于浙江省杭州市。", 1);
  ASSERT_NE(sFirst, nullptr) << TARVOS_GetLastErrorMsg();
  ASSERT_NE(sSecond, nullptr);
  EXPECT_NE(sFirst, sSecond);
  std::string sText = sFirst;
  EXPECT_NE(sText.find("2023-05-01"), std::string::npos) << sText;
  EXPECT_NE(sText.find("0571-87654321"), std::string::npos) << sText;
  EXPECT_NE(std::string(sSecond).find("浙江省杭州市"), std::string::npos) << sSecond;
  EXPECT_EQ(TARVOS_ExtractKnowledge("正文", 77), nullptr);
  EXPECT_STREQ(TARVOS_GetLastErrorMsg(), "Report Type=77 Processor not exists.");
}

}  // namespace
