#pragma once
// CZYGManager keeps one audit processor per document type, remembers the
// known types in "ZYG_Manager.dat" and answers the rule-editing calls.
//
// "ZYG_Manager.dat": u64 count, then per type one i32 type number, ascending.
//
// Every operation on a type creates the type's processor when it is new (and
// records the type). The rule-set calls act on the type's CZYG, the audit
// calls on its CAudit. Importing takes a text of extraction rules ("<item>"
// elements, imported into the type's rule set) and audit rules ("<audit>"
// elements, imported into its audit rules), either or both; the rule set
// goes first, since audit fields are its attribute names.
// An edit of a rule set may renumber its attributes, so every successful one
// is followed by compiling the type's audit rules again (CAudit::RuleSetChanged).
#include <map>
#include <memory>

#include "rules/Audit.h"
#include "utility/TString.h"

class CZYGManager {
 public:
  // sPath: the data directory; the manager works in sPath + "/Data/".
  explicit CZYGManager(const char* sPath);
  CZYGManager(const CZYGManager&) = delete;  // owns every processor
  CZYGManager& operator=(const CZYGManager&) = delete;

  // Reads "ZYG_Manager.dat" and loads a processor per type. Returns 1;
  // -1 with "Failed reading file <name>" when it is missing or damaged.
  int Load();

  // Writes "ZYG_Manager.dat". Returns 1; -1 with "Failed writing file <name>".
  int Save();

  // The processor of a type; null with "Report Type=%d Processor not exists.".
  CAudit* GetProcesser(int nType);
  const CAudit* GetProcesser(int nType) const;

  // Importing returns the number of rules and audit rules added; -1 when
  // the file cannot be read or either part fails as a whole.
  // AddRule adds one "<audit>" item to the audit rules and saves them.
  // Texts below stay valid until the next call returning text.
  int ImportZYGRules(const char* sFile, bool bOverwrite, int nType);
  int ImportZYGRulesFromMem(const char* sText, bool bOverwrite, int nType);
  int AddRule(const char* sText, int nType);
  const char* GetZYGSysInfo();
  const char* GetAuditSysInfo(int nType);
  const char* GetZYGRuleListId(int nType);
  const char* GetZYGRuleInfo(int rule_id, int nType);
  int DelZYGRule(int rule_id, int nType);
  int AddZYGRule(const char* sJsonStr, int nType);
  int EditZYGRule(int rule_id, const char* sJsonStr, int nType);
  const char* GetAuditRuleListId(int nType);
  const char* GetAuditRuleInfo(int rule_id, int nType);
  int DelAuditRule(int rule_id, int nType);
  int AddAuditRule(const char* sJsonStr, int nType);
  int EditAuditRule(int rule_id, const char* sJsonStr, int nType);

  const std::map<int, std::unique_ptr<CAudit>>& GetProcessers() const { return m_mapType2Processor; }
  const tstring& GetDataPath() const { return m_sDataPath; }

 private:
  // The processor of a type, created, recorded and saved when it is new.
  CAudit* Processer(int nType);
  // After an edit of the type's rule set that returned nResult: compiles
  // the audit rules again when it succeeded. Returns nResult.
  int AfterRuleSetEdit(CAudit& audit, int nResult);
  // The type's rule set, its processor created when new.
  CZYG& RuleSet(int nType) { return *Processer(nType)->GetZYG(); }
  const char* Keep(const char* sText);

  std::map<int, std::unique_ptr<CAudit>> m_mapType2Processor;  // document type -> processor
  tstring m_sDataPath;  // data directory + "/Data/"
  tstring m_sResult;    // the last returned text
};
