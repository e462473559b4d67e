// Reading the feature switches of "ZYG-Configure.json".
#include <strings.h>

#include <json/json.h>

#include "api/Globals.h"
#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"

namespace {

// The value of a key as text; "" for a missing key or one that is not a
// string, number or boolean.
tstring ReadSwitch(const Json::Value& root, const char* sKey) {
  const Json::Value& value = root[sKey];
  if (value.isString() || value.isNumeric() || value.isBool()) return value.asString();
  return "";
}

bool Is(const tstring& sValue, const char* sWord) { return strcasecmp(sValue.c_str(), sWord) == 0; }

}  // namespace

int LoadZYGConfigre(const char* sFilename, _tCheckSwitches& switches) {
  tstring sName = sFilename ? sFilename : "";
  Json::Value root;
  if (!ReadJsonObjectFile(sName, root)) {
    SetLastError("Failed reading file " + sName);
    return 0;
  }
  // Switches that default to on go off only by the exact word "off"; those
  // that default to off go on only by "on". Anything else keeps the default.
  switches.bPunctionCheck = !Is(ReadSwitch(root, "PunctionCheck"), "off");
  switches.bFormatCheck = !Is(ReadSwitch(root, "FormatCheck"), "off");
  if (Is(ReadSwitch(root, "OCR"), "on")) switches.bOCR = true;
  if (Is(ReadSwitch(root, "FilterCheck"), "on")) switches.bFilteringCheck = true;
  if (Is(ReadSwitch(root, "SpellCheck"), "on")) {
    switches.bSpellingCheck = true;
    switches.sSpellingHostIP = ReadSwitch(root, "SpellCheckIP");
  }
  if (Is(ReadSwitch(root, "CountryDetect"), "on")) switches.bCountryDetect = true;
  return 1;
}
