#pragma once
// CValueExtractor finds values of fixed shapes in a text, for the extracting
// actions whose rules select nothing: quantities with their units, e-mail
// addresses, country names, and the number and name of a section heading.
//
// Every function looks at each byte of its text a bounded number of times
// (an e-mail's local part is read back from its '@', never past the previous
// '@'), so any input, invalid UTF-8, NUL bytes and megabyte texts included,
// costs linear time; values never overlap and come in text order.
//
// Quantities: a number, an optional single blank, a unit.
//   number  ASCII digits with thousands groups ("1,234,567": a comma only
//           before exactly three digits) and decimals ("12.5"), optionally
//           followed by the magnitudes 十百千万亿 ("3千万", "12.5万"); or a
//           Chinese numeral of at most 20 characters that ChineseToNumber
//           reads ("三", "二十五", "一百零八"). A number right after an ASCII
//           letter or digit ("A4", "COVID19") or a decimal point is no number.
//           An ASCII '-' or '+' directly before the digits is kept as a sign
//           when it does not itself follow a letter or digit ("2020-2023年"
//           is "2023年", not "-2023年").
//   unit    the longest of kUnits that follows; a unit ending in an ASCII
//           letter or digit must not be followed by another one ("5 meters"
//           is no "5 m"). Months and days of dates ("10月1日") are no units.
// E-mail addresses: dot-atom local part '@' domain, the way the mail
//   standards write them, and nothing around them taken along:
//   - local part: ASCII letters, digits and !#$%&'*+-/=?^_`{|}~ with single
//     dots between, at most 64 bytes. Text before an address often ends in a
//     character the standard would allow in a local part ("mailto:", "=",
//     "'", "//"), so the local part is taken to begin at a letter, digit or
//     '_'. Quoted local parts are not recognised.
//   - domain: at least two labels of letters, digits and inner hyphens (1 to
//     63 bytes each), single dots, at most 253 bytes, the last label (top
//     level) of two or more letters. A sentence's full stop after it is not
//     part of it ("a@b.cn." is "a@b.cn"); "a@b", "a@b.c1", "a..b@c.cn" and
//     "a@b..cn" are no addresses. Internationalised (non-ASCII) domains are
//     not recognised, so full-width punctuation ("：" "，" "。" "）") and
//     Chinese text end an address; the full-width "＠" is no '@'.
//   - an address directly followed or preceded by another '@' ("a@b.cn@c.cn")
//     is malformed and skipped whole.
// Countries: the names that CountryDetect_Find reports, as written in the text.
// Section headings: leading blanks skipped; then one of
//   "3", "3.2", "3.2.1" ...  groups of 1 to 3 ASCII digits joined by '.' or
//                            '．' (a date such as "2023.10.1" is no number), an
//                            optional trailing dot; a single group needs a
//                            separator after it ("1 引言", "1.引言", "1、引言");
//                            '%', '％', '‰', a letter, a digit or ',' after it
//                            make it a number in running text, not a heading
//   "第三章" "第1节" ...     第 + Chinese numeral or digits + one of 章 节 篇 部分
//                            编 条 款 项
//   "一、"                   a Chinese numeral + '、' (or '．' or '.')
//   "（二）" "(2)" "（2）"    a numeral in full-width or ASCII brackets
//   The number is returned as written, brackets included ("（二）") but
//   without the separator after it ('、', '.', blanks); the name is the rest
//   with blanks (ASCII, tab, U+3000) trimmed from both ends, and may be empty.
#include <vector>

#include "utility/TString.h"

// One value found: its text and its byte offset in the scanned text.
struct _tExtracted {
  tstring value;
  size_t offset = 0;
};

// The units a quantity may carry, UTF-8. Closed list: money, shares, length,
// area, volume, mass, time, power and energy, counts.
inline constexpr const char* kUnits[] = {
    // money
    "元", "万元", "亿元", "千元", "百万元", "万亿元", "美元", "万美元", "亿美元", "欧元", "港元", "日元", "英镑",
    // shares
    "%", "％", "‰", "个百分点",
    // length
    "m", "km", "cm", "mm", "米", "千米", "公里", "厘米", "毫米",
    // area
    "m²", "m2", "㎡", "km²", "平方米", "平方千米", "平方公里", "亩", "公顷",
    // volume
    "m³", "m3", "立方米", "L", "升", "毫升",
    // mass
    "kg", "t", "吨", "万吨", "千克", "公斤", "克",
    // time
    "年", "个月", "周", "天", "小时", "分钟", "秒", "个工作日", "工作日",
    // power and energy
    "kW", "MW", "kWh", "千瓦", "万千瓦", "千瓦时", "度",
    // counts
    "个", "人", "名", "家", "户", "项", "次", "台", "套", "件", "座", "条", "所", "间", "辆", "篇", "页",
};

class CValueExtractor {
 public:
  // Quantities ("12.5万元", "30 m²", "5%", "三个月"), the value as written.
  static std::vector<_tExtracted> Units(const tstring& sText);
  // E-mail addresses.
  static std::vector<_tExtracted> Emails(const tstring& sText);
  // Country names (the process-wide country detector; none before it starts).
  static std::vector<_tExtracted> Countries(const tstring& sText);
  // The number and name of a heading ("3.2 设计" -> "3.2", "设计";
  // "第三章 结论" -> "第三章", "结论"; "一、总则" -> "一", "总则";
  // "（二）范围" -> "（二）", "范围"). False (both cleared) when it has no number.
  static bool Section(const tstring& sHeading, tstring& sNo, tstring& sName);
};
