#pragma once
// CDocxParser is the document model: a DOCX (or another imported file) as
// paragraphs with ids, levels, fonts and sizes, tables, figures, headers and
// footers. Import is not built yet: every import reports the missing service
// and the model stays empty.
#include "utility/TString.h"

class CDocxParser {
 public:
  CDocxParser() = default;
  // The model owns a working folder's worth of parsed text; never copied.
  CDocxParser(const CDocxParser&) = delete;
  CDocxParser& operator=(const CDocxParser&) = delete;

  // Imports a file by its extension. Returns > 0 on success; 0 otherwise.
  int ImportFile(const char* sFilename, const char* sURLPrefix, int nType, int nResultFormat);

  // Imports a text held in memory. Returns > 0 on success; 0 otherwise.
  int ImportMemory(const char* sText, int nType, int nResultFormat);

  // Imports a DOCX and writes its structure file. Returns the model's text,
  // valid until the next import; null on failure.
  const char* ImportDocx(const char* sDocxFilename, const char* sURLPrefix, int nType,
                         int nResultFormat);

  // Loads a saved structure file. Returns > 0 on success; 0 otherwise.
  size_t LoadDocResult(const char* sResultXMLFilename);

  // The template chosen for the document; null before one was chosen.
  const char* GetCurTemplateInfo();

  tstring m_sPath;       // working folder of the imported document (local code page)
  tstring m_sFilename;   // document name without extension (local code page)
  tstring m_sURLPrefix;  // URL prefix of the HTML pages
};
