#pragma once
// CQueryExpand is one dictionary of the spelling service: similar words, or
// misspellings with their corrections (the dictionary named "SpellError").
// The dictionary itself is not built yet; the object knows its file name and
// reports the missing service when asked to import.
#include "utility/TString.h"

class CQueryExpand {
 public:
  // sDataPath: the "Data" folder; sName: the dictionary's name, null for the
  // similar-word dictionary.
  CQueryExpand(const char* sDataPath, const char* sName);
  CQueryExpand(const CQueryExpand&) = delete;  // owns a dictionary; never shared by copy
  CQueryExpand& operator=(const CQueryExpand&) = delete;

  // Imports a word list (and an optional associate list). Returns the number
  // of entries imported; 0 on failure.
  int SimDictGenerate(const char* sDictFile, const char* sAssociateFile);

  // The dictionary's file name without extension: "<Data>/SimDict" or "<Data>/<name>".
  const tstring& GetFilename() const { return m_sFilename; }

 private:
  tstring m_sFilename;  // data path + "/" + dictionary name
};
