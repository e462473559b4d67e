#include "utility/StaticStr.h"

#include <algorithm>
#include <cstring>

size_t CStaticStr::Add(const tstring& sText) {
  size_t nLength = strlen(sText.c_str()) + 1;
  if (m_nDataIndex + nLength > m_nDataMaxSize) {
    size_t nSize = std::max(m_nDataMaxSize * 2, m_nDataIndex + nLength + 1024);
    std::unique_ptr<char[]> pData(new char[nSize]);
    if (m_nDataIndex > 0) memcpy(pData.get(), m_pData.get(), m_nDataIndex);
    m_pData = std::move(pData);
    m_nDataMaxSize = nSize;
  }
  size_t nOffset = m_nDataIndex;
  memcpy(m_pData.get() + nOffset, sText.c_str(), nLength);
  m_nDataIndex += nLength;
  return nOffset;
}

const char* CStaticStr::Get(size_t nOffset) const {
  return nOffset < m_nDataIndex ? m_pData.get() + nOffset : "";
}

bool CStaticStr::Write(FILE* fp) const {
  uint64_t nLength = m_nDataIndex;
  return fwrite(&nLength, sizeof(nLength), 1, fp) == 1 &&
         (nLength == 0 || fwrite(m_pData.get(), 1, nLength, fp) == nLength);
}

bool CStaticStr::Read(FILE* fp, uint64_t nMaxBytes) {
  Clear();
  uint64_t nLength = 0;
  if (fread(&nLength, sizeof(nLength), 1, fp) != 1 || nLength > nMaxBytes) return false;
  std::unique_ptr<char[]> pData(new char[nLength + 1]);
  if (nLength > 0 && (fread(pData.get(), 1, nLength, fp) != nLength || pData[nLength - 1] != '\0'))
    return false;
  m_pData = std::move(pData);
  m_nDataIndex = nLength;
  m_nDataMaxSize = nLength + 1;
  return true;
}

bool CStaticStr::SetBytes(const tstring& sBytes) {
  Clear();
  if (!sBytes.empty() && sBytes.back() != '\0') return false;
  std::unique_ptr<char[]> pData(new char[sBytes.size() + 1]);
  memcpy(pData.get(), sBytes.data(), sBytes.size());
  m_pData = std::move(pData);
  m_nDataIndex = sBytes.size();
  m_nDataMaxSize = sBytes.size() + 1;
  return true;
}
