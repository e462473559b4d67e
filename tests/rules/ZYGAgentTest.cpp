// The extraction agent: matching on hand-tokenised words (backward start,
// coverage of the indexed token, optional and negated blocks, tag prefixes,
// joining and offsets of values), the actions and generating rules, the
// key-bound pass, document scans, the punctuation findings, hostile text.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "TestDataDir.h"
#include "docx/Document.h"
#include "rules/ZYG.h"
#include "rules/ZYGAgent.h"
#include "utility/ErrorLog.h"
#include "utility/TextNormalizer.h"
#include "utility/lexical/Lexical.h"

namespace {

typedef std::vector<std::pair<tstring, tstring>> WordList;

// "日期/n ：/w 2023/m": blank-separated tokens, each split at its last '/'.
WordList Words(const std::string& sTagged) {
  WordList vecWords;
  size_t nPos = 0;
  while (nPos < sTagged.size()) {
    size_t nEnd = sTagged.find(' ', nPos);
    if (nEnd == std::string::npos) nEnd = sTagged.size();
    std::string sToken = sTagged.substr(nPos, nEnd - nPos);
    size_t nSlash = sToken.rfind('/');
    if (nSlash != std::string::npos && nSlash > 0) vecWords.push_back({sToken.substr(0, nSlash), sToken.substr(nSlash)});
    nPos = nEnd + 1;
  }
  return vecWords;
}

struct RuleSpec {
  const char* szNo;
  const char* szRule;
  const char* szAction;
  const char* szArguments;
  const char* szField;
  const char* szKeyname;
};

std::string ItemXml(const RuleSpec& r) {
  std::string s = std::string("<item><no>") + r.szNo + "</no><name>rule " + r.szNo + "</name><rule>" + r.szRule +
                  "</rule><credit>1</credit><action>" + r.szAction + "</action><field>" +
                  (r.szField ? r.szField : "text") + "</field><argument>" + r.szArguments + "</argument>";
  if (r.szKeyname && *r.szKeyname) s += std::string("<keyname>") + r.szKeyname + "</keyname>";
  return s + "</item>";
}

std::unique_ptr<CZYG> MakeRules(const std::vector<RuleSpec>& vecSpecs) {
  std::string sXml;
  for (const RuleSpec& spec : vecSpecs) sXml += ItemXml(spec);
  auto pZYG = std::make_unique<CZYG>("", 0);
  EXPECT_EQ(pZYG->ImportRuleFromMem(sXml.c_str(), true), (int)vecSpecs.size()) << GetLastError();
  return pZYG;
}

// Every selected value of every match: values of one match joined by '|',
// matches by ';'.
std::string Selected(const CZYGAgent& agent) {
  std::string s;
  for (const _tZYG_Result& result : agent.GetMatches()) {
    if (!s.empty()) s += ";";
    for (size_t i = 0; i < result.vecSelected.size(); ++i) s += (i ? "|" : "") + result.vecSelected[i];
  }
  return s;
}

std::string KeyValues(const CZYGAgent& agent, const CZYG& rules, const char* szKey) {
  std::vector<_tKeyVal> vecValues;
  agent.GetKeyValue(rules.GetKeyId(szKey), vecValues);
  std::string s;
  for (const _tKeyVal& keyVal : vecValues) s += (s.empty() ? "" : ";") + keyVal.key_value;
  return s;
}

TEST(ZYGAgentMatchTest, PatternsOnHandTokenisedWords) {
  struct {
    const char* szRule;
    const char* szWords;
    const char* szWant;  // Selected(); "" for no match
  } kCases[] = {
      // The first block is a tag no token is indexed by: found backwards
      // from the indexed "年", by tag prefix ("/n" takes "/nz").
      {"{[/n][年]}s", "本/r 财务/nz 年/q", "财务年"},
      // The match found backwards ends before the indexed "乙": refused...
      {"{[/r][乙]0}s", "我/rr 看/v 乙/n", ""},
      // ...and accepted when it reaches it.
      {"{[/r][乙]0}s", "我/rr 乙/n", "我乙"},
      // An optional block is skipped when absent and taken when present.
      {"{[收入][/d]0[增长]}s", "收入/n 增长/v", "收入增长"},
      {"{[收入][/d]0[增长]}s", "收入/n 大幅/d 增长/v", "收入大幅增长"},
      // A required block that is absent fails the grid.
      {"{[收入][/d][增长]}s", "收入/n 增长/v", ""},
      // Negated blocks.
      {"{[合同][-(终止;解除)]}s", "合同/n 签订/v", "合同签订"},
      {"{[合同][-(终止;解除)]}s", "合同/n 解除/v", ""},
      // Tag prefixes work one way only.
      {"{[/n]}s{[表示]}", "张三/nr 表示/v", "张三"},
      {"{[/nr]}s{[表示]}", "公司/n 表示/v", ""},
      // English words joined by blanks, Chinese words without.
      {"{[公司]}{[/eng]3}s", "公司/n Tarvos/eng Data/eng Inc/eng", "Tarvos Data Inc"},
      {"{[公司]}{[/ns;/n]2}s", "公司/n 北京/ns 分部/n", "北京分部"},
      // A grid step lets the next grid start one token later.
      {"{[日期]}+2{[/m]}s", "日期/n ：/w 2023/m", "2023"},
      {"{[日期]}{[/m]}s", "日期/n ：/w 2023/m", ""},
      // A repeat count takes that many matches.
      {"{[公司]}{[/m]2}s", "公司/n 3/m 5/m", "3 5"},
      // Found through two of its terms, reported once.
      {"{[报告]}{[日期]}s", "报告/n 日期/n", "日期"},
  };
  for (const auto& c : kCases) {
    auto pRules = MakeRules({{"1", c.szRule, "extract", "v|值", "text", ""}});
    CZYGAgent agent(pRules.get());
    agent.ScanWords(Words(c.szWords), 1);
    EXPECT_EQ(Selected(agent), c.szWant) << c.szRule << " on " << c.szWords;
  }
}

TEST(ZYGAgentMatchTest, ValuesAreKeptUnderArgumentKeysWithOffsets) {
  auto pRules = MakeRules({{"1", "{[日期]}{[：]}{[/m]}s", "extract", "report_date|报告日期", "text", "single_date"}});
  CZYGAgent agent(pRules.get());
  // "报告日期：2023": the value starts at byte 15, plus the start offset 100.
  EXPECT_EQ(agent.ScanWords(Words("报告/n 日期/n ：/w 2023/m"), 7, 0, -1, -1, 100), 1);
  _tKeyVal keyVal;
  ASSERT_TRUE(agent.GetKeyValue("report_date", keyVal));
  EXPECT_EQ(keyVal.key_value, "2023");
  EXPECT_EQ(keyVal.offset, 115u);
  EXPECT_EQ(keyVal.para_id, 7u);
  EXPECT_EQ(keyVal.rule_used, "1");
  // The key name receives the first value too.
  EXPECT_EQ(KeyValues(agent, *pRules, "single_date"), "2023");
  ASSERT_EQ(agent.GetMatches().size(), 1u);
  EXPECT_EQ(agent.GetMatches()[0].action, "extract");
  EXPECT_EQ(agent.GetMatches()[0].arguments, std::vector<tstring>{"report_date|报告日期"});

  // Markup ("< b >", five bytes in the joined text) is not counted.
  agent.Reset();
  agent.ScanWords(Words("</wkz b/x >/wky 日期/n ：/w 2023/m"), 7);
  ASSERT_TRUE(agent.GetKeyValue("report_date", keyVal));
  EXPECT_EQ(keyVal.offset, 9u);
}

TEST(ZYGAgentMatchTest, FieldAndLevelRestrictions) {
  auto pRules = MakeRules({{"1", "{[页码]}{[/m]}s", "extract", "page", "footer", ""},
                           {"2", "{[公司]}{[/n]}s", "extract", "unit", "text", ""},
                           {"3", "{[章]}{[/n]}s", "extract", "chapter", "title1", ""}});
  struct {
    const char* szWords;
    int nLevel, nField, nRule;
    const char* szWant;
  } kCases[] = {
      {"页码/n 3/m", 0, -1, -1, ""},          // a footer rule is not tried on body text
      {"页码/n 3/m", -400, -1, -1, "3"},      // but in a footer
      {"公司/n 总部/n", -400, -1, -1, ""},     // and nothing else is
      {"公司/n 总部/n", 0, -1, -1, "总部"},
      {"公司/n 总部/n", 0, kFieldTitle1, -1, ""},  // restricted to another field
      {"章/n 结论/n", 1, kFieldTitle1, -1, "结论"},
      {"公司/n 总部/n 章/n 结论/n", 0, -1, 2, "结论"},  // only rule index 2
  };
  for (const auto& c : kCases) {
    CZYGAgent agent(pRules.get());
    agent.ScanWords(Words(c.szWords), 1, c.nLevel, c.nField, c.nRule);
    EXPECT_EQ(Selected(agent), c.szWant) << c.szWords << " level " << c.nLevel;
  }
}

TEST(ZYGAgentActionTest, ActionsFillValuesWhenNothingIsSelected) {
  struct {
    const char* szRule;
    const char* szAction;
    const char* szWords;
    const char* szWant;
  } kCases[] = {
      {"{[甲]}{[乙]}", "paragraphextract", "甲/n 乙/n 丙/n", "甲乙丙"},
      {"{[起点]}+3{[终点]}", "between_extract", "起点/n 中间/n 文字/n 终点/n", "中间文字"},
      {"{[金额]}{[/m]}s", "convert", "金额/n 一千二百/m", "1200"},
      {"{[金额]}{[/m]}s", "convert", "金额/n 1,234,567/m", "1234567"},
      {"{[标题]}", "title_extract", "标题/n", "标题"},
  };
  for (const auto& c : kCases) {
    auto pRules = MakeRules({{"1", c.szRule, c.szAction, "v", "text", ""}});
    CZYGAgent agent(pRules.get());
    agent.ScanWords(Words(c.szWords), 1);
    EXPECT_EQ(Selected(agent), c.szWant) << c.szAction;
  }
}

TEST(ZYGAgentActionTest, RevisingActionsBecomeFindings) {
  auto pRules = MakeRules({{"7.1", "{[其它]}s", "update", "other|其他", "text", ""},
                           {"7.2", "{[冗余]}s", "delete", "x", "text", ""}});
  CZYGAgent agent(pRules.get());
  agent.ScanWords(Words("其它/r 冗余/a 内容/n"), 5);
  ASSERT_EQ(agent.GetFindings().size(), 2u);
  const _tCheckResult& update = agent.GetFindings()[0];
  EXPECT_EQ(update.error_id, "7.1");
  EXPECT_EQ(update.error_msg, "rule 7.1");
  EXPECT_EQ(update.org_str, "其它");
  EXPECT_EQ(update.new_str, "其他");
  EXPECT_EQ(update.revise_type, 1);
  EXPECT_EQ(agent.GetFindings()[1].revise_type, 2);
  EXPECT_EQ(agent.GetFindings()[1].offset, 6u);
  EXPECT_TRUE(agent.GetKeyValues().empty());  // revisions are no knowledge
}

TEST(ZYGAgentGenerateTest, DatesTuplesAndSingleKeys) {
  auto pRules = MakeRules({
      {"1", "{[日期]}{[：]}{[/t]}s", "extract", "rdate", "text", ""},
      {"2", "{[项目]}{[：]}{[/n]}s{[金额]}{[：]}{[/m]}s", "extract", "name;amount", "text", ""},
      {"3", "{[rdate]}", "generate_date", "report_date;report_during;report_during_end", "text", ""},
      {"4", "{[name;amount]}", "generate_tuple", "name;amount", "text", ""},
      {"5", "{[name]}", "generate_singlekey", "name;amount", "text", "item"},
  });
  CZYGAgent agent(pRules.get());
  agent.ScanWords(Words("日期/n ：/w 2023年1月1日至2023年12月31日/t"), 10);
  agent.ScanWords(Words("日期/n ：/w 2024年3月5日/t"), 20);
  agent.ScanWords(Words("项目/n ：/w 收入/n 金额/n ：/w 100/m"), 30);
  agent.ScanWords(Words("项目/n ：/w 成本/n 金额/n ：/w 60/m"), 40);
  agent.ScanRules();
  EXPECT_EQ(KeyValues(agent, *pRules, "report_during"), "[2023-01-01 to 2023-12-31]");
  EXPECT_EQ(KeyValues(agent, *pRules, "report_during_end"), "2023-12-31");
  EXPECT_EQ(KeyValues(agent, *pRules, "report_date"), "2024-03-05");
  ASSERT_EQ(agent.GetTuples().size(), 2u);
  EXPECT_EQ(agent.GetTuples()[0].size(), 2u);
  EXPECT_EQ(agent.GetTuples()[1][0].key_value, "成本");
  EXPECT_EQ(agent.GetTuples()[1][1].key_value, "60");
  ASSERT_EQ(agent.GetSingleKeyValues().size(), 2u);
  EXPECT_EQ(agent.GetSingleKeyValues()[0].key_value, "收入:100");
  std::vector<_tKeyVal> vecSingle;
  EXPECT_EQ(agent.GetKeyValue(pRules->GetKeyId("item"), vecSingle, 35, 0, 1, true), 1);
  EXPECT_EQ(vecSingle[0].key_value, "成本:60");
}

TEST(ZYGAgentGenerateTest, DateMessages) {
  struct {
    const char* szValue;
    const char* szMessage;
  } kCases[] = {
      {"[2023年1月1日]", "[2023年1月1日] Invalid format need [startDate to EndDate]."},
      {"3023年", "3023年 is invalid this year number"},
      {"明天下午", "明天下午 is invalid! "},
  };
  for (const auto& c : kCases) {
    auto pRules = MakeRules({{"1", "{[日期]}{[：]}{[/t]}s", "extract", "rdate", "text", ""},
                             {"2", "{[rdate]}", "generate_date", "report_date", "text", ""}});
    CZYGAgent agent(pRules.get());
    SetLastError("");
    agent.ScanWords({{"日期", "/n"}, {"：", "/w"}, {c.szValue, "/t"}}, 1);
    agent.ScanRules();
    EXPECT_EQ(GetLastError(), c.szMessage);
    EXPECT_EQ(KeyValues(agent, *pRules, "report_date"), "");
  }
  auto pRules = MakeRules({{"1", "{[rdate;x][y]}", "generate_date", "report_date", "text", ""}});
  CZYGAgent agent(pRules.get());
  agent.ScanRules();
  EXPECT_EQ(GetLastError(), "Block count must be 1 in 1");
}

TEST(ZYGAgentKeyValueTest, LookupNearAParagraph) {
  auto pRules = MakeRules({{"1", "{[日期]}{[/m]}s", "extract", "d", "text", ""}});
  CZYGAgent agent(pRules.get());
  agent.ScanWords(Words("日期/n 1/m"), 100);
  agent.ScanWords(Words("日期/n 2/m 日期/n 3/m"), 200);
  agent.ScanWords(Words("日期/n 4/m"), 300);
  int nKey = pRules->GetKeyId("d");
  std::vector<_tKeyVal> vec;
  auto values = [&]() {
    std::string s;
    for (const _tKeyVal& k : vec) s += k.key_value;
    return s;
  };
  EXPECT_EQ(agent.GetKeyValue(nKey, vec), 4);
  EXPECT_EQ(values(), "1234");
  agent.GetKeyValue(nKey, vec, 200, 7, 1);  // at or after byte 7 of paragraph 200
  EXPECT_EQ(values(), "34");
  agent.GetKeyValue(nKey, vec, 200, 7, -1);  // before it, nearest first
  EXPECT_EQ(values(), "21");
  // Scanning the same paragraph again records nothing twice.
  agent.ScanWords(Words("日期/n 4/m"), 300);
  EXPECT_EQ(agent.GetKeyValue(nKey, vec), 4);
}

// Tests that need the segmenter and its lexicon.
class ZYGAgentTextTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { ASSERT_EQ(QUENDA_Init(TARVOS_TEST_DATA_DIR), 1); }
  static void TearDownTestSuite() { QUENDA_Exit(); }

  static std::vector<std::string> FindingIds(const CZYGAgent& agent) {
    std::vector<std::string> vecIds;
    for (const _tCheckResult& check : agent.GetFindings()) vecIds.push_back(check.error_id);
    return vecIds;
  }
};

TEST_F(ZYGAgentTextTest, PunctuationFindings) {
  struct {
    const char* szText;
    const char* szWant;  // the finding ids, blank-separated
  } kCases[] = {
      {"本报告的的数据来源可靠。", "1.5.3"},
      {"我们我们将在下周提交报告。", "1.5.3"},
      {"他常常去图书馆看看书，人人都说好。", ""},
      {"这的的确确是事实。", ""},
      {"项目包括设计、施工，和验收三个阶段。", "99.3"},
      {"他来了，和我们一起工作。", ""},
      {"本人了解学校关于收集、保存、使用论文的规定，即：", ""},
      {"附录中的图、表、参考文献等另行编号，与正文分开。", ""},
      {"设计、施工及验收的全部资料应当及时归档整理，或由建设单位保管。", ""},
      {"Компания “Кузбассразрезуголь” и „Омскводоканал”", ""},
      {"数据如下，，请核对。", "99.4"},
      {"结论如下：。", "99.4"},
      {"他说：“好的。”……", ""},
      {"请参阅《报告第三章。", "99.5"},
      {"他说“好”。）", "99.5"},
      {"1）完成设计；2）完成施工。", ""},
      {"如在节内容1）还包含分点内容，用带圈的数字标记。", ""},
      {"（一）总体要求", ""},
      {"the company’s report", ""},
  };
  auto pRules = MakeRules({{"1", "{[无关词语]}s", "extract", "v", "text", ""}});
  for (const auto& c : kCases) {
    CZYGAgent agent(pRules.get());
    agent.ScanText(c.szText, 1);
    std::string sIds;
    for (const std::string& sId : FindingIds(agent)) sIds += (sIds.empty() ? "" : " ") + sId;
    EXPECT_EQ(sIds, c.szWant) << c.szText;
  }
}

TEST_F(ZYGAgentTextTest, FindingsPointIntoTheOriginalText) {
  auto pRules = MakeRules({{"1", "{[无关词语]}s", "extract", "v", "text", ""}});
  CZYGAgent agent(pRules.get());
  // Full-width blanks and letters change byte lengths when normalised.
  std::string sText = "　ＡＢ　本报告的的数据，，完整。";
  agent.ScanText(sText, 9);
  ASSERT_EQ(agent.GetFindings().size(), 2u);
  for (const _tCheckResult& check : agent.GetFindings()) {
    EXPECT_EQ(sText.compare(check.offset, check.org_str.size(), check.org_str), 0) << check.error_id;
    EXPECT_EQ(check.para_id, 9u);
    EXPECT_EQ(check.text, sText);
  }
  EXPECT_EQ(agent.GetFindings()[0].org_str, "的的");
  EXPECT_EQ(agent.GetFindings()[0].new_str, "的");
  EXPECT_EQ(agent.GetFindings()[1].new_str, "，");

  CZYGAgent quiet(pRules.get());
  quiet.SetPunctuationCheck(false);
  quiet.ScanText(sText, 9);
  EXPECT_TRUE(quiet.GetFindings().empty());
}

TEST_F(ZYGAgentTextTest, TokensCarryOffsetsInTheNormalisedText) {
  auto pRules = MakeRules({{"1", "{[合同金额]}{[:]}{[/m]}s", "extract", "amount", "text", ""}});
  CZYGAgent agent(pRules.get());
  std::string sText = "本 合同金额：1000万元";
  EXPECT_EQ(agent.ScanText(sText, 1), 1);
  const auto& vecTokens = agent.GetTokens();
  ASSERT_GE(vecTokens.size(), 3u);
  EXPECT_EQ(vecTokens.front().pos, "/LB");
  EXPECT_EQ(vecTokens.back().pos, "/LE");
  std::string sStand = NormalizeText(sText);
  for (size_t i = 1; i + 1 < vecTokens.size(); ++i)
    EXPECT_EQ(sStand.compare(vecTokens[i].offset, vecTokens[i].word.size(), vecTokens[i].word), 0) << i;
  _tKeyVal keyVal;
  ASSERT_TRUE(agent.GetKeyValue("amount", keyVal));
  EXPECT_EQ(sStand.compare(keyVal.offset, keyVal.key_value.size(), keyVal.key_value), 0) << keyVal.key_value;
}

TEST_F(ZYGAgentTextTest, KeyBoundRulesRunOverExtractedValues) {
  auto pRules = MakeRules({{"1", "{[地址]}{[:]}{[/n;/m;/x;/ZYG]6}s", "extract", "address", "text", ""},
                           {"2", "{[海淀区]}s", "extract", "district", "address", ""}});
  CZYGAgent agent(pRules.get());
  std::string sText = "公司地址：北京市海淀区中关村";
  agent.ScanText(sText, 42);
  _tKeyVal address;
  ASSERT_TRUE(agent.GetKeyValue("address", address)) << Selected(agent);
  EXPECT_EQ(KeyValues(agent, *pRules, "district"), "");  // not before the key-bound pass
  agent.ScanRules();
  _tKeyVal district;
  ASSERT_TRUE(agent.GetKeyValue("district", district));
  EXPECT_EQ(district.key_value, "海淀区");
  EXPECT_EQ(district.para_id, 42u);
  std::string sStand = NormalizeText(sText);
  EXPECT_EQ(sStand.compare(district.offset, district.key_value.size(), "海淀区"), 0) << district.offset;
}

TEST_F(ZYGAgentTextTest, DocumentPartsAndTables) {
  auto pRules = MakeRules({
      {"1", "{[第]}{[/m]}s{[页]}", "extract", "page", "footer", ""},
      {"2", "{[摘要]}s", "extract", "abstract", "title", ""},
      {"3", "{[收入;营业收入]}s", "extract", "revenue|营业收入", "ColHead", ""},
      {"4", "{[项目]}s", "extract", "item", "ColHead", ""},
      {"5", "{[摘要]}s", "extract", "word", "text", ""},
  });
  CDocument doc;
  _tParagraph footer;
  footer.id = 0x10;
  footer.level = kLevelFooter;
  footer.text = "第 3 页";
  doc.m_vecHeadFooter[1].push_back(footer);
  _tParagraph heading;
  heading.id = 0x100;
  heading.level = 1;
  heading.text = "摘要";
  _tParagraph body = heading;
  body.id = 0x200;
  body.level = 0;
  body.text = "摘要的内容";
  _tParagraph placeholder;
  placeholder.id = 0;
  placeholder.level = kLevelTable;
  doc.m_vecParagraph = {heading, body, placeholder};
  _tTable table;
  table.para_index = 2;
  const char* kCells[3][2] = {{"项目", "营业收入"}, {"甲", "100"}, {"乙", "200"}};
  uint32_t nId = 0x1000;
  for (auto& row : kCells) {
    std::vector<std::vector<_tParagraph>> vecRow;
    for (const char* szCell : row) {
      _tParagraph cell;
      cell.id = nId++;
      cell.text = szCell;
      vecRow.push_back({cell});
    }
    table.rows.push_back(vecRow);
  }
  doc.m_vecTable.push_back(table);

  CZYGAgent agent(pRules.get());
  agent.ScanDoc(&doc, "", 0, false);
  EXPECT_EQ(KeyValues(agent, *pRules, "page"), "3");
  std::vector<_tKeyVal> vec;
  agent.GetKeyValue(pRules->GetKeyId("abstract"), vec);
  ASSERT_EQ(vec.size(), 1u);  // the heading, not the body paragraph
  EXPECT_EQ(vec[0].para_id, 0x100u);
  EXPECT_EQ(KeyValues(agent, *pRules, "word"), "摘要;摘要");
  ASSERT_EQ(agent.GetTables().size(), 1u);
  const _tKeyTable& keyTable = agent.GetTables()[0];
  ASSERT_EQ(keyTable.size(), 2u);
  ASSERT_EQ(keyTable[1].size(), 2u);
  EXPECT_EQ(keyTable[1][0].key_value, "乙");
  EXPECT_EQ(keyTable[1][1].key_value, "200");
  EXPECT_EQ(keyTable[1][1].key_name_id, pRules->GetKeyId("revenue"));
}

TEST_F(ZYGAgentTextTest, DebugTraceAndTextFiles) {
  auto pRules = MakeRules({{"1", "{[合同编号]}{[:]}{[/m;/eng;/x]}s", "extract", "contract_no", "text", ""}});
  CTempDir dir;
  std::string sFile = dir.Path() + "/report.txt";
  FILE* fp = fopen(sFile.c_str(), "wb");
  ASSERT_NE(fp, nullptr);
  fputs("第一行没有编号\r\n合同编号：2023001\n", fp);
  fclose(fp);
  CZYGAgent agent(pRules.get());
  EXPECT_NE(agent.ScanTextFile(sFile, 0, true).find("<ZYG_Result>"), std::string::npos);
  _tKeyVal keyVal;
  ASSERT_TRUE(agent.GetKeyValue("contract_no", keyVal));
  EXPECT_EQ(keyVal.key_value, "2023001");
  EXPECT_EQ(keyVal.para_id, 23u);  // the line's byte offset in the file
  const Json::Value& trace = agent.GetDebugTrace();
  ASSERT_EQ(trace.size(), 2u);
  EXPECT_EQ(trace[1]["original"].asString(), "合同编号：2023001");
  EXPECT_NE(trace[1]["segment"].asString().find("合同编号/ZYG"), std::string::npos);
  EXPECT_EQ(trace[1]["debug"].asString().rfind("No:0\tId=", 0), 0u);
  EXPECT_NE(trace[1]["debug"].asString().find("(Ansi=)\tpos=/LB\n"), std::string::npos);
  EXPECT_NE(trace[1]["process"].asString().find("Block Matched Success!"), std::string::npos);
  EXPECT_FALSE(ReadWholeFile(dir.Path() + "/Match_Debug.txt").empty());
  EXPECT_TRUE(agent.ScanTextFile(dir.Path() + "/missing.txt", 0, false).empty());
  EXPECT_EQ(GetLastError(), "Failed open file " + dir.Path() + "/missing.txt");
}

TEST_F(ZYGAgentTextTest, HostileTextEndsInBoundedTime) {
  auto pRules = MakeRules({{"1", "{[/m]}{[年]}s", "extract", "year", "text", ""},
                           {"2", "{[/n][/m]0[/q]0[年]}s", "extract", "y2", "text", ""},
                           {"3", "{[甲]}+1000{[乙]}s", "extract", "far", "text", ""}});
  std::string sLong;
  for (int i = 0; i < 40000; ++i) sLong += "2023年";
  std::string sHostile("甲\0乙\xff\xfe\xc3(", 9);
  sHostile += std::string(1 << 16, '\xe4') + "甲乙";
  for (const std::string& sText : {sLong, sHostile, std::string(1 << 20, 'a')}) {
    CZYGAgent agent(pRules.get());
    agent.ScanText(sText, 1);
    EXPECT_LE(agent.GetFindings().size(), 32u * 4);
  }
  CZYGAgent agent(pRules.get());
  agent.ScanText(sLong, 1);
  EXPECT_GE(agent.GetMatches().size(), 40000u);
}

}  // namespace
