// The exported calls that work on one checking instance. Each resolves its
// handle, converts its arguments and forwards to the instance.
#include "api/ApiGuard.h"
#include "api/Globals.h"
#include "checker/ReportChecker.h"
#include "tarvos.h"
#include "utility/CodePage.h"
#include "utility/ErrorLog.h"

namespace {

// The instance of a handle; null with "TARVOS not init!" for an invalid or
// deleted handle (the precise reason reaches only the error log).
CReportChecker* Worker(int handle) {
  CReportChecker* pChecker = GetReportCheckerWorker(handle);
  if (pChecker == nullptr) SetLastError("TARVOS not init!");
  return pChecker;
}

}  // namespace

extern "C" TARVOS_API const char* TARVOS_CheckReportF(const char* sReportFile,
                                                      const char* sURLPrefix,
                                                      const char* sOrgnization, int nType,
                                                      int nResultFormat, bool bDebug, int handle) {
  return ApiGuard<const char*>(__func__, nullptr, [=](const char* sFn) -> const char* {
    CReportChecker* pChecker = Worker(handle);
    if (!pChecker || !ArgGiven(sFn, "sReportFile", sReportFile)) return nullptr;
    tstring sName = GetAnsiFilename(sReportFile);
    if (pChecker->ImportFile(sName.c_str(), OrEmpty(sURLPrefix), nType, nResultFormat) <= 0) {
      SetLastError(tstring("Cannot open file ") + sReportFile);
      return nullptr;
    }
    pChecker->Check(nType, nResultFormat, OrEmpty(sOrgnization), bDebug);
    return pChecker->GetResultFile(nResultFormat);
  });
}

extern "C" TARVOS_API const char* TARVOS_CheckReportM(const char* sReportTxt,
                                                      const char* /*sURLPrefix*/,
                                                      const char* sOrgnization, int nType,
                                                      int nResultFormat, bool bDebug, int handle) {
  return ApiGuard<const char*>(__func__, nullptr, [=](const char* sFn) -> const char* {
    CReportChecker* pChecker = Worker(handle);
    if (!pChecker || !ArgGiven(sFn, "sReportTxt", sReportTxt)) return nullptr;
    // An import failure is not fatal here: an empty text is checked as empty.
    pChecker->ImportMemory(sReportTxt, nType, nResultFormat);
    pChecker->Check(nType, nResultFormat, OrEmpty(sOrgnization), bDebug);
    return pChecker->GetResultE();
  });
}

extern "C" TARVOS_API const char* TARVOS_GetResult(int result_type, int handle) {
  return ApiGuard<const char*>(__func__, nullptr, [=](const char*) -> const char* {
    CReportChecker* pChecker = Worker(handle);
    return pChecker ? pChecker->GetResult(result_type) : nullptr;
  });
}

extern "C" TARVOS_API int TARVOS_LoadDocResult(const char* sResultXMLFile, int handle) {
  return ApiGuard(__func__, 0, [=](const char* sFn) {
    CReportChecker* pChecker = Worker(handle);
    if (!pChecker || !ArgGiven(sFn, "sResultXMLFile", sResultXMLFile)) return 0;
    return (int)pChecker->LoadDocResult(GetAnsiFilename(sResultXMLFile).c_str());
  });
}

extern "C" TARVOS_API const char* TARVOS_ImportDoc(const char* sReportFile, const char* sURLPrefix,
                                                   int handle) {
  return ApiGuard<const char*>(__func__, nullptr, [=](const char* sFn) -> const char* {
    CReportChecker* pChecker = Worker(handle);
    if (!pChecker || !ArgGiven(sFn, "sReportFile", sReportFile)) return nullptr;
    return pChecker->ImportDocx(GetAnsiFilename(sReportFile).c_str(), OrEmpty(sURLPrefix), 0, 0);
  });
}

extern "C" TARVOS_API const char* TARVOS_ReviseReportF(const char* sReviseXMLFile, int handle) {
  return ApiGuard<const char*>(__func__, nullptr, [=](const char* sFn) -> const char* {
    CReportChecker* pChecker = Worker(handle);
    if (!pChecker || !ArgGiven(sFn, "sReviseXMLFile", sReviseXMLFile)) return nullptr;
    return pChecker->ReviseF(GetAnsiFilename(sReviseXMLFile).c_str());
  });
}

// Null is success here; a failure returns its text. An invalid handle still
// returns null, like every other instance call.
extern "C" TARVOS_API const char* TARVOS_ShowHtmlError(const char* sReviseXMLFile, int handle) {
  return ApiGuard<const char*>(__func__, nullptr, [=](const char* sFn) -> const char* {
    CReportChecker* pChecker = Worker(handle);
    if (!pChecker) return nullptr;
    if (!ArgGiven(sFn, "sReviseXMLFile", sReviseXMLFile))
      return ThreadCopy(kSlotHtmlError, GetLastError());
    return pChecker->ShowHtmlError(GetAnsiFilename(sReviseXMLFile).c_str());
  });
}

extern "C" TARVOS_API const char* TARVOS_ReCheckFormat(const char* sCheckXML, int nTemplateID,
                                                       int nResultFormat, int handle) {
  return ApiGuard<const char*>(__func__, nullptr, [=](const char* sFn) -> const char* {
    CReportChecker* pChecker = Worker(handle);
    if (!pChecker || !ArgGiven(sFn, "sCheckXML", sCheckXML)) return nullptr;
    if (pChecker->ReCheckFormat(GetAnsiFilename(sCheckXML).c_str(), nTemplateID) <= 0)
      return nullptr;
    return pChecker->GetResultFile(nResultFormat);
  });
}

extern "C" TARVOS_API const char* TARVOS_GetCurTemplateInfo(int handle) {
  return ApiGuard<const char*>(__func__, nullptr, [=](const char*) -> const char* {
    CReportChecker* pChecker = Worker(handle);
    return pChecker ? pChecker->GetCurTemplateInfo() : nullptr;
  });
}

// The two ints arrive as (rule_id, type) and go on as (type, rule_id).
extern "C" TARVOS_API const char* ZYG_ScanTextMem(const char* sLine, int rule_id, int type,
                                                  int handle) {
  return ApiGuard<const char*>(__func__, nullptr, [=](const char* sFn) -> const char* {
    CReportChecker* pChecker = Worker(handle);
    if (!pChecker || !ArgGiven(sFn, "sLine", sLine)) return nullptr;
    return pChecker->CheckMem(sLine, type, rule_id);
  });
}

// Each call keeps its own instance until TARVOS_Exit, so every text it
// returned stays readable at once.
extern "C" TARVOS_API const char* TARVOS_ExtractKnowledge(const char* sText, int nType) {
  return ApiGuard<const char*>(__func__, nullptr, [=](const char* sFn) -> const char* {
    if (!ArgGiven(sFn, "sText", sText)) return nullptr;
    int handle = TARVOS_NewInstance();
    CReportChecker* pChecker = handle < 0 ? nullptr : Worker(handle);
    if (!pChecker) return nullptr;
    pChecker->ImportMemory(sText, nType, 1);
    return pChecker->ExtractKnowledge(nType, 1);
  });
}
