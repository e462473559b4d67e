// Rules as XML items and JSON objects, both ways.
#include <gtest/gtest.h>

#include "rules/RuleText.h"

namespace {

const char kItem[] =
    "<no> 2.1 </no><name>合同 \n 金额</name><rule>{[合同金额;总价]}{[：]0}{[/m]}s</rule><credit>3</credit>"
    "<action>unit_extract</action><field>RowHead</field><argument>contract_fee|合同金额;unit;</argument>"
    "<kgset>contract_fee:attribute,showname,;unit:relation,</kgset><keyname>a;b</keyname>";

TEST(RuleTextTest, ItemReadsIntoEveryField) {
  _tRuleOrg rule;
  std::string sError;
  ASSERT_EQ(CRuleText::XML2RuleOrg(kItem, rule, sError), 1) << sError;
  EXPECT_EQ(rule.no, "2.1");
  EXPECT_EQ(rule.name, "合同 金额");
  EXPECT_EQ(rule.rule.vecGrids.size(), 3u);
  EXPECT_EQ(rule.credit, 3);
  EXPECT_EQ(rule.action_id, kActionUnitExtract);
  EXPECT_EQ(rule.sField, "RowHead");
  EXPECT_EQ(rule.arguments, (std::vector<std::string>{"contract_fee|合同金额", "unit"}));
  EXPECT_EQ(rule.vecKeyname, (std::vector<std::string>{"a", "b"}));
  ASSERT_EQ(rule.vecField2KG.size(), 2u);
  EXPECT_EQ(rule.vecField2KG[0].field_name, "contract_fee");
  EXPECT_TRUE(rule.vecField2KG[0].type[1] && rule.vecField2KG[0].type[2] && !rule.vecField2KG[0].type[5]);
  EXPECT_TRUE(rule.vecField2KG[1].type[5]);
}

TEST(RuleTextTest, WrittenItemReadsBackTheSame) {
  _tRuleOrg rule, again;
  std::string sError;
  ASSERT_EQ(CRuleText::XML2RuleOrg(kItem, rule, sError), 1);
  rule.name = "a<b & \"c\"";
  std::string sXml = CRuleText::RuleOrg2XML(rule, "{[x]}");
  EXPECT_EQ(sXml.substr(0, 60), "<item>\n<no>2.1</no>\n<name>a&lt;b &amp; &quot;c&quot;</name>\n");
  EXPECT_NE(sXml.find("<argument>contract_fee|合同金额;unit;</argument><knowledge>{[x]}</knowledge><kgset>"),
            std::string::npos);
  EXPECT_NE(sXml.find("<kgset>contract_fee:attribute,showname,;unit:relation,</kgset>\n<keyname>a;b</keyname></item>"),
            std::string::npos);
  ASSERT_EQ(CRuleText::XML2RuleOrg(sXml.substr(6, sXml.size() - 13), again, sError), 1) << sError;
  EXPECT_EQ(CRuleText::RuleOrg2Json(again), CRuleText::RuleOrg2Json(rule));
  ASSERT_EQ(CRuleText::Json2RuleOrg(CRuleText::RuleOrg2Json(rule).toStyledString(), again, sError), 1);
  EXPECT_EQ(CRuleText::RuleOrg2Json(again), CRuleText::RuleOrg2Json(rule));
}

TEST(RuleTextTest, BadRulesAreRefusedWithTheirReason) {
  const struct {
    const char* szJson;
    const char* szError;
  } kCases[] = {
      {"[1,2]", "Read ZYG Infor Error!"},
      {"{\"no\":\"1\"", "Read ZYG Infor Error!"},
      {R"({"no":"1","rule":"{[a]}","kgset":"x:boss,"})", "Unknown kgset role boss of x"},
      {R"({"no":"1","rule":"{[a]","action":"extract"})", "{后面缺乏区格的结束符合'}'"},
  };
  for (const auto& c : kCases) {
    _tRuleOrg rule;
    std::string sError;
    EXPECT_EQ(CRuleText::Json2RuleOrg(c.szJson, rule, sError), -1) << c.szJson;
    EXPECT_EQ(sError, c.szError);
  }
  std::string sDeep(100000, '[');
  _tRuleOrg rule;
  std::string sError;
  EXPECT_EQ(CRuleText::Json2RuleOrg(sDeep, rule, sError), -1);
}

}  // namespace
