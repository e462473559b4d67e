#pragma once
// CLanguageModel scores word sequences with a word n-gram model of Simplified
// Chinese (a KenLM binary file, as Debian's input-method language data ships
// it). The spelling check compares the score of a sentence with that of the
// sentence changed by one character. Scoring is read-only and safe from
// many threads; the model file is mapped, not read.
#include <memory>
#include <vector>

#include "utility/TString.h"

namespace libime {
class LanguageModel;
}

class CLanguageModel {
 public:
  CLanguageModel();
  ~CLanguageModel();
  CLanguageModel(const CLanguageModel&) = delete;
  CLanguageModel& operator=(const CLanguageModel&) = delete;

  // Maps a model file. False (last error set) when it is missing or damaged.
  bool Load(const tstring& sFile);
  bool IsLoaded() const { return m_pModel != nullptr; }

  // The log10 probability of the words at the start of a sentence; words
  // the model lacks cost its unknown-word penalty.
  float Score(const std::vector<tstring>& vecWords) const;

  // True when the model has the word in its vocabulary.
  bool IsKnown(const tstring& sWord) const;

  // The model Debian installs, or "" when it is not present.
  static tstring DefaultModelFile();

 private:
  std::unique_ptr<libime::LanguageModel> m_pModel;
};
