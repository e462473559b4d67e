#pragma once
// CPaperStructure reads the front and back matter of a thesis (report types
// 4 and 6: theses and papers) into paragraph levels. Which parts a thesis
// lacks is the thesis-parts check's to say.
//
// Levels given (only to paragraphs of level 0 or 1, by their text with
// blanks removed; "X…" means the text starts with X):
//   -503 "摘要" / "中文摘要"            -504 the paragraphs after it
//   -505 "关键词…" / "关键字…"
//   -506 "Abstract" (any case)         -507 the paragraphs after it
//   -508 "Keywords…" / "Key words…"
//   -509 "参考文献" / "References"      -510 the paragraphs after it
//   -511 "致谢" / "谢辞" / "Acknowledgements" / "Acknowledgments"
//   -513 "作者…"  -514 "专业…"  -515 "导师…" / "指导教师…"
//   -500 the first body paragraph (outside those blocks) after a chapter
//        heading that follows the last front-matter caption: the start of
//        the main text
// An abstract or reference block ends at the next heading or caption above.
#include <vector>

#include "docx/Paragraph.h"

// The levels the reader gives.
enum EPaperLevel {
  kMainText = -500,
  kAbstractCaptionCn = -503, kAbstractTextCn = -504, kKeywordCn = -505,
  kAbstractCaptionEn = -506, kAbstractTextEn = -507, kKeywordEn = -508,
  kReferenceCaption = -509, kReferenceText = -510, kAcknowledge = -511,
  kAuthor = -513, kMajor = -514, kSupervisor = -515,
};

class CPaperStructure {
 public:
  static bool IsThesis(int nReportType) { return nReportType == 4 || nReportType == 6; }
  // The level a title names ("摘要", "参考文献", "致谢"...), given as
  // CompactTitle makes it; 0 for none.
  static int CaptionLevel(const tstring& sCompactTitle);
  // Gives the front- and back-matter paragraphs their levels.
  static void Classify(std::vector<_tParagraph>& vecParagraph);
};
