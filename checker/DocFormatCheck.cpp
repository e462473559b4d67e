#include "checker/DocFormatCheck.h"

#include "checker/CheckResult.h"
#include "checker/ConsistencyCheck.h"
#include "checker/FormatCheckRun.h"
#include "checker/FormatComparison.h"
#include "docx/DocFormat.h"
#include "docx/Document.h"
#include "utility/ErrorLog.h"

CDocFormatCheck::CDocFormatCheck(const char* sDataPath, const CNum2FontSize* pSizeNames)
    : m_pDocTemplate(new CDocxTemplate(sDataPath)), m_pSizeNames(pSizeNames) {}

int CDocFormatCheck::Check(CDocument& doc, CCheckResult& result, int nReportType, const _tTemplateKeys& keys) const {
  CFormatCheckRun(doc, result, nReportType).Run();
  CConsistencyCheck(m_pSizeNames).Check(doc, result);
  if (nReportType == 3) return 2;
  CDocFormat docFormat;
  const int nFound = m_pDocTemplate->FindTemplate(nReportType, keys.organization.c_str(), keys.area.c_str(),
                                                  keys.argument.c_str(), docFormat);
  const tstring sKeys = "organization=" + keys.organization + "  and area=" + keys.area + "  and argument=" + keys.argument;
  if (docFormat.IsEmpty()) {
    SetLastError("Cannot find right template with " + sKeys);
    return -2;
  }
  WriteLog("Find and use template with " + sKeys);
  const tstring sChosen = m_pDocTemplate->GetOrganization(nFound < 0 ? 0 : nFound);
  if (sChosen == "*" || sChosen != keys.organization) AddDefaultTemplateNote(result);
  CheckWithFormat(doc, result, docFormat);
  return 1;
}

// The template that fits is not the organisation's own (one filed for any
// organisation, or the fallback): the user learns why the format findings
// may not be their house's rules, and what to do.
void CDocFormatCheck::AddDefaultTemplateNote(CCheckResult& result) {
  _tCheckResult note;
  note.para_id = (uint32_t)-1;
  note.error_id = "15.9";
  note.field_id = 5;
  note.revise_type = 4;
  note.new_str = kDefaultTemplateNote;
  result.AddResult(note);
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
