#include "utility/lexical/Lexical.h"

#include <mutex>

#include "utility/ErrorLog.h"

namespace {
std::mutex g_mutexAnalyser;  // guards the pointer below
std::shared_ptr<CLexicalAnalyser> g_pAnalyser;
}  // namespace

int QUENDA_Init(const char* sDataPath) {
  if (sDataPath == nullptr) return 0;
  {
    std::lock_guard<std::mutex> lock(g_mutexAnalyser);
    if (g_pAnalyser && g_pAnalyser->GetDataPath() == sDataPath) return 1;
  }
  auto pAnalyser = std::make_shared<CLexicalAnalyser>();
  if (!pAnalyser->Load(sDataPath)) return 0;
  std::lock_guard<std::mutex> lock(g_mutexAnalyser);
  g_pAnalyser = pAnalyser;
  return 1;
}

void QUENDA_Exit() {
  std::lock_guard<std::mutex> lock(g_mutexAnalyser);
  g_pAnalyser.reset();
}

std::shared_ptr<CLexicalAnalyser> QUENDA_Analyser() {
  std::lock_guard<std::mutex> lock(g_mutexAnalyser);
  return g_pAnalyser;
}

int QUENDA_ImportUserDict(const char* sFilename, bool bOverwrite) {
  std::shared_ptr<CLexicalAnalyser> pAnalyser = QUENDA_Analyser();
  if (!pAnalyser) {
    SetLastError("The lexical analyser is not started");
    return 0;
  }
  return pAnalyser->ImportUserDict(sFilename, bOverwrite);
}

int QUENDA_ImportUserText(const tstring& sText, bool bOverwrite) {
  std::shared_ptr<CLexicalAnalyser> pAnalyser = QUENDA_Analyser();
  if (!pAnalyser) {
    SetLastError("The lexical analyser is not started");
    return 0;
  }
  return pAnalyser->ImportUserText(sText, bOverwrite);
}

tstring QUENDA_ParagraphProcess(const tstring& sText, bool bTags) {
  std::shared_ptr<CLexicalAnalyser> pAnalyser = QUENDA_Analyser();
  return pAnalyser ? pAnalyser->ParagraphProcess(sText, bTags) : tstring();
}
