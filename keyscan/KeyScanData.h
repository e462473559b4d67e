#pragma once
// CKeyScanData is one keyword list of the keyword scanner: keywords with
// their class and weight, the class names, the complex expressions and
// correction pairs (ComplexFilter.h), and the pinyin spellings of keywords
// that asked for them. Lists live side by side, one per handle, in the
// files "<data>/KeyScanner/Filter<handle>_*".
//
// User dictionary lines, up to 3072 bytes, read as "%s %s %d %d": keyword,
// class ("filter"), weight (1), pinyin flag (0; 1 adds the keyword's pinyin,
// and its initials when asked). "[a b] class" holds a keyword with blanks;
// the weight and flag of such a line are what the four-field reading of the
// whole line found, so "[a b] cls 3 0" keeps weight 1 while "[ab] cls 3 0"
// gets 3. A byte-order mark is skipped; a line with an empty first field is
// skipped.
//
// Refusals, each logged with the line: a keyword of one byte or one
// multi-byte character (" Not Imported (too short)!"); a malformed complex
// expression, invalid UTF-8 in keyword or class, or a line over 3072 bytes
// (" Not Imported!"). The import goes on after a refused line.
//
// Keywords of the class "protect" are never reported: they mark text in
// which no other keyword or correction is reported (names, titles, terms
// that contain a wrong form legitimately).
//
// An import, a deletion and a load replace the whole list; the object is
// read-only otherwise, and Scan is safe from many threads.
#include <memory>
#include <unordered_map>
#include <vector>

#include "keyscan/ComplexFilter.h"
#include "utility/PDAT.h"
#include "utility/POS.h"
#include "utility/StrTran.h"
#include "utility/TString.h"
#include "utility/WordList.h"

// One keyword during import.
struct WORD_INFO {
  tstring word;
  tstring store_info;  // the class name
  int weight = 1;
};

// One thing found in a text.
struct _tKeyHit {
  enum EKind { kKeyword, kPinyin, kComplex, kCorrection };
  size_t offset;  // byte offset into the text
  size_t length;  // byte length of the text found
  EKind eKind;
  // The texts point into the list that scanned (no copy per hit) and stay
  // valid while it lives.
  const char* sWord;   // keyword, expression, or the wrong form of a pair
  const char* sClass;  // class name
  int nWeight;
  const char* sCorrection;  // kCorrection: the right form; "" otherwise
};

class CKeyScanData {
 public:
  CKeyScanData(const char* sDataPath, int nHandle);
  ~CKeyScanData() { Destroy(); }
  CKeyScanData(const CKeyScanData&) = delete;
  CKeyScanData& operator=(const CKeyScanData&) = delete;

  // Loads the list of a handle. False, with the file named in the last error
  // and everything freed, when a dictionary file is missing or damaged.
  bool Load(int nHandle);
  // Imports a user dictionary into this list (onto the current one unless
  // bOverwrite) and saves it. Returns the number of keywords and expressions
  // imported; 0 when the file cannot be opened or the list cannot be built,
  // the earlier files then left whole.
  int ImportUserDict(const char* sFilenameO, bool bAbbrevNeeded, bool bOverwrite);
  // Removes the keywords (or expressions) that the lines of a file name, in
  // the import's line format, and saves the list. Returns the number removed;
  // -1 when the file cannot be opened or the list not saved.
  int DeleteUserDict(const char* sFilenameO);
  // Writes "Word\tClass\tWeight" and a line per keyword, then per
  // expression. Returns the number of entries written; -1 when the file
  // cannot be created.
  int ExportKeyDict(const char* sFilenameO) const;
  void Destroy();
  bool IsLoaded() const { return m_bLoadSuccess; }
  size_t GetKeywordCount() const { return m_nKeywordCount; }

  // Everything found in a text, ordered by offset: keywords (overlapping
  // ones too), pinyin spellings of keywords between non-letters, expressions
  // that hold, and corrections (leftmost, then longest, without overlap).
  // Nothing is reported inside a "protect" keyword.
  void Scan(const tstring& sText, std::vector<_tKeyHit>& vecHits) const;

 private:
  // The four-field reading of a line; false for a line to skip.
  static bool ParseLine(const tstring& sLine, WORD_INFO& info, int& nPinyinFlag);
  tstring FileName(const char* sSuffix) const { return m_sCommFile + sSuffix; }
  bool LoadPart(bool bLoaded, const char* sSuffix, const char* sMessage);
  void StartFromCurrent(std::vector<WORD_INFO>& vecWords) const;
  int ReadUserLines(const tstring& sFile, bool bAbbrevNeeded, std::vector<WORD_INFO>& vecWords);
  bool KeepWord(const tstring& sLine, const WORD_INFO& info, int nPinyinFlag, bool bAbbrevNeeded,
                std::vector<WORD_INFO>& vecWords, std::unordered_map<tstring, size_t>& mapIndex);
  // Builds and saves the list; false (files untouched) past 255 classes.
  bool Build(const std::vector<WORD_INFO>& vecWords);
  bool SaveAll() const;
  void Index();
  void AddCorrections(std::vector<_tPatternMatch>& vecPair, std::vector<_tKeyHit>& vecHits) const;
  void ScanPinyin(const tstring& sText, std::vector<_tKeyHit>& vecHits) const;
  void ScanComplex(const tstring& sText, const std::vector<_tPatternMatch>& vecMatch,
                   std::vector<_tKeyHit>& vecHits) const;
  _tKeyHit KeywordHit(size_t nOffset, size_t nLength, int nId, _tKeyHit::EKind eKind) const;

  std::unique_ptr<CPDAT> m_pKeyDict;
  std::unique_ptr<CWordList> m_pKeyWordList;
  std::unique_ptr<CPOS> m_pKeyPOS;
  std::unique_ptr<CPDAT> m_pClassDict;
  std::unique_ptr<CWordList> m_pClassWordList;
  std::unique_ptr<CComplexFilter> m_pComplexFilter;
  tstring m_sCommFile;  // "<data>/KeyScanner/Filter<handle>_"
  int m_nHandle;
  bool m_bLoadSuccess = false;
  std::unique_ptr<CStrTran> m_pPY2Word;

  tstring m_sDataPath;
  // Derived when a list is loaded or built, for scanning.
  size_t m_nKeywordCount = 0;   // keywords hold ids 0..count-1; terms of expressions follow
  int m_nProtectClass = -1;     // class id of "protect"
  bool m_bHasExpressions = false;
  CPDAT m_pinyinDict;           // the pinyin spellings
};
