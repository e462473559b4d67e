#include "utility/PDAT.h"

#include <algorithm>

#include "utility/DataFileReader.h"
#include "utility/DataFileWriter.h"

namespace {

const char kKind[] = "PDAT";
const uint32_t kVersion = 1;
const int32_t kFree = -1;      // check value of an unused slot
const int32_t kRootMark = -2;  // check value of the root, which has no parent

// A trie node waiting for its children to be placed.
struct _tPending {
  int32_t state;  // the node's slot
  size_t depth;   // bytes of prefix the node stands for
  size_t lo, hi;  // the sorted words sharing that prefix: [lo, hi)
};

}  // namespace

void CPDAT::Clear() {
  m_vecUnit.clear();
  m_vecValue.clear();
  m_vecFail.clear();
  m_vecOutput.clear();
  m_vecWordLength.clear();
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
  auto it = m_mapAdding.emplace(sWord, (int)m_mapAdding.size()).first;
  return it->second;
}

size_t CPDAT::FinishAdd() {
  std::vector<std::pair<tstring, int>> vecWords(m_mapAdding.begin(), m_mapAdding.end());
  m_mapAdding.clear();
  m_bAdding = false;
  std::sort(vecWords.begin(), vecWords.end());  // byte order: std::string compares as unsigned char
  Build(vecWords);
  return GetCount();
}

void CPDAT::Build(const std::vector<std::pair<tstring, int>>& vecWords) {
  m_vecUnit.assign(1024, _tUnit{0, kFree});
  m_vecValue.assign(1024, -1);
  m_vecUnit[0].check = kRootMark;
  m_vecWordLength.assign(vecWords.size(), 0);
  m_nMaxLength = 0;
  for (const auto& word : vecWords) {
    m_vecWordLength[word.second] = (int32_t)word.first.size();
    m_nMaxLength = std::max(m_nMaxLength, (int32_t)word.first.size());
  }
  auto fnGrow = [this](size_t nNeeded) {
    if (nNeeded < m_vecUnit.size()) return;
    size_t nSize = std::max(nNeeded + 1, m_vecUnit.size() * 2);
    m_vecUnit.resize(nSize, _tUnit{0, kFree});
    m_vecValue.resize(nSize, -1);
  };

  std::vector<std::vector<int32_t>> vecStatesByDepth(1, std::vector<int32_t>{0});
  std::vector<_tPending> vecStack{{0, 0, 0, vecWords.size()}};
  std::vector<int> vecCodes;
  std::vector<size_t> vecStarts;
  size_t nNextCheck = 1;  // slots before this are nearly all taken
  while (!vecStack.empty()) {
    _tPending node = vecStack.back();
    vecStack.pop_back();
    size_t lo = node.lo;
    if (lo < node.hi && vecWords[lo].first.size() == node.depth) m_vecValue[node.state] = vecWords[lo++].second;
    if (lo == node.hi) continue;

    vecCodes.clear();
    vecStarts.clear();
    for (size_t i = lo; i < node.hi; ++i) {
      int c = (unsigned char)vecWords[i].first[node.depth] + 1;
      if (vecCodes.empty() || vecCodes.back() != c) {
        vecCodes.push_back(c);
        vecStarts.push_back(i);
      }
    }
    vecStarts.push_back(node.hi);

    // First base whose child slots are all free; the scan start moves on
    // once the region behind it is almost full.
    size_t nPos = std::max(nNextCheck, (size_t)vecCodes[0] + 1);
    size_t nTaken = 0;
    int32_t nBase = 0;
    for (;; ++nPos) {
      fnGrow(nPos + 257);
      if (m_vecUnit[nPos].check != kFree) {
        ++nTaken;
        continue;
      }
      nBase = (int32_t)(nPos - vecCodes[0]);
      bool bFits = true;
      for (int c : vecCodes)
        if (m_vecUnit[nBase + c].check != kFree) {
          bFits = false;
          break;
        }
      if (bFits) break;
    }
    if (nTaken * 20 >= (nPos - nNextCheck + 1) * 19) nNextCheck = nPos;

    m_vecUnit[node.state].base = nBase;
    if (vecStatesByDepth.size() <= node.depth + 1) vecStatesByDepth.resize(node.depth + 2);
    for (size_t k = 0; k < vecCodes.size(); ++k) {
      int32_t nChild = nBase + vecCodes[k];
      m_vecUnit[nChild].check = node.state;
      vecStatesByDepth[node.depth + 1].push_back(nChild);
      vecStack.push_back(_tPending{nChild, node.depth + 1, vecStarts[k], vecStarts[k + 1]});
    }
  }
  // Trailing free slots are never reached: every look-up checks the bound.
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
  m_vecFail.assign(m_vecUnit.size(), 0);
  m_vecOutput.assign(m_vecUnit.size(), -1);
  for (int32_t t : vecStatesByDepth) {
    if (t == 0) continue;
    int32_t s = m_vecUnit[t].check;
    int c = t - m_vecUnit[s].base;
    int32_t nFail = 0;
    if (s != 0) {
      for (int32_t f = m_vecFail[s];; f = m_vecFail[f]) {
        int32_t x = Child(f, c);
        if (x >= 0) {
          nFail = x;
          break;
        }
        if (f == 0) break;
      }
    }
    m_vecFail[t] = nFail;
    m_vecOutput[t] = m_vecValue[nFail] >= 0 ? nFail : m_vecOutput[nFail];
  }
}

int CPDAT::GetId(const char* pWord, size_t nLength) const {
  if (m_vecUnit.empty() || nLength == 0) return -1;
  int32_t s = 0;
  for (size_t i = 0; i < nLength && s >= 0; ++i) s = Child(s, (unsigned char)pWord[i] + 1);
  return s >= 0 ? m_vecValue[s] : -1;
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
  for (size_t i = 0; i < nLength; ++i) {
    s = Child(s, (unsigned char)pText[i] + 1);
    if (s < 0) return;
    if (m_vecValue[s] >= 0) fn(i + 1, m_vecValue[s]);
  }
}

void CPDAT::Scan(const char* pText, size_t nLength, std::vector<_tPatternMatch>& vecMatch) const {
  vecMatch.clear();
  if (m_vecUnit.empty()) return;
  int32_t s = 0;
  for (size_t i = 0; i < nLength; ++i) {
    int c = (unsigned char)pText[i] + 1;
    // Each failure step shortens the matched suffix, so a sound trie needs
    // at most m_nMaxLength steps; the bound also stops a damaged one.
    for (int32_t nSteps = 0;; ++nSteps) {
      int32_t x = Child(s, c);
      if (x >= 0) {
        s = x;
        break;
      }
      if (s == 0 || nSteps > m_nMaxLength) {
        s = 0;
        break;
      }
      s = m_vecFail[s];
    }
    int32_t t = m_vecValue[s] >= 0 ? s : m_vecOutput[s];
    for (int32_t nSteps = 0; t >= 0 && nSteps <= m_nMaxLength; t = m_vecOutput[t], ++nSteps) {
      size_t nLen = (size_t)m_vecWordLength[m_vecValue[t]];
      vecMatch.push_back(_tPatternMatch{i + 1 - nLen, nLen, m_vecValue[t]});
    }
  }
}

void CPDAT::ForEachWord(const std::function<void(const tstring&, int)>& fn) const {
  if (m_vecUnit.empty()) return;
  std::vector<std::pair<int32_t, tstring>> vecStack{{0, tstring()}};
  while (!vecStack.empty()) {
    auto top = std::move(vecStack.back());
    vecStack.pop_back();
    if (m_vecValue[top.first] >= 0) fn(top.second, m_vecValue[top.first]);
    for (int c = 256; c >= 1; --c) {
      int32_t x = Child(top.first, c);
      if (x >= 0) vecStack.emplace_back(x, top.second + (char)(c - 1));
    }
  }
}

bool CPDAT::Save(const tstring& sFilename) const {
  CDataFileWriter writer(kKind, kVersion);
  writer.PutU64(m_vecUnit.size());
  writer.PutRaw(m_vecUnit.data(), m_vecUnit.size() * sizeof(_tUnit));
  writer.PutI32Array(m_vecValue);
  writer.PutI32Array(m_vecFail);
  writer.PutI32Array(m_vecOutput);
  writer.PutI32Array(m_vecWordLength);
  writer.PutI32(m_nMaxLength);
  return writer.Save(sFilename);
}

bool CPDAT::Load(const tstring& sFilename) {
  Clear();
  CDataFileReader reader;
  if (!reader.Open(sFilename, kKind, kVersion)) return false;
  uint64_t nUnits = 0;
  if (reader.GetU64(nUnits) && nUnits <= (uint64_t)INT32_MAX) {
    m_vecUnit.resize(nUnits);
    reader.GetRaw(m_vecUnit.data(), nUnits * sizeof(_tUnit));
  }
  reader.GetI32Array(m_vecValue);
  reader.GetI32Array(m_vecFail);
  reader.GetI32Array(m_vecOutput);
  reader.GetI32Array(m_vecWordLength);
  reader.GetI32(m_nMaxLength);
  bool bSound = reader.Finish();
  if (bSound && !Validate()) bSound = reader.Fail("inconsistent trie");
  if (!bSound) Clear();
  return bSound;
}

// Every index a look-up may follow stays inside the arrays.
bool CPDAT::Validate() const {
  const size_t nSize = m_vecUnit.size();
  const int32_t nWords = (int32_t)m_vecWordLength.size();
  if (nSize == 0 || m_vecUnit[0].check != kRootMark || m_vecValue.size() != nSize ||
      m_vecFail.size() != nSize || m_vecOutput.size() != nSize || m_nMaxLength < 0)
    return false;
  for (size_t s = 0; s < nSize; ++s) {
    int32_t nCheck = m_vecUnit[s].check;
    if (s > 0 && nCheck != kFree && (nCheck < 0 || (size_t)nCheck >= nSize)) return false;
    if (m_vecValue[s] < -1 || m_vecValue[s] >= nWords) return false;
    if (m_vecFail[s] < 0 || (size_t)m_vecFail[s] >= nSize) return false;
    if (m_vecOutput[s] < -1 || m_vecOutput[s] >= (int32_t)nSize) return false;
    if (m_vecOutput[s] >= 0 && m_vecValue[m_vecOutput[s]] < 0) return false;
  }
  for (int32_t nLength : m_vecWordLength)
    if (nLength <= 0 || nLength > m_nMaxLength) return false;
  return true;
}
