#include "cli/SegCommand.h"

#include "cli/DataDir.h"
#include "tarvos.h"

int RunSeg(const std::string& sDataDir, bool bTags, const std::string& sUserDict, std::istream& in,
           std::ostream& out, std::ostream& err) {
  if (!StartEngine(sDataDir, err)) return 1;
  if (!sUserDict.empty() && TARVOS_ImportUserDict(sUserDict.c_str()) <= 0) {
    err << "tarvos: no word imported from " << sUserDict << ": " << TARVOS_GetLastErrorMsg() << "\n";
    TARVOS_Exit();
    return 1;
  }
  std::string sLine;
  while (std::getline(in, sLine)) {
    if (!sLine.empty() && sLine.back() == '\r') sLine.pop_back();
    const char* sWords = TARVOS_SegmentText(sLine.c_str(), bTags);
    out << (sWords ? sWords : "") << '\n';
  }
  TARVOS_Exit();
  return 0;
}
