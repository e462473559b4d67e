#pragma once
// CWordList maps ids back to their words: the reverse of CPDAT. Ids need not
// be dense; an id never given a word reads as "".
#include <cstdint>
#include <vector>

#include "utility/TString.h"

class CWordList {
 public:
  // Sets the word of an id (replacing an earlier one). Negative ids are ignored.
  void AddWord(const tstring& sWord, int nId);
  // The word of an id; "" for an id without one. Valid until the list changes.
  const char* GetWord(int nId) const;
  // One more than the highest id set.
  size_t GetCount() const { return m_vecOffset.size(); }
  void Clear();

  // "WLST" data file. Load replaces the list; false (list empty, file named in
  // the last error) when the file is damaged.
  bool Save(const tstring& sFilename) const;
  bool Load(const tstring& sFilename);

 private:
  std::vector<int64_t> m_vecOffset;  // per id: offset of its word in m_sText, -1 when unset
  tstring m_sText;                   // the words, each followed by a zero byte
};
