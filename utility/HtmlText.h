#pragma once
// Plain text of an HTML page: the charset it declares, and its text with
// tags removed (script and style contents too), entities decoded, and a line
// break for each paragraph-like element (p, div, br, li, tr, h1-h6, title).
#include "utility/TString.h"

// The value of the first charset= in the page ("" when none), as written.
tstring HtmlCharset(const tstring& sHtml);

tstring HtmlToText(const tstring& sHtml);
