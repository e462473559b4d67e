#include "docx/NumberingCounter.h"

#include <climits>
#include <cstring>

#include "utility/ChineseNumber.h"
#include "utility/NumberOrder.h"
#include "utility/Utf8.h"

namespace {

const int kMaxLetterValue = 26 * 30;  // 30 letters long at most

tstring Letters(int nValue, char cA) {
  if (nValue < 1 || nValue > kMaxLetterValue) return std::to_string(nValue);
  return tstring((size_t)((nValue - 1) / 26 + 1), (char)(cA + (nValue - 1) % 26));
}

// Each decimal digit as a character of its own: 〇一二 or full-width digits.
tstring DigitByDigit(int nValue, const char32_t* sDigits) {
  tstring sOut;
  for (char c : std::to_string(nValue)) AppendUtf8(sOut, (uint32_t)sDigits[c - '0']);
  return sOut;
}

// A character from a run of nCount consecutive code points, value 1 first.
tstring FromRun(int nValue, uint32_t nFirst, int nCount) {
  if (nValue < 1 || nValue > nCount) return std::to_string(nValue);
  tstring sOut;
  AppendUtf8(sOut, nFirst + (uint32_t)(nValue - 1));
  return sOut;
}

tstring FromList(int nValue, const char32_t* sList, int nCount) {
  if (nValue < 1 || nValue > nCount) return std::to_string(nValue);
  tstring sOut;
  AppendUtf8(sOut, (uint32_t)sList[nValue - 1]);
  return sOut;
}

const char32_t kStems[] = U"甲乙丙丁戊己庚辛壬癸";
const char32_t kBranches[] = U"子丑寅卯辰巳午未申酉戌亥";

tstring Sexagenary(int nValue) {
  if (nValue < 1 || nValue > 60) return std::to_string(nValue);
  tstring sOut;
  AppendUtf8(sOut, (uint32_t)kStems[(nValue - 1) % 10]);
  AppendUtf8(sOut, (uint32_t)kBranches[(nValue - 1) % 12]);
  return sOut;
}

// Financial numerals in traditional characters: the simplified ones swapped.
tstring TraditionalFinancial(int nValue) {
  static const struct { const char* from; const char* to; } kSwaps[] = {
      {"贰", "貳"}, {"叁", "參"}, {"陆", "陸"}, {"万", "萬"}, {"亿", "億"}};
  tstring sOut = NumberToChinese(nValue, true);
  for (const auto& swap : kSwaps)
    for (size_t n = sOut.find(swap.from); n != tstring::npos; n = sOut.find(swap.from, n))
      sOut.replace(n, strlen(swap.from), swap.to);
  return sOut;
}

tstring Ordinal(int nValue) {
  int nTens = nValue % 100, nUnits = nValue % 10;
  const char* sEnd = (nTens >= 11 && nTens <= 13) || nUnits > 3 || nUnits == 0 ? "th"
                     : nUnits == 1                                             ? "st"
                     : nUnits == 2                                             ? "nd"
                                                                               : "rd";
  return std::to_string(nValue) + sEnd;
}

tstring ChineseCounting(int nValue, bool bThousand) {
  static const char32_t kDigits[] = U"〇一二三四五六七八九";
  if (nValue == 0) return bThousand ? NumberToChinese(0) : "〇";
  if (bThousand || nValue < 100) return NumberToChinese(nValue);
  return DigitByDigit(nValue, kDigits);
}

}  // namespace

tstring FormatListNumber(int nValue, const tstring& sFmt) {
  if (sFmt == "bullet" || sFmt == "none") return "";
  if (nValue < 0) return std::to_string(nValue);
  if (sFmt == "decimalZero") return (nValue < 10 ? "0" : "") + std::to_string(nValue);
  if (sFmt == "decimalFullWidth" || sFmt == "decimalFullWidth2") return RenderNumber(nValue, kStyleFullWidthArabic);
  if (sFmt == "upperLetter") return Letters(nValue, 'A');
  if (sFmt == "lowerLetter") return Letters(nValue, 'a');
  if (sFmt == "upperRoman") return RenderNumber(nValue, kStyleUpperRoman);
  if (sFmt == "lowerRoman") return RenderNumber(nValue, kStyleLowerRoman);
  if (sFmt == "chineseCounting") return ChineseCounting(nValue, false);
  if (sFmt == "chineseCountingThousand") return ChineseCounting(nValue, true);
  if (sFmt == "ideographDigital") return DigitByDigit(nValue, U"〇一二三四五六七八九");
  if (sFmt == "chineseLegalSimplified") return NumberToChinese(nValue, true);
  if (sFmt == "ideographLegalTraditional") return TraditionalFinancial(nValue);
  if (sFmt == "ideographTraditional") return FromList(nValue, kStems, 10);
  if (sFmt == "ideographZodiac") return FromList(nValue, kBranches, 12);
  if (sFmt == "ideographZodiacTraditional") return Sexagenary(nValue);
  if (sFmt == "decimalEnclosedCircle" || sFmt == "decimalEnclosedCircleChinese") return RenderNumber(nValue, kStyleCircled);
  if (sFmt == "decimalEnclosedParen") return RenderNumber(nValue, kStyleParenArabic);
  if (sFmt == "decimalEnclosedFullstop") return FromRun(nValue, 0x2488, 20);
  if (sFmt == "ordinal") return Ordinal(nValue);
  return std::to_string(nValue);
}

CNumberingCounter::CNumberingCounter(const CNumbering& numbering) : m_numbering(numbering) {}

std::pair<int, int> CNumberingCounter::ListKey(int nNumId) const {
  for (int nLevel = 0; nLevel < kNumLevels; ++nLevel)
    if (m_numbering.HasStartOverride(nNumId, nLevel)) return {m_numbering.AbstractOf(nNumId), nNumId};
  return {m_numbering.AbstractOf(nNumId), 0};
}

tstring CNumberingCounter::Next(int nNumId, int nIlvl) {
  const _tNumLevel* pLevel = m_numbering.Level(nNumId, nIlvl);
  if (pLevel == nullptr) return "";
  _tList& list = m_mapLists[ListKey(nNumId)];
  if (m_setNumsMet.insert(nNumId).second) {
    for (int nLevel = 0; nLevel < kNumLevels; ++nLevel)
      if (m_numbering.HasStartOverride(nNumId, nLevel)) {
        list.counted[nLevel] = false;
        RestartBelow(nNumId, nLevel, list);
      }
  }
  Count(nNumId, nIlvl, list);
  return pLevel->num_fmt == "bullet" ? "" : Label(nNumId, nIlvl, list);
}

void CNumberingCounter::Count(int nNumId, int nIlvl, _tList& list) const {
  int& nValue = list.values[nIlvl];
  if (!list.counted[nIlvl])
    nValue = m_numbering.Start(nNumId, nIlvl);
  else if (nValue < INT_MAX)
    ++nValue;
  list.counted[nIlvl] = true;
  RestartBelow(nNumId, nIlvl, list);
}

void CNumberingCounter::RestartBelow(int nNumId, int nIlvl, _tList& list) const {
  for (int nLower = nIlvl + 1; nLower < kNumLevels; ++nLower) {
    const _tNumLevel* pLevel = m_numbering.Level(nNumId, nLower);
    if (pLevel == nullptr || pLevel->restart < 0 || nIlvl < pLevel->restart) list.counted[nLower] = false;
  }
}

int CNumberingCounter::Value(int nNumId, int nIlvl, const _tList& list) const {
  return list.counted[nIlvl] ? list.values[nIlvl] : m_numbering.Start(nNumId, nIlvl);
}

tstring CNumberingCounter::Label(int nNumId, int nIlvl, const _tList& list) const {
  const _tNumLevel& level = *m_numbering.Level(nNumId, nIlvl);
  const tstring& sText = level.lvl_text;
  tstring sOut;
  for (size_t i = 0; i < sText.size(); ++i) {
    if (sText[i] != '%' || i + 1 == sText.size() || sText[i + 1] < '1' || sText[i + 1] > '9') {
      sOut += sText[i];
      continue;
    }
    int nShown = sText[++i] - '1';
    const _tNumLevel* pShown = m_numbering.Level(nNumId, nShown);
    if (pShown) sOut += FormatListNumber(Value(nNumId, nShown, list), level.is_lgl ? "decimal" : pShown->num_fmt);
  }
  return sOut;
}
