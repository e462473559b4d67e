#pragma once
// Text statistics and the normaliser applied to texts that are compared or
// looked up: required texts of templates, keywords, heading texts.
#include <cstdint>

#include "utility/TString.h"

// Counts the characters of a UTF-8 text: single-byte ones (ASCII, and any
// byte that does not start a valid UTF-8 character) and multi-byte ones
// (each complete, valid 2- to 4-byte UTF-8 character counts once).
void CharStat(const tstring& sText, int64_t& nSingleByte, int64_t& nMultiByte);

// Normalises a UTF-8 text, in this order:
//  1. full-width ASCII forms U+FF01..U+FF5E become their ASCII characters
//     (！ -> !, Ａ -> A, ０ -> 0);
//  2. white space (space, tab, CR, LF, VT, FF, U+00A0, U+3000) runs become
//     one blank;
//  3. blanks at both ends are removed.
// Everything else, invalid bytes included, is kept as it is.
tstring NormalizeText(const tstring& sText);

// A title as it compares: normalised, then without any blank, so that
// spaced-out titles ("目　录", "参 考 文 献") match their plain forms.
tstring CompactTitle(const tstring& sText);
