#include "rules/ZYGRecords.h"

#include <cstdio>

#include "docx/Paragraph.h"
#include "rules/ZYGResultWriter.h"

namespace {

tstring Format(const char* sFormat, long long nValue) {
  char s[128];
  snprintf(s, sizeof(s), sFormat, nValue);
  return s;
}

tstring Element(const char* sName, const tstring& sValue) {
  return tstring("<") + sName + ">" + CZYGResultWriter::XmlEscape(sValue) + "</" + sName + ">\r\n";
}

Json::Value Text(const tstring& sText) { return Json::Value(CZYGResultWriter::ValidUtf8(sText)); }

}  // namespace

tstring _tZYG_Result::WriteXML() const {
  typedef CZYGResultWriter W;
  tstring s = "<ZYG_Result>\n";
  s += Format("\t<rule_index>%lld</rule_index>\n", rule_index);
  s += "<rule_no>" + W::XmlEscape(rule_no) + "</rule_no>\n";
  s += "\t<action>" + W::XmlEscape(action) + "</action>\n";
  s += Format("\t<credit>%lld</credit>\n", credit);
  s += Format("\t<frequency>%lld</frequency>\n", frequency);
  s += "\t<para_id>" + ParaIdText(para_id) + "</para_id>\n";
  // Printed as a signed number: an offset is never near 2^31.
  s += Format("\t<offset>%lld</offset>\n", (int)offset);
  s += "\t<selected>\n";
  for (size_t i = 0; i < vecSelected.size(); ++i) {
    s += "\t\t<item>";
    // The per-value lists may be shorter than the values when the agent did
    // not record them: such a value has no paragraph or offset of its own.
    if (i < vecSelectedParaId.size() && vecSelectedParaId[i] != 0)
      s += "<para_id>" + ParaIdText(vecSelectedParaId[i]) + "</para_id>";
    if (i < vecSelectedOffset.size() && vecSelectedOffset[i] >= 0)
      s += Format("<offset>%lld</offset>", vecSelectedOffset[i]);
    s += "<value>" + W::XmlEscape(vecSelected[i]) + "</value></item>\n";
  }
  s += "\t</selected>\n\t<arguments>\n";
  for (const tstring& sArgument : arguments) s += "\t\t<item>" + W::XmlEscape(sArgument) + "</item>\n";
  s += "\t</arguments>\n";
  s += "\t<org_para_text>" + W::XmlEscape(org_para_text) + "\t</org_para_text>\n";
  s += "</ZYG_Result>\n";
  return s;
}

tstring _tTableArgument::WriteXML() const {
  return Element("file_name", file_name) + Element("section_no", section_no) + Element("section_name", section_name) +
         Element("row_name", row_name) + Element("col_name", col_name) + Element("value", value);
}

Json::Value _tTableArgument::WriteJson() const {
  Json::Value json(Json::objectValue);
  json["file_name"] = Text(file_name);
  json["section_no"] = Text(section_no);
  json["section_name"] = Text(section_name);
  json["row_name"] = Text(row_name);
  json["col_name"] = Text(col_name);
  json["value"] = Text(value);
  return json;
}

Json::Value _tEntityAttrVal::WriteJson() const {
  Json::Value json(Json::objectValue);
  json["entity"] = Text(entity);
  json["attribute"] = Text(attribute);
  json["val"] = Text(val);
  return json;
}

Json::Value _tHeadRelTail::WriteJson() const {
  Json::Value json(Json::objectValue);
  json["head"] = Text(head);
  json["relation"] = Text(relation);
  json["tail"] = Text(tail);
  return json;
}
