#include "cli/SpellCommand.h"

#include <json/json.h>

#include <sstream>

#include "cli/DataDir.h"
#include "tarvos.h"

int RunSpell(const std::string& sDataDir, std::istream& in, std::ostream& out, std::ostream& err) {
  if (!StartEngine(sDataDir, err)) return 1;
  int nStatus = 0;
  std::string sLine;
  for (int nLine = 1; std::getline(in, sLine); nLine++) {
    if (!sLine.empty() && sLine.back() == '\r') sLine.pop_back();
    const char* sFindings = TARVOS_CheckSpelling(sLine.c_str());
    Json::Value findings;
    std::istringstream text(sFindings ? sFindings : "");
    if (!sFindings || !Json::parseFromStream(Json::CharReaderBuilder(), text, &findings, nullptr)) {
      err << "tarvos: spelling check failed: " << TARVOS_GetLastErrorMsg() << "\n";
      nStatus = 1;
      break;
    }
    for (const Json::Value& finding : findings)
      out << nLine << '\t' << finding["offset"].asUInt64() << '\t' << finding["org"].asString() << '\t'
          << finding["revise"].asString() << '\n';
  }
  TARVOS_Exit();
  return nStatus;
}
