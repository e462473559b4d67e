#include "utility/lexical/UserDictionary.h"

#include <fstream>
#include <sstream>

#include "utility/ErrorLog.h"
#include "utility/lexical/TagSet.h"

namespace {

const size_t kMaxLine = 4096;

tstring Trim(const tstring& s) {
  size_t b = s.find_first_not_of(" \t\r\n");
  if (b == tstring::npos) return "";
  size_t e = s.find_last_not_of(" \t\r\n");
  return s.substr(b, e - b + 1);
}

// Reads one line into word and tag; false with the reason when it is refused.
bool ParseLine(tstring sLine, tstring& sWord, tstring& sTag, tstring& sWhy) {
  if (sLine.size() > kMaxLine) {
    sWhy = "line longer than 4096 bytes";
    return false;
  }
  if (sLine.compare(0, 3, "\xEF\xBB\xBF") == 0) sLine.erase(0, 3);
  sTag = "n";
  size_t nTab = sLine.find('\t');
  tstring sLeft = Trim(nTab == tstring::npos ? sLine : sLine.substr(0, nTab));
  if (nTab != tstring::npos) {
    tstring sRight = Trim(sLine.substr(nTab + 1));
    if (sRight.find_first_of(" \t") != tstring::npos) {
      sWhy = "tag with blanks";
      return false;
    }
    if (!sRight.empty()) sTag = sRight;
  }
  if (!sLeft.empty() && sLeft[0] == '[') {
    size_t nClose = sLeft.find(']');
    if (nClose == tstring::npos) {
      sWhy = "bracket not closed";
      return false;
    }
    tstring sAfter = Trim(sLeft.substr(nClose + 1));
    if (nTab == tstring::npos && !sAfter.empty()) sTag = sAfter;
    sWord = Trim(sLeft.substr(1, nClose - 1));
  } else if (nTab == tstring::npos && sLeft.find_first_of(" \t") != tstring::npos) {
    std::istringstream fields(sLeft);
    tstring sField;
    std::vector<tstring> vecFields;
    while (fields >> sField) vecFields.push_back(sField);
    sWord = vecFields.front();
    sTag = vecFields.back();
  } else {
    sWord = sLeft;
  }
  if (sWord.empty()) {
    sWhy = "no word";
    return false;
  }
  return true;
}

}  // namespace

std::unique_ptr<CUserDictionary> CUserDictionary::Import(const CUserDictionary* pBase, const tstring& sFilename,
                                                         int& nImported, int& nRefused) {
  nImported = nRefused = 0;
  std::ifstream in(sFilename, std::ios::binary);
  if (!in) {
    SetLastError("Fail read file " + sFilename);
    return nullptr;
  }
  return ImportStream(pBase, in, sFilename, nImported, nRefused);
}

std::unique_ptr<CUserDictionary> CUserDictionary::ImportStream(const CUserDictionary* pBase, std::istream& in,
                                                               const tstring& sFilename, int& nImported,
                                                               int& nRefused) {
  nImported = nRefused = 0;
  std::unique_ptr<CUserDictionary> pDict(new CUserDictionary);
  std::vector<const char*> vecTag;
  pDict->m_dict.BeginAdd();
  if (pBase) {
    pBase->m_dict.ForEachWord([&](const tstring& sWord, int nId) {
      int nNew = pDict->m_dict.AddWord(sWord);
      if ((size_t)nNew >= vecTag.size()) vecTag.resize(nNew + 1, nullptr);
      vecTag[nNew] = pBase->m_vecTag[nId];
    });
  }
  tstring sLine;
  for (int nLine = 1; std::getline(in, sLine); ++nLine) {
    tstring sTrimmed = Trim(sLine);
    if (sTrimmed.empty() || sTrimmed[0] == '#') continue;
    tstring sWord, sTag, sWhy;
    if (!ParseLine(sLine, sWord, sTag, sWhy)) {
      WriteError("User dictionary " + sFilename + " line " + std::to_string(nLine) + " not imported: " + sWhy);
      ++nRefused;
      continue;
    }
    int nId = pDict->m_dict.AddWord(sWord);
    if ((size_t)nId >= vecTag.size()) vecTag.resize(nId + 1, nullptr);
    vecTag[nId] = InternTag(sTag);
    ++nImported;
  }
  pDict->m_dict.FinishAdd();
  pDict->m_vecTag = vecTag;
  pDict->m_vecBlank.assign(vecTag.size(), false);
  pDict->m_dict.ForEachWord([&](const tstring& sWord, int nId) {
    pDict->m_vecBlank[nId] = sWord.find_first_of(" \t") != tstring::npos;
  });
  return pDict;
}
