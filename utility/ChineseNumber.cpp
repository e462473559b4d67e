#include "utility/ChineseNumber.h"

#include <vector>

#include "utility/Utf8.h"

namespace {
const int64_t kMax = 1000000000000LL;  // 10^12
}

int64_t ChineseDigitValue(uint32_t c) {
  switch (c) {
    case U'零': case U'〇': return 0;
    case U'一': case U'壹': return 1;
    case U'二': case U'两': case U'贰': case U'貳': return 2;
    case U'三': case U'叁': case U'參': return 3;
    case U'四': case U'肆': return 4;
    case U'五': case U'伍': return 5;
    case U'六': case U'陆': case U'陸': return 6;
    case U'七': case U'柒': return 7;
    case U'八': case U'捌': return 8;
    case U'九': case U'玖': return 9;
    case U'十': case U'拾': return 10;
    case U'百': case U'佰': return 100;
    case U'千': case U'仟': return 1000;
    case U'万': case U'萬': return 10000;
    case U'亿': case U'億': return 100000000;
    default: return c >= '0' && c <= '9' ? (int64_t)(c - '0') : -1;
  }
}

bool ChineseToNumber(const tstring& sText, int64_t& nValue) {
  std::vector<int64_t> vecValues;
  bool bUnits = false;
  for (size_t i = 0, n = 0; i < sText.size(); i += n) {
    uint32_t nChar;
    n = DecodeUtf8(sText.data() + i, sText.size() - i, nChar);
    int64_t v = ChineseDigitValue(nChar);
    if (v < 0) return false;
    bUnits = bUnits || v >= 10;
    vecValues.push_back(v);
  }
  if (vecValues.empty() || vecValues.size() > 40) return false;
  if (!bUnits) {  // digit by digit
    if (vecValues.size() > 13) return false;
    nValue = 0;
    for (int64_t d : vecValues) nValue = nValue * 10 + d;
    return nValue <= kMax;
  }
  int64_t nTotal = 0, nSection = 0, nDigit = 0;
  bool bDigitPending = false;  // a non-zero digit waits for its unit
  for (size_t k = 0; k < vecValues.size(); ++k) {
    int64_t v = vecValues[k];
    if (v < 10) {
      if (bDigitPending && v != 0) return false;  // two digits in a row
      nDigit = v;
      bDigitPending = v != 0;
    } else if (v < 10000) {
      if (nDigit == 0 && !(v == 10 && (k == 0 || vecValues[k - 1] == 0 || vecValues[k - 1] >= 10000)))
        return false;  // only 十 may stand without its digit
      nSection += (nDigit == 0 ? 1 : nDigit) * v;
      nDigit = 0;
      bDigitPending = false;
    } else if (v == 10000) {
      nTotal += (nSection + nDigit) * 10000;
      nSection = nDigit = 0;
      bDigitPending = false;
    } else {  // 亿 scales all that came before it
      nTotal = (nTotal + nSection + nDigit) * 100000000;
      nSection = nDigit = 0;
      bDigitPending = false;
    }
    if (nTotal > kMax) return false;
  }
  nValue = nTotal + nSection + nDigit;
  return nValue <= kMax;
}

namespace {

// A number below 10^4 with its zeros; bLeadingZero asks for "零" before a
// group that lacks its thousands.
tstring GroupToChinese(int64_t nGroup, bool bFinancial, bool bLeadingZero, bool bFirst) {
  static const char* kPlain[] = {"零", "一", "二", "三", "四", "五", "六", "七", "八", "九"};
  static const char* kMoney[] = {"零", "壹", "贰", "叁", "肆", "伍", "陆", "柒", "捌", "玖"};
  static const char* kPlainUnit[] = {"千", "百", "十", ""};
  static const char* kMoneyUnit[] = {"仟", "佰", "拾", ""};
  const char** pDigit = bFinancial ? kMoney : kPlain;
  const char** pUnit = bFinancial ? kMoneyUnit : kPlainUnit;
  int nDigits[4] = {(int)(nGroup / 1000), (int)(nGroup / 100 % 10), (int)(nGroup / 10 % 10), (int)(nGroup % 10)};
  tstring sOut;
  bool bZero = bLeadingZero;
  bool bStarted = false;
  for (int k = 0; k < 4; ++k) {
    if (nDigits[k] == 0) {
      bZero = bZero || bStarted;
      continue;
    }
    if (bZero && (bStarted || bLeadingZero)) sOut += pDigit[0];
    bZero = false;
    // A leading 十 stands alone in plain writing: 十二, not 一十二.
    if (!(k == 2 && !bStarted && bFirst && !bFinancial && nDigits[k] == 1)) sOut += pDigit[nDigits[k]];
    sOut += pUnit[k];
    bStarted = true;
  }
  return sOut;
}

}  // namespace

tstring NumberToChinese(int64_t nValue, bool bFinancial) {
  if (nValue < 0 || nValue > kMax) return "";
  if (nValue == 0) return "零";
  const int64_t nGroups[3] = {nValue / 100000000, nValue / 10000 % 10000, nValue % 10000};
  const char* kUnits[3] = {"亿", "万", ""};
  tstring sOut;
  bool bStarted = false, bGap = false;
  for (int g = 0; g < 3; ++g) {
    if (nGroups[g] == 0) {
      bGap = bGap || bStarted;
      continue;
    }
    bool bLeadingZero = bStarted && (bGap || nGroups[g] < 1000);
    // Only 10^12 itself has more than four digits before 亿: 一万亿.
    sOut += nGroups[g] >= 10000 ? NumberToChinese(nGroups[g], bFinancial)
                                : GroupToChinese(nGroups[g], bFinancial, bLeadingZero, !bStarted);
    sOut += kUnits[g];
    bStarted = true;
    bGap = false;
  }
  return sOut;
}
