#pragma once
// The counters of one walk through a document's numbered paragraphs, and
// the label each paragraph shows ("第1章", "1.1", "（一）", "①").
//
// Counting, paragraph after paragraph:
//   - Counters belong to the abstract numbering: paragraphs of two nums over
//     the same abstract numbering continue one list.
//   - A num that gives a level a startOverride is a list of its own (what a
//     word processor's "restart numbering" makes): it starts at its
//     overrides, and neither moves nor follows the counters of the other
//     nums over its abstract numbering.
//   - The first time a num is met, each level it gives a startOverride
//     restarts (at the override), and the levels below it restart as if that
//     level had been counted.
//   - Counting a level gives it its start value when it has not been counted
//     since it last restarted, else one more (never past INT_MAX).
//   - Counting a level restarts the levels below it; a lower level's
//     lvlRestart N limits that to counts of levels 1..N (ilvl 0..N-1), and 0
//     keeps it from ever restarting.
// The label is the level's lvlText with %1..%9 replaced by the values of
// levels 0..8, each in its own numFmt, or all in decimal when the level shown
// has isLgl. A level not counted since it last restarted shows its start
// value; a level the num does not define shows nothing. A bullet level's
// label is "" (its glyph is no number), and so is an unknown num's.
#include <map>
#include <utility>
#include <set>

#include "docx/Numbering.h"
#include "utility/TString.h"

// A number in a numbering format (numFmt):
//   decimal 1 2 3; decimalZero 01 .. 09 10; decimalFullWidth １ ２ ３
//   upperLetter/lowerLetter A .. Z AA BB .. ZZ AAA (up to 780, then decimal)
//   upperRoman/lowerRoman I II III IV (up to 3999, then decimal)
//   chineseCounting 一 .. 十 十一 .. 九十九, from 100 digit by digit (一〇〇)
//   chineseCountingThousand 一 十一 一百 一千零一; ideographDigital 一〇〇 digit by digit
//   chineseLegalSimplified 壹 贰 壹拾; ideographLegalTraditional 壹 貳 參
//   ideographTraditional 甲 .. 癸 (1-10); ideographZodiac 子 .. 亥 (1-12);
//   ideographZodiacTraditional 甲子 乙丑 .. 癸亥 (1-60)
//   decimalEnclosedCircle, decimalEnclosedCircleChinese ① .. ⑳; decimalEnclosedParen ⑴ .. ⒇;
//   decimalEnclosedFullstop ⒈ .. ⒛ (each in decimal beyond 20)
//   ordinal 1st 2nd 3rd 11th
//   bullet, none: "" (no number)
// Values a format cannot show (0, negatives, past its range), other formats
// (cardinalText, ordinalText, ...) and unknown names give decimal.
tstring FormatListNumber(int nValue, const tstring& sNumFmt);

class CNumberingCounter {
 public:
  explicit CNumberingCounter(const CNumbering& numbering);  // borrows; must outlive

  // Counts one paragraph numbered (numId, ilvl) in document order and returns
  // the label the reader sees ("第1章", "1.1", "（一）", "①"), without the
  // suffix; "" when numId is 0 / unknown or the level shows no text.
  tstring Next(int nNumId, int nIlvl);

 private:
  struct _tList {
    int values[kNumLevels] = {};
    bool counted[kNumLevels] = {};  // counted since the level last restarted
  };

  void Count(int nNumId, int nIlvl, _tList& list) const;
  void RestartBelow(int nNumId, int nIlvl, _tList& list) const;
  tstring Label(int nNumId, int nIlvl, const _tList& list) const;
  // The counters a num moves: (abstract numbering, 0), or (abstract
  // numbering, numId) for a num with a startOverride.
  std::pair<int, int> ListKey(int nNumId) const;
  int Value(int nNumId, int nIlvl, const _tList& list) const;

  const CNumbering& m_numbering;
  std::map<std::pair<int, int>, _tList> m_mapLists;  // by ListKey
  std::set<int> m_setNumsMet;
};
