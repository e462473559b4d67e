#include "cli/CheckCommand.h"

#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "cli/DataDir.h"
#include "cli/ResultSummary.h"
#include "tarvos.h"

namespace fs = std::filesystem;

namespace {

// The finding by which a result says its template was not the organisation's.
const char kDefaultTemplateNoteId[] = "15.9";

// The documents of a folder that a check takes: doc*, wps, htm*, txt (not
// the "_tuple" texts the engine writes itself).
bool IsDocument(const fs::path& path) {
  const std::string sExt = path.extension().string(), sStem = path.stem().string();
  const char* szExt = sExt.empty() ? "" : sExt.c_str() + 1;
  if (strncasecmp(szExt, "doc", 3) == 0 || strcasecmp(szExt, "wps") == 0 || strncasecmp(szExt, "htm", 3) == 0)
    return true;
  return strcasecmp(szExt, "txt") == 0 && !(sStem.size() >= 6 && sStem.compare(sStem.size() - 6, 6, "_tuple") == 0);
}

std::vector<std::string> ExpandInputs(const std::vector<std::string>& vecInputs) {
  std::vector<std::string> vecFiles;
  for (const std::string& sInput : vecInputs) {
    std::error_code ec;
    if (!fs::is_directory(sInput, ec)) {
      vecFiles.push_back(sInput);
      continue;
    }
    std::vector<std::string> vecFolder;
    for (const auto& entry : fs::directory_iterator(sInput, ec))
      if (entry.is_regular_file(ec) && IsDocument(entry.path())) vecFolder.push_back(entry.path().string());
    std::sort(vecFolder.begin(), vecFolder.end());
    vecFiles.insert(vecFiles.end(), vecFolder.begin(), vecFolder.end());
  }
  return vecFiles;
}

// The file a check wrote its result to: "<name>_Check.xml" or ".json" beside
// the document.
std::string ResultFileOf(const std::string& sFile, bool bJson) {
  fs::path path = fs::absolute(sFile).lexically_normal();
  return (path.parent_path() / (path.stem().string() + (bJson ? "_Check.json" : "_Check.xml"))).string();
}

void PrintSummary(const std::string& sFile, const std::string& sResultFile, const _tResultSummary& summary,
                  std::ostream& s) {
  char sScore[32];
  snprintf(sScore, sizeof(sScore), "%.2f", summary.score);
  s << sFile << ": " << summary.total << " findings, total score " << sScore << "\n";
  for (const _tSummaryLine& line : summary.lines) {
    char sLine[64];
    snprintf(sLine, sizeof(sLine), "  %-8s %4d  -%-6.2f ", line.id.c_str(), line.count, line.score);
    s << sLine << line.message << "\n";
  }
  for (const _tChapterLine& chapter : summary.chapters) s << "  chapter " << chapter.text << ": " << chapter.count << "\n";
  for (const _tSummaryLine& line : summary.lines)
    if (line.id == kDefaultTemplateNoteId)
      s << "  note: no template for this organisation; checked against the default "
           "(import your own: tarvos template import SAMPLE.docx --type N --org ORG)\n";
  s << "  result: " << sResultFile << "\n";
}

// The files a check of a document writes beside it: the result and the
// structure file, in either form.
std::vector<fs::path> FilesWrittenFor(const std::string& sFile) {
  const fs::path path = fs::absolute(sFile).lexically_normal();
  const std::string sStem = path.stem().string();
  std::vector<fs::path> vecFiles;
  for (const char* szSuffix : {".xml", ".json", "_Check.xml", "_Check.json", "_Content.xml", "_Content.json"})
    vecFiles.push_back(path.parent_path() / (sStem + szSuffix));
  return vecFiles;
}

// The file a check would write that is this process's standard output
// ("tarvos check r.docx --format json > r.json"), or "" when there is none.
std::string OutputOverwrittenBy(const std::string& sFile) {
  struct stat stOut;
  if (fstat(STDOUT_FILENO, &stOut) != 0 || !S_ISREG(stOut.st_mode)) return "";
  for (const fs::path& path : FilesWrittenFor(sFile)) {
    struct stat st;
    if (stat(path.c_str(), &st) == 0 && st.st_dev == stOut.st_dev && st.st_ino == stOut.st_ino) return path.string();
  }
  return "";
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
  for (const std::string& sFile : vecFiles) {
    const std::string sClash = OutputOverwrittenBy(sFile);
    if (sClash.empty()) continue;
    err << "tarvos: standard output is " << sClash << ", which the check of " << sFile
        << " writes itself; send the output to another file\n";
    TARVOS_Exit();
    return 1;
  }
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
    const std::string sResultFile = ResultFileOf(sFile, options.json);
    if (options.json) out << sResult;
    _tResultSummary result;
    if (!ReadResultSummary(options.json ? sResult : ReadOutputFile(sResultFile), result)) {
      err << "tarvos: " << sFile << ": the result cannot be read back from " << sResultFile << "\n";
      ++nFailed;
      continue;
    }
    PrintSummary(sFile, sResultFile, result, summary);
  }
  TARVOS_Exit();
  if (vecFiles.empty()) err << "tarvos: no document to check\n";
  return nFailed == 0 && !vecFiles.empty() ? 0 : 1;
}
