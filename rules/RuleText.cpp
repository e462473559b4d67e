#include "rules/RuleText.h"

#include <cstdlib>

#include "rules/KnowledgeParser.h"
#include "rules/ZYG.h"
#include "utility/JsonText.h"
#include "utility/XmlScan.h"

namespace {

std::vector<tstring> SplitNames(const tstring& sText) {
  std::vector<tstring> vecNames;
  size_t nStart = 0;
  while (nStart <= sText.size()) {
    size_t nEnd = sText.find(';', nStart);
    tstring sName = CRuleText::NormaliseBlanks(sText.substr(nStart, nEnd == tstring::npos ? tstring::npos : nEnd - nStart));
    if (!sName.empty()) vecNames.push_back(sName);
    if (nEnd == tstring::npos) break;
    nStart = nEnd + 1;
  }
  return vecNames;
}

tstring JoinNames(const std::vector<tstring>& vecNames, bool bTrailing) {
  tstring s;
  for (size_t i = 0; i < vecNames.size(); ++i) s += vecNames[i] + (bTrailing || i + 1 < vecNames.size() ? ";" : "");
  return s;
}

tstring ItemValue(const tstring& sItem, const char* sName) {
  tstring sValue;
  const char* p = sItem.data();
  if (!ElementText(p, p + sItem.size(), sName, sValue, kOpenIsMissing)) return "";
  return DecodeEntities(sValue);
}

// A JSON member as text: strings as they are, numbers written out, arrays
// of strings joined by ';'.
tstring MemberText(const Json::Value& root, const char* sName) {
  const Json::Value& value = root[sName];
  if (value.isString()) return value.asString();
  if (value.isIntegral()) return std::to_string(value.asInt64());
  if (value.isArray()) {
    std::vector<tstring> vecNames;
    for (const Json::Value& item : value)
      if (item.isString()) vecNames.push_back(item.asString());
    return JoinNames(vecNames, false);
  }
  return "";
}

}  // namespace

tstring CRuleText::NormaliseBlanks(const tstring& sText) {
  tstring sOut;
  bool bBlank = false;
  for (char c : sText) {
    if (c == ' ' || c == '\t' || c == '\r' || c == '\n') {
      bBlank = !sOut.empty();
      continue;
    }
    if (bBlank) sOut += ' ';
    bBlank = false;
    sOut += c;
  }
  return sOut;
}

bool CRuleText::ParseKGSet(const tstring& sText, std::vector<_tField2KG>& vecKG, tstring& sError) {
  vecKG.clear();
  for (const tstring& sEntry : SplitNames(sText)) {
    size_t nColon = sEntry.find(':');
    _tField2KG kg;
    kg.field_name = NormaliseBlanks(sEntry.substr(0, nColon));
    tstring sRoles = nColon == tstring::npos ? "" : sEntry.substr(nColon + 1);
    for (char& c : sRoles)
      if (c == ' ') c = ',';
    size_t nStart = 0;
    while (nStart < sRoles.size()) {
      size_t nEnd = sRoles.find(',', nStart);
      tstring sRole = sRoles.substr(nStart, nEnd == tstring::npos ? tstring::npos : nEnd - nStart);
      nStart = nEnd == tstring::npos ? sRoles.size() : nEnd + 1;
      if (sRole.empty()) continue;
      int k = 1;
      while (k < kKGRoleCount && (kZYGKGRoleNames[k][0] == '\0' || sRole != kZYGKGRoleNames[k])) ++k;
      if (k == kKGRoleCount) {
        sError = "Unknown kgset role " + sRole + " of " + kg.field_name;
        return false;
      }
      kg.type[k] = 1;
    }
    if (!kg.field_name.empty()) vecKG.push_back(kg);
  }
  return true;
}

tstring CRuleText::GetKGSetStr(const std::vector<_tField2KG>& vecKG) {
  tstring s;
  for (size_t i = 0; i < vecKG.size(); ++i) {
    if (i) s += ";";
    s += vecKG[i].field_name + ":";
    for (int k = 0; k < kKGRoleCount; ++k)
      if (vecKG[i].type[k] && kZYGKGRoleNames[k][0]) s += tstring(kZYGKGRoleNames[k]) + ",";
  }
  return s;
}

int CRuleText::FillRule(const tstring& sNo, const tstring& sName, const tstring& sPattern, const tstring& sCredit,
                        const tstring& sAction, const tstring& sField, const tstring& sArguments,
                        const tstring& sKGSet, const tstring& sKeys, _tRuleOrg& rule, tstring& sError) {
  rule = _tRuleOrg();
  rule.no = NormaliseBlanks(sNo);
  rule.name = NormaliseBlanks(sName);
  rule.credit = atoi(NormaliseBlanks(sCredit).c_str());
  tstring sActionName = NormaliseBlanks(sAction);
  rule.action_id = sActionName.empty() ? kActionExtract : CZYG::GetActionId(sActionName);
  if (rule.action_id < 0) {
    sError = "Unknown action " + sActionName + " in rule " + rule.no;
    return -1;
  }
  rule.sField = NormaliseBlanks(sField);
  if (rule.sField.empty()) rule.sField = kZYGFieldNames[kFieldText];
  rule.arguments = SplitNames(sArguments);
  rule.vecKeyname = SplitNames(sKeys);
  if (!ParseKGSet(sKGSet, rule.vecField2KG, sError)) return -1;
  tstring sPatternError;
  if (CKnowledgeParser::ParseKnowledge(sPattern, rule.rule, sPatternError) != 1) {
    sError = sPatternError;
    return -1;
  }
  return 1;
}

int CRuleText::XML2RuleOrg(const tstring& sItem, _tRuleOrg& rule, tstring& sError) {
  return FillRule(ItemValue(sItem, "no"), ItemValue(sItem, "name"), ItemValue(sItem, "rule"),
                  ItemValue(sItem, "credit"), ItemValue(sItem, "action"), ItemValue(sItem, "field"),
                  ItemValue(sItem, "argument"), ItemValue(sItem, "kgset"), ItemValue(sItem, "keyname"), rule,
                  sError);
}

tstring CRuleText::RuleOrg2XML(const _tRuleOrg& rule, const tstring& sKnowledge) {
  tstring s = "<item>\n<no>" + EscapeXml(rule.no) + "</no>\n<name>" + EscapeXml(rule.name) + "</name>\n<rule>" +
              EscapeXml(rule.rule.text) + "</rule>\n<credit>" + std::to_string(rule.credit) + "</credit>\n<action>" +
              CZYG::GetActionStr(rule.action_id) + "</action>\n<field>" + EscapeXml(rule.sField) +
              "</field>\n<argument>" + EscapeXml(JoinNames(rule.arguments, true)) + "</argument>";
  if (!sKnowledge.empty()) s += "<knowledge>" + EscapeXml(sKnowledge) + "</knowledge>";
  s += "<kgset>" + EscapeXml(GetKGSetStr(rule.vecField2KG)) + "</kgset>\n";
  if (!rule.vecKeyname.empty()) s += "<keyname>" + EscapeXml(JoinNames(rule.vecKeyname, false)) + "</keyname>";
  return s + "</item>";
}

int CRuleText::Json2RuleOrg(const tstring& sJson, _tRuleOrg& rule, tstring& sError) {
  Json::Value root;
  if (!ParseJsonObject(sJson, root)) {
    sError = "Read ZYG Infor Error!";
    return -1;
  }
  return FillRule(MemberText(root, "no"), MemberText(root, "name"), MemberText(root, "rule"),
                  MemberText(root, "credit"), MemberText(root, "action"), MemberText(root, "field"),
                  MemberText(root, "argument"), MemberText(root, "kgset"), MemberText(root, "keyname"), rule,
                  sError);
}

Json::Value CRuleText::RuleOrg2Json(const _tRuleOrg& rule) {
  Json::Value root(Json::objectValue);
  root["no"] = rule.no;
  root["name"] = rule.name;
  root["rule"] = rule.rule.text;
  root["credit"] = rule.credit;
  root["action"] = CZYG::GetActionStr(rule.action_id);
  root["field"] = rule.sField;
  root["argument"] = JoinNames(rule.arguments, false);
  root["kgset"] = GetKGSetStr(rule.vecField2KG);
  root["keyname"] = JoinNames(rule.vecKeyname, false);
  root["knowledge"] = CKnowledgeParser::ToJson(rule.rule);
  return root;
}
