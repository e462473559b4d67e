#include "utility/lexical/LexicalAnalyser.h"

#include <sstream>

#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"
#include "utility/lexical/UserDictionary.h"

bool CLexicalAnalyser::Load(const tstring& sDataPath) {
  if (!IsReadableDirectory(sDataPath)) return false;
  const tstring sFolder = sDataPath + "/Data/Lexicon";
  if (!m_lexicon.Load(sFolder) || !m_hmm.Load(sFolder + "/hmm.dat")) return false;
  m_pSegmenter.reset(new CSegmenter(&m_lexicon, &m_hmm));
  m_sDataPath = sDataPath;
  return true;
}

std::shared_ptr<const CUserDictionary> CLexicalAnalyser::UserDict() const {
  std::lock_guard<std::mutex> lock(m_mutexUser);
  return m_pUserDict;
}

int CLexicalAnalyser::ImportUserDict(const char* sFilename, bool bOverwrite) {
  if (sFilename == nullptr) {
    SetLastError("ImportUserDict: file name is NULL");
    return 0;
  }
  return Import(bOverwrite, [&](const CUserDictionary* pBase, int& nImported, int& nRefused) {
    return CUserDictionary::Import(pBase, sFilename, nImported, nRefused);
  });
}

int CLexicalAnalyser::ImportUserText(const tstring& sText, bool bOverwrite) {
  return Import(bOverwrite, [&](const CUserDictionary* pBase, int& nImported, int& nRefused) {
    std::istringstream in(sText);
    return CUserDictionary::ImportStream(pBase, in, "(user words)", nImported, nRefused);
  });
}

int CLexicalAnalyser::Import(bool bOverwrite, const std::function<std::unique_ptr<CUserDictionary>(
                                                   const CUserDictionary*, int&, int&)>& fnBuild) {
  // One import at a time, so that two imports never both build on the same
  // old dictionary and the words of one get lost.
  std::lock_guard<std::mutex> importing(m_mutexImport);
  std::shared_ptr<const CUserDictionary> pOld = UserDict();
  int nImported = 0, nRefused = 0;
  std::shared_ptr<const CUserDictionary> pNew(fnBuild(bOverwrite ? nullptr : pOld.get(), nImported, nRefused));
  if (!pNew) return 0;
  std::lock_guard<std::mutex> lock(m_mutexUser);
  m_pUserDict = pNew;
  return nImported;
}

void CLexicalAnalyser::Segment(const tstring& sText, std::vector<_tToken>& vecTokens) const {
  vecTokens.clear();
  if (!m_pSegmenter) return;
  std::shared_ptr<const CUserDictionary> pUser = UserDict();
  m_pSegmenter->Segment(sText, pUser.get(), vecTokens);
}

tstring CLexicalAnalyser::ParagraphProcess(const tstring& sText, bool bTags) const {
  std::vector<_tToken> vecTokens;
  Segment(sText, vecTokens);
  return CSegmenter::Format(sText, vecTokens, bTags);
}

bool CLexicalAnalyser::IsUserWord(const tstring& sWord) const {
  std::shared_ptr<const CUserDictionary> pUser = UserDict();
  return pUser && pUser->GetDict().GetId(sWord) >= 0;
}
