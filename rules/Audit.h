#pragma once
// CAudit is the audit processor of one document type: the type's rule set
// (CZYG, owned) and its audit rules, kept in compiled form and indexed by
// field. Audit fields are the rule set's attribute names.
//
// Rule file: "ZYG_<type>.audit" in the rule folder (layout in Audit.cpp).
// Every edit (import, add, edit, delete) compiles the list and saves it at
// once; an edit that is refused or cannot be saved leaves list and file as
// they were. Update() compiles a list marked dirty (RuleSetChanged) again.
//
// Units written back (GetUnitStr): a field as "attribute|display name", a
// scope, command, operator, relation or logic word by its name, a constant
// as its text without quotes.
#include <memory>
#include <unordered_map>
#include <vector>

#include "rules/AuditTypes.h"
#include "rules/ZYG.h"
#include "utility/IntArray.h"
#include "utility/StaticStr.h"
#include "utility/TString.h"

class CDataFileReader;

class CAudit {
 public:
  // sDataPath: the rule folder with its trailing '/' ("" for no files).
  CAudit(const char* sDataPath, int nType);
  ~CAudit();
  CAudit(const CAudit&) = delete;  // owns the rule set
  CAudit& operator=(const CAudit&) = delete;

  // Loads the type's rule set and audit rules. Returns 1 (absent files are
  // empty sets; a folder of "" has none); -1 with "Cannot read file <name>"
  // for a damaged audit file, which leaves the list empty. Save writes
  // "Cannot write file <name>" on failure and does nothing for a folder "".
  int Load();
  int Load(const tstring& sFile);
  int Save();
  int Save(const tstring& sFile);
  int Export();
  int Export(const tstring& sFile);

  // "<audits>" text with "<audit>" items ("no", "name", "rule", "argument",
  // "field", "credit"); with bOverwrite the list is cleared first. A refused
  // item is left out (the last refusal stays the last error), the others
  // are taken. Returns the number of rules added; -1 when the file cannot
  // be read ("Failed read file <name>"), when every item was refused (the
  // list then stays as it was, overwrite or not) or saving fails.
  int Import(const char* sFile, bool bOverwrite);
  int ImportFromMem(const char* sText, bool bOverwrite);
  // The elements of one "<audit>" item; then saves. 1 or -1.
  int AddRule(const char* sText);

  // Editing through JSON items {"no", "name", "rule", "arguments", "field",
  // "credit"}; indexes in list order. 1 (AddItem: the index) or -1; a
  // refused rule leaves the list as it was. Texts stay valid until the next
  // call returning text.
  int AddItem(const char* sJson);
  int EditItem(int nIndex, const char* sJson);
  int DeleteItem(int nIndex);
  const char* GetItem(int nIndex);
  const char* GetListId();
  const char* GetSysInfo();
  // Compiles every editable rule again when the list is dirty, then saves.
  int Update();
  // To call after the rule set was edited: its attribute ids may have been
  // renumbered, so the audit rules are compiled again against them (a rule
  // whose field is gone stays in the list uncompiled) and saved. 1 or -1.
  int RuleSetChanged();

  // Read-only access for the evaluation; safe from several threads.
  size_t GetRuleCount() const { return m_vecRules.size(); }
  const _tAuditRule& GetRule(size_t nIndex) const { return m_vecRules[nIndex]; }
  // The editable form of compiled rule nIndex. Not every editable rule has
  // a compiled one ("audit_not_null" rules feed the not-null list instead),
  // so compiled and list indexes differ.
  const _tAuditRuleOrg& GetRuleOrg(size_t nIndex) const { return m_vecOrg[m_vecRuleOrg[nIndex]]; }
  size_t GetOrgCount() const { return m_vecOrg.size(); }  // the editable list, in list order
  // The rules indexed under an attribute id; empty when none.
  const std::vector<int>& GetRulesOfField(int nAttribute) const;
  const std::vector<int>& GetNotNullFields() const { return m_vecFieldNotNULL; }
  const std::vector<tstring>& GetNotNullErrorIds() const { return m_vecFieldNotNullArgu; }
  std::vector<tstring> GetArguments(size_t nIndex) const;
  std::vector<int> GetFields(size_t nIndex) const;
  const char* GetStr(size_t nPos) const { return m_strPool.Get(nPos); }
  tstring GetRuleText(const _tAuditRule& rule) const;  // units written back, each followed by a blank
  tstring GetUnitStr(const audit_rule_unit& unit) const;

  static int GetOpLevel(const audit_rule_unit& unit);
  static int GetCmdID(const tstring& sName);  // -1 when unknown; case ignored
  static const char* GetCmdStr(int nId);
  int GetFieldID(const tstring& sName) const;  // attribute id, scope, or -1
  tstring GetFieldStr(int nId) const;          // "attribute|display name", or the scope name

  int GetType() const { return m_nType; }
  CZYG* GetZYG() const { return m_pZYG.get(); }
  tstring GetFilename(const char* sExt) const;

 private:
  static constexpr int kNotNullRule = -2;  // Org2Audit: the rule fed the not-null list

  // Cuts a rule text into units. Constant units point into vecConstants
  // until the rule is kept (Org2Audit moves them into the string pool).
  // 1, or -1 with the last error set.
  int ParseRule(const tstring& sText, std::vector<audit_rule_unit>& vecUnits,
                std::vector<tstring>& vecConstants) const;
  audit_rule_unit ClassifyWord(const tstring& sWord, std::vector<tstring>& vecConstants) const;
  int ParseFields(const tstring& sText, std::vector<int>& vecIds) const;
  // Compiles editable rule nOrgIndex: its compiled index, kNotNullRule when
  // it fed the not-null list, or -1 (refused; nothing changed).
  int Org2Audit(const _tAuditRuleOrg& org, size_t nOrgIndex);
  void IndexRule(size_t nRule);
  // What makes two rules equal: units (constants by text, from pConstants
  // or, when null, the string pool) and fields; the number does not count.
  tstring RuleKey(const std::vector<audit_rule_unit>& vecUnits, const std::vector<int>& vecFields,
                  const std::vector<tstring>* pConstants) const;
  // 1, or -1 with the refusal as last error when another rule than list
  // entry nSkipOrg has this key.
  int CheckRepeat(const _tAuditRuleOrg& org, const tstring& sKey, int nSkipOrg) const;
  // Compiles the whole list again; false when rule nMustCompile is refused.
  bool Recompile(int nMustCompile);
  // Recompiles and saves after an edit of the list; on failure the list
  // goes back to vecOld and -1 is returned with the failure as last error.
  int Commit(std::vector<_tAuditRuleOrg>& vecOld, int nMustCompile);
  int AddOrg(const _tAuditRuleOrg& org);
  bool ReadPayload(CDataFileReader& in);
  bool CheckLoaded() const;
  bool IsValidField(int nId) const;
  const char* Keep(const tstring& sText);
  void ClearCompiled();
  void Clear();

  std::unique_ptr<CZYG> m_pZYG;
  std::vector<_tAuditRule> m_vecRules;        // compiled rules
  std::vector<std::vector<int>> m_vecIndex;   // per attribute id: rule indexes
  CStaticStr m_strPool;
  CIntArray m_intPool;
  std::vector<int> m_vecFieldNotNULL;         // fields that must have a value
  std::vector<tstring> m_vecFieldNotNullArgu; // their error ids
  bool m_bDirty = false;
  std::vector<_tAuditRuleOrg> m_vecOrg;       // editable rules
  std::vector<uint32_t> m_vecRuleOrg;         // per compiled rule: its index in m_vecOrg
  std::unordered_map<tstring, int> m_mapRuleKey;  // RuleKey -> compiled rule, to refuse repeats
  tstring m_sResult;                          // the last returned text
  tstring m_sDataPath;                        // the rule folder
  int m_nType;
};
