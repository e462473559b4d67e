#include "utility/Validators.h"

#include <ctime>
#include <set>

#include "utility/ChineseNumber.h"
#include "utility/TextNormalizer.h"

namespace {

bool AllDigits(const tstring& s, size_t nFrom, size_t nTo) {
  for (size_t i = nFrom; i < nTo; ++i)
    if (s[i] < '0' || s[i] > '9') return false;
  return true;
}

int Number(const tstring& s, size_t nFrom, size_t nLength) { return std::stoi(s.substr(nFrom, nLength)); }

bool IsKnownProvince(int nCode) {
  static const std::set<int> kProvinces = {11, 12, 13, 14, 15, 21, 22, 23, 31, 32, 33, 34, 35, 36, 37, 41, 42,
                                           43, 44, 45, 46, 50, 51, 52, 53, 54, 61, 62, 63, 64, 65, 71, 81, 82, 83};
  return kProvinces.count(nCode) > 0;
}

bool IsPastBirthDate(int nYear, int nMonth, int nDay) {
  if (nYear < 1900 || !IsValidDate(nYear, nMonth, nDay)) return false;
  time_t tNow = time(nullptr);
  struct tm tmNow;
  localtime_r(&tNow, &tmNow);
  long nToday = (tmNow.tm_year + 1900L) * 10000 + (tmNow.tm_mon + 1) * 100 + tmNow.tm_mday;
  return nYear * 10000L + nMonth * 100 + nDay <= nToday;
}

}  // namespace

bool IsValidDate(int nYear, int nMonth, int nDay) {
  static const int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (nYear < 1 || nYear > 9999 || nMonth < 1 || nMonth > 12 || nDay < 1) return false;
  bool bLeap = (nYear % 4 == 0 && nYear % 100 != 0) || nYear % 400 == 0;
  return nDay <= kDays[nMonth - 1] + (nMonth == 2 && bLeap ? 1 : 0);
}

bool IsValidIdentityNumber(const tstring& sNumber) {
  if (sNumber.size() == 15) {
    return AllDigits(sNumber, 0, 15) && IsKnownProvince(Number(sNumber, 0, 2)) &&
           IsPastBirthDate(1900 + Number(sNumber, 6, 2), Number(sNumber, 8, 2), Number(sNumber, 10, 2));
  }
  if (sNumber.size() != 18 || !AllDigits(sNumber, 0, 17)) return false;
  static const int kWeights[17] = {7, 9, 10, 5, 8, 4, 2, 1, 6, 3, 7, 9, 10, 5, 8, 4, 2};
  static const char kCheck[] = "10X98765432";
  int nSum = 0;
  for (int i = 0; i < 17; ++i) nSum += (sNumber[i] - '0') * kWeights[i];
  char cLast = sNumber[17] == 'x' ? 'X' : sNumber[17];
  return cLast == kCheck[nSum % 11] && IsKnownProvince(Number(sNumber, 0, 2)) &&
         IsPastBirthDate(Number(sNumber, 6, 4), Number(sNumber, 10, 2), Number(sNumber, 12, 2));
}

namespace {

// A run of Arabic digits or of Chinese numerals at sText[nPos]; false when
// there is none. nPos moves past it.
bool ReadNumber(const tstring& sText, size_t& nPos, int& nValue, int& nDigits) {
  size_t nStart = nPos;
  while (nPos < sText.size() && sText[nPos] >= '0' && sText[nPos] <= '9') ++nPos;
  if (nPos > nStart) {
    nDigits = (int)(nPos - nStart);
    if (nDigits > 4) return false;
    nValue = Number(sText, nStart, nPos - nStart);
    return true;
  }
  // Chinese numerals are three-byte characters; take the longest run that reads.
  size_t nEnd = nPos;
  while (nEnd + 3 <= sText.size()) {
    int64_t v;
    if (!ChineseToNumber(sText.substr(nEnd, 3), v)) break;
    nEnd += 3;
  }
  int64_t nRead = 0;
  if (nEnd == nPos || !ChineseToNumber(sText.substr(nPos, nEnd - nPos), nRead) || nRead > 9999) return false;
  nDigits = (int)((nEnd - nPos) / 3);
  nValue = (int)nRead;
  nPos = nEnd;
  return true;
}

bool Expect(const tstring& sText, size_t& nPos, const char* sWord) {
  tstring s(sWord);
  if (sText.compare(nPos, s.size(), s) != 0) return false;
  nPos += s.size();
  return true;
}

}  // namespace

bool ParseDate(const tstring& sRaw, int& nYear, int& nMonth, int& nDay) {
  tstring sText = NormalizeText(sRaw);
  size_t nPos = 0;
  int nYearDigits = 0, nDigits = 0;
  if (!ReadNumber(sText, nPos, nYear, nYearDigits) || nYearDigits != 4) return false;
  bool bChinese = Expect(sText, nPos, "年");
  char cSep = 0;
  if (!bChinese) {
    if (nPos >= sText.size() || (sText[nPos] != '-' && sText[nPos] != '/' && sText[nPos] != '.')) return false;
    cSep = sText[nPos++];
  }
  if (!ReadNumber(sText, nPos, nMonth, nDigits) || nDigits > 2) return false;
  if (bChinese ? !Expect(sText, nPos, "月") : (nPos >= sText.size() || sText[nPos++] != cSep)) return false;
  if (!ReadNumber(sText, nPos, nDay, nDigits) || nDigits > 3) return false;
  if (bChinese && !Expect(sText, nPos, "日")) Expect(sText, nPos, "号");
  return nPos == sText.size() && IsValidDate(nYear, nMonth, nDay);
}
