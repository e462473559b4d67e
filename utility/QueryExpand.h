#pragma once
// CQueryExpand is one dictionary of the spelling check: for a word, the forms
// it may stand for. The similar-word dictionary ("SimDict") lists words that
// are easily written for one another; the misspelling dictionary (named
// "SpellError") lists a wrong form with its correction.
//
// Imported files hold one entry a line: a word, then its forms, separated by
// blanks or tabs ("按装 安装", "部署 布署 部属"); a line with "-->" reads
// as "wrong-->right". Empty lines and lines starting with '#' are skipped; a
// line with a word and no form, or with invalid UTF-8, is refused and logged
// with its line number. A word imported again gains the new forms.
//
// The dictionary is kept as "<name>.txt" in the data folder (the same
// format, written through a temporary name) and read back at construction;
// every import also rewrites "<name>_userdict.txt", the dictionary's words
// as segmenter user words, so that a check segments each one whole.
// Lookups are read-only and safe from many threads; imports run only while
// no lookup does (the engine's writer lock).
#include <map>
#include <vector>

#include "utility/TString.h"

class CQueryExpand {
 public:
  // sDataPath: the "Data" folder; sName: the dictionary's name, null for the
  // similar-word dictionary.
  CQueryExpand(const char* sDataPath, const char* sName);
  CQueryExpand(const CQueryExpand&) = delete;  // owns a dictionary; never shared by copy
  CQueryExpand& operator=(const CQueryExpand&) = delete;

  // Imports a word list and an optional associate list (same format, may be
  // null). Returns the number of entries imported; 0 on failure (last error
  // set), the saved dictionary then left as it was.
  int SimDictGenerate(const char* sDictFile, const char* sAssociateFile);

  // The forms of a word; null when it has none.
  const std::vector<tstring>* Expand(const tstring& sWord) const;
  size_t GetCount() const { return m_mapForms.size(); }

  // The dictionary's file name without extension: "<Data>/SimDict" or "<Data>/<name>".
  const tstring& GetFilename() const { return m_sFilename; }

 private:
  // Adds a file's entries to mapForms; -1 when it cannot be read.
  int ImportFile(const char* sFile, std::map<tstring, std::vector<tstring>>& mapForms) const;
  bool Save(const std::map<tstring, std::vector<tstring>>& mapForms) const;

  tstring m_sFilename;  // data path + "/" + dictionary name
  std::map<tstring, std::vector<tstring>> m_mapForms;
};
