#pragma once
// CSegmenter cuts UTF-8 text into tagged words.
//
// In order: words of the user dictionary are fixed first, wherever they
// occur; blanks separate and are dropped; runs of Chinese characters,
// letters, digits and the marks + # & . _ % - (and a comma between digits in
// thousands) are cut along the most probable path through the lexicon's
// word graph; single characters left over between words are cut again by
// the hidden Markov model when together they form no word of the lexicon,
// so unknown words such as names come out whole; letter-digit runs and
// numbers ("3.14", "1,000", "25%") stay whole; neighbouring Chinese numerals
// join ("三百" + "五十"); every other character is punctuation, one token
// (a run of … or of dashes is one token). Tags: see CharClass.h.
//
// The segmenter holds const pointers only and keeps no state between calls:
// one instance serves any number of threads at once.
#include <vector>

#include "utility/TString.h"

class CLexicon;
class CHmmModel;
class CUserDictionary;

struct _tToken {
  size_t offset;    // byte offset of the word in the text
  size_t length;    // byte length of the word
  const char* tag;  // interned tag
  bool group;       // a user word with blanks, printed as "[w1 w2]"
};

class CSegmenter {
 public:
  // Both must outlive the segmenter.
  CSegmenter(const CLexicon* pLexicon, const CHmmModel* pHmm) : m_pLexicon(pLexicon), m_pHmm(pHmm) {}

  // The tokens of a text, in order; pUser may be null.
  void Segment(const tstring& sText, const CUserDictionary* pUser, std::vector<_tToken>& vecTokens) const;

  // "word/tag" tokens separated by single blanks (bTags), or the words alone;
  // a group is written "[w1 w2]" before its tag.
  static tstring Format(const tstring& sText, const std::vector<_tToken>& vecTokens, bool bTags);

 private:
  struct _tContext;
  void SegmentBlock(_tContext& ctx, size_t nBegin, size_t nEnd) const;
  void FlushSingles(_tContext& ctx, size_t nBegin, size_t nEnd) const;
  void CutUnknown(_tContext& ctx, size_t nBegin, size_t nEnd) const;

  const CLexicon* m_pLexicon;  // not owned
  const CHmmModel* m_pHmm;     // not owned
};
