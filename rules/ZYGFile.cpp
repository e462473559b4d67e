// The files of a rule set. "ZYG_<type>.rule" is a "ZRUL" data file (see
// utility/DataFileWriter.h for the frame), payload little-endian:
//   u32 document type
//   string pool (u64 length + bytes), int-array pool (u64 count + i32 each)
//   u32 rule count, then each rule field by field without padding:
//     rule_no_id u32, knowledge, action_id u32, arguments_id (2 x i32),
//     credit i32, frequency i32, field u32, name_id u32, RegExs_id (2 x i32),
//     nField2KGCount u32, keys_id (2 x i32), then nField2KGCount records of
//     field_name_id i32, nine role flags and three zero bytes
//   knowledge: grid_count i32, the grids, steps (2 x i32), text_id u32
//   grid: blocks_count i32, the blocks, repeats, steps (2 x i32 each), is_selected i32
//   block: elems (2 x i32), is_not i32
// The term index is not stored: it is rebuilt from the rules on loading, so
// a file cannot bring postings that point outside its rules.
#include <cstring>

#include "rules/KnowledgeParser.h"
#include "rules/RuleText.h"
#include "rules/ZYG.h"
#include "utility/DataFileReader.h"
#include "utility/DataFileWriter.h"
#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"

namespace {

const char kRuleKind[] = "ZRUL";
const uint32_t kRuleVersion = 1;
const int32_t kMaxGrids = 1 << 16;  // beyond any pattern a person writes

void PutRange(CDataFileWriter& out, const _tIntArray& range) {
  out.PutI32(range.start);
  out.PutI32(range.end);
}

bool GetRange(CDataFileReader& in, _tIntArray& range) { return in.GetI32(range.start) && in.GetI32(range.end); }

void PutKnowledge(CDataFileWriter& out, const _tKnowledge& knowledge) {
  out.PutI32((int32_t)knowledge.grids.size());
  for (const _tGrid& grid : knowledge.grids) {
    out.PutI32((int32_t)grid.blocks.size());
    for (const _tBlock& block : grid.blocks) {
      PutRange(out, block.elems);
      out.PutI32(block.is_not);
    }
    PutRange(out, grid.repeats);
    PutRange(out, grid.steps);
    out.PutI32(grid.is_selected);
  }
  PutRange(out, knowledge.steps);
  out.PutU32(knowledge.text_id);
}

bool GetKnowledge(CDataFileReader& in, _tKnowledge& knowledge) {
  int32_t nGrids = 0;
  if (!in.GetI32(nGrids) || nGrids < 0 || nGrids > kMaxGrids) return in.Fail("bad grid count");
  knowledge.grids.resize((size_t)nGrids);
  for (_tGrid& grid : knowledge.grids) {
    int32_t nBlocks = 0;
    if (!in.GetI32(nBlocks) || nBlocks < 0 || nBlocks > kMaxGrids) return in.Fail("bad block count");
    grid.blocks.resize((size_t)nBlocks);
    for (_tBlock& block : grid.blocks)
      if (!GetRange(in, block.elems) || !in.GetI32(block.is_not)) return false;
    if (!GetRange(in, grid.repeats) || !GetRange(in, grid.steps) || !in.GetI32(grid.is_selected)) return false;
  }
  return GetRange(in, knowledge.steps) && in.GetU32(knowledge.text_id);
}

void PutRule(CDataFileWriter& out, const _tRule& rule) {
  out.PutU32(rule.rule_no_id);
  PutKnowledge(out, rule.knowledge);
  out.PutU32(rule.action_id);
  PutRange(out, rule.arguments_id);
  out.PutI32(rule.credit);
  out.PutI32(rule.frequency);
  out.PutU32(rule.field);
  out.PutU32(rule.name_id);
  PutRange(out, rule.RegExs_id);
  out.PutU32((uint32_t)rule.pField2KG.size());
  PutRange(out, rule.keys_id);
  for (const _tFieldID2KG& kg : rule.pField2KG) {
    out.PutI32(kg.field_name_id);
    out.PutRaw(kg.type.data(), kg.type.size());
    out.PutRaw("\0\0\0", 3);
  }
}

bool ReadRule(CDataFileReader& in, _tRule& rule) {
  uint32_t nKG = 0;
  bool bOk = in.GetU32(rule.rule_no_id) && GetKnowledge(in, rule.knowledge) && in.GetU32(rule.action_id) &&
             GetRange(in, rule.arguments_id) && in.GetI32(rule.credit) && in.GetI32(rule.frequency) &&
             in.GetU32(rule.field) && in.GetU32(rule.name_id) && GetRange(in, rule.RegExs_id) && in.GetU32(nKG) &&
             GetRange(in, rule.keys_id);
  if (!bOk || nKG > (uint32_t)kMaxGrids) return bOk ? in.Fail("bad kgset count") : false;
  rule.pField2KG.resize(nKG);
  char sPad[3];
  for (_tFieldID2KG& kg : rule.pField2KG)
    if (!in.GetI32(kg.field_name_id) || !in.GetRaw(kg.type.data(), kg.type.size()) || !in.GetRaw(sPad, 3))
      return false;
  return true;
}

tstring BaseOf(const tstring& sRuleFile) {
  const tstring sExt = ".rule";
  bool bHasExt = sRuleFile.size() > sExt.size() && sRuleFile.compare(sRuleFile.size() - sExt.size(), sExt.size(), sExt) == 0;
  return bHasExt ? sRuleFile.substr(0, sRuleFile.size() - sExt.size()) : sRuleFile;
}

}  // namespace

int CZYG::Save() { return m_sPath.empty() ? 1 : Save(GetFilename("rule")); }

int CZYG::Save(const tstring& sFile) {
  const tstring sBase = BaseOf(sFile);
  CDataFileWriter out(kRuleKind, kRuleVersion);
  out.PutU32((uint32_t)m_nZYG_ID);
  out.PutString(m_strPool.GetBytes());
  size_t nInts = 0;
  const int32_t* pInts = GetInts({0, (int32_t)m_intPool.GetSize()}, nInts);
  out.PutI32Array(std::vector<int32_t>(pInts, pInts + nInts));
  out.PutU32((uint32_t)m_vecCompiled.size());
  for (const _tRule& rule : m_vecCompiled) PutRule(out, rule);
  if (!SaveDictionaries(sBase) || !out.Save(sFile)) {
    SetLastError("Cannot write file " + sFile);
    return -1;
  }
  return 1;
}

bool CZYG::SaveDictionaries(const tstring& sBase) const {
  return m_dict.Save(sBase + ".pdat") && m_wordList.Save(sBase + ".wordlist") &&
         m_attributeDict.Save(sBase + "_Attribute.pdat") && m_attributeWords.Save(sBase + "_Attribute.wordlist") &&
         m_attributeNames.Save(sBase + "_AttriName.wordlist");
}

bool CZYG::LoadDictionaries(const tstring& sBase) {
  return m_dict.Load(sBase + ".pdat") && m_wordList.Load(sBase + ".wordlist") &&
         m_attributeDict.Load(sBase + "_Attribute.pdat") && m_attributeWords.Load(sBase + "_Attribute.wordlist") &&
         m_attributeNames.Load(sBase + "_AttriName.wordlist");
}

int CZYG::Load() { return Load(GetFilename("rule")); }

int CZYG::Load(const tstring& sFile) {
  m_vecRule.clear();
  ClearCompiled();
  if (!IsRegularFile(sFile)) {
    SetLastError("Cannot read file " + sFile);
    return -1;
  }
  CDataFileReader in;
  bool bOk = in.Open(sFile, kRuleKind, kRuleVersion);
  uint32_t nType = 0, nRules = 0;
  tstring sPool;
  std::vector<int32_t> vecInts;
  bOk = bOk && in.GetU32(nType) && in.GetString(sPool) && in.GetI32Array(vecInts) && in.GetU32(nRules);
  bOk = bOk && (m_strPool.SetBytes(sPool) || in.Fail("string pool not terminated"));
  m_intPool.Append(vecInts);
  for (uint32_t i = 0; bOk && i < nRules; ++i) {
    _tRule rule;
    bOk = ReadRule(in, rule);
    if (bOk) m_vecCompiled.push_back(std::move(rule));
  }
  bOk = in.Finish() && LoadDictionaries(BaseOf(sFile)) && CheckLoaded() && Knowledge2Org();
  if (!bOk) {
    m_vecRule.clear();
    ClearCompiled();
    SetLastError("Cannot load file " + sFile);
    return -1;
  }
  if (m_vecCompiled.empty()) {
    SetLastError("m_nRuleCount <=0");
    return -1;
  }
  Indexing();
  std::vector<tstring> vecWords;
  std::vector<int> vecTerms;
  for (size_t r = 0; r < m_vecCompiled.size(); ++r) {
    GetRuleTermIDVector((int)r, vecTerms);
    for (int nTerm : vecTerms)
      if (nTerm >= 0 && *GetTerm(nTerm) && *GetTerm(nTerm) != '/') vecWords.push_back(GetTerm(nTerm));
  }
  ImportUserWords(vecWords, false);
  return 1;
}

// Every reference of the loaded rules points into the pools and dictionaries.
bool CZYG::CheckLoaded() const {
  const int32_t nInts = (int32_t)m_intPool.GetSize();
  const size_t nStrings = m_strPool.GetSize(), nTerms = m_dict.GetCount(), nAttributes = m_attributeDict.GetCount();
  auto rangeOk = [&](const _tIntArray& r) { return r.start >= 0 && r.start <= r.end && r.end <= nInts; };
  auto stringOk = [&](uint64_t nId) { return nStrings == 0 ? nId == 0 : nId < nStrings; };
  auto listOk = [&](const _tIntArray& r, size_t nLimit, bool bStrings) {
    size_t n = 0;
    const int32_t* p = GetInts(r, n);
    for (size_t i = 0; i < n; ++i)
      if (bStrings ? (p[i] < 0 || !stringOk((uint64_t)p[i])) : (p[i] < -1 || (size_t)(p[i] + 1) > nLimit)) return false;
    return rangeOk(r);
  };
  for (const _tRule& rule : m_vecCompiled) {
    bool bGenerating = rule.action_id >= kActionGenerateTuple;
    bool bOk = rule.action_id < kActionCount && stringOk(rule.rule_no_id) && stringOk(rule.name_id) &&
               stringOk(rule.knowledge.text_id) && rangeOk(rule.knowledge.steps) &&
               listOk(rule.arguments_id, 0, true) && rangeOk(rule.RegExs_id) && listOk(rule.keys_id, nTerms, false) &&
               (rule.field < (uint32_t)kFieldCount || rule.field - kFieldKeyBase < nTerms);
    for (const _tGrid& grid : rule.knowledge.grids) {
      bOk = bOk && rangeOk(grid.repeats) && rangeOk(grid.steps);
      for (const _tBlock& block : grid.blocks) bOk = bOk && listOk(block.elems, bGenerating ? nAttributes : nTerms, false);
    }
    for (const _tFieldID2KG& kg : rule.pField2KG) bOk = bOk && kg.field_name_id >= 0 && stringOk((uint64_t)kg.field_name_id);
    if (!bOk) return false;
  }
  return true;
}

bool CZYG::Rule2Org(const _tRule& rule, _tRuleOrg& org) const {
  org = _tRuleOrg();
  org.no = GetStr(rule.rule_no_id);
  org.name = GetStr(rule.name_id);
  tstring sError;
  if (CKnowledgeParser::ParseKnowledge(GetStr(rule.knowledge.text_id), org.rule, sError) != 1) return false;
  org.action_id = (int)rule.action_id;
  size_t n = 0;
  const int32_t* p = GetInts(rule.arguments_id, n);
  for (size_t i = 0; i < n; ++i) org.arguments.push_back(GetStr((size_t)p[i]));
  for (const _tFieldID2KG& kg : rule.pField2KG) {
    _tField2KG field;
    field.field_name = GetStr((size_t)kg.field_name_id);
    field.type = kg.type;
    org.vecField2KG.push_back(field);
  }
  p = GetInts(rule.keys_id, n);
  for (size_t i = 0; i < n; ++i) org.vecKeyname.push_back(GetTerm(p[i]));
  org.sField = GetFieldStr((int)rule.field);
  org.credit = rule.credit;
  org.frequency = rule.frequency;
  return true;
}

bool CZYG::Knowledge2Org() {
  m_vecRule.clear();
  for (const _tRule& rule : m_vecCompiled) {
    m_vecRule.emplace_back();
    if (!Rule2Org(rule, m_vecRule.back())) return false;
  }
  return true;
}

int CZYG::Export() {
  tstring sFile = GetFilename("export.txt"), sText;
  for (const _tRuleOrg& rule : m_vecRule)
    sText += CRuleText::RuleOrg2XML(rule, CKnowledgeParser::GetKnowledgeStr(rule.rule)) + "\n";
  if (!WriteFileReplacing(sFile, [&](FILE* fp) { return fwrite(sText.data(), 1, sText.size(), fp) == sText.size(); })) {
    SetLastError("Cannot write file " + sFile);
    return -1;
  }
  return 1;
}
