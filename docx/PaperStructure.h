#pragma once
// CPaperStructure reads the front and back matter of a thesis (report types
// 4 and 6: theses and papers) into paragraph levels, and reports the parts a
// thesis must have.
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
//
// Missing parts (findings "14.1" to "14.9", field 5, revise_type 4, anchored
// at paragraph id all ones, new_str the part's name):
//   14.1 Chinese abstract  14.2 English abstract  14.3 Chinese keywords
//   14.4 English keywords  14.5 table of contents
//   14.6 introduction (a chapter heading holding 绪论, 引言, 前言 or Introduction)
//   14.7 conclusion (a chapter heading holding 结论, 总结, 结束语 or Conclusion)
//   14.8 references        14.9 acknowledgements
#include <vector>

#include "docx/Paragraph.h"

class CCheckResult;
class CDocxParser;

class CPaperStructure {
 public:
  static bool IsThesis(int nReportType) { return nReportType == 4 || nReportType == 6; }
  // Gives the front- and back-matter paragraphs their levels.
  static void Classify(std::vector<_tParagraph>& vecParagraph);
  // Adds a finding for each missing part; returns how many.
  static int CheckParts(const CDocxParser& parser, CCheckResult& result);
};
