#include "utility/POS.h"

#include "utility/DataFileReader.h"
#include "utility/DataFileWriter.h"

namespace {
const char kKind[] = "POS_";
const uint32_t kVersion = 1;
}  // namespace

void CPOS::Set(int nId, int nPOSId, int nFreq) {
  if (nId < 0) return;
  if ((size_t)nId >= m_vecElem.size()) m_vecElem.resize((size_t)nId + 1);
  m_vecElem[nId] = POS_elem{nPOSId, nFreq, nId};
}

POS_elem CPOS::Get(int nId) const {
  if (nId < 0 || (size_t)nId >= m_vecElem.size()) return POS_elem();
  return m_vecElem[nId];
}

bool CPOS::Save(const tstring& sFilename) const {
  CDataFileWriter writer(kKind, kVersion);
  writer.PutU64(m_vecElem.size());
  for (const POS_elem& elem : m_vecElem) {
    writer.PutI32(elem.POS_id);
    writer.PutI32(elem.freq);
    writer.PutI32(elem.handle);
  }
  return writer.Save(sFilename);
}

bool CPOS::Load(const tstring& sFilename) {
  Clear();
  CDataFileReader reader;
  if (!reader.Open(sFilename, kKind, kVersion)) return false;
  uint64_t nCount = 0;
  reader.GetCount(nCount, 3 * sizeof(int32_t));
  for (uint64_t i = 0; i < nCount; ++i) {
    POS_elem elem;
    if (!reader.GetI32(elem.POS_id) || !reader.GetI32(elem.freq) || !reader.GetI32(elem.handle)) break;
    m_vecElem.push_back(elem);
  }
  bool bSound = reader.Finish();
  if (!bSound) Clear();
  return bSound;
}
