#pragma once
// The summary of a check, read from the result text the engine returned (a
// "CheckResults" JSON text, or the XML result file's text): findings and
// score, the deduction per error id, the findings per chapter.
#include <string>
#include <vector>

struct _tSummaryLine {
  std::string id, message;
  int count = 0;
  double score = 0;  // points deducted
};

struct _tChapterLine {
  std::string text;
  int count = 0;
};

struct _tResultSummary {
  int total = 0;             // findings
  double score = 100;        // total score
  std::vector<_tSummaryLine> lines;
  std::vector<_tChapterLine> chapters;
};

// Fills summary from a result text, JSON or XML. False when the text is
// neither or lacks the statistics.
bool ReadResultSummary(const std::string& sResult, _tResultSummary& summary);

// The whole text of a file the engine wrote; "" when it cannot be read.
std::string ReadOutputFile(const std::string& sPath);
