#include "checker/DocFormatCheck.h"

#include <algorithm>

#include "api/Globals.h"
#include "checker/CheckResult.h"
#include "checker/SectionOrderCheck.h"
#include "docx/DocFormat.h"
#include "docx/DocxParser.h"
#include "docx/PaperStructure.h"
#include "utility/ErrorLog.h"
#include "utility/NumberOrder.h"
#include "utility/Utf8.h"

namespace {

const char kContentOutdated[] = "Original Content is outdate, need update manually after download.";
const size_t kLongHeadingBytes = 121;  // an unnumbered "heading" this long is body text

bool HasContentCheck(int nReportType) { return nReportType == 1 || nReportType == 2 || nReportType == 7; }

tstring FirstCharacter(const tstring& sText) {
  if (sText.empty()) return sText;
  uint32_t nChar = 0;
  return sText.substr(0, DecodeUtf8(sText.data(), sText.size(), nChar));
}

}  // namespace

void CDocFormatCheck::AddFinding(uint32_t nParaId, const char* szErrorId, int nField, int nReviseType,
                                 const tstring& sOrg, const tstring& sNew) {
  _tCheckResult result;
  result.para_id = nParaId;
  result.text = m_pDocxParser->GetText(nParaId);
  result.error_id = szErrorId;
  result.field_id = nField;
  result.revise_type = nReviseType;
  result.org_str = sOrg;
  result.new_str = sNew;
  m_pCheckResult->AddResult(result);
}

int CDocFormatCheck::Check(CDocxParser* pDocxParser, CCheckResult* pCheckResult, int nReportType) {
  if (pDocxParser == nullptr || pCheckResult == nullptr) return -1;
  m_pDocxParser = pDocxParser;
  m_pCheckResult = pCheckResult;
  m_nReportType = nReportType;
  if (HasContentCheck(nReportType) && !IsContentUpdated()) CheckContent();
  ScanChapter();
  CSectionOrderCheck order(*pDocxParser, *pCheckResult);
  order.CheckSections();
  CheckFigureTablePosition();
  order.CheckFigureTableOrder();
  if (CPaperStructure::IsThesis(nReportType)) CPaperStructure::CheckParts(*pDocxParser, *pCheckResult);
  if (nReportType == 6 || nReportType == 7) {
    order.CheckFormulaOrder();
    order.CheckReferenceOrder();
  }
  if (nReportType == 3) return 2;
  tstring sOrg, sArea, sArgu;
  pDocxParser->GetOrgType(nReportType, sOrg, sArea, sArgu);
  CDocFormat docFormat;
  m_pDocTemplate->FindTemplate(nReportType, sOrg.c_str(), sArea.c_str(), sArgu.c_str(), docFormat);
  tstring sKeys = "organization=" + sOrg + "  and area=" + sArea + "  and argument=" + sArgu;
  if (docFormat.IsEmpty()) {
    const tstring sError = "Cannot find right template with " + sKeys;
    SetLastError(sError);
    WriteError(sError);
    return -2;
  }
  WriteLog("Find and use template with " + sKeys);
  CheckWithFormat(pDocxParser, pCheckResult, docFormat);
  return 1;
}

int CDocFormatCheck::ReCheck(CDocxParser* pDocxParser, CCheckResult* pCheckResult, int nTemplateID) {
  if (pDocxParser == nullptr || pCheckResult == nullptr) return -1;
  m_pDocxParser = pDocxParser;
  m_pCheckResult = pCheckResult;
  CDocFormat docFormat;
  m_pDocTemplate->GetTemplate(nTemplateID, docFormat);
  CheckWithFormat(pDocxParser, pCheckResult, docFormat);
  pCheckResult->SortResult();
  return 1;
}

int CDocFormatCheck::CheckWithFormat(CDocxParser* pDocxParser, CCheckResult* pCheckResult, CDocFormat& docFormat) {
  m_nLineIndex = 0;
  docFormat.SetSizeNames(g_pNum2FontSize.get());
  for (auto& vecParas : pDocxParser->m_vecHeadFooter)
    for (_tParagraph& para : vecParas) docFormat.CheckFormatOnParagraph(para, pCheckResult);
  for (_tParagraph& para : pDocxParser->m_vecParagraph) docFormat.CheckFormatOnParagraph(para, pCheckResult);
  for (_tTable& table : pDocxParser->m_vecTable)
    for (auto& row : table.rows)
      for (auto& cell : row)
        for (_tParagraph& para : cell) docFormat.CheckFormatOnParagraph(para, pCheckResult);
  docFormat.CheckRequired(pCheckResult, (unsigned)-1);
  const int nStart = std::max(pDocxParser->m_nReferenceStartIndex, 0);
  CSectionOrderCheck order(*pDocxParser, *pCheckResult);
  for (int i = nStart; i <= pDocxParser->m_nReferenceEndIndex && (size_t)i < pDocxParser->m_vecParagraph.size(); ++i)
    order.CheckReference(pDocxParser->m_vecParagraph[i]);
  return 1;
}

bool CDocFormatCheck::IsContentUpdated() const {
  const std::vector<int>& vecHeadings = m_pDocxParser->m_vecDocStruct;
  const std::vector<int>& vecEntries = m_pDocxParser->m_vecContentStruct;
  if (vecHeadings.size() != vecEntries.size()) return false;
  const std::vector<_tParagraph>& vecParas = m_pDocxParser->m_vecParagraph;
  for (size_t i = 0; i < vecHeadings.size(); ++i) {
    if ((size_t)vecHeadings[i] >= vecParas.size() || (size_t)vecEntries[i] >= vecParas.size()) return false;
    if (vecParas[vecEntries[i]].text.find(vecParas[vecHeadings[i]].text) == tstring::npos) return false;
  }
  return true;
}

void CDocFormatCheck::CheckContent() {
  const std::vector<int>& vecEntries = m_pDocxParser->m_vecContentStruct;
  uint32_t nParaId = 0;
  if (!vecEntries.empty() && vecEntries[0] > 0 && (size_t)vecEntries[0] <= m_pDocxParser->m_vecParagraph.size())
    nParaId = m_pDocxParser->m_vecParagraph[vecEntries[0] - 1].id;
  AddFinding(nParaId, "1.6", 5, 4, "", kContentOutdated);
}

void CDocFormatCheck::ScanChapter() {
  m_vecSectionPosition.clear();
  m_pDocxParser->m_vecChapterParaIndex.clear();
  m_pDocxParser->m_vecChapterId.clear();
  std::vector<_tSection_Info> vecChapters;
  for (int nIndex : m_pDocxParser->m_vecDocStruct) {
    if (nIndex < 0 || (size_t)nIndex >= m_pDocxParser->m_vecParagraph.size()) continue;
    _tParagraph& para = m_pDocxParser->m_vecParagraph[nIndex];
    _tSection_Info info;
    ExtractOrder(para.text, kOrderHeading, info);
    if (para.text.size() >= kLongHeadingBytes && info.num_format == kStyleNone) {
      AddFinding(para.id, "1.3.9", 3, 2, std::to_string(para.level), "");
      para.level = 1000;
      continue;
    }
    if (para.level != 1) continue;
    if (info.order > 0 && info.level != 1) {
      AddFinding(para.id, "1.3.7", 3, 1, std::to_string(para.level), std::to_string(info.level));
      info.error_id = "1.3.7";
      para.level = info.level;
    }
    info.para_id = para.id;
    vecChapters.push_back(info);
  }
  CSectionOrderCheck(*m_pDocxParser, *m_pCheckResult).CheckPartOrder(vecChapters, 1, 1);
  for (const _tSection_Info& info : vecChapters) {
    if (info.error_id == "1.3.7") continue;
    const int nChapter = info.orderNew != 0 ? info.orderNew : info.order;
    if (nChapter <= 0) continue;
    _tParaIndex index;
    m_pDocxParser->GetParaIndex(info.para_id, index);
    m_pDocxParser->m_vecChapterId.push_back(nChapter);
    m_pDocxParser->m_vecChapterParaIndex.push_back((int)index.para_index);
    m_vecSectionPosition.emplace_back(1, nChapter, info.para_id, std::to_string(nChapter));
  }
}

void CDocFormatCheck::CheckFigureTablePosition() {
  const CDocxParser& parser = *m_pDocxParser;
  const std::vector<int>& vecEntries = parser.m_vecContentStruct;
  const int nFirst = vecEntries.empty() ? 0 : vecEntries.front(), nLast = vecEntries.empty() ? 0 : vecEntries.back();
  bool bBodySeen = false;
  uint32_t nRemembered = 0;
  for (size_t i = 0; i < parser.m_vecParagraph.size(); ++i) {
    const _tParagraph& para = parser.m_vecParagraph[i];
    uint32_t nCurrent = para.id;
    if (para.level == -500) bBodySeen = true;
    if (para.level == kLevelTable || para.level == kLevelFigure) {
      const tstring& sAnchor = parser.GetText(nRemembered);
      if ((int)i >= nFirst && (int)i <= nLast && !vecEntries.empty()) {
        AddFinding(nRemembered, "1.3.12", 2, 2, sAnchor, "");
      } else if (m_nReportType == 4 && !bBodySeen) {
        AddFinding(nRemembered, "1.3.13", 2, 2, sAnchor, "");
      } else if ((int)i > nLast) {
        bool bCaption = false;
        if (para.level == kLevelFigure && para.id < parser.m_vecFigure.size()) {
          const _tFigure& figure = parser.m_vecFigure[para.id];
          nCurrent = figure.para_id;
          bCaption = (figure.caption_index != (unsigned)-1 && figure.caption_index < parser.m_vecParagraph.size() &&
                      !parser.m_vecParagraph[figure.caption_index].text.empty()) ||
                     (para.id >= 1 && figure.para_id == nRemembered);
        } else if (para.level == kLevelTable && para.id < parser.m_vecTable.size()) {
          const _tTable& table = parser.m_vecTable[para.id];
          bCaption = table.caption_index != -1 && (size_t)table.caption_index < parser.m_vecParagraph.size() &&
                     !parser.m_vecParagraph[table.caption_index].text.empty();
        }
        if (!bCaption)
          AddFinding(nRemembered, para.level == kLevelFigure ? "99.6" : "99.7", 2, 0, FirstCharacter(sAnchor), "");
      }
    }
    nRemembered = nCurrent;
  }
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
