#pragma once
// CFormatCheckRun is one format check of one document before the template
// comparison: the table of contents, the chapter scan, the order of
// sections, figures, tables, formulas and references, the placement of
// figures and tables, and the parts of a thesis. It holds what that check
// works on (the document, its findings, the chapters found) and is made for
// one check only.
//
// Rules (field ids: 2 numbering and placement, 3 heading level, 5 contents):
//   "1.6"    report types 1, 2 and 7: the table of contents does not hold
//            the headings, i-th entry for i-th heading (anchored at the
//            paragraph before the first entry).
//   "1.3.9"  a heading of 121 bytes or more without numbering is body text
//            (its level becomes 1000).
//   "1.3.7"  a first-level heading numbered at another depth takes that depth.
//   "1.3.12" a figure or table inside the table of contents.
//   "1.3.13" report type 4: a figure or table before the main text.
//   "99.6", "99.7" a figure or table after the contents without a caption.
//   The order rules are CSectionOrderCheck's, the thesis parts
//   CThesisPartsCheck's (report types 4 and 6).
// Placement findings are anchored at the paragraph before the figure or
// table (or that of the previous figure), not at the figure itself.
#include <vector>

#include "utility/TString.h"

class CCheckResult;
class CDocument;

struct SectionPostion {
  SectionPostion(int nLevel, int nOrder, unsigned nParaId, const tstring& sChapterId)
      : level(nLevel), order(nOrder), nID(nParaId), chap_id(sChapterId) {}
  bool operator<(const SectionPostion& other) const { return nID < other.nID; }
  int level;
  int order;
  unsigned nID;     // paragraph id
  tstring chap_id;  // chapter number, "%d"
};

class CFormatCheckRun {
 public:
  // Both must outlive the run.
  CFormatCheckRun(CDocument& doc, CCheckResult& result, int nReportType)
      : m_doc(doc), m_result(result), m_nReportType(nReportType) {}

  // Every check above, in order: contents, chapter scan, section order,
  // placement, figure and table order, thesis parts, formula and reference
  // order (report types 6 and 7).
  void Run();

  // The i-th table-of-contents entry holds the text of the i-th heading, for
  // every i, and there are as many entries as headings.
  bool IsContentUpdated() const;

  const std::vector<SectionPostion>& GetSectionPositions() const { return m_vecSectionPosition; }

 private:
  void CheckContent();
  // Overlong unnumbered headings are demoted to text ("1.3.9"); a first-level
  // heading numbered at another depth takes that depth ("1.3.7"). Rebuilds
  // the document's chapter lists.
  void ScanChapter();
  void CheckFigureTablePosition();
  void AddFinding(uint32_t nParaId, const char* szErrorId, int nField, int nReviseType, const tstring& sOrg,
                  const tstring& sNew);

  CDocument& m_doc;                                  // not owned
  CCheckResult& m_result;                            // not owned
  int m_nReportType;
  std::vector<SectionPostion> m_vecSectionPosition;  // chapters found by the chapter scan
};
