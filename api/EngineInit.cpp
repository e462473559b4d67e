// Start-up and shut-down of the shared services, the dictionary import calls
// and the last-error text.
#include <unistd.h>

#include <new>

#include "api/ApiGuard.h"
#include "api/Globals.h"
#include "checker/DocFormatCheck.h"
#include "checker/ID2Message.h"
#include "checker/ReportChecker.h"
#include "keyscan/KeyScanner.h"
#include "rules/ZYGManager.h"
#include "tarvos.h"
#include "utility/CodePage.h"
#include "utility/CodeTrans.h"
#include "utility/CountryDetect.h"
#include "utility/ErrorLog.h"
#include "utility/lexical/Lexical.h"
#include "utility/Num2FontSize.h"
#include "utility/QueryExpand.h"

namespace {

tstring ReadWorkingDirectory() {
  char sBuffer[1000];
  return getcwd(sBuffer, sizeof(sBuffer)) ? tstring(sBuffer) : tstring();
}

// NULL or "" is the working directory; a path starting with "." is taken
// relative to it; anything else is used as given. No slash is added or removed.
tstring ResolveDataDir(const char* sInitDirPath) {
  if (sInitDirPath == nullptr || *sInitDirPath == '\0') return g_sDefaultDir;
  if (sInitDirPath[0] != '.') return sInitDirPath;
  return g_sDefaultDir + "/" + sInitDirPath;
}

// Starts the format checker and its font-size table. 1, or -5 / -7.
int StartFormatCheck(const tstring& sDir) {
  g_pDocFormatChecker.reset(new (std::nothrow) CDocFormatCheck(sDir.c_str()));
  if (!g_pDocFormatChecker) return -5;
  g_pNum2FontSize.reset(new CNum2FontSize);
  // The doubled slash after the data directory is kept: callers compare paths.
  if (g_pNum2FontSize->Import((sDir + "/" + "/Data/Font/FontSize.dat").c_str()) < 1) return -7;
  return 1;
}

// Services that may fail without stopping the engine; each failure leaves
// its reason as the last error.
void StartOptionalServices(const tstring& sDir) {
  const tstring sData = sDir + "/Data";
  g_pSimDict.reset(new CQueryExpand(sData.c_str(), nullptr));
  g_pSpellCheckDict.reset(new CQueryExpand(sData.c_str(), "SpellError"));
  if (g_fpKG) fclose(g_fpKG);
  const tstring sKG = sData + "/KnowGraph.txt";
  g_fpKG = fopen(sKG.c_str(), "at+");
  if (g_fpKG == nullptr) SetLastError("Fail writing file " + sKG);
  const tstring sModel = sData + "/CodeTrans.model";
  if (CodeTrans_Initialize(sModel.c_str()) < 0)
    SetLastError("Fail read encoding recognition file " + sModel);
  if (g_bCountryDetect && CountryDetect_Init(sDir.c_str()) == 0)
    SetLastError("Fail CountryDetect_Init ");
}

int InitEngine(const char* sInitDirPath) {
  g_nEncodeType = 1;
  g_sDefaultDir = ReadWorkingDirectory();
  g_bTARVOSInit = 0;
  ResetSwitches();
  const tstring sDir = ResolveDataDir(sInitDirPath);
  g_sDataDir = sDir;
  LoadZYGConfigre((sDir + "/Data/ZYG-Configure.json").c_str());

  if (ZYG_Init(sDir.c_str()) != 1) {
    SetLastError("Error Init ZYG from " + sDir);
    return -1;
  }
  g_pZYGManager.reset(new CZYGManager(sDir.c_str()));
  if (g_pZYGManager->Load() != 1) SetLastError("Failed while g_pZYGManager->Load " + sDir);
  if (g_bFilteringCheck && KS_Init(sDir.c_str(), 1) != 1)
    SetLastError("Error Init KeyScanner from " + sDir + KS_GetLastErrorMsg());

  g_pDocFormatChecker.reset();
  if (g_bFormatCheck) {
    int nStatus = StartFormatCheck(sDir);
    if (nStatus != 1) return nStatus;
  }
  g_pError2Message.reset(new CID2Message);
  if (g_pError2Message->Load((sDir + "/" + "/Data/Error/ErrorMessage.dat").c_str()) != 1) return -6;

  StartOptionalServices(sDir);
  g_bTARVOSInit = 1;
  TARVOS_NewInstance();
  return 1;
}

void ExitEngine() {
  ZYG_Exit();
  if (g_bFilteringCheck) KS_Exit();
  g_pZYGManager.reset();
  size_t nCount;
  {
    pthread_mutex_lock(&g_mutexTARVOS);
    nCount = g_vecReportChecker.size();
    pthread_mutex_unlock(&g_mutexTARVOS);
  }
  for (size_t i = 0; i < nCount; ++i) TARVOS_DeleteInstance((int)i);
  pthread_mutex_lock(&g_mutexTARVOS);
  g_vecReportChecker.clear();
  pthread_mutex_unlock(&g_mutexTARVOS);
  g_pDocFormatChecker.reset();
  g_pError2Message.reset();
  g_pNum2FontSize.reset();
  g_pSimDict.reset();
  g_pSpellCheckDict.reset();
  if (g_fpKG) fclose(g_fpKG);
  g_fpKG = nullptr;
  CodeTrans_Destroy();
  if (g_bCountryDetect) CountryDetect_Exit();
  g_bTARVOSInit = 0;
}

}  // namespace

extern "C" TARVOS_API int TARVOS_Init(const char* sInitDirPath) {
  return ApiGuard(__func__, -1, [sInitDirPath](const char*) { return InitEngine(sInitDirPath); });
}

extern "C" TARVOS_API void TARVOS_Exit(void) {
  ApiGuardVoid(__func__, [](const char*) { ExitEngine(); });
}

extern "C" TARVOS_API int TARVOS_ImportErrorMsg(const char* sErrorListFile) {
  return ApiGuard(__func__, 0, [sErrorListFile](const char* sFn) {
    if (!g_pError2Message) {
      SetLastError("g_pError2Message not init!");
      return 0;
    }
    if (!ArgGiven(sFn, "sErrorListFile", sErrorListFile)) return 0;
    g_pError2Message->Import(sErrorListFile);
    // Saved beside the parent of the working directory that initialisation
    // saw, not into the data directory: hosts rely on this location.
    return g_pError2Message->Save((g_sDefaultDir + "/" + "../Data/Error/ErrorMessage.dat").c_str());
  });
}

extern "C" TARVOS_API int TARVOS_ImportSimDict(const char* sSimDictFile) {
  return ApiGuard(__func__, 0, [sSimDictFile](const char* sFn) {
    if (!g_pSimDict) {
      SetLastError("g_pSimDict not init!");
      return 0;
    }
    if (!ArgGiven(sFn, "sSimDictFile", sSimDictFile)) return 0;
    return g_pSimDict->SimDictGenerate(GetAnsiFilename(sSimDictFile).c_str(), nullptr);
  });
}

extern "C" TARVOS_API int TARVOS_ImportSpellErrorDict(const char* sSpellErrorDict) {
  return ApiGuard(__func__, 0, [sSpellErrorDict](const char* sFn) {
    if (!g_pSpellCheckDict) {
      SetLastError("g_pSpellCheckDict not init!");
      return 0;
    }
    if (!ArgGiven(sFn, "sSpellErrorDict", sSpellErrorDict)) return 0;
    // The dictionary's own result is not reported: the segmenter's count is.
    g_pSpellCheckDict->SimDictGenerate(GetAnsiFilename(sSpellErrorDict).c_str(), nullptr);
    tstring sUserDict = g_pSpellCheckDict->GetFilename() + "_userdict.txt";
    return QUENDA_ImportUserDict(sUserDict.c_str(), false);
  });
}

extern "C" TARVOS_API int TARVOS_ImportUserDict(const char* sUserDict) {
  return ApiGuard(__func__, 0, [sUserDict](const char* sFn) {
    if (!ArgGiven(sFn, "sUserDict", sUserDict)) return 0;
    return QUENDA_ImportUserDict(GetAnsiFilename(sUserDict).c_str(), false);
  });
}

extern "C" TARVOS_API int TARVOS_ImportFieldDict(const char* sFiledDictFile,
                                                 bool bPinyinAbbrevNeeded, bool bOverwrite) {
  return ApiGuard(__func__, 0, [=](const char* sFn) {
    if (!ArgGiven(sFn, "sFiledDictFile", sFiledDictFile)) return 0;
    return KS_ImportUserDict(GetAnsiFilename(sFiledDictFile).c_str(), bPinyinAbbrevNeeded,
                             bOverwrite, 0);
  });
}

extern "C" TARVOS_API const char* TARVOS_GetLastErrorMsg(void) {
  return ApiGuard(__func__, "", [](const char*) { return ThreadCopy(kSlotLastError, GetLastError()); });
}
