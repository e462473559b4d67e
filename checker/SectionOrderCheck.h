#pragma once
// CSectionOrderCheck checks that the numbers of a document run in order:
// chapters, sections within each chapter, figure and table captions,
// formula indexes and references, plus the shape of each reference entry.
//
// Rules and the findings they raise (field 2, revise_type 1; org_str is the
// number found, new_str the number expected, both as the text shows them):
//   parts (chapters) 1, 2, 3 ...  a skipped number            "1.3.14"
//                                 a number not above the last "1.3.15"
//   (appendices "附录A" count apart from chapters, whatever style these
//   are numbered in; chapters restart under each part "第一部分", "第二篇",
//   "Part 2", which run in a series of their own; annexes "附件7" count
//   apart and may skip, as a contract attaches those of its list that
//   apply; a chapter runs on from text before it as sections do, below)
//   sections within a chapter, per heading level, restarting under each
//   higher heading:               a skipped number            "1.3.1"
//                                 the previous number again   "1.3.3"
//                                 a number below the previous "1.3.6"
//                                 a level deeper by two       "1.3.5"
//                                 "2.3" under chapter 3       "1.3.11"
//   A heading whose number skips runs on, without a finding, from a
//   paragraph before it in the chapter (since the last heading of its
//   level) numbered one less in the same style, depth and prefix, with the
//   same outer parts, whatever mark follows: body text ("六．" as text,
//   then "七、" as a heading), a heading given another level, or a heading
//   the reading took for a caption ("2.7插入图片" after a figure).
//   figures / tables: "图2-1" restarts at 1 in each chapter; one-part
//   numbers run through the document. A skip or repeat "1.3.8" (figures) or
//   "1.3.10" (tables); a chapter number below the previous one "1.3.6".
//   Only captions that look like captions count: of a caption style, with a
//   SEQ field, or "图/表/Figure/Table n" followed by a separator (blank,
//   tab, colon, period, 、, -) or by a short phrase without a clause
//   ("图3系统结构"); a sentence that cites a figure ("图1中给出了……") or a
//   heading that names figures ("2.7 插入图片") is no caption.
// Numbers are read from the text as the reader sees it: the automatic
// numbering's label, then the text.
//   formula indexes "(3-2)" as figures, and references [1], [2] ... in the
//   order of the list: a skip, repeat or step back "1.3.6".
// Reference entries (GB/T 7714): no document-type code such as [J], [M],
// [C], [D], [S], [EB/OL] "1.4.1"; no year "1.4.2" (field 2, revise_type 4).
#include <vector>

#include "utility/SectionInfo.h"
#include "utility/TString.h"

class CDocument;
class CCheckResult;
struct _tParagraph;

class CSectionOrderCheck {
 public:
  CSectionOrderCheck(const CDocument& doc, CCheckResult& result) : m_doc(doc), m_result(result) {}

  // Parts numbered from nFirst; sets orderNew of a part out of order to the
  // number it should have.
  void CheckPartOrder(std::vector<_tSection_Info>& vecParts, int nPartType, int nFirst);
  // Every heading of the document, chapter by chapter.
  void CheckSections();
  // The headings from index nStart of the heading list up to the next
  // chapter; returns the index the next call starts at.
  size_t CheckSectionOrder(size_t nStart, int nLevel, const tstring& sChapId);
  void CheckFigureTableOrder();
  void CheckFormulaOrder();
  void CheckReferenceOrder();
  void CheckReference(const _tParagraph& para);

 private:
  static bool IsPart(const _tSection_Info& info);
  // A first number above 1 at paragraph nIndex that a paragraph in the
  // text of the same numbering style, from nScopeStart on, leads up to.
  bool RunsOnFromText(size_t nIndex, size_t nScopeStart, const _tSection_Info& info) const;
  static bool IsCaptionShaped(const _tParagraph& para, const _tSection_Info& info);
  // One numbered series: nChapter 0 for one-part numbers.
  struct _tSeries {
    int nChapter = 0, nLast = 0;
  };
  void CheckSeries(const _tParagraph& para, const _tSection_Info& info, _tSeries& series, const char* szErrorId);
  void Add(const _tParagraph& para, const char* szErrorId, const tstring& sOrg, const tstring& sNew,
           int nReviseType = 1);
  const _tParagraph* ParagraphWithId(uint32_t nParaId) const;
  // The chapter number in force at a paragraph index; 0 before the first.
  int ChapterAt(size_t nIndex) const;

  const CDocument& m_doc;
  CCheckResult& m_result;
};
