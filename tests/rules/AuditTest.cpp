// Audit rule lists: parsing rule texts, refusing rules, the not-null list,
// importing, editing, saving, loading, exporting, and the manager's calls.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "TestDataDir.h"
#include "rules/Audit.h"
#include "rules/ZYGManager.h"
#include "utility/DataFileWriter.h"
#include "utility/ErrorLog.h"
#include "utility/JsonText.h"

namespace {

// Three attributes, in this order: total (0), count (1), price (2).
const char kRuleSet[] =
    "<item><no>1</no><rule>{[合计]}{[/m]}s</rule><argument>total|合计;</argument></item>"
    "<item><no>2</no><rule>{[数量]}{[/m]}s</rule><argument>count|数量;</argument></item>"
    "<item><no>3</no><rule>{[单价]}{[/m]}s</rule><argument>price|单价;</argument></item>";

std::unique_ptr<CAudit> MakeAudit(const std::string& sFolder = "", int nType = 1) {
  std::unique_ptr<CAudit> pAudit(new CAudit(sFolder.c_str(), nType));
  EXPECT_EQ(pAudit->GetZYG()->ImportRuleFromMem(kRuleSet, true), 3) << GetLastError();
  return pAudit;
}

// A JSON audit rule; the rule text may hold quotes.
std::string JsonRule(const std::string& sNo, const std::string& sRule, const std::string& sField,
                 const std::string& sArguments = "", const std::string& sName = "") {
  Json::Value root(Json::objectValue);
  root["no"] = sNo;
  root["name"] = sName;
  root["rule"] = sRule;
  root["field"] = sField;
  root["arguments"] = sArguments;
  root["credit"] = 2;
  return JsonText(root, false);
}

std::string AllItems(CAudit& audit) {
  std::string s;
  for (size_t i = 0; i < audit.GetOrgCount(); ++i) s += audit.GetItem((int)i);
  return s + audit.GetListId();
}

TEST(AuditTest, RuleTextsAreCutIntoUnits) {
  struct {
    const char* szRule;
    const char* szField;
    const char* szWant;  // the units written back, or the refusal
  } kCases[] = {
      {"total>=3", "", "total|合计 >= 3 "},
      {"total> =3", "", "total|合计 >= 3 "},  // '=' merges into a preceding '>'
      {"total< \t= 3", "", "total|合计 <= 3 "},
      {"total==3", "", "total|合计 = = 3 "},  // kept as two units
      {"total>==3", "", "total|合计 >= = 3 "},
      {"total!=3", "", "total|合计 != 3 "},
      {"total ! 3", "", "total|合计 3 "},  // a lone '!' adds nothing
      {"TOTAL = Count * Price|单价", "", "total|合计 = count|数量 * price|单价 "},
      {"not (total>0 AND count<1) Or same_TUPLE", "", "not ( total|合计 > 0 and count|数量 < 1 ) or same_tuple "},
      {"total IN [\"甲\";\"乙\"]", "", "total|合计 in [ 甲 乙 ] "},
      {"sum(total)-integer(count)/2+\"x", "", "sum ( total|合计 ) - integer ( count|数量 ) / 2 + x "},
      {"total not_in substr not_substr same_col same_para same_section", "",
       "total|合计 not_in substr not_substr same_col same_para same_section "},
      {"\"\" = \"", "", " =  "},  // quotes removed once at each end: two empty constants
      {"AUDIT_UNIQUE", "total;count", "audit_unique "},
      {"audit_unique total", "total", "Only One ZYG audit command is permitted. See audit_unique total"},
      {"audit_date; ", "", "audit_date "},
      {"total>1", "total;nosuch", "nosuch is not valid field name or reserved words, "},
      {" ;\t", "", "Audit rule 9 has no rule text"},
  };
  for (const auto& c : kCases) {
    std::unique_ptr<CAudit> pAudit = MakeAudit();
    int nIndex = pAudit->AddItem(JsonRule("9", c.szRule, c.szField).c_str());
    if (nIndex < 0) {
      EXPECT_EQ(GetLastError(), c.szWant) << c.szRule;
      EXPECT_EQ(pAudit->GetOrgCount(), 0u) << c.szRule;
      continue;
    }
    ASSERT_EQ(pAudit->GetRuleCount(), 1u) << c.szRule;
    EXPECT_EQ(pAudit->GetRuleText(pAudit->GetRule(0)), c.szWant) << c.szRule;
  }
}

TEST(AuditTest, NotNullRulesFeedTheNotNullList) {
  std::unique_ptr<CAudit> pAudit = MakeAudit();
  ASSERT_EQ(pAudit->AddItem(JsonRule("12.5", "audit_not_null", "total;count;price", "12.5").c_str()), 0);
  ASSERT_EQ(pAudit->AddItem(JsonRule("12.6", "Audit_Not_Null", "count|数量", " ;12.9").c_str()), 1);
  EXPECT_EQ(pAudit->GetRuleCount(), 0u);
  EXPECT_EQ(pAudit->GetOrgCount(), 2u);
  EXPECT_EQ(pAudit->GetNotNullFields(), (std::vector<int>{0, 1, 2, 1}));
  EXPECT_EQ(pAudit->GetNotNullErrorIds(), (std::vector<std::string>{"12.5", "12.1", "12.1", "12.1"}));
  ASSERT_EQ(pAudit->DeleteItem(0), 1);
  EXPECT_EQ(pAudit->GetNotNullFields(), std::vector<int>{1});
}

TEST(AuditTest, RepeatedRulesAreRefusedWhateverTheirNumber) {
  std::unique_ptr<CAudit> pAudit = MakeAudit();
  ASSERT_EQ(pAudit->AddItem(JsonRule("1", "total>=\"3\"", "count", "", "甲").c_str()), 0);
  ASSERT_EQ(pAudit->AddItem(JsonRule("2", "total>=3", "price").c_str()), 1);  // other fields
  const std::string sBefore = AllItems(*pAudit);
  struct {
    const char* szRule;
    const char* szField;
  } kRepeats[] = {{"total>=3", "count"}, {" TOTAL > = 3 ", "count|数量"}, {"total>=\"3", "count"}};
  for (const auto& c : kRepeats) {
    EXPECT_EQ(pAudit->AddItem(JsonRule("7", c.szRule, c.szField, "", "乙").c_str()), -1) << c.szRule;
    EXPECT_EQ(GetLastError(), "RuleNo7:乙 is already exists and cannot be added, see Rule 1") << c.szRule;
  }
  EXPECT_EQ(AllItems(*pAudit), sBefore);
  // An edit may keep its own rule, but not take another's, before or after it.
  EXPECT_EQ(pAudit->EditItem(0, JsonRule("1b", "total>=3", "count").c_str()), 1);
  EXPECT_EQ(pAudit->EditItem(0, JsonRule("1c", "total>=3", "price").c_str()), -1);
  EXPECT_EQ(GetLastError(), "RuleNo1c: is already exists and cannot be added, see Rule 2");
  EXPECT_EQ(pAudit->EditItem(5, JsonRule("1", "total>=3", "").c_str()), -1);
  EXPECT_EQ(pAudit->EditItem(0, "{\"no\":"), -1);
  EXPECT_EQ(GetLastError(), "Read ZYG Infor Error!");
  EXPECT_EQ(pAudit->GetRuleOrg(0).no, "1b");
}

TEST(AuditTest, OperatorLevels) {
  struct {
    int nType, nVal, nWant;
  } kCases[] = {
      {kUnitOperator, kOpOpen, 1},  {kUnitOperator, kOpInteger, 1}, {kUnitOperator, kOpTimes, 3},
      {kUnitOperator, kOpMinus, 4}, {kUnitRelation, kRelGreaterEqual, 6}, {kUnitRelation, kRelNotEqual, 7},
      {kUnitLogic, kLogicNot, 8},   {kUnitLogic, kLogicAnd, 9},     {kUnitLogic, kLogicOr, 10},
      {kUnitField, 0, 100},         {kUnitConstant, 0, 100},        {kUnitOperator, 99, 100},
  };
  for (const auto& c : kCases) EXPECT_EQ(CAudit::GetOpLevel({c.nType, c.nVal}), c.nWant) << c.nType << "/" << c.nVal;
}

const char kAudits[] =
    "<audits>\n<audit><no>3.1</no><name>合计非负</name><rule>total &gt;= 0</rule><argument>a; b;</argument>"
    "<field>total</field><credit>2</credit></audit>\n"
    "<audit><no>3.2</no><rule>audit_unique</rule><field>count</field></audit>\n"
    "<audit><no>3.3</no><rule>audit_not_null</rule><field>total;price</field><argument>12.7</argument></audit>\n"
    "<audit><no>3.4</no><rule>total &gt;= 0</rule><field>total</field></audit>\n"  // repeats 3.1
    "</audits>";

const char kExport[] =
    "AuditRuleCount=2\n"
    "Index=0: No=3.1\tName=合计非负\tRule=total|合计 >= 0 \tCredit=2\tField=total|合计\tArgument=a;b\r\n"
    "Index=1: No=3.2\tName=\tRule=audit_unique \tCredit=0\tField=count|数量\tArgument=\r\n"
    "NotNull Fields are as following:\n||12.7;||12.1;"
    "\nIndex data are listed as follows:\n"
    "\nField=0(total|合计)\tDF=1\tInverted List are:0;"
    "\nField=1(count|数量)\tDF=1\tInverted List are:1;";

TEST(AuditTest, SavedListLoadsTheSame) {
  CTempDir dir;
  const std::string sFolder = dir.Path() + "/";
  std::unique_ptr<CAudit> pAudit = MakeAudit(sFolder, 4);
  ASSERT_EQ(pAudit->ImportFromMem(kAudits, false), 3);
  EXPECT_EQ(GetLastError(), "RuleNo3.4: is already exists and cannot be added, see Rule 3.1");
  ASSERT_EQ(pAudit->Export(), 1);
  EXPECT_EQ(ReadWholeFile(sFolder + "ZYG_4.audit_export.txt"), kExport);

  CAudit loaded(sFolder.c_str(), 4);
  ASSERT_EQ(loaded.Load(), 1) << GetLastError();
  EXPECT_EQ(AllItems(loaded), AllItems(*pAudit));
  ASSERT_EQ(loaded.Export(sFolder + "again.txt"), 1);
  EXPECT_EQ(ReadWholeFile(sFolder + "again.txt"), kExport);
  EXPECT_EQ(loaded.GetRulesOfField(0), std::vector<int>{0});
  EXPECT_EQ(loaded.GetArguments(0), (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(loaded.GetRuleOrg(1).no, "3.2");
  // A loaded list still refuses repeats and keeps editing.
  EXPECT_EQ(loaded.AddItem(JsonRule("9", "total>=0", "total").c_str()), -1);
  EXPECT_EQ(loaded.DeleteItem(2), 1);
  EXPECT_TRUE(loaded.GetNotNullFields().empty());

  // An absent file is an empty list; Load(file) of a missing one fails.
  CAudit other(sFolder.c_str(), 5);
  EXPECT_EQ(other.Load(), 1);
  EXPECT_EQ(other.GetOrgCount(), 0u);
  EXPECT_EQ(other.Load(sFolder + "none.audit"), -1);
  EXPECT_EQ(GetLastError(), "Cannot read file " + sFolder + "none.audit");
}

TEST(AuditTest, DamagedFilesAreRefused) {
  CTempDir dir;
  const std::string sFolder = dir.Path() + "/";
  std::unique_ptr<CAudit> pAudit = MakeAudit(sFolder, 4);
  ASSERT_EQ(pAudit->ImportFromMem(kAudits, false), 3);
  const std::string sGood = ReadWholeFile(sFolder + "ZYG_4.audit");
  const std::string sBad = sFolder + "bad.audit";
  auto refused = [&](const std::string& sContent, const std::string& sWhy) {
    std::ofstream(sBad, std::ios::binary | std::ios::trunc) << sContent;
    EXPECT_EQ(pAudit->Load(sBad), -1) << sWhy;
    EXPECT_EQ(GetLastError(), "Cannot read file " + sBad) << sWhy;
    EXPECT_EQ(pAudit->GetOrgCount() + pAudit->GetRuleCount() + pAudit->GetNotNullFields().size(), 0u) << sWhy;
  };
  for (size_t n = 0; n < sGood.size(); n += 7) refused(sGood.substr(0, n), "cut at " + std::to_string(n));
  std::string sFlipped = sGood;
  sFlipped[sFlipped.size() / 2] ^= 0x20;
  refused(sFlipped, "flipped byte");

  // Well-formed envelopes with forged contents.
  auto forged = [&](int32_t nUnitType, int32_t nUnitVal, uint32_t nType, uint64_t nUnits) {
    CDataFileWriter out("AUDT", 1);
    out.PutU32(nType);
    out.PutString(std::string("1\0", 2));
    out.PutI32Array({});
    out.PutU64(1);  // one rule
    for (uint32_t v : {0u, 0u}) out.PutU32(v);
    out.PutI32(0);
    out.PutU32(0);
    for (int i = 0; i < 4; ++i) out.PutI32(0);
    out.PutU64(nUnits);
    out.PutI32(nUnitType);
    out.PutI32(nUnitVal);
    out.PutI32(0);
    out.PutU64(0);  // not-null fields
    out.PutU64(1);  // one editable rule
    for (int i = 0; i < 5; ++i) out.PutString("x");
    out.PutI32(0);
    out.Save(sBad);
    return ReadWholeFile(sBad);
  };
  forged(kUnitField, 2, 4, 1);
  ASSERT_EQ(pAudit->Load(sBad), 1) << GetLastError();  // the forger's baseline loads
  refused(forged(kUnitField, 3, 4, 1), "field beyond the attributes");
  refused(forged(kUnitField, -104, 4, 1), "unknown scope");
  refused(forged(kUnitConstant, 2, 4, 1), "constant beyond the pool");
  refused(forged(kUnitCommand, kCmdNotNull, 4, 1), "not-null compiled as a rule");
  refused(forged(7, 0, 4, 1), "unknown unit type");
  refused(forged(kUnitField, 2, 5, 1), "another document type");
  refused(forged(kUnitField, 2, 4, 1ull << 60), "absurd unit count");
}

TEST(AuditTest, ImportReportsWhatItRefused) {
  std::unique_ptr<CAudit> pAudit = MakeAudit();
  EXPECT_EQ(pAudit->Import("/no/such/file.xml", false), -1);
  EXPECT_EQ(GetLastError(), "Failed read file /no/such/file.xml");
  EXPECT_EQ(pAudit->ImportFromMem("<audits><audit><rule>total&gt;1</rule></audit><audit><rule>count", false), 1);
  EXPECT_EQ(GetLastError(), "Cannot locate </audit>");
  // Nothing taken: the list stays as it was, even with overwrite.
  EXPECT_EQ(pAudit->ImportFromMem("<audit><rule>audit_unique total</rule></audit>", true), -1);
  EXPECT_EQ(GetLastError(), "Only One ZYG audit command is permitted. See audit_unique total");
  EXPECT_EQ(pAudit->ImportFromMem("<audit><no>2</no><rule>total&gt;1</rule></audit>", false), -1);
  EXPECT_EQ(GetLastError(), "RuleNo2: is already exists and cannot be added, see Rule ");
  EXPECT_EQ(pAudit->GetOrgCount(), 1u);
  EXPECT_EQ(pAudit->ImportFromMem("<audits></audits>", false), 0);
  EXPECT_EQ(pAudit->ImportFromMem("<audits></audits>", true), 0);
  EXPECT_EQ(pAudit->GetOrgCount(), 0u);
  EXPECT_EQ(pAudit->AddRule("<no>5</no><rule>audit_date</rule><field>total</field>"), 1);
  EXPECT_EQ(pAudit->AddRule("<no>6</no><rule>audit_date</rule><field>total</field>"), -1);
  EXPECT_EQ(pAudit->GetItem(3)[0], '\0');
}

TEST(AuditTest, SysInfoListsTablesAndAttributes) {
  std::unique_ptr<CAudit> pAudit = MakeAudit();
  Json::Value root;
  ASSERT_TRUE(ParseJsonObject(pAudit->GetSysInfo(), root));
  EXPECT_EQ(root["FieldName"].size(), 4u);
  EXPECT_EQ(root["RuleCmd"][8].asString(), "audit_person_id");
  EXPECT_EQ(root["OperatorStr"][0].asString(), "in");
  EXPECT_EQ(root["OperatorStr"].size(), 6u);
  EXPECT_EQ(root["LogicStr"][2].asString(), "not");
  ASSERT_EQ(root["attributes"].size(), 3u);
  EXPECT_EQ(root["attributes"][2]["name"].asString(), "price");
  EXPECT_EQ(root["attributes"][2]["cname"].asString(), "单价");
}

TEST(AuditTest, HostileRulesStayBounded) {
  std::unique_ptr<CAudit> pAudit = MakeAudit();
  std::string sLong = "total";
  for (int i = 0; i < 10000; ++i) sLong += "+(";
  ASSERT_EQ(pAudit->AddItem(JsonRule("1", sLong, "").c_str()), 0);
  EXPECT_EQ(pAudit->GetRule(0).rules.size(), 20001u);
  const std::string sHuge(1 << 20, 'x');
  ASSERT_EQ(pAudit->AddItem(JsonRule("2", "total=" + sHuge, "").c_str()), 1);
  EXPECT_EQ(pAudit->GetUnitStr(pAudit->GetRule(1).rules[2]), sHuge);
  EXPECT_EQ(pAudit->AddItem(std::string(100000, '[').c_str()), -1);
  EXPECT_EQ(pAudit->AddItem(nullptr), -1);
}

TEST(AuditTest, RuleSetEditsRecompileTheAuditRules) {
  std::unique_ptr<CAudit> pAudit = MakeAudit();
  ASSERT_EQ(pAudit->AddItem(JsonRule("1", "price>0", "price").c_str()), 0);
  ASSERT_EQ(pAudit->AddItem(JsonRule("2", "total>0", "").c_str()), 1);
  // Only "total" is left, renumbered 0: rule 1 stays listed, uncompiled.
  ASSERT_EQ(pAudit->GetZYG()->ImportRuleFromMem(
                "<item><no>1</no><rule>{[合计]}{[/m]}s</rule><argument>total|合计;</argument></item>", true),
            1);
  ASSERT_EQ(pAudit->RuleSetChanged(), 1);
  EXPECT_EQ(pAudit->GetOrgCount(), 2u);
  ASSERT_EQ(pAudit->GetRuleCount(), 1u);
  EXPECT_EQ(pAudit->GetRuleOrg(0).no, "2");
  EXPECT_EQ(pAudit->GetRulesOfField(0), std::vector<int>{0});
}

TEST(AuditTest, ManagerImportsRulesAndAuditsTogether) {
  CTempDir dir;
  std::filesystem::create_directory(dir.Path() + "/Data");
  CZYGManager manager(dir.Path().c_str());
  std::string sText = std::string(kRuleSet) + kAudits;
  EXPECT_EQ(manager.ImportZYGRulesFromMem(sText.c_str(), true, 6), 6);
  EXPECT_EQ(manager.GetProcesser(6)->GetOrgCount(), 3u);
  EXPECT_EQ(manager.AddAuditRule(JsonRule("8", "count>1", "count").c_str(), 6), 3);
  EXPECT_EQ(manager.EditAuditRule(3, JsonRule("8", "count>2", "count").c_str(), 6), 1);
  EXPECT_NE(std::string(manager.GetAuditRuleInfo(3, 6)).find("count>2"), std::string::npos);
  EXPECT_EQ(manager.DelAuditRule(3, 6), 1);
  EXPECT_EQ(manager.AddRule("<no>9</no><rule>audit_date</rule><field>price</field>", 6), 1);
  EXPECT_NE(std::string(manager.GetAuditRuleListId(6)).find("\"9\""), std::string::npos);
  EXPECT_NE(std::string(manager.GetAuditSysInfo(6)).find("单价"), std::string::npos);

  CZYGManager reloaded(dir.Path().c_str());
  ASSERT_EQ(reloaded.Load(), 1);
  ASSERT_NE(reloaded.GetProcesser(6), nullptr);
  EXPECT_EQ(AllItems(*reloaded.GetProcesser(6)), AllItems(*manager.GetProcesser(6)));
}

}  // namespace
