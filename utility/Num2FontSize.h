#pragma once
// CNum2FontSize names font sizes the way Chinese style guides do (小四, 三号,
// ...) and turns names back into sizes. Sizes are in half-points, the unit of
// WordprocessingML's "w:sz": 小四 is 12 pt, so 24.
//
// Table file ("FontSize.dat"), UTF-8 text, one size a line:
//   <name><blanks or tab><half-points>
// Blank lines and lines starting with '#' are skipped; a line whose size is
// not a positive integer is skipped too. A later line for the same name or
// size replaces the earlier one.
#include <map>

#include "utility/TString.h"

class CNum2FontSize {
 public:
  // Adds the sizes of a table file. Returns the number of sizes the table
  // holds afterwards; -1 with "Fail read file <name>" when it cannot be opened.
  int Import(const char* sFilename);

  // The name of a size: its Chinese name when the table has one, else its
  // point value followed by "磅" ("13磅", "10.5磅").
  tstring GetName(int nHalfPoints) const;

  // The size of a name in half-points: a Chinese name from the table or a
  // point value with "磅" or "pt". -1 for anything else.
  int GetSize(const tstring& sName) const;

  size_t GetCount() const { return m_mapSize2Name.size(); }

 private:
  // Pairs a name with a size, replacing any earlier pairing of either.
  void Set(const tstring& sName, int nHalfPoints);

  std::map<int, tstring> m_mapSize2Name;  // half-points -> Chinese name
  std::map<tstring, int> m_mapName2Size;  // Chinese name -> half-points
};

// A size's name in the table, or in points ("13磅") when there is no table.
tstring FontSizeName(const CNum2FontSize* pSizes, int nHalfPoints);
