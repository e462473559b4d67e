#include "checker/FormatComparison.h"

#include <algorithm>

#include "checker/CheckResult.h"
#include "checker/SectionOrderCheck.h"
#include "docx/DocFormat.h"
#include "docx/Document.h"
#include "utility/Num2FontSize.h"
#include "utility/NumberOrder.h"

namespace {

const int kSkippedLevels[] = {kLevelTable, kLevelFigure, kLevelTextBox, kLevelBody, -101, -1, -2, -3};

bool IsSkipped(const _tParagraph& para) {
  if (para.text.empty()) return true;
  for (int nLevel : kSkippedLevels)
    if (para.level == nLevel) return true;
  return false;
}

// The key of highest weight; the smallest key wins a tie (maps iterate in
// ascending order and only a strictly greater weight replaces the best).
template <class K>
const K* Heaviest(const std::map<K, int>& mapWeights, bool (*fnTake)(const K&, const K&), const K& probe) {
  const K* pBest = nullptr;
  int nBest = 0;
  for (const auto& item : mapWeights)
    if (fnTake(item.first, probe) && (pBest == nullptr || item.second > nBest)) {
      pBest = &item.first;
      nBest = item.second;
    }
  return pBest;
}

bool AnyKey(const int&, const int&) { return true; }

// Font names of one script class: both Latin names or both Chinese ones.
bool SameScript(const tstring& sFont, const tstring& sProbe) {
  return !sFont.empty() && !sProbe.empty() && IsLatinFontName(sFont) == IsLatinFontName(sProbe);
}

// The numbering found in a paragraph when its style is not the pattern's,
// with the paragraph's number rendered in the pattern's style.
bool NumberingDiffers(const _tParagraph& para, const _tSection_Format& pattern, tstring& sFound, tstring& sNew) {
  if (pattern.num_format == kStyleNone) return false;
  _tSection_Info found;
  if (para.level == kLevelFormula) {  // the index stands in brackets at the end
    size_t nOpen = para.text.rfind('(');
    ExtractOrder(nOpen == tstring::npos ? para.text : para.text.substr(nOpen), kOrderFormula, found);
  } else {
    ExtractOrder(para.NumberedText(), kOrderHeading, found);
  }
  if (found.order < 1 || found.IsSameFormat(pattern)) return false;
  sFound = found.text;
  sNew = SetNewSectionNo(found, pattern);
  return true;
}

}  // namespace

CFormatComparison::CFormatComparison(const CDocFormat& format, const CNum2FontSize* pSizeNames)
    : m_format(format), m_pSizeNames(pSizeNames), m_vecMet(format.m_pDict ? format.m_pDict->GetCount() : 0, false) {}

tstring CFormatComparison::SizeName(int nHalfPoints) const { return FontSizeName(m_pSizeNames, nHalfPoints); }

int CFormatComparison::CheckFormatOnParagraph(const _tParagraph& para, CCheckResult& result) {
  if (IsSkipped(para)) return 1;
  for (int nId : m_format.FindRequired(para.text))
    if (nId >= 0 && (size_t)nId < m_vecMet.size()) m_vecMet[nId] = true;
  const _tFormat& format = m_format.FormatOfLevel(para.level);
  auto fnAdd = [&](const char* szErrorId, int nField, const tstring& sOrg, const tstring& sNew) {
    result.AddOnParagraph(para, szErrorId, nField, 1, sOrg, sNew);
  };
  if (para.line_space != 0 && para.level >= 0 && para.level <= 4 && !format.mapLineSpace2Freq.empty() &&
      !format.mapLineSpace2Freq.count(para.line_space))
    fnAdd("1.1.3", 4, std::to_string(para.line_space / 20),
          std::to_string(*Heaviest<int>(format.mapLineSpace2Freq, AnyKey, 0) / 20));
  if (para.font_size != 0 && !format.mapFontSize2Freq.empty() && !format.mapFontSize2Freq.count(para.font_size))
    fnAdd("1.1.2", 1, SizeName(para.font_size), SizeName(*Heaviest<int>(format.mapFontSize2Freq, AnyKey, 0)));
  if (!para.font.empty() && !format.mapFont2Freq.empty() && !format.mapFont2Freq.count(para.font)) {
    const tstring* pFont = Heaviest<tstring>(format.mapFont2Freq, SameScript, para.font);
    if (pFont) fnAdd("1.1.1", 0, para.font, *pFont);
  }
  tstring sFound, sNew;
  if (NumberingDiffers(para, format.section_format, sFound, sNew)) fnAdd("1.1.4", 2, sFound, sNew);
  return 1;
}

int CFormatComparison::CheckRequired(CCheckResult& result, unsigned int nID) const {
  int nAdded = 0;
  for (size_t i = 0; i < m_vecMet.size(); ++i) {
    if (m_vecMet[i]) continue;
    _tCheckResult finding;
    finding.page_num = 0;
    finding.para_id = nID;
    finding.offset = (uint32_t)i;
    finding.error_id = "12.1";
    finding.field_id = 5;  // a missing content: a font finding without text would be dropped
    finding.revise_type = 4;
    finding.new_str = m_format.m_pWordList ? tstring(m_format.m_pWordList->GetWord((int)i)) : tstring();
    result.AddResult(finding);
    ++nAdded;
  }
  return nAdded;
}

int CFormatComparison::CheckDocument(const CDocument& doc, CCheckResult& result) {
  doc.ForEachParagraph([&](const _tParagraph& para) { CheckFormatOnParagraph(para, result); });
  CheckRequired(result, (unsigned)-1);
  CSectionOrderCheck order(doc, result);
  const int nStart = std::max(doc.ReferenceStart(), 0);
  for (int i = nStart; i <= doc.ReferenceEnd() && (size_t)i < doc.m_vecParagraph.size(); ++i)
    order.CheckReference(doc.m_vecParagraph[i]);
  return 1;
}
