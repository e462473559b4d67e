#pragma once
// CKeyScanner finds the keywords of the dictionaries in the "KeyScanner"
// data folder in a text and lists, for the error-word check, corrections in
// the form "(Check ...)A-->B##C-->D$". Scanning is read-only; importing a
// dictionary changes the scanner and runs only while no scan does.
// Its dictionaries are not built yet: start-up succeeds on a readable data
// directory and a scan finds nothing.
#include "utility/TString.h"

class CKeyScanner {
 public:
  // Starts the scanner on a data directory; nEncoding 1 is UTF-8.
  // Returns 1, or 0 with its reason in GetLastErrorMsg().
  int Init(const char* sDataPath, int nEncoding);

  // Scans a text with the dictionary of nHandle in mode nMode. Returns the
  // scanner's result text, "" when nothing was found.
  tstring ScanDetail(const tstring& sText, int nMode, int nHandle) const;

  // Imports a keyword dictionary into the dictionary of nHandle. Returns the
  // number of keywords imported; 0 on failure.
  int ImportUserDict(const char* sFilename, bool bAbbrevNeeded, bool bOverwrite, int nHandle);

  // The scanner's own last failure text.
  const tstring& GetLastErrorMsg() const { return m_sLastError; }

 private:
  tstring m_sLastError;  // changed only by Init and ImportUserDict
};
