#pragma once
// Pinyin of Chinese text through ICU's Han-Latin transliteration, tone marks
// removed: 中国 -> "zhongguo", initials "zg". Characters that are not Han
// pass through as ASCII where ICU can spell them so ("é" -> "e"). A
// character with several readings gets ICU's reading.
#include "utility/TString.h"

// Full pinyin, syllables joined without blanks; "" when ICU is unavailable.
// Safe from several threads.
tstring GetPinyin(const tstring& sText);

// The first letter of each syllable: 中华人民共和国 -> "zhrmghg".
tstring GetPinyinInitials(const tstring& sText);

// The pinyin of Chinese text with tone marks, syllables separated by blanks
// ("ān zhuāng"); "" when ICU lacks the transliteration.
tstring GetPinyinToned(const tstring& sText);
