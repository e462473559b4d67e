#include "checker/DocFormatCheck.h"

#include "checker/CheckResult.h"
#include "checker/FormatCheckRun.h"
#include "checker/FormatComparison.h"
#include "docx/DocFormat.h"
#include "docx/Document.h"
#include "utility/ErrorLog.h"

CDocFormatCheck::CDocFormatCheck(const char* sDataPath, const CNum2FontSize* pSizeNames)
    : m_pDocTemplate(new CDocxTemplate(sDataPath)), m_pSizeNames(pSizeNames), m_sDataPath(sDataPath ? sDataPath : "") {}

int CDocFormatCheck::Check(CDocument& doc, CCheckResult& result, int nReportType, const _tTemplateKeys& keys) const {
  CFormatCheckRun(doc, result, nReportType).Run();
  if (nReportType == 3) return 2;
  CDocFormat docFormat;
  m_pDocTemplate->FindTemplate(nReportType, keys.organization.c_str(), keys.area.c_str(), keys.argument.c_str(),
                               docFormat);
  const tstring sKeys = "organization=" + keys.organization + "  and area=" + keys.area + "  and argument=" + keys.argument;
  if (docFormat.IsEmpty()) {
    SetLastError("Cannot find right template with " + sKeys);
    return -2;
  }
  WriteLog("Find and use template with " + sKeys);
  CheckWithFormat(doc, result, docFormat);
  return 1;
}

int CDocFormatCheck::ReCheck(const CDocument& doc, CCheckResult& result, int nTemplateID) const {
  CDocFormat docFormat;
  if (m_pDocTemplate->GetTemplate(nTemplateID, docFormat) < 0) {
    SetLastError("No template " + std::to_string(nTemplateID));
    return -1;
  }
  CheckWithFormat(doc, result, docFormat);
  result.SortResult();
  return 1;
}

int CDocFormatCheck::CheckWithFormat(const CDocument& doc, CCheckResult& result, const CDocFormat& docFormat) const {
  return CFormatComparison(docFormat, m_pSizeNames).CheckDocument(doc, result);
}

int CDocFormatCheck::ImportTemplate(const char* sTemplateFile, int nType, const char* sOrg, const char* sArea,
                                    const char* sArgumemt) {
  int nId = m_pDocTemplate->ImportTemplate(nType, sOrg, sArea, sArgumemt, sTemplateFile);
  m_pDocTemplate->Save();
  return nId;
}

int CDocFormatCheck::EditTemplate(int nTemplateID, const char* sTemplateFile, int nType, const char* sOrg,
                                  const char* sArea, const char* sArgumemt) {
  int nId = m_pDocTemplate->EditTemplate(nTemplateID, nType, sOrg, sArea, sArgumemt, sTemplateFile);
  m_pDocTemplate->Save();
  return nId;
}

int CDocFormatCheck::FindTemplate(int nType, const char* sOrg, const char* sArea, const char* sArgumemt) const {
  return m_pDocTemplate->FindTemplate(nType, sOrg, sArea, sArgumemt, false);
}

int CDocFormatCheck::DeleteTemplate(int nTemplateID) {
  int nId = m_pDocTemplate->DeleteTemplate(nTemplateID);
  m_pDocTemplate->Save();
  return nId;
}

tstring CDocFormatCheck::GetTemplate(int nTemplateID) const { return m_pDocTemplate->GetTemplate(nTemplateID); }

tstring CDocFormatCheck::GetTemplateJson(int nTemplateID) const { return m_pDocTemplate->GetTemplateJson(nTemplateID); }

int CDocFormatCheck::GetTemplateCount() const { return (int)m_pDocTemplate->GetCount(); }

tstring CDocFormatCheck::GetTemplateList(int docType, const char* sOrgnization) const {
  return m_pDocTemplate->GetTemplateList(docType, sOrgnization);
}
