#include "cli/CheckCommand.h"

#include <strings.h>

#include <cstdio>

#include "api/Globals.h"
#include "cli/DataDir.h"
#include "checker/CheckResult.h"
#include "checker/ReportChecker.h"
#include "docx/DocxParser.h"
#include "tarvos.h"
#include "utility/DirBrowser.h"
#include "utility/FileUtil.h"

namespace {

// The documents of a folder that a check takes: doc*, wps, htm*, txt (not
// the "_tuple" texts the engine writes itself).
bool IsDocument(const std::string& sPath) {
  std::string sDir, sName, sExt;
  SplitPath(sPath, sDir, sName, sExt);
  if (strncasecmp(sExt.c_str(), "doc", 3) == 0 || strcasecmp(sExt.c_str(), "wps") == 0 ||
      strncasecmp(sExt.c_str(), "htm", 3) == 0)
    return true;
  return strcasecmp(sExt.c_str(), "txt") == 0 && !(sName.size() >= 6 && sName.compare(sName.size() - 6, 6, "_tuple") == 0);
}

std::vector<std::string> ExpandInputs(const std::vector<std::string>& vecInputs) {
  std::vector<std::string> vecFiles;
  for (const std::string& sInput : vecInputs) {
    if (!IsReadableDirectory(sInput)) {
      vecFiles.push_back(sInput);
      continue;
    }
    for (const std::string& sFile : ListFiles(sInput, "*.*", true))
      if (IsDocument(sFile)) vecFiles.push_back(sFile);
  }
  return vecFiles;
}

void PrintSummary(const std::string& sFile, const std::string& sResultFile, CReportChecker& checker, std::ostream& s) {
  const CCheckResult& results = checker.GetCheckResult();
  double fTotal = 0;
  auto vecLines = results.GetScoreLines(fTotal);
  char sScore[32];
  snprintf(sScore, sizeof(sScore), "%.2f", fTotal);
  s << sFile << ": " << results.GetErrorCount() << " findings, total score " << sScore << "\n";
  for (const auto& line : vecLines) {
    char sLine[64];
    snprintf(sLine, sizeof(sLine), "  %-8s %4d  -%-6.2f ", line.id.c_str(), line.count, (double)line.score);
    s << sLine << line.message << "\n";
  }
  CDocxParser& parser = checker.GetDocxParser();
  for (const auto& kv : results.GetChapterCounts()) s << "  chapter " << parser.GetText(kv.first) << ": " << kv.second << "\n";
  s << "  result: " << sResultFile << "\n";
}

// With a chosen template the check runs as usual, writing XML, and its
// format findings are then made again against that template.
const char* CheckOne(const std::string& sFile, const _tCheckOptions& options) {
  const int nFormat = options.json ? 1 : 0;
  if (options.templateId < 0)
    return TARVOS_CheckReportF(sFile.c_str(), "", options.organization.c_str(), options.type, nFormat, false, 0);
  const char* sResult = TARVOS_CheckReportF(sFile.c_str(), "", options.organization.c_str(), options.type, 0, false, 0);
  if (sResult == nullptr) return nullptr;
  std::string sChecked = sResult;
  if (TARVOS_ImportDoc(sFile.c_str(), "", 0) == nullptr) return nullptr;
  return TARVOS_ReCheckFormat(sChecked.c_str(), options.templateId, nFormat, 0);
}

}  // namespace

int RunCheck(const std::string& sDataDir, const _tCheckOptions& options, std::ostream& out, std::ostream& err) {
  if (!StartEngine(sDataDir, err)) return 1;
  std::vector<std::string> vecFiles = ExpandInputs(options.inputs);
  std::ostream& summary = options.json ? err : out;
  int nFailed = 0;
  for (size_t i = 0; i < vecFiles.size(); ++i) {
    const std::string& sFile = vecFiles[i];
    if (vecFiles.size() > 1) err << "[" << i + 1 << "/" << vecFiles.size() << "] " << sFile << "\n";
    const char* sResult = CheckOne(sFile, options);
    if (sResult == nullptr) {
      err << "tarvos: " << sFile << ": " << TARVOS_GetLastErrorMsg() << "\n";
      ++nFailed;
      continue;
    }
    CReportChecker* pChecker = GetReportCheckerWorker(0);
    std::string sResultFile = sResult;
    if (options.json) {
      out << sResult;
      sResultFile = pChecker->GetDocxParser().m_sPath + "/../" + pChecker->GetDocxParser().m_sFilename + "_Check.json";
    }
    PrintSummary(sFile, sResultFile, *pChecker, summary);
  }
  TARVOS_Exit();
  if (vecFiles.empty()) err << "tarvos: no document to check\n";
  return nFailed == 0 && !vecFiles.empty() ? 0 : 1;
}
