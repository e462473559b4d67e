#pragma once
// CZYGResultWriter renders what an extraction agent found as the texts and
// files that hosts read. It only reads; the findings must outlive the writer.
//
// Files written by WriteAll beside a document (its path without extension
// + suffix), every XML file starting with kXmlDeclaration and CR LF:
//   _ZYG_result.xml  <ZYG_Results> + each match (_tZYG_Result::WriteXML) + </ZYG_Results>
//   _keyVal.xml      <KeyVals> + each key value + </KeyVals>
//   _keyVal.json     {"SingleKey_result", "NamedEntity_result", "Tuples", "Tables", "KeyVals"}
//   _entity.json     {"NamedEntity_result"}
//   _tuple.txt       per tuple "Offset:%08X" (paragraph of its first value),
//                    "Original Text is: %s " (that value's paragraph text),
//                    then "[%s]:%s\t" (key display name, value) per value
//   _tuple.xml       <Tuples>, per tuple <Tuple><Index>%zd</Index> + its key values + </Tuple>
//   _tuple.json      {"tuple_result": [{"Index", "Tuple": [key values]}]}
//   _kg.json         {"entity_attribute": [...], "relation": [...]} (empty records left out)
//   _argument.xml    <arguments>, per table argument "<RECORD>\r\n" + its elements + "</RECORD>"
//   _argument.json   {"argument_result": [...]}
//   _table.xml       <Tables>, per table <Table><Index>%zd</Index>, per row
//                    "<Row><RowIndex>%zd</RowIndex>" + its key values + "</Row>"
//   _table.json      {"table_result": [{"Index", "rows": [{"RowIndex", "Cols": [key values]}]}]}
//
// Layout decisions:
// - Line ends are CR LF: every element of the files above stands on a line
//   of its own, except the lines inside a match, which end in a bare LF (the
//   fixed form of _tZYG_Result::WriteXML), and "<Row><RowIndex>..." which
//   shares its line. Indexes count from 0.
// - One key value in XML:
//     <KeyVal>\r\n
//     \t<para_id>%08X</para_id>\r\n
//     <key_name><id>%d</id><attribute>%s</attribute><name>%s</name></key_name>\r\n
//     <key_value>%s</key_value>\r\n
//     <org_para_text>%s</org_para_text>\r\n
//     <rule_used>%s</rule_used>\r\n
//     </KeyVal>\r\n
//   and in JSON {"para_id": "%08X", "attribute", "name", "key_value",
//   "offset" (a number), "org_para_text", "rule_used"}. The attribute is the
//   key's term; the name its display name from the rule set's attribute
//   dictionaries, the attribute itself when it has none. Without a rule set
//   both read as the key id in decimal.
// - Every text is escaped for XML (& < > " as references) and made valid
//   UTF-8: a byte that is no UTF-8, a NUL or another control character
//   XML 1.0 forbids becomes U+FFFD, so each file is well-formed whatever the
//   document held. JSON texts get the same UTF-8 repair.
// - JSON files are indented by two blanks (JsonText); keys in jsoncpp's order.
#include <vector>

#include <json/json.h>

#include "rules/ZYGRecords.h"
#include "utility/TString.h"

class CZYG;
class CZYGAgent;

// What a writer renders: borrowed views, each may be null (nothing found).
struct _tZYGFindings {
  const CZYG* pZYG = nullptr;  // names the keys; null: keys by number
  const std::vector<_tZYG_Result>* pMatches = nullptr;
  const std::vector<_tKeyVal>* pKeyVals = nullptr;
  const std::vector<_tKeyVal>* pSingleKeyVals = nullptr;
  const std::vector<_tKeyVal>* pNamedEntities = nullptr;
  const std::vector<_tTuple>* pTuples = nullptr;
  const std::vector<_tKeyTable>* pTables = nullptr;
  const std::vector<_tTableArgument>* pTableArguments = nullptr;
  const std::vector<_tEntityAttrVal>* pEntityAttrVals = nullptr;
  const std::vector<_tHeadRelTail>* pHeadRelTails = nullptr;
};

class CZYGResultWriter {
 public:
  // Everything the agent holds; the agent must outlive the writer.
  explicit CZYGResultWriter(const CZYGAgent& agent);
  explicit CZYGResultWriter(const _tZYGFindings& findings) : m_findings(findings) {}

  tstring ResultsXml() const;  // "_ZYG_result.xml"
  tstring KeyValsXml() const;
  tstring KeyValsJson() const;
  tstring SingleKeyJson() const;  // {"SingleKey_result": [...]}
  tstring EntityJson() const;
  tstring TupleTxt() const;
  tstring TupleXml() const;
  tstring TupleJson() const;
  tstring KGJson() const;
  tstring ArgumentXml() const;
  tstring ArgumentJson() const;
  tstring TableXml() const;
  tstring TableJson() const;

  // Writes every file beside sBaseName, each through a temporary name. False
  // at the first failure, with "Failed open file <name>" or "Failed writing
  // file <name>" as last error; the files written before it stay.
  bool WriteAll(const tstring& sBaseName) const;

  // Shared with the records' own writers (ZYGRecords.cpp).
  static constexpr const char* kXmlDeclaration =
      "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>";
  // sText as valid UTF-8: each byte that starts no valid character is U+FFFD.
  static tstring ValidUtf8(const tstring& sText);
  // sText as XML character data: valid UTF-8 (above), & < > " as references,
  // control characters other than tab, LF and CR as U+FFFD.
  static tstring XmlEscape(const tstring& sText);

 private:
  tstring KeyValXml(const _tKeyVal& keyVal) const;
  Json::Value KeyValJson(const _tKeyVal& keyVal) const;
  Json::Value KeyValArray(const std::vector<_tKeyVal>* pKeyVals) const;
  Json::Value TuplesArray() const;
  Json::Value TablesArray() const;
  tstring KeyAttribute(int nKeyId) const;
  tstring KeyDisplayName(int nKeyId) const;

  _tZYGFindings m_findings;
};
