// The scanning calls of the rule engine: numbered rule-set instances that
// scan texts and documents, with their own table, mutex and result buffers.
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <mutex>
#include <vector>

#include "api/ApiGuard.h"
#include "rules/ZYG.h"
#include "tarvos.h"
#include "utility/BufferManager.h"
#include "utility/ErrorLog.h"
#include "utility/lexical/Lexical.h"

namespace {

std::mutex g_mutexZYG;                         // guards everything below
bool g_bZYGInit = false;                       // between ZYG_Init and ZYG_Exit
tstring g_sZYGDataPath;                        // data directory + "/Data/"
std::vector<std::unique_ptr<CZYG>> g_vecZYG;   // handle -> rule set; deleted slots stay empty
std::unique_ptr<CBufferManager> g_pZYGBuffer;  // every text returned until ZYG_Exit

CZYG* GetZYGWorker(int handle) {
  {
    std::lock_guard<std::mutex> lock(g_mutexZYG);
    if (g_bZYGInit && handle >= 0 && (size_t)handle < g_vecZYG.size() && g_vecZYG[handle])
      return g_vecZYG[handle].get();
  }
  SetHandleError("GetZYGWorker  argument(handle %d) is invalid!", handle);
  return nullptr;
}

const char* KeepText(const tstring& sText) {
  std::lock_guard<std::mutex> lock(g_mutexZYG);
  return g_pZYGBuffer ? g_pZYGBuffer->Keep(sText) : "";
}

// The scanning of whole documents and text files comes with the extraction
// agent; until then each call names what is missing.
const char* ScanMissing(const char* sFn, const char* sArgument, const char* sValue, int handle) {
  if (GetZYGWorker(handle) == nullptr || !ArgGiven(sFn, sArgument, sValue)) return "";
  ServiceMissing("the extraction agent (CZYGAgent)");
  return "";
}

tstring WorkingDirectory() {
  char sBuffer[1000];
  return getcwd(sBuffer, sizeof(sBuffer)) ? tstring(sBuffer) : tstring();
}

}  // namespace

extern "C" TARVOS_API int ZYG_Init(const char* sInitDirPath) {
  return ApiGuard(__func__, -1, [=](const char*) {
    tstring sDir = sInitDirPath && *sInitDirPath ? tstring(sInitDirPath) : WorkingDirectory();
    if (QUENDA_Init(sDir.c_str()) != 1) {
      SetLastError("Error Init MORVEL from " + sDir);
      return -1;
    }
    {
      std::lock_guard<std::mutex> lock(g_mutexZYG);
      g_vecZYG.clear();
      g_pZYGBuffer.reset(new CBufferManager);
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
    std::lock_guard<std::mutex> lock(g_mutexZYG);
    g_vecZYG.clear();
    g_pZYGBuffer.reset();
    g_bZYGInit = false;
  });
}

extern "C" TARVOS_API int ZYG_NewInstance(int nDocType) {
  return ApiGuard(__func__, -1, [=](const char*) {
    std::lock_guard<std::mutex> lock(g_mutexZYG);
    if (!g_bZYGInit) {
      SetLastError("Not Init, no operation!");
      return -1;
    }
    g_vecZYG.emplace_back(new CZYG(g_sZYGDataPath.c_str(), nDocType));
    return (int)g_vecZYG.size() - 1;
  });
}

extern "C" TARVOS_API int ZYG_DeleteInstance(int handle) {
  return ApiGuard(__func__, 0, [=](const char*) {
    std::unique_ptr<CZYG> pDoomed;
    std::lock_guard<std::mutex> lock(g_mutexZYG);
    if (handle < 0 || (size_t)handle >= g_vecZYG.size()) {
      SetHandleError("DC_DeleteInstance  argument(handle %d) is invalid!", handle);
      return 0;
    }
    pDoomed = std::move(g_vecZYG[handle]);
    return 1;
  });
}

extern "C" TARVOS_API int ZYG_ImportRule(const char* sXMLFile, bool bOverwrite, int handle) {
  return ApiGuard(__func__, 0, [=](const char* sFn) {
    CZYG* pZYG = GetZYGWorker(handle);
    if (!pZYG || !ArgGiven(sFn, "sXMLFile", sXMLFile)) return 0;
    return pZYG->ImportRule(sXMLFile, bOverwrite);
  });
}

extern "C" TARVOS_API const char* ZYG_ScanText(const char* sText, int nParaId, int handle) {
  return ApiGuard<const char*>(__func__, "", [=](const char* sFn) -> const char* {
    CZYG* pZYG = GetZYGWorker(handle);
    if (!pZYG || !ArgGiven(sFn, "sText", sText)) return "";
    tstring sResult;
    return pZYG->ScanText(sText, nParaId, sResult) ? KeepText(sResult) : "";
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
