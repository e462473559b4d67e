// The audit rule list of one document type.
//
// "ZYG_<type>.audit" is an "AUDT" data file (frame in utility/DataFileWriter.h),
// version 1, payload little-endian:
//   u32 document type
//   string pool (u64 length + bytes), int-array pool (u64 count + i32 each)
//   u64 compiled rule count, then per rule:
//     u32 index of its editable rule, no_id u32, credit i32, name_id u32,
//     arguments_id (2 x i32), fields_id (2 x i32), u64 unit count,
//     per unit type i32 and val i32, frequency i32
//   u64 not-null field count, then per field: field id i32, error id (u64 length + bytes)
//   u64 editable rule count, then per rule: no, name, rule, arguments, field
//     (u64 length + bytes each) and credit i32
// The editable rules are stored as written, so that loading gives the same
// list back, "audit_not_null" rules (which compile into the not-null list,
// not into rules) included. Every reference of the compiled part is checked
// on loading against the pools and the rule set's attributes; the field
// index is not stored but rebuilt, so a file cannot bring postings that
// point outside its rules.
//
// Decisions left open by the rule language, made here:
// - An empty rule text is refused: it would check nothing.
// - Rule texts, numbers, names and fields read from XML or JSON have their
//   blanks collapsed; blanks separate words anyway.
// - Arguments are split at ';' with blanks trimmed; empty pieces are dropped,
//   except that an empty error id of a not-null field means "12.1".
// - A rule is indexed under each of its fields and under the first field
//   unit of its text that names an attribute (scopes are not indexed), once
//   per attribute.
// - Constants compare by text when rules are compared for repeats.
#include "rules/Audit.h"

#include <cctype>
#include <cstdarg>
#include <cstring>

#include "rules/RuleText.h"
#include "utility/DataFileReader.h"
#include "utility/DataFileWriter.h"
#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"
#include "utility/JsonText.h"
#include "utility/XmlScan.h"

const char* const kAuditCommandNames[kCmdCount] = {
    "audit_not_null",    "audit_unique",      "audit_num_check",         "audit_num_chinese", "audit_unique_tuple",
    "audit_standard_id", "audit_standard_argument", "audit_date",        "audit_person_id"};

const char* const kAuditScopeNames[kScopeCount] = {"same_tuple", "same_col", "same_para", "same_section"};

namespace {

const char kAuditKind[] = "AUDT";
const uint32_t kAuditVersion = 1;
const char kDefaultErrorId[] = "12.1";
const char kDelimiters[] = "+-*/()><!=[] \t;";

// Operator names by value (index 0 unused); 9 to 14 are the word operators.
const char* const kOperatorNames[] = {"", "+", "-", "*", "/", "(", ")", "[", "]",
                                      "in", "not_in", "substr", "not_substr", "sum", "integer"};
const int kFirstWordOperator = kOpIn;
const int kLastOperator = kOpInteger;
const char* const kRelationNames[] = {"=", ">", "<", ">=", "<=", "!="};
const char* const kLogicNames[] = {"and", "or", "not"};

bool IsDelimiter(char c) { return c != '\0' && strchr(kDelimiters, c) != nullptr; }

bool EqualNoCase(const char* a, const tstring& b) {
  size_t n = strlen(a);
  if (n != b.size()) return false;
  for (size_t i = 0; i < n; ++i)
    if (tolower((unsigned char)a[i]) != tolower((unsigned char)b[i])) return false;
  return true;
}

bool HasAsciiLetter(const tstring& s) {
  for (char c : s)
    if (isalpha((unsigned char)c)) return true;
  return false;
}

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

tstring Trim(const tstring& s) {
  size_t b = 0, e = s.size();
  while (b < e && IsBlank(s[b])) ++b;
  while (e > b && IsBlank(s[e - 1])) --e;
  return s.substr(b, e - b);
}

// The pieces of a ';'-separated text, trimmed, empty ones kept in place.
std::vector<tstring> SplitPieces(const tstring& sText) {
  std::vector<tstring> vecPieces;
  size_t nStart = 0;
  while (true) {
    size_t nEnd = sText.find(';', nStart);
    vecPieces.push_back(Trim(sText.substr(nStart, nEnd == tstring::npos ? tstring::npos : nEnd - nStart)));
    if (nEnd == tstring::npos) break;
    nStart = nEnd + 1;
  }
  return vecPieces;
}

std::vector<tstring> SplitNonEmpty(const tstring& sText) {
  std::vector<tstring> vecNames;
  for (tstring& s : SplitPieces(sText))
    if (!s.empty()) vecNames.push_back(std::move(s));
  return vecNames;
}

// printf into a string of any length.
tstring Format(const char* sFormat, ...) {
  va_list args, copy;
  va_start(args, sFormat);
  va_copy(copy, args);
  int n = vsnprintf(nullptr, 0, sFormat, copy);
  va_end(copy);
  tstring s(n > 0 ? (size_t)n : 0, '\0');
  if (n > 0) vsnprintf(&s[0], (size_t)n + 1, sFormat, args);
  va_end(args);
  return s;
}

tstring ItemValue(const tstring& sItem, const char* sName) {
  tstring sValue;
  const char* p = sItem.data();
  if (!ElementText(p, p + sItem.size(), sName, sValue, kOpenIsMissing)) return "";
  return CRuleText::NormaliseBlanks(DecodeEntities(sValue));
}

_tAuditRuleOrg Xml2Org(const tstring& sItem) {
  _tAuditRuleOrg org;
  org.no = ItemValue(sItem, "no");
  org.name = ItemValue(sItem, "name");
  org.rule = ItemValue(sItem, "rule");
  org.arguments = ItemValue(sItem, "argument");
  org.field = ItemValue(sItem, "field");
  org.credit = ToInt(ItemValue(sItem, "credit"));
  return org;
}

// A JSON member as text: strings as they are, integers written out, arrays
// of strings joined by ';'.
tstring MemberText(const Json::Value& root, const char* sName) {
  const Json::Value& value = root[sName];
  if (value.isString()) return CRuleText::NormaliseBlanks(value.asString());
  if (value.isInt64()) return std::to_string(value.asInt64());
  if (value.isArray()) {
    tstring s;
    for (const Json::Value& item : value)
      if (item.isString()) s += (s.empty() ? "" : ";") + item.asString();
    return CRuleText::NormaliseBlanks(s);
  }
  return "";
}

bool ReadJson(const char* sJson, _tAuditRuleOrg& org) {
  Json::Value root;
  if (sJson == nullptr || !ParseJsonObject(sJson, root)) {
    SetLastError("Read ZYG Infor Error!");
    return false;
  }
  org.no = MemberText(root, "no");
  org.name = MemberText(root, "name");
  org.rule = MemberText(root, "rule");
  org.arguments = MemberText(root, root.isMember("arguments") ? "arguments" : "argument");
  org.field = MemberText(root, "field");
  const Json::Value& credit = root["credit"];
  org.credit = credit.isInt() ? credit.asInt() : ToInt(MemberText(root, "credit"));
  return true;
}

Json::Value WriteJson(const _tAuditRuleOrg& org) {
  Json::Value root(Json::objectValue);
  root["no"] = org.no;
  root["name"] = org.name;
  root["rule"] = org.rule;
  root["arguments"] = org.arguments;
  root["field"] = org.field;
  root["credit"] = org.credit;
  return root;
}

void PutRange(CDataFileWriter& out, const _tIntArray& range) {
  out.PutI32(range.start);
  out.PutI32(range.end);
}

bool GetRange(CDataFileReader& in, _tIntArray& range) { return in.GetI32(range.start) && in.GetI32(range.end); }

// The smallest number of bytes one record takes in the file, so that a
// forged count cannot make the loader allocate beyond the file's size.
const size_t kMinRuleBytes = 4 * 4 + 8 * 2 + 8 + 4;
const size_t kMinNotNullBytes = 4 + 8;
const size_t kMinOrgBytes = 5 * 8 + 4;

}  // namespace

CAudit::CAudit(const char* sDataPath, int nType)
    : m_pZYG(new CZYG(sDataPath ? sDataPath : "", nType)), m_sDataPath(sDataPath ? sDataPath : ""), m_nType(nType) {}

CAudit::~CAudit() = default;

tstring CAudit::GetFilename(const char* sExt) const {
  return m_sDataPath + "ZYG_" + std::to_string(m_nType) + "." + sExt;
}

const char* CAudit::Keep(const tstring& sText) {
  m_sResult = sText;
  return m_sResult.c_str();
}

// ---------------------------------------------------------------- tables

int CAudit::GetCmdID(const tstring& sName) {
  for (int i = 0; i < kCmdCount; ++i)
    if (EqualNoCase(kAuditCommandNames[i], sName)) return i;
  return -1;
}

const char* CAudit::GetCmdStr(int nId) { return nId >= 0 && nId < kCmdCount ? kAuditCommandNames[nId] : ""; }

int CAudit::GetFieldID(const tstring& sName) const {
  const tstring sField = sName.substr(0, sName.find('|'));
  if (sField.empty()) return -1;
  int nId = m_pZYG->GetAttributeId(sField);
  if (nId >= 0) return nId;
  // Case can only matter for names with Latin letters; the scan is skipped
  // for numbers and Chinese words, the bulk of a long rule's constants.
  if (!HasAsciiLetter(sField)) return -1;
  for (size_t i = 0; i < m_pZYG->GetAttributeCount(); ++i)
    if (EqualNoCase(m_pZYG->GetAttribute((int)i), sField)) return (int)i;
  for (int k = 0; k < kScopeCount; ++k)
    if (EqualNoCase(kAuditScopeNames[k], sField)) return kScopeSameTuple - k;
  return -1;
}

tstring CAudit::GetFieldStr(int nId) const {
  if (nId >= 0 && (size_t)nId < m_pZYG->GetAttributeCount())
    return tstring(m_pZYG->GetAttribute(nId)) + "|" + m_pZYG->GetAttributeName(nId);
  if (nId <= kScopeSameTuple && nId > kScopeSameTuple - kScopeCount) return kAuditScopeNames[kScopeSameTuple - nId];
  return "";
}

bool CAudit::IsValidField(int nId) const {
  return (nId >= 0 && (size_t)nId < m_pZYG->GetAttributeCount()) ||
         (nId <= kScopeSameTuple && nId > kScopeSameTuple - kScopeCount);
}

int CAudit::GetOpLevel(const audit_rule_unit& unit) {
  if (unit.type == kUnitOperator) {
    if (unit.val == kOpTimes || unit.val == kOpDivide) return 3;
    if (unit.val == kOpPlus || unit.val == kOpMinus) return 4;
    if (unit.val >= kOpOpen && unit.val <= kLastOperator) return 1;
  } else if (unit.type == kUnitRelation) {
    if (unit.val == kRelEqual || unit.val == kRelNotEqual) return 7;
    if (unit.val >= kRelGreater && unit.val <= kRelLessEqual) return 6;
  } else if (unit.type == kUnitLogic) {
    // "not" binds less tightly than the relations on purpose: "not a = 1"
    // negates the whole comparison.
    if (unit.val == kLogicNot) return 8;
    if (unit.val == kLogicAnd) return 9;
    if (unit.val == kLogicOr) return 10;
  }
  return 100;
}

tstring CAudit::GetUnitStr(const audit_rule_unit& unit) const {
  switch (unit.type) {
    case kUnitCommand: return GetCmdStr(unit.val);
    case kUnitField: return GetFieldStr(unit.val);
    case kUnitOperator: return unit.val >= kOpPlus && unit.val <= kLastOperator ? kOperatorNames[unit.val] : "";
    case kUnitRelation:
      return unit.val >= kRelEqual && unit.val <= kRelNotEqual ? kRelationNames[unit.val - kRelEqual] : "";
    case kUnitLogic: return unit.val >= kLogicAnd && unit.val <= kLogicNot ? kLogicNames[unit.val - kLogicAnd] : "";
    case kUnitConstant: return unit.val >= 0 ? m_strPool.Get((size_t)unit.val) : "";
    default: return "";
  }
}

tstring CAudit::GetRuleText(const _tAuditRule& rule) const {
  tstring s;
  for (const audit_rule_unit& unit : rule.rules) s += GetUnitStr(unit) + " ";
  return s;
}

// ---------------------------------------------------------------- parsing

audit_rule_unit CAudit::ClassifyWord(const tstring& sWord, std::vector<tstring>& vecConstants) const {
  for (int k = kLogicAnd; k <= kLogicNot; ++k)
    if (EqualNoCase(kLogicNames[k - kLogicAnd], sWord)) return {kUnitLogic, k};
  for (int k = kFirstWordOperator; k <= kLastOperator; ++k)
    if (EqualNoCase(kOperatorNames[k], sWord)) return {kUnitOperator, k};
  int nId = GetFieldID(sWord);
  if (nId != -1) return {kUnitField, nId};
  if ((nId = GetCmdID(sWord)) >= 0) return {kUnitCommand, nId};
  size_t b = sWord[0] == '"' ? 1 : 0, e = sWord.size();
  if (e > b && sWord[e - 1] == '"') --e;
  vecConstants.push_back(sWord.substr(b, e - b));
  return {kUnitConstant, (int)vecConstants.size() - 1};
}

int CAudit::ParseRule(const tstring& sText, std::vector<audit_rule_unit>& vecUnits,
                      std::vector<tstring>& vecConstants) const {
  vecUnits.clear();
  vecConstants.clear();
  auto add = [&](int nType, int nVal) { vecUnits.push_back({nType, nVal}); };
  const size_t n = sText.size();
  size_t i = 0;
  while (i < n) {
    const size_t nStart = i;
    while (i < n && !IsDelimiter(sText[i])) ++i;
    if (i > nStart) vecUnits.push_back(ClassifyWord(sText.substr(nStart, i - nStart), vecConstants));
    while (i < n && IsDelimiter(sText[i])) {
      const char c = sText[i++];
      const bool bEqualNext = i < n && sText[i] == '=';
      switch (c) {
        case '+': add(kUnitOperator, kOpPlus); break;
        case '-': add(kUnitOperator, kOpMinus); break;
        case '*': add(kUnitOperator, kOpTimes); break;
        case '/': add(kUnitOperator, kOpDivide); break;
        case '(': add(kUnitOperator, kOpOpen); break;
        case ')': add(kUnitOperator, kOpClose); break;
        case '[': add(kUnitOperator, kOpOpenSquare); break;
        case ']': add(kUnitOperator, kOpCloseSquare); break;
        case '>': add(kUnitRelation, bEqualNext ? kRelGreaterEqual : kRelGreater); i += bEqualNext; break;
        case '<': add(kUnitRelation, bEqualNext ? kRelLessEqual : kRelLess); i += bEqualNext; break;
        case '!':
          if (bEqualNext) add(kUnitRelation, kRelNotEqual);
          i += bEqualNext;
          break;
        case '=': {
          // "a> =3" reads as "a>=3", but "==" stays two "=" units.
          audit_rule_unit* pLast = vecUnits.empty() ? nullptr : &vecUnits.back();
          if (pLast && pLast->type == kUnitRelation && pLast->val == kRelGreater) pLast->val = kRelGreaterEqual;
          else if (pLast && pLast->type == kUnitRelation && pLast->val == kRelLess) pLast->val = kRelLessEqual;
          else add(kUnitRelation, kRelEqual);
          break;
        }
        default: break;  // blanks, tabs and ';' only separate
      }
    }
  }
  if (!vecUnits.empty() && vecUnits[0].type == kUnitCommand && vecUnits.size() != 1) {
    SetLastError("Only One ZYG audit command is permitted. See " + sText);
    return -1;
  }
  return 1;
}

int CAudit::ParseFields(const tstring& sText, std::vector<int>& vecIds) const {
  vecIds.clear();
  for (const tstring& sName : SplitNonEmpty(sText)) {
    int nId = GetFieldID(sName);
    if (nId == -1) {
      SetLastError(sName + " is not valid field name or reserved words, ");
      return -1;
    }
    vecIds.push_back(nId);
  }
  return 1;
}

tstring CAudit::RuleKey(const std::vector<audit_rule_unit>& vecUnits, const std::vector<int>& vecFields,
                       const std::vector<tstring>* pConstants) const {
  tstring s;
  for (const audit_rule_unit& unit : vecUnits) {
    s += std::to_string(unit.type) + ":";
    if (unit.type == kUnitConstant) {
      const tstring sText = pConstants ? (*pConstants)[(size_t)unit.val] : tstring(m_strPool.Get((size_t)unit.val));
      s += std::to_string(sText.size()) + ":" + sText;
    } else {
      s += std::to_string(unit.val);
    }
    s += ";";
  }
  s += "|";
  for (int nField : vecFields) s += std::to_string(nField) + ";";
  return s;
}

int CAudit::CheckRepeat(const _tAuditRuleOrg& org, const tstring& sKey, int nSkipOrg) const {
  auto it = m_mapRuleKey.find(sKey);
  if (it == m_mapRuleKey.end() || (int64_t)m_vecRuleOrg[it->second] == nSkipOrg) return 1;
  SetLastError("RuleNo" + org.no + ":" + org.name + " is already exists and cannot be added, see Rule " +
               GetStr(m_vecRules[it->second].no_id));
  return -1;
}

// ---------------------------------------------------------------- compiling

int CAudit::Org2Audit(const _tAuditRuleOrg& org, size_t nOrgIndex) {
  // Nothing enters the pools before the rule is known to be kept, so that
  // a refused rule leaves everything as it was.
  std::vector<audit_rule_unit> vecUnits;
  std::vector<tstring> vecConstants;
  std::vector<int> vecFields;
  if (ParseRule(org.rule, vecUnits, vecConstants) != 1) return -1;
  if (vecUnits.empty()) {
    SetLastError("Audit rule " + org.no + " has no rule text");
    return -1;
  }
  if (ParseFields(org.field, vecFields) != 1) return -1;
  const std::vector<tstring> vecArguments = SplitPieces(org.arguments);
  if (vecUnits.size() == 1 && vecUnits[0].type == kUnitCommand && vecUnits[0].val == kCmdNotNull) {
    for (size_t i = 0; i < vecFields.size(); ++i) {
      m_vecFieldNotNULL.push_back(vecFields[i]);
      bool bGiven = i < vecArguments.size() && !vecArguments[i].empty();
      m_vecFieldNotNullArgu.push_back(bGiven ? vecArguments[i] : kDefaultErrorId);
    }
    return kNotNullRule;
  }
  tstring sKey = RuleKey(vecUnits, vecFields, &vecConstants);
  if (CheckRepeat(org, sKey, -1) != 1) return -1;
  for (audit_rule_unit& unit : vecUnits)
    if (unit.type == kUnitConstant) unit.val = (int)m_strPool.Add(vecConstants[(size_t)unit.val]);
  _tAuditRule rule;
  rule.no_id = (uint32_t)m_strPool.Add(org.no);
  rule.name_id = (uint32_t)m_strPool.Add(org.name);
  rule.credit = org.credit;
  std::vector<int32_t> vecArgumentIds;
  for (const tstring& sArgument : vecArguments)
    if (!sArgument.empty()) vecArgumentIds.push_back((int32_t)m_strPool.Add(sArgument));
  rule.arguments_id = m_intPool.Append(vecArgumentIds);
  rule.fields_id = m_intPool.Append(std::vector<int32_t>(vecFields.begin(), vecFields.end()));
  rule.rules = std::move(vecUnits);
  const size_t nRule = m_vecRules.size();
  m_vecRules.push_back(std::move(rule));
  m_vecRuleOrg.push_back((uint32_t)nOrgIndex);
  m_mapRuleKey.emplace(std::move(sKey), (int)nRule);
  IndexRule(nRule);
  return (int)nRule;
}

void CAudit::IndexRule(size_t nRule) {
  auto post = [&](int nField) {
    if (nField < 0) return;  // scopes name no attribute
    if ((size_t)nField >= m_vecIndex.size()) m_vecIndex.resize((size_t)nField + 1);
    std::vector<int>& vecList = m_vecIndex[nField];
    if (!vecList.empty() && vecList.back() == (int)nRule) return;  // once per attribute
    if (vecList.size() == vecList.capacity()) vecList.reserve(vecList.capacity() + 100);
    vecList.push_back((int)nRule);
  };
  for (int nField : GetFields(nRule)) post(nField);
  for (const audit_rule_unit& unit : m_vecRules[nRule].rules)
    if (unit.type == kUnitField && unit.val >= 0) {
      post(unit.val);
      break;
    }
}

const std::vector<int>& CAudit::GetRulesOfField(int nAttribute) const {
  static const std::vector<int> s_vecNone;
  return nAttribute >= 0 && (size_t)nAttribute < m_vecIndex.size() ? m_vecIndex[nAttribute] : s_vecNone;
}

std::vector<tstring> CAudit::GetArguments(size_t nIndex) const {
  std::vector<tstring> vecArguments;
  if (nIndex >= m_vecRules.size()) return vecArguments;
  for (int32_t nId : m_intPool.Get(m_vecRules[nIndex].arguments_id)) vecArguments.push_back(GetStr((size_t)nId));
  return vecArguments;
}

std::vector<int> CAudit::GetFields(size_t nIndex) const {
  if (nIndex >= m_vecRules.size()) return {};
  std::vector<int32_t> vecIds = m_intPool.Get(m_vecRules[nIndex].fields_id);
  return std::vector<int>(vecIds.begin(), vecIds.end());
}

void CAudit::ClearCompiled() {
  m_vecRules.clear();
  m_vecRuleOrg.clear();
  m_mapRuleKey.clear();
  m_vecIndex.clear();
  m_strPool.Clear();
  m_intPool.Clear();
  m_vecFieldNotNULL.clear();
  m_vecFieldNotNullArgu.clear();
}

void CAudit::Clear() {
  ClearCompiled();
  m_vecOrg.clear();
  m_bDirty = false;
}

bool CAudit::Recompile(int nMustCompile) {
  ClearCompiled();
  bool bOk = true;
  for (size_t i = 0; i < m_vecOrg.size(); ++i)
    if (Org2Audit(m_vecOrg[i], i) == -1 && (int)i == nMustCompile) bOk = false;
  m_bDirty = false;
  return bOk;
}

int CAudit::Update() {
  if (!m_bDirty) return 1;
  Recompile(-1);
  return Save();
}

int CAudit::RuleSetChanged() {
  if (m_vecOrg.empty()) {
    ClearCompiled();
    return 1;
  }
  m_bDirty = true;
  return Update();
}

int CAudit::Commit(std::vector<_tAuditRuleOrg>& vecOld, int nMustCompile) {
  m_bDirty = true;
  if (!Recompile(nMustCompile) || Save() != 1) {
    tstring sError = GetLastError();
    m_vecOrg.swap(vecOld);
    Recompile(-1);
    SetLastError(sError);
    return -1;
  }
  return 1;
}

int CAudit::AddOrg(const _tAuditRuleOrg& org) {
  const size_t nIndex = m_vecOrg.size();
  if (Org2Audit(org, nIndex) == -1) return -1;
  m_vecOrg.push_back(org);
  if (Save() != 1) {
    tstring sError = GetLastError();
    m_vecOrg.pop_back();
    Recompile(-1);
    SetLastError(sError);
    return -1;
  }
  return (int)nIndex;
}

// ---------------------------------------------------------------- editing

int CAudit::ImportFromMem(const char* sText, bool bOverwrite) {
  const tstring s = sText ? sText : "";
  std::vector<_tAuditRuleOrg> vecOld = m_vecOrg;
  if (bOverwrite) {
    m_vecOrg.clear();
    ClearCompiled();
  }
  int nAdded = 0;
  tstring sRefused;  // the last refusal, kept as the last error
  for (size_t nStart = s.find("<audit>"); nStart != tstring::npos; nStart = s.find("<audit>", nStart)) {
    size_t nEnd = s.find("</audit>", nStart);
    if (nEnd == tstring::npos) {
      sRefused = "Cannot locate </audit>";
      WriteError(sRefused);
      break;
    }
    _tAuditRuleOrg org = Xml2Org(s.substr(nStart + 7, nEnd - nStart - 7));
    nStart = nEnd + 8;
    if (Org2Audit(org, m_vecOrg.size()) == -1) {
      sRefused = GetLastError();
      continue;
    }
    m_vecOrg.push_back(std::move(org));
    ++nAdded;
  }
  if (nAdded == 0 && !sRefused.empty()) {  // nothing taken: the list stays as it was
    m_vecOrg.swap(vecOld);
    Recompile(-1);
    SetLastError(sRefused);
    return -1;
  }
  if (Save() != 1) {
    tstring sError = GetLastError();
    m_vecOrg.swap(vecOld);
    Recompile(-1);
    SetLastError(sError);
    return -1;
  }
  if (!sRefused.empty()) SetLastError(sRefused);
  return nAdded;
}

int CAudit::Import(const char* sFile, bool bOverwrite) {
  tstring sText;
  if (sFile == nullptr || !ReadFileText(sFile, sText)) {
    SetLastError(tstring("Failed read file ") + (sFile ? sFile : ""));
    return -1;
  }
  return ImportFromMem(sText.c_str(), bOverwrite);
}

int CAudit::AddRule(const char* sText) { return AddOrg(Xml2Org(sText ? sText : "")) >= 0 ? 1 : -1; }

int CAudit::AddItem(const char* sJson) {
  _tAuditRuleOrg org;
  return ReadJson(sJson, org) ? AddOrg(org) : -1;
}

int CAudit::EditItem(int nIndex, const char* sJson) {
  if (nIndex < 0 || (size_t)nIndex >= m_vecOrg.size()) {
    SetLastError("Rule index " + std::to_string(nIndex) + " is out of range");
    return -1;
  }
  _tAuditRuleOrg org;
  if (!ReadJson(sJson, org)) return -1;
  // The edited rule must not repeat a rule after it either, which compiling
  // in list order would blame on that later rule.
  std::vector<audit_rule_unit> vecUnits;
  std::vector<tstring> vecConstants;
  std::vector<int> vecFields;
  if (ParseRule(org.rule, vecUnits, vecConstants) == 1 && ParseFields(org.field, vecFields) == 1 &&
      CheckRepeat(org, RuleKey(vecUnits, vecFields, &vecConstants), nIndex) != 1)
    return -1;
  std::vector<_tAuditRuleOrg> vecOld = m_vecOrg;
  m_vecOrg[nIndex] = org;
  return Commit(vecOld, nIndex);
}

int CAudit::DeleteItem(int nIndex) {
  if (nIndex < 0 || (size_t)nIndex >= m_vecOrg.size()) {
    SetLastError("Rule index " + std::to_string(nIndex) + " is out of range");
    return -1;
  }
  std::vector<_tAuditRuleOrg> vecOld = m_vecOrg;
  m_vecOrg.erase(m_vecOrg.begin() + nIndex);
  return Commit(vecOld, -1);
}

const char* CAudit::GetItem(int nIndex) {
  if (nIndex < 0 || (size_t)nIndex >= m_vecOrg.size()) {
    SetLastError("Rule index " + std::to_string(nIndex) + " is out of range");
    return Keep("");
  }
  Json::Value root = WriteJson(m_vecOrg[nIndex]);
  root["id"] = nIndex;
  return Keep(JsonText(root));
}

const char* CAudit::GetListId() {
  Json::Value root(Json::arrayValue);
  for (size_t i = 0; i < m_vecOrg.size(); ++i) {
    Json::Value item(Json::objectValue);
    item["id"] = (Json::UInt64)i;
    item["no"] = m_vecOrg[i].no;
    item["name"] = m_vecOrg[i].name;
    item["rule"] = m_vecOrg[i].rule;
    item["field"] = m_vecOrg[i].field;
    root.append(item);
  }
  return Keep(JsonText(root));
}

const char* CAudit::GetSysInfo() {
  Json::Value root(Json::objectValue);
  auto table = [](const char* const* pNames, int nCount) {
    Json::Value list(Json::arrayValue);
    for (int i = 0; i < nCount; ++i) list.append(pNames[i]);
    return list;
  };
  root["FieldName"] = table(kAuditScopeNames, kScopeCount);
  root["RuleCmd"] = table(kAuditCommandNames, kCmdCount);
  root["OperatorStr"] = table(kOperatorNames + kFirstWordOperator, kLastOperator - kFirstWordOperator + 1);
  root["LogicStr"] = table(kLogicNames, 3);
  root["attributes"] = Json::Value(Json::arrayValue);
  for (size_t i = 0; i < m_pZYG->GetAttributeCount(); ++i) {
    if (!*m_pZYG->GetAttribute((int)i)) continue;
    Json::Value item(Json::objectValue);
    item["name"] = m_pZYG->GetAttribute((int)i);
    item["cname"] = m_pZYG->GetAttributeName((int)i);
    root["attributes"].append(item);
  }
  return Keep(JsonText(root));
}

// ---------------------------------------------------------------- files

int CAudit::Save() { return m_sDataPath.empty() ? 1 : Save(GetFilename("audit")); }

int CAudit::Save(const tstring& sFile) {
  CDataFileWriter out(kAuditKind, kAuditVersion);
  out.PutU32((uint32_t)m_nType);
  out.PutString(m_strPool.GetBytes());
  std::vector<int32_t> vecInts(m_intPool.Data(), m_intPool.Data() + m_intPool.GetSize());
  out.PutI32Array(vecInts);
  out.PutU64(m_vecRules.size());
  for (size_t r = 0; r < m_vecRules.size(); ++r) {
    const _tAuditRule& rule = m_vecRules[r];
    out.PutU32(m_vecRuleOrg[r]);
    out.PutU32(rule.no_id);
    out.PutI32(rule.credit);
    out.PutU32(rule.name_id);
    PutRange(out, rule.arguments_id);
    PutRange(out, rule.fields_id);
    out.PutU64(rule.rules.size());
    for (const audit_rule_unit& unit : rule.rules) {
      out.PutI32(unit.type);
      out.PutI32(unit.val);
    }
    out.PutI32(rule.frequency);
  }
  out.PutU64(m_vecFieldNotNULL.size());
  for (size_t i = 0; i < m_vecFieldNotNULL.size(); ++i) {
    out.PutI32(m_vecFieldNotNULL[i]);
    out.PutString(m_vecFieldNotNullArgu[i]);
  }
  out.PutU64(m_vecOrg.size());
  for (const _tAuditRuleOrg& org : m_vecOrg) {
    for (const tstring* p : {&org.no, &org.name, &org.rule, &org.arguments, &org.field}) out.PutString(*p);
    out.PutI32(org.credit);
  }
  if (!out.Save(sFile)) {
    SetLastError("Cannot write file " + sFile);
    return -1;
  }
  return 1;
}

int CAudit::Load() {
  if (m_sDataPath.empty()) return 1;  // a list without files
  m_pZYG->Load();                      // an absent rule set is an empty one
  const tstring sFile = GetFilename("audit");
  if (!IsRegularFile(sFile)) {
    Clear();
    return 1;
  }
  return Load(sFile);
}

int CAudit::Load(const tstring& sFile) {
  Clear();
  CDataFileReader in;
  bool bOk = IsRegularFile(sFile) && in.Open(sFile, kAuditKind, kAuditVersion) && ReadPayload(in) && in.Finish() &&
             CheckLoaded();
  if (!bOk) {
    Clear();
    SetLastError("Cannot read file " + sFile);
    return -1;
  }
  for (size_t r = 0; r < m_vecRules.size(); ++r) {
    m_mapRuleKey.emplace(RuleKey(m_vecRules[r].rules, GetFields(r), nullptr), (int)r);
    IndexRule(r);
  }
  return 1;
}

bool CAudit::ReadPayload(CDataFileReader& in) {
  uint32_t nType = 0;
  tstring sPool;
  std::vector<int32_t> vecInts;
  if (!in.GetU32(nType) || !in.GetString(sPool) || !in.GetI32Array(vecInts)) return false;
  if (nType != (uint32_t)m_nType) return in.Fail("another document type");
  if (!m_strPool.SetBytes(sPool)) return in.Fail("string pool not terminated");
  m_intPool.Append(vecInts);
  uint64_t nCount = 0;
  if (!in.GetCount(nCount, kMinRuleBytes)) return false;
  m_vecRules.resize(nCount);
  m_vecRuleOrg.resize(nCount);
  for (size_t r = 0; r < nCount; ++r) {
    _tAuditRule& rule = m_vecRules[r];
    uint64_t nUnits = 0;
    if (!in.GetU32(m_vecRuleOrg[r]) || !in.GetU32(rule.no_id) || !in.GetI32(rule.credit) || !in.GetU32(rule.name_id) ||
        !GetRange(in, rule.arguments_id) || !GetRange(in, rule.fields_id) || !in.GetCount(nUnits, 8))
      return false;
    rule.rules.resize(nUnits);
    for (audit_rule_unit& unit : rule.rules)
      if (!in.GetI32(unit.type) || !in.GetI32(unit.val)) return false;
    if (!in.GetI32(rule.frequency)) return false;
  }
  if (!in.GetCount(nCount, kMinNotNullBytes)) return false;
  m_vecFieldNotNULL.resize(nCount);
  m_vecFieldNotNullArgu.resize(nCount);
  for (size_t i = 0; i < nCount; ++i)
    if (!in.GetI32(m_vecFieldNotNULL[i]) || !in.GetString(m_vecFieldNotNullArgu[i])) return false;
  if (!in.GetCount(nCount, kMinOrgBytes)) return false;
  m_vecOrg.resize(nCount);
  for (_tAuditRuleOrg& org : m_vecOrg) {
    for (tstring* p : {&org.no, &org.name, &org.rule, &org.arguments, &org.field})
      if (!in.GetString(*p)) return false;
    if (!in.GetI32(org.credit)) return false;
  }
  return true;
}

// Every reference of the loaded rules points into the pools, the tables and
// the rule set's attributes, and every compiled rule to its own editable one.
bool CAudit::CheckLoaded() const {
  const size_t nStrings = m_strPool.GetSize();
  const int64_t nInts = (int64_t)m_intPool.GetSize();
  auto stringOk = [&](int64_t nId) { return nId >= 0 && (nStrings == 0 ? nId == 0 : (size_t)nId < nStrings); };
  auto rangeOk = [&](const _tIntArray& r) { return r.start >= 0 && r.start <= r.end && r.end <= nInts; };
  auto unitOk = [&](const audit_rule_unit& u, size_t nUnits) {
    switch (u.type) {
      case kUnitCommand: return u.val > kCmdNotNull && u.val < kCmdCount && nUnits == 1;
      case kUnitField: return IsValidField(u.val);
      case kUnitOperator: return u.val >= kOpPlus && u.val <= kLastOperator;
      case kUnitRelation: return u.val >= kRelEqual && u.val <= kRelNotEqual;
      case kUnitLogic: return u.val >= kLogicAnd && u.val <= kLogicNot;
      case kUnitConstant: return stringOk(u.val);
      default: return false;
    }
  };
  int64_t nLastOrg = -1;
  for (size_t r = 0; r < m_vecRules.size(); ++r) {
    const _tAuditRule& rule = m_vecRules[r];
    bool bOk = stringOk(rule.no_id) && stringOk(rule.name_id) && rangeOk(rule.arguments_id) &&
               rangeOk(rule.fields_id) && !rule.rules.empty() && (int64_t)m_vecRuleOrg[r] > nLastOrg &&
               m_vecRuleOrg[r] < m_vecOrg.size();
    if (!bOk) return false;
    nLastOrg = m_vecRuleOrg[r];
    for (int32_t nId : m_intPool.Get(rule.arguments_id))
      if (!stringOk(nId)) return false;
    for (int32_t nId : m_intPool.Get(rule.fields_id))
      if (!IsValidField(nId)) return false;
    for (const audit_rule_unit& unit : rule.rules)
      if (!unitOk(unit, rule.rules.size())) return false;
  }
  for (int nField : m_vecFieldNotNULL)
    if (!IsValidField(nField)) return false;
  return true;
}

int CAudit::Export() { return Export(GetFilename("audit_export.txt")); }

int CAudit::Export(const tstring& sFile) {
  tstring s = Format("AuditRuleCount=%zd\n", m_vecRules.size());
  for (size_t r = 0; r < m_vecRules.size(); ++r) {
    const _tAuditRule& rule = m_vecRules[r];
    tstring sFields, sArguments;
    for (int nField : GetFields(r)) sFields += (sFields.empty() ? "" : ";") + GetFieldStr(nField);
    for (const tstring& sArgument : GetArguments(r)) sArguments += (sArguments.empty() ? "" : ";") + sArgument;
    s += Format("Index=%d: No=%s\tName=%s\tRule=%s\tCredit=%d\tField=%s\tArgument=%s\r\n", (int)r, GetStr(rule.no_id),
                GetStr(rule.name_id), GetRuleText(rule).c_str(), rule.credit, sFields.c_str(), sArguments.c_str());
  }
  s += "NotNull Fields are as following:\n";
  for (const tstring& sErrorId : m_vecFieldNotNullArgu)
    s += sErrorId == kDefaultErrorId ? tstring("||12.1;") : Format("||%s;", sErrorId.c_str());
  s += "\nIndex data are listed as follows:\n";
  for (size_t f = 0; f < m_vecIndex.size(); ++f) {
    if (m_vecIndex[f].empty()) continue;
    s += Format("\nField=%d(%s|%s)\tDF=%d\tInverted List are:", (int)f, m_pZYG->GetAttribute((int)f),
                m_pZYG->GetAttributeName((int)f), (int)m_vecIndex[f].size());
    for (int nRule : m_vecIndex[f]) s += Format("%d;", nRule);
  }
  if (!WriteFileReplacing(sFile, [&](FILE* fp) { return fwrite(s.data(), 1, s.size(), fp) == s.size(); })) {
    SetLastError("Cannot write file " + sFile);
    return -1;
  }
  return 1;
}
