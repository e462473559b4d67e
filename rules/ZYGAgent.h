#pragma once
// CZYGAgent applies one rule set to text: a paragraph, a text file (one
// paragraph a line) or a whole document (body paragraphs, headings, table
// cells, headers and footers). Each match becomes a _tZYG_Result; selected
// values become key values (_tKeyVal), tuples, tables and triples.
//
// An agent is used by one thread; the rule set is only read, so any number
// of agents may scan with the same rule set at once.
//
// De-duplication: within one scanned text a rule is reported once per
// first and one-past-last token of its match, however many of its terms led
// to it; an extracted value (paragraph, offset, key, value, rule) is
// recorded once per agent; entities, triples and single key values once.
//
// (The other decisions the matching leaves open are written down in
// ZYGAgent.cpp, where they are made.)
#include <array>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include <json/json.h>

#include "checker/CheckResult.h"
#include "rules/ZYGRecords.h"
#include "utility/TString.h"

class CZYG;
class CDocument;
class CLexicalAnalyser;
struct _tParagraph;
struct _tRule;
struct _tTable;
struct _tKnowledge;
struct _tBlock;
struct _tZYGIndexData;

class CZYGAgent {
 public:
  // pZYG: the rule set, not owned; pAnalyser: the segmenter (null: the
  // process-wide one of QUENDA_Init).
  explicit CZYGAgent(const CZYG* pZYG, const CLexicalAnalyser* pAnalyser = nullptr);
  CZYGAgent(const CZYGAgent&) = delete;
  CZYGAgent& operator=(const CZYGAgent&) = delete;

  // Scans one text. nLevel: -300 header, -400 footer, else the paragraph's
  // level; nFieldID: only rules of that field (-1: none of the key fields);
  // nRuleIDSelected: only that rule (-1: all); nOffsetStart is added to every
  // offset. Returns the number of matches.
  int ScanText(const tstring& sText, uint32_t nParaId, int nLevel = 0, int nFieldID = -1,
               int nRuleIDSelected = -1, int nOffsetStart = 0);
  // Scans words that are already segmented: pairs of word and tag ("/n";
  // the leading '/' is added when missing). The text is the words joined,
  // with a blank only between two ASCII neighbours, so offsets count in it.
  // Otherwise exactly ScanText: for fixtures and callers with their own
  // segmentation. Returns the number of matches.
  int ScanWords(const std::vector<std::pair<tstring, tstring>>& vecWordPos, uint32_t nParaId, int nLevel = 0,
                int nFieldID = -1, int nRuleIDSelected = -1, int nOffsetStart = 0);
  // One rule over one line; returns the matches as XML (see GetResult).
  const tstring& ScanTextMem(const tstring& sLine, int rule_id);
  // A text file, one paragraph a line; results written beside it. The
  // matches as XML; "" with "Failed open file <name>" when unreadable.
  const tstring& ScanTextFile(const tstring& sFilename, int format, bool bDebug);
  // Every part of a document; results written beside sBaseName (the
  // document's name without extension; "" writes nothing). Starts with
  // Reset and ends with ScanRules; returns the number of matches, -1 for no
  // document. GetScanText() then gives the matches as XML (format 0) or
  // every value as JSON (format 1, GetKnowledgeJsonStr). ScanTextFile does
  // the same for a text file and returns that text; its paragraph ids are
  // the lines' byte offsets in the file.
  int ScanDoc(const CDocument* pDoc, const tstring& sBaseName, int format, bool bDebug);
  // The text of the last ScanDoc or ScanTextFile, made when first asked for.
  const tstring& GetScanText();
  // The second pass: rules of key fields over the values found so far.
  void ScanRules();

  void Reset();
  const tstring& GetKGResult();
  const tstring& GetSingleKeyResult();
  const tstring& GetEntityResult();
  const tstring& GetTupleResult();
  // Every extracted value, tuple, table and single key as one JSON object.
  const tstring& GetKnowledgeJsonStr();
  // The matches: "<?xml ...?>\r\n<ZYG_Results>\r\n" + each match + "</ZYG_Results>\r\n";
  // written to sFile too when it is not empty.
  const tstring& GetResult(const tstring& sFile = "");

  // The values of a key. With nParaID not 0 only values at or after
  // (nDirection >= 0) or before (< 0) that paragraph and offset, nearest first.
  int GetKeyValue(int nKeyID, std::vector<_tKeyVal>& vecKeyValue, uint32_t nParaID = 0, unsigned nOffset = 0,
                  int nDirection = 0, bool bOnlySingleKey = false) const;
  bool GetKeyValue(const tstring& sKey, tstring& sValue) const;
  bool GetKeyValue(const tstring& sKey, _tKeyVal& keyVal) const;
  int GetKeyValue(const tstring& sKey, std::vector<_tKeyVal>& vecKeyValue, uint32_t nParaID) const;

  const std::vector<_tZYG_Result>& GetMatches() const { return m_vecZYGResult; }
  const std::vector<_tKeyVal>& GetKeyValues() const { return m_vecKeyVal; }
  const std::vector<_tTuple>& GetTuples() const { return m_vecTuple; }
  const std::vector<_tKeyTable>& GetTables() const { return m_vecTable; }
  const std::vector<_tKeyVal>& GetSingleKeyValues() const { return m_vecSingleKeyVal; }
  const std::vector<_tZYGScanResult>& GetTokens() const { return m_vecScanResult; }
  const CZYG* GetZYG() const { return m_pZYG; }
  void SetDebug(bool bDebug) { m_bDebug = bDebug; }

  // Spelling and punctuation findings ("1.5.3", "99.3", "99.4", "99.5") of
  // the paragraphs scanned while the switch is on (default on), and the
  // findings of the revising actions "insert", "update" and "delete".
  void SetPunctuationCheck(bool bOn) { m_bPunctuationCheck = bOn; }
  const std::vector<_tCheckResult>& GetFindings() const { return m_vecFindings; }

  // What the writers read besides the getters above.
  const std::vector<_tEntityAttrVal>& GetEntityAttrVals() const { return m_vecEntityVal; }
  const std::vector<_tHeadRelTail>& GetHeadRelTails() const { return m_vecHeadRelTail; }
  const std::vector<_tKeyVal>& GetNamedEntityValues() const { return m_vecKeyValNamedEntity; }
  const std::vector<_tTableArgument>& GetTableArguments() const { return m_vecTableArguments; }
  const std::vector<_tKeyVal>& GetDuringDates() const { return m_vecDuringDate; }
  const std::vector<_tKeyVal>& GetEndingDates() const { return m_vecEndingDate; }
  // The debug trace: one object per scanned text ("original", "segment",
  // "process", "debug"); filled only in debug mode, cleared by Reset.
  const Json::Value& GetDebugTrace() const { return m_jsonDebug; }

 private:
  // What one scan may try: the paragraph's level, the field restriction
  // (-1: the mask below), the rule restriction, which fields up to the first
  // key field the text stands for (bit f: field f), and whether the
  // spelling and punctuation findings are wanted for it.
  struct _tScope {
    int nLevel = 0;
    int nFieldID = -1;
    int nRuleID = -1;
    uint32_t nFieldMask = 0xFFF;
    bool bCheck = true;
  };
  // Where a match lies: the first and one-past-last token, per grid.
  struct _tMatchSpan {
    int nStart = -1;
    int nEnd = -1;
    std::vector<std::pair<int, int>> vecGrids;
  };
  // Per rule, computed once: the keys of its arguments, their display
  // names, and how many tokens a match can span at most.
  struct _tRuleInfo {
    bool bReady = false;
    std::vector<int> vecArgKeys;
    std::vector<tstring> vecArgNames;
    std::vector<std::array<uint8_t, 9>> vecArgRoles;
    int nReach = 0;
  };
  // Source byte range of each byte of the normalised text.
  struct _tSourceRange {
    uint32_t nBegin;
    uint32_t nEnd;
  };

  int ScanTextScoped(const tstring& sText, uint32_t nParaId, const _tScope& scope, int nOffsetStart);
  int ScanPrepared(const tstring& sOriginal, uint32_t nParaId, const _tScope& scope, int nOffsetStart);
  void Normalise(const tstring& sText);
  void AddToken(const tstring& sWord, const tstring& sPos, int nOffset);
  void DumpTokens(uint32_t nParaId);
  void ComputeMarkup();
  bool Eligible(const _tRule& rule, int nRule, const _tScope& scope) const;
  bool SkipListHolds(const _tZYGIndexData& data) const;
  bool MatchRule(int nToken, const _tZYGIndexData& data, _tZYG_Result& result, _tMatchSpan& span);
  int LocateFirstToken(const _tKnowledge& knowledge, const _tZYGIndexData& data, int nReach);
  int MatchKnowledge(const _tKnowledge& knowledge, int nStart, int nReach, _tZYG_Result& result,
                     _tMatchSpan& span);
  int MatchGrid(const _tKnowledge& knowledge, size_t nGrid, int nToken, int nMax, int nHardEnd,
                _tZYG_Result& result, int& nGridStart);
  bool MatchBlock(const _tBlock& block, int nToken);
  void ReadResultFromRule(const _tRule& rule, _tZYG_Result& result) const;
  tstring JoinWords(int nFrom, int nTo) const;
  int TokenOffset(int nToken) const;
  int TokenEnd(int nToken) const;
  const _tRuleInfo& RuleInfo(int nRule);
  int ComputeReach(const _tRule& rule) const;
  tstring BlockStr(const _tBlock& block) const;

  void AddResult(_tZYG_Result& result, const _tMatchSpan& span);
  void ApplyAction(_tZYG_Result& result, const _tMatchSpan& span);
  void AddSelected(_tZYG_Result& result, const tstring& sValue, int nOffset, uint32_t nParaId = 0) const;
  void ConvertData(_tZYG_Result& result) const;
  void ExtractParagraphData(_tZYG_Result& result) const;
  void ExtractBetweenData(_tZYG_Result& result, const _tMatchSpan& span) const;
  void ExtractByValueExtractor(_tZYG_Result& result, const _tMatchSpan& span);
  void ExtractSectionData(_tZYG_Result& result) const;
  void ExtractTitleData(_tZYG_Result& result) const;
  void ExtractFormatData(_tZYG_Result& result) const;
  void ExtractTableData(_tZYG_Result& result);
  void AddRevision(const _tZYG_Result& result);
  void RecordKeyValues(const _tZYG_Result& result);
  void RecordKnowledgeGraph(const _tZYG_Result& result);
  bool AddKeyVal(const _tKeyVal& keyVal);

  void GenerateAll();
  void GenerateTuple(int nRule);
  void GenerateDate(int nRule);
  void GenerateSingleKey(int nRule);
  tstring ParaTextAround(int nByte) const;
  std::vector<int> ElementKeys(const _tRule& rule) const;
  void AddDateValue(const char* szKey, const tstring& sValue, const _tKeyVal& from, std::vector<_tKeyVal>* pList);

  void ScanTable(size_t nTable);
  void ScanTableKeys(size_t nTable, const std::vector<int>& vecColKeys, const std::vector<int>& vecRowKeys,
                     const std::vector<tstring>& vecRules);
  void AddTableArguments(size_t nTable);
  tstring CurrentSection(tstring& sNo, tstring& sName) const;
  void FinishScan(const tstring& sBaseName, int format);
  void PunctuationCheck(const tstring& sOriginal, uint32_t nParaId);
  void AddFinding(const tstring& sOriginal, uint32_t nParaId, size_t nOffset, size_t nLength, const char* szId,
                  const char* szMsg, int nReviseType, const tstring& sNew);

  const CZYG* m_pZYG;
  const CLexicalAnalyser* m_pAnalyser;
  tstring m_sMatchProcess;
  Json::Value m_jsonDebug;
  std::vector<_tKeyVal> m_vecDuringDate;
  std::vector<_tKeyVal> m_vecEndingDate;
  std::map<int, std::vector<size_t>> m_mapKeyId2Keys;  // key -> indexes into m_vecKeyVal
  int m_nTokenMatchedIndex = 0;
  tstring m_sResult;
  int m_nScanFormat = -1;  // format of the scan whose text is still to be made; -1: m_sResult is current
  std::vector<_tZYGScanResult> m_vecScanResult;
  int m_nTableIndex = -1;
  int m_nRowIndex = -1;
  int m_nColIndex = -1;
  int m_nRowColParaIndex = -1;
  int m_nParaIndex = -1;
  const _tZYGIndexData* m_dataToBeMatched = nullptr;
  bool m_bDebug = false;
  int m_nCurActionId = -1;
  std::vector<tstring> m_vecKeyPrefix;
  tstring m_sTextStand;
  std::vector<_tEntityAttrVal> m_vecEntityVal;
  std::vector<_tHeadRelTail> m_vecHeadRelTail;
  tstring m_sKGResult;
  tstring m_sKeyValResult;
  tstring m_sEntityKeyValResult;
  tstring m_sTupleResult;
  std::vector<_tZYG_Result> m_vecZYGResult;
  std::vector<_tKeyVal> m_vecKeyVal;  // every value, in the order found
  std::vector<_tKeyVal> m_vecSingleKeyVal;
  std::vector<_tKeyVal> m_vecKeyValNamedEntity;
  std::vector<_tTuple> m_vecTuple;
  std::vector<_tKeyTable> m_vecTable;
  std::vector<_tTableArgument> m_vecTableArguments;
  const CDocument* m_pDocxParser = nullptr;

  // Scan state beyond the records above.
  uint32_t m_nParaId = 0;                   // paragraph being scanned
  int m_nOffsetStart = 0;                   // added to every offset of this scan
  std::vector<_tSourceRange> m_vecSource;   // per byte of m_sTextStand
  std::vector<int> m_vecMarkupBefore;       // per token: markup bytes before it
  std::vector<uint32_t> m_vecTermStamp;     // per term: the scan that saw it
  uint32_t m_nStamp = 0;
  std::set<_tKeyVal> m_setKeyVal;           // de-duplicates m_vecKeyVal
  std::vector<_tRuleInfo> m_vecRuleInfo;    // per rule, filled on first use
  std::vector<_tCheckResult> m_vecFindings;
  bool m_bPunctuationCheck = true;
  bool m_bCountryWarned = false;
  size_t m_nFindingFloor = 0;               // first finding of the paragraph being checked
  tstring m_sSingleKeyResult;
  const _tParagraph* m_pCurPara = nullptr;  // document paragraph being scanned, or null
  int m_nSectionIndex = -1;                 // paragraph index of the current heading
  bool m_bTableExtractPending = false;      // a "tableextract" rule named the next table
  tstring m_sTableExtractRule;
  std::map<uint32_t, uint32_t> m_mapParaRow;  // cell paragraph -> first paragraph of its row
  // True when some rule of the set is applied to that field (rows are
  // scanned whole only for rules of "SingleRow").
  bool RuleSetUsesField(int nField) const;
  std::set<std::pair<int, std::pair<int, int>>> m_setMatched;  // (rule, (start, end)) of this scan
  std::set<std::vector<tstring>> m_setKG;   // de-duplicates entities and triples
};
