#pragma once
// Character-set recognition of texts handed in without a declared encoding.
// The model file ("CodeTrans.model") lists, one a line, the character sets
// the recogniser may answer with, likeliest first; '#' starts a comment.

#include <cstddef>

#include "utility/TString.h"

// Loads the model. Returns the number of character sets it lists (>= 1), or
// -1 when the file cannot be read or lists none.
int CodeTrans_Initialize(const char* sModelFile);

// Frees the model; safe when it was never loaded.
void CodeTrans_Destroy();

// The character set of a text, as iconv names it: "UTF-8" for text with a
// UTF-8 byte-order mark, for valid UTF-8 and for plain ASCII; "UTF-16LE" or
// "UTF-16BE" after their byte-order marks; otherwise what the recogniser
// (uchardet) finds among the model's character sets, "GB18030" standing for
// the whole GB family. "" when the recogniser finds none of them. Safe from
// several threads.
tstring CodeTrans_Detect(const char* pData, size_t nLength);
