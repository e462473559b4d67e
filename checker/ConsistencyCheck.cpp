#include "checker/ConsistencyCheck.h"

#include <algorithm>
#include <functional>
#include <map>
#include <vector>

#include "checker/CheckResult.h"
#include "docx/Document.h"
#include "utility/Num2FontSize.h"

namespace {

// The main text: from the first heading after the table of contents (or the
// first heading, without one) up to the reference list. Covers, forms and
// declarations before it, and the references after, have formats of their own.
std::pair<size_t, size_t> MainText(const CDocument& doc) {
  const std::vector<int>& vecEntries = doc.ContentEntries();
  const size_t nAfterContents = vecEntries.empty() ? 0 : (size_t)vecEntries.back() + 1;
  size_t nStart = doc.m_vecParagraph.size();
  for (int nIndex : doc.Headings())
    if ((size_t)nIndex >= nAfterContents) {
      nStart = (size_t)nIndex;
      break;
    }
  const size_t nEnd = doc.ReferenceStart() > 0 ? (size_t)doc.ReferenceStart() - 1 : doc.m_vecParagraph.size();
  return {nStart, std::max(nStart, nEnd)};
}

// A line of a form ("学号：____", "□ 同意") rather than running text.
bool IsFormLine(const tstring& sText) {
  return sText.find("__") != tstring::npos || sText.find("□") != tstring::npos || sText.find("  ") != tstring::npos;
}

// Running Chinese text of some length: at least kMinBodyCharacters
// characters, a third of them Chinese. Code, formulas and quotations in
// Latin script have formats of their own. Counted on the bytes: a
// character starts at every byte that is no continuation byte, and the
// ideographs U+4000..U+9FFF at the lead bytes 0xE4..0xE9.
bool IsChineseProse(const tstring& sText) {
  size_t nHan = 0, nAll = 0;
  for (unsigned char c : sText) {
    nAll += (c & 0xC0) != 0x80;
    nHan += c >= 0xE4 && c <= 0xE9;
  }
  return nAll >= CConsistencyCheck::kMinBodyCharacters && nHan * 3 >= nAll;
}

// The kind a paragraph is compared within; -1 for none.
int KindOf(const _tParagraph& para) {
  if (para.level >= 1 && para.level <= 4) return para.level;
  if (para.level == kLevelFigureCaption || para.level == kLevelTableCaption) return para.level;
  if (para.level == kLevelBody && !IsFormLine(para.text) && IsChineseProse(para.text)) return kLevelBody;
  return -1;
}

// One property of the paragraphs of one kind: its values, each with the
// paragraphs that have it.
struct _tPropertyGroup {
  std::map<tstring, std::vector<const _tParagraph*>> mapValue2Paras;
  size_t nCount = 0;

  void Add(const tstring& sValue, const _tParagraph& para) {
    mapValue2Paras[sValue].push_back(&para);
    ++nCount;
  }
  // The value most paragraphs have when it is a clear majority; null otherwise.
  const tstring* Majority() const {
    if (nCount < CConsistencyCheck::kMinGroup) return nullptr;
    const tstring* pBest = nullptr;
    size_t nBest = 0;
    for (const auto& kv : mapValue2Paras)
      if (kv.second.size() > nBest) {
        pBest = &kv.first;
        nBest = kv.second.size();
      }
    return nBest * 100 >= nCount * (size_t)CConsistencyCheck::kMajorityPercent ? pBest : nullptr;
  }
};

struct _tProperty {
  const char* szErrorId;
  int nField;
  // The value a paragraph sets, in the group key it is compared within; ""
  // when it sets none.
  std::function<tstring(const _tParagraph&, tstring&)> fnValue;
  std::function<tstring(const tstring&)> fnShow;  // the value as a finding names it
};

}  // namespace

int CConsistencyCheck::Check(const CDocument& doc, CCheckResult& result) const {
  const _tProperty kProperties[] = {
      {"15.1", 0,
       [](const _tParagraph& p, tstring& sGroup) {
         sGroup = IsLatinFontName(p.font) ? "latin" : "cjk";
         return p.font;
       },
       [](const tstring& s) { return s; }},
      {"15.2", 1, [](const _tParagraph& p, tstring&) { return p.font_size > 0 ? std::to_string(p.font_size) : ""; },
       [this](const tstring& s) { return FontSizeName(m_pSizeNames, atoi(s.c_str())); }},
      {"15.3", 4, [](const _tParagraph& p, tstring&) { return p.line_space > 0 ? std::to_string(p.line_space) : ""; },
       [](const tstring& s) { return std::to_string(atoi(s.c_str()) / 20); }},
  };
  int nAdded = 0;
  const std::pair<size_t, size_t> main = MainText(doc);
  std::vector<int> vecKinds;  // per paragraph of the main text, found once for every property
  for (size_t i = main.first; i < main.second; ++i) vecKinds.push_back(KindOf(doc.m_vecParagraph[i]));
  for (const _tProperty& property : kProperties) {
    std::map<std::pair<int, tstring>, _tPropertyGroup> mapGroups;  // (kind, script class) -> values
    for (size_t i = main.first; i < main.second; ++i) {
      const _tParagraph& para = doc.m_vecParagraph[i];
      const int nKind = vecKinds[i - main.first];
      tstring sGroup;
      const tstring sValue = nKind == -1 || para.text.empty() ? tstring() : property.fnValue(para, sGroup);
      if (!sValue.empty()) mapGroups[{nKind, sGroup}].Add(sValue, para);
    }
    for (const auto& group : mapGroups) {
      const tstring* pMajority = group.second.Majority();
      if (pMajority == nullptr) continue;
      const tstring sMajority = property.fnShow(*pMajority);
      for (const auto& kv : group.second.mapValue2Paras) {
        if (kv.first == *pMajority) continue;
        const tstring sShown = property.fnShow(kv.first);
        for (const _tParagraph* pPara : kv.second) {
          result.AddOnParagraph(*pPara, property.szErrorId, property.nField, 1, sShown, sMajority);
          ++nAdded;
        }
      }
    }
  }
  return nAdded;
}
