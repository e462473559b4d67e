#include "docx/Numbering.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <set>

#include "utility/XmlScan.h"

namespace {

// An integer written out in full; "", "abc" and "3x" are none, where ToInt alone would give 0 or 3.
bool ReadInt(const tstring& sText, int& nValue) {
  size_t i = !sText.empty() && (sText[0] == '-' || sText[0] == '+') ? 1 : 0;
  if (i == sText.size()) return false;
  for (size_t k = i; k < sText.size(); ++k)
    if (sText[k] < '0' || sText[k] > '9') return false;
  nValue = ToInt(sText);
  return true;
}

bool ChildInt(const char* p, const char* pEnd, const char* sElement, int& nValue) {
  tstring sValue;
  return FindElementAttr(p, pEnd, sElement, "w:val", sValue) && ReadInt(sValue, nValue);
}

bool OwnInt(const char* pTag, const char* pEnd, const char* sElement, const char* sAttr, int& nValue) {
  tstring sValue;
  return FindElementAttr(pTag, pEnd, sElement, sAttr, sValue) && ReadInt(sValue, nValue);
}

// An on/off property: present and not switched off by its w:val.
bool ChildOn(const char* p, const char* pEnd, const char* sElement) {
  tstring sTag = tstring("<") + sElement;
  if (FindElement(p, pEnd, sTag.c_str(), true) == nullptr) return false;
  tstring sValue;
  if (!FindElementAttr(p, pEnd, sElement, "w:val", sValue)) return true;
  return sValue != "0" && sValue != "false" && sValue != "off";
}

bool IsNameEnd(char c) { return c == ' ' || c == '>' || c == '/' || c == '\t' || c == '\r' || c == '\n'; }

// The end of the element sName ("w:lvl") whose tag starts at pTag: its
// closing tag, else the next element of the same name (elements of these
// names do not nest), else pEnd. It steps from '<' to '<', never searching to
// the end of the text, so an unclosed element repeated many times costs no
// more than a closed one.
const char* ElementEnd(const char* pTag, const char* pEnd, const char* sName) {
  const char* pGt = static_cast<const char*>(memchr(pTag, '>', (size_t)(pEnd - pTag)));
  if (pGt == nullptr) return pEnd;
  if (pGt[-1] == '/') return pGt + 1;
  const size_t nName = strlen(sName);
  for (const char* q = FindIn(pGt + 1, pEnd, "<"); q; q = FindIn(q + 1, pEnd, "<")) {
    const char* pName = q + 1 < pEnd && q[1] == '/' ? q + 2 : q + 1;
    if ((size_t)(pEnd - pName) < nName || memcmp(pName, sName, nName) != 0) continue;
    if (pName + nName == pEnd || IsNameEnd(pName[nName])) return q;  // "w:lvlText" is not "w:lvl"
  }
  return pEnd;
}

// Calls fn(pStart, pElementEnd) for each element sName in [p, pEnd).
template <class F>
void ForEachTag(const char* p, const char* pEnd, const char* sName, F&& fn) {
  tstring sTag = tstring("<") + sName;
  for (const char* q = FindElement(p, pEnd, sTag.c_str(), true); q;) {
    const char* pElementEnd = ElementEnd(q, pEnd, sName);
    fn(q, pElementEnd);
    q = FindElement(std::max(pElementEnd, q + 1), pEnd, sTag.c_str(), true);
  }
}


}  // namespace

bool CNumbering::Load(const char* pXml, const char* pEnd, const std::map<tstring, int>& mapStyleNum) {
  m_mapAbstract.clear();
  m_mapNum.clear();
  m_vecLevels.clear();
  if (pXml == nullptr || pEnd <= pXml) return false;
  ForEachTag(pXml, pEnd, "w:abstractNum", [this](const char* p, const char* e) { ReadAbstract(p, e); });
  ForEachTag(pXml, pEnd, "w:num", [this](const char* p, const char* e) { ReadNum(p, e); });
  ResolveLinks(mapStyleNum);
  return !Empty();
}

void CNumbering::ReadAbstract(const char* p, const char* pEnd) {
  int nId = -1;
  if (!OwnInt(p, pEnd, "w:abstractNum", "w:abstractNumId", nId) || nId < 0 || m_mapAbstract.count(nId)) return;
  _tAbstract& abstract = m_mapAbstract[nId];
  std::fill(std::begin(abstract.levels), std::end(abstract.levels), -1);
  FindElementAttr(p, pEnd, "w:numStyleLink", "w:val", abstract.num_style_link);
  FindElementAttr(p, pEnd, "w:styleLink", "w:val", abstract.style_link);
  ForEachTag(p, pEnd, "w:lvl", [&](const char* q, const char* e) {
    int nIlvl = -1;
    if (!OwnInt(q, e, "w:lvl", "w:ilvl", nIlvl) || nIlvl < 0 || nIlvl >= kNumLevels) return;
    if (abstract.levels[nIlvl] < 0) abstract.levels[nIlvl] = AddLevel(q, e);
  });
}

void CNumbering::ReadNum(const char* p, const char* pEnd) {
  int nId = 0;
  if (!OwnInt(p, pEnd, "w:num", "w:numId", nId) || nId < 1 || m_mapNum.count(nId)) return;
  _tNum& num = m_mapNum[nId];
  std::fill(std::begin(num.levels), std::end(num.levels), -1);
  std::fill(std::begin(num.start_override), std::end(num.start_override), -1);
  if (!ChildInt(p, pEnd, "w:abstractNumId", num.abstract_id) || num.abstract_id < 0) num.abstract_id = -1;
  ForEachTag(p, pEnd, "w:lvlOverride", [&](const char* q, const char* e) {
    int nIlvl = -1;
    if (!OwnInt(q, e, "w:lvlOverride", "w:ilvl", nIlvl) || nIlvl < 0 || nIlvl >= kNumLevels) return;
    int nStart = 0;
    if (num.start_override[nIlvl] < 0 && ChildInt(q, e, "w:startOverride", nStart))
      num.start_override[nIlvl] = std::max(nStart, 0);
    const char* pLevel = FindElement(q, e, "<w:lvl", true);
    if (pLevel && num.levels[nIlvl] < 0) num.levels[nIlvl] = AddLevel(pLevel, ElementEnd(pLevel, e, "w:lvl"));
  });
}

int CNumbering::AddLevel(const char* p, const char* pEnd) {
  _tNumLevel level;
  int nValue = 0;
  if (ChildInt(p, pEnd, "w:start", nValue)) level.start = std::max(nValue, 0);
  // A format the reader may not know comes first, with a known one as its fallback.
  tstring sFormat;
  for (const char* q = FindElement(p, pEnd, "<w:numFmt", true); q; q = FindElement(q + 1, pEnd, "<w:numFmt", true))
    if (FindElementAttr(q, pEnd, "w:numFmt", "w:val", sFormat) && sFormat != "custom" && !sFormat.empty()) {
      level.num_fmt = sFormat;
      break;
    }
  tstring sValue;
  if (FindElementAttr(p, pEnd, "w:lvlText", "w:val", sValue)) level.lvl_text = DecodeEntities(sValue);
  level.is_lgl = ChildOn(p, pEnd, "w:isLgl");
  if (ChildInt(p, pEnd, "w:lvlRestart", nValue)) level.restart = nValue < 0 ? -1 : nValue;
  if (FindElementAttr(p, pEnd, "w:suff", "w:val", sValue) && (sValue == "space" || sValue == "nothing"))
    level.suffix = sValue;
  FindElementAttr(p, pEnd, "w:pStyle", "w:val", level.p_style);
  m_vecLevels.push_back(std::move(level));
  return (int)m_vecLevels.size() - 1;
}

// Every abstract numbering learns whose levels it shows. Each walk along the
// links marks all it passes, so the whole costs one pass over the links.
void CNumbering::ResolveLinks(const std::map<tstring, int>& mapStyleNum) {
  std::map<tstring, int> mapStyleLink;
  for (const auto& it : m_mapAbstract)
    if (!it.second.style_link.empty()) mapStyleLink.emplace(it.second.style_link, it.first);
  for (auto& it : m_mapAbstract) {
    std::vector<int> vecPath;
    std::set<int> setPath;
    int nResult = -1;
    for (int nCur = it.first;;) {
      _tAbstract& cur = m_mapAbstract.at(nCur);
      if (cur.levels_from >= 0) {
        nResult = cur.levels_from;
        break;
      }
      if (cur.num_style_link.empty()) {
        nResult = cur.levels_from = nCur;
        break;
      }
      vecPath.push_back(nCur);
      setPath.insert(nCur);
      int nNext = LinkTarget(nCur, mapStyleNum, mapStyleLink);
      if (nNext < 0 || setPath.count(nNext)) break;  // leads nowhere, or round in a circle
      nCur = nNext;
    }
    for (int nId : vecPath) m_mapAbstract.at(nId).levels_from = nResult >= 0 ? nResult : nId;
  }
}

// The abstract numbering that the numStyleLink of nAbstractId leads to; -1 when none.
int CNumbering::LinkTarget(int nAbstractId, const std::map<tstring, int>& mapStyleNum,
                           const std::map<tstring, int>& mapStyleLink) const {
  const tstring& sStyle = m_mapAbstract.at(nAbstractId).num_style_link;
  auto itStyle = mapStyleNum.find(sStyle);
  const _tNum* pNum = itStyle != mapStyleNum.end() ? Num(itStyle->second) : nullptr;
  if (pNum && pNum->abstract_id != nAbstractId && m_mapAbstract.count(pNum->abstract_id)) return pNum->abstract_id;
  auto itLink = mapStyleLink.find(sStyle);
  if (itLink != mapStyleLink.end() && itLink->second != nAbstractId) return itLink->second;
  return -1;
}

const CNumbering::_tNum* CNumbering::Num(int nNumId) const {
  auto it = m_mapNum.find(nNumId);
  return it == m_mapNum.end() ? nullptr : &it->second;
}

int CNumbering::AbstractOf(int nNumId) const {
  const _tNum* pNum = Num(nNumId);
  return pNum && m_mapAbstract.count(pNum->abstract_id) ? pNum->abstract_id : -1;
}

const _tNumLevel* CNumbering::Level(int nNumId, int nIlvl) const {
  int nAbstract = AbstractOf(nNumId);
  if (nAbstract < 0 || nIlvl < 0 || nIlvl >= kNumLevels) return nullptr;
  const _tNum& num = *Num(nNumId);
  if (num.levels[nIlvl] >= 0) return &m_vecLevels[(size_t)num.levels[nIlvl]];
  const _tAbstract& abstract = m_mapAbstract.at(nAbstract);
  auto itFrom = m_mapAbstract.find(abstract.levels_from);
  int nIndex = (itFrom != m_mapAbstract.end() ? itFrom->second : abstract).levels[nIlvl];
  return nIndex >= 0 ? &m_vecLevels[(size_t)nIndex] : nullptr;
}

int CNumbering::Start(int nNumId, int nIlvl) const {
  const _tNumLevel* pLevel = Level(nNumId, nIlvl);
  if (pLevel == nullptr) return -1;
  return HasStartOverride(nNumId, nIlvl) ? Num(nNumId)->start_override[nIlvl] : pLevel->start;
}

bool CNumbering::HasStartOverride(int nNumId, int nIlvl) const {
  const _tNum* pNum = Num(nNumId);
  return pNum && nIlvl >= 0 && nIlvl < kNumLevels && pNum->start_override[nIlvl] >= 0;
}

int CNumbering::LevelOfStyle(int nNumId, const tstring& sStyleId) const {
  if (sStyleId.empty()) return -1;
  for (int nIlvl = 0; nIlvl < kNumLevels; ++nIlvl) {
    const _tNumLevel* pLevel = Level(nNumId, nIlvl);
    if (pLevel && pLevel->p_style == sStyleId) return nIlvl;
  }
  return -1;
}
