#pragma once
// Bounded searches over WordprocessingML text. Every search stays inside the
// range it is given: a missing closing tag ends the element at the range's
// end, never beyond it.
#include "utility/TString.h"

// The first occurrence of sNeedle in [p, pEnd), or null.
const char* FindIn(const char* p, const char* pEnd, const char* sNeedle);

// The first tag sTag (such as "<w:p") in [p, pEnd) whose name ends there:
// followed by a blank or '>' (and '/' too when bEmptyToo). Null when none.
const char* FindElement(const char* p, const char* pEnd, const char* sTag, bool bEmptyToo = false);

// The value of the first attribute sAttr (such as "w:line") in [p, pEnd):
// the text between the quotes of sAttr="...". False when there is none.
bool FindAttr(const char* p, const char* pEnd, const char* sAttr, tstring& sValue);

// The value of attribute sAttr of the first element sElement ("w:sz",
// "w:val") in [p, pEnd), looked up inside that element's tag only.
bool FindElementAttr(const char* p, const char* pEnd, const char* sElement, const char* sAttr, tstring& sValue);

// A decimal integer at the start of a text; 0 for none, clamped to int.
int ToInt(const tstring& sText);
