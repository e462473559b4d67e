#pragma once
// CPOS keeps, per word id, its class id and its weight: the part of speech
// and frequency of a lexicon word, or the class and weight of a keyword.
#include <cstdint>
#include <vector>

#include "utility/TString.h"

struct POS_elem {
  int32_t POS_id = -1;  // class id; -1 when the id has no entry
  int32_t freq = 0;     // weight
  int32_t handle = -1;  // the word's id
};

class CPOS {
 public:
  // Sets the entry of a word id. Negative ids are ignored.
  void Set(int nId, int nPOSId, int nFreq);
  // The entry of an id; an empty entry (POS_id -1) for an id without one.
  POS_elem Get(int nId) const;
  size_t GetCount() const { return m_vecElem.size(); }
  void Clear() { m_vecElem.clear(); }

  // "POS_" data file; Load replaces the entries, false with the file named
  // in the last error when it is damaged.
  bool Save(const tstring& sFilename) const;
  bool Load(const tstring& sFilename);

 private:
  std::vector<POS_elem> m_vecElem;  // indexed by word id
};
