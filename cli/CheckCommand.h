#pragma once
// "tarvos check": checks documents and folders of documents.
#include <ostream>
#include <string>
#include <vector>

struct _tCheckOptions {
  std::vector<std::string> inputs;  // files and folders
  int type = 1;                     // report type
  std::string organization;
  int templateId = -1;              // re-check the format with this template
  bool json = false;                // JSON results on standard output, summaries on standard error
};

// Returns the process exit status: 0 when every document was checked.
int RunCheck(const std::string& sDataDir, const _tCheckOptions& options, std::ostream& out, std::ostream& err);
