#pragma once
// CZYGAgent applies one rule set to text: a paragraph, a text file (one
// paragraph a line) or a whole document (body paragraphs, headings, table
// cells, headers and footers). Each match becomes a _tZYG_Result; selected
// values become key values (_tKeyVal), tuples, tables and triples.
//
// An agent is used by one thread; the rule set is only read, so any number
// of agents may scan with the same rule set at once.
//
// (The decisions the matching leaves open are written down in ZYGAgent.cpp,
// where they are made.)
#include <map>
#include <vector>

#include <json/json.h>

#include "rules/ZYGRecords.h"
#include "utility/TString.h"

class CZYG;
class CDocument;
class CLexicalAnalyser;
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
  // One rule over one line; returns the matches as XML (see GetResult).
  const tstring& ScanTextMem(const tstring& sLine, int rule_id);
  // A text file, one paragraph a line; results written beside it. The
  // matches as XML; "" with "Failed open file <name>" when unreadable.
  const tstring& ScanTextFile(const tstring& sFilename, int format, bool bDebug);
  // Every part of a document; results written beside sBaseName (the
  // document's name without extension; "" writes nothing).
  const tstring& ScanDoc(const CDocument* pDoc, const tstring& sBaseName, int format, bool bDebug);
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

 private:
  const CZYG* m_pZYG;
  const CLexicalAnalyser* m_pAnalyser;
  tstring m_sMatchProcess;
  Json::Value m_jsonDebug;
  std::vector<_tKeyVal> m_vecDuringDate;
  std::vector<_tKeyVal> m_vecEndingDate;
  std::map<int, std::vector<size_t>> m_mapKeyId2Keys;  // key -> indexes into m_vecKeyVal
  int m_nTokenMatchedIndex = 0;
  bool m_bOverwrite = false;
  tstring m_sResult;
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
};
