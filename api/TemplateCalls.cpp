// The template calls, served by the format checker's template store. Each
// refuses to run when format checking is off or did not start. Calls that
// change the store hold the engine's writer lock, the others its reader lock.
#include "api/ApiGuard.h"
#include "api/Globals.h"
#include "checker/DocFormatCheck.h"
#include "tarvos.h"
#include "utility/CodePage.h"
#include "utility/ErrorLog.h"

namespace {

// Runs fn(format checker, function name) under the lock a call needs.
template <class T, class F>
T WithChecker(const char* sFunction, T fail, bool bChanges, F&& fn) noexcept {
  return ApiGuard<T>(sFunction, fail, [&](const char* sFn) -> T {
    CDocFormatCheck* pChecker = g_pEngine ? g_pEngine->GetFormatChecker() : nullptr;
    if (pChecker == nullptr) {
      SetLastError("g_pDocFormatChecker not init!");
      return fail;
    }
    if (bChanges) {
      auto lock = g_pEngine->WriteLock();
      return fn(*pChecker, sFn);
    }
    auto lock = g_pEngine->ReadLock();
    return fn(*pChecker, sFn);
  });
}

}  // namespace

extern "C" TARVOS_API int TARVOS_ImportTemplate(const char* sTemplateFile, int nType, const char* sOrg,
                                                const char* sArea, const char* sArgumemt) {
  return WithChecker(__func__, 0, true, [=](CDocFormatCheck& checker, const char* sFn) {
    if (!ArgGiven(sFn, "sTemplateFile", sTemplateFile)) return 0;
    return checker.ImportTemplate(GetAnsiFilename(sTemplateFile).c_str(), nType, OrEmpty(sOrg), OrEmpty(sArea),
                                  OrEmpty(sArgumemt));
  });
}

extern "C" TARVOS_API int TARVOS_EditTemplate(int nTemplateID, const char* sTemplateFile, int nType,
                                              const char* sOrg, const char* sArea, const char* sArgumemt) {
  return WithChecker(__func__, 0, true, [=](CDocFormatCheck& checker, const char* sFn) {
    if (!ArgGiven(sFn, "sTemplateFile", sTemplateFile)) return 0;
    return checker.EditTemplate(nTemplateID, GetAnsiFilename(sTemplateFile).c_str(), nType, OrEmpty(sOrg),
                                OrEmpty(sArea), OrEmpty(sArgumemt));
  });
}

extern "C" TARVOS_API int TARVOS_FindTemplate(int nType, const char* sOrg, const char* sArea,
                                              const char* sArgumemt) {
  return WithChecker(__func__, 0, false, [=](CDocFormatCheck& checker, const char*) {
    return checker.FindTemplate(nType, OrEmpty(sOrg), OrEmpty(sArea), OrEmpty(sArgumemt));
  });
}

extern "C" TARVOS_API int TARVOS_DeleteTemplate(int nTemplateID) {
  return WithChecker(__func__, 0, true, [=](CDocFormatCheck& checker, const char*) {
    return checker.DeleteTemplate(nTemplateID);
  });
}

extern "C" TARVOS_API const char* TARVOS_GetTemplate(int nTemplateID) {
  return WithChecker<const char*>(__func__, nullptr, false, [=](CDocFormatCheck& checker, const char*) {
    return ThreadCopy(kSlotTemplate, checker.GetTemplate(nTemplateID));
  });
}

extern "C" TARVOS_API const char* TARVOS_GetTemplateJson(int nTemplateID) {
  return WithChecker<const char*>(__func__, nullptr, false, [=](CDocFormatCheck& checker, const char*) {
    return ThreadCopy(kSlotTemplateJson, checker.GetTemplateJson(nTemplateID));
  });
}

extern "C" TARVOS_API int TARVOS_GetTemplateCount(void) {
  return WithChecker(__func__, 0, false, [](CDocFormatCheck& checker, const char*) {
    return checker.GetTemplateCount();
  });
}

extern "C" TARVOS_API const char* TARVOS_GetTemplateList(int docType, const char* sOrgnization) {
  return WithChecker<const char*>(__func__, nullptr, false, [=](CDocFormatCheck& checker, const char*) {
    return ThreadCopy(kSlotTemplateList, checker.GetTemplateList(docType, OrEmpty(sOrgnization)));
  });
}
