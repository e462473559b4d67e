#pragma once
// CConsistencyCheck compares each paragraph with the others of its kind in
// the same document, whatever the template: a report is expected to give
// all chapter headings one font, all body text one size, and so on.
//
// Only the main text takes part: from the first heading after the table of
// contents (the first heading, without one) up to the reference list; the
// cover, forms and declarations before it and the references after have
// formats of their own.
// Kinds: headings of each level 1 to 4; body text (level 0, at least
// kMinBodyCharacters characters: shorter lines are labels, signatures,
// notes; not lines of a form, with "__", "□" or runs of blanks; only
// running Chinese text, a third of it Chinese characters at least: code,
// formulas and Latin quotations have formats of their own); figure
// captions; table captions. Per kind and property (font,
// size, line spacing), only paragraphs that set the property take part, and
// a font is compared only with fonts of its script class (Latin or Chinese
// names), as the template comparison does.
// A kind has a house style for a property when at least kMinGroup
// paragraphs set it and one value holds at least kMajorityPercent of them;
// then every paragraph with another value gets a finding whose proposal is
// that value:
//   "15.1" font (field 0), "15.2" size (field 1, as size names), "15.3"
//   line spacing (field 4, /20 as the template findings give it).
// Without a clear majority nothing is said: a document that mixes styles
// evenly has no house style to hold it to.
#include "utility/TString.h"

class CCheckResult;
class CDocument;
class CNum2FontSize;

class CConsistencyCheck {
 public:
  static constexpr size_t kMinGroup = 5;
  static constexpr int kMajorityPercent = 75;
  static constexpr size_t kMinBodyCharacters = 20;

  // pSizeNames names sizes (may be null: points); must outlive the check.
  explicit CConsistencyCheck(const CNum2FontSize* pSizeNames) : m_pSizeNames(pSizeNames) {}

  // Adds the findings of a document; returns how many.
  int Check(const CDocument& doc, CCheckResult& result) const;

 private:
  const CNum2FontSize* m_pSizeNames;  // not owned; may be null
};
