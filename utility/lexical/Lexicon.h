#pragma once
// CLexicon is the analyser's word list: every word with its frequency and
// part-of-speech tag, as a CPDAT for walking word prefixes over text.
//
// Built once, at build time, from a text list of "word frequency [tag]"
// lines (Debian's jieba dictionary), and stored in the data directory as
// "Lexicon/lexicon.pdat" (words), "Lexicon/lexicon.pos" (per word id: tag id
// and frequency) and "Lexicon/lexicon.tags" (tag names).
// Read-only after loading, so one lexicon serves every thread.
#include <vector>

#include "utility/PDAT.h"
#include "utility/TString.h"

class CLexicon {
 public:
  CLexicon() = default;
  CLexicon(const CLexicon&) = delete;  // large: share it by pointer
  CLexicon& operator=(const CLexicon&) = delete;

  // Reads a word list. Lines with no word or a frequency below 1 are skipped;
  // a missing tag reads as "x". Returns the number of words; 0 when the file
  // cannot be read (the last error names it).
  int Build(const tstring& sWordListFile);

  // Writes and reads the three files under sFolder ("<data>/Data/Lexicon").
  bool Save(const tstring& sFolder) const;
  bool Load(const tstring& sFolder);

  const CPDAT& GetDict() const { return m_dict; }
  // log(frequency / total) of a word id.
  double GetLogProb(int nId) const { return m_vecLogProb[nId]; }
  // The score of a character no word covers: log(1 / total).
  double GetUnknownLogProb() const { return m_fUnknownLogProb; }
  // The interned tag of a word id.
  const char* GetTag(int nId) const { return m_vecTag[nId]; }
  size_t GetCount() const { return m_dict.GetCount(); }

 private:
  void Prepare(const std::vector<int32_t>& vecFreq, const std::vector<int32_t>& vecTagId,
               const std::vector<tstring>& vecTagName);

  CPDAT m_dict;                        // word -> id
  std::vector<int32_t> m_vecFreq;      // per id: frequency
  std::vector<int32_t> m_vecTagId;     // per id: index into m_vecTagName
  std::vector<tstring> m_vecTagName;   // tag names
  std::vector<double> m_vecLogProb;    // per id: log(freq / total)
  std::vector<const char*> m_vecTag;   // per id: interned tag
  double m_fUnknownLogProb = 0;        // log(1 / total)
};
