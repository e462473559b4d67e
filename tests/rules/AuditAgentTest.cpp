// The audit evaluation: expressions (tolerance, levels, brackets, include
// lists, sum and integer, errors), the finding of a false rule, the command
// checks on extracted values, the standard checks over an injected search
// function, and hostile rules.
#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "checker/CheckResult.h"
#include "docx/Document.h"
#include "rules/Audit.h"
#include "rules/AuditAgent.h"
#include "rules/ZYG.h"
#include "rules/ZYGAgent.h"
#include "utility/ErrorLog.h"

namespace {

typedef std::vector<std::pair<tstring, tstring>> WordList;

// The keys of the fixtures: one extraction rule per key, "<trigger> value".
struct KeySpec {
  const char* szKey;
  const char* szTrigger;
};
const KeySpec kKeys[] = {
    {"a|甲值", "甲"}, {"b|乙值", "乙"}, {"c|丙值", "丙"}, {"t|文本", "丁"},
    {"Safety_Tiaowenhao|标准号", "戊"}, {"Safety_Tiaowen|标准名", "己"}, {"Safety_Date|日期", "庚"},
    {"contract_fee|金额", "辛"}, {"contract_feebig|大写金额", "壬"}, {"safety_section|条款", "癸"},
};

struct AuditSpec {
  const char* szRule;
  const char* szField;
  const char* szArgument;
};

// An audit processor with the keys above and the given rules, an agent over
// its rule set, and the results.
class Fixture {
 public:
  explicit Fixture(const std::vector<AuditSpec>& vecAudits) : m_audit("", 1) {
    std::string sRules;
    int n = 0;
    for (const KeySpec& key : kKeys)
      sRules += "<item><no>" + std::to_string(++n) + "</no><rule>{[" + key.szTrigger +
                "]}{[/m;/x;/n;/t]}s</rule><action>extract</action><field>text</field><argument>" + key.szKey +
                "</argument></item>";
    EXPECT_EQ(m_audit.GetZYG()->ImportRuleFromMem(sRules.c_str(), true), n) << GetLastError();
    std::string sAudits = "<audits>";
    n = 0;
    for (const AuditSpec& spec : vecAudits)
      sAudits += "<audit><no>" + std::to_string(++n) + "</no><name>r</name><rule>" + spec.szRule + "</rule><field>" +
                 spec.szField + "</field><argument>" + spec.szArgument + "</argument></audit>";
    sAudits += "</audits>";
    EXPECT_EQ(m_audit.ImportFromMem(sAudits.c_str(), true), n) << GetLastError();
    m_pAgent = std::make_unique<CZYGAgent>(m_audit.GetZYG());
    m_pChecker = std::make_unique<CAuditAgent>(&m_audit, m_pAgent.get());
    m_pChecker->SetCheckResult(&m_results);
  }

  // Scans "<trigger> value" for a key into paragraph nPara.
  void Scan(const char* szKey, const tstring& sValue, uint32_t nPara, const char* szTag = "/x") {
    for (const KeySpec& key : kKeys) {
      std::string sName = key.szKey;
      if (sName.substr(0, sName.find('|')) != szKey) continue;
      m_pAgent->ScanWords({{key.szTrigger, "/n"}, {sValue, szTag}}, nPara);
      return;
    }
    ADD_FAILURE() << "no key " << szKey;
  }
  // The first value of a key as the agent holds it.
  _tKeyVal Value(const char* szKey) {
    _tKeyVal keyVal;
    EXPECT_TRUE(m_pAgent->GetKeyValue(szKey, keyVal)) << szKey;
    return keyVal;
  }
  // A value built by hand.
  _tKeyVal Make(const char* szKey, const tstring& sValue, uint32_t nPara = 1, unsigned nOffset = 0) {
    _tKeyVal keyVal;
    keyVal.key_name_id = m_audit.GetZYG()->GetKeyId(szKey);
    EXPECT_GE(keyVal.key_name_id, 0) << szKey;
    keyVal.key_value = sValue;
    keyVal.para_id = nPara;
    keyVal.offset = nOffset;
    keyVal.org_para_text = "row text " + sValue;
    return keyVal;
  }
  std::string Ids() const {
    std::string s;
    for (const _tCheckResult& check : m_results.GetFindings()) s += (s.empty() ? "" : ",") + check.error_id;
    return s;
  }

  CAudit m_audit;
  std::unique_ptr<CZYGAgent> m_pAgent;
  std::unique_ptr<CAuditAgent> m_pChecker;
  CCheckResult m_results;
};

// The last error since the mark, or "" when none was set.
std::string ErrorAfter(const char* szBefore) {
  std::string s = GetLastError();
  return s == szBefore ? "" : s;
}

TEST(AuditAgentExpressionTest, EvaluatesAsSpecified) {
  struct {
    const char* szRule;
    const char* szA;  // "" : no value of a (then b is checked)
    const char* szB;  // "" : no value of b
    int nWant;        // CheckRule's result
    const char* szError;  // prefix of the last error, or ""
  } kCases[] = {
      {"a = b", "1.004", "1.0", 1, ""},  // within the tolerance
      {"a = b", "1.01", "1.0", 0, ""},
      {"a >= b", "0.995", "1", 1, ""},  // b - 0.005
      {"a > b", "1.004", "1", 0, ""},
      {"a <= b", "1.005", "1", 1, ""},
      {"a < b", "0.99", "1", 1, ""},
      {"a != b", "1.004", "1", 0, ""},
      {"a != b", "2", "1", 1, ""},
      {"a == b", "1", "1", -4, "Logic computation operand is not enough "},  // two "=" units
      {"a + b = 3", "1", "2", 1, ""},
      {"a * 2 = b", "2", "4", 1, ""},
      {"a - b > 0", "1", "2", 0, ""},
      {"not a > b", "2", "1", 0, ""},  // not (a > b)
      {"not a > b", "1", "2", 1, ""},
      {"a > b and b > 0", "2", "1", 1, ""},
      {"a > b and b > 5", "2", "1", 0, ""},
      {"a > b or b > 0", "0", "1", 1, ""},
      {"(a) * 2 = b", "2", "4", 1, ""},  // a bracket around one operand
      {"a * (b) = 8", "2", "4", 1, ""},
      {"(a + b) = 3", "1", "2", -4, "Left bracket '(' or '[' connot matched @ "},
      {"a + b)", "1", "2", -6, "Left bracket '(' or '[' connot matched @ "},
      {"a in [X;y]", "x", "", 1, ""},  // in: letter case ignored
      {"a not_in [X;y]", "x", "", 0, ""},
      {"a in [1;2]", "2", "", 1, ""},   // a number operand is replaced by the result
      {"a in [1;2] and b > 0", "3", "1", 0, ""},
      {"a substr [AB]", "xaby", "", 0, ""},  // substr: letter case respected
      {"a substr [ab]", "xaby", "", 1, ""},
      {"a not_substr [ab]", "xaby", "", 0, ""},
      {"a in x", "x", "", -1, "There is no '[' in incuding operator"},
      {"a in [x", "x", "", -1, "There is no ']' in incuding operator"},
      {"sum(a) = 3", "3", "", -2, "sum operator must be process table "},
      {"integer(a) = 3", "3.7", "", 1, ""},
      {"integer(a) = 4", "3.7", "", 0, ""},
      {"integer a", "3.7", "", -3, "There is no '(' in integer operator"},
      {"a > 3", "abc", "", -6, "Logic computation operand is not enough "},  // text ignored
      {"a * = 2", "1", "", -4, "Arithmetic computation needs two values @ "},
      {"a / 0 > 1", "1", "", 1, ""},   // +inf
      {"a / b = 1", "0", "0", 0, ""},  // NaN equals nothing
      {"a / b != 1", "0", "0", 1, ""},
      {"a / b", "0", "0", 1, ""},      // a final NaN is not 0
      {"a b", "1", "2", -7, "Cannot get the final result. Invalid expression at "},
      {"a + c = 1", "1", "", -5, "Invalid value at "},  // c has no value
      {"a = 100000001", "100000000", "", 1, ""},  // single precision
      {"a < 0", "-0.5", "", 1, ""},  // a text starting with '-' is a number
  };
  for (const auto& c : kCases) {
    Fixture fx({{c.szRule, "a", "规则参数"}});
    fx.Scan("a", c.szA, 0x10);
    if (*c.szB) fx.Scan("b", c.szB, 0x20);
    SetLastError("mark");
    int nResult = fx.m_pChecker->CheckRule(0, fx.Value("a"), 1);
    EXPECT_EQ(nResult, c.nWant) << c.szRule << " a=" << c.szA << " b=" << c.szB << " " << GetLastError();
    std::string sError = ErrorAfter("mark");
    EXPECT_EQ(sError.substr(0, strlen(c.szError)), c.szError) << c.szRule;
    if (!*c.szError) {
      EXPECT_EQ(sError, "") << c.szRule;
    }
    EXPECT_EQ(fx.m_results.GetFindings().size(), nResult == 0 ? 1u : 0u) << c.szRule;
  }
}

TEST(AuditAgentExpressionTest, FalseRuleBecomesFindingAtTheLastKeyValue) {
  Fixture fx({{"a > b", "a", "甲值应大于乙值"}});
  fx.Scan("a", "1", 0x10);
  fx.Scan("b", "2", 0x20);
  CDocument doc;
  _tParagraph para;
  para.id = 0x20;
  para.text = "乙 2 as the document writes it";
  doc.m_vecParagraph.push_back(para);
  doc.BuildIndexes();
  ASSERT_EQ(fx.m_pChecker->CheckScanned(&doc, &fx.m_results), 1);
  ASSERT_EQ(fx.m_results.GetFindings().size(), 1u);
  const _tCheckResult& check = fx.m_results.GetFindings()[0];
  EXPECT_EQ(check.error_id, "1000");
  EXPECT_EQ(check.error_msg, "甲值应大于乙值");
  EXPECT_EQ(check.para_id, 0x20u);  // b was the last field operand
  EXPECT_EQ(check.org_str, "2");
  EXPECT_EQ(check.text, para.text);
  EXPECT_EQ(fx.m_pChecker->GetLastValue(), "1.00");  // the lower value: a key was read
}

TEST(AuditAgentExpressionTest, FieldsReadTheValueAtTheCurrentIndex) {
  Fixture fx({{"a = b", "a", "x"}});
  fx.Scan("a", "1", 0x10);
  fx.Scan("b", "1", 0x11);
  fx.Scan("a", "2", 0x20);
  fx.Scan("b", "3", 0x21);  // the second pair differs
  fx.Scan("a", "3", 0x30);  // no third b: the last one is read
  fx.m_pChecker->CheckAllData();
  ASSERT_EQ(fx.m_results.GetFindings().size(), 1u) << fx.Ids();
  EXPECT_EQ(fx.m_results.GetFindings()[0].para_id, 0x21u);
}

TEST(AuditAgentTableTest, SumAndSameTupleOverRows) {
  Fixture fx({{"sum(a) = 4", "a", "合计"}, {"a < b", "same_tuple", "甲小于乙"}});
  _tKeyTable table = {{fx.Make("a", "1", 1), fx.Make("b", "2", 1)}, {fx.Make("a", "3", 2), fx.Make("b", "1", 2)}};
  // Row 2 breaks "a < b" in its own tuple; the sum holds.
  EXPECT_EQ(fx.m_pChecker->CheckTable(table), 1);
  ASSERT_EQ(fx.Ids(), "1000");
  EXPECT_EQ(fx.m_results.GetFindings()[0].error_msg, "甲小于乙");
  EXPECT_EQ(fx.m_results.GetFindings()[0].text, "row text 1");  // a table's own text

  Fixture fx2({{"sum(a) = 5", "a", "合计"}});
  _tKeyTable table2 = {{fx2.Make("a", "1", 1)}, {fx2.Make("a", "x", 2)}, {fx2.Make("a", "3", 3)}};
  SetLastError("mark");
  // 1 + 3: "x" is left out of the sum; every row's a fails the rule.
  EXPECT_EQ(fx2.m_pChecker->CheckTable(table2), 3);
  EXPECT_EQ(fx2.Ids(), "1000,1000,1000");
}

TEST(AuditAgentCommandTest, ChecksOnExtractedValues) {
  struct {
    const char* szCommand;
    std::vector<const char*> vecValues;  // values of t, one paragraph each
    const char* szWantIds;
    const char* szWantNew;  // new_str of the first finding
  } kCases[] = {
      {"audit_num_check", {"12,345.6", "-3", "50%", "12abc", "1,23", "abc"}, "1.2.4,1.2.4,1.2.4", "12"},
      {"audit_num_chinese", {"一百二十", "贰拾", "十二点", "abc"}, "1.2.4,1.2.4", ""},
      {"audit_date", {"2023年5月1日", "2023-05-01", "2023年5月", "2023-02-30", "2023年13月"}, "99.1,99.1", ""},
      {"audit_person_id", {"11010519491231002X", "110105194912310021"}, "99.2", ""},
      {"audit_unique", {"甲方", "乙方", "甲方", "甲方"}, "3.1,3.1", ""},
  };
  for (const auto& c : kCases) {
    Fixture fx({{c.szCommand, "t", ""}});
    uint32_t nPara = 0x100;
    for (const char* szValue : c.vecValues) fx.Scan("t", szValue, nPara++);
    fx.m_pChecker->CheckAllData();
    EXPECT_EQ(fx.Ids(), c.szWantIds) << c.szCommand;
    if (!fx.m_results.GetFindings().empty()) {
      EXPECT_EQ(fx.m_results.GetFindings()[0].new_str, c.szWantNew) << c.szCommand;
    }
  }
}

TEST(AuditAgentCommandTest, UniqueReportsRepeatsAfterTheFirst) {
  Fixture fx({{"audit_unique", "t", ""}});
  fx.Scan("t", "甲方", 0x100);
  fx.Scan("t", "甲方", 0x200);
  fx.m_pChecker->CheckAllData();
  ASSERT_EQ(fx.Ids(), "3.1");
  EXPECT_EQ(fx.m_results.GetFindings()[0].para_id, 0x200u);
}

TEST(AuditAgentCommandTest, NotNullNamesMissingFields) {
  Fixture fx({{"audit_not_null", "a;b;c", "12.5"}});
  fx.Scan("b", "1", 0x10);
  EXPECT_EQ(fx.m_pChecker->CheckNotNull(), 2);
  ASSERT_EQ(fx.Ids(), "12.5,12.1");
  EXPECT_EQ(fx.m_results.GetFindings()[0].org_str, "甲值");  // the display name
  EXPECT_EQ(fx.m_results.GetFindings()[1].org_str, "丙值");
}

TEST(AuditAgentCommandTest, TupleUniqueness) {
  Fixture fx({{"audit_unique_tuple", "a;b", ""}});
  std::vector<_tTuple> vecTuples = {{fx.Make("a", "1", 1), fx.Make("b", "2", 1)},
                                    {fx.Make("a", "1", 2), fx.Make("b", "3", 2)},
                                    {fx.Make("a", "1", 3), fx.Make("b", "2", 3)}};
  for (const _tTuple& tuple : vecTuples) fx.m_pChecker->CheckTuple(tuple, 2);
  ASSERT_EQ(fx.Ids(), "3.1");  // once per tuple, though indexed under a and b
  EXPECT_EQ(fx.m_results.GetFindings()[0].para_id, 3u);
  // Not on single key values.
  EXPECT_EQ(fx.m_pChecker->CheckKeyValue(fx.Make("a", "1", 4), 1), 0);

  Fixture fx1({{"audit_unique_tuple", "a", ""}});
  SetLastError("mark");
  _tTuple tuple = {fx1.Make("a", "1")};
  fx1.m_pChecker->CheckTuple(tuple, 2);
  EXPECT_EQ(GetLastError(), "Tuple Unique check elements is less than 2");
}

TEST(AuditAgentCommandTest, KeyWithoutAttributeIsRefused) {
  Fixture fx({{"audit_num_check", "t", ""}});
  _tKeyVal keyVal;
  keyVal.key_name_id = -1;
  EXPECT_EQ(fx.m_pChecker->CheckKeyValue(keyVal, 1), -1);
  EXPECT_EQ(fx.m_pChecker->CheckRule(99, keyVal, 1), -1);
}

TEST(AuditAgentStandardTest, ParsesStandardNumbers) {
  struct {
    const char* szText;
    bool bOk;
    const char* szType;
    const char* szOrg;
    int nNo;
    int nYear;
  } kCases[] = {
      {"GB/T 50001-2017", true, "GB/T", "GB", 50001, 2017},
      {"JGJ 130－2011", true, "JGJ", "JGJ", 130, 2011},
      {"《建筑设计防火规范》GB50016—2014", true, "GB", "GB", 50016, 2014},
      {"DB11/T 1234-2015", true, "DB11/T", "DB11", 1234, 2015},
      {"ＧＢ　３８３８－８８", true, "GB", "GB", 3838, 1988},
      {"GB/T 1.1-2009", true, "GB/T", "GB", 1, 2009},
      {"JGJ 59", true, "JGJ", "JGJ", 59, 0},
      {"没有编号", false, "", "", 0, 0},
      {"ISO", false, "", "", 0, 0},
  };
  for (const auto& c : kCases) {
    _tTiaowenHao hao;
    EXPECT_EQ(CAuditAgent::ParseTiaowenHao(c.szText, hao), c.bOk) << c.szText;
    EXPECT_EQ(hao.type, c.szType) << c.szText;
    EXPECT_EQ(hao.org, c.szOrg) << c.szText;
    EXPECT_EQ(hao.no, c.nNo) << c.szText;
    EXPECT_EQ(hao.year, c.nYear) << c.szText;
  }
  bool bTrial = false;
  int nPart = 0;
  EXPECT_EQ(CAuditAgent::NormaliseStandardName("《施工安全检查标准》（试行）", bTrial, nPart), "施工安全检查标准");
  EXPECT_TRUE(bTrial);
  EXPECT_EQ(CAuditAgent::NormaliseStandardName("《地基规范》（以下简称《规范》）", bTrial, nPart), "地基规范");
  EXPECT_FALSE(bTrial);
  EXPECT_EQ(CAuditAgent::NormaliseStandardName("《电气设备 第2部分：通用要求》", bTrial, nPart),
            "电气设备第2部分：通用要求");
  EXPECT_EQ(nPart, 2);
  CAuditAgent::NormaliseStandardName("《电气设备 第十二部分》", bTrial, nPart);
  EXPECT_EQ(nPart, 12);
}

TEST(AuditAgentStandardTest, DecidesAmongTheFourOutcomes) {
  typedef std::vector<std::map<tstring, tstring>> Records;
  struct {
    const char* szCited;
    Records records;
    bool bReached;
    const char* szWantIds;
    const char* szWantMsgPart;  // in the first finding's message
  } kCases[] = {
      {"GB 50016-2014", {}, true, "2.6", "《建筑设计防火规范》 GB 50016-2014 not exists in our big data."},
      {"GB 50016-2006",
       {{{"Safety_Tiaowenhao", "GB 50016-2014"}, {"Safety_Date", "2015-05-01"}}},
       true, "2.1", " maybe have new time is 2015-05-01"},
      {"GBJ 16-87", {{{"Safety_Tiaowenhao", "GB 50016-2014"}}}, true, "2.8",
       "GBJ 16-87 should have a new id GB 50016-2014"},
      {"GB 50016-2014", {{{"Safety_Tiaowenhao", "GB 50016-2014"}, {"Memo", "2018年局部修订"}}}, true, "2.2",
       "2018年局部修订"},
      {"GB 50016-2014", {{{"Safety_Tiaowenhao", "GB 50016-2014"}}}, true, "", ""},  // current
      {"GB 50016-2014", {}, false, "", ""},  // unreachable: skipped
  };
  for (const auto& c : kCases) {
    Fixture fx({{"audit_standard_id", "Safety_Tiaowenhao", ""}});
    std::vector<tstring> vecQueries;
    fx.m_pChecker->SetSearchFunction([&](const tstring& sQuery, bool bArgument, Records& vecRecords) {
      EXPECT_FALSE(bArgument);
      vecQueries.push_back(sQuery);
      vecRecords = c.records;
      return c.bReached;
    });
    _tTuple tuple = {fx.Make("Safety_Tiaowen", "《建筑设计防火规范》", 1, 0),
                     fx.Make("Safety_Tiaowenhao", c.szCited, 1, 30)};
    fx.m_pChecker->CheckTuple(tuple, 2);
    EXPECT_EQ(fx.Ids(), c.szWantIds) << c.szCited;
    ASSERT_EQ(vecQueries.size(), 1u);
    EXPECT_EQ(vecQueries[0], "[field] Safety_Tiaowen [whole] 建筑设计防火规范");
    if (*c.szWantMsgPart && !fx.m_results.GetFindings().empty()) {
      const _tCheckResult& check = fx.m_results.GetFindings()[0];
      EXPECT_NE(check.error_msg.find(c.szWantMsgPart), tstring::npos) << check.error_msg;
      EXPECT_EQ(check.offset, 30u);
    }
  }
  // Without a search function, and on single key values, nothing is asked.
  Fixture fx({{"audit_standard_id", "Safety_Tiaowenhao", ""}});
  _tTuple tuple = {fx.Make("Safety_Tiaowenhao", "GB 50016-2014")};
  fx.m_pChecker->CheckTuple(tuple, 2);
  EXPECT_EQ(fx.Ids(), "");
}

TEST(AuditAgentStandardTest, ContractAmountsAndRequiredValues) {
  struct {
    const char* szFigure;
    const char* szWords;
    const char* szWant;
  } kAmounts[] = {
      {"100,000元", "壹拾万元整", ""},
      {"100500", "壹拾万元整", "11.1"},
      {"12.50", "拾贰元伍角", ""},
      {"12.55", "拾贰元伍角", "11.1"},
  };
  for (const auto& c : kAmounts) {
    Fixture fx({{"audit_standard_argument", "contract_fee", ""}});
    _tTuple tuple = {fx.Make("contract_fee", c.szFigure), fx.Make("contract_feebig", c.szWords)};
    fx.m_pChecker->CheckTuple(tuple, 2);
    EXPECT_EQ(fx.Ids(), c.szWant) << c.szFigure << " " << c.szWords;
  }

  struct {
    const char* szValue;
    const char* szRequired;
    bool bHasRecord;
    const char* szWant;
  } kValues[] = {
      {"6m", "≥5m", true, ""}, {"4m", "不小于5m", true, "2.9"}, {"6cm", "≥5m", true, "2.10"},
      {"12", "5~10", true, "2.11"}, {"7", "5~10", true, ""}, {"5.004", "5", true, ""}, {"6", "5", false, "2.12"},
  };
  for (const auto& c : kValues) {
    Fixture fx({{"audit_standard_argument", "t", ""}});
    tstring sQuery;
    fx.m_pChecker->SetSearchFunction(
        [&](const tstring& sQ, bool bArgument, std::vector<std::map<tstring, tstring>>& vecRecords) {
          EXPECT_TRUE(bArgument);
          sQuery = sQ;
          if (c.bHasRecord) vecRecords = {{{"row_name", "other"}, {"value", "0"}}, {{"row_name", "间距"}, {"value", c.szRequired}}};
          return true;
        });
    _tKeyVal value = fx.Make("t", c.szValue);
    value.org_para_text = "防火间距为" + tstring(c.szValue);
    _tTuple tuple = {fx.Make("Safety_Tiaowen", "《规范》"), fx.Make("safety_section", "3.2.1"), value};
    fx.m_pChecker->CheckTuple(tuple, 2);
    EXPECT_EQ(fx.Ids(), c.szWant) << c.szValue << " " << c.szRequired;
    EXPECT_EQ(sQuery, "[field] file_name [and] 规范 [field] section_no [whole] 3.2.1");
    ASSERT_EQ(fx.m_pChecker->GetArgumentReport().size(), 1u);
    EXPECT_NE(fx.m_pChecker->GetArgumentReport()[0].find(*c.szWant ? "不符合" : " 符合 "), tstring::npos);
  }
  // Without the clause nothing is asked.
  Fixture fx({{"audit_standard_argument", "t", ""}});
  bool bAsked = false;
  fx.m_pChecker->SetSearchFunction([&](const tstring&, bool, std::vector<std::map<tstring, tstring>>&) {
    bAsked = true;
    return true;
  });
  _tTuple tuple = {fx.Make("Safety_Tiaowen", "《规范》"), fx.Make("t", "6m")};
  fx.m_pChecker->CheckTuple(tuple, 2);
  EXPECT_FALSE(bAsked);
}

TEST(AuditAgentHostileTest, LongRulesAndConstantsEndInBoundedTime) {
  std::string sLong = "a";
  for (int i = 0; i < 10000; ++i) sLong += " + a";
  sLong += " > 0";
  std::string sBrackets(10000, '(');
  sBrackets += "a";
  std::string sNots;
  for (int i = 0; i < 10000; ++i) sNots += "not ";
  sNots += "a";
  std::string sBig = "a < " + std::string(1 << 20, '9');  // 1 MB constant: +inf
  std::string sBigText = "a in [" + std::string(1 << 20, 'x') + "]";
  struct {
    std::string sRule;
    int nWant;
  } kCases[] = {{sLong, 1}, {sBrackets, -4}, {sNots, -4}, {sBig, 1}, {sBigText, 0}};
  for (const auto& c : kCases) {
    auto start = std::chrono::steady_clock::now();
    Fixture fx({{c.sRule.c_str(), "a", ""}});
    fx.Scan("a", "1", 0x10);
    EXPECT_EQ(fx.m_pChecker->CheckRule(0, fx.Value("a"), 1), c.nWant) << c.sRule.substr(0, 40);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
  }
}

}  // namespace
