#include "rules/ZYGResultWriter.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <set>
#include <string>

#include <json/json.h>

#include "TestDataDir.h"
#include "rules/ZYG.h"
#include "utility/ErrorLog.h"
#include "utility/Utf8.h"

namespace {

typedef CZYGResultWriter W;
const std::string kDecl = W::kXmlDeclaration;
const std::string kHostile("<&>\"\x01\0\xFF中", 10);  // markup, a control, NUL, a stray byte

// A small checker for the XML the writer makes: an optional declaration,
// one root, elements without attributes, text with the predefined
// references only, valid UTF-8 without the controls XML 1.0 forbids.
// Returns "" when well-formed, else what is wrong and where.
std::string XmlProblem(const std::string& s) {
  size_t i = 0;
  if (s.compare(0, 5, "<?xml") == 0) {
    i = s.find("?>");
    if (i == std::string::npos) return "unclosed declaration";
    i += 2;
  }
  std::vector<std::string> vecOpen;
  bool bRootDone = false;
  while (i < s.size()) {
    const size_t nAt = i;
    if (s[i] == '<') {
      const size_t nClose = s.find('>', i);
      if (nClose == std::string::npos) return "unclosed tag at " + std::to_string(nAt);
      const bool bEnd = s[i + 1] == '/';
      const std::string sName = s.substr(i + (bEnd ? 2 : 1), nClose - i - (bEnd ? 2 : 1));
      if (sName.empty() || sName.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_0123456789") !=
                               std::string::npos)
        return "bad tag name at " + std::to_string(nAt);
      if (bEnd) {
        if (vecOpen.empty() || vecOpen.back() != sName) return "mismatched </" + sName + "> at " + std::to_string(nAt);
        vecOpen.pop_back();
        bRootDone = vecOpen.empty();
      } else {
        if (bRootDone) return "second root at " + std::to_string(nAt);
        vecOpen.push_back(sName);
      }
      i = nClose + 1;
      continue;
    }
    if (s[i] == '&') {
      bool bKnown = false;
      for (const char* szRef : {"&amp;", "&lt;", "&gt;", "&quot;", "&apos;"})
        bKnown = bKnown || s.compare(i, strlen(szRef), szRef) == 0;
      if (!bKnown) return "bad reference at " + std::to_string(nAt);
      i = s.find(';', i) + 1;
      continue;
    }
    uint32_t nChar;
    const size_t n = DecodeUtf8(s.data() + i, s.size() - i, nChar);
    if (nChar >= kInvalidByteBase) return "invalid UTF-8 at " + std::to_string(nAt);
    if (nChar < 0x20 && nChar != '\t' && nChar != '\n' && nChar != '\r') return "control at " + std::to_string(nAt);
    if (vecOpen.empty() && nChar != '\r' && nChar != '\n' && nChar != ' ' && nChar != '\t')
      return "text outside the root at " + std::to_string(nAt);
    i += n;
  }
  return vecOpen.empty() && bRootDone ? "" : "unclosed elements or no root";
}

std::string Keys(const Json::Value& object) {
  std::string s;
  for (const auto& sKey : object.getMemberNames()) s += sKey + ",";
  return s;
}

_tKeyVal KeyVal(uint32_t nPara, unsigned nOffset, int nKey, const std::string& sValue) {
  _tKeyVal kv;
  kv.para_id = nPara;
  kv.offset = nOffset;
  kv.key_name_id = nKey;
  kv.key_value = sValue;
  kv.org_para_text = "总额12.5万元";
  kv.rule_used = "1.5.3";
  return kv;
}

// One of everything, texts chosen by the caller.
struct _tFixture {
  std::vector<_tZYG_Result> vecMatches;
  std::vector<_tKeyVal> vecKeyVals, vecSingle, vecEntities;
  std::vector<_tTuple> vecTuples;
  std::vector<_tKeyTable> vecTables;
  std::vector<_tTableArgument> vecArguments;
  std::vector<_tEntityAttrVal> vecEntityAttr;
  std::vector<_tHeadRelTail> vecRelations;

  explicit _tFixture(const std::string& sValue) {
    _tZYG_Result r;
    r.rule_no = sValue;
    r.vecSelected = {sValue};
    r.arguments = {sValue};
    r.org_para_text = sValue;
    vecMatches = {r, r};
    vecKeyVals = {KeyVal(0x10, 3, 7, "12.5万元"), KeyVal(0x20, 0, 8, sValue)};
    vecSingle = {KeyVal(0x30, 1, 9, sValue)};
    vecEntities = {KeyVal(0x40, 2, 10, "中国")};
    vecTuples = {vecKeyVals, {}};
    vecTables = {{vecKeyVals, {KeyVal(0x50, 0, 7, sValue)}}};
    vecArguments = {{"r.docx", "3.2", "设计", "合计", "金额", sValue}};
    vecEntityAttr = {{"公司", "注册资本", sValue}, {}};
    vecRelations = {{"甲方", "合作", sValue}, {}};
  }
  _tZYGFindings Findings(const CZYG* pZYG = nullptr) const {
    _tZYGFindings f;
    f.pZYG = pZYG;
    f.pMatches = &vecMatches;
    f.pKeyVals = &vecKeyVals;
    f.pSingleKeyVals = &vecSingle;
    f.pNamedEntities = &vecEntities;
    f.pTuples = &vecTuples;
    f.pTables = &vecTables;
    f.pTableArguments = &vecArguments;
    f.pEntityAttrVals = &vecEntityAttr;
    f.pHeadRelTails = &vecRelations;
    return f;
  }
};

typedef std::string (W::*TextFn)() const;
const struct {
  const char* szSuffix;
  TextFn fnText;
} kXmlOutputs[] = {{"_ZYG_result.xml", &W::ResultsXml}, {"_keyVal.xml", &W::KeyValsXml},
                   {"_tuple.xml", &W::TupleXml},       {"_argument.xml", &W::ArgumentXml},
                   {"_table.xml", &W::TableXml}};
const struct {
  const char* szSuffix;
  TextFn fnText;
  const char* szKeys;  // the top-level keys
} kJsonOutputs[] = {
    {"_keyVal.json", &W::KeyValsJson, "KeyVals,NamedEntity_result,SingleKey_result,Tables,Tuples,"},
    {"_entity.json", &W::EntityJson, "NamedEntity_result,"},
    {"_tuple.json", &W::TupleJson, "tuple_result,"},
    {"_kg.json", &W::KGJson, "entity_attribute,relation,"},
    {"_argument.json", &W::ArgumentJson, "argument_result,"},
    {"_table.json", &W::TableJson, "table_result,"},
    {"", &W::SingleKeyJson, "SingleKey_result,"},
};

}  // namespace

TEST(ZYGResultWriterTest, MatchIsWrittenInItsFixedForm) {
  _tZYG_Result r;
  r.rule_index = 2;
  r.rule_no = "1.5.3";
  r.action = "extract";
  r.arguments = {"amount", "unit"};
  r.credit = 5;
  r.frequency = 1;
  r.vecSelected = {"12.5万元", "a<b", "c"};
  r.vecSelectedParaId = {0x1A2B, 0};  // the third value has no entry: no paragraph of its own
  r.vecSelectedOffset = {-1, 7};
  r.para_id = 0xABCDEF;
  r.offset = 12;
  r.org_para_text = "总额12.5万元";
  EXPECT_EQ(r.WriteXML(),
            "<ZYG_Result>\n\t<rule_index>2</rule_index>\n<rule_no>1.5.3</rule_no>\n\t<action>extract</action>\n"
            "\t<credit>5</credit>\n\t<frequency>1</frequency>\n\t<para_id>00ABCDEF</para_id>\n\t<offset>12</offset>\n"
            "\t<selected>\n"
            "\t\t<item><para_id>00001A2B</para_id><value>12.5万元</value></item>\n"
            "\t\t<item><offset>7</offset><value>a&lt;b</value></item>\n"
            "\t\t<item><value>c</value></item>\n"
            "\t</selected>\n\t<arguments>\n\t\t<item>amount</item>\n\t\t<item>unit</item>\n\t</arguments>\n"
            "\t<org_para_text>总额12.5万元\t</org_para_text>\n</ZYG_Result>\n");
}

TEST(ZYGResultWriterTest, RecordsAndKeyValuesInTheirLayout) {
  const _tTableArgument arg{"r.docx", "3.2", "设计", "合计", "金额", "1&2"};
  EXPECT_EQ(arg.WriteXML(),
            "<file_name>r.docx</file_name>\r\n<section_no>3.2</section_no>\r\n<section_name>设计</section_name>\r\n"
            "<row_name>合计</row_name>\r\n<col_name>金额</col_name>\r\n<value>1&amp;2</value>\r\n");
  EXPECT_EQ(Keys(arg.WriteJson()), "col_name,file_name,row_name,section_name,section_no,value,");
  EXPECT_EQ(Keys(_tEntityAttrVal{"a", "b", "c"}.WriteJson()), "attribute,entity,val,");
  EXPECT_EQ(Keys(_tHeadRelTail{"a", "b", "c"}.WriteJson()), "head,relation,tail,");

  const _tFixture fixture("三个月");
  const W writer(fixture.Findings());
  const std::string sKeyVal1 =
      "<KeyVal>\r\n\t<para_id>00000010</para_id>\r\n"
      "<key_name><id>7</id><attribute>7</attribute><name>7</name></key_name>\r\n"
      "<key_value>12.5万元</key_value>\r\n<org_para_text>总额12.5万元</org_para_text>\r\n"
      "<rule_used>1.5.3</rule_used>\r\n</KeyVal>\r\n";
  const std::string sXml = writer.KeyValsXml(), sHead = kDecl + "\r\n<KeyVals>\r\n";
  EXPECT_EQ(sXml.substr(0, sHead.size() + sKeyVal1.size()), sHead + sKeyVal1);
  EXPECT_EQ(sXml.substr(sXml.size() - 12), "</KeyVals>\r\n");
  EXPECT_EQ(writer.TupleTxt(),
            "Offset:00000010\r\nOriginal Text is: 总额12.5万元 \r\n[7]:12.5万元\t[8]:三个月\t\r\n"
            "Offset:00000000\r\nOriginal Text is:  \r\n\r\n");
  EXPECT_NE(writer.TableXml().find("<Table>\r\n<Index>0</Index>\r\n<Row><RowIndex>0</RowIndex>\r\n<KeyVal>"),
            std::string::npos);
  EXPECT_NE(writer.ArgumentXml().find("<arguments>\r\n<RECORD>\r\n<file_name>r.docx</file_name>"), std::string::npos);
}

// Every output of the same findings, in both formats, whatever the texts
// hold: well-formed XML, strict JSON with the fixed keys, values intact.
TEST(ZYGResultWriterTest, OutputsStayWellFormedForHostileTexts) {
  for (const std::string& sValue : {std::string("三个月"), kHostile, std::string(1 << 20, '<')}) {
    const _tFixture fixture(sValue);
    const W writer(fixture.Findings());
    for (const auto& o : kXmlOutputs) EXPECT_EQ(XmlProblem((writer.*o.fnText)()), "") << o.szSuffix;
    for (const auto& o : kJsonOutputs) EXPECT_EQ(Keys(ParseJson((writer.*o.fnText)())), o.szKeys) << o.szSuffix;
  }
  EXPECT_EQ(W::XmlEscape(kHostile), "&lt;&amp;&gt;&quot;\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD中");

  const _tFixture fixture(kHostile);
  const W writer(fixture.Findings());
  const Json::Value keyVals = ParseJson(writer.KeyValsJson());
  const Json::Value& kv = keyVals["KeyVals"][1];
  EXPECT_EQ(Keys(kv), "attribute,key_value,name,offset,org_para_text,para_id,rule_used,");
  EXPECT_EQ(kv["key_value"].asString(), std::string("<&>\"\x01\0\xEF\xBF\xBD中", 12)) << "only the stray byte changes";
  EXPECT_EQ(kv["para_id"].asString(), "00000020");
  EXPECT_EQ(keyVals["KeyVals"][0]["offset"].asUInt(), 3u);
  const Json::Value tables = ParseJson(writer.TableJson())["table_result"];
  EXPECT_EQ(tables[0]["rows"][1]["RowIndex"].asUInt(), 1u);
  EXPECT_EQ(tables[0]["rows"][1]["Cols"][0]["para_id"].asString(), "00000050");
  const Json::Value tuples = ParseJson(writer.TupleJson())["tuple_result"];
  EXPECT_EQ(tuples[1]["Index"].asUInt(), 1u);
  EXPECT_EQ(tuples[0]["Tuple"].size(), 2u);
  const Json::Value kg = ParseJson(writer.KGJson());
  EXPECT_EQ(kg["entity_attribute"].size(), 1u) << "empty records are left out";
  EXPECT_EQ(kg["relation"][0]["head"].asString(), "甲方");
}

TEST(ZYGResultWriterTest, WritesEveryFileBesideTheDocumentOrNamesTheOneItCannot) {
  const _tFixture fixture("三个月");
  const W writer(fixture.Findings());
  CTempDir dir;
  ASSERT_TRUE(writer.WriteAll(dir.Path() + "/report"));
  std::set<std::string> setWant, setFound;
  for (const auto& o : kXmlOutputs) {
    setWant.insert(std::string("report") + o.szSuffix);
    EXPECT_EQ(ReadWholeFile(dir.Path() + "/report" + o.szSuffix), (writer.*o.fnText)()) << o.szSuffix;
  }
  for (const auto& o : kJsonOutputs) {
    if (*o.szSuffix == '\0') continue;
    setWant.insert(std::string("report") + o.szSuffix);
    EXPECT_EQ(ReadWholeFile(dir.Path() + "/report" + o.szSuffix), (writer.*o.fnText)()) << o.szSuffix;
  }
  setWant.insert("report_tuple.txt");
  for (const auto& entry : std::filesystem::directory_iterator(dir.Path()))
    setFound.insert(entry.path().filename().string());
  EXPECT_EQ(setFound, setWant) << "twelve files and no temporary ones";

  EXPECT_FALSE(writer.WriteAll(dir.Path() + "/missing/report"));
  EXPECT_EQ(GetLastError(), "Failed open file " + dir.Path() + "/missing/report_ZYG_result.xml");
}

TEST(ZYGResultWriterTest, KeysAreNamedByTheRuleSet) {
  CZYG zyg("", 1);
  ASSERT_GT(zyg.ImportRuleFromMem("<item>\n<no>1.1</no>\n<name>金额</name>\n<rule>{[总额]}{[/m]}s</rule>\n"
                                  "<credit>1</credit>\n<action>extract</action>\n<field>text</field>\n"
                                  "<argument>amount|金额;</argument>\n</item>",
                                  true),
            0)
      << GetLastError();
  const int nKey = zyg.GetKeyId("amount");
  ASSERT_GE(nKey, 0);
  const std::vector<_tKeyVal> vecKeyVals = {KeyVal(0x10, 3, nKey, "12.5万元")};
  _tZYGFindings findings;
  findings.pZYG = &zyg;
  findings.pKeyVals = &vecKeyVals;
  const W writer(findings);
  EXPECT_NE(writer.KeyValsXml().find("<key_name><id>" + std::to_string(nKey) +
                                     "</id><attribute>amount</attribute><name>金额</name></key_name>"),
            std::string::npos);
  const Json::Value kv = ParseJson(writer.KeyValsJson())["KeyVals"][0];
  EXPECT_EQ(kv["attribute"].asString(), "amount");
  EXPECT_EQ(kv["name"].asString(), "金额");
}
