#pragma once
// CThesisPartsCheck reports the parts a thesis (report types 4 and 6) must
// have and does not: one finding each, field 5, revise_type 4, anchored at
// paragraph id all ones, new_str the part's name.
//   14.1 Chinese abstract  14.2 English abstract  14.3 Chinese keywords
//   14.4 English keywords  14.5 table of contents
//   14.6 introduction (a chapter heading holding 绪论, 引言, 前言 or Introduction)
//   14.7 conclusion (a chapter heading holding 结论, 总结, 结束语 or Conclusion)
//   14.8 references        14.9 acknowledgements
// The parts are found by the levels the thesis reader gave (PaperStructure.h).
class CDocument;
class CCheckResult;

class CThesisPartsCheck {
 public:
  // Adds a finding for each missing part; returns how many.
  static int CheckParts(const CDocument& doc, CCheckResult& result);
};
