#pragma once
// How the analyser sees single characters.
//
// Tags of what the lexicon does not decide:
//   m    numbers: Arabic ("3.14", "1,000,000", "25%") and Chinese numerals
//        joined from several tokens ("三百" + "五十")
//   eng  Latin words and letter-digit runs ("Python", "iPhone13")
//   x    other characters inside words that the lexicon does not know
// Punctuation, full-width and half-width alike (Peking University subtags):
//   wkz ( （ [ ［ { ｛ 【 〔 〖 《 〈 <     wky the closing ones
//   wyz “ ‘ 「 『 and a first " or '      wyy ” ’ 」 』 and the " or ' that closes
//   wj  。 . ． ｡   wd ， , ､   wn 、   wf ； ;   wm ： :   ww ？ ?   wt ！ !
//   ws  … ⋯ (a run is one token)      wp  — ― – ─ ～ - － (a run of dashes is one token)
//   wb  % ％ ‰                         wh  $ ¥ ￥ £ € ¢ ℃ ℉ ° ′ ″ § №
//   w   every other symbol
#include <cstdint>

enum ECharClass {
  kCharHan,       // CJK ideograph U+4E00..U+9FD5, as the lexicon's word graph takes them
  kCharAlnum,     // ASCII letters and digits
  kCharWordMark,  // ASCII + # & . _ % -: kept inside a run of words, as the lexicon's graph does
  kCharBlank,     // white space: separates, never output
  kCharOther,     // punctuation and every other character
};

ECharClass ClassifyChar(uint32_t c);

// The interned punctuation tag of a character that stands alone (see above).
// Quotes that look alike open and close in turn: the two flags say whether a
// " or a ' is open.
const char* PunctuationTag(uint32_t c, bool& bDoubleQuoteOpen, bool& bSingleQuoteOpen);

// Characters whose runs form one token: 1 for ellipses, 2 for dashes, 0 for
// every other character.
int PunctuationRunKind(uint32_t c);

bool IsAsciiDigitChar(uint32_t c);
bool IsAsciiLetterChar(uint32_t c);
// A digit or unit of a Chinese numeral: 零〇一二两三四五六七八九十百千万亿.
bool IsChineseNumeralChar(uint32_t c);
