// The instance table's calls and the exported calls that work on one
// checking instance. Each resolves its handle under the engine's reader
// lock, converts its arguments and forwards to the instance.
#include "api/ApiGuard.h"
#include "api/Globals.h"
#include "checker/ReportChecker.h"
#include "tarvos.h"
#include "utility/CodePage.h"
#include "utility/ErrorLog.h"

namespace {

// Runs fn(instance, function name) with the services read-locked; fail with
// "TARVOS not init!" for an invalid or deleted handle (the precise reason
// reaches only the error log).
template <class T, class F>
T WithInstance(const char* sFunction, T fail, int handle, F&& fn) noexcept {
  return ApiGuard<T>(sFunction, fail, [&](const char* sFn) -> T {
    CEngine* pEngine = g_pEngine.get();
    if (pEngine == nullptr) {
      SetHandleError("GetReportCheckerWorker  argument(handle %d) is invalid!", handle);
      SetLastError("TARVOS not init!");
      return fail;
    }
    auto lock = pEngine->ReadLock();
    CReportChecker* pChecker = pEngine->GetReportCheckerWorker(handle);
    if (pChecker == nullptr) {
      SetLastError("TARVOS not init!");
      return fail;
    }
    return fn(*pChecker, sFn);
  });
}

}  // namespace

extern "C" TARVOS_API int TARVOS_NewInstance(void) {
  return ApiGuard(__func__, -1, [](const char*) {
    if (!g_pEngine) {
      SetLastError("Not Init, no operation!");
      return -1;
    }
    return g_pEngine->NewInstance();
  });
}

// The initialisation flag is not tested, so that shutting down can use this call.
extern "C" TARVOS_API int TARVOS_DeleteInstance(int handle) {
  return ApiGuard(__func__, 0, [handle](const char*) {
    if (!g_pEngine) {
      SetHandleError("DC_DeleteInstance  argument(handle %d) is invalid!", handle);
      return 0;
    }
    return g_pEngine->DeleteInstance(handle);
  });
}

extern "C" TARVOS_API const char* TARVOS_CheckReportF(const char* sReportFile, const char* sURLPrefix,
                                                      const char* sOrgnization, int nType, int nResultFormat,
                                                      bool bDebug, int handle) {
  return WithInstance<const char*>(__func__, nullptr, handle, [=](CReportChecker& checker, const char* sFn) -> const char* {
    if (!ArgGiven(sFn, "sReportFile", sReportFile)) return nullptr;
    tstring sName = GetAnsiFilename(sReportFile);
    if (checker.ImportFile(sName.c_str(), OrEmpty(sURLPrefix), nType, nResultFormat) <= 0) {
      SetLastError(tstring("Cannot open file ") + sReportFile);
      return nullptr;
    }
    checker.Check(nType, nResultFormat, OrEmpty(sOrgnization), bDebug);
    return checker.GetResultFile(nResultFormat);
  });
}

extern "C" TARVOS_API const char* TARVOS_CheckReportM(const char* sReportTxt, const char* /*sURLPrefix*/,
                                                      const char* sOrgnization, int nType, int nResultFormat,
                                                      bool bDebug, int handle) {
  return WithInstance<const char*>(__func__, nullptr, handle, [=](CReportChecker& checker, const char* sFn) -> const char* {
    if (!ArgGiven(sFn, "sReportTxt", sReportTxt)) return nullptr;
    // An import failure is not fatal here: an empty text is checked as empty.
    checker.ImportMemory(sReportTxt, nType, nResultFormat);
    checker.Check(nType, nResultFormat, OrEmpty(sOrgnization), bDebug);
    return checker.GetResultE();
  });
}

extern "C" TARVOS_API const char* TARVOS_GetResult(int result_type, int handle) {
  return WithInstance<const char*>(__func__, nullptr, handle, [=](CReportChecker& checker, const char*) {
    return checker.GetResult(result_type);
  });
}

extern "C" TARVOS_API int TARVOS_LoadDocResult(const char* sResultXMLFile, int handle) {
  return WithInstance(__func__, 0, handle, [=](CReportChecker& checker, const char* sFn) {
    if (!ArgGiven(sFn, "sResultXMLFile", sResultXMLFile)) return 0;
    return (int)checker.LoadDocResult(GetAnsiFilename(sResultXMLFile).c_str());
  });
}

extern "C" TARVOS_API const char* TARVOS_ImportDocFormat(const char* sReportFile, const char* sURLPrefix,
                                                         int nResultFormat, int handle) {
  return WithInstance<const char*>(__func__, nullptr, handle, [=](CReportChecker& checker, const char* sFn) -> const char* {
    if (!ArgGiven(sFn, "sReportFile", sReportFile)) return nullptr;
    return checker.ImportDocx(GetAnsiFilename(sReportFile).c_str(), OrEmpty(sURLPrefix), 0, nResultFormat);
  });
}

extern "C" TARVOS_API const char* TARVOS_ImportDoc(const char* sReportFile, const char* sURLPrefix, int handle) {
  return TARVOS_ImportDocFormat(sReportFile, sURLPrefix, 0, handle);
}

extern "C" TARVOS_API const char* TARVOS_ReviseReportF(const char* sReviseXMLFile, int handle) {
  return WithInstance<const char*>(__func__, nullptr, handle, [=](CReportChecker& checker, const char* sFn) -> const char* {
    if (!ArgGiven(sFn, "sReviseXMLFile", sReviseXMLFile)) return nullptr;
    return checker.ReviseF(GetAnsiFilename(sReviseXMLFile).c_str());
  });
}

extern "C" TARVOS_API const char* TARVOS_ReviseReportTracked(const char* sReviseXMLFile, const char* sAuthor,
                                                             int handle) {
  return WithInstance<const char*>(__func__, nullptr, handle, [=](CReportChecker& checker, const char* sFn) -> const char* {
    if (!ArgGiven(sFn, "sReviseXMLFile", sReviseXMLFile)) return nullptr;
    return checker.ReviseF(GetAnsiFilename(sReviseXMLFile).c_str(), true, sAuthor);
  });
}

// Null is success here; a failure returns its text. An invalid handle still
// returns null, like every other instance call.
extern "C" TARVOS_API const char* TARVOS_ShowHtmlError(const char* sReviseXMLFile, int handle) {
  return WithInstance<const char*>(__func__, nullptr, handle, [=](CReportChecker& checker, const char* sFn) -> const char* {
    if (ArgGiven(sFn, "sReviseXMLFile", sReviseXMLFile) &&
        checker.ShowHtmlError(GetAnsiFilename(sReviseXMLFile).c_str()) == 1)
      return nullptr;
    return ThreadCopy(kSlotHtmlError, GetThreadLastError());
  });
}

extern "C" TARVOS_API const char* TARVOS_ReCheckFormat(const char* sCheckXML, int nTemplateID, int nResultFormat,
                                                       int handle) {
  return WithInstance<const char*>(__func__, nullptr, handle, [=](CReportChecker& checker, const char* sFn) -> const char* {
    if (!ArgGiven(sFn, "sCheckXML", sCheckXML)) return nullptr;
    if (checker.ReCheckFormat(GetAnsiFilename(sCheckXML).c_str(), nTemplateID) <= 0) return nullptr;
    return checker.GetResultFile(nResultFormat);
  });
}

extern "C" TARVOS_API const char* TARVOS_GetCurTemplateInfo(int handle) {
  return WithInstance<const char*>(__func__, nullptr, handle, [=](CReportChecker& checker, const char*) {
    return checker.GetCurTemplateInfo();
  });
}

// The two ints arrive as (rule_id, type) and go on as (type, rule_id).
extern "C" TARVOS_API const char* ZYG_ScanTextMem(const char* sLine, int rule_id, int type, int handle) {
  return WithInstance<const char*>(__func__, nullptr, handle, [=](CReportChecker& checker, const char* sFn) -> const char* {
    if (!ArgGiven(sFn, "sLine", sLine)) return nullptr;
    return checker.CheckMem(sLine, type, rule_id);
  });
}

// Each call keeps its own instance until TARVOS_Exit, so every text it
// returned stays readable at once.
extern "C" TARVOS_API const char* TARVOS_ExtractKnowledge(const char* sText, int nType) {
  return ApiGuard<const char*>(__func__, nullptr, [=](const char* sFn) -> const char* {
    if (!ArgGiven(sFn, "sText", sText)) return nullptr;
    int handle = g_pEngine ? g_pEngine->NewInstance() : -1;
    if (handle < 0) return nullptr;
    return WithInstance<const char*>(sFn, nullptr, handle, [=](CReportChecker& checker, const char*) {
      checker.ImportMemory(sText, nType, 1);
      return checker.ExtractKnowledge(nType, 1);
    });
  });
}
