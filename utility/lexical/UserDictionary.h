#pragma once
// CUserDictionary holds the words of imported user dictionaries. They take
// precedence over the lexicon: wherever one occurs in a text (leftmost, then
// longest, first) it becomes one token with its own tag.
//
// File format, one word a line, lines up to 4096 bytes:
//   word<TAB>tag            a word and its tag
//   [w1 w2]<TAB>tag         a word with blanks, between brackets
//   word                    a word alone: tag "n"
//   word freq tag           blank-separated (no TAB): the first field is the
//                           word, the last the tag
// A byte-order mark at the start of a line is skipped; empty lines and lines
// starting with '#' are comments. A line without a word, with an unclosed
// bracket, an over-long line or a tag with blanks is refused: it is reported
// in the error log with the file and line number and the import goes on.
#include <istream>
#include <memory>
#include <vector>

#include "utility/PDAT.h"
#include "utility/TString.h"

class CUserDictionary {
 public:
  // A dictionary with the words of pBase (may be null) and those of a file;
  // a word imported again takes its new tag. nImported and nRefused count the
  // file's lines. Null with the last error set when the file cannot be read.
  static std::unique_ptr<CUserDictionary> Import(const CUserDictionary* pBase, const tstring& sFilename,
                                                 int& nImported, int& nRefused);
  // The same for lines in memory; sName names them in the error log.
  static std::unique_ptr<CUserDictionary> ImportStream(const CUserDictionary* pBase, std::istream& in,
                                                       const tstring& sName, int& nImported, int& nRefused);

  const CPDAT& GetDict() const { return m_dict; }
  const char* GetTag(int nId) const { return m_vecTag[nId]; }
  bool HasBlank(int nId) const { return m_vecBlank[nId]; }
  size_t GetCount() const { return m_dict.GetCount(); }

 private:
  CPDAT m_dict;                     // word -> id
  std::vector<const char*> m_vecTag;  // per id: interned tag
  std::vector<bool> m_vecBlank;       // per id: the word holds a blank
};
