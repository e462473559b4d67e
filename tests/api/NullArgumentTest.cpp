// Every exported function called with NULL for its pointer arguments, before
// start-up, while running and after shut-down: each answers with its
// documented failure value and never crashes (the suite also runs under
// AddressSanitizer).
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "TestDataDir.h"
#include "tarvos.h"

namespace {

struct NullCase {
  const char* szName;
  bool (*fnFailsAsDocumented)();
};

bool IsEmpty(const char* s) { return s != nullptr && *s == '\0'; }

const NullCase kNullCases[] = {
    {"ImportErrorMsg", [] { return TARVOS_ImportErrorMsg(nullptr) == 0; }},
    {"ImportSimDict", [] { return TARVOS_ImportSimDict(nullptr) == 0; }},
    {"ImportSpellErrorDict", [] { return TARVOS_ImportSpellErrorDict(nullptr) == 0; }},
    {"ImportUserDict", [] { return TARVOS_ImportUserDict(nullptr) == 0; }},
    {"CheckSpelling", [] { return TARVOS_CheckSpelling(nullptr) == nullptr; }},
    {"ImportFieldDict", [] { return TARVOS_ImportFieldDict(nullptr, true, true) == 0; }},
    {"CheckReportF", [] { return TARVOS_CheckReportF(nullptr, nullptr, nullptr, 1, 0, false, 0) == nullptr; }},
    {"CheckReportM", [] { return TARVOS_CheckReportM(nullptr, nullptr, nullptr, 1, 1, true, 0) == nullptr; }},
    {"LoadDocResult", [] { return TARVOS_LoadDocResult(nullptr, 0) == 0; }},
    {"ImportDoc", [] { return TARVOS_ImportDoc(nullptr, nullptr, 0) == nullptr; }},
    {"ReviseReportF", [] { return TARVOS_ReviseReportF(nullptr, 0) == nullptr; }},
    {"ReviseReportTracked", [] { return TARVOS_ReviseReportTracked(nullptr, nullptr, 0) == nullptr; }},
    {"ReCheckFormat", [] { return TARVOS_ReCheckFormat(nullptr, 1, 0, 0) == nullptr; }},
    {"ScanTextMem", [] { return ZYG_ScanTextMem(nullptr, 0, 0, 0) == nullptr; }},
    {"ExtractKnowledge", [] { return TARVOS_ExtractKnowledge(nullptr, 1) == nullptr; }},
    {"CheckReportDir", [] { return TARVOS_CheckReportDir(nullptr, nullptr, 1, 0, 4) == -1; }},
    {"ImportTemplate", [] { return TARVOS_ImportTemplate(nullptr, 1, nullptr, nullptr, nullptr) == 0; }},
    {"EditTemplate", [] { return TARVOS_EditTemplate(1, nullptr, 1, nullptr, nullptr, nullptr) == 0; }},
    {"FindTemplate", [] { return TARVOS_FindTemplate(1, nullptr, nullptr, nullptr) <= 0; }},
    {"GetTemplateList", [] {  // a NULL organisation is "": known to no template
       const char* s = TARVOS_GetTemplateList(1, nullptr);
       return s == nullptr || std::string(s).find("\"ArguCount\": 0,") != std::string::npos;
     }},
    {"ImportZYGRules", [] { return TARVOS_ImportZYGRules(nullptr, true, 1) == -1; }},
    {"ImportZYGRulesFromMem", [] { return TARVOS_ImportZYGRulesFromMem(nullptr, false, 1) == -1; }},
    {"AddAuditRule", [] { return TARVOS_AddAuditRule(nullptr, 1) == -1; }},
    {"ZYG_AddRule", [] { return ZYG_AddRule(nullptr, 1) == -1; }},
    {"ZYG_EditRule", [] { return ZYG_EditRule(0, nullptr, 1) == -1; }},
    {"Audit_AddRule", [] { return Audit_AddRule(nullptr, 1) == -1; }},
    {"Audit_EditRule", [] { return Audit_EditRule(0, nullptr, 1) == -1; }},
    {"ZYG_ImportRule", [] { return ZYG_ImportRule(nullptr, true, 0) == 0; }},
    {"ZYG_ScanText", [] { return IsEmpty(ZYG_ScanText(nullptr, 0, 0)); }},
    {"ZYG_ScanDocXML", [] { return IsEmpty(ZYG_ScanDocXML(nullptr, false, 0)); }},
    {"ZYG_ScanDoc", [] { return IsEmpty(ZYG_ScanDoc(nullptr, 1, false, 0)); }},
    {"ZYG_ScanTextFile", [] { return IsEmpty(ZYG_ScanTextFile(nullptr, false, 0)); }},
    {"KS_Init", [] { return KS_Init(nullptr, 1) == 0; }},
    {"KS_ScanDetail", [] { return KS_ScanDetail(nullptr, 3, 0) == nullptr; }},
    {"KS_ImportUserDict", [] { return KS_ImportUserDict(nullptr, true, true, 0) == 0; }},
    {"KS_DeleteUserDict", [] { return KS_DeleteUserDict(nullptr, 0) == -1; }},
    {"KS_ExportKeyDict", [] { return KS_ExportKeyDict(nullptr, 0) == -1; }},
};

// Calls without pointer arguments that still must fail cleanly when the
// engine is not running.
const NullCase kStoppedCases[] = {
    {"NewInstance", [] { return TARVOS_NewInstance() == -1; }},
    {"GetResult", [] { return TARVOS_GetResult(0, 0) == nullptr; }},
    {"GetCurTemplateInfo", [] { return TARVOS_GetCurTemplateInfo(0) == nullptr; }},
    {"ShowHtmlError", [] { return TARVOS_ShowHtmlError("x.xml", 0) == nullptr; }},
    {"DeleteTemplate", [] { return TARVOS_DeleteTemplate(1) == 0; }},
    {"GetTemplate", [] { return TARVOS_GetTemplate(1) == nullptr; }},  // format checking stopped
    {"GetTemplateCount", [] { return TARVOS_GetTemplateCount() == 0; }},
    {"ZYG_GetSysInfo", [] { return IsEmpty(ZYG_GetSysInfo()); }},
    {"ZYG_GetRuleListId", [] { return IsEmpty(ZYG_GetRuleListId(1)); }},
    {"ZYG_GetRuleInfo", [] { return IsEmpty(ZYG_GetRuleInfo(0, 1)); }},
    {"ZYG_DelRule", [] { return ZYG_DelRule(0, 1) == -1; }},
    {"Audit_GetSysInfo", [] { return IsEmpty(Audit_GetSysInfo(1)); }},
    {"Audit_GetErrorInfo", [] { return IsEmpty(Audit_GetErrorInfo()); }},
    {"Audit_GetRuleListId", [] { return IsEmpty(Audit_GetRuleListId(1)); }},
    {"Audit_GetRuleInfo", [] { return IsEmpty(Audit_GetRuleInfo(0, 1)); }},
    {"Audit_DelRule", [] { return Audit_DelRule(0, 1) == -1; }},
    {"ZYG_NewInstance", [] { return ZYG_NewInstance(1) == -1; }},
    {"ZYG_ScanText", [] { return IsEmpty(ZYG_ScanText("text", 0, 0)); }},
};

void ExpectAllFailCleanly(const NullCase* pCases, size_t nCount, const char* szState) {
  for (size_t i = 0; i < nCount; ++i) {
    EXPECT_TRUE(pCases[i].fnFailsAsDocumented()) << pCases[i].szName << " " << szState;
    EXPECT_STRNE(TARVOS_GetLastErrorMsg(), "") << pCases[i].szName << " " << szState;
  }
}

template <size_t N>
void ExpectAllFailCleanly(const NullCase (&cases)[N], const char* szState) {
  ExpectAllFailCleanly(cases, N, szState);
}

TEST(NullArgumentTest, EveryCallFailsCleanlyBeforeInitWhileRunningAndAfterExit) {
  ExpectAllFailCleanly(kNullCases, "before init");
  ExpectAllFailCleanly(kStoppedCases, "before init");

  CTestDataDir data;
  ASSERT_EQ(TARVOS_Init(data.Root().c_str()), 1) << TARVOS_GetLastErrorMsg();
  ExpectAllFailCleanly(kNullCases, "while running");
  TARVOS_Exit();

  ExpectAllFailCleanly(kNullCases, "after exit");
  ExpectAllFailCleanly(kStoppedCases, "after exit");
  EXPECT_EQ(TARVOS_DeleteInstance(0), 0);
  TARVOS_Exit();  // a second shut-down is harmless
  ZYG_Exit();
}

TEST(NullArgumentTest, NullDataPathMeansTheWorkingDirectory) {
  // The working directory of the test has no "Data" folder: the rule
  // engine finds no lexicon there.
  CTempDir empty;
  char sSaved[4096];
  ASSERT_NE(getcwd(sSaved, sizeof(sSaved)), nullptr);
  ASSERT_EQ(chdir(empty.Path().c_str()), 0);
  char sHere[4096];
  ASSERT_NE(getcwd(sHere, sizeof(sHere)), nullptr);
  EXPECT_EQ(TARVOS_Init(nullptr), -1);
  EXPECT_EQ(std::string(TARVOS_GetLastErrorMsg()), std::string("Error Init ZYG from ") + sHere);
  TARVOS_Exit();
  ASSERT_EQ(chdir(sSaved), 0);
}

}  // namespace
