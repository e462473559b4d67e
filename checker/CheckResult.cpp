#include "checker/CheckResult.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <tuple>
#include <strings.h>

#include "checker/ID2Message.h"
#include "docx/Document.h"
#include "utility/DirBrowser.h"
#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"
#include "utility/JsonText.h"
#include "utility/XmlScan.h"
#include "utility/Utf8.h"

namespace {

const char* const kFieldNames[] = {"font", "fontSize", "text", "level", "line_space", "content"};
const char kReviseLetters[] = "IUDCM";

const char* FieldName(int nField) { return nField >= 0 && nField < 6 ? kFieldNames[nField] : ""; }
char ReviseLetter(int nType) { return nType >= 0 && nType < 5 ? kReviseLetters[nType] : '?'; }

tstring Format(const char* sFormat, double f) {
  char s[64];
  snprintf(s, sizeof(s), sFormat, f);
  return s;
}

// The field name back to its id, by its letters only.
int FieldFromName(const tstring& sName) {
  if (sName.empty()) return 0;
  switch (sName[0]) {
    case 'f': return sName.size() > 4 ? 1 : 0;
    case 't': return 2;
    case 'l': return sName.size() > 1 && sName[1] == 'e' ? 3 : 4;
    case 'c': return 5;
    default: return 0;
  }
}

int ReviseFromLetter(const tstring& sLetter) {
  const char* p = sLetter.empty() ? nullptr : strchr(kReviseLetters, sLetter[0]);
  return p ? (int)(p - kReviseLetters) : 0;
}

// A JSON string's text from after its opening quote; false when it is not
// closed before pEnd.
bool UnquoteJson(const char* p, const char* pEnd, tstring& sValue) {
  sValue.clear();
  while (p < pEnd && *p != '"') {
    if (*p != '\\') {
      sValue.push_back(*p++);
      continue;
    }
    if (++p >= pEnd) return false;
    char c = *p++;
    switch (c) {
      case 'n': sValue.push_back('\n'); break;
      case 'r': sValue.push_back('\r'); break;
      case 't': sValue.push_back('\t'); break;
      case 'b': sValue.push_back('\b'); break;
      case 'f': sValue.push_back('\f'); break;
      case 'u': {
        auto fnHex = [&](uint32_t& n) {
          if (pEnd - p < 4) return false;
          n = (uint32_t)strtoul(tstring(p, 4).c_str(), nullptr, 16);
          p += 4;
          return true;
        };
        uint32_t n = 0, nLow = 0;
        if (!fnHex(n)) return false;
        if (n >= 0xD800 && n <= 0xDBFF && pEnd - p >= 6 && p[0] == '\\' && p[1] == 'u') {
          p += 2;
          if (fnHex(nLow) && nLow >= 0xDC00 && nLow <= 0xDFFF) n = 0x10000 + ((n - 0xD800) << 10) + (nLow - 0xDC00);
        }
        AppendUtf8(sValue, n);
        break;
      }
      default: sValue.push_back(c); break;  // \" \\ \/
    }
  }
  return p < pEnd;
}

// The item of a record before pEnd: the text of <sName>...</sName> (XML) or
// the value of "sName": (JSON, a quoted string or a bare number).
bool Item(const char* p, const char* pEnd, const char* sName, bool bJson, tstring& sValue) {
  if (!bJson) return ElementText(p, pEnd, sName, sValue) != nullptr;
  // A key is a quoted name followed by ':'; the same text as a value is not one.
  tstring sKey = tstring("\"") + sName + "\"";
  const char* q = nullptr;
  for (const char* pKey = FindIn(p, pEnd, sKey.c_str()); pKey; pKey = FindIn(pKey + 1, pEnd, sKey.c_str())) {
    q = pKey + sKey.size();
    while (q < pEnd && (*q == ' ' || *q == '\t' || *q == '\r' || *q == '\n')) ++q;
    if (q < pEnd && *q == ':') break;
    q = nullptr;
  }
  if (q == nullptr) return false;
  ++q;
  while (q < pEnd && (*q == ' ' || *q == '\t' || *q == '\r' || *q == '\n')) ++q;
  if (q >= pEnd) return false;
  if (*q == '"') return UnquoteJson(q + 1, pEnd, sValue);
  const char* pStop = q;
  while (pStop < pEnd && *pStop != ',' && *pStop != '}' && *pStop != '\n') ++pStop;
  sValue.assign(q, pStop);
  return true;
}

}  // namespace

bool _tCheckResult::operator==(const _tCheckResult& o) const {
  if (para_id != o.para_id || field_id != o.field_id || offset != o.offset || error_id != o.error_id) return false;
  return !org_str.empty() ? org_str == o.org_str : o.org_str.empty() && new_str == o.new_str;
}

void _tCheckResult::output(tstring& s) const {
  s += "<check>\r\n<paraId>" + ParaIdText(para_id) + "</paraId>\r\n<page_num>" + std::to_string(page_num) + "</page_num>\r\n";
  if (revise_type == 3 && new_para_id != 0) s += "<new_paraId>" + ParaIdText(new_para_id) + "</new_paraId>\r\n";
  s += "<errorno>" + error_id + "</errorno>\r\n<errormsg>" + error_msg + "</errormsg>\r\n<field>" + FieldName(field_id) +
       "</field>\r\n<text>" + text + "</text>\r\n<revisetype>" + ReviseLetter(revise_type) + "</revisetype>\r\n<offset>" +
       std::to_string(offset) + "</offset>\r\n<OrgStr>" + org_str + "</OrgStr>\r\n<NewStr>" + new_str +
       "</NewStr>\r\n</check>\r\n";
}

void _tCheckResult::outputJson(Json::Value& value) const {
  value["paraId"] = ParaIdText(para_id);
  value["page_num"] = page_num;
  if (revise_type == 3 && new_para_id != 0) value["new_paraId"] = ParaIdText(new_para_id);
  value["errorno"] = error_id;
  value["errormsg"] = error_msg;
  value["field"] = FieldName(field_id);
  value["text"] = text;
  value["revisetype"] = tstring(1, ReviseLetter(revise_type));
  value["offset"] = offset;
  value["OrgStr"] = org_str;
  value["NewStr"] = new_str;
}

void _tCheckResult::input(const char* pRecord, bool bJson) {
  Reset();
  // The end of this record, found before anything is measured to the end of
  // the text: records are read one after another from one long file.
  const char* pStop = bJson ? strchr(pRecord, '}') : strstr(pRecord, "</check>");
  const char* pEnd = pStop ? pStop : pRecord + strlen(pRecord);
  tstring s;
  if (Item(pRecord, pEnd, "paraId", bJson, s)) para_id = (uint32_t)strtoul(s.c_str(), nullptr, 16);
  if (Item(pRecord, pEnd, "page_num", bJson, s)) page_num = atoi(s.c_str());
  if (Item(pRecord, pEnd, "offset", bJson, s)) offset = (uint32_t)strtoul(s.c_str(), nullptr, 10);
  if (Item(pRecord, pEnd, "new_paraId", bJson, s)) new_para_id = (uint32_t)strtoul(s.c_str(), nullptr, 16);
  Item(pRecord, pEnd, "errorno", bJson, error_id);
  Item(pRecord, pEnd, "errormsg", bJson, error_msg);
  Item(pRecord, pEnd, "OrgStr", bJson, org_str);
  Item(pRecord, pEnd, "NewStr", bJson, new_str);
  if (Item(pRecord, pEnd, "text", bJson, s)) text = s;
  if (Item(pRecord, pEnd, "field", bJson, s)) field_id = FieldFromName(s);
  if (Item(pRecord, pEnd, "revisetype", bJson, s)) revise_type = ReviseFromLetter(s);
}

void CCheckResult::AddOnParagraph(const _tParagraph& para, const char* szErrorId, int nField, int nReviseType,
                                  const tstring& sOrg, const tstring& sNew) {
  _tCheckResult result;
  result.para_id = para.id;
  result.page_num = para.page_num;
  result.text = para.text;
  result.error_id = szErrorId;
  result.field_id = nField;
  result.revise_type = nReviseType;
  result.org_str = sOrg;
  result.new_str = sNew;
  AddResult(result);
}

void CCheckResult::AddResult(_tCheckResult& result) {
  tstring& s = result.org_str;
  while (!s.empty() && (s.back() == ' ' || s.back() == '\r' || s.back() == '\t' || s.back() == '\n')) s.pop_back();
  if (s.empty() && result.field_id == 0) return;
  if (result.revise_type == 1 && !result.new_str.empty() && result.new_str == s) return;
  if (result.error_msg.empty()) result.error_msg = Message(result.error_id);
  m_vecResult.push_back(result);
  m_bSort = false;
}

tstring CCheckResult::Message(const tstring& sErrorId) const {
  return m_pMessages ? tstring(m_pMessages->GetText(sErrorId.c_str())) : "Wrong text id " + sErrorId;
}

void CCheckResult::SortResult() {
  m_nErrCount = 0;
  // Place first, then everything equality looks at: findings equal by
  // operator== are then neighbours, which the walk below relies on.
  auto fnKey = [](const _tCheckResult& r) {
    return std::tie(r.para_id, r.offset, r.field_id, r.error_id, r.org_str, r.new_str);
  };
  if (!m_bSort)
    std::sort(m_vecResult.begin(), m_vecResult.end(),
              [&](const _tCheckResult& a, const _tCheckResult& b) { return fnKey(a) < fnKey(b); });
  m_mapErrId2FreqScore.clear();
  m_mapChapID2freq.clear();
  for (size_t i = m_vecResult.size(); i-- > 0;) {
    if (i > 0 && m_vecResult[i] == m_vecResult[i - 1]) {
      m_vecResult.erase(m_vecResult.begin() + i);
      continue;
    }
    const _tCheckResult& result = m_vecResult[i];
    ++m_mapErrId2FreqScore[result.error_id].freq;
    if (m_pDocParser) {
      uint32_t nChapter = m_pDocParser->LocateChapterID(result.para_id);
      if (nChapter != 0) ++m_mapChapID2freq[nChapter];
    }
    ++m_nErrCount;
  }
  m_bSort = true;
}

void CCheckResult::Reset() {
  m_vecResult.clear();
  m_mapErrId2FreqScore.clear();
  m_mapChapID2freq.clear();
  m_nErrCount = 0;
  m_bSort = false;
}

size_t CCheckResult::Remove(const char* sErrorId) {
  tstring sId = sErrorId ? sErrorId : "";
  size_t nBefore = m_vecResult.size();
  m_vecResult.erase(std::remove_if(m_vecResult.begin(), m_vecResult.end(),
                                   [&](const _tCheckResult& r) { return r.error_id == sId; }),
                    m_vecResult.end());
  return nBefore - m_vecResult.size();
}

std::vector<CCheckResult::_tScoreLine> CCheckResult::ScoreLines(double& fTotalScore) const {
  std::vector<_tScoreLine> vecLines;
  double fDeduction = 0;
  for (const auto& kv : m_mapErrId2FreqScore) {
    _tScoreLine line;
    line.id = kv.first;
    line.count = kv.second.freq;
    line.max = 0;
    line.each = m_pMessages ? m_pMessages->GetScore(kv.first.c_str(), line.max) : 0;
    line.message = Message(kv.first);
    line.score = std::min(line.count * line.each, line.max);
    fDeduction += line.score;
    vecLines.push_back(line);
  }
  fTotalScore = std::max(0.0, 100.0 - fDeduction);
  return vecLines;
}

const char* CCheckResult::GetResult(const char* sPath, const char* sFilename, int nReportType, const char* sURLPrefix,
                                    const CDocument* pDoc) {
  m_pDocParser = pDoc;
  m_nReportType = nReportType;
  tstring s = "<CheckResults>\r\n<docxPath>" + tstring(sPath ? sPath : "") + "</docxPath>\r\n<docxFile>" +
              tstring(sFilename ? sFilename : "") + "</docxFile>\r\n<reportType>" + std::to_string(nReportType) +
              "</reportType>\r\n<url_prefix>" + tstring(sURLPrefix ? sURLPrefix : "") +
              "</url_prefix>\r\n<template_organization>" + m_templateKeys.organization + "</template_organization>\r\n<template_area>" +
              m_templateKeys.area + "</template_area>\r\n<template_argu>" + m_templateKeys.argument + "</template_argu>\r\n";
  m_sURLPrefix = sURLPrefix ? sURLPrefix : "";
  m_sPath = sPath ? sPath : "";
  m_sFilename = sFilename ? sFilename : "";
  SortResult();
  tstring sFindings;
  for (size_t i = 0; i < m_vecResult.size(); ++i)
    if (i == 0 || !(m_vecResult[i] == m_vecResult[i - 1])) m_vecResult[i].output(sFindings);
  double fTotal = 0;
  std::vector<_tScoreLine> vecLines = ScoreLines(fTotal);
  s += "<Statistics>\r\n<TotalCount>" + std::to_string(m_nErrCount) + "</TotalCount>\r\n<ErrorTypeCount>" +
       std::to_string(m_mapErrId2FreqScore.size()) + "</ErrorTypeCount>\r\n";
  for (const _tScoreLine& line : vecLines)
    s += "<record>\r\n<errorno>" + line.id + "</errorno>\r\n<errormsg>" + line.message + "</errormsg>\r\n<count>" +
         std::to_string(line.count) + "</count>\r\n<each_score>" + Format("%.2f", line.each) + "</each_score>\r\n<max_score>" +
         Format("%.2f", line.max) + "</max_score>\r\n<score>" + Format("%.2f", line.score) + "</score>\r\n</record>\r\n";
  s += "<TotalScore>" + Format("%.2lf", fTotal) + "</TotalScore>\r\n</Statistics>\r\n";
  s += "<ChapterStat>\r\n<ChapterCount>" + std::to_string(m_mapChapID2freq.size()) + "</ChapterCount>\r\n";
  for (const auto& kv : m_mapChapID2freq)
    s += "<chapter>\r\n<paraId>" + ParaIdText(kv.first) + "</paraId>\r\n<text>" + (m_pDocParser ? m_pDocParser->GetText(kv.first) : tstring()) +
         "</text>\r\n<error_count>" + std::to_string(kv.second) + "</error_count>\r\n</chapter>\r\n";
  s += "</ChapterStat>\r\n<Errors>\r\n" + sFindings + "</Errors>\r\n</CheckResults>\r\n";
  m_sResult = s;
  return m_sResult.c_str();
}

const char* CCheckResult::GetResultJson(const char* sPath, const char* sFilename, int nReportType,
                                        const char* sURLPrefix, const CDocument* pDoc) {
  m_pDocParser = pDoc;
  m_nReportType = nReportType;
  Json::Value root;
  root["docxPath"] = sPath ? sPath : "";
  root["docxFile"] = sFilename ? sFilename : "";
  root["url_prefix"] = sURLPrefix ? sURLPrefix : "";
  root["reportType"] = nReportType;
  root["template_organization"] = m_templateKeys.organization;
  root["template_area"] = m_templateKeys.area;
  root["template_argu"] = m_templateKeys.argument;
  m_sURLPrefix = sURLPrefix ? sURLPrefix : "";
  m_sPath = sPath ? sPath : "";
  m_sFilename = sFilename ? sFilename : "";
  SortResult();
  Json::Value& errors = root["Errors"] = Json::Value(Json::arrayValue);
  for (size_t i = 0; i < m_vecResult.size(); ++i)
    if (i == 0 || !(m_vecResult[i] == m_vecResult[i - 1])) {
      Json::Value item;
      m_vecResult[i].outputJson(item);
      errors.append(item);
    }
  double fTotal = 0;
  Json::Value& stats = root["Statistics"];
  stats["TotalCount"] = m_nErrCount;
  stats["ErrorTypeCount"] = (Json::UInt64)m_mapErrId2FreqScore.size();
  stats["records"] = Json::Value(Json::arrayValue);
  for (const _tScoreLine& line : ScoreLines(fTotal)) {
    Json::Value record;
    record["errorno"] = line.id;
    record["count"] = line.count;
    record["errormsg"] = line.message;
    record["each_score"] = line.each;
    record["max_score"] = line.max;
    record["score"] = line.score;
    stats["records"].append(record);
  }
  stats["TotalScore"] = fTotal;
  Json::Value& chapters = root["ChapterStat"];
  chapters["ChapterCount"] = (Json::UInt64)m_mapChapID2freq.size();
  chapters["chapter"] = Json::Value(Json::arrayValue);
  for (const auto& kv : m_mapChapID2freq) {
    Json::Value chapter;
    chapter["paraId"] = ParaIdText(kv.first);
    chapter["text"] = m_pDocParser ? m_pDocParser->GetText(kv.first) : tstring();
    chapter["error_count"] = kv.second;
    chapters["chapter"].append(chapter);
  }
  m_sResult = JsonText(root);
  return m_sResult.c_str();
}

int CCheckResult::GetResultFile(const char* sFilename) {
  tstring sName = sFilename ? sFilename : "";
  FILE* fp = fopen(sName.c_str(), "wb");
  if (fp == nullptr) {
    SetLastError("Fail write file " + sName);
    return 0;
  }
  fprintf(fp, "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n<Docx>%s</Docx>", m_sFilename.c_str());
  fclose(fp);
  return 1;
}

int CCheckResult::Import(const char* sFilename) {
  tstring sName = sFilename ? sFilename : "", sDir, sBase, sExt;
  SplitPath(sName, sDir, sBase, sExt);
  if (strcasecmp(sExt.c_str(), "json") == 0) return ImportJsonFile(sName.c_str());
  tstring sText;
  if (!ReadFileText(sName, sText)) {
    SetLastError("Failed Read file " + sName);
    return -1;
  }
  const char* p = sText.c_str();
  const char* pEnd = p + sText.size();
  tstring s;
  if (Item(p, pEnd, "docxPath", false, s)) m_sPath = s;
  if (Item(p, pEnd, "docxFile", false, s)) m_sFilename = s;
  if (Item(p, pEnd, "url_prefix", false, s)) m_sURLPrefix = s;
  if (Item(p, pEnd, "reportType", false, s)) m_nReportType = atoi(s.c_str());
  m_vecResult.clear();
  for (const char* pCheck = strstr(p, "<check>"); pCheck;) {
    _tCheckResult result;
    result.input(pCheck, false);
    m_vecResult.push_back(result);
    const char* pClose = strstr(pCheck, "</check>");
    if (pClose == nullptr) break;
    pCheck = strstr(pClose, "<check>");
  }
  m_bSort = false;
  SortResult();
  return 1;
}

int CCheckResult::ImportJsonFile(const char* sFilename) {
  tstring sName = sFilename ? sFilename : "";
  Json::Value root;
  if (!ReadJsonObjectFile(sName, root)) {
    SetLastError("Failed Read file " + sName);
    return -1;
  }
  auto fnString = [&](const char* sKey) { return root[sKey].isString() ? root[sKey].asString() : tstring(); };
  m_sPath = fnString("docxPath");
  m_sFilename = fnString("docxFile");
  m_sURLPrefix = fnString("url_prefix");
  m_nReportType = root["reportType"].isInt() ? root["reportType"].asInt() : 0;
  m_vecResult.clear();
  if (root["Errors"].isArray())
    for (const Json::Value& item : root["Errors"]) {
      if (!item.isObject()) continue;
      _tCheckResult result;
      result.input(JsonText(item, false).c_str(), true);
      m_vecResult.push_back(result);
    }
  m_bSort = false;
  SortResult();
  return 1;
}
