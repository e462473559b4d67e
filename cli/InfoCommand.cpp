#include "cli/InfoCommand.h"

#include <iomanip>

#include "api/Globals.h"
#include "checker/DocFormatCheck.h"
#include "checker/ID2Message.h"
#include "rules/ZYGManager.h"
#include "tarvos.h"
#include "utility/Num2FontSize.h"

namespace {

const char* OnOff(char bSwitch) { return bSwitch ? "on" : "off"; }

void Row(std::ostream& out, const char* sName, const std::string& sValue) {
  out << "  " << std::left << std::setw(26) << sName << sValue << "\n";
}

const char* StartFailure(int nStatus) {
  switch (nStatus) {
    case -1: return "the rule engine did not start";
    case -5: return "the format checker could not be created";
    case -6: return "the message catalogue was not loaded";
    case -7: return "the font-size table was not loaded";
    default: return "start-up failed";
  }
}

void PrintSwitches(std::ostream& out) {
  out << "switches (Data/ZYG-Configure.json):\n";
  Row(out, "PunctionCheck", OnOff(g_bPunctionCheck));
  Row(out, "FormatCheck", OnOff(g_bFormatCheck));
  Row(out, "OCR", OnOff(g_bOCR));
  Row(out, "FilterCheck", OnOff(g_bFilteringCheck));
  Row(out, "SpellCheck", std::string(OnOff(g_bSpellingCheck)) +
                             (g_bSpellingCheck ? " (host " + g_sSpellingHostIP + ")" : ""));
  Row(out, "CountryDetect", OnOff(g_bCountryDetect));
}

void PrintServices(std::ostream& out) {
  out << "services:\n";
  Row(out, "rule engine", "started");
  Row(out, "rule manager", g_pZYGManager ? std::to_string(g_pZYGManager->GetProcessers().size()) +
                                               " document types"
                                         : "absent");
  Row(out, "keyword scanner", g_bFilteringCheck ? "started" : "off");
  Row(out, "format checker",
      g_pDocFormatChecker ? "started, " + std::to_string(g_pDocFormatChecker->GetTemplateCount()) + " templates" : "off");
  Row(out, "font-size table", g_pNum2FontSize ? std::to_string(g_pNum2FontSize->GetCount()) + " sizes"
                                              : "off");
  Row(out, "message catalogue", std::to_string(g_pError2Message->GetMessages().size()) + " messages");
  Row(out, "spelling dictionaries", g_pSimDict && g_pSpellCheckDict ? "started" : "absent");
  Row(out, "knowledge-graph log", g_fpKG ? "open" : "not writable");
  Row(out, "country detection", g_bCountryDetect ? "started" : "off");
}

}  // namespace

int RunInfo(const std::string& sDataDir, std::ostream& out, std::ostream& err) {
  out << "Tarvos " << TARVOS_VERSION << "\n";
  out << "data directory: " << sDataDir << "\n";
  int nStatus = TARVOS_Init(sDataDir.c_str());
  if (nStatus != 1) {
    err << "tarvos: " << StartFailure(nStatus) << " (status " << nStatus << ")";
    const char* sError = TARVOS_GetLastErrorMsg();
    if (*sError) err << ": " << sError;
    err << "\n";
    TARVOS_Exit();
    return 1;
  }
  PrintSwitches(out);
  PrintServices(out);
  const char* sError = TARVOS_GetLastErrorMsg();
  if (*sError) out << "last start-up note: " << sError << "\n";
  TARVOS_Exit();
  return 0;
}
