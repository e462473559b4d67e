#include "rules/AuditAgent.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "docx/Document.h"
#include "rules/Audit.h"
#include "rules/ZYG.h"
#include "rules/ZYGAgent.h"
#include "utility/ChineseNumber.h"
#include "utility/ErrorLog.h"
#include "utility/Validators.h"

namespace {

const double kTolerance = 0.009;

bool IsOp(const audit_rule_unit& unit, int nOp) { return unit.type == kUnitOperator && unit.val == nOp; }

tstring Trim(const tstring& s) {
  size_t b = 0, e = s.size();
  while (b < e && (s[b] == ' ' || s[b] == '\t' || s[b] == '\r' || s[b] == '\n')) ++b;
  while (e > b && (s[e - 1] == ' ' || s[e - 1] == '\t' || s[e - 1] == '\r' || s[e - 1] == '\n')) --e;
  return s.substr(b, e - b);
}

bool EqualNoCase(const tstring& a, const tstring& b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    unsigned char x = (unsigned char)a[i], y = (unsigned char)b[i];
    if (x >= 'A' && x <= 'Z') x = (unsigned char)(x + 32);
    if (y >= 'A' && y <= 'Z') y = (unsigned char)(y + 32);
    if (x != y) return false;
  }
  return true;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// True, with the value, when the text begins with a digit, '+' or '-'.
bool ReadNumber(const tstring& s, double& fValue) {
  if (s.empty() || !(IsDigit(s[0]) || s[0] == '+' || s[0] == '-')) return false;
  fValue = (double)strtof(s.c_str(), nullptr);
  return true;
}

void ReplaceAll(tstring& s, const char* szFrom, const char* szTo) {
  size_t nLen = strlen(szFrom), nPos = 0;
  while ((nPos = s.find(szFrom, nPos)) != tstring::npos) {
    s.replace(nPos, nLen, szTo);
    nPos += strlen(szTo);
  }
}

// Full-width letters, digits and the marks standards use, as ASCII.
tstring ToHalfWidth(const tstring& sText) {
  tstring s;
  s.reserve(sText.size());
  for (size_t i = 0; i < sText.size();) {
    unsigned char c = (unsigned char)sText[i];
    // U+FF01..U+FF5E: EF BC 81..EF BD 9E
    if (c == 0xEF && i + 2 < sText.size()) {
      unsigned char c1 = (unsigned char)sText[i + 1], c2 = (unsigned char)sText[i + 2];
      unsigned nCode = 0;
      if (c1 == 0xBC && c2 >= 0x81 && c2 <= 0xBF) nCode = 0xFF00 + (c2 - 0x80);
      if (c1 == 0xBD && c2 >= 0x80 && c2 <= 0x9E) nCode = 0xFF40 + (c2 - 0x80);
      if (nCode) {
        s += (char)(nCode - 0xFEE0);
        i += 3;
        continue;
      }
    }
    s += sText[i++];
  }
  ReplaceAll(s, "\xE2\x80\x94", "-");  // em dash
  ReplaceAll(s, "\xE2\x80\x93", "-");  // en dash
  ReplaceAll(s, "\xE2\x80\x95", "-");  // horizontal bar
  ReplaceAll(s, "\xE3\x80\x80", " ");  // ideographic space
  return s;
}

// A whole number in ASCII form: sign, digits (with ',' groups), fraction, '%'.
bool IsPlainNumber(const tstring& sText) {
  tstring s = Trim(sText);
  size_t i = 0;
  if (i < s.size() && (s[i] == '+' || s[i] == '-')) ++i;
  size_t nDigits = 0, nGroup = 0;
  bool bComma = false;
  for (; i < s.size(); ++i) {
    if (IsDigit(s[i])) {
      ++nDigits;
      ++nGroup;
    } else if (s[i] == ',' && nGroup > 0 && (!bComma || nGroup == 3)) {
      if (!bComma && nGroup > 3) return false;
      bComma = true;
      nGroup = 0;
    } else {
      break;
    }
  }
  if (nDigits == 0 || (bComma && nGroup != 3)) return false;
  if (i < s.size() && s[i] == '.') {
    ++i;
    size_t nFrac = 0;
    while (i < s.size() && IsDigit(s[i])) ++i, ++nFrac;
    if (nFrac == 0) return false;
  }
  if (i < s.size() && s[i] == '%') ++i;
  return i == s.size();
}

// "2023年5月", "2023-05", "2023/5", "2023.5": a year of 4 digits and a month.
bool IsYearMonth(const tstring& sText) {
  tstring s = Trim(sText);
  if (s.size() < 6 || !IsDigit(s[0]) || !IsDigit(s[1]) || !IsDigit(s[2]) || !IsDigit(s[3])) return false;
  size_t i = 4;
  const tstring sYear = "\xE5\xB9\xB4";  // 年
  if (s.compare(i, sYear.size(), sYear) == 0) {
    i += sYear.size();
  } else if (s[i] == '-' || s[i] == '/' || s[i] == '.') {
    ++i;
  } else {
    return false;
  }
  int nMonth = 0, nDigits = 0;
  while (i < s.size() && IsDigit(s[i]) && nDigits < 3) nMonth = nMonth * 10 + (s[i++] - '0'), ++nDigits;
  if (nDigits == 0 || nMonth < 1 || nMonth > 12) return false;
  if (i == s.size()) return true;
  return s.compare(i, tstring::npos, "\xE6\x9C\x88") == 0;  // 月
}

tstring JoinArgs(const std::vector<tstring>& vec) {
  tstring s;
  for (size_t i = 0; i < vec.size(); ++i) s += (i ? ";" : "") + vec[i];
  return s;
}

tstring RemoveAll(tstring s, const std::vector<const char*>& vecWords) {
  for (const char* w : vecWords) ReplaceAll(s, w, "");
  return s;
}

// "壹拾万元整", "十二元五角": the amount in words; false when it does not read.
bool ReadChineseAmount(const tstring& sText, double& fValue) {
  tstring s = RemoveAll(Trim(sText), {"人民币", "(", ")", "（", "）", " ", "整", "正", "圆", "元"});
  double fFraction = 0;
  for (const auto& part : {std::make_pair("角", 0.1), std::make_pair("分", 0.01)}) {
    size_t nPos = s.find(part.first);
    if (nPos == tstring::npos) continue;
    // The digit before the mark.
    size_t nStart = nPos;
    while (nStart > 0 && ((unsigned char)s[nStart - 1] & 0xC0) == 0x80) --nStart;
    if (nStart == 0) return false;
    --nStart;
    while (nStart > 0 && ((unsigned char)s[nStart] & 0xC0) == 0x80) --nStart;
    int64_t nDigit = 0;
    if (!ChineseToNumber(s.substr(nStart, nPos - nStart), nDigit)) return false;
    fFraction += (double)nDigit * part.second;
    s.erase(nStart, nPos + strlen(part.first) - nStart);
  }
  if (s.size() >= 3 && s.compare(s.size() - 3, 3, "零") == 0) s.erase(s.size() - 3);
  int64_t nValue = 0;
  if (s.empty()) {
    fValue = fFraction;
    return fFraction > 0;
  }
  if (!ChineseToNumber(s, nValue)) return false;
  fValue = (double)nValue + fFraction;
  return true;
}

bool ReadFigureAmount(const tstring& sText, double& fValue) {
  tstring s = RemoveAll(Trim(ToHalfWidth(sText)), {",", "元", "￥", "¥", "人民币", " "});
  if (s.empty() || !IsDigit(s[0])) return false;
  char* pEnd = nullptr;
  fValue = strtod(s.c_str(), &pEnd);
  return pEnd && *pEnd == 0;
}

}  // namespace

tstring _tTiaowenHao::ToString() const {
  tstring s = type + " " + sNumber;
  if (year) s += "-" + std::to_string(year);
  return s;
}

CAuditAgent::CAuditAgent(const CAudit* pAudit, CZYGAgent* pZYGAgent) : m_pZYGAgent(pZYGAgent), m_pAudit(pAudit) {}

// ---------------------------------------------------------------- running

int CAuditAgent::Check(const CDocument* pDoc, CCheckResult* pCheckResult, int format, const tstring& sOrganization,
                       bool bDebug) {
  m_sOrganization = sOrganization;
  m_bDebug = bDebug;
  if (pDoc == nullptr || pCheckResult == nullptr || m_pZYGAgent == nullptr || m_pAudit == nullptr) return -1;
  m_pDoc = pDoc;
  m_pCheckResult = pCheckResult;
  size_t nBefore = pCheckResult->GetFindings().size();
  tstring sBase = pDoc->m_sPath.empty() ? "" : pDoc->m_sPath + "/../" + pDoc->m_sFilename;
  m_pZYGAgent->ScanDoc(pDoc, sBase, format, bDebug);
  for (_tCheckResult finding : m_pZYGAgent->GetFindings()) {
    finding.text = pDoc->GetText(finding.para_id);  // as written, not as normalised
    pCheckResult->AddResult(finding);
  }
  if (CheckAllData() < 0) return -1;
  return (int)(pCheckResult->GetFindings().size() - nBefore);
}

int CAuditAgent::CheckScanned(const CDocument* pDoc, CCheckResult* pCheckResult) {
  if (pCheckResult == nullptr || m_pZYGAgent == nullptr || m_pAudit == nullptr) return -1;
  m_pDoc = pDoc;
  m_pCheckResult = pCheckResult;
  size_t nBefore = pCheckResult->GetFindings().size();
  if (CheckAllData() < 0) return -1;
  return (int)(pCheckResult->GetFindings().size() - nBefore);
}

int CAuditAgent::ExtractKnowledge(const CDocument* pDoc, int format) {
  if (pDoc == nullptr || m_pZYGAgent == nullptr) return -1;
  m_pDoc = pDoc;
  return m_pZYGAgent->ScanDoc(pDoc, "", format, false);
}

const tstring& CAuditAgent::GetKnowledgeJsonStr() {
  return m_pZYGAgent ? m_pZYGAgent->GetKnowledgeJsonStr() : m_sEmpty;
}

int CAuditAgent::CheckAllData() {
  if (m_pZYGAgent == nullptr || m_pAudit == nullptr) return -1;
  m_vecUniqueTuple.clear();
  m_setTupleChecked.clear();
  m_vecStandards.clear();
  m_vecArgumentReport.clear();
  m_nCachedValueCount = (size_t)-1;
  int nFound = 0;
  int n = CheckNotNull();
  if (n > 0) nFound += n;
  for (const _tKeyVal& keyVal : m_pZYGAgent->GetKeyValues()) {
    n = CheckKeyValue(keyVal, 1);
    if (n > 0) nFound += n;
  }
  for (const _tTuple& tuple : m_pZYGAgent->GetTuples()) {
    n = CheckTuple(tuple, 2);
    if (n > 0) nFound += n;
  }
  for (const _tKeyTable& table : m_pZYGAgent->GetTables()) {
    n = CheckTable(table);
    if (n > 0) nFound += n;
  }
  return nFound;
}

int CAuditAgent::CheckNotNull() {
  if (m_pZYGAgent == nullptr || m_pAudit == nullptr || m_pAudit->GetZYG() == nullptr) return -1;
  const CZYG* pZYG = m_pAudit->GetZYG();
  const std::vector<int>& vecFields = m_pAudit->GetNotNullFields();
  const std::vector<tstring>& vecIds = m_pAudit->GetNotNullErrorIds();
  int nFound = 0;
  for (size_t i = 0; i < vecFields.size(); ++i) {
    int nAttribute = vecFields[i];
    if (nAttribute < 0 || (size_t)nAttribute >= pZYG->GetAttributeCount()) continue;
    int nKey = KeyOfAttribute(nAttribute);
    if (nKey >= 0 && !DocValues(nKey).empty()) continue;
    tstring sName = pZYG->GetAttributeName(nAttribute);
    if (sName.empty()) sName = pZYG->GetAttribute(nAttribute);
    tstring sId = i < vecIds.size() && !vecIds[i].empty() ? vecIds[i] : tstring("12.1");
    _tCheckResult check;
    check.error_id = sId;
    check.org_str = sName;
    check.field_id = 5;
    if (m_pCheckResult) m_pCheckResult->AddResult(check);
    ++nFound;
  }
  return nFound;
}

int CAuditAgent::CheckTuple(const _tTuple& tuple, int nType) {
  const _tTuple* pOld = m_pCurTuple;
  m_pCurTuple = &tuple;
  ++m_nTupleSerial;
  int nFound = 0;
  for (const _tKeyVal& keyVal : tuple) {
    int n = CheckKeyValue(keyVal, nType);
    if (n > 0) nFound += n;
  }
  m_pCurTuple = pOld;
  return nFound;
}

int CAuditAgent::CheckTable(const _tKeyTable& table) {
  const _tKeyTable* pOld = m_pCurTable;
  m_pCurTable = &table;
  int nFound = 0;
  for (size_t i = 0; i < table.size(); ++i) {
    if (m_bDebug) printf("Tuple %zd/%zd\r", i + 1, table.size());
    int n = CheckTuple(table[i], 3);
    if (n > 0) nFound += n;
  }
  m_pCurTable = pOld;
  return nFound;
}

int CAuditAgent::CheckKeyValue(const _tKeyVal& keyVal, int nType) {
  if (m_pAudit == nullptr || m_pAudit->GetZYG() == nullptr) return -1;
  int nAttribute = AttributeOfKey(keyVal.key_name_id);
  if (nAttribute < 0 || (size_t)nAttribute >= m_pAudit->GetZYG()->GetAttributeCount()) return -1;
  // A copy: an evaluation may add findings, never rules, but the list is
  // the audit's and short.
  std::vector<int> vecRules = m_pAudit->GetRulesOfField(nAttribute);
  int nFound = 0;
  for (int nRule : vecRules) {
    if (nRule < 0) continue;
    if (CheckRule((size_t)nRule, keyVal, nType) == 0) ++nFound;
  }
  return nFound;
}

// 1 held (or skipped), 0 failed with a finding, negative on error.
int CAuditAgent::CheckRule(size_t nRule, const _tKeyVal& keyVal, int nType) {
  if (m_pAudit == nullptr || nRule >= m_pAudit->GetRuleCount()) return -1;
  const _tAuditRule& rule = m_pAudit->GetRule(nRule);
  m_nRuleID = (int)nRule;
  m_keyValChecked = keyVal;
  if (rule.rules.size() == 1 && rule.rules[0].type == kUnitCommand) {
    int nResult = 1;
    switch (rule.rules[0].val) {
      case kCmdUnique: nResult = CheckUnique(keyVal); break;
      case kCmdNumCheck: nResult = CheckNum(keyVal); break;
      case kCmdNumChinese: nResult = CheckChineseNum(keyVal); break;
      case kCmdUniqueTuple:
        if (nType != 1) nResult = CheckTupleUnique(keyVal);
        break;
      case kCmdStandardId:
        if (nType != 1) nResult = CheckStandardID(keyVal);
        break;
      case kCmdStandardArgument: nResult = CheckStandardArgument(keyVal); break;
      case kCmdDate: nResult = CheckDate(keyVal); break;
      case kCmdPersonId: nResult = CheckPersonID(keyVal); break;
      default: break;  // "audit_not_null" is never a kept rule
    }
    return nResult;
  }
  return CheckLogicExpression(keyVal, nType);
}

// ---------------------------------------------------------------- lookups

tstring CAuditAgent::KeyName(int nKeyId) const {
  const CZYG* pZYG = m_pZYGAgent ? m_pZYGAgent->GetZYG() : nullptr;
  if (pZYG == nullptr || nKeyId < 0) return "";
  const char* sz = pZYG->GetTerm(nKeyId);
  return sz ? sz : "";
}

int CAuditAgent::AttributeOfKey(int nKeyId) const {
  tstring sName = KeyName(nKeyId);
  if (sName.empty() || m_pAudit == nullptr || m_pAudit->GetZYG() == nullptr) return -1;
  return m_pAudit->GetZYG()->GetAttributeId(sName);
}

int CAuditAgent::KeyOfAttribute(int nAttribute) const {
  const CZYG* pZYG = m_pZYGAgent ? m_pZYGAgent->GetZYG() : nullptr;
  if (pZYG == nullptr || m_pAudit == nullptr || m_pAudit->GetZYG() == nullptr || nAttribute < 0) return -1;
  const char* sz = m_pAudit->GetZYG()->GetAttribute(nAttribute);
  if (sz == nullptr || *sz == 0) return -1;
  return pZYG->GetKeyId(sz);
}

const std::vector<_tKeyVal>& CAuditAgent::DocValues(int nKeyId) {
  static const std::vector<_tKeyVal> kNone;
  if (m_pZYGAgent == nullptr || nKeyId < 0) return kNone;
  size_t nCount = m_pZYGAgent->GetKeyValues().size();
  if (nCount != m_nCachedValueCount) {
    m_mapDocValues.clear();
    m_mapValueIndex.clear();
    m_nCachedValueCount = nCount;
  }
  auto it = m_mapDocValues.find(nKeyId);
  if (it == m_mapDocValues.end()) {
    it = m_mapDocValues.emplace(nKeyId, std::vector<_tKeyVal>()).first;
    m_pZYGAgent->GetKeyValue(nKeyId, it->second);
    std::map<_tKeyVal, size_t>& mapIndex = m_mapValueIndex[nKeyId];
    for (size_t i = 0; i < it->second.size(); ++i) mapIndex.emplace(it->second[i], i);
  }
  return it->second;
}

size_t CAuditAgent::CurrentIndex(const _tKeyVal& keyVal) {
  DocValues(keyVal.key_name_id);
  auto it = m_mapValueIndex.find(keyVal.key_name_id);
  if (it == m_mapValueIndex.end()) return 0;
  auto itIndex = it->second.find(keyVal);
  return itIndex == it->second.end() ? 0 : itIndex->second;
}

const _tKeyVal* CAuditAgent::FieldValue(int nAttribute, int /*nType*/) {
  int nKey = KeyOfAttribute(nAttribute);
  if (nKey < 0) return nullptr;
  if (nKey == m_keyValChecked.key_name_id) return &m_keyValChecked;
  std::vector<int> vecFields = m_pAudit->GetFields((size_t)m_nRuleID);
  if (m_pCurTuple && vecFields.size() == 1 && vecFields[0] == kScopeSameTuple) {
    for (const _tKeyVal& keyVal : *m_pCurTuple)
      if (keyVal.key_name_id == nKey && !keyVal.key_value.empty()) return &keyVal;
  }
  const std::vector<_tKeyVal>& vecValues = DocValues(nKey);
  if (vecValues.empty()) return nullptr;
  return &vecValues[m_nCurIndex < vecValues.size() ? m_nCurIndex : vecValues.size() - 1];
}

const _tKeyVal* CAuditAgent::NearValue(const char* szKey, const _tKeyVal& keyVal) {
  if (m_pCurTuple) {
    for (const _tKeyVal& kv : *m_pCurTuple)
      if (EqualNoCase(KeyName(kv.key_name_id), szKey) && !kv.key_value.empty()) return &kv;
  }
  if (m_pZYGAgent == nullptr) return nullptr;
  for (const _tKeyVal& kv : m_pZYGAgent->GetKeyValues())
    if (kv.para_id == keyVal.para_id && EqualNoCase(KeyName(kv.key_name_id), szKey) && !kv.key_value.empty())
      return &kv;
  return nullptr;
}

// ---------------------------------------------------------------- findings

tstring CAuditAgent::ParaText(const _tKeyVal& keyVal, int nType) const {
  if (nType == 3) return keyVal.org_para_text.empty() ? keyVal.key_value : keyVal.org_para_text;
  if (m_pDoc) {
    const tstring& sText = m_pDoc->GetText(keyVal.para_id);
    if (!sText.empty()) return sText;
  }
  return keyVal.org_para_text;
}

void CAuditAgent::AddFinding(const _tKeyVal& keyVal, const char* szErrorId, const tstring& sMsg, int nType,
                             const tstring& sNew) {
  _tCheckResult check;
  check.error_id = szErrorId;
  check.error_msg = sMsg;
  check.para_id = keyVal.para_id;
  check.offset = keyVal.offset;
  check.org_str = keyVal.key_value;
  check.text = ParaText(keyVal, nType);
  check.field_id = 2;
  if (!sNew.empty()) {
    check.new_str = sNew;
    check.revise_type = 1;
  }
  if (m_pCheckResult) m_pCheckResult->AddResult(check);
}

// ---------------------------------------------------------------- commands

int CAuditAgent::CheckUnique(const _tKeyVal& keyVal) {
  const std::vector<_tKeyVal>& vecValues = DocValues(keyVal.key_name_id);
  // Places, in document order, holding the same text; the first is the original.
  std::set<std::pair<uint32_t, unsigned>> setPlaces;
  for (const _tKeyVal& kv : vecValues)
    if (kv.key_value == keyVal.key_value) setPlaces.emplace(kv.para_id, kv.offset);
  std::pair<uint32_t, unsigned> place(keyVal.para_id, keyVal.offset);
  setPlaces.insert(place);  // a value built by hand counts too
  if (setPlaces.size() < 2 || *setPlaces.begin() == place) return 1;
  AddFinding(keyVal, "3.1", "");
  return 0;
}

int CAuditAgent::CheckNum(const _tKeyVal& keyVal) {
  if (IsPlainNumber(keyVal.key_value)) return 1;
  tstring s = Trim(keyVal.key_value), sNew;
  if (!s.empty() && IsDigit(s[0])) {
    long long n = 0;
    size_t i = 0;
    while (i < s.size() && IsDigit(s[i]) && n <= 2147483647LL) n = n * 10 + (s[i++] - '0');
    if (n <= 2147483647LL) {
      char sz[32];
      snprintf(sz, sizeof(sz), "%d", (int)n);
      sNew = sz;
    }
  }
  AddFinding(keyVal, "1.2.4", "", 1, sNew);
  return 0;
}

int CAuditAgent::CheckChineseNum(const _tKeyVal& keyVal) {
  int64_t nValue = 0;
  if (ChineseToNumber(Trim(keyVal.key_value), nValue)) return 1;
  AddFinding(keyVal, "1.2.4", "");
  return 0;
}

int CAuditAgent::CheckDate(const _tKeyVal& keyVal) {
  int y = 0, m = 0, d = 0;
  if (ParseDate(keyVal.key_value, y, m, d) || IsYearMonth(keyVal.key_value)) return 1;
  AddFinding(keyVal, "99.1", "");
  return 0;
}

int CAuditAgent::CheckPersonID(const _tKeyVal& keyVal) {
  if (IsValidIdentityNumber(Trim(keyVal.key_value))) return 1;
  AddFinding(keyVal, "99.2", "");
  return 0;
}

int CAuditAgent::CheckTupleUnique(const _tKeyVal& keyVal) {
  std::vector<int> vecFields;
  for (int nField : m_pAudit->GetFields((size_t)m_nRuleID))
    if (nField >= 0) vecFields.push_back(nField);
  if (vecFields.size() < 2) {
    SetLastError("Tuple Unique check elements is less than 2");
    return -1;
  }
  if (m_pCurTuple == nullptr) return 1;
  if (!m_setTupleChecked.emplace(m_nRuleID, m_nTupleSerial).second) return 1;
  std::vector<tstring> vecProjection;
  bool bAllEmpty = true;
  for (int nField : vecFields) {
    int nKey = KeyOfAttribute(nField);
    tstring sValue;
    for (const _tKeyVal& kv : *m_pCurTuple) {
      if (nKey >= 0 && kv.key_name_id == nKey) {
        sValue = kv.key_value;
        break;
      }
    }
    if (!sValue.empty()) bAllEmpty = false;
    vecProjection.push_back(sValue);
  }
  if (bAllEmpty) return 1;
  if (m_vecUniqueTuple.emplace(m_nRuleID, vecProjection).second) return 1;
  AddFinding(keyVal, "3.1", "");
  return 0;
}

// ---------------------------------------------------------------- expressions

tstring CAuditAgent::RuleText() const {
  if (m_pAudit == nullptr || m_nRuleID < 0 || (size_t)m_nRuleID >= m_pAudit->GetRuleCount()) return "";
  return m_pAudit->GetRuleText(m_pAudit->GetRule((size_t)m_nRuleID));
}

void CAuditAgent::SetOpLast() {
  m_bHasOpLast = !m_stackOperator.empty();
  m_opLast = m_bHasOpLast ? m_stackOperator.back() : audit_rule_unit();
}

int CAuditAgent::PushText(const tstring& sText, const audit_rule_unit& unit, bool bFromField) {
  m_sLastOperand = sText;
  m_bLastOperandPushed = false;
  if (sText.empty()) {
    SetLastError("Invalid value at " + m_pAudit->GetUnitStr(unit));
    return -5;
  }
  double fValue = 0;
  if (ReadNumber(sText, fValue)) {
    m_stackValue.push_back(_tComputeValue{bFromField ? 1 : 0, fValue});
    m_bLastOperandPushed = true;
  }
  return 1;
}

int CAuditAgent::CheckLogicExpression(const _tKeyVal& keyVal, int nType) {
  if (m_pAudit == nullptr || m_nRuleID < 0 || (size_t)m_nRuleID >= m_pAudit->GetRuleCount()) return -1;
  const std::vector<audit_rule_unit>& units = m_pAudit->GetRule((size_t)m_nRuleID).rules;
  m_stackOperator.clear();
  m_stackValue.clear();
  SetOpLast();
  m_keyValLast = keyVal;
  m_keyValChecked = keyVal;
  m_bLastIsKey = false;
  m_curCheck.Reset();
  m_sLastOperand.clear();
  m_bLastOperandPushed = false;
  m_nCurIndex = CurrentIndex(keyVal);

  for (m_nPos = 0; m_nPos < units.size(); ++m_nPos) {
    const audit_rule_unit& unit = units[m_nPos];
    if (unit.type == kUnitConstant) {
      int nResult = PushText(m_pAudit->GetStr((size_t)unit.val), unit, false);
      if (nResult < 0) return nResult;
      continue;
    }
    if (unit.type == kUnitField) {
      const _tKeyVal* pValue = unit.val >= 0 ? FieldValue(unit.val, nType) : nullptr;
      if (pValue) {
        m_keyValLast = *pValue;
        m_bLastIsKey = true;
      }
      int nResult = PushText(pValue ? pValue->key_value : tstring(), unit, true);
      if (nResult < 0) return nResult;
      continue;
    }
    if (unit.type == kUnitOperator) {
      if (unit.val == kOpIn || unit.val == kOpNotIn || unit.val == kOpSubstr || unit.val == kOpNotSubstr) {
        if (ProcessInclude(units, unit.val) < 0) return -1;
        continue;
      }
      if (unit.val == kOpSum) {
        if (nType != 3 || m_pCurTable == nullptr) {
          SetLastError("sum operator must be process table ");
          return -2;
        }
        if (ProcessSum(units, nType) < 0) return -3;
        continue;
      }
      if (unit.val == kOpInteger) {
        if (ProcessInteger(units, nType) < 0) return -3;
        continue;
      }
    } else if (unit.type != kUnitRelation && unit.type != kUnitLogic) {
      SetLastError("Invalid expression at " + m_pAudit->GetUnitStr(unit));
      continue;
    }
    // Operators, relations and logic: compute the top first when it binds
    // at least as tightly as this one.
    m_bConsumed = false;
    if (!m_stackOperator.empty() && CAudit::GetOpLevel(unit) >= CAudit::GetOpLevel(m_opLast)) {
      if (Compute(units) < 0) return -4;
    }
    if (m_bConsumed) continue;  // this unit closed the bracket on top
    if (m_bHasOpLast && (IsOp(m_opLast, kOpClose) || IsOp(m_opLast, kOpCloseSquare))) continue;
    m_stackOperator.push_back(unit);
    SetOpLast();
  }
  while (!m_stackOperator.empty()) {
    if (Compute(units) < 0) return -6;
  }
  if (m_stackValue.size() != 1) {
    SetLastError("Cannot get the final result. Invalid expression at " + RuleText());
    return -7;
  }
  if (m_stackValue[0].val != 0.0) return 1;  // NaN is not 0

  if (m_curCheck.org_str.empty()) m_curCheck.org_str = m_keyValLast.key_value;
  m_curCheck.error_id = "1000";
  m_curCheck.para_id = m_keyValLast.para_id;
  m_curCheck.offset = m_keyValLast.offset;
  m_curCheck.text = ParaText(m_keyValLast, nType);
  m_curCheck.error_msg = JoinArgs(m_pAudit->GetArguments((size_t)m_nRuleID));
  m_curCheck.field_id = 2;
  if (m_pCheckResult) m_pCheckResult->AddResult(m_curCheck);
  return 0;
}

int CAuditAgent::ProcessInclude(const std::vector<audit_rule_unit>& units, int nOp) {
  size_t i = m_nPos + 1;
  if (i >= units.size() || !IsOp(units[i], kOpOpenSquare)) {
    SetLastError("There is no '[' in incuding operator");
    return -1;
  }
  bool bFound = false;
  for (++i; i < units.size() && units[i].type == kUnitConstant; ++i) {
    tstring sEntry = m_pAudit->GetStr((size_t)units[i].val);
    if (nOp == kOpIn || nOp == kOpNotIn) {
      if (EqualNoCase(m_sLastOperand, sEntry)) bFound = true;
    } else if (m_sLastOperand.find(sEntry) != tstring::npos) {
      bFound = true;
    }
  }
  if (i >= units.size() || !IsOp(units[i], kOpCloseSquare)) {
    SetLastError("There is no ']' in incuding operator");
    return -1;
  }
  m_nPos = i;
  bool bTrue = (nOp == kOpIn || nOp == kOpSubstr) ? bFound : !bFound;
  if (m_bLastOperandPushed && !m_stackValue.empty()) m_stackValue.pop_back();
  m_stackValue.push_back(_tComputeValue{2, bTrue ? 1.0 : 0.0});
  m_bLastOperandPushed = true;
  return 1;
}

// The "( field )" that follows a function's name at m_nPos.
bool CAuditAgent::FieldArgument(const std::vector<audit_rule_unit>& units, const char* sOperator) {
  const size_t i = m_nPos;
  const char* sMissing = nullptr;
  if (i + 1 >= units.size() || !IsOp(units[i + 1], kOpOpen))
    sMissing = "'('";
  else if (i + 2 >= units.size() || units[i + 2].type != kUnitField || units[i + 2].val < 0)
    sMissing = "'fieldname'";
  else if (i + 3 >= units.size() || !IsOp(units[i + 3], kOpClose))
    sMissing = "')'";
  if (sMissing) SetLastError(tstring("There is no ") + sMissing + " in " + sOperator + " operator");
  return sMissing == nullptr;
}

int CAuditAgent::ProcessSum(const std::vector<audit_rule_unit>& units, int /*nType*/) {
  size_t i = m_nPos;
  if (!FieldArgument(units, "sum")) return -1;
  int nKey = KeyOfAttribute(units[i + 2].val);
  double fSum = 0;
  for (const _tTuple& row : *m_pCurTable) {
    for (const _tKeyVal& kv : row) {
      double f = 0;
      if (nKey >= 0 && kv.key_name_id == nKey && ReadNumber(kv.key_value, f)) fSum += f;
    }
  }
  char sz[64];
  snprintf(sz, sizeof(sz), "%.2lf", fSum);
  m_sLastOperand = sz;
  m_stackValue.push_back(_tComputeValue{2, fSum});
  m_bLastOperandPushed = true;
  m_nPos = i + 3;
  return 1;
}

int CAuditAgent::ProcessInteger(const std::vector<audit_rule_unit>& units, int nType) {
  size_t i = m_nPos;
  if (!FieldArgument(units, "integer")) return -1;
  const _tKeyVal* pValue = FieldValue(units[i + 2].val, nType);
  double f = 0;
  if (pValue == nullptr || sscanf(pValue->key_value.c_str(), "%lf", &f) != 1) {
    SetLastError("Invalid value at " + m_pAudit->GetUnitStr(units[i + 2]));
    return -1;
  }
  m_keyValLast = *pValue;
  m_bLastIsKey = true;
  m_sLastOperand = pValue->key_value;
  m_stackValue.push_back(_tComputeValue{1, std::trunc(f)});
  m_bLastOperandPushed = true;
  m_nPos = i + 3;
  return 1;
}

int CAuditAgent::ProcessBracket() {
  audit_rule_unit closer = m_stackOperator.back();
  m_stackOperator.pop_back();
  int nOpener = closer.val == kOpClose ? kOpOpen : kOpOpenSquare;
  if (m_stackOperator.empty() || !IsOp(m_stackOperator.back(), nOpener)) {
    SetOpLast();
    SetLastError("Left bracket '(' or '[' connot matched @ " + RuleText());
    return -2;
  }
  m_stackOperator.pop_back();
  SetOpLast();
  return 1;
}

int CAuditAgent::Compute(const std::vector<audit_rule_unit>& units) {
  if (m_stackOperator.empty()) return 1;
  audit_rule_unit op = m_stackOperator.back();
  if (op.type == kUnitOperator) {
    if (op.val >= kOpPlus && op.val <= kOpDivide) {
      if (m_stackValue.size() < 2) {
        SetLastError("Arithmetic computation needs two values @ " + RuleText());
        return -1;
      }
      double b = m_stackValue.back().val;
      m_stackValue.pop_back();
      double a = m_stackValue.back().val;
      m_stackValue.pop_back();
      double r = op.val == kOpPlus ? a + b : op.val == kOpMinus ? a - b : op.val == kOpTimes ? a * b : a / b;
      m_stackValue.push_back(_tComputeValue{2, r});
      m_stackOperator.pop_back();
      SetOpLast();
      return 1;
    }
    if (op.val == kOpOpen || op.val == kOpOpenSquare) {
      int nCloser = op.val == kOpOpen ? kOpClose : kOpCloseSquare;
      if (m_nPos >= units.size() || !IsOp(units[m_nPos], nCloser)) {
        SetLastError("Left bracket '(' or '[' connot matched @ " + RuleText());
        return -2;
      }
      m_stackOperator.pop_back();
      m_bConsumed = true;
      SetOpLast();
      return 1;
    }
    if (op.val == kOpClose || op.val == kOpCloseSquare) return ProcessBracket();
    m_stackOperator.pop_back();
    SetOpLast();
    SetLastError("Invalid expression at " + m_pAudit->GetUnitStr(op));
    return -1;
  }
  if (op.type == kUnitRelation) {
    if (m_stackValue.size() < 2) {
      SetLastError("Logic computation operand is not enough " + RuleText());
      return -1;
    }
    double b = m_stackValue.back().val;
    m_stackValue.pop_back();
    double a = m_stackValue.back().val;
    m_stackValue.pop_back();
    double d = a - b;
    bool bNear = std::fabs(d) < kTolerance;
    bool bTrue = false;
    switch (op.val) {
      case kRelEqual: bTrue = d > -kTolerance && d < kTolerance; break;
      case kRelGreater: bTrue = d >= kTolerance; break;
      case kRelLess: bTrue = d <= -kTolerance; break;
      case kRelGreaterEqual: bTrue = d >= kTolerance || bNear; break;
      case kRelLessEqual: bTrue = d <= -kTolerance || bNear; break;
      case kRelNotEqual: bTrue = !bNear; break;
      default: break;
    }
    if (!bTrue) {
      char sz[64];
      snprintf(sz, sizeof(sz), "%.2lf", m_bLastIsKey ? a : b);
      m_sLastValue = sz;
    }
    m_stackValue.push_back(_tComputeValue{2, bTrue ? 1.0 : 0.0});
    m_stackOperator.pop_back();
    SetOpLast();
    return 1;
  }
  if (op.type == kUnitLogic) {
    auto fnTrue = [](double f) { return f != 0.0; };  // NaN != 0 holds
    size_t nNeed = op.val == kLogicNot ? 1 : 2;
    if (m_stackValue.size() < nNeed) {
      SetLastError("Logic computation operand is not enough " + RuleText());
      return -1;
    }
    bool bTrue = false;
    if (op.val == kLogicNot) {
      bTrue = !fnTrue(m_stackValue.back().val);
      m_stackValue.pop_back();
    } else {
      bool b = fnTrue(m_stackValue.back().val);
      m_stackValue.pop_back();
      bool a = fnTrue(m_stackValue.back().val);
      m_stackValue.pop_back();
      bTrue = op.val == kLogicAnd ? (a && b) : (a || b);
    }
    m_stackValue.push_back(_tComputeValue{2, bTrue ? 1.0 : 0.0});
    m_stackOperator.pop_back();
    SetOpLast();
    return 1;
  }
  m_stackOperator.pop_back();
  SetOpLast();
  SetLastError("Invalid expression at " + m_pAudit->GetUnitStr(op));
  return -1;
}

// ---------------------------------------------------------------- standards

bool CAuditAgent::ParseTiaowenHao(const tstring& sText, _tTiaowenHao& hao) {
  hao = _tTiaowenHao();
  tstring s = ToHalfWidth(sText);
  for (size_t i = 0; i < s.size(); ++i) {
    if (!(s[i] >= 'A' && s[i] <= 'Z')) continue;
    if (i > 0 && ((s[i - 1] >= 'A' && s[i - 1] <= 'Z') || (s[i - 1] >= 'a' && s[i - 1] <= 'z'))) continue;
    size_t j = i;
    while (j < s.size() && s[j] >= 'A' && s[j] <= 'Z') ++j;
    tstring sOrg = s.substr(i, j - i);
    // A local code ("DB11/T") belongs to the organisation.
    size_t k = j;
    while (k < s.size() && IsDigit(s[k])) ++k;
    if (k > j && k < s.size() && s[k] == '/') {
      sOrg += s.substr(j, k - j);
      j = k;
    }
    tstring sType = sOrg;
    if (j < s.size() && s[j] == '/') {
      size_t m = j + 1;
      while (m < s.size() && s[m] >= 'A' && s[m] <= 'Z') ++m;
      if (m > j + 1) {
        sType = sOrg + s.substr(j, m - j);
        j = m;
      }
    }
    while (j < s.size() && s[j] == ' ') ++j;
    if (j >= s.size() || !IsDigit(s[j])) continue;
    size_t nStart = j;
    while (j < s.size() && (IsDigit(s[j]) || (s[j] == '.' && j + 1 < s.size() && IsDigit(s[j + 1])))) ++j;
    hao.org = sOrg;
    hao.type = sType;
    hao.sNumber = s.substr(nStart, j - nStart);
    hao.no = 0;
    for (size_t m = nStart; m < j && IsDigit(s[m]) && hao.no < 100000000; ++m) hao.no = hao.no * 10 + (s[m] - '0');
    while (j < s.size() && s[j] == ' ') ++j;
    if (j < s.size() && s[j] == '-') {
      ++j;
      while (j < s.size() && s[j] == ' ') ++j;
      size_t nYear = j;
      int nValue = 0;
      while (j < s.size() && IsDigit(s[j]) && j - nYear < 4) nValue = nValue * 10 + (s[j++] - '0');
      if (j - nYear == 4) hao.year = nValue;
      if (j - nYear == 2 && !(j < s.size() && IsDigit(s[j]))) hao.year = nValue > 30 ? 1900 + nValue : 2000 + nValue;
    }
    return true;
  }
  return false;
}

tstring CAuditAgent::NormaliseStandardName(const tstring& sName, bool& bTrial, int& nPart) {
  bTrial = false;
  nPart = 0;
  tstring s = sName;
  // Cut from "简称" on, with the bracket or comma that opens the note.
  size_t nAbbr = s.find("简称");
  if (nAbbr != tstring::npos) {
    // The nearest opener before "简称"; none: cut at "简称" itself.
    size_t nCut = nAbbr;
    size_t nBest = tstring::npos;
    for (const char* szOpen : {"（", "(", "，", ","}) {
      size_t n = s.rfind(szOpen, nAbbr);
      if (n != tstring::npos && (nBest == tstring::npos || n > nBest)) nBest = n;
    }
    if (nBest != tstring::npos) nCut = nBest;
    s.erase(nCut);
  }
  for (const char* szTrial : {"（试行）", "(试行)", "【试行】", "[试行]"}) {
    size_t n = s.find(szTrial);
    if (n != tstring::npos) {
      bTrial = true;
      s.erase(n, strlen(szTrial));
    }
  }
  if (s.find("试行") != tstring::npos) bTrial = true;
  s = RemoveAll(s, {"《", "》", " ", "\t", "\xE3\x80\x80"});
  size_t nOrdinal = s.find("第");
  if (nOrdinal != tstring::npos) {
    size_t nEnd = s.find("部分", nOrdinal);
    if (nEnd != tstring::npos && nEnd > nOrdinal + 3) {
      tstring sNum = ToHalfWidth(s.substr(nOrdinal + 3, nEnd - nOrdinal - 3));
      int64_t n = 0;
      if (!sNum.empty() && IsDigit(sNum[0]) && sNum.size() < 6) n = atoi(sNum.c_str());
      else if (!ChineseToNumber(sNum, n)) n = 0;
      if (n > 0 && n < 1000000) nPart = (int)n;
    }
  }
  return s;
}

// True when b starts within a few bytes after a ends in the same paragraph
// (room for the title marks and blanks between a name and a number).
static bool StandsBeside(const _tKeyVal& a, const _tKeyVal& b) {
  const unsigned kGap = 12;
  unsigned nEnd = a.offset + (unsigned)a.key_value.size();
  return a.para_id == b.para_id && b.offset + kGap >= nEnd && b.offset <= nEnd + kGap;
}

int CAuditAgent::CheckStandardID(const _tKeyVal& keyVal) {
  if (!m_fnSearch) return 1;
  tstring sKey = KeyName(keyVal.key_name_id);
  const _tKeyVal* pNumber = EqualNoCase(sKey, "Safety_Tiaowenhao") ? &keyVal : NearValue("Safety_Tiaowenhao", keyVal);
  const _tKeyVal* pName = EqualNoCase(sKey, "Safety_Tiaowen") ? &keyVal : NearValue("Safety_Tiaowen", keyVal);
  // A name names this standard only when it stands right beside the number
  // ("《名称》GB 50014-2021", "GB/T 15834-2011《名称》"); a paragraph that cites
  // several standards would otherwise pair a number with another's name.
  if (pName && pNumber && !StandsBeside(*pName, *pNumber) && !StandsBeside(*pNumber, *pName)) pName = nullptr;
  if (pNumber == nullptr && pName == nullptr) return 1;
  m_vecStandards.push_back(keyVal);

  _tTiaowenHao cited;
  bool bHasNumber = pNumber && ParseTiaowenHao(pNumber->key_value, cited);
  if (bHasNumber && cited.year == 0) {
    const _tKeyVal* pDate = NearValue("Safety_Date", keyVal);
    int y = 0, m = 0, d = 0;
    if (pDate && ParseDate(pDate->key_value, y, m, d)) cited.year = y;
  }
  bool bTrial = false;
  int nPart = 0;
  tstring sName = pName ? NormaliseStandardName(pName->key_value, bTrial, nPart) : tstring();
  tstring sQuery;
  if (!sName.empty()) {
    sQuery = "[field] Safety_Tiaowen [whole] " + sName;
  } else if (bHasNumber) {
    sQuery = "[field] Safety_Tiaowen [whole] " + cited.ToString();  // the number stands for the name
  } else {
    return 1;
  }
  std::vector<std::map<tstring, tstring>> vecRecords;
  if (!m_fnSearch(sQuery, false, vecRecords)) return 1;  // unreachable: skipped
  tstring sCited = pName ? pName->key_value : tstring();
  if (bHasNumber) sCited += (sCited.empty() ? "" : " ") + pNumber->key_value;
  tstring sNewNumber;  // a suggestion only when the checked value is the number
  auto fnField = [](const std::map<tstring, tstring>& rec, const char* szKey) {
    auto it = rec.find(szKey);
    return it == rec.end() ? tstring() : it->second;
  };
  if (vecRecords.empty()) {
    AddFinding(keyVal, "2.6", sCited + " not exists in our big data.");
    return 0;
  }
  // Parse every record; find the newest of all and the best match.
  int nNewest = -1, nSameNewest = -1, nExact = -1;
  std::vector<_tTiaowenHao> vecHao(vecRecords.size());
  for (size_t i = 0; i < vecRecords.size(); ++i) {
    ParseTiaowenHao(fnField(vecRecords[i], "Safety_Tiaowenhao"), vecHao[i]);
    if (nNewest < 0 || vecHao[i].year > vecHao[(size_t)nNewest].year) nNewest = (int)i;
    if (bHasNumber && vecHao[i].SameStandard(cited)) {
      if (nSameNewest < 0 || vecHao[i].year > vecHao[(size_t)nSameNewest].year) nSameNewest = (int)i;
      if (vecHao[i].year == cited.year && nExact < 0) nExact = (int)i;
    }
  }
  int nFound = 0;
  if (bHasNumber && nSameNewest >= 0 && cited.year > 0 && vecHao[(size_t)nSameNewest].year > cited.year) {
    const std::map<tstring, tstring>& rec = vecRecords[(size_t)nSameNewest];
    tstring sDate = fnField(rec, "Safety_Date");
    if (sDate.empty()) sDate = std::to_string(vecHao[(size_t)nSameNewest].year);
    tstring sNew = pNumber == &keyVal ? fnField(rec, "Safety_Tiaowenhao") : tstring();
    AddFinding(keyVal, "2.1", sCited + " maybe have new time is " + sDate, 1, sNew);
    ++nFound;
  } else if (bHasNumber && nSameNewest < 0 && !sName.empty()) {
    tstring sRecNumber = fnField(vecRecords[(size_t)nNewest], "Safety_Tiaowenhao");
    if (!sRecNumber.empty()) {
      tstring sNew = pNumber == &keyVal ? sRecNumber : tstring();
      AddFinding(keyVal, "2.8", pNumber->key_value + " should have a new id " + sRecNumber, 1, sNew);
      ++nFound;
    }
  }
  int nBest = nExact >= 0 ? nExact : nSameNewest >= 0 ? nSameNewest : nNewest;
  tstring sMemo = Trim(fnField(vecRecords[(size_t)nBest], "Memo"));
  if (!sMemo.empty()) {
    AddFinding(keyVal, "2.2", sMemo);
    ++nFound;
  }
  return nFound ? 0 : 1;
}

namespace {

// A requirement "≥5m" read into its bounds; false when no number is found.
struct _tRequirement {
  double fLow = -HUGE_VAL, fHigh = HUGE_VAL;
  bool bLowOpen = false, bHighOpen = false;
  bool bRange = false;  // "x~y"
  tstring sUnit;
};

bool ReadRequirement(const tstring& sText, _tRequirement& req) {
  tstring s = Trim(ToHalfWidth(sText));
  s = RemoveAll(s, {" ", "应"});
  int nKind = 0;  // 0 equal, 1 >=, 2 <=, 3 >, 4 <
  struct {
    const char* sz;
    int nKind;
  } kPrefixes[] = {{">=", 1}, {"≥", 1}, {"不小于", 1}, {"不低于", 1}, {"<=", 2}, {"≤", 2},
                   {"不大于", 2}, {"不超过", 2}, {"不高于", 2}, {">", 3}, {"大于", 3}, {"<", 4}, {"小于", 4}};
  for (const auto& p : kPrefixes) {
    if (s.compare(0, strlen(p.sz), p.sz) == 0) {
      nKind = p.nKind;
      s.erase(0, strlen(p.sz));
      break;
    }
  }
  if (s.empty() || !(IsDigit(s[0]) || s[0] == '-' || s[0] == '+')) return false;
  char* pEnd = nullptr;
  double x = strtod(s.c_str(), &pEnd);
  tstring sRest = pEnd ? tstring(pEnd) : tstring();
  double y = x;
  for (const char* szSep : {"~", "～", "-", "至"}) {
    if (nKind == 0 && sRest.compare(0, strlen(szSep), szSep) == 0) {
      tstring sSecond = sRest.substr(strlen(szSep));
      if (!sSecond.empty() && IsDigit(sSecond[0])) {
        y = strtod(sSecond.c_str(), &pEnd);
        sRest = pEnd ? tstring(pEnd) : tstring();
        req.bRange = true;
      }
      break;
    }
  }
  req.sUnit = Trim(sRest);
  switch (nKind) {
    case 1: req.fLow = x; break;
    case 2: req.fHigh = x; break;
    case 3: req.fLow = x; req.bLowOpen = true; break;
    case 4: req.fHigh = x; req.bHighOpen = true; break;
    default: req.fLow = std::min(x, y); req.fHigh = std::max(x, y); break;
  }
  return true;
}

bool Meets(double f, const _tRequirement& req) {
  bool bLow = req.bLowOpen ? f - req.fLow >= kTolerance : f - req.fLow > -kTolerance;
  bool bHigh = req.bHighOpen ? req.fHigh - f >= kTolerance : req.fHigh - f > -kTolerance;
  return bLow && bHigh;
}

}  // namespace

int CAuditAgent::CheckStandardArgument(const _tKeyVal& keyVal) {
  tstring sKey = KeyName(keyVal.key_name_id);
  if (EqualNoCase(sKey, "contract_fee") || EqualNoCase(sKey, "contract_feebig")) {
    bool bFigure = EqualNoCase(sKey, "contract_fee");
    const _tKeyVal* pOther = NearValue(bFigure ? "contract_feebig" : "contract_fee", keyVal);
    if (pOther == nullptr) return 1;
    double fFigure = 0, fWords = 0;
    const tstring& sFigure = bFigure ? keyVal.key_value : pOther->key_value;
    const tstring& sWords = bFigure ? pOther->key_value : keyVal.key_value;
    bool bRead = ReadFigureAmount(sFigure, fFigure) && ReadChineseAmount(sWords, fWords);
    if (bRead && std::fabs(fFigure - fWords) < kTolerance) {
      m_vecArgumentReport.push_back(sFigure + " " + sWords + " 符合");
      return 1;
    }
    m_vecArgumentReport.push_back(sFigure + " " + sWords + " 不符合");
    AddFinding(keyVal, "11.1", sFigure + " " + sWords + " 不符合");
    return 0;
  }
  if (!m_fnSearch) return 1;
  const _tKeyVal* pFile = NearValue("safety_tiaowen", keyVal);
  const _tKeyVal* pSection = NearValue("safety_section", keyVal);
  if (pFile == nullptr || pSection == nullptr || pFile == &keyVal || pSection == &keyVal) return 1;
  bool bTrial = false;
  int nPart = 0;
  tstring sFile = NormaliseStandardName(pFile->key_value, bTrial, nPart);
  tstring sClause = Trim(pSection->key_value);
  m_vecStandards.push_back(*pFile);
  std::vector<std::map<tstring, tstring>> vecRecords;
  tstring sQuery = "[field] file_name [and] " + sFile + " [field] section_no [whole] " + sClause;
  if (!m_fnSearch(sQuery, true, vecRecords)) return 1;
  if (vecRecords.empty()) {
    m_vecArgumentReport.push_back(keyVal.key_value + " 不符合 " + sFile + " " + sClause);
    AddFinding(keyVal, "2.12", keyVal.key_value + " 不符合 " + sFile + " " + sClause);
    return 0;
  }
  tstring sContext = keyVal.org_para_text;
  if (m_pCurTuple)
    for (const _tKeyVal& kv : *m_pCurTuple) sContext += "\n" + kv.key_value;
  const std::map<tstring, tstring>* pRecord = nullptr;
  for (const auto& rec : vecRecords) {
    auto itRow = rec.find("row_name");
    auto itCol = rec.find("col_name");
    bool bRow = itRow == rec.end() || itRow->second.empty() || sContext.find(itRow->second) != tstring::npos;
    bool bCol = itCol == rec.end() || itCol->second.empty() || sContext.find(itCol->second) != tstring::npos;
    if (bRow && bCol) {
      pRecord = &rec;
      break;
    }
  }
  if (pRecord == nullptr) return 1;  // no requirement applies to this value
  auto itValue = pRecord->find("value");
  tstring sRequired = itValue == pRecord->end() ? tstring() : itValue->second;
  _tRequirement req;
  if (!ReadRequirement(sRequired, req)) return 1;
  tstring sValue = Trim(ToHalfWidth(keyVal.key_value));
  double f = 0;
  if (sValue.empty() || !(IsDigit(sValue[0]) || sValue[0] == '-' || sValue[0] == '+')) return 1;
  char* pEnd = nullptr;
  f = strtod(sValue.c_str(), &pEnd);
  tstring sUnit = Trim(pEnd ? tstring(pEnd) : tstring());
  const char* szId = nullptr;
  if (!req.sUnit.empty() && !sUnit.empty() && sUnit != req.sUnit) {
    szId = "2.10";
  } else if (!Meets(f, req)) {
    szId = req.bRange ? "2.11" : "2.9";
  }
  if (szId == nullptr) {
    m_vecArgumentReport.push_back(keyVal.key_value + " 符合 " + sFile + " " + sClause + " " + sRequired);
    return 1;
  }
  m_vecArgumentReport.push_back(keyVal.key_value + " 不符合 " + sFile + " " + sClause + " " + sRequired);
  AddFinding(keyVal, szId, keyVal.key_value + " 不符合 " + sFile + " " + sClause + " " + sRequired);
  return 0;
}
