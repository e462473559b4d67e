#pragma once
// CCountryDetector finds country names in a text: the Chinese short and full
// names and the English names of the countries of its list.
//
// List file, UTF-8, '#' starts a comment line; one country a line:
//   <Chinese short name> TAB <Chinese full name> TAB <English name>[|<English name>...]
#include <vector>

#include "utility/PDAT.h"
#include "utility/TString.h"

struct _tCountryMatch {
  size_t offset;  // byte offset of the name in the text
  size_t length;  // byte length of the name
  int country;    // index of the country in the list
};

class CCountryDetector {
 public:
  // Reads a list. Returns the number of countries; 0 when the file cannot be
  // read or lists none (the last error names the file).
  int Load(const tstring& sFilename);

  // Country names in the text, left to right, never overlapping: where names
  // overlap the one that starts first wins, then the longer ("印度尼西亚", not
  // "印度"). An English name counts only as a whole word ("Chad", not "Chadwick").
  std::vector<_tCountryMatch> Find(const tstring& sText) const;

  // The Chinese short name of a country; "" for an index outside the list.
  const char* GetShortName(int nCountry) const;
  size_t GetCount() const { return m_vecShortName.size(); }

 private:
  CPDAT m_dictNames;                  // every name -> name id
  std::vector<int> m_vecNameCountry;  // name id -> country index
  std::vector<bool> m_vecNameLatin;   // name id -> English name (needs word bounds)
  std::vector<tstring> m_vecShortName;  // country index -> Chinese short name
};
