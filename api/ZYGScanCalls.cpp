// The scanning calls of the rule engine: numbered rule-set instances that
// scan texts and documents, with their own table, mutex and texts. Each
// instance keeps the latest text of its scans. A scan makes its own agent,
// so scans on different instances run at once.
#include <cstdio>
#include <memory>
#include <mutex>

#include "api/ApiGuard.h"
#include "docx/DocImporter.h"
#include "docx/Document.h"
#include "rules/ZYG.h"
#include "rules/ZYGAgent.h"
#include "tarvos.h"
#include "utility/BufferManager.h"
#include "utility/CodePage.h"
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

// Scans with a fresh agent on the instance's rule set and keeps its text.
template <class F>
const char* Scan(_tScanInstance* pInstance, bool bDebug, F&& fnScan) {
  CZYGAgent agent(pInstance->pZYG.get());
  agent.SetDebug(bDebug);
  return pInstance->texts.Keep(kScanText, fnScan(agent));
}

// Reads a document (a DOCX, a structure file or a text) and scans it whole.
const char* ScanFile(_tScanInstance* pInstance, const char* sFile, int nDocType, bool bDebug) {
  CDocument doc;
  std::shared_ptr<CLexicalAnalyser> pAnalyser = QUENDA_Analyser();
  CDocImporter importer(pAnalyser.get());
  if (importer.ImportFile(doc, sFile, "", nDocType, 0) != 1) return "";
  // Results go beside the document, as those of a check do.
  tstring sBase = doc.m_sPath.empty() ? tstring(sFile) : doc.m_sPath + "/../" + doc.m_sFilename;
  size_t nDot = sBase.find_last_of("./");
  if (doc.m_sPath.empty() && nDot != tstring::npos && sBase[nDot] == '.') sBase.erase(nDot);
  return Scan(pInstance, bDebug, [&](CZYGAgent& agent) {
    agent.ScanDoc(&doc, sBase, 0, bDebug);
    return agent.GetScanText();
  });
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
    std::unique_ptr<CZYG> pZYG(new CZYG(sDataPath.c_str(), nDocType));
    pZYG->Load();  // a type without rules scans with none
    return g_instancesZYG.Add(std::unique_ptr<_tScanInstance>(new _tScanInstance(pZYG.release())));
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
    return Scan(pInstance, false, [&](CZYGAgent& agent) {
      agent.ScanText(sText, (uint32_t)nParaId);
      return agent.GetResult();
    });
  });
}

extern "C" TARVOS_API const char* ZYG_ScanDocXML(const char* sDocXML, bool bDebug, int handle) {
  return ApiGuard<const char*>(__func__, "", [=](const char* sFn) {
    _tScanInstance* pInstance = GetZYGWorker(handle);
    if (!pInstance || !ArgGiven(sFn, "sDocXML", sDocXML)) return "";
    return ScanFile(pInstance, GetAnsiFilename(sDocXML).c_str(), pInstance->pZYG->GetId(), bDebug);
  });
}

extern "C" TARVOS_API const char* ZYG_ScanDoc(const char* sDocFile, int nDocType, bool bDebug, int handle) {
  return ApiGuard<const char*>(__func__, "", [=](const char* sFn) {
    _tScanInstance* pInstance = GetZYGWorker(handle);
    if (!pInstance || !ArgGiven(sFn, "sDocFile", sDocFile)) return "";
    return ScanFile(pInstance, GetAnsiFilename(sDocFile).c_str(), nDocType, bDebug);
  });
}

extern "C" TARVOS_API const char* ZYG_ScanTextFile(const char* sTextFile, bool bDebug, int handle) {
  return ApiGuard<const char*>(__func__, "", [=](const char* sFn) {
    _tScanInstance* pInstance = GetZYGWorker(handle);
    if (!pInstance || !ArgGiven(sFn, "sTextFile", sTextFile)) return "";
    tstring sFile = GetAnsiFilename(sTextFile);
    return Scan(pInstance, bDebug, [&](CZYGAgent& agent) { return agent.ScanTextFile(sFile, 0, bDebug); });
  });
}

extern "C" TARVOS_API const char* ZYG_GetLastErrorMsg(void) {
  return ApiGuard<const char*>(__func__, "", [](const char*) {
    return ThreadCopy(kSlotZYGLastError, GetLastError());
  });
}
