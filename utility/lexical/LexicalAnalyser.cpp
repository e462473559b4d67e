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
  std::shared_ptr<const CUserDictionary> pOld = UserDict();
  int nImported = 0, nRefused = 0;
  std::shared_ptr<const CUserDictionary> pNew(
      CUserDictionary::Import(bOverwrite ? nullptr : pOld.get(), sFilename, nImported, nRefused));
  if (!pNew) return 0;
  std::lock_guard<std::mutex> lock(m_mutexUser);
  m_pUserDict = pNew;
  return nImported;
}

int CLexicalAnalyser::ImportUserText(const tstring& sText, bool bOverwrite) {
  std::shared_ptr<const CUserDictionary> pOld = UserDict();
  std::istringstream in(sText);
  int nImported = 0, nRefused = 0;
  std::shared_ptr<const CUserDictionary> pNew(
      CUserDictionary::ImportStream(bOverwrite ? nullptr : pOld.get(), in, "(user words)", nImported, nRefused));
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
