#include "utility/lexical/HmmModel.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "utility/DataFileReader.h"
#include "utility/DataFileWriter.h"
#include "utility/ErrorLog.h"
#include "utility/Utf8.h"

namespace {

const char kKind[] = "HMM_";
const uint32_t kVersion = 1;
const double kMinLogProb = -3.14e100;  // the probability of what the tables do not list
const uint32_t kBmp = 0x10000;
enum { B = 0, M = 1, E = 2, S = 3 };

int StateIndex(const tstring& sState) {
  if (sState.size() != 1) return -1;
  switch (sState[0]) {
    case 'B': return B;
    case 'M': return M;
    case 'E': return E;
    case 'S': return S;
    default: return -1;
  }
}

// The states a state may follow.
const int kPrevious[4][2] = {{E, S}, {M, B}, {B, M}, {S, E}};

}  // namespace

int CHmmModel::Build(const tstring& sTextFile) {
  std::ifstream in(sTextFile, std::ios::binary);
  if (!in) {
    SetLastError("Fail read file " + sTextFile);
    return 0;
  }
  for (size_t i = 0; i < kStates; ++i) {
    m_fStart[i] = kMinLogProb;
    for (size_t j = 0; j < kStates; ++j) m_fTrans[i][j] = kMinLogProb;
  }
  std::array<double, kStates> unseen;
  unseen.fill(kMinLogProb);
  m_vecEmit.assign(kBmp, unseen);
  int nStarts = 0, nTrans = 0, nEmits = 0;
  tstring sLine;
  while (std::getline(in, sLine)) {
    std::istringstream fields(sLine);
    tstring sKind, sA, sB, sP;
    std::getline(fields, sKind, '\t');
    std::getline(fields, sA, '\t');
    std::getline(fields, sB, '\t');
    std::getline(fields, sP, '\t');
    int nA = StateIndex(sA);
    if (nA < 0) continue;
    if (sKind == "start") {
      m_fStart[nA] = strtod(sB.c_str(), nullptr);
      ++nStarts;
    } else if (sKind == "trans" && StateIndex(sB) >= 0) {
      m_fTrans[nA][StateIndex(sB)] = strtod(sP.c_str(), nullptr);
      ++nTrans;
    } else if (sKind == "emit" && !sB.empty()) {
      uint32_t c;
      if (DecodeUtf8(sB.data(), sB.size(), c) == sB.size() && c < kBmp) {
        m_vecEmit[c][nA] = strtod(sP.c_str(), nullptr);
        ++nEmits;
      }
    }
  }
  if (nStarts == 0 || nTrans == 0) {
    SetLastError("No start or transition table in " + sTextFile);
    return 0;
  }
  return nEmits;
}

bool CHmmModel::Save(const tstring& sFile) const {
  CDataFileWriter writer(kKind, kVersion);
  writer.PutRaw(m_fStart, sizeof(m_fStart));
  writer.PutRaw(m_fTrans, sizeof(m_fTrans));
  uint64_t nListed = 0;
  for (const auto& row : m_vecEmit)
    if (row[B] != kMinLogProb || row[M] != kMinLogProb || row[E] != kMinLogProb || row[S] != kMinLogProb) ++nListed;
  writer.PutU64(nListed);
  for (uint32_t c = 0; c < m_vecEmit.size(); ++c) {
    const auto& row = m_vecEmit[c];
    if (row[B] == kMinLogProb && row[M] == kMinLogProb && row[E] == kMinLogProb && row[S] == kMinLogProb) continue;
    writer.PutU32(c);
    writer.PutRaw(row.data(), sizeof(double) * kStates);
  }
  return writer.Save(sFile);
}

bool CHmmModel::Load(const tstring& sFile) {
  CDataFileReader reader;
  if (!reader.Open(sFile, kKind, kVersion)) return false;
  reader.GetRaw(m_fStart, sizeof(m_fStart));
  reader.GetRaw(m_fTrans, sizeof(m_fTrans));
  std::array<double, kStates> unseen;
  unseen.fill(kMinLogProb);
  m_vecEmit.assign(kBmp, unseen);
  uint64_t nListed = 0;
  reader.GetCount(nListed, sizeof(uint32_t) + sizeof(double) * kStates);
  for (uint64_t i = 0; i < nListed; ++i) {
    uint32_t c = 0;
    std::array<double, kStates> row;
    if (!reader.GetU32(c) || !reader.GetRaw(row.data(), sizeof(double) * kStates)) break;
    if (c >= kBmp) {
      reader.Fail("character beyond the table");
      break;
    }
    m_vecEmit[c] = row;
  }
  if (!reader.Finish()) {
    m_vecEmit.clear();
    return false;
  }
  return true;
}

void CHmmModel::Cut(const std::vector<uint32_t>& vecChars, std::vector<size_t>& vecWordLengths) const {
  vecWordLengths.clear();
  const size_t n = vecChars.size();
  if (n == 0) return;
  auto fnEmit = [this](uint32_t c, int s) { return c < m_vecEmit.size() ? m_vecEmit[c][s] : kMinLogProb; };
  std::vector<std::array<double, kStates>> vecScore(n);
  std::vector<std::array<int8_t, kStates>> vecFrom(n);
  for (int s = 0; s < (int)kStates; ++s) {
    vecScore[0][s] = m_fStart[s] + fnEmit(vecChars[0], s);
    vecFrom[0][s] = -1;
  }
  for (size_t t = 1; t < n; ++t) {
    for (int s = 0; s < (int)kStates; ++s) {
      double fEmit = fnEmit(vecChars[t], s);
      // Ties go to the later state letter, as comparing (score, state) pairs would.
      int nBest = -1;
      double fBest = 0;
      for (int p : kPrevious[s]) {
        double f = vecScore[t - 1][p] + m_fTrans[p][s] + fEmit;
        if (nBest < 0 || f > fBest || (f == fBest && "BMES"[p] > "BMES"[nBest])) {
          fBest = f;
          nBest = p;
        }
      }
      vecScore[t][s] = fBest;
      vecFrom[t][s] = (int8_t)nBest;
    }
  }
  int nState = vecScore[n - 1][S] > vecScore[n - 1][E] ? S : (vecScore[n - 1][S] == vecScore[n - 1][E] ? S : E);
  std::vector<int8_t> vecLabel(n);
  for (size_t t = n; t-- > 0;) {
    vecLabel[t] = (int8_t)nState;
    nState = vecFrom[t][nState];
  }
  size_t nBegin = 0, nNext = 0;
  for (size_t i = 0; i < n; ++i) {
    if (vecLabel[i] == B) {
      nBegin = i;
    } else if (vecLabel[i] == E) {
      vecWordLengths.push_back(i + 1 - nBegin);
      nNext = i + 1;
    } else if (vecLabel[i] == S) {
      vecWordLengths.push_back(1);
      nNext = i + 1;
    }
  }
  if (nNext < n) vecWordLengths.push_back(n - nNext);
}
