// The scanning calls of the rule engine: numbered rule-set instances that
// scan texts and documents, with their own table, mutex and texts. Each
// instance keeps the latest text of each call.
#include <cstdio>
#include <memory>
#include <mutex>

#include "api/ApiGuard.h"
#include "rules/ZYG.h"
#include "tarvos.h"
#include "utility/BufferManager.h"
#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"
#include "utility/HandleTable.h"
#include "utility/lexical/Lexical.h"

namespace {

// The calls of a scanning instance that return text, one slot each.
enum EScanText { kScanText };

struct _tScanInstance {
  explicit _tScanInstance(CZYG* pRules) : pZYG(pRules) {}
  std::unique_ptr<CZYG> pZYG;  // the rule set of its document type
  CBufferManager texts;        // its texts, one per call
};

std::mutex g_mutexZYG;    // guards the two below
bool g_bZYGInit = false;  // between ZYG_Init and ZYG_Exit
tstring g_sZYGDataPath;   // data directory + "/Data/"
CHandleTable<_tScanInstance> g_instancesZYG;

_tScanInstance* GetZYGWorker(int handle) {
  bool bInit;
  {
    std::lock_guard<std::mutex> lock(g_mutexZYG);
    bInit = g_bZYGInit;
  }
  _tScanInstance* pInstance = bInit ? g_instancesZYG.Get(handle) : nullptr;
  if (pInstance == nullptr) SetHandleError("GetZYGWorker  argument(handle %d) is invalid!", handle);
  return pInstance;
}

// The scanning of whole documents and text files comes with the extraction
// agent; until then each call names what is missing.
const char* ScanMissing(const char* sFn, const char* sArgument, const char* sValue, int handle) {
  if (GetZYGWorker(handle) == nullptr || !ArgGiven(sFn, sArgument, sValue)) return "";
  ServiceMissing("the extraction agent (CZYGAgent)");
  return "";
}

}  // namespace

extern "C" TARVOS_API int ZYG_Init(const char* sInitDirPath) {
  return ApiGuard(__func__, -1, [=](const char*) {
    tstring sDir = sInitDirPath && *sInitDirPath ? tstring(sInitDirPath) : CurrentDirectory();
    if (QUENDA_Init(sDir.c_str()) != 1) {
      SetLastError("Error Init MORVEL from " + sDir);
      return -1;
    }
    g_instancesZYG.Clear();
    {
      std::lock_guard<std::mutex> lock(g_mutexZYG);
      g_sZYGDataPath = sDir + "/Data/";
      g_bZYGInit = true;
    }
    ZYG_NewInstance(0);
    return 1;
  });
}

extern "C" TARVOS_API void ZYG_Exit(void) {
  ApiGuardVoid(__func__, [](const char*) {
    QUENDA_Exit();
    g_instancesZYG.Clear();
    std::lock_guard<std::mutex> lock(g_mutexZYG);
    g_bZYGInit = false;
  });
}

extern "C" TARVOS_API int ZYG_NewInstance(int nDocType) {
  return ApiGuard(__func__, -1, [=](const char*) {
    tstring sDataPath;
    {
      std::lock_guard<std::mutex> lock(g_mutexZYG);
      if (!g_bZYGInit) {
        SetLastError("Not Init, no operation!");
        return -1;
      }
      sDataPath = g_sZYGDataPath;
    }
    return g_instancesZYG.Add(std::unique_ptr<_tScanInstance>(new _tScanInstance(new CZYG(sDataPath.c_str(), nDocType))));
  });
}

extern "C" TARVOS_API int ZYG_DeleteInstance(int handle) {
  return ApiGuard(__func__, 0, [=](const char*) {
    if (g_instancesZYG.Remove(handle)) return 1;
    SetHandleError("DC_DeleteInstance  argument(handle %d) is invalid!", handle);
    return 0;
  });
}

extern "C" TARVOS_API int ZYG_ImportRule(const char* sXMLFile, bool bOverwrite, int handle) {
  return ApiGuard(__func__, 0, [=](const char* sFn) {
    _tScanInstance* pInstance = GetZYGWorker(handle);
    if (!pInstance || !ArgGiven(sFn, "sXMLFile", sXMLFile)) return 0;
    return pInstance->pZYG->ImportRule(sXMLFile, bOverwrite);
  });
}

extern "C" TARVOS_API const char* ZYG_ScanText(const char* sText, int nParaId, int handle) {
  return ApiGuard<const char*>(__func__, "", [=](const char* sFn) -> const char* {
    _tScanInstance* pInstance = GetZYGWorker(handle);
    if (!pInstance || !ArgGiven(sFn, "sText", sText)) return "";
    tstring sResult;
    return pInstance->pZYG->ScanText(sText, nParaId, sResult) ? pInstance->texts.Keep(kScanText, sResult) : "";
  });
}

extern "C" TARVOS_API const char* ZYG_ScanDocXML(const char* sDocXML, bool, int handle) {
  return ApiGuard<const char*>(__func__, "", [=](const char* sFn) {
    return ScanMissing(sFn, "sDocXML", sDocXML, handle);
  });
}

extern "C" TARVOS_API const char* ZYG_ScanDoc(const char* sDocFile, int, bool, int handle) {
  return ApiGuard<const char*>(__func__, "", [=](const char* sFn) {
    return ScanMissing(sFn, "sDocFile", sDocFile, handle);
  });
}

extern "C" TARVOS_API const char* ZYG_ScanTextFile(const char* sTextFile, bool, int handle) {
  return ApiGuard<const char*>(__func__, "", [=](const char* sFn) {
    return ScanMissing(sFn, "sTextFile", sTextFile, handle);
  });
}

extern "C" TARVOS_API const char* ZYG_GetLastErrorMsg(void) {
  return ApiGuard<const char*>(__func__, "", [](const char*) {
    return ThreadCopy(kSlotZYGLastError, GetLastError());
  });
}
