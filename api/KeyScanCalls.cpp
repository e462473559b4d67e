// The keyword scanner's own calls. They drive the scanner that KS_Init
// started or, without one, the engine's scanner ("FilterCheck"), so a host
// that started the engine scans with the lists its checks use.
#include <memory>

#include "api/ApiGuard.h"
#include "api/Globals.h"
#include "keyscan/KeyScanner.h"
#include "tarvos.h"
#include "utility/ErrorLog.h"

namespace {
std::unique_ptr<CKeyScanner> s_pScanner;  // written only by KS_Init and KS_Exit

CKeyScanner* Current() {
  if (s_pScanner) return s_pScanner.get();
  return g_pEngine && g_pEngine->IsStarted() ? g_pEngine->GetKeyScanner() : nullptr;
}

CKeyScanner* Scanner(const char* sFunction) {
  CKeyScanner* pScanner = Current();
  if (pScanner == nullptr) SetLastError(tstring(sFunction) + ": the keyword scanner is not started");
  return pScanner;
}
}  // namespace

extern "C" TARVOS_API int KS_Init(const char* sDataPath, int nEncoding) {
  return ApiGuard(__func__, 0, [=](const char* sFn) {
    if (!ArgGiven(sFn, "sDataPath", sDataPath)) return 0;
    std::unique_ptr<CKeyScanner> pScanner(new CKeyScanner);
    int nResult = pScanner->Init(sDataPath, nEncoding);
    if (nResult != 1) SetLastError(tstring("KS_Init: ") + sDataPath + pScanner->GetLastErrorMsg());
    s_pScanner = std::move(pScanner);
    return nResult;
  });
}

extern "C" TARVOS_API void KS_Exit(void) {
  ApiGuardVoid(__func__, [](const char*) { s_pScanner.reset(); });
}

extern "C" TARVOS_API const char* KS_ScanDetail(const char* sText, int nMode, int nHandle) {
  return ApiGuard<const char*>(__func__, nullptr, [=](const char* sFn) -> const char* {
    CKeyScanner* pScanner = Scanner(sFn);
    if (!pScanner || !ArgGiven(sFn, "sText", sText)) return nullptr;
    return ThreadCopy(kSlotKeyScan, pScanner->ScanDetail(sText, nMode, nHandle));
  });
}

extern "C" TARVOS_API int KS_ImportUserDict(const char* sFilename, bool bAbbrevNeeded, bool bOverwrite, int nHandle) {
  return ApiGuard(__func__, 0, [=](const char* sFn) {
    CKeyScanner* pScanner = Scanner(sFn);
    if (!pScanner || !ArgGiven(sFn, "sFilename", sFilename)) return 0;
    return pScanner->ImportUserDict(sFilename, bAbbrevNeeded, bOverwrite, nHandle);
  });
}

extern "C" TARVOS_API int KS_DeleteUserDict(const char* sFilename, int nHandle) {
  return ApiGuard(__func__, -1, [=](const char* sFn) {
    CKeyScanner* pScanner = Scanner(sFn);
    if (!pScanner || !ArgGiven(sFn, "sFilename", sFilename)) return -1;
    return pScanner->DeleteUserDict(sFilename, nHandle);
  });
}

extern "C" TARVOS_API int KS_ExportKeyDict(const char* sFilename, int nHandle) {
  return ApiGuard(__func__, -1, [=](const char* sFn) {
    CKeyScanner* pScanner = Scanner(sFn);
    if (!pScanner || !ArgGiven(sFn, "sFilename", sFilename)) return -1;
    return pScanner->ExportKeyDict(sFilename, nHandle);
  });
}

extern "C" TARVOS_API const char* KS_GetLastErrorMsg(void) {
  return ApiGuard(__func__, "", [](const char*) {
    CKeyScanner* pScanner = Current();
    return ThreadCopy(kSlotKeyScanError, pScanner ? pScanner->GetLastErrorMsg() : GetLastError());
  });
}
