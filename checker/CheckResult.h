#pragma once
// CCheckResult keeps the findings of one document and renders them as the
// "CheckResults" XML or JSON text. Findings, scoring and rendering are not
// built yet: the collection is empty and rendering reports the missing service.
#include "utility/TString.h"

class CDocxParser;

class CCheckResult {
 public:
  // Forgets every finding.
  void Reset() {}

  // Loads a saved result file. Returns 1 on success; 0 otherwise.
  int Import(const char* sFilename);

  // The findings as "CheckResults" XML (bJson false) or JSON. Returns false
  // with the reason in the last error when they cannot be rendered.
  bool Render(bool bJson, const tstring& sPath, const tstring& sFilename, int nReportType,
              const tstring& sURLPrefix, const CDocxParser* pDocxParser, tstring& sOut) const;
};
