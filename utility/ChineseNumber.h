#pragma once
// Chinese numerals to integers and back, from 0 up to 10^12 (一万亿).
//
// Read: the digits 零〇一二两三四五六七八九 and their financial forms
// 壹贰貳叁參肆伍陆陸柒捌玖, the units 十拾 百佰 千仟 万萬 亿億, and Arabic digits
// in digit places ("3万"). A text without units is read digit by digit
// ("二〇二三" -> 2023). "十二" is 12 and "一百一十" is 110.
#include <cstdint>

#include "utility/TString.h"

// The value of a whole Chinese numeral; false for anything else (an empty
// text, other characters, a value above 10^12, two digits in a row when
// units are used).
bool ChineseToNumber(const tstring& sText, int64_t& nValue);

// The Chinese numeral of 0 <= nValue <= 10^12: plain ("一千零二十") or
// financial ("壹仟零贰拾", with 壹拾 written out). "" when out of range.
tstring NumberToChinese(int64_t nValue, bool bFinancial = false);

// The value of one numeral character: 0 to 9 for a digit, 10, 100, 1000,
// 10^4 or 10^8 for a unit; -1 for any other character.
int64_t ChineseDigitValue(uint32_t nChar);
