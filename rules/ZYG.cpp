#include "rules/ZYG.h"

#include <algorithm>
#include <cstdio>
#include <set>

#include "rules/KnowledgeParser.h"
#include "rules/RuleText.h"
#include "utility/CountryDetect.h"
#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"
#include "utility/JsonText.h"
#include "utility/lexical/Lexical.h"

const char* const kZYGActionNames[kActionCount] = {
    "insert",          "update",          "delete",        "extract",         "convert",
    "tableextract",    "sectionextract",  "paragraphextract", "title_extract", "between_extract",
    "unit_extract",    "email_extract",   "country_extract", "format_extract", "generate_tuple",
    "generate_singlekey", "generate_date"};
const char* const kZYGFieldNames[kFieldCount] = {"text",   "SingleRow", "RowHead", "ColHead",
                                                 "RowColHead", "header", "footer", "title",
                                                 "title1", "title2", "title3"};
const char* const kZYGKGRoleNames[kKGRoleCount] = {"",         "attribute", "showname", "head", "tail",
                                                   "relation", "keyword",   "entity",   ""};
const char* const kZYGDefaultKeys[kDefaultKeyCount] = {"single_date", "tablename", "sum", "count", "max"};

namespace {

const char kUserDictFile[] = "zyg_userdict.txt";

bool IsGenerating(int nAction) { return nAction >= kActionGenerateTuple && nAction < kActionCount; }
bool IsTagElement(const tstring& sElem) { return !sElem.empty() && sElem[0] == '/'; }

bool IsAttributeChar(unsigned char c) {
  return c >= 0x80 || (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
         c == '-' || c == '.';
}

tstring Trim(const tstring& s) {
  size_t b = s.find_first_not_of(" \t\r\n");
  if (b == tstring::npos) return "";
  return s.substr(b, s.find_last_not_of(" \t\r\n") - b + 1);
}

}  // namespace

CZYG::CZYG(const char* sPath, int nId) : m_sPath(sPath ? sPath : ""), m_nZYG_ID(nId) { ClearCompiled(); }

CZYG::~CZYG() = default;

tstring CZYG::GetFilename(const char* sExt) const {
  return m_sPath + "ZYG_" + std::to_string(m_nZYG_ID) + "." + sExt;
}

int CZYG::GetActionId(const tstring& sName) {
  for (int i = 0; i < kActionCount; ++i)
    if (sName == kZYGActionNames[i]) return i;
  return -1;
}

const char* CZYG::GetActionStr(int nId) { return nId >= 0 && nId < kActionCount ? kZYGActionNames[nId] : ""; }

int CZYG::GetFieldId(const tstring& sName) const {
  for (int i = 0; i < kFieldCount; ++i)
    if (sName == kZYGFieldNames[i]) return i;
  int nKey = m_dict.GetId(sName);
  return nKey < 0 ? -1 : kFieldKeyBase + nKey;
}

tstring CZYG::GetFieldStr(int nId) const {
  if (nId >= 0 && nId < kFieldCount) return kZYGFieldNames[nId];
  return nId >= kFieldKeyBase ? GetTerm(nId - kFieldKeyBase) : "";
}

bool CZYG::ExtractAttribute(const tstring& sExpr, tstring& sAttribute, tstring& sName) {
  size_t nBar = sExpr.find('|');
  sAttribute = Trim(sExpr.substr(0, nBar));
  sName = nBar == tstring::npos ? "" : Trim(sExpr.substr(nBar + 1));
  if (sName.empty()) sName = sAttribute;
  if (sAttribute.empty()) return false;
  return std::all_of(sAttribute.begin(), sAttribute.end(), [](char c) { return IsAttributeChar((unsigned char)c); });
}

void CZYG::ClearCompiled() {
  m_intPool.Clear();
  m_strPool.Clear();
  m_dict.Clear();
  m_wordList.Clear();
  m_attributeDict.Clear();
  m_attributeWords.Clear();
  m_attributeNames.Clear();
  m_vecIndex.clear();
  m_vecCompiled.clear();
  m_nIndexItemCount = 0;
  m_dict.BeginAdd();
  m_attributeDict.BeginAdd();
  SetDefaultKeys();
  m_dict.FinishAdd();
  m_attributeDict.FinishAdd();
}

void CZYG::SetDefaultKeys() {
  int* pKeys[kDefaultKeyCount] = {&m_nDateKeyID, &m_nTableNameKeyID, &m_nSumKeyID, &m_nCountKeyID, &m_nMaxKeyID};
  for (int i = 0; i < kDefaultKeyCount; ++i) *pKeys[i] = AddTerm(kZYGDefaultKeys[i]);
  AddTerm("/LB");
  AddTerm("/LE");
}

int CZYG::AddTerm(const tstring& sWord) {
  int nId = m_dict.AddWord(sWord);
  if (nId >= 0) m_wordList.AddWord(sWord, nId);
  return nId;
}

int CZYG::AddField(const tstring& sName) {
  for (int i = 0; i < kFieldCount; ++i)
    if (sName == kZYGFieldNames[i]) return i;
  int nKey = AddTerm(sName);
  return nKey < 0 ? kFieldText : kFieldKeyBase + nKey;
}

int CZYG::AddAttribute(const tstring& sExpr) {
  tstring sAttribute, sName;
  if (!ExtractAttribute(sExpr, sAttribute, sName)) {
    SetLastError(sExpr + " Is invalid attribute name");
    return -1;
  }
  int nId = m_attributeDict.AddWord(sAttribute);
  m_attributeWords.AddWord(sAttribute, nId);
  if (sName != sAttribute || !*m_attributeNames.GetWord(nId)) m_attributeNames.AddWord(sName, nId);
  AddTerm(sAttribute);
  return nId;
}

bool CZYG::CompileRule(const _tRuleOrg& org, _tRule& rule, std::vector<tstring>& vecUserWords) {
  const bool bGenerating = IsGenerating(org.action_id);
  rule.rule_no_id = (uint32_t)m_strPool.Add(org.no);
  rule.name_id = (uint32_t)m_strPool.Add(org.name);
  std::vector<int32_t> vecKnowledgeSteps(org.rule.vecSteps.begin(), org.rule.vecSteps.end());
  for (const _tGridOrg& gridOrg : org.rule.vecGrids) {
    _tGrid grid;
    for (const _tBlockOrg& blockOrg : gridOrg.vecBlocks) {
      std::vector<int32_t> vecElems;
      for (const tstring& sElem : blockOrg.vecElems) {
        int nId = bGenerating ? AddAttribute(sElem) : AddTerm(sElem);
        if (bGenerating && nId < 0) return false;
        vecElems.push_back(nId);
        if (!bGenerating && !sElem.empty() && !IsTagElement(sElem)) vecUserWords.push_back(sElem);
      }
      _tBlock block;
      block.elems = m_intPool.Append(vecElems);
      block.is_not = blockOrg.is_not;
      grid.blocks.push_back(block);
    }
    grid.repeats = m_intPool.Append(std::vector<int32_t>(gridOrg.vecRepeats.begin(), gridOrg.vecRepeats.end()));
    grid.steps = m_intPool.Append(std::vector<int32_t>(gridOrg.vecSteps.begin(), gridOrg.vecSteps.end()));
    grid.is_selected = gridOrg.is_selected;
    rule.knowledge.grids.push_back(grid);
  }
  rule.knowledge.steps = m_intPool.Append(vecKnowledgeSteps);
  rule.knowledge.text_id = (uint32_t)m_strPool.Add(org.rule.text);
  rule.action_id = (uint32_t)org.action_id;
  std::vector<int32_t> vecArguments;
  for (const tstring& sArgument : org.arguments) {
    if (AddAttribute(sArgument) < 0) return false;
    vecArguments.push_back((int32_t)m_strPool.Add(sArgument));
  }
  rule.arguments_id = m_intPool.Append(vecArguments);
  rule.RegExs_id = m_intPool.Append({});
  for (const _tField2KG& kg : org.vecField2KG) {
    _tFieldID2KG compiled;
    compiled.field_name_id = (int32_t)m_strPool.Add(kg.field_name);
    compiled.type = kg.type;
    rule.pField2KG.push_back(compiled);
  }
  std::vector<int32_t> vecKeys;
  for (const tstring& sKey : org.vecKeyname) vecKeys.push_back(AddTerm(sKey));
  rule.keys_id = m_intPool.Append(vecKeys);
  rule.credit = org.credit;
  rule.frequency = org.frequency;
  rule.field = (uint32_t)AddField(org.sField);
  return true;
}

int CZYG::Org2Knowledge() {
  ClearCompiled();
  m_dict.BeginAdd();
  m_attributeDict.BeginAdd();
  std::vector<tstring> vecUserWords;
  bool bOk = true;
  for (const _tRuleOrg& org : m_vecRule) {
    m_vecCompiled.emplace_back();
    if (!CompileRule(org, m_vecCompiled.back(), vecUserWords)) {
      bOk = false;
      break;
    }
  }
  m_dict.FinishAdd();
  m_attributeDict.FinishAdd();
  if (!bOk) return -1;
  Indexing();
  ImportUserWords(vecUserWords, true);
  return (int)m_vecCompiled.size();
}

void CZYG::ImportUserWords(const std::vector<tstring>& vecWords, bool bWriteFile) {
  tstring sText;
  std::set<tstring> setSeen;
  for (const tstring& sWord : vecWords)
    if (setSeen.insert(sWord).second) sText += (sWord.find(' ') != tstring::npos ? "[" + sWord + "]" : sWord) + "\tZYG\n";
  if (bWriteFile && !m_sPath.empty()) {
    tstring sFile = m_sPath + kUserDictFile;
    if (!WriteFileReplacing(sFile, [&](FILE* fp) { return fwrite(sText.data(), 1, sText.size(), fp) == sText.size(); }))
      WriteError(tstring("Failed while opening file ") + kUserDictFile);
  }
  if (sText.empty()) return;
  int nCount = QUENDA_ImportUserText(sText, false);
  if (bWriteFile && nCount > 0) printf("Successfully imported %d items from zyg userdict.txt\n", nCount);
}

const int32_t* CZYG::GetInts(const _tIntArray& range, size_t& nCount) const {
  nCount = 0;
  if (range.start < 0 || range.end <= range.start || (size_t)range.end > m_intPool.GetSize()) return nullptr;
  nCount = (size_t)(range.end - range.start);
  return m_intPool.Data() + range.start;
}

int32_t CZYG::GetInt(const _tIntArray& range, size_t nAt, int32_t nDefault) const {
  size_t nCount = 0;
  const int32_t* p = GetInts(range, nCount);
  return nAt < nCount ? p[nAt] : nDefault;
}

const _tZYGIndex* CZYG::GetPostings(int nTermId) const {
  if (nTermId < 0 || (size_t)nTermId >= m_vecIndex.size() || m_vecIndex[nTermId].pData.empty()) return nullptr;
  return &m_vecIndex[nTermId];
}

void CZYG::Indexing() {
  m_vecTagTerm.assign(m_dict.GetCount(), 0);
  for (size_t t = 0; t < m_vecTagTerm.size(); ++t) m_vecTagTerm[t] = IsTagElement(GetTerm((int)t));
  m_vecIndex.assign(m_dict.GetCount(), _tZYGIndex());
  m_nIndexItemCount = 0;
  for (size_t r = 0; r < m_vecCompiled.size(); ++r) {
    const _tRule& rule = m_vecCompiled[r];
    if (IsGenerating((int)rule.action_id)) continue;
    int nBack = 0;
    for (size_t g = 0; g < rule.knowledge.grids.size(); ++g) {
      const _tGrid& grid = rule.knowledge.grids[g];
      for (size_t b = 0; b < grid.blocks.size(); ++b) {
        size_t nElems = 0;
        const int32_t* pElems = GetInts(grid.blocks[b].elems, nElems);
        for (size_t e = 0; e < nElems; ++e) {
          if (pElems[e] < 0 || (size_t)pElems[e] >= m_vecIndex.size()) continue;
          _tZYGIndexData data;
          data.knowledge_index = (int32_t)r;
          data.grid_index = (int32_t)g;
          data.block_index = (int32_t)b;
          data.back_count = nBack;
          ComputeSkipList(r, data);
          m_vecIndex[pElems[e]].pData.push_back(data);
          ++m_nIndexItemCount;
        }
        nBack += std::max(0, GetInt(grid.repeats, b, 1));
      }
    }
  }
}

void CZYG::ComputeSkipList(size_t nRule, _tZYGIndexData& data) const {
  const _tRule& rule = m_vecCompiled[nRule];
  for (size_t g = 0; g < rule.knowledge.grids.size(); ++g) {
    const _tGrid& grid = rule.knowledge.grids[g];
    for (size_t b = 0; b < grid.blocks.size(); ++b) {
      if ((int)g == data.grid_index && (int)b == data.block_index) continue;
      if (grid.blocks[b].is_not || GetInt(grid.repeats, b, 1) <= 0) continue;
      size_t nElems = 0;
      const int32_t* pElems = GetInts(grid.blocks[b].elems, nElems);
      bool bUsable = nElems > 0;
      for (size_t e = 0; e < nElems && bUsable; ++e) bUsable = pElems[e] >= 0 && !IsTagTerm(pElems[e]);
      if (!bUsable) continue;
      data.skiplist.insert(data.skiplist.end(), pElems, pElems + nElems);
      data.skiplist.push_back(-1);
    }
  }
}

bool CZYG::IsPartOfRule(int nRule, int nTerm) const {
  std::vector<int> vecTerms;
  GetRuleTermIDVector(nRule, vecTerms);
  return std::find(vecTerms.begin(), vecTerms.end(), nTerm) != vecTerms.end();
}

void CZYG::GetRuleTermIDVector(int nRule, std::vector<int>& vecTerms) const {
  vecTerms.clear();
  if (nRule < 0 || (size_t)nRule >= m_vecCompiled.size() || IsGenerating((int)m_vecCompiled[nRule].action_id)) return;
  for (const _tGrid& grid : m_vecCompiled[nRule].knowledge.grids)
    for (const _tBlock& block : grid.blocks) {
      size_t nElems = 0;
      const int32_t* pElems = GetInts(block.elems, nElems);
      for (size_t e = 0; e < nElems; ++e)
        if (std::find(vecTerms.begin(), vecTerms.end(), pElems[e]) == vecTerms.end()) vecTerms.push_back(pElems[e]);
    }
}

int CZYG::GetRuleIndex(const tstring& sNo) const {
  for (size_t i = 0; i < m_vecRule.size(); ++i)
    if (m_vecRule[i].no == sNo) return (int)i;
  return -1;
}

bool CZYG::CheckRule(const _tRuleOrg& rule, int nSkipIndex) const {
  int nExisting = GetRuleIndex(rule.no);
  if (nExisting >= 0 && nExisting != nSkipIndex) {
    SetLastError("RuleNo" + rule.no + ":" + rule.name + " is already exists and cannot be added, see Rule" +
                 m_vecRule[nExisting].no);
    return false;
  }
  if (rule.action_id == kActionGenerateSingleKey && (rule.vecKeyname.size() != 1 || rule.arguments.size() != 2)) {
    SetLastError("SingleKeyVal rule only include one key, and argument number must be 2.");
    return false;
  }
  if (rule.action_id == kActionCountryExtract && !CountryDetect_IsOn()) {
    SetLastError("ZYG-Configure.json must set CountryDetect on before execute country_extract ");
    return false;
  }
  return true;
}

int CZYG::Commit(std::vector<_tRuleOrg>& vecOld) {
  m_bIsModified = true;
  tstring sError;
  if (Org2Knowledge() < 0 || (!m_sPath.empty() && Save() != 1)) {
    sError = GetLastError();
    m_vecRule.swap(vecOld);
    Org2Knowledge();
    SetLastError(sError);
    return -1;
  }
  m_bIsModified = false;
  return 1;
}

int CZYG::ImportRule(const char* sXMLFile, bool bOverwrite) {
  tstring sText;
  if (sXMLFile == nullptr || !ReadFileText(sXMLFile, sText)) {
    SetLastError(tstring("Cannot read file ") + (sXMLFile ? sXMLFile : ""));
    return -1;
  }
  return ImportItems(sText, bOverwrite);
}

int CZYG::ImportRuleFromMem(const char* pText, bool bOverwrite) {
  return ImportItems(pText ? pText : "", bOverwrite);
}

int CZYG::ImportItems(const tstring& sText, bool bOverwrite) {
  m_bOverwrite = bOverwrite;
  std::vector<_tRuleOrg> vecOld = m_vecRule;
  if (bOverwrite) m_vecRule.clear();
  int nAdded = 0;
  tstring sRefused;  // the last refusal, kept as the last error
  for (size_t nStart = sText.find("<item>"); nStart != tstring::npos; nStart = sText.find("<item>", nStart)) {
    size_t nEnd = sText.find("</item>", nStart);
    if (nEnd == tstring::npos) {
      sRefused = "Cannot locate </item>";
      WriteError(sRefused);
      break;
    }
    _tRuleOrg rule;
    tstring sError;
    bool bOk = CRuleText::XML2RuleOrg(sText.substr(nStart + 6, nEnd - nStart - 6), rule, sError) == 1;
    if (bOk && !CheckRule(rule, -1)) {
      bOk = false;
      sError = GetLastError();
    }
    nStart = nEnd + 7;
    if (!bOk) {
      sRefused = sError;
      WriteError(sError);
      continue;
    }
    m_vecRule.push_back(rule);
    ++nAdded;
  }
  if (nAdded == 0 && !bOverwrite) {
    if (!sRefused.empty()) SetLastError(sRefused);
    return sRefused.empty() ? 0 : -1;
  }
  if (Commit(vecOld) != 1) return -1;
  if (!sRefused.empty()) SetLastError(sRefused);
  return nAdded;
}

int CZYG::AddItem(const char* sJson) {
  _tRuleOrg rule;
  tstring sError;
  if (CRuleText::Json2RuleOrg(sJson ? sJson : "", rule, sError) != 1) {
    SetLastError(sError);
    return -1;
  }
  if (!CheckRule(rule, -1)) return -1;
  std::vector<_tRuleOrg> vecOld = m_vecRule;
  m_vecRule.push_back(rule);
  return Commit(vecOld) == 1 ? (int)m_vecRule.size() - 1 : -1;
}

int CZYG::EditItem(int nIndex, const char* sJson) {
  if (nIndex < 0 || (size_t)nIndex >= m_vecRule.size()) {
    SetLastError("Rule index " + std::to_string(nIndex) + " is out of range");
    return -1;
  }
  _tRuleOrg rule;
  tstring sError;
  if (CRuleText::Json2RuleOrg(sJson ? sJson : "", rule, sError) != 1) {
    SetLastError(sError);
    return -1;
  }
  if (!CheckRule(rule, nIndex)) return -1;
  std::vector<_tRuleOrg> vecOld = m_vecRule;
  m_vecRule[nIndex] = rule;
  return Commit(vecOld);
}

int CZYG::DeleteItem(int nIndex) {
  if (nIndex < 0 || (size_t)nIndex >= m_vecRule.size()) {
    SetLastError("Rule index " + std::to_string(nIndex) + " is out of range");
    return -1;
  }
  std::vector<_tRuleOrg> vecOld = m_vecRule;
  m_vecRule.erase(m_vecRule.begin() + nIndex);
  return Commit(vecOld);
}

const char* CZYG::Keep(const tstring& sText) {
  m_sResult = sText;
  return m_sResult.c_str();
}

const char* CZYG::GetItem(int nIndex) {
  if (nIndex < 0 || (size_t)nIndex >= m_vecRule.size()) {
    SetLastError("Rule index " + std::to_string(nIndex) + " is out of range");
    return Keep("");
  }
  Json::Value root = CRuleText::RuleOrg2Json(m_vecRule[nIndex]);
  root["id"] = nIndex;
  return Keep(JsonText(root));
}

const char* CZYG::GetRuleListId() {
  Json::Value root(Json::arrayValue);
  for (size_t i = 0; i < m_vecRule.size(); ++i) {
    Json::Value item(Json::objectValue);
    item["id"] = (Json::UInt64)i;
    item["no"] = m_vecRule[i].no;
    item["name"] = m_vecRule[i].name;
    item["action"] = GetActionStr(m_vecRule[i].action_id);
    item["field"] = m_vecRule[i].sField;
    root.append(item);
  }
  return Keep(JsonText(root));
}

const char* CZYG::GetSysInfo() {
  Json::Value root(Json::objectValue);
  root["actions"] = Json::Value(Json::arrayValue);
  for (const char* sName : kZYGActionNames) root["actions"].append(sName);
  root["fields"] = Json::Value(Json::arrayValue);
  for (const char* sName : kZYGFieldNames) root["fields"].append(sName);
  return Keep(JsonText(root));
}

tstring CZYG::IndexDump() const {
  tstring s = "Indexing Data are as following:\n";
  char sLine[256];
  for (size_t t = 0; t < m_vecIndex.size(); ++t) {
    if (m_vecIndex[t].pData.empty()) continue;
    snprintf(sLine, sizeof(sLine), "No.%zu word=", t);
    s += sLine + tstring(GetTerm((int)t)) + ": Rules are :\n";
    for (const _tZYGIndexData& data : m_vecIndex[t].pData) {
      snprintf(sLine, sizeof(sLine), "Knowledge_ID=%d\tGrid_ID=%d\tBlock_ID=%d\tBack_Word_Count=%d SkipList(",
               data.knowledge_index, data.grid_index, data.block_index, data.back_count);
      s += sLine;
      for (int32_t n : data.skiplist) s += std::to_string(n) + " ";
      s += ")\n";
    }
  }
  return s;
}

tstring CZYG::RuleListDump() const {
  tstring s;
  for (size_t i = 0; i < m_vecRule.size(); ++i)
    s += "No." + std::to_string(i) + "\t" + CKnowledgeParser::GetKnowledgeStr(m_vecRule[i].rule) + "\n";
  return s;
}
