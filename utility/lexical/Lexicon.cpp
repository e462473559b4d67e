#include "utility/lexical/Lexicon.h"

#include <cmath>
#include <fstream>
#include <sstream>
#include <unordered_map>

#include "utility/ErrorLog.h"
#include "utility/POS.h"
#include "utility/WordList.h"
#include "utility/lexical/TagSet.h"

int CLexicon::Build(const tstring& sWordListFile) {
  std::ifstream in(sWordListFile, std::ios::binary);
  if (!in) {
    SetLastError("Fail read file " + sWordListFile);
    return 0;
  }
  std::vector<int32_t> vecFreq, vecTagId;
  std::vector<tstring> vecTagName;
  std::unordered_map<tstring, int32_t> mapTag;
  m_dict.Clear();
  m_dict.BeginAdd();
  tstring sLine;
  while (std::getline(in, sLine)) {
    std::istringstream fields(sLine);
    tstring sWord, sTag = "x";
    long nFreq = 0;
    if (!(fields >> sWord >> nFreq) || nFreq < 1) continue;
    fields >> sTag;
    int nId = m_dict.AddWord(sWord);
    if (nId < 0) continue;
    auto itTag = mapTag.emplace(sTag, (int32_t)vecTagName.size()).first;
    if ((size_t)itTag->second == vecTagName.size()) vecTagName.push_back(sTag);
    if ((size_t)nId >= vecFreq.size()) {
      vecFreq.resize(nId + 1, 0);
      vecTagId.resize(nId + 1, 0);
    }
    vecFreq[nId] = (int32_t)std::min(nFreq, (long)INT32_MAX);  // a repeated word keeps its last line
    vecTagId[nId] = itTag->second;
  }
  m_dict.FinishAdd();
  Prepare(vecFreq, vecTagId, vecTagName);
  return (int)GetCount();
}

void CLexicon::Prepare(const std::vector<int32_t>& vecFreq, const std::vector<int32_t>& vecTagId,
                       const std::vector<tstring>& vecTagName) {
  m_vecFreq = vecFreq;
  m_vecTagId = vecTagId;
  m_vecTagName = vecTagName;
  double fTotal = 0;
  for (int32_t nFreq : m_vecFreq) fTotal += nFreq;
  double fLogTotal = std::log(fTotal > 0 ? fTotal : 1);
  m_fUnknownLogProb = -fLogTotal;
  m_vecLogProb.resize(m_vecFreq.size());
  m_vecTag.resize(m_vecFreq.size());
  std::vector<const char*> vecInterned;
  for (const tstring& sTag : m_vecTagName) vecInterned.push_back(InternTag(sTag));
  for (size_t i = 0; i < m_vecFreq.size(); ++i) {
    m_vecLogProb[i] = std::log((double)std::max(m_vecFreq[i], 1)) - fLogTotal;
    m_vecTag[i] = vecInterned.empty() ? InternTag("x") : vecInterned[m_vecTagId[i]];
  }
}

bool CLexicon::Save(const tstring& sFolder) const {
  CPOS pos;
  for (size_t i = 0; i < m_vecFreq.size(); ++i) pos.Set((int)i, m_vecTagId[i], m_vecFreq[i]);
  CWordList tags;
  for (size_t i = 0; i < m_vecTagName.size(); ++i) tags.AddWord(m_vecTagName[i], (int)i);
  return m_dict.Save(sFolder + "/lexicon.pdat") && pos.Save(sFolder + "/lexicon.pos") &&
         tags.Save(sFolder + "/lexicon.tags");
}

bool CLexicon::Load(const tstring& sFolder) {
  CPOS pos;
  CWordList tags;
  if (!m_dict.Load(sFolder + "/lexicon.pdat") || !pos.Load(sFolder + "/lexicon.pos") ||
      !tags.Load(sFolder + "/lexicon.tags"))
    return false;
  if (pos.GetCount() != m_dict.GetCount()) {
    SetLastError("Corrupt data file " + sFolder + "/lexicon.pos: " + std::to_string(pos.GetCount()) +
                 " entries for " + std::to_string(m_dict.GetCount()) + " words");
    m_dict.Clear();
    return false;
  }
  std::vector<tstring> vecTagName(tags.GetCount());
  for (size_t i = 0; i < vecTagName.size(); ++i) vecTagName[i] = tags.GetWord((int)i);
  std::vector<int32_t> vecFreq(pos.GetCount()), vecTagId(pos.GetCount());
  for (size_t i = 0; i < vecFreq.size(); ++i) {
    POS_elem elem = pos.Get((int)i);
    vecFreq[i] = elem.freq;
    // A tag id outside the list reads as the first tag rather than failing the lexicon.
    vecTagId[i] = elem.POS_id >= 0 && (size_t)elem.POS_id < vecTagName.size() ? elem.POS_id : 0;
  }
  if (vecTagName.empty()) vecTagName.push_back("x");
  Prepare(vecFreq, vecTagId, vecTagName);
  return true;
}
