#include "utility/IntArray.h"

#include <algorithm>
#include <cstring>

_tIntArray CIntArray::Append(const std::vector<int32_t>& vecList) {
  if (m_nCurDataSize + vecList.size() > m_nDataMaxSize) {
    size_t nSize = m_nCurDataSize + vecList.size() + 1024;
    std::unique_ptr<int32_t[]> pData(new int32_t[nSize]);
    if (m_nCurDataSize > 0) memcpy(pData.get(), m_pData.get(), m_nCurDataSize * sizeof(int32_t));
    m_pData = std::move(pData);
    m_nDataMaxSize = nSize;
  }
  _tIntArray range;
  range.start = (int32_t)m_nCurDataSize;
  if (!vecList.empty()) memcpy(m_pData.get() + m_nCurDataSize, vecList.data(), vecList.size() * sizeof(int32_t));
  m_nCurDataSize += vecList.size();
  range.end = (int32_t)m_nCurDataSize;
  return range;
}

std::vector<int32_t> CIntArray::Get(const _tIntArray& range) const {
  int32_t nStart = std::max(range.start, 0);
  int32_t nEnd = std::min(range.end, (int32_t)m_nCurDataSize);
  if (nStart >= nEnd) return {};
  return std::vector<int32_t>(m_pData.get() + nStart, m_pData.get() + nEnd);
}

bool CIntArray::Write(FILE* fp) const {
  int32_t nLength = (int32_t)m_nCurDataSize;
  return fwrite(&nLength, sizeof(nLength), 1, fp) == 1 &&
         (nLength == 0 || fwrite(m_pData.get(), sizeof(int32_t), m_nCurDataSize, fp) == m_nCurDataSize);
}

bool CIntArray::Read(FILE* fp, uint64_t nMaxEntries) {
  Clear();
  int32_t nLength = 0;
  if (fread(&nLength, sizeof(nLength), 1, fp) != 1 || nLength < 0 || (uint64_t)nLength > nMaxEntries)
    return false;
  std::unique_ptr<int32_t[]> pData(new int32_t[(size_t)nLength + 1]);
  if (nLength > 0 && fread(pData.get(), sizeof(int32_t), (size_t)nLength, fp) != (size_t)nLength) return false;
  m_pData = std::move(pData);
  m_nCurDataSize = (size_t)nLength;
  m_nDataMaxSize = (size_t)nLength + 1;
  return true;
}
