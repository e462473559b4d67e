#pragma once
// CZYG is the rule set of one document type: the editable rules, their
// compiled form, the term dictionary the compiled rules are written in, the
// index from terms to the places that use them, and the attribute
// dictionaries that name what the rules extract.
//
// Files, in the rule folder (the data directory's "Data/"), named
// "ZYG_<type>.<ext>":
//   .rule                   the rules (a "ZRUL" data file, see ZYGFile.cpp)
//   .pdat / .wordlist       the term dictionary and its reverse
//   _Attribute.pdat / _Attribute.wordlist / _AttriName.wordlist
//                           attribute -> id, id -> attribute, id -> display name
// Every file is written through a temporary name, so a failed save leaves
// the old set whole.
//
// Decisions the rule language leaves open, made here:
// - Terms: the five default keys come first (ids 0 to 4), then the part-of-
//   speech tags "/LB" and "/LE" of the sentinel tokens, then every element
//   and key in order of first use. Tag elements ("/n") are terms too.
// - Arguments are attribute expressions "attribute|display name" (the display
//   name is optional). Each attribute is entered into the attribute
//   dictionaries and into the term dictionary as a key: a value selected by a
//   rule is recorded under the key of the argument at the same position.
//   A rule's key names ("keyname") are keys as well: its first selected value
//   is also recorded under each of them. A field name that is not one of the
//   eleven fields names a key: field kFieldKeyBase + its term id.
// - The elements of the generating actions are attribute expressions too,
//   "attribute|display name" (ExtractAttribute); their compiled elements are
//   attribute ids, not terms, so they are never looked for in text.
// - Skip lists: a posting's skip list holds what the rest of its rule cannot
//   match without: for every other block that is neither optional nor
//   negated and has no tag element, its elements followed by -1. A text that
//   holds no element of one such group cannot match the rule, so the matcher
//   passes the posting by.
// - User words: compiling writes "zyg_userdict.txt" into the rule folder and
//   imports it into the running lexical analyser; loading a saved set
//   imports the same words from memory, so the folder may be read-only.
#include <memory>
#include <vector>

#include "rules/ZYGTypes.h"
#include "utility/IntArray.h"
#include "utility/PDAT.h"
#include "utility/StaticStr.h"
#include "utility/TString.h"
#include "utility/WordList.h"

class CZYG {
 public:
  // Opens the rule set of document type nId in the folder sPath (with its
  // trailing '/'; "" for a rule set without files). Nothing is read yet.
  CZYG(const char* sPath, int nId);
  ~CZYG();
  CZYG(const CZYG&) = delete;  // owns compiled rules
  CZYG& operator=(const CZYG&) = delete;

  // Reads "ZYG_<type>.rule" and its dictionaries. 1; -1 with "Cannot read
  // file <name>" or "Cannot load file <name>" (damaged), or "m_nRuleCount <=0".
  // A failed load leaves the set empty.
  int Load();
  int Load(const tstring& sFile);
  // Writes them. 1; -1 with "Cannot write file <name>".
  int Save();
  int Save(const tstring& sFile);
  // Writes the rules as XML items to "ZYG_<type>.export.txt". 1 or -1.
  int Export();

  // Imports XML items; with bOverwrite the set is cleared first. An item
  // that is broken or refused is left out (written to the error log, the
  // last refusal kept as the last error) and the others are imported.
  // Returns the number of rules added; -1 when the file cannot be read,
  // every item was refused or the set cannot be saved (then it is left as it
  // was). Saves the set when it has files.
  int ImportRule(const char* sXMLFile, bool bOverwrite);
  int ImportRuleFromMem(const char* pText, bool bOverwrite);

  // Rule editing through JSON rules. Indexes count from 0 in list order.
  // Each returns the rule's index (AddItem) or 1, and -1 on failure.
  int AddItem(const char* sJson);
  int EditItem(int nIndex, const char* sJson);
  int DeleteItem(int nIndex);
  // Texts below stay valid until the next call returning text.
  const char* GetItem(int nIndex);
  const char* GetRuleListId();
  const char* GetSysInfo();

  // Tables.
  static int GetActionId(const tstring& sName);  // -1 when unknown
  static const char* GetActionStr(int nId);       // "" when out of range
  int GetFieldId(const tstring& sName) const;     // -1 for an unknown name
  tstring GetFieldStr(int nId) const;

  // Splits an attribute expression "attribute|display name" (blanks around
  // the parts dropped; the display name defaults to the attribute). False
  // when the attribute is empty or holds a character outside letters,
  // digits, '_', '-', '.' and Chinese characters.
  static bool ExtractAttribute(const tstring& sExpr, tstring& sAttribute, tstring& sName);

  // Compiling and indexing: every editable rule into its compiled form, then
  // the index. Returns the rule count, or -1 (last error set).
  int Org2Knowledge();
  void Indexing();

  // Read-only access for the matcher; safe from several threads.
  size_t GetRuleCount() const { return m_vecCompiled.size(); }
  const _tRule& GetRule(size_t nIndex) const { return m_vecCompiled[nIndex]; }
  const _tRuleOrg& GetRuleOrg(size_t nIndex) const { return m_vecRule[nIndex]; }
  // The entries of a range of the int-array pool.
  const int32_t* GetInts(const _tIntArray& range, size_t& nCount) const;
  int32_t GetInt(const _tIntArray& range, size_t nAt, int32_t nDefault) const;
  const char* GetStr(size_t nId) const { return m_strPool.Get(nId); }
  int GetTermId(const tstring& sWord) const { return m_dict.GetId(sWord); }
  const char* GetTerm(int nId) const { return m_wordList.GetWord(nId); }
  size_t GetTermCount() const { return m_dict.GetCount(); }
  // The postings of a term; null when it has none.
  const _tZYGIndex* GetPostings(int nTermId) const;
  int GetAttributeId(const tstring& sAttribute) const { return m_attributeDict.GetId(sAttribute); }
  const char* GetAttribute(int nId) const { return m_attributeWords.GetWord(nId); }
  const char* GetAttributeName(int nId) const { return m_attributeNames.GetWord(nId); }
  size_t GetAttributeCount() const { return m_attributeDict.GetCount(); }
  int GetKeyId(const tstring& sKey) const { return m_dict.GetId(sKey); }
  // True for a part-of-speech element ("/n"), which matches by tag prefix.
  bool IsTagTerm(int nId) const { return nId >= 0 && (size_t)nId < m_vecTagTerm.size() && m_vecTagTerm[nId]; }
  bool IsPartOfRule(int nRule, int nTerm) const;
  void GetRuleTermIDVector(int nRule, std::vector<int>& vecTerms) const;
  int GetId() const { return m_nZYG_ID; }
  int GetDateKeyID() const { return m_nDateKeyID; }
  int GetTableNameKeyID() const { return m_nTableNameKeyID; }
  int GetSumKeyID() const { return m_nSumKeyID; }
  int GetCountKeyID() const { return m_nCountKeyID; }
  int GetMaxKeyID() const { return m_nMaxKeyID; }

  // "Indexing Data are as following:" ... and "No.%d\t%s" per rule.
  tstring IndexDump() const;
  tstring RuleListDump() const;
  // "ZYG_<type>.<sExt>" in the rule folder.
  tstring GetFilename(const char* sExt) const;

 private:
  int ImportItems(const tstring& sText, bool bOverwrite);
  // Checks a rule against the set: the refusals of importing and adding.
  bool CheckRule(const _tRuleOrg& rule, int nSkipIndex) const;
  int GetRuleIndex(const tstring& sNo) const;
  // Compiles after an edit and saves; on failure restores vecOld.
  int Commit(std::vector<_tRuleOrg>& vecOld);
  // The editable form of a compiled rule.
  bool Rule2Org(const _tRule& rule, _tRuleOrg& org) const;
  bool Knowledge2Org();
  bool CheckLoaded() const;
  void ClearCompiled();
  void SetDefaultKeys();
  int AddTerm(const tstring& sWord);
  int AddField(const tstring& sName);  // a key name becomes a key
  int AddAttribute(const tstring& sExpr);
  bool CompileRule(const _tRuleOrg& org, _tRule& rule, std::vector<tstring>& vecUserWords);
  void ImportUserWords(const std::vector<tstring>& vecWords, bool bWriteFile);
  void ComputeSkipList(size_t nRule, _tZYGIndexData& data) const;
  bool SaveDictionaries(const tstring& sBase) const;
  bool LoadDictionaries(const tstring& sBase);
  const char* Keep(const tstring& sText);

  CIntArray m_intPool;
  CStaticStr m_strPool;
  bool m_bIsModified = false;
  std::vector<_tRuleOrg> m_vecRule;  // editable rules, list order
  bool m_bOverwrite = false;
  tstring m_sResult;  // the last returned text
  int m_nIndexItemCount = 0;
  tstring m_sPath;
  CPDAT m_dict;           // term -> id
  CWordList m_wordList;   // id -> term
  std::vector<_tZYGIndex> m_vecIndex;  // per term
  std::vector<uint8_t> m_vecTagTerm;   // per term: 1 for a tag element
  std::vector<_tRule> m_vecCompiled;   // per rule
  CPDAT m_attributeDict;         // attribute -> id
  CWordList m_attributeWords;    // id -> attribute
  CWordList m_attributeNames;    // id -> display name
  int m_nZYG_ID;
  int m_nDateKeyID = -1;
  int m_nTableNameKeyID = -1;
  int m_nSumKeyID = -1;
  int m_nCountKeyID = -1;
  int m_nMaxKeyID = -1;
};
