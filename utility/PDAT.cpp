#include "utility/PDAT.h"

#include <algorithm>

#include "utility/DataFileReader.h"
#include "utility/DataFileWriter.h"
#include "utility/Utf8.h"

namespace {

const char kKind[] = "PDAT";
const uint32_t kVersion = 2;
const int32_t kFree = -1;      // check value of an unused slot
const int32_t kRootMark = -2;  // check value of the root, which has no parent
const uint32_t kBmpSize = 0x10000;

// A trie node waiting for its children to be placed.
struct _tPending {
  int32_t state;  // the node's slot
  size_t depth;   // characters of prefix the node stands for
  size_t lo, hi;  // the words sharing that prefix: [lo, hi)
};

// A word as character codes, with its id.
struct _tCodedWord {
  std::vector<int32_t> codes;
  int id;
};

}  // namespace

void CPDAT::Clear() {
  m_vecUnit.clear();
  m_vecLink.clear();
  m_vecValue.clear();
  m_vecOutput.clear();
  m_vecWordLength.clear();
  m_vecCodeChar.clear();
  m_vecBmpCode.clear();
  m_mapOtherCode.clear();
  m_nMaxLength = 0;
  m_bAdding = false;
  m_mapAdding.clear();
}

void CPDAT::BeginAdd() {
  m_mapAdding.clear();
  ForEachWord([this](const tstring& sWord, int nId) { m_mapAdding.emplace(sWord, nId); });
  m_bAdding = true;
}

int CPDAT::AddWord(const tstring& sWord) {
  if (!m_bAdding || sWord.empty()) return -1;
  return m_mapAdding.emplace(sWord, (int)m_mapAdding.size()).first->second;
}

size_t CPDAT::FinishAdd() {
  std::vector<std::pair<tstring, int>> vecWords(m_mapAdding.begin(), m_mapAdding.end());
  m_mapAdding.clear();
  m_bAdding = false;
  Build(vecWords);
  return GetCount();
}

void CPDAT::SetCode(uint32_t nChar, int32_t nCode) {
  if (nChar < kBmpSize)
    m_vecBmpCode[nChar] = nCode;
  else
    m_mapOtherCode[nChar] = nCode;
}

int32_t CPDAT::NextCode(const char* pText, size_t nLength, size_t& nBytes) const {
  uint32_t nChar;
  nBytes = DecodeUtf8(pText, nLength, nChar);
  return GetCode(nChar);
}

// Commoner characters get smaller codes: their states pack more densely.
void CPDAT::AssignCodes(const std::vector<std::pair<tstring, int>>& vecWords) {
  std::unordered_map<uint32_t, size_t> mapCount;
  for (const auto& word : vecWords) {
    const tstring& s = word.first;
    for (size_t i = 0, n = 0; i < s.size(); i += n) {
      uint32_t nChar;
      n = DecodeUtf8(s.data() + i, s.size() - i, nChar);
      ++mapCount[nChar];
    }
  }
  std::vector<std::pair<size_t, uint32_t>> vecByCount;
  for (const auto& kv : mapCount) vecByCount.emplace_back(kv.second, kv.first);
  std::sort(vecByCount.begin(), vecByCount.end(),
            [](const auto& a, const auto& b) { return a.first != b.first ? a.first > b.first : a.second < b.second; });
  m_vecCodeChar.assign(1, 0);
  m_vecBmpCode.assign(kBmpSize, 0);
  m_mapOtherCode.clear();
  for (const auto& entry : vecByCount) {
    SetCode(entry.second, (int32_t)m_vecCodeChar.size());
    m_vecCodeChar.push_back(entry.second);
  }
}

void CPDAT::Build(const std::vector<std::pair<tstring, int>>& vecWords) {
  AssignCodes(vecWords);
  std::vector<_tCodedWord> vecCoded(vecWords.size());
  m_vecWordLength.assign(vecWords.size(), 0);
  m_nMaxLength = 0;
  for (size_t w = 0; w < vecWords.size(); ++w) {
    const tstring& s = vecWords[w].first;
    vecCoded[w].id = vecWords[w].second;
    for (size_t i = 0, n = 0; i < s.size(); i += n) vecCoded[w].codes.push_back(NextCode(s.data() + i, s.size() - i, n));
    m_vecWordLength[vecWords[w].second] = (int32_t)s.size();
    m_nMaxLength = std::max(m_nMaxLength, (int32_t)vecCoded[w].codes.size());
  }
  std::sort(vecCoded.begin(), vecCoded.end(),
            [](const _tCodedWord& a, const _tCodedWord& b) { return a.codes < b.codes; });

  const size_t nAlphabet = m_vecCodeChar.size();
  m_vecUnit.assign(1, _tUnit{0, kRootMark});
  m_vecValue.assign(1, -1);
  // vecFreeFrom finds the first free slot at or after an index in near
  // constant time (a disjoint-set forest over taken slots, path halving).
  std::vector<int32_t> vecFreeFrom(1, 1);
  auto fnGrow = [&](size_t nNeeded) {
    size_t nOld = m_vecUnit.size();
    if (nNeeded < nOld) return;
    size_t nSize = std::max(nNeeded + 1, nOld * 2);
    m_vecUnit.resize(nSize, _tUnit{0, kFree});
    m_vecValue.resize(nSize, -1);
    vecFreeFrom.resize(nSize + 1);
    for (size_t p = nOld; p <= nSize; ++p) vecFreeFrom[p] = (int32_t)p;
  };
  auto fnFirstFree = [&](int32_t p) {
    while (vecFreeFrom[p] != p) {
      vecFreeFrom[p] = vecFreeFrom[vecFreeFrom[p]];
      p = vecFreeFrom[p];
    }
    return p;
  };
  auto fnTake = [&](int32_t p) { vecFreeFrom[p] = p + 1; };
  fnGrow(1024 + nAlphabet);

  std::vector<std::vector<int32_t>> vecStatesByDepth(1, std::vector<int32_t>{0});
  std::vector<_tPending> vecStack{{0, 0, 0, vecCoded.size()}};
  std::vector<int32_t> vecCodes;
  std::vector<size_t> vecStarts;
  int32_t nNextCheck = 1;  // where searches for several children start
  while (!vecStack.empty()) {
    _tPending node = vecStack.back();
    vecStack.pop_back();
    size_t lo = node.lo;
    if (lo < node.hi && vecCoded[lo].codes.size() == node.depth) m_vecValue[node.state] = vecCoded[lo++].id;
    if (lo == node.hi) continue;

    vecCodes.clear();
    vecStarts.clear();
    for (size_t i = lo; i < node.hi; ++i) {
      int32_t c = vecCoded[i].codes[node.depth];
      if (vecCodes.empty() || vecCodes.back() != c) {
        vecCodes.push_back(c);
        vecStarts.push_back(i);
      }
    }
    vecStarts.push_back(node.hi);

    // The first free slot past the first child's code whose base leaves
    // every other child a free slot too. A single child fits any free slot;
    // several rarely fit the crowded front, so their search starts where
    // earlier searches found the array nearly full.
    const bool bSeveral = vecCodes.size() > 1;
    const int32_t nStart = std::max(vecCodes[0] + 1, bSeveral ? nNextCheck : 0);
    int32_t nBase = 0, nTries = 0, p = nStart;
    for (;; ++p, ++nTries) {
      fnGrow((size_t)p + nAlphabet);
      p = fnFirstFree(p);
      fnGrow((size_t)p + nAlphabet);
      nBase = p - vecCodes[0];
      bool bFits = true;
      for (size_t k = 1; k < vecCodes.size(); ++k)
        if (m_vecUnit[nBase + vecCodes[k]].check != kFree) {
          bFits = false;
          break;
        }
      if (bFits) break;
    }
    if (bSeveral && nTries * 20 >= (p - nStart + 1)) nNextCheck = std::max(nNextCheck, p - nTries);

    m_vecUnit[node.state].base = nBase;
    if (vecStatesByDepth.size() <= node.depth + 1) vecStatesByDepth.resize(node.depth + 2);
    for (size_t k = 0; k < vecCodes.size(); ++k) {
      int32_t nChild = nBase + vecCodes[k];
      m_vecUnit[nChild].check = node.state;
      fnTake(nChild);
      vecStatesByDepth[node.depth + 1].push_back(nChild);
      vecStack.push_back(_tPending{nChild, node.depth + 1, vecStarts[k], vecStarts[k + 1]});
    }
  }
  // Trailing free slots are never reached: every step checks the bound.
  size_t nUsed = m_vecUnit.size();
  while (nUsed > 1 && m_vecUnit[nUsed - 1].check == kFree) --nUsed;
  m_vecUnit.resize(nUsed);
  m_vecUnit.shrink_to_fit();
  m_vecValue.resize(nUsed);
  m_vecValue.shrink_to_fit();

  std::vector<int32_t> vecOrder;
  for (const auto& vecLevel : vecStatesByDepth) vecOrder.insert(vecOrder.end(), vecLevel.begin(), vecLevel.end());
  LinkFailures(vecOrder);
}

// vecStatesByDepth lists every state, shallower ones first, so each state's
// failure target is linked before the state itself.
void CPDAT::LinkFailures(const std::vector<int32_t>& vecStatesByDepth) {
  m_vecOutput.assign(m_vecUnit.size(), -1);
  m_vecLink.assign(m_vecUnit.size(), _tLink{0, -1});
  for (int32_t t : vecStatesByDepth) {
    if (t == 0) continue;
    int32_t s = m_vecUnit[t].check;
    int32_t c = t - m_vecUnit[s].base;
    int32_t nFail = 0;
    if (s != 0) {
      for (int32_t f = m_vecLink[s].fail;; f = m_vecLink[f].fail) {
        int32_t x = Child(f, c);
        if (x >= 0) {
          nFail = x;
          break;
        }
        if (f == 0) break;
      }
    }
    m_vecLink[t].fail = nFail;
    m_vecOutput[t] = m_vecLink[nFail].report;
    m_vecLink[t].report = m_vecValue[t] >= 0 ? t : m_vecOutput[t];
  }
}

int CPDAT::GetId(const char* pWord, size_t nLength) const {
  if (m_vecUnit.empty() || nLength == 0) return -1;
  int32_t s = 0;
  for (size_t i = 0, n = 0; i < nLength; i += n) {
    int32_t c = NextCode(pWord + i, nLength - i, n);
    if (c == 0 || (s = Child(s, c)) < 0) return -1;
  }
  return m_vecValue[s];
}

size_t CPDAT::LongestMatch(const char* pText, size_t nLength, int& nId) const {
  size_t nBest = 0;
  nId = -1;
  ForEachPrefix(pText, nLength, [&](size_t nLen, int nWordId) {
    nBest = nLen;
    nId = nWordId;
  });
  return nBest;
}

void CPDAT::ForEachPrefix(const char* pText, size_t nLength,
                          const std::function<void(size_t, int)>& fn) const {
  if (m_vecUnit.empty()) return;
  int32_t s = 0;
  for (size_t i = 0, n = 0; i < nLength; i += n) {
    int32_t c = NextCode(pText + i, nLength - i, n);
    if (c == 0 || (s = Child(s, c)) < 0) return;
    if (m_vecValue[s] >= 0) fn(i + n, m_vecValue[s]);
  }
}

void CPDAT::Scan(const char* pText, size_t nLength, std::vector<_tPatternMatch>& vecMatch) const {
  vecMatch.clear();
  if (m_vecUnit.empty()) return;
  const _tUnit* pUnit = m_vecUnit.data();
  const _tLink* pLink = m_vecLink.data();
  const uint64_t nSize = m_vecUnit.size();
  int32_t s = 0;
  for (size_t i = 0, n = 0; i < nLength; i += n) {
    const int32_t c = NextCode(pText + i, nLength - i, n);
    if (c == 0) {  // no word holds this character
      s = 0;
      continue;
    }
    // Each failure step shortens the matched suffix, so a sound trie needs
    // at most m_nMaxLength steps; the bound also stops a damaged one.
    for (int32_t nSteps = 0;; ++nSteps) {
      uint64_t p = (uint64_t)((int64_t)pUnit[s].base + c);
      if (p < nSize && pUnit[p].check == s) {
        s = (int32_t)p;
        break;
      }
      if (s == 0 || nSteps > m_nMaxLength) {
        s = 0;
        break;
      }
      s = pLink[s].fail;
    }
    int32_t t = pLink[s].report;
    for (int32_t nSteps = 0; t >= 0 && nSteps <= m_nMaxLength; t = m_vecOutput[t], ++nSteps) {
      size_t nLen = (size_t)m_vecWordLength[m_vecValue[t]];
      vecMatch.push_back(_tPatternMatch{i + n - nLen, nLen, m_vecValue[t]});
    }
  }
}

// Each word is spelt back from its end state up through the parents.
void CPDAT::ForEachWord(const std::function<void(const tstring&, int)>& fn) const {
  std::vector<int32_t> vecStateOfId(GetCount(), -1);
  for (size_t s = 0; s < m_vecValue.size(); ++s)
    if (m_vecValue[s] >= 0) vecStateOfId[m_vecValue[s]] = (int32_t)s;
  std::vector<uint32_t> vecChars;
  for (size_t nId = 0; nId < vecStateOfId.size(); ++nId) {
    vecChars.clear();
    for (int32_t s = vecStateOfId[nId]; s > 0 && (int32_t)vecChars.size() <= m_nMaxLength;) {
      int32_t nParent = m_vecUnit[s].check;
      vecChars.push_back(m_vecCodeChar[s - m_vecUnit[nParent].base]);
      s = nParent;
    }
    tstring sWord;
    for (auto it = vecChars.rbegin(); it != vecChars.rend(); ++it) AppendUtf8(sWord, *it);
    if (!sWord.empty()) fn(sWord, (int)nId);
  }
}

bool CPDAT::Save(const tstring& sFilename) const {
  CDataFileWriter writer(kKind, kVersion);
  writer.PutU64(m_vecCodeChar.size());
  writer.PutRaw(m_vecCodeChar.data(), m_vecCodeChar.size() * sizeof(uint32_t));
  writer.PutU64(m_vecUnit.size());
  writer.PutRaw(m_vecUnit.data(), m_vecUnit.size() * sizeof(_tUnit));
  writer.PutRaw(m_vecLink.data(), m_vecLink.size() * sizeof(_tLink));
  writer.PutI32Array(m_vecValue);
  writer.PutI32Array(m_vecOutput);
  writer.PutI32Array(m_vecWordLength);
  writer.PutI32(m_nMaxLength);
  return writer.Save(sFilename);
}

bool CPDAT::Load(const tstring& sFilename) {
  Clear();
  CDataFileReader reader;
  if (!reader.Open(sFilename, kKind, kVersion)) return false;
  uint64_t nCodes = 0, nUnits = 0;
  reader.GetCount(nCodes, sizeof(uint32_t));
  m_vecCodeChar.resize(nCodes);
  reader.GetRaw(m_vecCodeChar.data(), nCodes * sizeof(uint32_t));
  if (reader.GetCount(nUnits, sizeof(_tUnit) + sizeof(_tLink)) && nUnits > (uint64_t)INT32_MAX) {
    reader.Fail("too many states");
    nUnits = 0;
  }
  m_vecUnit.resize(nUnits);
  m_vecLink.resize(nUnits);
  reader.GetRaw(m_vecUnit.data(), nUnits * sizeof(_tUnit));
  reader.GetRaw(m_vecLink.data(), nUnits * sizeof(_tLink));
  reader.GetI32Array(m_vecValue);
  reader.GetI32Array(m_vecOutput);
  reader.GetI32Array(m_vecWordLength);
  reader.GetI32(m_nMaxLength);
  bool bSound = reader.Finish();
  if (bSound && !Validate()) bSound = reader.Fail("inconsistent trie");
  if (bSound) {
    m_vecBmpCode.assign(kBmpSize, 0);
    for (size_t nCode = 1; nCode < m_vecCodeChar.size(); ++nCode) SetCode(m_vecCodeChar[nCode], (int32_t)nCode);
  } else {
    Clear();
  }
  return bSound;
}

// Every index a look-up may follow stays inside the arrays.
bool CPDAT::Validate() const {
  const size_t nSize = m_vecUnit.size();
  const int32_t nWords = (int32_t)m_vecWordLength.size();
  if (nSize == 0 || m_vecUnit[0].check != kRootMark || m_vecValue.size() != nSize || m_vecLink.size() != nSize ||
      m_vecOutput.size() != nSize || m_nMaxLength < 0 || m_vecCodeChar.empty())
    return false;
  for (size_t nCode = 1; nCode < m_vecCodeChar.size(); ++nCode)
    if (m_vecCodeChar[nCode] >= kInvalidByteBase + 256) return false;
  // A state that a scan reports must end a word.
  auto fnReportable = [&](int32_t t) { return t == -1 || (t >= 0 && (size_t)t < nSize && m_vecValue[t] >= 0); };
  for (size_t s = 0; s < nSize; ++s) {
    const _tUnit& unit = m_vecUnit[s];
    const _tLink& link = m_vecLink[s];
    if (s > 0 && unit.check != kFree) {
      if (unit.check < 0 || (size_t)unit.check >= nSize) return false;
      int64_t nCode = (int64_t)s - m_vecUnit[unit.check].base;  // ForEachWord spells with it
      if (nCode <= 0 || (size_t)nCode >= m_vecCodeChar.size()) return false;
    }
    if (m_vecValue[s] < -1 || m_vecValue[s] >= nWords) return false;
    if (link.fail < 0 || (size_t)link.fail >= nSize) return false;
    if (!fnReportable(link.report) || !fnReportable(m_vecOutput[s])) return false;
  }
  for (int32_t nLength : m_vecWordLength)
    if (nLength <= 0) return false;
  return true;
}
