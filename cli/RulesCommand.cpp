#include "cli/RulesCommand.h"

#include <fstream>
#include <algorithm>
#include <vector>
#include <sstream>

#include <json/json.h>

#include "cli/DataDir.h"
#include "tarvos.h"

namespace {

int Fail(const _tRulesOptions& o, const std::string& sWhat, std::ostream& err) {
  err << (o.audit ? "tarvos audit: " : "tarvos rules: ") << sWhat << ": " << TARVOS_GetLastErrorMsg() << "\n";
  return 1;
}

int Import(const _tRulesOptions& o, std::ostream& out, std::ostream& err) {
  // A refused item leaves its reason as the last error; the others are imported.
  const std::string sBefore = TARVOS_GetLastErrorMsg();
  int nCount = TARVOS_ImportZYGRules(o.file.c_str(), o.overwrite, o.type);
  if (nCount < 0) return Fail(o, "cannot import " + o.file, err);
  const std::string sAfter = TARVOS_GetLastErrorMsg();
  out << nCount << (o.audit ? " audit rules" : " rules") << " imported into type " << o.type << "\n";
  if (sAfter != sBefore && !sAfter.empty())
    err << (o.audit ? "tarvos audit" : "tarvos rules") << ": refused (the last one): " << sAfter << "\n";
  return 0;
}

int Act(const _tRulesOptions& o, std::ostream& out, std::ostream& err) {
  const char* sKind = o.audit ? "audit rule " : "rule ";
  if (o.action == "import") return Import(o, out, err);
  if (o.action == "list") {
    out << (o.audit ? Audit_GetRuleListId(o.type) : ZYG_GetRuleListId(o.type));
    return 0;
  }
  if (o.action == "show") {
    const char* sJson = o.audit ? Audit_GetRuleInfo(o.id, o.type) : ZYG_GetRuleInfo(o.id, o.type);
    if (sJson == nullptr || *sJson == '\0') return Fail(o, "no " + std::string(sKind) + std::to_string(o.id), err);
    out << sJson;
    return 0;
  }
  if (o.action == "add") {
    int nIndex = o.audit ? Audit_AddRule(o.file.c_str(), o.type) : ZYG_AddRule(o.file.c_str(), o.type);
    if (nIndex < 0) return Fail(o, std::string(sKind) + "refused", err);
    out << sKind << nIndex << " added to type " << o.type << "\n";
    return 0;
  }
  if (o.action == "edit") {
    int nDone = o.audit ? Audit_EditRule(o.id, o.file.c_str(), o.type) : ZYG_EditRule(o.id, o.file.c_str(), o.type);
    if (nDone < 0) return Fail(o, "cannot edit " + std::string(sKind) + std::to_string(o.id), err);
    out << "edited " << sKind << o.id << " of type " << o.type << "\n";
    return 0;
  }
  int nDone = o.audit ? Audit_DelRule(o.id, o.type) : ZYG_DelRule(o.id, o.type);
  if (nDone < 0) return Fail(o, "cannot delete " + std::string(sKind) + std::to_string(o.id), err);
  out << "deleted " << sKind << o.id << " of type " << o.type << "\n";
  return 0;
}

// The values of "<base>_keyVal.json", which a scan writes beside the document.
bool ReadKeyValues(const std::string& sFile, Json::Value& root) {
  size_t nSlash = sFile.find_last_of('/'), nDot = sFile.find_last_of('.');
  bool bHasExtension = nDot != std::string::npos && (nSlash == std::string::npos || nDot > nSlash);
  std::string sBase = bHasExtension ? sFile.substr(0, nDot) : sFile;
  std::ifstream in(sBase + "_keyVal.json", std::ios::binary);
  Json::CharReaderBuilder builder;
  std::string sErrors;
  return in && Json::parseFromStream(builder, in, &root, &sErrors) && root.isObject();
}

// The columns a text takes on a terminal: two for a character beyond ASCII.
size_t DisplayWidth(const std::string& s) {
  size_t nWidth = 0;
  for (unsigned char c : s)
    if (c < 0x80) ++nWidth;
    else if ((c & 0xC0) != 0x80) nWidth += 2;
  return nWidth;
}

void PrintTable(const Json::Value& root, std::ostream& out) {
  const Json::Value& values = root["KeyVals"];
  std::vector<std::string> vecKeys;
  size_t nWidth = 3;
  for (const Json::Value& value : values) {
    std::string sKey = value["attribute"].asString(), sName = value["name"].asString();
    if (!sName.empty() && sName != sKey) sKey += " (" + sName + ")";
    nWidth = std::max(nWidth, DisplayWidth(sKey));
    vecKeys.push_back(sKey);
  }
  out << "key" << std::string(nWidth - 1, ' ') << "paragraph  value\n";
  for (Json::ArrayIndex i = 0; i < values.size(); ++i)
    out << vecKeys[i] << std::string(nWidth + 2 - DisplayWidth(vecKeys[i]), ' ') << values[i]["para_id"].asString()
        << "   " << values[i]["key_value"].asString() << "\n";
  out << values.size() << " values\n";
}

}  // namespace

int RunRules(const std::string& sDataDir, const _tRulesOptions& options, std::ostream& out, std::ostream& err) {
  if (!StartEngine(sDataDir, err)) return 1;
  int nExit = Act(options, out, err);
  TARVOS_Exit();
  return nExit;
}

int RunExtract(const std::string& sDataDir, const std::string& sFile, int nType, bool bJson, std::ostream& out,
               std::ostream& err) {
  if (!StartEngine(sDataDir, err)) return 1;
  int nExit = 1;
  int handle = ZYG_NewInstance(nType);
  const char* sResult = handle < 0 ? nullptr : ZYG_ScanDoc(sFile.c_str(), nType, false, handle);
  Json::Value root;
  if (sResult == nullptr || *sResult == '\0') {
    err << "tarvos extract: cannot scan " << sFile << ": " << ZYG_GetLastErrorMsg() << "\n";
  } else if (!ReadKeyValues(sFile, root)) {
    err << "tarvos extract: the scan of " << sFile << " wrote no readable values\n";
  } else {
    if (bJson) {
      Json::StreamWriterBuilder builder;
      builder["emitUTF8"] = true;
      out << Json::writeString(builder, root) << "\n";
    } else {
      PrintTable(root, out);
    }
    nExit = 0;
  }
  if (handle >= 0) ZYG_DeleteInstance(handle);
  TARVOS_Exit();
  return nExit;
}
