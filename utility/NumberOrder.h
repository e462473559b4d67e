#pragma once
// The number-order extractor: finds the numbering of a heading, caption or
// formula index, tells its style, and renders a number in another style.
//
// Heading mode (-1) reads numbering at the start of a text, after blanks:
//   第一章 第1章 第一节 第三条 第二部分   prefix "第", post 章/节/条/部分/篇/编/款/项/讲/单元/课/回
//   一、 1、 1. 1．                       post "、" or "."
//   （一） (一) （1） (1) [1]             prefix and post a bracket pair
//   1) a) 1）                             post ")"
//   1.2 1.2.3 1.2.3.4 1-2                 several parts, one separator (. － - – ．)
//   ① ⑴                                   no post needed
//   A. a) I. II.                          letters and Roman numbers need a post
//   附录A 附录1 图2-1 表3.2               word prefixes, the number right after
//   Chapter 1, Section 2, Figure 3, Table 4, Appendix A, Part 2
//   1 绪论                                a bare number needs a blank after it
// Texts that only begin with a number are refused: a part of more than three
// digits ("2023年"), a number followed by a letter, a digit or a unit
// character such as 万 亿 元 年 月 日 倍 个 % ("3D打印", "1000万元", "2.5亿"), and
// a bare number or Chinese numeral glued to the following word ("一带一路").
//
// Heading-line mode (-2) reads a paragraph known to be a heading: a unit
// character after the number does not refuse it there ("3.2人力成本",
// "2.3条件、假定和限制" are sections, not amounts).
//
// Formula mode (3) reads a bracketed number at the end of a text:
//   (3-2) （2.1） (12) （3.2.1）          prefix and post the brackets
#include "utility/SectionInfo.h"
#include "utility/TString.h"

inline constexpr int kOrderHeading = -1;
inline constexpr int kOrderHeadingLine = -2;
inline constexpr int kOrderFormula = 3;

// Fills info with the numbering found in sText (info.sample = sText) and
// returns info.order: the value of the last part, > 0 when numbering was
// found; 0 with num_format -1 when there is none.
int ExtractOrder(const tstring& sText, int nMode, _tSection_Info& info);

// A number in a style; Arabic digits when the style cannot show it
// (① stops at 20, A at 26).
tstring RenderNumber(int nValue, int nStyle);

// The numbering of `found` rendered in the pattern's style, with the
// pattern's depth (outer parts dropped, or the chapter from found.chapter_id
// added), put in place of found.text within found.sample.
tstring SetNewSectionNo(const _tSection_Info& found, const _tSection_Format& pattern);
