#pragma once
// Checks of values that audit rules extract from documents.
#include "utility/TString.h"

// A Chinese resident identity number: 18 characters (17 digits and a check
// character 0-9 or X, computed as GB 11643 prescribes) or the old 15-digit
// form, with a known province code and a real birth date not in the future.
bool IsValidIdentityNumber(const tstring& sNumber);

// Reads a whole date: "2023年5月1日", "2023-05-01", "2023/5/1", "2023.05.01",
// "二〇二三年五月一日" (blanks around it are ignored). False for any other
// text and for days and months that do not exist (2023-02-29, 2023-13-01).
bool ParseDate(const tstring& sText, int& nYear, int& nMonth, int& nDay);

// True when the day exists in the Gregorian calendar (years 1 to 9999).
bool IsValidDate(int nYear, int nMonth, int nDay);
