#pragma once
// CAuditAgent runs the audit rules of one document type (CAudit) over what
// the extraction agent (CZYGAgent) found in a document: every key value,
// every tuple and every table. A rule that fails becomes a finding in the
// document's CCheckResult. A rule that is one command runs a fixed check;
// any other rule is an expression evaluated with an operator stack and a
// value stack (CheckLogicExpression).
//
// Life of an agent: construct over an audit processor and an extraction
// agent (neither owned; both must outlive it), then either
//   Check(doc, results, ...)        scans the document with the extraction
//                                   agent, copies the agent's own findings
//                                   (punctuation, revising actions) and runs
//                                   every audit check, or
//   CheckScanned(doc, results)      runs every audit check over a scan the
//                                   caller has already made (nothing is
//                                   scanned, nothing of the agent copied).
// One agent is used by one thread at a time.
//
// Fields and keys: an audit field is an ATTRIBUTE id of the audit's rule set
// (CAudit::GetZYG()); a key value carries the TERM id of its key in the
// extraction agent's rule set. The two are joined by name: GetTerm(key) is
// the attribute name, GetAttributeId(name) its id (and back through
// GetAttribute and GetKeyId). The two rule sets may be one object.
//
// Decisions the evaluation leaves open, made here:
// - nType of a check: 1 a key value on its own (CheckAllData's pass over
//   the key values), 2 a key value of a tuple, 3 a key value of a table row.
// - Field operands: a field that is the checked key value's own attribute
//   reads the checked key value itself. Another field reads, when the rule's
//   only field is "same_tuple", the first value of that key in the current
//   tuple; otherwise (or when the tuple has none) the document's values of
//   that key, taking the one at the "current index": the position of the
//   checked key value among the document's values of its own key (0 when it
//   is not among them), or the last value when the field has fewer values.
//   A field without any value reads "" and fails with "Invalid value at ".
// - The end of an expression computes the operators that remain, top first,
//   until the operator stack is empty (so "not a > b" is not (a > b), and
//   "a = b and c = d" ends with the "and"); one value must then remain.
// - Include lists ("in", "not_in", "substr", "not_substr"): when the operand
//   read last was pushed as a number, the result replaces it on the value
//   stack; a non-constant unit inside the brackets counts as a missing "]".
//   Letter case is ignored for ASCII letters only.
// - "sum (f)" adds every value of f in every row of the current table that
//   reads as a number (texts that do not are left out); without a current
//   table it is refused like a sum outside a table. "integer (f)" reads f's
//   value with "%lf" and cuts it toward zero; a value that does not read
//   fails with "Invalid value at " (-3).
// - Division by zero is not guarded: IEEE arithmetic gives +-inf or NaN; a
//   NaN is "not a number" and thus true for "and", "or", "not" and as the
//   final value, and every relation but "!=" is false on it.
// - Numbers are read with strtof (a single-precision value; a huge text
//   gives inf, never undefined behaviour), then widened to double.
// - m_bLastIsKey is cleared at the start of an evaluation and set by every
//   field operand; a false relation writes the lower value when it is set,
//   else the top one, into m_sLastValue (GetLastValue()).
// - An expression finding's text: for a table row (nType 3) the key value's
//   org_para_text (its key_value when that is empty); otherwise the
//   document's paragraph text, or org_para_text when there is no document
//   or the paragraph is unknown. Findings carry field_id 2 (text); the
//   not-null finding, which has no place in the text, field_id 5 (content).
// - Command findings leave error_msg empty, so the message catalogue fills
//   it from the error id, unless a message is named below.
// - "audit_not_null": para_id 0, offset 0, org_str the field's display name
//   (its attribute when it has none), error id from the rule ("12.1" when
//   missing or empty). Scope fields are skipped.
// - "audit_unique" ("3.1"): values of the key are counted once per place
//   (paragraph and offset) however many rules recorded them; every
//   occurrence after the first in document order is a finding.
// - "audit_num_check" ("1.2.4"): a number is, blanks around it aside, an
//   optional sign, ASCII digits (groups of three may be separated by ','),
//   an optional fraction, an optional '%'. When the text starts with digits
//   that fit an int, the finding suggests them ("%d") as new_str with
//   revise type 1 (update).
// - "audit_num_chinese" ("1.2.4", the catalogue's "not a valid number"): the
//   value, blanks around it aside, must read with ChineseToNumber.
// - "audit_date" ("99.1"): ParseDate reads the value, or the value is a
//   year and month ("2023年5月", "2023-05", "2023/5", "2023.5").
// - "audit_person_id" ("99.2"): IsValidIdentityNumber on the trimmed value.
// - "audit_unique_tuple" ("3.1", the catalogue's "should occur once"):
//   checked once per rule and tuple (the rule is indexed under each of its
//   fields); the tuple's values of the rule's attribute fields (first value
//   of each key; "" when missing) form its projection; a projection of only
//   empty texts is skipped; a projection seen before in an earlier tuple is
//   a finding on the checked key value. Not for nType 1.
// - Standards ("audit_standard_id", not for nType 1; "audit_standard_argument"):
//   they run only when a search function is set (SetSearchFunction); without
//   one, or when it returns false (server unreachable), the check is skipped
//   without a finding. See CheckStandardID and CheckStandardArgument below.
// - "Tuple %zd/%zd\r" progress is printed to stdout only in debug mode.
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "checker/CheckResult.h"
#include "rules/AuditTypes.h"
#include "rules/ZYGRecords.h"
#include "utility/TString.h"

class CAudit;
class CZYGAgent;
class CDocument;

// One value of the evaluation stack. Numbers read from text and results of
// arithmetic carry their value; relations and logic push 0.0 or 1.0.
struct _tComputeValue {
  int type = 0;  // 0 number from a constant, 1 number from a field, 2 computed
  double val = 0.0;
};

// A standard's number ("GB/T 50001-2017"): the organisation ("GB"; with the
// local code of a local standard, "DB11"), the type (organisation plus the
// kind after '/', "GB/T"; the organisation alone when there is none), the
// number (its first integer, 50001), the year (4 digits; a 2-digit year is
// 19xx above 30, else 20xx; 0 when absent). sNumber keeps the number as
// written with its dots ("1.1" of "GB/T 1.1-2009").
struct _tTiaowenHao {
  int year = 0;
  int no = 0;
  tstring type;
  tstring org;
  tstring sNumber;
  // Same organisation, type and number; the year is not compared.
  bool SameStandard(const _tTiaowenHao& o) const { return type == o.type && sNumber == o.sNumber; }
  tstring ToString() const;  // "GB/T 50001-2017"
};

// The ordering of tuple projections used to find equal tuples.
struct CTupleLess {
  bool operator()(const std::vector<tstring>& a, const std::vector<tstring>& b) const { return a < b; }
};

// The search service, injected by the owner. sQuery is a text of the
// service's query language; bArgument picks the required-value service
// (else the standards service). Each answer record is a map from element
// name to text. False when the server cannot be reached: the check is then
// skipped.
typedef std::function<bool(const tstring& sQuery, bool bArgument, std::vector<std::map<tstring, tstring>>& vecRecords)>
    FAuditSearch;

class CAuditAgent {
 public:
  // Neither is owned; both must outlive the agent. pZYGAgent may be null:
  // every check then finds nothing and returns -1.
  CAuditAgent(const CAudit* pAudit, CZYGAgent* pZYGAgent);
  CAuditAgent(const CAuditAgent&) = delete;  // holds pointers into its current tuple and table
  CAuditAgent& operator=(const CAuditAgent&) = delete;

  // Scans pDoc with the extraction agent (results written beside
  // m_sPath + "/../" + m_sFilename when the document has a path), copies the
  // agent's findings into pCheckResult with the paragraph text, then
  // CheckAllData. Returns the number of findings added; -1 without
  // document, results or agent. sOrganization is kept (GetOrganization).
  int Check(const CDocument* pDoc, CCheckResult* pCheckResult, int format, const tstring& sOrganization,
            bool bDebug);
  // CheckAllData over the agent's current scan; pDoc may be null (finding
  // texts then come from the key values). Returns findings added or -1.
  int CheckScanned(const CDocument* pDoc, CCheckResult* pCheckResult);
  // The scan alone; the match count, -1 without document or agent.
  int ExtractKnowledge(const CDocument* pDoc, int format);
  // The agent's knowledge JSON; valid until the agent scans again.
  const tstring& GetKnowledgeJsonStr();

  // The checks. REQUIRES: SetCheckResult or Check/CheckScanned gave the
  // results; without them nothing is added. Each returns the number of
  // failures found (0 when all hold) or a negative status.
  int CheckAllData();
  int CheckNotNull();
  int CheckKeyValue(const _tKeyVal& keyVal, int nType);
  int CheckTuple(const _tTuple& tuple, int nType);
  int CheckTable(const _tKeyTable& table);
  // One expression rule (m_nRuleID) on a key value: 1 true, 0 false (a
  // finding "1000" is added), negative on error (last error set):
  // -1 include list, -2 sum outside a table, -3 sum/integer syntax,
  // -4 computing on the way, -5 empty operand text, -6 computing at the end,
  // -7 not exactly one final value.
  int CheckLogicExpression(const _tKeyVal& keyVal, int nType);
  // Evaluates rule nRule on a key value, whatever field it is indexed under:
  // a command dispatches, an expression is evaluated. -1 for a bad index.
  int CheckRule(size_t nRule, const _tKeyVal& keyVal, int nType);

  void SetCheckResult(CCheckResult* pCheckResult) { m_pCheckResult = pCheckResult; }
  void SetDocument(const CDocument* pDoc) { m_pDoc = pDoc; }
  void SetSearchFunction(FAuditSearch fnSearch) { m_fnSearch = std::move(fnSearch); }
  void SetDebug(bool bDebug) { m_bDebug = bDebug; }
  CZYGAgent* GetZYGAgent() const { return m_pZYGAgent; }
  const tstring& GetOrganization() const { return m_sOrganization; }
  // The key value last compared by a false relation, "%.2lf".
  const tstring& GetLastValue() const { return m_sLastValue; }
  // The standards the standard checks looked at, in the order checked.
  const std::vector<_tKeyVal>& GetStandards() const { return m_vecStandards; }
  // One line per value compared by CheckStandardArgument: "符合" or "不符合"
  // with the value and the requirement.
  const std::vector<tstring>& GetArgumentReport() const { return m_vecArgumentReport; }

  // Reads a standard's number out of a text ("《…》GB 50016-2014",
  // "JGJ/T 98－2010"); false when no organisation letters followed by a
  // number are found.
  static bool ParseTiaowenHao(const tstring& sText, _tTiaowenHao& hao);
  // A standard's name made comparable: book-title marks and blanks removed;
  // a bracket holding "试行" is removed and sets bTrial; from an "简称"
  // (with the bracket or comma opening it) on, the text is cut off; a
  // "第N部分" sets nPart (0 when none) and stays in the name.
  static tstring NormaliseStandardName(const tstring& sName, bool& bTrial, int& nPart);

  // CheckStandardID, in this order (the finding is placed on the checked
  // key value; org_str its text):
  // - The cited standard: the checked value when its key is
  //   "Safety_Tiaowenhao" (keys compared without case), else the first
  //   "Safety_Tiaowenhao" of the current tuple or, failing that, of the same
  //   paragraph; the name likewise from "Safety_Tiaowen" (the checked value
  //   when that is its key); "Safety_Date" supplies the year when the number
  //   has none. The query is "[field] Safety_Tiaowen [whole] " + the
  //   normalised name, or, without a name, "[field] Safety_Tiaowenhao
  //   [whole] " + the number.
  // - "2.6": no record came back: "<cited> not exists in our big data.".
  // - "2.1": a record of the same standard has a later year than the cited
  //   one: "<cited> maybe have new time is <its Safety_Date, else its year>";
  //   new_str is that record's number when the checked value is the number.
  // - "2.8": records came back for the name but none has the cited number:
  //   "<cited number> should have a new id <newest record's number>".
  // - "2.2": the record that matches the cited standard best (same number and
  //   year, else same number, else the newest) has a "Memo": error_msg is the
  //   memo. It comes in addition to "2.1" or "2.8".
  // CheckStandardArgument:
  // - "contract_fee" / "contract_feebig": the figure (",", "元", "￥", "¥",
  //   "人民币" dropped) and the amount in words ("人民币", "元", "圆", "整",
  //   "正" dropped; "角", "分" read as tenths and hundredths) of the same
  //   paragraph or tuple must agree within 0.009, else "11.1" ("不符合").
  // - Any other value needs "safety_tiaowen" (the standard's file name) and
  //   "safety_section" (the clause) from the tuple or paragraph; the query is
  //   "[field] file_name [and] <file> [field] section_no [whole] <clause>".
  //   No record: "2.12". The requirement is the first record whose row_name
  //   and col_name are empty or occur in the value's paragraph text. Forms
  //   of its "value": ">=x", "≥x", "不小于x", "不应小于x", "<=x", "≤x",
  //   "不大于x", "不应大于x", ">x", "<x", "x~y", "x～y", "x-y" (a range),
  //   plain "x" (equal within 0.009). A unit after the required number that
  //   differs from the unit after the value's number (a value without unit
  //   passes): "2.10"; outside a range: "2.11"; any
  //   other miss: "2.9". The message names the value, "不符合", the file,
  //   clause and requirement; conforming values are listed with "符合" in
  //   GetArgumentReport.
  int CheckStandardID(const _tKeyVal& keyVal);
  int CheckStandardArgument(const _tKeyVal& keyVal);

 private:
  int CheckUnique(const _tKeyVal& keyVal);
  int CheckNum(const _tKeyVal& keyVal);
  int CheckChineseNum(const _tKeyVal& keyVal);
  int CheckDate(const _tKeyVal& keyVal);
  int CheckPersonID(const _tKeyVal& keyVal);
  int CheckTupleUnique(const _tKeyVal& keyVal);

  // Evaluation steps.
  int PushText(const tstring& sText, const audit_rule_unit& unit, bool bFromField);
  int ProcessInclude(const std::vector<audit_rule_unit>& units, int nOp);
  // False, with the missing piece named in the last error, unless "( field )" follows.
  bool FieldArgument(const std::vector<audit_rule_unit>& units, const char* sOperator);
  int ProcessSum(const std::vector<audit_rule_unit>& units, int nType);
  int ProcessInteger(const std::vector<audit_rule_unit>& units, int nType);
  int Compute(const std::vector<audit_rule_unit>& units);
  int ProcessBracket();
  void SetOpLast();
  tstring RuleText() const;

  // Key and attribute lookups.
  int AttributeOfKey(int nKeyId) const;  // -1 when the key names no attribute
  int KeyOfAttribute(int nAttribute) const;  // -1 when no such key
  tstring KeyName(int nKeyId) const;
  const std::vector<_tKeyVal>& DocValues(int nKeyId);
  size_t CurrentIndex(const _tKeyVal& keyVal);
  // The value a field operand reads (see the decisions above); null when none.
  const _tKeyVal* FieldValue(int nAttribute, int nType);
  // First value of a key (by name, case ignored) in the current tuple, else
  // in the paragraph of keyVal; null when none.
  const _tKeyVal* NearValue(const char* szKey, const _tKeyVal& keyVal);

  // Findings.
  void AddFinding(const _tKeyVal& keyVal, const char* szErrorId, const tstring& sMsg, int nType = 1,
                  const tstring& sNew = "");
  tstring ParaText(const _tKeyVal& keyVal, int nType) const;

  CZYGAgent* m_pZYGAgent;  // not owned
  const CAudit* m_pAudit;  // not owned
  const _tKeyTable* m_pCurTable = nullptr;  // the table being checked, or null
  std::set<std::pair<int, std::vector<tstring>>> m_vecUniqueTuple;  // (rule, projection) seen
  std::set<std::pair<int, size_t>> m_setTupleChecked;  // (rule, tuple serial) done
  size_t m_nTupleSerial = 0;
  FAuditSearch m_fnSearch;
  _tKeyVal m_keyValLast;     // the key value the last field operand came from
  _tKeyVal m_keyValChecked;  // the key value being checked
  bool m_bLastIsKey = false;
  _tCheckResult m_curCheck;  // the finding being built
  CCheckResult* m_pCheckResult = nullptr;  // not owned
  const CDocument* m_pDoc = nullptr;       // not owned
  const _tTuple* m_pCurTuple = nullptr;    // the tuple being checked, or null
  std::vector<audit_rule_unit> m_stackOperator;
  bool m_bHasOpLast = false;
  audit_rule_unit m_opLast;  // top of m_stackOperator when m_bHasOpLast
  tstring m_sLastValue;
  std::vector<_tComputeValue> m_stackValue;
  int m_nRuleID = -1;  // the rule being evaluated
  size_t m_nPos = 0;   // the unit being read
  bool m_bConsumed = false;       // the current unit closed a bracket
  tstring m_sLastOperand;         // text of the operand read last
  bool m_bLastOperandPushed = false;
  size_t m_nCurIndex = 0;         // current index of the checked key value
  bool m_bDebug = false;
  tstring m_sOrganization;
  tstring m_sEmpty;
  std::vector<_tKeyVal> m_vecStandards;
  std::vector<tstring> m_vecArgumentReport;
  // Values per key term, built on first use; rebuilt when the agent's value
  // count changes.
  std::map<int, std::vector<_tKeyVal>> m_mapDocValues;
  std::map<int, std::map<_tKeyVal, size_t>> m_mapValueIndex;
  size_t m_nCachedValueCount = (size_t)-1;
};
