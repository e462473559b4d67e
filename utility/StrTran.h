#pragma once
// CStrTran is a two-column table with named columns, such as "py" (pinyin)
// and "word": pairs looked up from either side. One value may pair with
// several on the other side ("shi" -> 是, 事, 市).
#include <map>
#include <vector>

#include "utility/TString.h"

class CStrTran {
 public:
  CStrTran(const char* sFirstColumn, const char* sSecondColumn)
      : m_sFirstColumn(sFirstColumn), m_sSecondColumn(sSecondColumn) {}

  // Adds a pair; an identical pair is kept once.
  void Add(const tstring& sFirst, const tstring& sSecond);
  // Values of the second column paired with sFirst, in order of addition.
  std::vector<tstring> FindSecond(const tstring& sFirst) const;
  // Values of the first column paired with sSecond, in order of addition.
  std::vector<tstring> FindFirst(const tstring& sSecond) const;
  // Every pair, in order of addition.
  const std::vector<std::pair<tstring, tstring>>& GetPairs() const { return m_vecPair; }
  void Clear();

  // The file of a table under a common prefix: prefix + "<first>2<second>.tran".
  tstring GetFilename(const tstring& sPrefix) const;
  // "STRT" data file; the column names are stored and must match on Load.
  bool Save(const tstring& sPrefix) const;
  bool Load(const tstring& sPrefix);

 private:
  tstring m_sFirstColumn, m_sSecondColumn;           // column names
  std::vector<std::pair<tstring, tstring>> m_vecPair;  // pairs in order of addition
  std::multimap<tstring, size_t> m_mapFirst;           // first value -> pair index
  std::multimap<tstring, size_t> m_mapSecond;          // second value -> pair index
};
