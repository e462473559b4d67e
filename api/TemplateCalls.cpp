// The template calls, served by the format checker's template store. Each
// refuses to run when format checking is off or did not start.
#include "api/ApiGuard.h"
#include "api/Globals.h"
#include "checker/DocFormatCheck.h"
#include "tarvos.h"
#include "utility/CodePage.h"
#include "utility/ErrorLog.h"

namespace {

CDocFormatCheck* FormatChecker() {
  if (!g_pDocFormatChecker) SetLastError("g_pDocFormatChecker not init!");
  return g_pDocFormatChecker.get();
}

}  // namespace

extern "C" TARVOS_API int TARVOS_ImportTemplate(const char* sTemplateFile, int nType,
                                                const char* sOrg, const char* sArea,
                                                const char* sArgumemt) {
  return ApiGuard(__func__, 0, [=](const char* sFn) {
    CDocFormatCheck* pChecker = FormatChecker();
    if (!pChecker || !ArgGiven(sFn, "sTemplateFile", sTemplateFile)) return 0;
    return pChecker->ImportTemplate(GetAnsiFilename(sTemplateFile).c_str(), nType, OrEmpty(sOrg),
                                    OrEmpty(sArea), OrEmpty(sArgumemt));
  });
}

extern "C" TARVOS_API int TARVOS_EditTemplate(int nTemplateID, const char* sTemplateFile,
                                              int nType, const char* sOrg, const char* sArea,
                                              const char* sArgumemt) {
  return ApiGuard(__func__, 0, [=](const char* sFn) {
    CDocFormatCheck* pChecker = FormatChecker();
    if (!pChecker || !ArgGiven(sFn, "sTemplateFile", sTemplateFile)) return 0;
    return pChecker->EditTemplate(nTemplateID, GetAnsiFilename(sTemplateFile).c_str(), nType,
                                  OrEmpty(sOrg), OrEmpty(sArea), OrEmpty(sArgumemt));
  });
}

extern "C" TARVOS_API int TARVOS_FindTemplate(int nType, const char* sOrg, const char* sArea,
                                              const char* sArgumemt) {
  return ApiGuard(__func__, 0, [=](const char*) {
    CDocFormatCheck* pChecker = FormatChecker();
    return pChecker ? pChecker->FindTemplate(nType, OrEmpty(sOrg), OrEmpty(sArea), OrEmpty(sArgumemt))
                    : 0;
  });
}

extern "C" TARVOS_API int TARVOS_DeleteTemplate(int nTemplateID) {
  return ApiGuard(__func__, 0, [=](const char*) {
    CDocFormatCheck* pChecker = FormatChecker();
    return pChecker ? pChecker->DeleteTemplate(nTemplateID) : 0;
  });
}

extern "C" TARVOS_API const char* TARVOS_GetTemplate(int nTemplateID) {
  return ApiGuard<const char*>(__func__, nullptr, [=](const char*) -> const char* {
    CDocFormatCheck* pChecker = FormatChecker();
    return pChecker ? pChecker->GetTemplate(nTemplateID) : nullptr;
  });
}

extern "C" TARVOS_API int TARVOS_GetTemplateCount(void) {
  return ApiGuard(__func__, 0, [](const char*) {
    CDocFormatCheck* pChecker = FormatChecker();
    return pChecker ? pChecker->GetTemplateCount() : 0;
  });
}

extern "C" TARVOS_API const char* TARVOS_GetTemplateList(int docType, const char* sOrgnization) {
  return ApiGuard<const char*>(__func__, nullptr, [=](const char*) -> const char* {
    CDocFormatCheck* pChecker = FormatChecker();
    return pChecker ? pChecker->GetTemplateList(docType, OrEmpty(sOrgnization)) : nullptr;
  });
}
