// The rule-engine calls, served by the process-wide rule manager. Texts are
// the manager's (valid until its next text); failures give -1 or "".
#include "api/ApiGuard.h"
#include "api/Globals.h"
#include "checker/ID2Message.h"
#include "rules/ZYGManager.h"
#include "tarvos.h"
#include "utility/CodePage.h"
#include "utility/ErrorLog.h"

namespace {

// Every manager call may create a document type's processor and save the
// manager's file, and texts are the manager's own: all run under the
// engine's writer lock.
template <class T, class F>
T WithManager(const char* sFunction, T fail, F&& fn) noexcept {
  return ApiGuard<T>(sFunction, fail, [&](const char* sFn) -> T {
    CZYGManager* pManager = g_pEngine ? g_pEngine->GetRuleManager() : nullptr;
    if (pManager == nullptr) {
      SetLastError("g_pZYGManager not init!");
      return fail;
    }
    auto lock = g_pEngine->WriteLock();
    return fn(*pManager, sFn);
  });
}

}  // namespace

extern "C" TARVOS_API int TARVOS_ImportZYGRules(const char* sRuleFile, bool bOverwrite, int nType) {
  return WithManager(__func__, -1, [=](CZYGManager& m, const char* sFn) {
    if (!ArgGiven(sFn, "sRuleFile", sRuleFile)) return -1;
    return m.ImportZYGRules(GetAnsiFilename(sRuleFile).c_str(), bOverwrite, nType);
  });
}

extern "C" TARVOS_API int TARVOS_ImportZYGRulesFromMem(const char* sRuleText, bool bOverwrite,
                                                       int nType) {
  return WithManager(__func__, -1, [=](CZYGManager& m, const char* sFn) {
    return ArgGiven(sFn, "sRuleText", sRuleText) ? m.ImportZYGRulesFromMem(sRuleText, bOverwrite, nType)
                                                 : -1;
  });
}

extern "C" TARVOS_API int TARVOS_AddAuditRule(const char* sAuditRule, int nType) {
  return WithManager(__func__, -1, [=](CZYGManager& m, const char* sFn) {
    return ArgGiven(sFn, "sAuditRule", sAuditRule) ? m.AddRule(sAuditRule, nType) : -1;
  });
}

extern "C" TARVOS_API const char* ZYG_GetSysInfo(void) {
  return WithManager<const char*>(__func__, "", [](CZYGManager& m, const char*) {
    return m.GetZYGSysInfo();
  });
}

extern "C" TARVOS_API const char* ZYG_GetRuleListId(int type) {
  return WithManager<const char*>(__func__, "", [=](CZYGManager& m, const char*) {
    return m.GetZYGRuleListId(type);
  });
}

extern "C" TARVOS_API const char* ZYG_GetRuleInfo(int rule_id, int type) {
  return WithManager<const char*>(__func__, "", [=](CZYGManager& m, const char*) {
    return m.GetZYGRuleInfo(rule_id, type);
  });
}

extern "C" TARVOS_API int ZYG_DelRule(int rule_id, int type) {
  return WithManager(__func__, -1, [=](CZYGManager& m, const char*) { return m.DelZYGRule(rule_id, type); });
}

extern "C" TARVOS_API int ZYG_AddRule(const char* sJsonStr, int type) {
  return WithManager(__func__, -1, [=](CZYGManager& m, const char* sFn) {
    return ArgGiven(sFn, "sJsonStr", sJsonStr) ? m.AddZYGRule(sJsonStr, type) : -1;
  });
}

extern "C" TARVOS_API int ZYG_EditRule(int rule_id, const char* sJsonStr, int type) {
  return WithManager(__func__, -1, [=](CZYGManager& m, const char* sFn) {
    return ArgGiven(sFn, "sJsonStr", sJsonStr) ? m.EditZYGRule(rule_id, sJsonStr, type) : -1;
  });
}

extern "C" TARVOS_API const char* Audit_GetSysInfo(int type) {
  return WithManager<const char*>(__func__, "", [=](CZYGManager& m, const char*) {
    return m.GetAuditSysInfo(type);
  });
}

// The catalogue's JSON, a copy for the calling thread.
extern "C" TARVOS_API const char* Audit_GetErrorInfo(void) {
  return ApiGuard<const char*>(__func__, "", [](const char*) -> const char* {
    CID2Message* pMessages = g_pEngine ? g_pEngine->GetMessages() : nullptr;
    if (pMessages == nullptr) {
      SetLastError("g_pError2Message not init!");
      return "";
    }
    auto lock = g_pEngine->ReadLock();
    return ThreadCopy(kSlotErrorInfo, pMessages->Export2Json());
  });
}

extern "C" TARVOS_API const char* Audit_GetRuleListId(int type) {
  return WithManager<const char*>(__func__, "", [=](CZYGManager& m, const char*) {
    return m.GetAuditRuleListId(type);
  });
}

extern "C" TARVOS_API const char* Audit_GetRuleInfo(int rule_id, int type) {
  return WithManager<const char*>(__func__, "", [=](CZYGManager& m, const char*) {
    return m.GetAuditRuleInfo(rule_id, type);
  });
}

extern "C" TARVOS_API int Audit_DelRule(int rule_id, int type) {
  return WithManager(__func__, -1, [=](CZYGManager& m, const char*) { return m.DelAuditRule(rule_id, type); });
}

extern "C" TARVOS_API int Audit_AddRule(const char* sJsonStr, int type) {
  return WithManager(__func__, -1, [=](CZYGManager& m, const char* sFn) {
    return ArgGiven(sFn, "sJsonStr", sJsonStr) ? m.AddAuditRule(sJsonStr, type) : -1;
  });
}

extern "C" TARVOS_API int Audit_EditRule(int rule_id, const char* sJsonStr, int type) {
  return WithManager(__func__, -1, [=](CZYGManager& m, const char* sFn) {
    return ArgGiven(sFn, "sJsonStr", sJsonStr) ? m.EditAuditRule(rule_id, sJsonStr, type) : -1;
  });
}
