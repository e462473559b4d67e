#include "rules/ZYGManager.h"

#include <cstdint>
#include <cstdio>

#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"

namespace {
const char kManagerFile[] = "ZYG_Manager.dat";
const uint64_t kMaxTypes = 1u << 20;  // far beyond any real count; refuses foreign files
}  // namespace

CZYGManager::CZYGManager(const char* sPath) : m_sDataPath(tstring(sPath ? sPath : "") + "/Data/") {}

int CZYGManager::Load() {
  tstring sFile = m_sDataPath + kManagerFile;
  FILE* fp = fopen(sFile.c_str(), "rb");
  uint64_t nCount = 0;
  bool bOk = fp != nullptr && fread(&nCount, sizeof(nCount), 1, fp) == 1 && nCount <= kMaxTypes;
  for (uint64_t i = 0; bOk && i < nCount; ++i) {
    int32_t nType = 0;
    bOk = fread(&nType, sizeof(nType), 1, fp) == 1;
    if (bOk && m_mapType2Processor.count(nType) == 0) {
      std::unique_ptr<CAudit> pAudit(new CAudit(m_sDataPath.c_str(), nType));
      pAudit->Load();
      m_mapType2Processor[nType] = std::move(pAudit);
    }
  }
  if (fp) fclose(fp);
  if (!bOk) {
    SetLastError("Failed reading file " + sFile);
    return -1;
  }
  return 1;
}

int CZYGManager::Save() {
  tstring sFile = m_sDataPath + kManagerFile;
  bool bOk = WriteFileReplacing(sFile, [this](FILE* fp) {
    uint64_t nCount = m_mapType2Processor.size();
    bool bWritten = fwrite(&nCount, sizeof(nCount), 1, fp) == 1;
    for (const auto& kv : m_mapType2Processor) {
      int32_t nType = kv.first;
      bWritten = bWritten && fwrite(&nType, sizeof(nType), 1, fp) == 1;
    }
    return bWritten;
  });
  if (!bOk) {
    SetLastError("Failed writing file " + sFile);
    return -1;
  }
  return 1;
}

CAudit* CZYGManager::GetProcesser(int nType) {
  return const_cast<CAudit*>(static_cast<const CZYGManager*>(this)->GetProcesser(nType));
}

const CAudit* CZYGManager::GetProcesser(int nType) const {
  auto it = m_mapType2Processor.find(nType);
  if (it != m_mapType2Processor.end()) return it->second.get();
  char sMessage[64];
  snprintf(sMessage, sizeof(sMessage), "Report Type=%d Processor not exists.", nType);
  SetLastError(sMessage);
  return nullptr;
}

CAudit* CZYGManager::Processer(int nType) {
  auto it = m_mapType2Processor.find(nType);
  if (it != m_mapType2Processor.end()) return it->second.get();
  std::unique_ptr<CAudit> pAudit(new CAudit(m_sDataPath.c_str(), nType));
  pAudit->Load();
  CAudit* pResult = pAudit.get();
  m_mapType2Processor[nType] = std::move(pAudit);
  Save();
  return pResult;
}

const char* CZYGManager::Keep(const char* sText) {
  m_sResult = sText ? sText : "";
  return m_sResult.c_str();
}

int CZYGManager::ImportZYGRules(const char* sFile, bool bOverwrite, int nType) {
  tstring sText;
  if (sFile == nullptr || !ReadFileText(sFile, sText)) {
    Processer(nType);
    SetLastError(tstring("Failed read file ") + (sFile ? sFile : ""));
    return -1;
  }
  return ImportZYGRulesFromMem(sText.c_str(), bOverwrite, nType);
}

// A text may hold rules for the rule set ("<item>") and audit rules
// ("<audit>"). The rule set goes first: audit fields are its attribute names.
int CZYGManager::ImportZYGRulesFromMem(const char* sText, bool bOverwrite, int nType) {
  const tstring s = sText ? sText : "";
  CAudit& audit = *Processer(nType);
  const bool bAudits = s.find("<audit>") != tstring::npos;
  int nRules = 0;
  if (!bAudits || s.find("<item>") != tstring::npos) {
    nRules = AfterRuleSetEdit(audit, audit.GetZYG()->ImportRuleFromMem(s.c_str(), bOverwrite));
    if (nRules < 0 || !bAudits) return nRules;
  }
  int nAudits = audit.ImportFromMem(s.c_str(), bOverwrite);
  return nAudits < 0 ? -1 : nRules + nAudits;
}

int CZYGManager::AfterRuleSetEdit(CAudit& audit, int nResult) {
  if (nResult >= 0) {
    tstring sError = GetLastError();  // a partial import keeps its refusal as the last error
    audit.RuleSetChanged();
    SetLastError(sError);
  }
  return nResult;
}

int CZYGManager::AddRule(const char* sText, int nType) { return Processer(nType)->AddRule(sText); }

const char* CZYGManager::GetZYGSysInfo() {
  CZYG rules("", 0);
  return Keep(rules.GetSysInfo());
}

const char* CZYGManager::GetAuditSysInfo(int nType) { return Keep(Processer(nType)->GetSysInfo()); }
const char* CZYGManager::GetZYGRuleListId(int nType) { return Keep(RuleSet(nType).GetRuleListId()); }
const char* CZYGManager::GetZYGRuleInfo(int rule_id, int nType) { return Keep(RuleSet(nType).GetItem(rule_id)); }
int CZYGManager::DelZYGRule(int rule_id, int nType) {
  return AfterRuleSetEdit(*Processer(nType), RuleSet(nType).DeleteItem(rule_id));
}
int CZYGManager::AddZYGRule(const char* sJsonStr, int nType) {
  return AfterRuleSetEdit(*Processer(nType), RuleSet(nType).AddItem(sJsonStr));
}
int CZYGManager::EditZYGRule(int rule_id, const char* sJsonStr, int nType) {
  return AfterRuleSetEdit(*Processer(nType), RuleSet(nType).EditItem(rule_id, sJsonStr));
}
const char* CZYGManager::GetAuditRuleListId(int nType) { return Keep(Processer(nType)->GetListId()); }
const char* CZYGManager::GetAuditRuleInfo(int rule_id, int nType) { return Keep(Processer(nType)->GetItem(rule_id)); }
int CZYGManager::DelAuditRule(int rule_id, int nType) { return Processer(nType)->DeleteItem(rule_id); }
int CZYGManager::AddAuditRule(const char* sJsonStr, int nType) { return Processer(nType)->AddItem(sJsonStr); }
int CZYGManager::EditAuditRule(int rule_id, const char* sJsonStr, int nType) {
  return Processer(nType)->EditItem(rule_id, sJsonStr);
}
