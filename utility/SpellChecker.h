#pragma once
// CSpellChecker finds characters written in place of another of the same
// sound or a similar shape ("按装" for "安装") in Chinese text.
//
// A character is suspect when the segmenter leaves it alone, in a word the
// lexicon and the user dictionaries lack, or in a rare word of two characters: a correctly written
// text seldom breaks up there. For a suspect character every same-sound and similar-shape
// candidate is tried; a candidate is kept only where it makes, with its
// neighbours, a frequent lexicon word where the
// written text is no lexicon word (or a rare one), and whose characters are
// all suspect. The language model then scores the clause (a run of Chinese characters) with
// and without the change, and the change is proposed only when it scores
// clearly higher: the margin grows from a same-tone syllable to another tone
// to a similar shape, so that clean text seldom raises a false alarm. At
// most one change is proposed per clause. Left alone: proper names the
// lexicon knows, words it lacks that start with a common surname (people's
// names), text inside quotation marks or title marks, and entries of a
// reference list.
//
// Beside this, a word of the misspelling dictionary is reported with its
// correction, and a word of the similar-word dictionary with the similar
// word that the model prefers by the shape margin.
//
// Read-only after Load: one checker serves every thread.
#include <vector>

#include "utility/ConfusionSet.h"
#include "utility/LanguageModel.h"
#include "utility/TString.h"

class CLexicalAnalyser;
class CQueryExpand;
struct _tToken;

// A proposed correction: the written word at a byte offset of the text, and
// the word to write.
struct _tSpellFinding {
  size_t offset;
  tstring sWrong, sRight;
  float fGain;  // how far the change clears its margin, in log10 units
};

// The margins (log10 of the model's probability ratio) a change must clear.
struct _tSpellMargins {
  float fSameTone = 4.0f;  // chosen on the tuning half of scripts/spell_set.py
  float fSameSyllable = 4.5f;
  float fShape = 5.0f;
};

class CSpellChecker {
 public:
  // The analyser must outlive the checker; the dictionaries may be null.
  CSpellChecker(const CLexicalAnalyser* pAnalyser, const CQueryExpand* pSimDict, const CQueryExpand* pSpellDict);

  // Loads the confusion sets of "<sDataDir>/Data/Spell" and a language model
  // file. False (last error set) when either is missing.
  bool Load(const tstring& sDataDir, const tstring& sModelFile);

  void SetMargins(const _tSpellMargins& margins) { m_margins = margins; }

  // The corrections proposed for a text, in order of offset.
  void Check(const tstring& sText, std::vector<_tSpellFinding>& vecOut) const;

 private:
  struct _tChar;
  struct _tCandidate;
  void MarkChars(const tstring& sText, const std::vector<_tToken>& vecTokens, std::vector<_tChar>& vecChars) const;
  void DictionaryWords(const tstring& sText, const std::vector<_tToken>& vecTokens,
                       std::vector<_tSpellFinding>& vecOut) const;
  void CheckClause(const tstring& sText, const std::vector<_tChar>& vecChars, size_t nFirst, size_t nEnd,
                   std::vector<_tSpellFinding>& vecOut) const;
  void Candidates(const tstring& sText, const std::vector<_tChar>& vecChars, size_t nFirst, size_t nEnd, size_t i,
                  std::vector<_tCandidate>& vecOut) const;
  float ClauseScore(const tstring& sClause) const;
  size_t KnownPrefix(const tstring& sWord, size_t nFrom) const;
  static bool AllSuspect(const std::vector<_tChar>& vecChars, size_t nFrom, size_t nTo);
  float Margin(EConfusion kind) const;
  bool IsFrequentWord(const tstring& sWord) const;
  bool IsWord(const tstring& sWord) const;

  const CLexicalAnalyser* m_pAnalyser;
  const CQueryExpand* m_pSimDict;
  const CQueryExpand* m_pSpellDict;
  CConfusionSet m_confusion;
  CLanguageModel m_model;
  _tSpellMargins m_margins;
  double m_fMinWordLogProb = 0;  // a frequent word is at least this likely
  double m_fRareLogProb = 0;     // a word below this is rare
};
