#pragma once
// CDocReviser applies findings to the DOCX text and marks them in the HTML
// pages. Not built yet: revising reports the missing service.
#include "utility/TString.h"

class CDocReviser {
 public:
  // Applies the finding list of a saved result to its document. Returns the
  // reviser's text, valid until the next call; null on failure.
  const char* Revise(const char* sReviseXMLFile);
};
