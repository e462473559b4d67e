#include "utility/CountryDetector.h"

#include <algorithm>
#include <fstream>
#include <sstream>

#include "utility/ErrorLog.h"

namespace {
bool IsWordByte(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'); }

std::vector<tstring> Split(const tstring& sText, char cSep) {
  std::vector<tstring> vecParts;
  std::istringstream in(sText);
  tstring sPart;
  while (std::getline(in, sPart, cSep)) vecParts.push_back(sPart);
  return vecParts;
}
}  // namespace

int CCountryDetector::Load(const tstring& sFilename) {
  std::ifstream in(sFilename, std::ios::binary);
  if (!in) {
    SetLastError("Fail read file " + sFilename);
    return 0;
  }
  m_vecShortName.clear();
  m_vecNameCountry.clear();
  m_vecNameLatin.clear();
  m_dictNames.Clear();
  m_dictNames.BeginAdd();
  tstring sLine;
  while (std::getline(in, sLine)) {
    if (!sLine.empty() && sLine.back() == '\r') sLine.pop_back();
    std::vector<tstring> vecFields = Split(sLine, '\t');
    if (sLine.empty() || sLine[0] == '#' || vecFields.size() < 2 || vecFields[0].empty()) continue;
    int nCountry = (int)m_vecShortName.size();
    m_vecShortName.push_back(vecFields[0]);
    std::vector<tstring> vecNames = {vecFields[0], vecFields[1]};
    if (vecFields.size() > 2) {
      std::vector<tstring> vecLatin = Split(vecFields[2], '|');
      vecNames.insert(vecNames.end(), vecLatin.begin(), vecLatin.end());
    }
    for (size_t k = 0; k < vecNames.size(); ++k) {
      int nId = m_dictNames.AddWord(vecNames[k]);
      if (nId < 0) continue;
      if ((size_t)nId >= m_vecNameCountry.size()) {
        m_vecNameCountry.resize(nId + 1, nCountry);
        m_vecNameLatin.resize(nId + 1, false);
      }
      m_vecNameLatin[nId] = k >= 2;
    }
  }
  m_dictNames.FinishAdd();
  if (m_vecShortName.empty()) SetLastError("No country listed in " + sFilename);
  return (int)m_vecShortName.size();
}

std::vector<_tCountryMatch> CCountryDetector::Find(const tstring& sText) const {
  std::vector<_tPatternMatch> vecAll;
  m_dictNames.Scan(sText.data(), sText.size(), vecAll);
  std::sort(vecAll.begin(), vecAll.end(), [](const _tPatternMatch& a, const _tPatternMatch& b) {
    return a.offset != b.offset ? a.offset < b.offset : a.length > b.length;
  });
  std::vector<_tCountryMatch> vecFound;
  size_t nEnd = 0;
  for (const _tPatternMatch& m : vecAll) {
    if (m.offset < nEnd) continue;
    if (m_vecNameLatin[m.id]) {
      bool bBefore = m.offset > 0 && IsWordByte(sText[m.offset - 1]);
      bool bAfter = m.offset + m.length < sText.size() && IsWordByte(sText[m.offset + m.length]);
      if (bBefore || bAfter) continue;
    }
    vecFound.push_back(_tCountryMatch{m.offset, m.length, m_vecNameCountry[m.id]});
    nEnd = m.offset + m.length;
  }
  return vecFound;
}

const char* CCountryDetector::GetShortName(int nCountry) const {
  return nCountry >= 0 && (size_t)nCountry < m_vecShortName.size() ? m_vecShortName[nCountry].c_str() : "";
}
