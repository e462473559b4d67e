#pragma once
// The numbering pattern of a heading, caption or formula index, as the
// number-order extractor finds it and the templates store it.
#include <vector>

#include "utility/TString.h"

// Numbering style codes of chapter_format and num_format. Equal codes mean
// equal styles; -1 means no numbering.
enum ENumberStyle {
  kStyleNone = -1,
  kStyleArabic = 1,          // 1 2 3
  kStyleChinese = 2,         // 一 二 三
  kStyleFinancial = 3,       // 壹 贰 叁
  kStyleCircled = 4,         // ① ② ③ (1 to 20)
  kStyleUpperLatin = 5,      // A B C (1 to 26)
  kStyleLowerLatin = 6,      // a b c
  kStyleUpperRoman = 7,      // I II III
  kStyleLowerRoman = 8,      // i ii iii
  kStyleFullWidthArabic = 9, // １ ２ ３
  kStyleParenArabic = 10,    // ⑴ ⑵ ⑶ (1 to 20)
};

struct _tSection_Format {
  tstring prefix;           // text before the number: "第", "（", "图", "Chapter "
  int chapter_format = -1;  // style of the first part of a multi-part number; -1 for one part
  tstring section_sep;      // separator between parts: ".", "-"; "" for one part
  int num_format = -1;      // style of the last part; -1 when no numbering was found
  tstring post;             // text after the number: "章", "、", "）", "."
  int level = 0;            // number of parts: 3 for "1.2.3"
  int section_type = 0;     // paragraph level the pattern was learnt on
  tstring sample;           // the text the pattern was found in

  // Appends the template text block of the pattern: "\r\n<section_format>"
  // ... "\r\n</section_format>\r\n"; prefix, separator and post are written
  // as UTF-8, the chapter style only when there is one.
  void Write(tstring& sOut) const;
  // Reads the block that starts at or after pText, within [pText, pEnd). A
  // field counts only when its tag lies before the block's closing tag plus
  // 11 characters; absent fields keep their value, except chapter_format
  // and num_format (-1), level and section_type (0). Returns the end of the
  // block, or null when there is no "</section_format>".
  const char* Read(const char* pText, const char* pEnd);

  // Same numbering style: style codes, depth, separator, prefix and post.
  bool IsSameFormat(const _tSection_Format& other) const {
    return num_format == other.num_format && chapter_format == other.chapter_format &&
           level == other.level && section_sep == other.section_sep && post == other.post &&
           prefix == other.prefix;
  }
};

struct _tSection_Info : _tSection_Format {
  tstring text;          // the numbering as found: "第一章", "1.2.3", "(3-2)"
  int order = 0;         // value of the last part; > 0 when a number was found
  unsigned para_id = 0;  // paragraph of the heading
  tstring chapter_id;    // chapter the heading belongs to
  int orderNew = 0;      // corrected value, set by the order checks
  tstring textNew;       // corrected numbering
  tstring error_id;      // finding raised on this heading
  std::vector<int> vecOrders;  // value of every part, outermost first
};
