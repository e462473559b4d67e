#include "utility/StrTran.h"

#include "utility/DataFileReader.h"
#include "utility/DataFileWriter.h"

namespace {
const char kKind[] = "STRT";
const uint32_t kVersion = 1;

std::vector<tstring> Collect(const std::multimap<tstring, size_t>& mapIndex, const tstring& sKey,
                             const std::vector<std::pair<tstring, tstring>>& vecPair, bool bSecond) {
  std::vector<tstring> vecResult;
  auto range = mapIndex.equal_range(sKey);
  for (auto it = range.first; it != range.second; ++it)
    vecResult.push_back(bSecond ? vecPair[it->second].second : vecPair[it->second].first);
  return vecResult;
}
}  // namespace

void CStrTran::Add(const tstring& sFirst, const tstring& sSecond) {
  auto range = m_mapFirst.equal_range(sFirst);
  for (auto it = range.first; it != range.second; ++it)
    if (m_vecPair[it->second].second == sSecond) return;
  m_mapFirst.emplace(sFirst, m_vecPair.size());
  m_mapSecond.emplace(sSecond, m_vecPair.size());
  m_vecPair.emplace_back(sFirst, sSecond);
}

std::vector<tstring> CStrTran::FindSecond(const tstring& sFirst) const {
  return Collect(m_mapFirst, sFirst, m_vecPair, true);
}

std::vector<tstring> CStrTran::FindFirst(const tstring& sSecond) const {
  return Collect(m_mapSecond, sSecond, m_vecPair, false);
}

void CStrTran::Clear() {
  m_vecPair.clear();
  m_mapFirst.clear();
  m_mapSecond.clear();
}

tstring CStrTran::GetFilename(const tstring& sPrefix) const {
  return sPrefix + m_sFirstColumn + "2" + m_sSecondColumn + ".tran";
}

bool CStrTran::Save(const tstring& sPrefix) const {
  CDataFileWriter writer(kKind, kVersion);
  writer.PutString(m_sFirstColumn);
  writer.PutString(m_sSecondColumn);
  writer.PutU64(m_vecPair.size());
  for (const auto& pair : m_vecPair) {
    writer.PutString(pair.first);
    writer.PutString(pair.second);
  }
  return writer.Save(GetFilename(sPrefix));
}

bool CStrTran::Load(const tstring& sPrefix) {
  Clear();
  CDataFileReader reader;
  if (!reader.Open(GetFilename(sPrefix), kKind, kVersion)) return false;
  tstring sFirstColumn, sSecondColumn;
  uint64_t nCount = 0;
  reader.GetString(sFirstColumn);
  reader.GetString(sSecondColumn);
  reader.GetCount(nCount, 2 * sizeof(uint64_t));
  for (uint64_t i = 0; i < nCount; ++i) {
    tstring sFirst, sSecond;
    if (!reader.GetString(sFirst) || !reader.GetString(sSecond)) break;
    Add(sFirst, sSecond);
  }
  bool bSound = reader.Finish();
  if (bSound && (sFirstColumn != m_sFirstColumn || sSecondColumn != m_sSecondColumn))
    bSound = reader.Fail("columns " + sFirstColumn + "/" + sSecondColumn + ", expected " +
                         m_sFirstColumn + "/" + m_sSecondColumn);
  if (!bSound) Clear();
  return bSound;
}
