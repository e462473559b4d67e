#include "keyscan/ComplexFilter.h"

#include <algorithm>

#include "utility/DataFileReader.h"
#include "utility/DataFileWriter.h"
#include "utility/Utf8.h"

namespace {
const char kArrow[] = "-->";
const int kMaxDistance = 1000;
const uint32_t kVersion = 1;

bool ParseDistance(const tstring& sText, int& nDistance) {
  if (sText.empty() || sText.size() > 4) return false;
  nDistance = 0;
  for (char c : sText) {
    if (c < '0' || c > '9') return false;
    nDistance = nDistance * 10 + (c - '0');
  }
  return nDistance <= kMaxDistance;
}

std::vector<tstring> Split(const tstring& sText, char cSep) {
  std::vector<tstring> vecPart;
  size_t nStart = 0;
  for (size_t nEnd; (nEnd = sText.find(cSep, nStart)) != tstring::npos; nStart = nEnd + 1)
    vecPart.push_back(sText.substr(nStart, nEnd - nStart));
  vecPart.push_back(sText.substr(nStart));
  return vecPart;
}
}  // namespace

bool IsKeywordLongEnough(const tstring& sWord) {
  if (sWord.size() < 2) return false;
  if ((unsigned char)sWord[0] < 0x80) return true;
  uint32_t nChar;
  return DecodeUtf8(sWord.data(), sWord.size(), nChar) < sWord.size();
}

size_t CComplexFilter::AddTerm(const tstring& sTerm, _tExpression& expr) {
  auto it = std::find(expr.vecTerm.begin(), expr.vecTerm.end(), sTerm);
  if (it != expr.vecTerm.end()) return (size_t)(it - expr.vecTerm.begin());
  expr.vecTerm.push_back(sTerm);
  return expr.vecTerm.size() - 1;
}

bool CComplexFilter::ParseClause(const tstring& sClause, _tExpression& expr) {
  _tClause clause{kTerm, 0, 0, 0};
  tstring sTerm = sClause;
  if (!sTerm.empty() && sTerm[0] == '!') {
    clause.eKind = kNot;
    sTerm.erase(0, 1);
  }
  std::vector<tstring> vecPart = Split(sTerm, '~');
  if (vecPart.size() == 3) {
    if (clause.eKind == kNot || !ParseDistance(vecPart[1], clause.nDistance)) return false;
    if (!IsKeywordLongEnough(vecPart[0]) || !IsKeywordLongEnough(vecPart[2])) return false;
    clause.eKind = kNear;
    clause.nTerm = AddTerm(vecPart[0], expr);
    clause.nTerm2 = AddTerm(vecPart[2], expr);
  } else if (vecPart.size() == 1 && IsKeywordLongEnough(sTerm) && sTerm[0] != '!') {
    clause.nTerm = AddTerm(sTerm, expr);
  } else {
    return false;
  }
  expr.vecClause.push_back(clause);
  return true;
}

CComplexFilter::EImport CComplexFilter::Parse(const tstring& sText, _tExpression& expr) {
  size_t nArrow = sText.find(kArrow);
  if (nArrow != tstring::npos) {
    tstring sWrong = sText.substr(0, nArrow), sRight = sText.substr(nArrow + 3);
    if (!IsKeywordLongEnough(sWrong) || sRight.empty() || sRight == sWrong ||
        sRight.find(kArrow) != tstring::npos)
      return kMalformed;
    expr.vecTerm.push_back(sWrong);
    expr.vecClause.push_back({kTerm, 0, 0, 0});
    expr.sCorrection = sRight;
    return kAccepted;
  }
  if (sText.find_first_of("&~") == tstring::npos && sText[0] != '!') return kNotExpression;
  for (const tstring& sClause : Split(sText, '&'))
    if (!ParseClause(sClause, expr)) return kMalformed;
  bool bPositive = std::any_of(expr.vecClause.begin(), expr.vecClause.end(),
                               [](const _tClause& c) { return c.eKind != kNot; });
  return bPositive ? kAccepted : kMalformed;
}

CComplexFilter::EImport CComplexFilter::ImportLine(const tstring& sExpression, const tstring& sClass,
                                                   int nWeight) {
  _tExpression expr;
  if (sExpression.empty()) return kNotExpression;
  EImport eResult = Parse(sExpression, expr);
  if (eResult != kAccepted) return eResult;
  expr.sText = sExpression;
  expr.sClass = sClass;
  expr.nWeight = nWeight;
  expr.vecTermId.assign(expr.vecTerm.size(), -1);
  auto it = std::find_if(m_vecExpr.begin(), m_vecExpr.end(),
                         [&](const _tExpression& e) { return e.sText == sExpression; });
  if (it != m_vecExpr.end())
    *it = std::move(expr);
  else
    m_vecExpr.push_back(std::move(expr));
  m_vecCorrection.clear();  // stale until Org2Data
  return kAccepted;
}

bool CComplexFilter::Remove(const tstring& sExpression) {
  auto it = std::find_if(m_vecExpr.begin(), m_vecExpr.end(),
                         [&](const _tExpression& e) { return e.sText == sExpression; });
  if (it == m_vecExpr.end()) return false;
  m_vecExpr.erase(it);
  m_vecCorrection.clear();
  return true;
}

void CComplexFilter::Export(const std::function<void(const tstring&, const tstring&, int)>& fn) const {
  for (const _tExpression& expr : m_vecExpr) fn(expr.sText, expr.sClass, expr.nWeight);
}

void CComplexFilter::ForEachTerm(const std::function<void(const tstring&)>& fn) const {
  for (const _tExpression& expr : m_vecExpr)
    for (const tstring& sTerm : expr.vecTerm) fn(sTerm);
}

void CComplexFilter::Org2Data(const CPDAT& keyDict) {
  m_vecCorrection.clear();
  for (size_t i = 0; i < m_vecExpr.size(); ++i) {
    _tExpression& expr = m_vecExpr[i];
    for (size_t t = 0; t < expr.vecTerm.size(); ++t) expr.vecTermId[t] = keyDict.GetId(expr.vecTerm[t]);
    if (!expr.sCorrection.empty() && expr.vecTermId[0] >= 0) m_vecCorrection.emplace_back(expr.vecTermId[0], (int)i);
  }
  // The first pair of a wrong form wins when several name it.
  std::stable_sort(m_vecCorrection.begin(), m_vecCorrection.end(),
                   [](const std::pair<int, int>& a, const std::pair<int, int>& b) { return a.first < b.first; });
}

const tstring* CComplexFilter::GetCorrection(int nTermId) const {
  auto it = std::lower_bound(m_vecCorrection.begin(), m_vecCorrection.end(), std::make_pair(nTermId, -1),
                             [](const std::pair<int, int>& a, const std::pair<int, int>& b) { return a.first < b.first; });
  if (it == m_vecCorrection.end() || it->first != nTermId) return nullptr;
  return &m_vecExpr[it->second].sCorrection;
}

bool CComplexFilter::HasExpressions() const {
  return std::any_of(m_vecExpr.begin(), m_vecExpr.end(), [](const _tExpression& e) { return e.sCorrection.empty(); });
}

bool CComplexFilter::Holds(const _tExpression& expr, const std::unordered_map<int, std::vector<_tTermHit>>& mapHits,
                           const _tTermHit*& pFirst) const {
  static const std::vector<_tTermHit> kNone;
  auto hitsOf = [&](size_t nTerm) -> const std::vector<_tTermHit>& {
    auto it = mapHits.find(expr.vecTermId[nTerm]);
    return it == mapHits.end() ? kNone : it->second;
  };
  pFirst = nullptr;
  for (const _tClause& clause : expr.vecClause) {
    const std::vector<_tTermHit>& first = hitsOf(clause.nTerm);
    if (clause.eKind == kNot) {
      if (!first.empty()) return false;
      continue;
    }
    const _tTermHit* pHit = nullptr;
    if (clause.eKind == kTerm) {
      if (!first.empty()) pHit = &first[0];
    } else {
      const std::vector<_tTermHit>& second = hitsOf(clause.nTerm2);
      for (const _tTermHit& a : first) {
        auto it = std::find_if(second.begin(), second.end(), [&](const _tTermHit& b) {
          return b.charStart >= a.charEnd && b.charStart - a.charEnd <= (size_t)clause.nDistance;
        });
        if (it != second.end()) {
          pHit = &a;
          break;
        }
      }
    }
    if (pHit == nullptr) return false;
    if (pFirst == nullptr) pFirst = pHit;
  }
  return pFirst != nullptr;
}

void CComplexFilter::Evaluate(const std::unordered_map<int, std::vector<_tTermHit>>& mapHits,
                              std::vector<_tComplexHit>& vecFound) const {
  for (size_t i = 0; i < m_vecExpr.size(); ++i) {
    const _tExpression& expr = m_vecExpr[i];
    const _tTermHit* pFirst = nullptr;
    if (expr.sCorrection.empty() && Holds(expr, mapHits, pFirst))
      vecFound.push_back({pFirst->offset, pFirst->length, (int)i});
  }
}

bool CComplexFilter::Save(const tstring& sPrefix) const {
  CDataFileWriter writer("CPLX", kVersion);
  writer.PutU64(m_vecExpr.size());
  for (const _tExpression& expr : m_vecExpr) {
    writer.PutString(expr.sText);
    writer.PutString(expr.sClass);
    writer.PutI32(expr.nWeight);
  }
  return writer.Save(sPrefix + "complex.dat");
}

bool CComplexFilter::Load(const tstring& sPrefix) {
  Clear();
  CDataFileReader reader;
  if (!reader.Open(sPrefix + "complex.dat", "CPLX", kVersion)) return false;
  uint64_t nCount = 0;
  if (!reader.GetCount(nCount, 20)) return false;
  for (uint64_t i = 0; i < nCount; ++i) {
    tstring sText, sClass;
    int32_t nWeight = 0;
    if (!reader.GetString(sText) || !reader.GetString(sClass) || !reader.GetI32(nWeight) ||
        ImportLine(sText, sClass, nWeight) != kAccepted) {
      Clear();
      return reader.Fail("an expression does not parse");
    }
  }
  if (reader.Finish()) return true;
  Clear();
  return false;
}

void CComplexFilter::Clear() {
  m_vecExpr.clear();
  m_vecCorrection.clear();
}
