#include "utility/lexical/CharClass.h"

#include <string>
#include <unordered_map>

#include "utility/lexical/TagSet.h"

bool IsAsciiDigitChar(uint32_t c) { return c >= '0' && c <= '9'; }
bool IsAsciiLetterChar(uint32_t c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool IsChineseNumeralChar(uint32_t c) {
  switch (c) {
    case U'零': case U'〇': case U'一': case U'二': case U'两': case U'三': case U'四': case U'五':
    case U'六': case U'七': case U'八': case U'九': case U'十': case U'百': case U'千': case U'万': case U'亿':
      return true;
    default:
      return false;
  }
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

namespace {

// Character -> interned tag, built once.
std::unordered_map<uint32_t, const char*> BuildPunctuationTable() {
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
  std::unordered_map<uint32_t, const char*> mapTag;
  for (const auto& row : kTable)
    for (const char32_t* p = row.chars; *p; ++p) mapTag.emplace((uint32_t)*p, InternTag(row.tag));
  return mapTag;
}

}  // namespace

const char* PunctuationTag(uint32_t c, bool& bDoubleQuoteOpen, bool& bSingleQuoteOpen) {
  static const std::unordered_map<uint32_t, const char*> s_mapTag = BuildPunctuationTable();
  static const char* const s_sOpen = InternTag("wyz");
  static const char* const s_sClose = InternTag("wyy");
  static const char* const s_sOther = InternTag("w");
  if (c == '"') {
    bDoubleQuoteOpen = !bDoubleQuoteOpen;
    return bDoubleQuoteOpen ? s_sOpen : s_sClose;
  }
  if (c == '\'') {
    bSingleQuoteOpen = !bSingleQuoteOpen;
    return bSingleQuoteOpen ? s_sOpen : s_sClose;
  }
  auto it = s_mapTag.find(c);
  return it == s_mapTag.end() ? s_sOther : it->second;
}
