// Rule sets: importing, refusing, editing, saving and loading, indexing.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include <json/json.h>

#include "TestDataDir.h"
#include "rules/ZYG.h"
#include "utility/ErrorLog.h"
#include "utility/lexical/Lexical.h"

namespace {

std::string Item(const std::string& sNo, const std::string& sRule, const std::string& sAction = "extract",
                 const std::string& sArguments = "report_date|报告日期;", const std::string& sExtra = "") {
  return "<item><no>" + sNo + "</no><name>rule " + sNo + "</name><rule>" + sRule +
         "</rule><credit>2</credit><action>" + sAction + "</action><field>text</field><argument>" + sArguments +
         "</argument><kgset>report_date:attribute,showname,;</kgset>" + sExtra + "</item>\n";
}

const std::string kTwoRules = Item("1.1", "{[报告日期;编制日期]}{[：;:]0}{[/m]3}s", "extract", "report_date|报告日期;",
                                   "<keyname>single_date</keyname>") +
                              Item("1.2", "{[甲方]}{[：]}{[/n;/nt]}s", "extract", "party_a|甲方;");

std::string AllRulesJson(CZYG& zyg) {
  std::string s;
  for (size_t i = 0; i < zyg.GetRuleCount(); ++i) s += zyg.GetItem((int)i);
  return s;
}

TEST(ZYGTest, SavedSetLoadsWithTheSameRules) {
  CTempDir dir;
  const std::string sPath = dir.Path() + "/";
  CZYG zyg(sPath.c_str(), 3);
  ASSERT_EQ(zyg.ImportRuleFromMem(kTwoRules.c_str(), true), 2) << GetLastError();
  for (const char* szFile : {"ZYG_3.rule", "ZYG_3.pdat", "ZYG_3.wordlist", "ZYG_3_Attribute.pdat",
                             "ZYG_3_Attribute.wordlist", "ZYG_3_AttriName.wordlist", "zyg_userdict.txt"})
    EXPECT_TRUE(std::filesystem::exists(sPath + szFile)) << szFile;
  EXPECT_EQ(ReadWholeFile(sPath + "zyg_userdict.txt"), "报告日期\tZYG\n编制日期\tZYG\n：\tZYG\n:\tZYG\n甲方\tZYG\n");

  CZYG loaded(sPath.c_str(), 3);
  ASSERT_EQ(loaded.Load(), 1) << GetLastError();
  ASSERT_EQ(loaded.GetRuleCount(), 2u);
  EXPECT_EQ(AllRulesJson(loaded), AllRulesJson(zyg));
  EXPECT_EQ(loaded.IndexDump(), zyg.IndexDump());
  const _tRuleOrg& rule = loaded.GetRuleOrg(0);
  EXPECT_EQ(rule.vecKeyname, std::vector<std::string>{"single_date"});
  EXPECT_EQ(rule.vecField2KG[0].type[1] + rule.vecField2KG[0].type[2], 2);
  EXPECT_STREQ(loaded.GetAttributeName(loaded.GetAttributeId("report_date")), "报告日期");
  EXPECT_EQ(loaded.GetDateKeyID(), loaded.GetKeyId("single_date"));
}

TEST(ZYGTest, DamagedRuleFilesAreRefusedWhole) {
  CTempDir dir;
  const std::string sPath = dir.Path() + "/";
  {
    CZYG zyg(sPath.c_str(), 1);
    ASSERT_EQ(zyg.ImportRuleFromMem(kTwoRules.c_str(), true), 2);
  }
  const std::string sRule = sPath + "ZYG_1.rule", sGood = ReadWholeFile(sRule);
  const std::string kCases[] = {sGood.substr(0, sGood.size() / 2), sGood.substr(0, 30), std::string(64, 'x')};
  for (const std::string& sDamaged : kCases) {
    std::ofstream(sRule, std::ios::binary | std::ios::trunc) << sDamaged;
    CZYG zyg(sPath.c_str(), 1);
    EXPECT_EQ(zyg.Load(), -1);
    EXPECT_EQ(GetLastError(), "Cannot load file " + sRule);
    EXPECT_EQ(zyg.GetRuleCount(), 0u);
  }
  CZYG missing(sPath.c_str(), 9);
  EXPECT_EQ(missing.Load(), -1);
  EXPECT_EQ(GetLastError(), "Cannot read file " + sPath + "ZYG_9.rule");
}

TEST(ZYGTest, RefusedRulesLeaveTheSetAsItWas) {
  CZYG zyg("", 1);
  ASSERT_EQ(zyg.ImportRuleFromMem(kTwoRules.c_str(), true), 2);
  const std::string sBefore = AllRulesJson(zyg);
  const struct {
    std::string sJson;
    const char* szError;
  } kCases[] = {
      {R"({"no":"1.1","name":"again","rule":"{[x]}","action":"extract","argument":"a"})",
       "RuleNo1.1:again is already exists and cannot be added, see Rule1.1"},
      {R"({"no":"5","name":"broken","rule":"[x]","action":"extract"})", "[处应该为区格的起始符合'{'"},
      {R"({"no":"6","name":"single","rule":"{[a]}","action":"generate_singlekey","argument":"a;b"})",
       "SingleKeyVal rule only include one key, and argument number must be 2."},
      {R"({"no":"7","rule":"{[a]}","action":"country_extract"})",
       "ZYG-Configure.json must set CountryDetect on before execute country_extract "},
      {R"({"no":"8","rule":"{[a]}","action":"jump"})", "Unknown action jump in rule 8"},
      {R"({"no":"9","rule":"{[a]}","argument":"bad name!"})", "bad name! Is invalid attribute name"},
      {"{not json", "Read ZYG Infor Error!"},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(zyg.AddItem(c.sJson.c_str()), -1) << c.sJson;
    EXPECT_EQ(GetLastError(), c.szError);
    EXPECT_EQ(AllRulesJson(zyg), sBefore);
  }
  EXPECT_EQ(zyg.EditItem(7, "{}"), -1);
  EXPECT_EQ(zyg.DeleteItem(-1), -1);
}

TEST(ZYGTest, ImportKeepsGoodItemsAndNamesTheRefusedOne) {
  CZYG zyg("", 1);
  std::string sText = Item("1", "{[a]}") + Item("2", "{[b]") + Item("1", "{[c]}") + Item("3", "{[d]}");
  EXPECT_EQ(zyg.ImportRuleFromMem(sText.c_str(), true), 2);
  EXPECT_EQ(GetLastError(), "RuleNo1:rule 1 is already exists and cannot be added, see Rule1");
  EXPECT_EQ(zyg.ImportRuleFromMem("<item><no>4</no><rule>{[e]}</rule>", false), -1);
  EXPECT_EQ(GetLastError(), "Cannot locate </item>");
  EXPECT_EQ(zyg.GetRuleCount(), 2u);
}

TEST(ZYGTest, EditingRecompilesAndKeepsOrder) {
  CZYG zyg("", 1);
  ASSERT_EQ(zyg.ImportRuleFromMem(kTwoRules.c_str(), true), 2);
  EXPECT_EQ(zyg.AddItem(R"({"no":"2.1","name":"tel","rule":"{[电话]}{[/m]}s","action":"extract","argument":"phone"})"), 2);
  ASSERT_EQ(zyg.EditItem(0, R"({"no":"1.1","name":"renamed","rule":"{[日期]}{[/m]}s","field":"report_date"})"), 1);
  EXPECT_EQ(zyg.GetRuleOrg(0).name, "renamed");
  EXPECT_EQ(zyg.GetRule(0).field, (uint32_t)zyg.GetFieldId("report_date"));
  EXPECT_EQ(zyg.GetFieldStr(zyg.GetRule(0).field), "report_date");
  EXPECT_GE(zyg.GetTermId("日期"), 0);
  EXPECT_LT(zyg.GetTermId("编制日期"), 0);  // no rule uses it any more
  ASSERT_EQ(zyg.DeleteItem(1), 1);
  EXPECT_EQ(zyg.GetRuleOrg(1).no, "2.1");
  Json::Value list = ParseJson(zyg.GetRuleListId());
  ASSERT_EQ(list.size(), 2u);
  EXPECT_EQ(list[1]["no"].asString(), "2.1");
  Json::Value info = ParseJson(zyg.GetSysInfo());
  EXPECT_EQ(info["actions"].size(), 17u);
  EXPECT_EQ(info["actions"][16].asString(), "generate_date");
  EXPECT_EQ(info["fields"][10].asString(), "title3");
}

TEST(ZYGTest, IndexPostingsCountTheWordsBeforeTheirBlock) {
  CZYG zyg("", 1);
  ASSERT_EQ(zyg.ImportRuleFromMem(Item("1", "{[a]2[b]0}{[c;d]}s{[e]}").c_str(), true), 1);
  const struct {
    const char* szTerm;
    int nGrid, nBlock, nBack;
  } kCases[] = {{"a", 0, 0, 0}, {"b", 0, 1, 2}, {"c", 1, 0, 2}, {"d", 1, 0, 2}, {"e", 2, 0, 3}};
  for (const auto& c : kCases) {
    const _tZYGIndex* pIndex = zyg.GetPostings(zyg.GetTermId(c.szTerm));
    ASSERT_NE(pIndex, nullptr) << c.szTerm;
    ASSERT_EQ(pIndex->pData.size(), 1u);
    EXPECT_EQ(pIndex->pData[0].grid_index, c.nGrid) << c.szTerm;
    EXPECT_EQ(pIndex->pData[0].block_index, c.nBlock) << c.szTerm;
    EXPECT_EQ(pIndex->pData[0].back_count, c.nBack) << c.szTerm;
  }
  // Required blocks make the skip list, one group each: a (repeat 2) and e;
  // b is optional.
  const std::vector<int32_t> vecSkip = zyg.GetPostings(zyg.GetTermId("c"))->pData[0].skiplist;
  EXPECT_EQ(vecSkip, (std::vector<int32_t>{zyg.GetTermId("a"), -1, zyg.GetTermId("e"), -1}));
  const std::vector<int32_t> vecFromE = zyg.GetPostings(zyg.GetTermId("e"))->pData[0].skiplist;
  EXPECT_EQ(vecFromE, (std::vector<int32_t>{zyg.GetTermId("a"), -1, zyg.GetTermId("c"), zyg.GetTermId("d"), -1}));
  EXPECT_NE(zyg.IndexDump().find("Knowledge_ID=0\tGrid_ID=2\tBlock_ID=0\tBack_Word_Count=3 SkipList("), std::string::npos);
}

TEST(ZYGTest, RuleWordsBecomeOneTokenForTheSegmenter) {
  CTestDataDir data;
  ASSERT_EQ(QUENDA_Init(data.Root().c_str()), 1);
  CZYG zyg("", 1);
  ASSERT_EQ(zyg.ImportRuleFromMem(Item("1", "{[合同总价款;New York]}{[/m]}s").c_str(), true), 1);
  std::string sTagged = QUENDA_ParagraphProcess("本合同总价款100元，签于New York。", true);
  QUENDA_Exit();
  EXPECT_NE(sTagged.find("合同总价款/ZYG"), std::string::npos) << sTagged;
  EXPECT_NE(sTagged.find("[New York]/ZYG"), std::string::npos) << sTagged;
}

}  // namespace
