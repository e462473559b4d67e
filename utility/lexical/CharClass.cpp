#include "utility/lexical/CharClass.h"

#include <string>

namespace {
bool Contains(const char32_t* sChars, uint32_t c) {
  for (; *sChars; ++sChars)
    if ((uint32_t)*sChars == c) return true;
  return false;
}
}  // namespace

bool IsAsciiDigitChar(uint32_t c) { return c >= '0' && c <= '9'; }
bool IsAsciiLetterChar(uint32_t c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool IsChineseNumeralChar(uint32_t c) {
  return Contains(U"零〇一二两三四五六七八九十百千万亿", c);
}

ECharClass ClassifyChar(uint32_t c) {
  if (c >= 0x4E00 && c <= 0x9FD5) return kCharHan;
  if (IsAsciiDigitChar(c) || IsAsciiLetterChar(c)) return kCharAlnum;
  if (c == '+' || c == '#' || c == '&' || c == '.' || c == '_' || c == '%' || c == '-') return kCharWordMark;
  if (c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f' || c == 0x3000 || c == 0xA0)
    return kCharBlank;
  return kCharOther;
}

int PunctuationRunKind(uint32_t c) {
  if (c == 0x2026 || c == 0x22EF) return 1;
  if (c == 0x2014 || c == 0x2015 || c == 0x2013 || c == 0x2500) return 2;
  return 0;
}

const char* PunctuationTag(uint32_t c, bool& bDoubleQuoteOpen, bool& bSingleQuoteOpen) {
  static const struct {
    const char32_t* chars;
    const char* tag;
  } kTable[] = {
      {U"(（[［{｛【〔〖《〈<", "wkz"}, {U")）]］}｝】〕〗》〉>", "wky"}, {U"“‘「『", "wyz"},
      {U"”’」』", "wyy"},          {U"。.．｡", "wj"},                  {U"，,､", "wd"},
      {U"、", "wn"},                {U"；;", "wf"},                      {U"：:", "wm"},
      {U"？?", "ww"},               {U"！!", "wt"},                      {U"…⋯", "ws"},
      {U"—―–─～-－", "wp"},         {U"%％‰", "wb"},                    {U"$¥￥£€¢℃℉°′″§№", "wh"},
  };
  if (c == '"') {
    bDoubleQuoteOpen = !bDoubleQuoteOpen;
    return bDoubleQuoteOpen ? "wyz" : "wyy";
  }
  if (c == '\'') {
    bSingleQuoteOpen = !bSingleQuoteOpen;
    return bSingleQuoteOpen ? "wyz" : "wyy";
  }
  for (const auto& row : kTable)
    if (Contains(row.chars, c)) return row.tag;
  return "w";
}
