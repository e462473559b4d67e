#include "cli/SegCommand.h"

#include "utility/ErrorLog.h"
#include "utility/lexical/Lexical.h"

int RunSeg(const std::string& sDataDir, bool bTags, const std::string& sUserDict, std::istream& in,
           std::ostream& out, std::ostream& err) {
  if (QUENDA_Init(sDataDir.c_str()) != 1) {
    err << "tarvos: cannot start the lexical analyser on " << sDataDir;
    std::string sError = GetLastError();
    if (!sError.empty()) err << ": " << sError;
    err << "\n";
    return 1;
  }
  if (!sUserDict.empty() && QUENDA_ImportUserDict(sUserDict.c_str(), false) <= 0) {
    err << "tarvos: no word imported from " << sUserDict << ": " << GetLastError() << "\n";
    QUENDA_Exit();
    return 1;
  }
  std::string sLine;
  while (std::getline(in, sLine)) {
    if (!sLine.empty() && sLine.back() == '\r') sLine.pop_back();
    out << QUENDA_ParagraphProcess(sLine, bTags) << '\n';
  }
  QUENDA_Exit();
  return 0;
}
