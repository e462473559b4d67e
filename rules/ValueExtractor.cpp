#include "rules/ValueExtractor.h"

#include <algorithm>
#include <cstring>

#include "utility/ChineseNumber.h"
#include "utility/CountryDetect.h"
#include "utility/Utf8.h"

namespace {

inline bool IsDigit(char c) { return c >= '0' && c <= '9'; }
inline bool IsAlpha(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
inline bool IsAlnum(char c) { return IsDigit(c) || IsAlpha(c); }

// The character at i (0 at the end of the text) and its byte length in n.
uint32_t CharAt(const tstring& s, size_t i, size_t& n) {
  if (i >= s.size()) {
    n = 0;
    return 0;
  }
  uint32_t nChar;
  n = DecodeUtf8(s.data() + i, s.size() - i, nChar);
  return nChar;
}

bool StartsWith(const tstring& s, size_t i, const char* sPrefix) {
  const size_t n = strlen(sPrefix);
  return i + n <= s.size() && s.compare(i, n, sPrefix) == 0;
}

// A Chinese numeral character: a digit or a magnitude, not an ASCII digit.
bool IsChineseNumeral(uint32_t nChar) { return nChar >= 0x80 && ChineseDigitValue(nChar) >= 0; }

bool IsMagnitude(uint32_t nChar) { return nChar >= 0x80 && ChineseDigitValue(nChar) >= 10; }

// The end of the run of Chinese numerals from i, and its length in characters.
size_t ChineseRunEnd(const tstring& s, size_t i, size_t& nChars) {
  size_t n;
  nChars = 0;
  while (IsChineseNumeral(CharAt(s, i, n))) {
    i += n;
    ++nChars;
  }
  return i;
}

// Longer numerals are no counts of anything a report measures; the cap also
// keeps ChineseToNumber's work per run small.
constexpr size_t kMaxChineseNumeral = 20;

bool IsChineseNumber(const tstring& s, size_t nStart, size_t nEnd, size_t nChars) {
  int64_t nValue;
  return nChars > 0 && nChars <= kMaxChineseNumeral && ChineseToNumber(s.substr(nStart, nEnd - nStart), nValue);
}

// kUnits, longest first, so that the first that fits is the longest.
const std::vector<tstring>& UnitsLongestFirst() {
  static const std::vector<tstring> vecUnits = [] {
    std::vector<tstring> vec(std::begin(kUnits), std::end(kUnits));
    std::stable_sort(vec.begin(), vec.end(), [](const tstring& a, const tstring& b) { return a.size() > b.size(); });
    return vec;
  }();
  return vecUnits;
}

// The end of the unit at i (one blank allowed before it); 0 when none.
size_t UnitEnd(const tstring& s, size_t i) {
  if (i < s.size() && s[i] == ' ') ++i;
  for (const tstring& sUnit : UnitsLongestFirst()) {
    if (!StartsWith(s, i, sUnit.c_str())) continue;
    const size_t nEnd = i + sUnit.size();
    // "5 min" holds no "m": an ASCII unit ends where the word ends.
    if (IsAlnum(sUnit.back()) && nEnd < s.size() && IsAlnum(s[nEnd])) continue;
    return nEnd;
  }
  return 0;
}

// Digits with thousands groups and decimals from i; nEnd is where they stop.
// False when the run is malformed ("1,2345", "1.2.3"): nEnd then skips it whole.
bool ArabicNumber(const tstring& s, size_t i, size_t& nEnd) {
  const size_t nStart = i;
  while (i < s.size() && IsDigit(s[i])) ++i;
  if (i - nStart <= 3) {
    while (i + 3 < s.size() && s[i] == ',' && IsDigit(s[i + 1]) && IsDigit(s[i + 2]) && IsDigit(s[i + 3]) &&
           (i + 4 == s.size() || !IsDigit(s[i + 4])))
      i += 4;
  }
  if (i + 1 < s.size() && s[i] == '.' && IsDigit(s[i + 1])) {
    ++i;
    while (i < s.size() && IsDigit(s[i])) ++i;
  }
  const bool bMalformed = i + 1 < s.size() && (s[i] == ',' || s[i] == '.') && IsDigit(s[i + 1]);
  if (bMalformed)
    while (i < s.size() && (IsDigit(s[i]) || s[i] == ',' || s[i] == '.')) ++i;
  nEnd = i;
  return !bMalformed;
}

// A quantity whose number starts with the digit at i. Returns where scanning
// goes on; fills value when there is one.
size_t DigitQuantity(const tstring& s, size_t i, std::vector<_tExtracted>& vecFound) {
  size_t nEnd;
  const bool bNumber = ArabicNumber(s, i, nEnd);
  if (!bNumber) return nEnd;
  size_t n;
  while (IsMagnitude(CharAt(s, nEnd, n))) nEnd += n;
  // "A4", "COVID19" and ".5" are no numbers of their own.
  if (i > 0 && (IsAlnum(s[i - 1]) || s[i - 1] == '.')) return nEnd;
  const size_t nUnitEnd = UnitEnd(s, nEnd);
  if (nUnitEnd == 0) return nEnd;
  size_t nStart = i;
  if (i > 0 && (s[i - 1] == '-' || s[i - 1] == '+') && (i == 1 || !IsAlnum(s[i - 2]))) --nStart;
  vecFound.push_back({s.substr(nStart, nUnitEnd - nStart), nStart});
  return nUnitEnd;
}

size_t ChineseQuantity(const tstring& s, size_t i, std::vector<_tExtracted>& vecFound) {
  size_t nChars;
  const size_t nEnd = ChineseRunEnd(s, i, nChars);
  if (!IsChineseNumber(s, i, nEnd, nChars)) return nEnd;
  const size_t nUnitEnd = UnitEnd(s, nEnd);
  if (nUnitEnd == 0) return nEnd;
  vecFound.push_back({s.substr(i, nUnitEnd - i), i});
  return nUnitEnd;
}

// ---- e-mail addresses ----

bool IsAtext(char c) { return IsAlnum(c) || (c != '\0' && strchr("!#$%&'*+-/=?^_`{|}~", c) != nullptr); }
bool IsDomainChar(char c) { return IsAlnum(c) || c == '-' || c == '.'; }

bool ValidLocalPart(const tstring& s, size_t nStart, size_t nEnd) {
  if (nEnd <= nStart || nEnd - nStart > 64 || s[nEnd - 1] == '.') return false;
  for (size_t i = nStart; i + 1 < nEnd; ++i)
    if (s[i] == '.' && s[i + 1] == '.') return false;
  return true;
}

bool ValidDomain(const tstring& s, size_t nStart, size_t nEnd) {
  if (nEnd <= nStart || nEnd - nStart > 253) return false;
  size_t nLabels = 0;
  for (size_t i = nStart; i <= nEnd;) {
    size_t j = i;
    while (j < nEnd && s[j] != '.') ++j;
    if (j == i || j - i > 63 || s[i] == '-' || s[j - 1] == '-') return false;
    ++nLabels;
    if (j == nEnd) {  // the top-level label: letters only
      if (j - i < 2) return false;
      for (size_t k = i; k < j; ++k)
        if (!IsAlpha(s[k])) return false;
      break;
    }
    i = j + 1;
  }
  return nLabels >= 2;
}

// The address around the '@' at nAt, if there is one. nResume receives where
// the search for the next '@' goes on.
bool EmailAt(const tstring& s, size_t nAt, _tExtracted& found, size_t& nResume) {
  size_t nRunStart = nAt;
  while (nRunStart > 0 && (IsAtext(s[nRunStart - 1]) || s[nRunStart - 1] == '.')) --nRunStart;
  size_t nRunEnd = nAt + 1;
  while (nRunEnd < s.size() && IsDomainChar(s[nRunEnd])) ++nRunEnd;
  nResume = nRunEnd;
  // "a@b.cn@c.cn": no reading of it is an address.
  if (nRunStart > 0 && s[nRunStart - 1] == '@') return false;
  if (nRunEnd < s.size() && (s[nRunEnd] == '@' || s[nRunEnd] == '_')) return false;
  size_t nStart = nRunStart;
  while (nStart < nAt && !(IsAlnum(s[nStart]) || s[nStart] == '_')) ++nStart;
  size_t nEnd = nRunEnd;
  while (nEnd > nAt + 1 && (s[nEnd - 1] == '.' || s[nEnd - 1] == '-')) --nEnd;
  if (!ValidLocalPart(s, nStart, nAt) || !ValidDomain(s, nAt + 1, nEnd)) return false;
  found.value = s.substr(nStart, nEnd - nStart);
  found.offset = nStart;
  return true;
}

// ---- section headings ----

// The byte length of a blank at i (ASCII blank, tab, line end, U+3000); 0 for none.
size_t BlankAt(const tstring& s, size_t i) {
  size_t n;
  const uint32_t c = CharAt(s, i, n);
  return (c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == 0x3000) ? n : 0;
}

size_t SkipBlanks(const tstring& s, size_t i) {
  for (size_t n; (n = BlankAt(s, i)) > 0;) i += n;
  return i;
}

bool IsDot(uint32_t c) { return c == '.' || c == 0xFF0E; }  // '.', '．'

// "3", "3.2", "3.2.1": nNoEnd ends the number, nNameStart the separator after it.
bool DottedNumber(const tstring& s, size_t i, size_t& nNoEnd, size_t& nNameStart) {
  size_t nGroups = 0, n;
  for (;;) {
    const size_t nGroupStart = i;
    while (i < s.size() && IsDigit(s[i])) ++i;
    if (i == nGroupStart || i - nGroupStart > 3) return false;
    ++nGroups;
    const uint32_t c = CharAt(s, i, n);
    if (!IsDot(c) || i + n >= s.size() || !IsDigit(s[i + n])) break;
    i += n;
  }
  nNoEnd = i;
  uint32_t c = CharAt(s, i, n);
  if (c == '%' || c == 0xFF05 || c == 0x2030 || c == ',' || (c < 0x80 && IsAlnum((char)c))) return false;
  const bool bSeparator = IsDot(c) || c == 0x3001 || BlankAt(s, i) > 0;  // '.', '．', '、', blank
  if (nGroups == 1 && !bSeparator && i < s.size()) return false;
  if (IsDot(c) || c == 0x3001) i += n;
  nNameStart = i;
  return true;
}

// "第三章", "第1节", "第二部分".
bool OrdinalNumber(const tstring& s, size_t i, size_t& nNoEnd) {
  static const char* const kMarks[] = {"部分", "章", "节", "篇", "编", "条", "款", "项"};
  if (!StartsWith(s, i, "第")) return false;
  i += strlen("第");
  size_t nChars, nEnd = ChineseRunEnd(s, i, nChars);
  if (nChars > 0 ? !IsChineseNumber(s, i, nEnd, nChars) : false) return false;
  if (nChars == 0) {
    while (nEnd < s.size() && IsDigit(s[nEnd]) && nEnd - i < 4) ++nEnd;
    if (nEnd == i) return false;
  }
  for (const char* sMark : kMarks) {
    if (StartsWith(s, nEnd, sMark)) {
      nNoEnd = nEnd + strlen(sMark);
      return true;
    }
  }
  return false;
}

// "一、" (or "一．", "一."): nNoEnd ends the numeral, nNameStart the separator.
bool EnumeratedNumber(const tstring& s, size_t i, size_t& nNoEnd, size_t& nNameStart) {
  size_t nChars, n;
  const size_t nEnd = ChineseRunEnd(s, i, nChars);
  if (!IsChineseNumber(s, i, nEnd, nChars)) return false;
  const uint32_t c = CharAt(s, nEnd, n);
  if (c != 0x3001 && !IsDot(c)) return false;
  nNoEnd = nEnd;
  nNameStart = nEnd + n;
  return true;
}

// "（二）", "(2)", "（2）".
bool BracketedNumber(const tstring& s, size_t i, size_t& nNoEnd) {
  size_t n;
  const uint32_t cOpen = CharAt(s, i, n);
  if (cOpen != '(' && cOpen != 0xFF08) return false;
  i += n;
  size_t nChars, nEnd = ChineseRunEnd(s, i, nChars);
  if (nChars > 0 && !IsChineseNumber(s, i, nEnd, nChars)) return false;
  if (nChars == 0) {
    while (nEnd < s.size() && IsDigit(s[nEnd]) && nEnd - i < 3) ++nEnd;
    if (nEnd == i) return false;
  }
  const uint32_t cClose = CharAt(s, nEnd, n);
  if (cClose != ')' && cClose != 0xFF09) return false;
  nNoEnd = nEnd + n;
  return true;
}

}  // namespace

std::vector<_tExtracted> CValueExtractor::Units(const tstring& sText) {
  std::vector<_tExtracted> vecFound;
  for (size_t i = 0, n; i < sText.size();) {
    const uint32_t c = CharAt(sText, i, n);
    if (IsDigit(sText[i]))
      i = DigitQuantity(sText, i, vecFound);
    else if (IsChineseNumeral(c))
      i = ChineseQuantity(sText, i, vecFound);
    else
      i += n;
  }
  return vecFound;
}

std::vector<_tExtracted> CValueExtractor::Emails(const tstring& sText) {
  std::vector<_tExtracted> vecFound;
  for (size_t i = sText.find('@'); i != tstring::npos;) {
    _tExtracted found;
    size_t nResume;
    if (EmailAt(sText, i, found, nResume)) vecFound.push_back(found);
    i = sText.find('@', std::max(nResume, i + 1));
  }
  return vecFound;
}

std::vector<_tExtracted> CValueExtractor::Countries(const tstring& sText) {
  std::vector<_tExtracted> vecFound;
  for (const _tCountryMatch& m : CountryDetect_Find(sText))
    if (m.offset <= sText.size()) vecFound.push_back({sText.substr(m.offset, m.length), m.offset});
  return vecFound;
}

bool CValueExtractor::Section(const tstring& sHeading, tstring& sNo, tstring& sName) {
  sNo.clear();
  sName.clear();
  const size_t nStart = SkipBlanks(sHeading, 0);
  size_t nNoEnd = 0, nNameStart = 0;
  if (DottedNumber(sHeading, nStart, nNoEnd, nNameStart) || EnumeratedNumber(sHeading, nStart, nNoEnd, nNameStart)) {
  } else if (OrdinalNumber(sHeading, nStart, nNoEnd) || BracketedNumber(sHeading, nStart, nNoEnd)) {
    nNameStart = nNoEnd;
  } else {
    return false;
  }
  sNo = sHeading.substr(nStart, nNoEnd - nStart);
  size_t nNameEnd = sHeading.size();
  nNameStart = SkipBlanks(sHeading, nNameStart);
  // Trailing blanks: walk back over whole blank characters only.
  for (bool bTrimmed = true; bTrimmed && nNameEnd > nNameStart;) {
    bTrimmed = false;
    for (size_t nLen : {size_t(1), size_t(3)}) {
      if (nNameEnd - nNameStart >= nLen && BlankAt(sHeading, nNameEnd - nLen) == nLen) {
        nNameEnd -= nLen;
        bTrimmed = true;
        break;
      }
    }
  }
  sName = sHeading.substr(nNameStart, nNameEnd - nNameStart);
  return true;
}
