#pragma once
// The one way the engine writes JSON: jsoncpp, UTF-8 kept as it is (no
// \u escapes), objects with their keys in jsoncpp's order. The structure
// text keeps its keys in a fixed order and has a writer of its own.
#include <json/json.h>

#include "utility/TString.h"

// The value as text: indented by two blanks per level, or on one line.
tstring JsonText(const Json::Value& value, bool bIndent = true);

// A text as a JSON string, quotes included, for writers that keep their keys
// in an order of their own: UTF-8 kept as it is, quote, backslash and
// control characters escaped, a byte that is no valid UTF-8 written as
// U+FFFD so that the result is always valid JSON.
tstring JsonQuote(const tstring& sText);

// Reads a JSON object from a text, nesting limited so that hostile texts
// cannot exhaust the stack. False when the text is no JSON object.
bool ParseJsonObject(const tstring& sText, Json::Value& root);
