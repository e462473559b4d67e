#include "checker/DocFormatCheck.h"

int CDocFormatCheck::Check(CDocxParser*, CCheckResult*, int) { return 1; }

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

int CDocFormatCheck::FindTemplate(int nType, const char* sOrg, const char* sArea, const char* sArgumemt) {
  return m_pDocTemplate->FindTemplate(nType, sOrg, sArea, sArgumemt, false);
}

int CDocFormatCheck::DeleteTemplate(int nTemplateID) {
  int nId = m_pDocTemplate->DeleteTemplate(nTemplateID);
  m_pDocTemplate->Save();
  return nId;
}

const char* CDocFormatCheck::GetTemplate(int nTemplateID) { return m_pDocTemplate->GetTemplate(nTemplateID); }

int CDocFormatCheck::GetTemplateCount() { return (int)m_pDocTemplate->GetCount(); }

const char* CDocFormatCheck::GetTemplateList(int docType, const char* sOrgnization) {
  return m_pDocTemplate->GetTemplateList(docType, sOrgnization);
}
