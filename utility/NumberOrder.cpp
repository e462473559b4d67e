#include "utility/NumberOrder.h"

#include <cstring>
#include <vector>

#include "utility/ChineseNumber.h"
#include "utility/Utf8.h"

namespace {

struct _tChar {
  uint32_t c;   // the character
  size_t pos;   // its byte offset
  size_t len;   // its byte length
};

struct _tPart {
  int value;
  int style;
};

std::vector<_tChar> Decode(const tstring& sText) {
  std::vector<_tChar> vecChars;
  for (size_t i = 0, n = 0; i < sText.size(); i += n) {
    uint32_t c;
    n = DecodeUtf8(sText.data() + i, sText.size() - i, c);
    vecChars.push_back(_tChar{c, i, n});
  }
  return vecChars;
}

bool IsBlank(uint32_t c) { return c == ' ' || c == '\t' || c == 0x3000 || c == 0xA0; }
bool IsAsciiDigit(uint32_t c) { return c >= '0' && c <= '9'; }
bool IsFullDigit(uint32_t c) { return c >= 0xFF10 && c <= 0xFF19; }
bool IsLatin(uint32_t c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool IsFinancial(uint32_t c) {
  static const std::u32string kFinancial = U"壹贰貳叁參肆伍陆陸柒捌玖拾佰仟";
  return kFinancial.find((char32_t)c) != std::u32string::npos;
}

// A digit or unit of a heading's Chinese numeral (万 and 亿 are refused:
// headings do not count that far, amounts do).
bool IsHeadingNumeral(uint32_t c) {
  if (c < 0x80) return false;
  int64_t v = ChineseDigitValue(c);
  return v >= 0 && v <= 1000;
}

// Characters that make a leading number an amount, a date or a quantity.
bool IsQuantityChar(uint32_t c) {
  static const std::u32string kUnits = U"万亿元年月日号倍个次度岁米克吨天时分秒%‰位名家种件点届期周层楼套台辆人只条";
  return kUnits.find((char32_t)c) != std::u32string::npos;
}

int RomanValue(uint32_t c) {
  switch (c | 0x20) {
    case 'i': return 1;
    case 'v': return 5;
    case 'x': return 10;
    case 'l': return 50;
    case 'c': return 100;
    default: return 0;
  }
}

// Parses one number part at vecChars[i]; i moves past it.
bool ParsePart(const std::vector<_tChar>& vecChars, size_t& i, bool bLetters, _tPart& part) {
  const size_t n = vecChars.size();
  if (i >= n) return false;
  uint32_t c = vecChars[i].c;
  if (IsAsciiDigit(c) || IsFullDigit(c)) {
    bool bFull = IsFullDigit(c);
    int nValue = 0, nDigits = 0;
    while (i < n && (bFull ? IsFullDigit(vecChars[i].c) : IsAsciiDigit(vecChars[i].c))) {
      nValue = nValue * 10 + (int)(vecChars[i].c - (bFull ? 0xFF10 : '0'));
      ++i;
      if (++nDigits > 3) return false;  // years and amounts, not numbering
    }
    part = _tPart{nValue, bFull ? kStyleFullWidthArabic : kStyleArabic};
    return true;
  }
  if (c >= 0x2460 && c <= 0x2473) {
    part = _tPart{(int)(c - 0x2460 + 1), kStyleCircled};
    ++i;
    return true;
  }
  if (c >= 0x2474 && c <= 0x2487) {
    part = _tPart{(int)(c - 0x2474 + 1), kStyleParenArabic};
    ++i;
    return true;
  }
  if (IsHeadingNumeral(c)) {
    tstring sRun;
    bool bFinancial = false;
    size_t nStart = i;
    while (i < n && IsHeadingNumeral(vecChars[i].c)) {
      bFinancial = bFinancial || IsFinancial(vecChars[i].c);
      AppendUtf8(sRun, vecChars[i].c);
      ++i;
    }
    int64_t nValue = 0;
    if (!ChineseToNumber(sRun, nValue) || nValue <= 0 || nValue > 999) {
      i = nStart;
      return false;
    }
    part = _tPart{(int)nValue, bFinancial ? kStyleFinancial : kStyleChinese};
    return true;
  }
  if (bLetters && IsLatin(c)) {
    size_t j = i;
    while (j < n && IsLatin(vecChars[j].c)) ++j;
    bool bUpper = c <= 'Z';
    bool bRoman = true;
    int nValue = 0;
    for (size_t k = i; k < j; ++k) {
      int v = RomanValue(vecChars[k].c);
      bool bSameCase = (vecChars[k].c <= 'Z') == bUpper;
      if (v == 0 || !bSameCase) bRoman = false;
      int vNext = k + 1 < j ? RomanValue(vecChars[k + 1].c) : 0;
      nValue += v < vNext ? -v : v;
    }
    bool bSingleI = j - i == 1 && (c == 'I' || c == 'i');
    if (bRoman && (j - i >= 2 || bSingleI) && nValue > 0) {
      part = _tPart{nValue, bUpper ? kStyleUpperRoman : kStyleLowerRoman};
      i = j;
      return true;
    }
    if (j - i != 1) return false;
    part = _tPart{(int)((c | 0x20) - 'a' + 1), bUpper ? kStyleUpperLatin : kStyleLowerLatin};
    ++i;
    return true;
  }
  return false;
}

bool IsSeparator(uint32_t c) { return c == '.' || c == 0xFF0E || c == '-' || c == 0xFF0D || c == 0x2013; }

// Further parts after the first: "sep digits" repeated, one separator kind.
void ParseMoreParts(const std::vector<_tChar>& vecChars, size_t& i, std::vector<_tPart>& vecParts,
                    uint32_t& nSep) {
  nSep = 0;
  while (i + 1 < vecChars.size() && IsSeparator(vecChars[i].c) && vecParts.size() < 6 &&
         (nSep == 0 || vecChars[i].c == nSep) &&
         (IsAsciiDigit(vecChars[i + 1].c) || IsFullDigit(vecChars[i + 1].c))) {
    size_t j = i + 1;
    _tPart part;
    if (!ParsePart(vecChars, j, false, part)) break;
    nSep = vecChars[i].c;
    vecParts.push_back(part);
    i = j;
  }
}

enum EPrefixKind { kNoPrefix, kOrdinal, kBracket, kWord };

struct _tPrefix {
  const char* text;   // as it appears
  EPrefixKind kind;
  bool letters;       // letters may follow ("附录A", "(a)")
};

const _tPrefix kPrefixes[] = {
    {"Chapter ", kWord, false}, {"CHAPTER ", kWord, false}, {"Section ", kWord, false},
    {"SECTION ", kWord, false}, {"Appendix ", kWord, true}, {"APPENDIX ", kWord, true},
    {"Figure ", kWord, false},  {"Fig. ", kWord, false},     {"Table ", kWord, false},
    {"Part ", kWord, false},    {"附录", kWord, true},       {"附件", kWord, false},
    {"图", kWord, false},       {"表", kWord, false},        {"第", kOrdinal, false},
    {"（", kBracket, true},     {"(", kBracket, true},       {"［", kBracket, false},
    {"[", kBracket, false},     {"【", kBracket, false},
};

const char* kOrdinalPosts[] = {"部分", "单元", "章", "节", "条", "篇", "编", "款", "项", "讲", "课", "回"};

bool StartsWith(const tstring& sText, size_t nPos, const char* sWord) {
  return sText.compare(nPos, strlen(sWord), sWord) == 0;
}

// The closing bracket that fits an opening one; ( and （ close alike.
bool Closes(const tstring& sOpen, uint32_t c) {
  if (sOpen == "(" || sOpen == "（") return c == ')' || c == 0xFF09;
  if (sOpen == "[" || sOpen == "［") return c == ']' || c == 0xFF3D;
  return c == 0x3011;  // 】
}

size_t IndexAtByte(const std::vector<_tChar>& vecChars, size_t nByte) {
  size_t i = 0;
  while (i < vecChars.size() && vecChars[i].pos < nByte) ++i;
  return i;
}

void Fill(_tSection_Info& info, const tstring& sPrefix, const std::vector<_tPart>& vecParts, uint32_t nSep,
          const tstring& sPost, const tstring& sText, size_t nStart, size_t nEnd) {
  info.prefix = sPrefix;
  info.section_sep.clear();
  if (nSep) AppendUtf8(info.section_sep, nSep);
  info.post = sPost;
  info.level = (int)vecParts.size();
  info.chapter_format = vecParts.size() > 1 ? vecParts.front().style : kStyleNone;
  info.num_format = vecParts.back().style;
  info.order = vecParts.back().value;
  info.vecOrders.clear();
  for (const _tPart& part : vecParts) info.vecOrders.push_back(part.value);
  info.text = sText.substr(nStart, nEnd - nStart);
}

int ExtractHeading(const tstring& sText, bool bHeadingLine, _tSection_Info& info) {
  std::vector<_tChar> vecChars = Decode(sText);
  const size_t n = vecChars.size();
  size_t i = 0;
  while (i < n && IsBlank(vecChars[i].c)) ++i;
  if (i == n) return 0;
  const size_t nStartByte = vecChars[i].pos;

  const _tPrefix* pPrefix = nullptr;
  for (const _tPrefix& prefix : kPrefixes)
    if (StartsWith(sText, nStartByte, prefix.text)) {
      pPrefix = &prefix;
      break;
    }
  EPrefixKind eKind = pPrefix ? pPrefix->kind : kNoPrefix;
  tstring sPrefix = pPrefix ? pPrefix->text : "";
  if (pPrefix) {
    i = IndexAtByte(vecChars, nStartByte + strlen(pPrefix->text));
    if (eKind == kWord)
      while (i < n && IsBlank(vecChars[i].c)) ++i;
  }

  std::vector<_tPart> vecParts(1);
  bool bLetters = !pPrefix || pPrefix->letters;
  if (!ParsePart(vecChars, i, bLetters, vecParts[0])) return 0;
  uint32_t nSep = 0;
  ParseMoreParts(vecChars, i, vecParts, nSep);
  const int nFirstStyle = vecParts[0].style;
  const bool bLetterStyle = nFirstStyle >= kStyleUpperLatin && nFirstStyle <= kStyleLowerRoman;

  tstring sPost;
  const uint32_t c = i < n ? vecChars[i].c : 0;
  if (eKind == kOrdinal) {
    for (const char* sWord : kOrdinalPosts)
      if (i < n && StartsWith(sText, vecChars[i].pos, sWord)) sPost = sWord;
    if (sPost.empty()) return 0;
  } else if (eKind == kBracket) {
    if (i >= n || !Closes(sPrefix, c)) return 0;
    AppendUtf8(sPost, c);
  } else if (c == 0x3001 || c == '.' || c == 0xFF0E || (eKind == kNoPrefix && (c == ')' || c == 0xFF09))) {
    AppendUtf8(sPost, c);
  } else {
    // No mark after the number: only a circled number, a word prefix, or a
    // number that a blank (or the end) sets off stands alone.
    bool bCircled = nFirstStyle == kStyleCircled || nFirstStyle == kStyleParenArabic;
    bool bSetOff = i >= n || IsBlank(c);
    if (bLetterStyle && eKind == kNoPrefix) return 0;
    if (!bCircled && eKind == kNoPrefix && vecParts.size() == 1 && !bSetOff) return 0;
  }
  size_t nEndIndex = i + (sPost.empty() ? 0 : IndexAtByte(vecChars, vecChars[i].pos + sPost.size()) - i);
  // What follows a bare number or a full stop must not make it a quantity.
  if ((sPost.empty() || sPost == "." || sPost == "．") && nEndIndex < n) {
    uint32_t cNext = vecChars[nEndIndex].c;
    if (IsAsciiDigit(cNext) || IsFullDigit(cNext) || (IsQuantityChar(cNext) && !bHeadingLine) ||
        (IsLatin(cNext) && sPost.empty()))
      return 0;
  }
  size_t nEndByte = nEndIndex < n ? vecChars[nEndIndex].pos : sText.size();
  if (eKind == kWord) {
    // Word prefixes are kept without the blanks a writer may put after them.
    while (!sPrefix.empty() && sPrefix.back() == ' ' && sPrefix.size() > 1 && (unsigned char)sPrefix[0] >= 0x80)
      sPrefix.pop_back();
  }
  Fill(info, sPrefix, vecParts, nSep, sPost, sText, nStartByte, nEndByte);
  return info.order;
}

int ExtractFormula(const tstring& sText, _tSection_Info& info) {
  std::vector<_tChar> vecChars = Decode(sText);
  size_t nEnd = vecChars.size();
  while (nEnd > 0 && (IsBlank(vecChars[nEnd - 1].c) || vecChars[nEnd - 1].c == '\r' || vecChars[nEnd - 1].c == '\n'))
    --nEnd;
  if (nEnd == 0 || (vecChars[nEnd - 1].c != ')' && vecChars[nEnd - 1].c != 0xFF09)) return 0;
  size_t nOpen = nEnd - 1;
  while (nOpen > 0 && vecChars[nOpen - 1].c != '(' && vecChars[nOpen - 1].c != 0xFF08) --nOpen;
  if (nOpen == 0) return 0;
  --nOpen;
  size_t i = nOpen + 1;
  while (i < nEnd - 1 && IsBlank(vecChars[i].c)) ++i;
  std::vector<_tPart> vecParts(1);
  if (!ParsePart(vecChars, i, true, vecParts[0])) return 0;
  if (vecParts[0].style != kStyleArabic && vecParts[0].style != kStyleFullWidthArabic &&
      vecParts[0].style != kStyleUpperLatin)
    return 0;
  uint32_t nSep = 0;
  ParseMoreParts(vecChars, i, vecParts, nSep);
  while (i < nEnd - 1 && IsBlank(vecChars[i].c)) ++i;
  if (i != nEnd - 1) return 0;
  tstring sOpen, sClose;
  AppendUtf8(sOpen, vecChars[nOpen].c);
  AppendUtf8(sClose, vecChars[nEnd - 1].c);
  Fill(info, sOpen, vecParts, nSep, sClose, sText, vecChars[nOpen].pos,
       vecChars[nEnd - 1].pos + vecChars[nEnd - 1].len);
  return info.order;
}

tstring Roman(int nValue, bool bUpper) {
  static const int kValues[] = {1000, 900, 500, 400, 100, 90, 50, 40, 10, 9, 5, 4, 1};
  static const char* kUpper[] = {"M", "CM", "D", "CD", "C", "XC", "L", "XL", "X", "IX", "V", "IV", "I"};
  static const char* kLower[] = {"m", "cm", "d", "cd", "c", "xc", "l", "xl", "x", "ix", "v", "iv", "i"};
  tstring sOut;
  for (int k = 0; k < 13; ++k)
    while (nValue >= kValues[k]) {
      sOut += bUpper ? kUpper[k] : kLower[k];
      nValue -= kValues[k];
    }
  return sOut;
}

}  // namespace

int ExtractOrder(const tstring& sText, int nMode, _tSection_Info& info) {
  info = _tSection_Info();
  info.sample = sText;
  int nOrder = nMode == kOrderFormula ? ExtractFormula(sText, info)
                                      : ExtractHeading(sText, nMode == kOrderHeadingLine, info);
  if (nOrder <= 0) {
    tstring sSample = info.sample;
    info = _tSection_Info();
    info.sample = sSample;
    return 0;
  }
  return nOrder;
}

tstring RenderNumber(int nValue, int nStyle) {
  tstring sOut;
  switch (nStyle) {
    case kStyleChinese: return NumberToChinese(nValue, false);
    case kStyleFinancial: return NumberToChinese(nValue, true);
    case kStyleCircled:
      if (nValue >= 1 && nValue <= 20) AppendUtf8(sOut, 0x2460 + nValue - 1);
      break;
    case kStyleParenArabic:
      if (nValue >= 1 && nValue <= 20) AppendUtf8(sOut, 0x2474 + nValue - 1);
      break;
    case kStyleUpperLatin:
    case kStyleLowerLatin:
      if (nValue >= 1 && nValue <= 26) sOut.push_back((char)((nStyle == kStyleUpperLatin ? 'A' : 'a') + nValue - 1));
      break;
    case kStyleUpperRoman:
    case kStyleLowerRoman:
      if (nValue >= 1 && nValue < 4000) return Roman(nValue, nStyle == kStyleUpperRoman);
      break;
    case kStyleFullWidthArabic:
      for (char c : std::to_string(nValue)) AppendUtf8(sOut, 0xFF10 + (uint32_t)(c - '0'));
      return nValue >= 0 ? sOut : std::to_string(nValue);
    default:
      break;
  }
  return sOut.empty() ? std::to_string(nValue) : sOut;
}

tstring SetNewSectionNo(const _tSection_Info& found, const _tSection_Format& pattern) {
  std::vector<int> vecValues = found.vecOrders;
  size_t nWant = pattern.level > 0 ? (size_t)pattern.level : vecValues.size();
  if (vecValues.size() > nWant) {
    vecValues.erase(vecValues.begin(), vecValues.end() - nWant);
  } else if (vecValues.size() + 1 == nWant && !found.chapter_id.empty()) {
    vecValues.insert(vecValues.begin(), atoi(found.chapter_id.c_str()));
  }
  tstring sNumber = pattern.prefix;
  for (size_t k = 0; k < vecValues.size(); ++k) {
    if (k > 0) sNumber += pattern.section_sep;
    bool bChapterPart = k == 0 && vecValues.size() > 1 && pattern.chapter_format != kStyleNone;
    sNumber += RenderNumber(vecValues[k], bChapterPart ? pattern.chapter_format : pattern.num_format);
  }
  sNumber += pattern.post;
  if (found.text.empty()) return sNumber;
  // Heading numbers lead their text, formula numbers end it.
  tstring sHeading = found.sample;
  size_t nLead = sHeading.find_first_not_of(" \t");
  size_t nPos = nLead != tstring::npos && sHeading.compare(nLead, found.text.size(), found.text) == 0
                    ? nLead
                    : sHeading.rfind(found.text);
  if (nPos == tstring::npos) return sNumber;
  return sHeading.replace(nPos, found.text.size(), sNumber);
}
