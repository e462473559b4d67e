#include "utility/lexical/Lexical.h"

#include <memory>
#include <mutex>

#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"
#include "utility/lexical/HmmModel.h"
#include "utility/lexical/Lexicon.h"
#include "utility/lexical/UserDictionary.h"

namespace {

// Everything one start-up loads; shared so that a running call keeps what it
// started with even if the analyser stops meanwhile.
struct _tAnalyser {
  CLexicon lexicon;
  CHmmModel hmm;
  std::unique_ptr<CSegmenter> segmenter;
  tstring dataPath;
};

std::mutex g_mutexAnalyser;  // guards the two pointers below
std::shared_ptr<const _tAnalyser> g_pAnalyser;
std::shared_ptr<const CUserDictionary> g_pUserDict;

void Snapshot(std::shared_ptr<const _tAnalyser>& pAnalyser, std::shared_ptr<const CUserDictionary>& pUser) {
  std::lock_guard<std::mutex> lock(g_mutexAnalyser);
  pAnalyser = g_pAnalyser;
  pUser = g_pUserDict;
}

}  // namespace

int QUENDA_Init(const char* sDataPath) {
  if (sDataPath == nullptr || !IsReadableDirectory(sDataPath)) return 0;
  {
    std::lock_guard<std::mutex> lock(g_mutexAnalyser);
    if (g_pAnalyser && g_pAnalyser->dataPath == sDataPath) return 1;
  }
  auto pAnalyser = std::make_shared<_tAnalyser>();
  const tstring sFolder = tstring(sDataPath) + "/Data/Lexicon";
  if (!pAnalyser->lexicon.Load(sFolder) || !pAnalyser->hmm.Load(sFolder + "/hmm.dat")) return 0;
  pAnalyser->segmenter.reset(new CSegmenter(&pAnalyser->lexicon, &pAnalyser->hmm));
  pAnalyser->dataPath = sDataPath;
  std::lock_guard<std::mutex> lock(g_mutexAnalyser);
  g_pAnalyser = pAnalyser;
  g_pUserDict.reset();
  return 1;
}

void QUENDA_Exit() {
  std::lock_guard<std::mutex> lock(g_mutexAnalyser);
  g_pAnalyser.reset();
  g_pUserDict.reset();
}

int QUENDA_ImportUserDict(const char* sFilename, bool bOverwrite) {
  if (sFilename == nullptr) {
    SetLastError("QUENDA_ImportUserDict: file name is NULL");
    return 0;
  }
  std::shared_ptr<const _tAnalyser> pAnalyser;
  std::shared_ptr<const CUserDictionary> pUser;
  Snapshot(pAnalyser, pUser);
  if (!pAnalyser) {
    SetLastError("The lexical analyser is not started");
    return 0;
  }
  int nImported = 0, nRefused = 0;
  std::shared_ptr<const CUserDictionary> pNew(
      CUserDictionary::Import(bOverwrite ? nullptr : pUser.get(), sFilename, nImported, nRefused));
  if (!pNew) return 0;
  std::lock_guard<std::mutex> lock(g_mutexAnalyser);
  g_pUserDict = pNew;
  return nImported;
}

bool QUENDA_Segment(const tstring& sText, std::vector<_tToken>& vecTokens) {
  std::shared_ptr<const _tAnalyser> pAnalyser;
  std::shared_ptr<const CUserDictionary> pUser;
  Snapshot(pAnalyser, pUser);
  vecTokens.clear();
  if (!pAnalyser) return false;
  pAnalyser->segmenter->Segment(sText, pUser.get(), vecTokens);
  return true;
}

tstring QUENDA_ParagraphProcess(const tstring& sText, bool bTags) {
  std::vector<_tToken> vecTokens;
  if (!QUENDA_Segment(sText, vecTokens)) return "";
  return CSegmenter::Format(sText, vecTokens, bTags);
}
