#pragma once
// CRuleText turns extraction rules into their text forms and back: the XML
// item of rule files and the JSON object of the editing calls.
//
// XML item (values are XML text; blanks inside a value collapse to one):
//   <item>
//   <no>1.2</no>
//   <name>报告日期</name>
//   <rule>{[报告日期]}{[：]}{[/m]3}s</rule>
//   <credit>1</credit>
//   <action>extract</action>
//   <field>text</field>
//   <argument>report_date|报告日期;</argument><knowledge>...</knowledge><kgset>report_date:attribute,;</kgset>
//   <keyname>single_date</keyname></item>
// "<knowledge>" (the compiled pattern written back) is written for reading
// by people and ignored on reading. Key names are separated by ';'.
//
// JSON rule: {"no", "name", "rule", "credit", "action", "field", "argument"
// (names joined by ';'), "kgset" (as in XML), "keyname" (joined by ';')};
// written rules carry "knowledge" (the pattern's JSON form) as well.
//
// kgset: entries separated by ';', each an argument name, ':' and role names
// each followed by ','; a role name that is not known refuses the rule.
#include <json/json.h>
#include <vector>

#include "rules/ZYGTypes.h"
#include "utility/TString.h"

class CRuleText {
 public:
  // Reads the inside of one "<item>". 1, or -1 with the reason in sError.
  static int XML2RuleOrg(const tstring& sItem, _tRuleOrg& rule, tstring& sError);
  // sKnowledge: the compiled pattern written back; "" writes no "<knowledge>".
  static tstring RuleOrg2XML(const _tRuleOrg& rule, const tstring& sKnowledge);

  // "Read ZYG Infor Error!" for a text that is not a JSON object.
  static int Json2RuleOrg(const tstring& sJson, _tRuleOrg& rule, tstring& sError);
  static Json::Value RuleOrg2Json(const _tRuleOrg& rule);

  // Trims a value of a rule text and collapses each run of white space into one blank.
  static tstring NormaliseBlanks(const tstring& sText);

  static bool ParseKGSet(const tstring& sText, std::vector<_tField2KG>& vecKG, tstring& sError);
  static tstring GetKGSetStr(const std::vector<_tField2KG>& vecKG);

 private:
  // Fills everything but the pattern from the values of an item or object.
  static int FillRule(const tstring& sNo, const tstring& sName, const tstring& sPattern, const tstring& sCredit,
                      const tstring& sAction, const tstring& sField, const tstring& sArguments,
                      const tstring& sKGSet, const tstring& sKeys, _tRuleOrg& rule, tstring& sError);
};
