#include "utility/Num2FontSize.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "utility/ErrorLog.h"

namespace {
const char kPointSuffix[] = "磅";

// Parses a non-negative decimal point value with at most one fraction digit
// of .5 precision ("13", "10.5") into half-points; -1 when it is not one.
int PointsToHalfPoints(const tstring& sPoints) {
  if (sPoints.empty()) return -1;
  char* pEnd = nullptr;
  double fPoints = strtod(sPoints.c_str(), &pEnd);
  if (pEnd != sPoints.c_str() + sPoints.size() || !(fPoints > 0) || fPoints > 1638) return -1;
  double fHalf = fPoints * 2;
  if (fHalf != (double)(int)fHalf) return -1;
  return (int)fHalf;
}
}  // namespace

int CNum2FontSize::Import(const char* sFilename) {
  std::ifstream in(sFilename ? sFilename : "", std::ios::binary);
  if (!in) {
    SetLastError(tstring("Fail read file ") + (sFilename ? sFilename : ""));
    return -1;
  }
  tstring sLine;
  while (std::getline(in, sLine)) {
    std::istringstream fields(sLine);
    tstring sName;
    long nSize = 0;
    if (!(fields >> sName) || sName[0] == '#' || !(fields >> nSize)) continue;
    if (nSize <= 0 || nSize > 3276) continue;
    Set(sName, (int)nSize);
  }
  return (int)m_mapSize2Name.size();
}

void CNum2FontSize::Set(const tstring& sName, int nHalfPoints) {
  // Drop both old pairings first, so the two maps always mirror each other.
  auto itName = m_mapName2Size.find(sName);
  if (itName != m_mapName2Size.end()) m_mapSize2Name.erase(itName->second);
  auto itSize = m_mapSize2Name.find(nHalfPoints);
  if (itSize != m_mapSize2Name.end()) m_mapName2Size.erase(itSize->second);
  m_mapSize2Name[nHalfPoints] = sName;
  m_mapName2Size[sName] = nHalfPoints;
}

tstring CNum2FontSize::GetName(int nHalfPoints) const {
  auto it = m_mapSize2Name.find(nHalfPoints);
  if (it != m_mapSize2Name.end()) return it->second;
  char sPoints[32];
  if (nHalfPoints % 2 == 0)
    snprintf(sPoints, sizeof(sPoints), "%d", nHalfPoints / 2);
  else
    snprintf(sPoints, sizeof(sPoints), "%d.5", nHalfPoints / 2);
  return tstring(sPoints) + kPointSuffix;
}

int CNum2FontSize::GetSize(const tstring& sName) const {
  auto it = m_mapName2Size.find(sName);
  if (it != m_mapName2Size.end()) return it->second;
  for (const tstring& sSuffix : {tstring(kPointSuffix), tstring("pt")}) {
    if (sName.size() > sSuffix.size() &&
        sName.compare(sName.size() - sSuffix.size(), sSuffix.size(), sSuffix) == 0)
      return PointsToHalfPoints(sName.substr(0, sName.size() - sSuffix.size()));
  }
  return -1;
}

tstring FontSizeName(const CNum2FontSize* pSizes, int nHalfPoints) {
  static const CNum2FontSize s_points;
  return (pSizes ? *pSizes : s_points).GetName(nHalfPoints);
}
