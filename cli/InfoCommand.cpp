#include "cli/InfoCommand.h"

#include <json/json.h>

#include <iomanip>
#include <sstream>

#include "tarvos.h"

namespace {

const char* OnOff(bool bSwitch) { return bSwitch ? "on" : "off"; }

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

void PrintSwitches(const Json::Value& s, std::ostream& out) {
  out << "switches (Data/ZYG-Configure.json):\n";
  for (const char* sName : {"PunctionCheck", "FormatCheck", "OCR", "FilterCheck"}) Row(out, sName, OnOff(s[sName].asBool()));
  const std::string sHost = s["SpellCheckIP"].asString();
  Row(out, "SpellCheck", std::string(OnOff(s["SpellCheck"].asBool())) +
                             (s["SpellCheck"].asBool() && !sHost.empty() ? " (host " + sHost + ")" : ""));
  Row(out, "CountryDetect", OnOff(s["CountryDetect"].asBool()));
}

void PrintServices(const Json::Value& s, std::ostream& out) {
  auto fnCount = [&](const char* sKey, const char* sUnit) { return std::to_string(s[sKey].asUInt64()) + " " + sUnit; };
  out << "services:\n";
  Row(out, "rule engine", s["rule_engine"].asBool() ? "started" : "absent");
  Row(out, "rule manager", fnCount("rule_document_types", "document types"));
  Row(out, "keyword scanner", s["keyword_scanner"].asBool() ? "started" : "off");
  Row(out, "format checker", s["format_checker"].asBool() ? "started, " + fnCount("templates", "templates") : "off");
  Row(out, "font-size table", s["font_sizes"].asUInt64() ? fnCount("font_sizes", "sizes") : "off");
  Row(out, "message catalogue", fnCount("messages", "messages"));
  Row(out, "spelling dictionaries", s["spelling_dictionaries"].asBool() ? "started" : "absent");
  Row(out, "spelling check", s["spelling_check"].asBool() ? "started" : "off");
  Row(out, "knowledge-graph log", s["knowledge_log"].asBool() ? "open" : "not writable");
  Row(out, "country detection", s["country_detection"].asBool() ? "started" : "off");
}

}  // namespace

int RunInfo(const std::string& sDataDir, std::ostream& out, std::ostream& err) {
  out << "Tarvos " << TARVOS_GetVersion() << "\n";
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
  // Start-up notes first: reading the engine's description is a call too.
  const std::string sNote = TARVOS_GetLastErrorMsg();
  Json::Value info;
  Json::CharReaderBuilder builder;
  JSONCPP_STRING sErrors;
  const char* sInfo = TARVOS_GetEngineInfo();
  std::istringstream in(sInfo ? sInfo : "");
  if (!Json::parseFromStream(builder, in, &info, &sErrors)) {
    err << "tarvos: the engine's description cannot be read: " << sErrors << "\n";
    TARVOS_Exit();
    return 1;
  }
  PrintSwitches(info["switches"], out);
  PrintServices(info["services"], out);
  if (!sNote.empty()) out << "last start-up note: " << sNote << "\n";
  TARVOS_Exit();
  return 0;
}
