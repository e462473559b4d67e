// Start-up and shut-down of the engine, the dictionary and catalogue import
// calls, the last-error texts and what the engine tells about itself.
#include "api/ApiGuard.h"
#include "api/Globals.h"
#include "checker/ID2Message.h"
#include "keyscan/KeyScanner.h"
#include "tarvos.h"
#include "utility/CodePage.h"
#include "utility/ErrorLog.h"
#include "utility/JsonText.h"
#include "utility/QueryExpand.h"
#include "utility/SpellChecker.h"
#include "utility/lexical/LexicalAnalyser.h"

namespace {

// A service of the started (or partly started) engine for a call that
// changes it; null with "<sName> not init!" when there is none.
template <class T>
T* ServiceFor(T* (CEngine::*fnGet)(), const char* sName) {
  T* pService = g_pEngine ? (g_pEngine.get()->*fnGet)() : nullptr;
  if (pService == nullptr) SetLastError(tstring(sName) + " not init!");
  return pService;
}

}  // namespace

extern "C" TARVOS_API int TARVOS_Init(const char* sInitDirPath) {
  return ApiGuard(__func__, -1, [sInitDirPath](const char*) {
    g_pEngine.reset();
    g_pEngine.reset(new CEngine);
    return g_pEngine->Start(sInitDirPath);
  });
}

extern "C" TARVOS_API void TARVOS_Exit(void) {
  ApiGuardVoid(__func__, [](const char*) { g_pEngine.reset(); });
}

extern "C" TARVOS_API int TARVOS_ImportErrorMsg(const char* sErrorListFile) {
  return ApiGuard(__func__, 0, [sErrorListFile](const char* sFn) {
    CID2Message* pMessages = ServiceFor(&CEngine::GetMessages, "g_pError2Message");
    if (!pMessages || !ArgGiven(sFn, "sErrorListFile", sErrorListFile)) return 0;
    auto lock = g_pEngine->WriteLock();
    if (pMessages->Import(GetAnsiFilename(sErrorListFile).c_str()) < 0) return -1;
    // Saved beside the parent of the working directory that initialisation
    // saw, not into the data directory: hosts rely on this location.
    return pMessages->Save((g_pEngine->GetDefaultDir() + "/" + "../Data/Error/ErrorMessage.dat").c_str());
  });
}

extern "C" TARVOS_API int TARVOS_ImportSimDict(const char* sSimDictFile) {
  return ApiGuard(__func__, 0, [sSimDictFile](const char* sFn) {
    CQueryExpand* pDict = ServiceFor(&CEngine::GetSimDict, "g_pSimDict");
    if (!pDict || !ArgGiven(sFn, "sSimDictFile", sSimDictFile)) return 0;
    auto lock = g_pEngine->WriteLock();
    return pDict->SimDictGenerate(GetAnsiFilename(sSimDictFile).c_str(), nullptr);
  });
}

extern "C" TARVOS_API int TARVOS_ImportSpellErrorDict(const char* sSpellErrorDict) {
  return ApiGuard(__func__, 0, [sSpellErrorDict](const char* sFn) {
    CQueryExpand* pDict = ServiceFor(&CEngine::GetSpellDict, "g_pSpellCheckDict");
    CLexicalAnalyser* pAnalyser = pDict ? ServiceFor(&CEngine::GetAnalyser, "The lexical analyser") : nullptr;
    if (!pAnalyser || !ArgGiven(sFn, "sSpellErrorDict", sSpellErrorDict)) return 0;
    auto lock = g_pEngine->WriteLock();
    // The dictionary's own result is not reported: the segmenter's count is.
    pDict->SimDictGenerate(GetAnsiFilename(sSpellErrorDict).c_str(), nullptr);
    return pAnalyser->ImportUserDict((pDict->GetFilename() + "_userdict.txt").c_str(), false);
  });
}

extern "C" TARVOS_API int TARVOS_ImportUserDict(const char* sUserDict) {
  return ApiGuard(__func__, 0, [sUserDict](const char* sFn) {
    CLexicalAnalyser* pAnalyser = ServiceFor(&CEngine::GetAnalyser, "The lexical analyser");
    if (!pAnalyser || !ArgGiven(sFn, "sUserDict", sUserDict)) return 0;
    auto lock = g_pEngine->WriteLock();
    return pAnalyser->ImportUserDict(GetAnsiFilename(sUserDict).c_str(), false);
  });
}

extern "C" TARVOS_API int TARVOS_ImportFieldDict(const char* sFiledDictFile, bool bPinyinAbbrevNeeded,
                                                 bool bOverwrite) {
  return ApiGuard(__func__, 0, [=](const char* sFn) {
    CKeyScanner* pScanner = ServiceFor(&CEngine::GetKeyScanner, "The keyword scanner (FilterCheck)");
    if (!pScanner || !ArgGiven(sFn, "sFiledDictFile", sFiledDictFile)) return 0;
    auto lock = g_pEngine->WriteLock();
    return pScanner->ImportUserDict(GetAnsiFilename(sFiledDictFile).c_str(), bPinyinAbbrevNeeded, bOverwrite, 0);
  });
}

extern "C" TARVOS_API const char* TARVOS_GetLastErrorMsg(void) {
  return ApiGuard(__func__, "", [](const char*) { return ThreadCopy(kSlotLastError, GetLastError()); });
}

extern "C" TARVOS_API const char* TARVOS_GetThreadLastErrorMsg(void) {
  return ApiGuard(__func__, "", [](const char*) { return ThreadCopy(kSlotThreadLastError, GetThreadLastError()); });
}

extern "C" TARVOS_API const char* TARVOS_GetEngineInfo(void) {
  return ApiGuard<const char*>(__func__, nullptr, [](const char*) -> const char* {
    if (!g_pEngine || !g_pEngine->IsStarted()) {
      SetLastError("TARVOS not init!");
      return nullptr;
    }
    auto lock = g_pEngine->ReadLock();
    return ThreadCopy(kSlotEngineInfo, g_pEngine->InfoJson());
  });
}

extern "C" TARVOS_API const char* TARVOS_GetVersion(void) { return TARVOS_VERSION; }

extern "C" TARVOS_API const char* TARVOS_SegmentText(const char* sText, bool bTags) {
  return ApiGuard<const char*>(__func__, nullptr, [=](const char* sFn) -> const char* {
    CLexicalAnalyser* pAnalyser = ServiceFor(&CEngine::GetAnalyser, "The lexical analyser");
    if (!pAnalyser || !ArgGiven(sFn, "sText", sText)) return nullptr;
    auto lock = g_pEngine->ReadLock();
    return ThreadCopy(kSlotSegment, pAnalyser->ParagraphProcess(sText, bTags));
  });
}

extern "C" TARVOS_API const char* TARVOS_CheckSpelling(const char* sText) {
  return ApiGuard<const char*>(__func__, nullptr, [=](const char* sFn) -> const char* {
    const CSpellChecker* pChecker = ServiceFor(&CEngine::GetSpellChecker, "The spelling check");
    if (!pChecker || !ArgGiven(sFn, "sText", sText)) return nullptr;
    auto lock = g_pEngine->ReadLock();
    std::vector<_tSpellFinding> vecFindings;
    pChecker->Check(sText, vecFindings);
    Json::Value root(Json::arrayValue);
    for (const _tSpellFinding& finding : vecFindings) {
      Json::Value item;
      item["offset"] = (Json::UInt64)finding.offset;
      item["org"] = finding.sWrong;
      item["revise"] = finding.sRight;
      root.append(item);
    }
    return ThreadCopy(kSlotSpelling, JsonText(root));
  });
}
