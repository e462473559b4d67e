#pragma once
// CKnowledgeParser reads and writes the pattern language of extraction
// rules. A pattern is a sequence of grids "{...}", a grid a sequence of
// blocks "[...]", a block a set of alternative elements separated by ';':
//
//   {[报告日期;编制日期]}{[:;：]0}{[/m]3}s+2
//
// - Blanks, tabs and line ends are dropped, except that a run of them
//   becomes one blank after a kept character other than " +{}[]^".
// - Behind a grid's '}': 's' marks the grid whose words are the selected
//   value; then, when the character after the next one is a digit, that
//   number is the grid's step ("}+3", "}s+3"); otherwise the step is 1.
//   Text between grids is skipped.
// - Behind a block's ']': digits are its repeat count (0 makes the block
//   optional). Only with a repeat count is a '+' looked for (before the next
//   block), and the digits behind it are the step to the next block, so
//   "[a]2+3" gives repeat 2 and step 3 while "[a]+3" gives repeat 1 and
//   step 1. A grid without '[' is one block.
// - A block "-(x;y)" is negated. '^' escapes the next character when it is
//   one of "{}[]();^": "^]" is a literal ']'. An empty piece before a ';' is
//   an element; the empty piece after the last ';' is not. Blanks at the
//   ends of an element are dropped.
// Written back, elements holding one of "{}[]();^" get their '^' again, so
// what is written parses to the same form.
#include <json/json.h>

#include "rules/ZYGTypes.h"
#include "utility/TString.h"

class CKnowledgeParser {
 public:
  // Parses a pattern. 1, or -1 with the message in sError (the pattern up
  // to the offending character, then what was expected there).
  static int ParseKnowledge(const tstring& sPattern, _tKnowledgeOrg& knowledge, tstring& sError);
  // The normalised pattern text.
  static tstring Normalise(const tstring& sPattern);
  // Drops the '^' of every escape and the blanks at both ends.
  static tstring UnitStandard(const tstring& sPiece);

  static tstring GetBlockStr(const _tBlockOrg& block);
  static tstring GetGridStr(const _tGridOrg& grid, int nStep);
  static tstring GetKnowledgeStr(const _tKnowledgeOrg& knowledge);

  // The JSON form: {"text", "grids": [{"blocks": [{"elems", "is_not"}],
  // "repeats", "steps", "is_selected"}], "steps"}.
  static Json::Value ToJson(const _tKnowledgeOrg& knowledge);
  // A pattern text as JSON; null with the message in sError when it is broken.
  static Json::Value ZYGStr2Json(const tstring& sPattern, tstring& sError);

 private:
  static void ParseGrid(const tstring& sText, _tGridOrg& grid);
  static void ParseBlock(const tstring& sText, _tBlockOrg& block);
};
