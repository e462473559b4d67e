#include "utility/WordList.h"

#include <cstring>

#include "utility/DataFileReader.h"
#include "utility/DataFileWriter.h"

namespace {
const char kKind[] = "WLST";
const uint32_t kVersion = 1;
}  // namespace

void CWordList::AddWord(const tstring& sWord, int nId) {
  if (nId < 0) return;
  if ((size_t)nId >= m_vecOffset.size()) m_vecOffset.resize((size_t)nId + 1, -1);
  // A replaced word stays in the text unreferenced; lists are rebuilt, not edited.
  m_vecOffset[nId] = (int64_t)m_sText.size();
  m_sText.append(sWord.c_str());  // a word ends at its first zero byte
  m_sText.push_back('\0');
}

const char* CWordList::GetWord(int nId) const {
  if (nId < 0 || (size_t)nId >= m_vecOffset.size() || m_vecOffset[nId] < 0) return "";
  return m_sText.c_str() + m_vecOffset[nId];
}

void CWordList::Clear() {
  m_vecOffset.clear();
  m_sText.clear();
}

bool CWordList::Save(const tstring& sFilename) const {
  CDataFileWriter writer(kKind, kVersion);
  writer.PutU64(m_vecOffset.size());
  writer.PutRaw(m_vecOffset.data(), m_vecOffset.size() * sizeof(int64_t));
  writer.PutString(m_sText);
  return writer.Save(sFilename);
}

bool CWordList::Load(const tstring& sFilename) {
  Clear();
  CDataFileReader reader;
  if (!reader.Open(sFilename, kKind, kVersion)) return false;
  uint64_t nCount = 0;
  reader.GetCount(nCount, sizeof(int64_t));
  m_vecOffset.resize(nCount);
  reader.GetRaw(m_vecOffset.data(), nCount * sizeof(int64_t));
  reader.GetString(m_sText);
  bool bSound = reader.Finish();
  // Every word must start inside the text, and the text must end with a zero
  // byte, so that every word ends inside it.
  bool bWithin = m_sText.empty() || m_sText.back() == '\0';
  for (int64_t nOffset : m_vecOffset)
    if (nOffset < -1 || (nOffset >= 0 && (size_t)nOffset >= m_sText.size())) bWithin = false;
  if (bSound && !bWithin) bSound = reader.Fail("word offsets outside the text");
  if (!bSound) Clear();
  return bSound;
}
