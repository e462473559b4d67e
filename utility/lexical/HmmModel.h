#pragma once
// CHmmModel is the hidden Markov model that finds words in runs of Chinese
// characters the lexicon does not split: each character is the Begin,
// Middle or End of a word, or a Single-character word (B M E S), and the
// most probable labelling wins (Viterbi).
//
// Text source (from Debian's jieba tables, converted at build time), lines:
//   start STATE LOGP | trans FROM TO LOGP | emit STATE CHAR LOGP
// Stored as "Lexicon/hmm.dat". Read-only after loading.
#include <array>
#include <vector>

#include "utility/TString.h"

class CHmmModel {
 public:
  // Reads the text source. Returns the number of emission entries; 0 when
  // the file cannot be read or holds no start and transition table.
  int Build(const tstring& sTextFile);
  bool Save(const tstring& sFile) const;
  bool Load(const tstring& sFile);

  // Cuts a run of Han characters into words; returns each word's length in
  // characters, in order.
  void Cut(const std::vector<uint32_t>& vecChars, std::vector<size_t>& vecWordLengths) const;

 private:
  static constexpr size_t kStates = 4;  // B, M, E, S
  double m_fStart[kStates] = {};
  double m_fTrans[kStates][kStates] = {};
  std::vector<std::array<double, kStates>> m_vecEmit;  // per BMP character
};
