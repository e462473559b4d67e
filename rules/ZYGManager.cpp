#include "rules/ZYGManager.h"

#include <cstdint>
#include <cstdio>

#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"

namespace {
const char kManagerFile[] = "ZYG_Manager.dat";
const char kAudits[] = "the audit rules (CAudit)";
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

int CZYGManager::Missing(int nType, const char* sService, int nFail) {
  Processer(nType);
  return ServiceMissing(sService, nFail);
}

const char* CZYGManager::MissingText(int nType, const char* sService) {
  Missing(nType, sService);
  m_sResult.clear();
  return m_sResult.c_str();
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

int CZYGManager::ImportZYGRulesFromMem(const char* sText, bool bOverwrite, int nType) {
  tstring s = sText ? sText : "";
  if (s.find("<audit>") != tstring::npos) return Missing(nType, kAudits, 0);
  return RuleSet(nType).ImportRuleFromMem(s.c_str(), bOverwrite);
}

int CZYGManager::AddRule(const char*, int nType) { return Missing(nType, kAudits); }

const char* CZYGManager::GetZYGSysInfo() {
  CZYG rules("", 0);
  return Keep(rules.GetSysInfo());
}

const char* CZYGManager::GetAuditSysInfo(int nType) { return MissingText(nType, kAudits); }
const char* CZYGManager::GetZYGRuleListId(int nType) { return Keep(RuleSet(nType).GetRuleListId()); }
const char* CZYGManager::GetZYGRuleInfo(int rule_id, int nType) { return Keep(RuleSet(nType).GetItem(rule_id)); }
int CZYGManager::DelZYGRule(int rule_id, int nType) { return RuleSet(nType).DeleteItem(rule_id); }
int CZYGManager::AddZYGRule(const char* sJsonStr, int nType) { return RuleSet(nType).AddItem(sJsonStr); }
int CZYGManager::EditZYGRule(int rule_id, const char* sJsonStr, int nType) {
  return RuleSet(nType).EditItem(rule_id, sJsonStr);
}
const char* CZYGManager::GetAuditRuleListId(int nType) { return MissingText(nType, kAudits); }
const char* CZYGManager::GetAuditRuleInfo(int, int nType) { return MissingText(nType, kAudits); }
int CZYGManager::DelAuditRule(int, int nType) { return Missing(nType, kAudits); }
int CZYGManager::AddAuditRule(const char*, int nType) { return Missing(nType, kAudits); }
int CZYGManager::EditAuditRule(int, const char*, int nType) { return Missing(nType, kAudits); }
