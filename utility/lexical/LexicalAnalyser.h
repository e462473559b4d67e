#pragma once
// CLexicalAnalyser is the segmenter of one data directory: the lexicon and
// hidden Markov model of "Data/Lexicon/" and the user words imported since.
// Segmenting is read-only and safe from any number of threads; an import
// publishes a new user dictionary whole, which later calls see, while calls
// already running finish with the one they started with.
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "utility/TString.h"
#include "utility/lexical/HmmModel.h"
#include "utility/lexical/Lexicon.h"
#include "utility/lexical/Segmenter.h"

class CUserDictionary;

class CLexicalAnalyser {
 public:
  CLexicalAnalyser() = default;
  // Owns the lexicon the segmenter points into.
  CLexicalAnalyser(const CLexicalAnalyser&) = delete;
  CLexicalAnalyser& operator=(const CLexicalAnalyser&) = delete;

  // Loads the lexicon and model of a data directory. False when the folder
  // cannot be read or a file is missing or damaged (the last error says which).
  bool Load(const tstring& sDataPath);
  const tstring& GetDataPath() const { return m_sDataPath; }
  const CLexicon& GetLexicon() const { return m_lexicon; }

  // Imports a user dictionary (see UserDictionary.h for the format); with
  // bOverwrite the earlier user words are dropped first. Returns the number
  // of words imported; 0 when the file cannot be read.
  int ImportUserDict(const char* sFilename, bool bOverwrite);
  // The same for the lines of a text in that format.
  int ImportUserText(const tstring& sText, bool bOverwrite);

  // True when an imported user dictionary holds the word.
  bool IsUserWord(const tstring& sWord) const;

  // The tokens of a paragraph, offsets into sText.
  void Segment(const tstring& sText, std::vector<_tToken>& vecTokens) const;
  // "word/tag" tokens separated by single blanks, or the words alone.
  tstring ParagraphProcess(const tstring& sText, bool bTags) const;

 private:
  std::shared_ptr<const CUserDictionary> UserDict() const;
  // Builds a dictionary on the current one (none with bOverwrite) and publishes it.
  int Import(bool bOverwrite,
             const std::function<std::unique_ptr<CUserDictionary>(const CUserDictionary*, int&, int&)>& fnBuild);

  CLexicon m_lexicon;
  CHmmModel m_hmm;
  std::unique_ptr<CSegmenter> m_pSegmenter;  // over m_lexicon and m_hmm
  tstring m_sDataPath;
  std::mutex m_mutexImport;                           // one import at a time
  mutable std::mutex m_mutexUser;                     // guards the pointer below, not the dictionary
  std::shared_ptr<const CUserDictionary> m_pUserDict;  // immutable once published
};
