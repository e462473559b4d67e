#pragma once
// CZYG is the compiled rule set of one document type ("ZYG_<type>.rule" in the
// data folder). The rule language is not built yet: a rule set opens empty and
// importing or scanning reports the missing service.
#include "utility/TString.h"

class CZYG {
 public:
  // Opens the rule set of document type nId in the folder sPath.
  CZYG(const char* sPath, int nId) : m_sPath(sPath ? sPath : ""), m_nId(nId) {}
  CZYG(const CZYG&) = delete;  // owns compiled rules
  CZYG& operator=(const CZYG&) = delete;

  // Imports rules from an XML rule file. Returns the number of rules; 0 on failure.
  int ImportRule(const char* sXMLFile, bool bOverwrite);

  // Scans one text with every rule. Returns the extraction result text; false
  // with the reason in the last error when the text cannot be scanned.
  bool ScanText(const char* sText, int nParaId, tstring& sResult);

  int GetId() const { return m_nId; }

 private:
  tstring m_sPath;  // folder of the rule files
  int m_nId;        // document type
};
