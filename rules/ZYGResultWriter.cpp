#include "rules/ZYGResultWriter.h"

#include <cstdio>

#include "docx/Paragraph.h"
#include "rules/ZYG.h"
#include "rules/ZYGAgent.h"
#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"
#include "utility/JsonText.h"
#include "utility/Utf8.h"
#include "utility/XmlScan.h"

namespace {

const char* const kReplacement = "\xEF\xBF\xBD";  // U+FFFD

tstring IndexLine(const char* sFormat, size_t nIndex) {
  char s[64];
  snprintf(s, sizeof(s), sFormat, nIndex);
  return s;
}

tstring XmlHead(const char* sRoot) {
  return tstring(CZYGResultWriter::kXmlDeclaration) + "\r\n<" + sRoot + ">\r\n";
}

template <class T>
const std::vector<T>& Items(const std::vector<T>* pItems) {
  static const std::vector<T> kNone;
  return pItems ? *pItems : kNone;
}

Json::Value Text(const tstring& sText) { return Json::Value(CZYGResultWriter::ValidUtf8(sText)); }

// sText with U+FFFD for each byte that starts no valid UTF-8 character and,
// with bXml, for each character XML 1.0 cannot hold even as a reference
// (controls other than tab, LF and CR; U+FFFE, U+FFFF).
tstring Repaired(const tstring& sText, bool bXml) {
  tstring sOut;
  sOut.reserve(sText.size());
  for (size_t i = 0; i < sText.size();) {
    uint32_t nChar;
    const size_t n = DecodeUtf8(sText.data() + i, sText.size() - i, nChar);
    const bool bBad = nChar >= kInvalidByteBase ||
                      (bXml && ((nChar < 0x20 && nChar != '\t' && nChar != '\n' && nChar != '\r') || nChar == 0xFFFE ||
                                nChar == 0xFFFF));
    if (bBad)
      sOut += kReplacement;
    else
      sOut.append(sText, i, n);
    i += n;
  }
  return sOut;
}

}  // namespace

CZYGResultWriter::CZYGResultWriter(const CZYGAgent& agent) {
  m_findings.pZYG = agent.GetZYG();
  m_findings.pMatches = &agent.GetMatches();
  m_findings.pKeyVals = &agent.GetKeyValues();
  m_findings.pSingleKeyVals = &agent.GetSingleKeyValues();
  m_findings.pNamedEntities = &agent.GetNamedEntityValues();
  m_findings.pTuples = &agent.GetTuples();
  m_findings.pTables = &agent.GetTables();
  m_findings.pTableArguments = &agent.GetTableArguments();
  m_findings.pEntityAttrVals = &agent.GetEntityAttrVals();
  m_findings.pHeadRelTails = &agent.GetHeadRelTails();
}

tstring CZYGResultWriter::ValidUtf8(const tstring& sText) { return Repaired(sText, false); }

// The shared escaper writes the references; what it cannot make well-formed
// (stray bytes, controls) is repaired first.
tstring CZYGResultWriter::XmlEscape(const tstring& sText) { return EscapeXml(Repaired(sText, true)); }

tstring CZYGResultWriter::KeyAttribute(int nKeyId) const {
  const char* sTerm = m_findings.pZYG && nKeyId >= 0 ? m_findings.pZYG->GetTerm(nKeyId) : nullptr;
  return sTerm ? tstring(sTerm) : std::to_string(nKeyId);
}

tstring CZYGResultWriter::KeyDisplayName(int nKeyId) const {
  const tstring sAttribute = KeyAttribute(nKeyId);
  if (m_findings.pZYG == nullptr) return sAttribute;
  const int nAttribute = m_findings.pZYG->GetAttributeId(sAttribute);
  const char* sName = nAttribute >= 0 ? m_findings.pZYG->GetAttributeName(nAttribute) : nullptr;
  return sName && *sName ? tstring(sName) : sAttribute;
}

tstring CZYGResultWriter::KeyValXml(const _tKeyVal& kv) const {
  tstring s = "<KeyVal>\r\n\t<para_id>" + ParaIdText(kv.para_id) + "</para_id>\r\n";
  s += "<key_name><id>" + std::to_string(kv.key_name_id) + "</id><attribute>" + XmlEscape(KeyAttribute(kv.key_name_id)) +
       "</attribute><name>" + XmlEscape(KeyDisplayName(kv.key_name_id)) + "</name></key_name>\r\n";
  s += "<key_value>" + XmlEscape(kv.key_value) + "</key_value>\r\n";
  s += "<org_para_text>" + XmlEscape(kv.org_para_text) + "</org_para_text>\r\n";
  s += "<rule_used>" + XmlEscape(kv.rule_used) + "</rule_used>\r\n";
  s += "</KeyVal>\r\n";
  return s;
}

Json::Value CZYGResultWriter::KeyValJson(const _tKeyVal& kv) const {
  Json::Value json(Json::objectValue);
  json["para_id"] = ParaIdText(kv.para_id);
  json["attribute"] = Text(KeyAttribute(kv.key_name_id));
  json["name"] = Text(KeyDisplayName(kv.key_name_id));
  json["key_value"] = Text(kv.key_value);
  json["offset"] = Json::UInt(kv.offset);
  json["org_para_text"] = Text(kv.org_para_text);
  json["rule_used"] = Text(kv.rule_used);
  return json;
}

Json::Value CZYGResultWriter::KeyValArray(const std::vector<_tKeyVal>* pKeyVals) const {
  Json::Value array(Json::arrayValue);
  for (const _tKeyVal& kv : Items(pKeyVals)) array.append(KeyValJson(kv));
  return array;
}

Json::Value CZYGResultWriter::TuplesArray() const {
  Json::Value array(Json::arrayValue);
  const auto& vecTuples = Items(m_findings.pTuples);
  for (size_t i = 0; i < vecTuples.size(); ++i) {
    Json::Value tuple(Json::objectValue);
    tuple["Index"] = Json::UInt64(i);
    tuple["Tuple"] = KeyValArray(&vecTuples[i]);
    array.append(tuple);
  }
  return array;
}

Json::Value CZYGResultWriter::TablesArray() const {
  Json::Value array(Json::arrayValue);
  const auto& vecTables = Items(m_findings.pTables);
  for (size_t i = 0; i < vecTables.size(); ++i) {
    Json::Value table(Json::objectValue), rows(Json::arrayValue);
    for (size_t r = 0; r < vecTables[i].size(); ++r) {
      Json::Value row(Json::objectValue);
      row["RowIndex"] = Json::UInt64(r);
      row["Cols"] = KeyValArray(&vecTables[i][r]);
      rows.append(row);
    }
    table["Index"] = Json::UInt64(i);
    table["rows"] = rows;
    array.append(table);
  }
  return array;
}

tstring CZYGResultWriter::ResultsXml() const {
  tstring s = XmlHead("ZYG_Results");
  for (const _tZYG_Result& result : Items(m_findings.pMatches)) s += result.WriteXML();
  return s + "</ZYG_Results>\r\n";
}

tstring CZYGResultWriter::KeyValsXml() const {
  tstring s = XmlHead("KeyVals");
  for (const _tKeyVal& kv : Items(m_findings.pKeyVals)) s += KeyValXml(kv);
  return s + "</KeyVals>\r\n";
}

tstring CZYGResultWriter::KeyValsJson() const {
  Json::Value root(Json::objectValue);
  root["SingleKey_result"] = KeyValArray(m_findings.pSingleKeyVals);
  root["NamedEntity_result"] = KeyValArray(m_findings.pNamedEntities);
  root["Tuples"] = TuplesArray();
  root["Tables"] = TablesArray();
  root["KeyVals"] = KeyValArray(m_findings.pKeyVals);
  return JsonText(root);
}

tstring CZYGResultWriter::SingleKeyJson() const {
  Json::Value root(Json::objectValue);
  root["SingleKey_result"] = KeyValArray(m_findings.pSingleKeyVals);
  return JsonText(root);
}

tstring CZYGResultWriter::EntityJson() const {
  Json::Value root(Json::objectValue);
  root["NamedEntity_result"] = KeyValArray(m_findings.pNamedEntities);
  return JsonText(root);
}

tstring CZYGResultWriter::TupleTxt() const {
  tstring s;
  for (const _tTuple& tuple : Items(m_findings.pTuples)) {
    const _tKeyVal first = tuple.empty() ? _tKeyVal() : tuple.front();
    s += "Offset:" + ParaIdText(first.para_id) + "\r\n";
    s += "Original Text is: " + first.org_para_text + " \r\n";
    for (const _tKeyVal& kv : tuple) s += "[" + KeyDisplayName(kv.key_name_id) + "]:" + kv.key_value + "\t";
    s += "\r\n";
  }
  return s;
}

tstring CZYGResultWriter::TupleXml() const {
  tstring s = XmlHead("Tuples");
  const auto& vecTuples = Items(m_findings.pTuples);
  for (size_t i = 0; i < vecTuples.size(); ++i) {
    s += "<Tuple>\r\n" + IndexLine("<Index>%zd</Index>\r\n", i);
    for (const _tKeyVal& kv : vecTuples[i]) s += KeyValXml(kv);
    s += "</Tuple>\r\n";
  }
  return s + "</Tuples>\r\n";
}

tstring CZYGResultWriter::TupleJson() const {
  Json::Value root(Json::objectValue);
  root["tuple_result"] = TuplesArray();
  return JsonText(root);
}

tstring CZYGResultWriter::KGJson() const {
  Json::Value root(Json::objectValue), entities(Json::arrayValue), relations(Json::arrayValue);
  for (const _tEntityAttrVal& e : Items(m_findings.pEntityAttrVals))
    if (!e.IsEmpty()) entities.append(e.WriteJson());
  for (const _tHeadRelTail& r : Items(m_findings.pHeadRelTails))
    if (!r.IsEmpty()) relations.append(r.WriteJson());
  root["entity_attribute"] = entities;
  root["relation"] = relations;
  return JsonText(root);
}

tstring CZYGResultWriter::ArgumentXml() const {
  tstring s = XmlHead("arguments");
  for (const _tTableArgument& a : Items(m_findings.pTableArguments)) s += "<RECORD>\r\n" + a.WriteXML() + "</RECORD>\r\n";
  return s + "</arguments>\r\n";
}

tstring CZYGResultWriter::ArgumentJson() const {
  Json::Value root(Json::objectValue), array(Json::arrayValue);
  for (const _tTableArgument& a : Items(m_findings.pTableArguments)) array.append(a.WriteJson());
  root["argument_result"] = array;
  return JsonText(root);
}

tstring CZYGResultWriter::TableXml() const {
  tstring s = XmlHead("Tables");
  const auto& vecTables = Items(m_findings.pTables);
  for (size_t i = 0; i < vecTables.size(); ++i) {
    s += "<Table>\r\n" + IndexLine("<Index>%zd</Index>\r\n", i);
    for (size_t r = 0; r < vecTables[i].size(); ++r) {
      s += IndexLine("<Row><RowIndex>%zd</RowIndex>\r\n", r);
      for (const _tKeyVal& kv : vecTables[i][r]) s += KeyValXml(kv);
      s += "</Row>\r\n";
    }
    s += "</Table>\r\n";
  }
  return s + "</Tables>\r\n";
}

tstring CZYGResultWriter::TableJson() const {
  Json::Value root(Json::objectValue);
  root["table_result"] = TablesArray();
  return JsonText(root);
}

bool CZYGResultWriter::WriteAll(const tstring& sBaseName) const {
  typedef tstring (CZYGResultWriter::*TextFn)() const;
  static const struct {
    const char* sSuffix;
    TextFn fnText;
  } kFiles[] = {
      {"_ZYG_result.xml", &CZYGResultWriter::ResultsXml}, {"_keyVal.xml", &CZYGResultWriter::KeyValsXml},
      {"_keyVal.json", &CZYGResultWriter::KeyValsJson},   {"_entity.json", &CZYGResultWriter::EntityJson},
      {"_tuple.txt", &CZYGResultWriter::TupleTxt},        {"_tuple.xml", &CZYGResultWriter::TupleXml},
      {"_tuple.json", &CZYGResultWriter::TupleJson},      {"_kg.json", &CZYGResultWriter::KGJson},
      {"_argument.xml", &CZYGResultWriter::ArgumentXml},  {"_argument.json", &CZYGResultWriter::ArgumentJson},
      {"_table.xml", &CZYGResultWriter::TableXml},        {"_table.json", &CZYGResultWriter::TableJson},
  };
  for (const auto& file : kFiles) {
    const tstring sName = sBaseName + file.sSuffix;
    const tstring sText = (this->*file.fnText)();
    bool bOpened = false;  // WriteFileReplacing calls back only once the file is open
    const bool bOk = WriteFileReplacing(sName, [&](FILE* fp) {
      bOpened = true;
      return fwrite(sText.data(), 1, sText.size(), fp) == sText.size();
    });
    if (!bOk) {
      SetLastError((bOpened ? "Failed writing file " : "Failed open file ") + sName);
      return false;
    }
  }
  return true;
}
