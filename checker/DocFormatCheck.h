#pragma once
// CDocFormatCheck compares a parsed document with the template that fits it
// and fronts the template store for the template calls: each call that
// changes the store is followed by Save. The format checks themselves are
// not built yet: a check finds nothing.
#include <memory>

#include "docx/DocxTemplate.h"
#include "utility/TString.h"

class CDocxParser;
class CCheckResult;

class CDocFormatCheck {
 public:
  explicit CDocFormatCheck(const char* sDataPath)
      : m_pDocTemplate(new CDocxTemplate(sDataPath)), m_sDataPath(sDataPath ? sDataPath : "") {}
  CDocFormatCheck(const CDocFormatCheck&) = delete;  // owns the template store
  CDocFormatCheck& operator=(const CDocFormatCheck&) = delete;

  // Adds the format findings of a document to pCheckResult. Returns 1.
  int Check(CDocxParser* pDocxParser, CCheckResult* pCheckResult, int nReportType);

  int ImportTemplate(const char* sTemplateFile, int nType, const char* sOrg, const char* sArea,
                     const char* sArgumemt);
  int EditTemplate(int nTemplateID, const char* sTemplateFile, int nType, const char* sOrg,
                   const char* sArea, const char* sArgumemt);
  int FindTemplate(int nType, const char* sOrg, const char* sArea, const char* sArgumemt);
  int DeleteTemplate(int nTemplateID);
  // Template texts stay valid until the next GetTemplate or GetTemplateList.
  const char* GetTemplate(int nTemplateID);
  int GetTemplateCount();
  const char* GetTemplateList(int docType, const char* sOrgnization);

 private:
  std::unique_ptr<CDocxTemplate> m_pDocTemplate;  // the template store
  tstring m_sDataPath;                            // data directory the store lives in
};
