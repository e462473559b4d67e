#pragma once
// CFormatComparison compares the paragraphs of one document with a format
// template (CDocFormat) and remembers which required texts it has met. One
// comparison serves one document: it is made for a check and dropped after.
//
// Rules, per paragraph (CheckFormatOnParagraph):
//   - Skipped: empty texts and the levels -100, -200, -202, 0, -101, -1, -2,
//     -3 (plain body text, tables, figures, text boxes, table columns, the
//     front pages). Only the paragraphs compared count for required texts.
//   - The format of the paragraph's level; the template's body-text format
//     when it lacks the level.
//   - Line spacing (levels 0 to 4, when set): "1.1.3", field 4, spacings /20.
//   - Size (when set): "1.1.2", field 1, as size names ("小四"; points when
//     no size table is given).
//   - Font (when set): "1.1.1", field 0; proposed only a font of the same
//     script class (Latin names for Latin, multi-byte for multi-byte).
//   - Numbering, when the level has a pattern: "1.1.4", field 2, the number
//     found and the same number in the template's style.
//   A proposal is the value of highest weight; the smaller key wins a tie.
// Required texts (CheckRequired): "12.1" for each one no compared paragraph
// held, field 5, revise_type 4, anchored at nID with the text's id as offset.
#include <vector>

#include "utility/TString.h"

class CCheckResult;
class CDocFormat;
class CDocument;
class CNum2FontSize;
struct _tParagraph;

class CFormatComparison {
 public:
  // Both must outlive the comparison; pSizeNames may be null.
  CFormatComparison(const CDocFormat& format, const CNum2FontSize* pSizeNames);

  // Adds a finding per difference of one paragraph. Returns 1.
  int CheckFormatOnParagraph(const _tParagraph& para, CCheckResult& result);
  // Adds a "12.1" finding for every required text not met so far; returns
  // how many. The marks stay set.
  int CheckRequired(CCheckResult& result, unsigned int nID) const;
  // Every paragraph of a document (headers, footers, body, table cells),
  // then the required texts, then the entries of the reference list.
  int CheckDocument(const CDocument& doc, CCheckResult& result);

 private:
  tstring SizeName(int nHalfPoints) const;

  const CDocFormat& m_format;               // not owned
  const CNum2FontSize* m_pSizeNames;        // not owned; may be null
  std::vector<bool> m_vecMet;               // per required text: met in a compared paragraph
};
