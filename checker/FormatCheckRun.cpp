#include "checker/FormatCheckRun.h"

#include "checker/CheckResult.h"
#include "checker/SectionOrderCheck.h"
#include "checker/ThesisPartsCheck.h"
#include "docx/Document.h"
#include "docx/PaperStructure.h"
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

void CFormatCheckRun::AddFinding(uint32_t nParaId, const char* szErrorId, int nField, int nReviseType,
                                 const tstring& sOrg, const tstring& sNew) {
  _tCheckResult result;
  result.para_id = nParaId;
  result.text = m_doc.GetText(nParaId);
  result.error_id = szErrorId;
  result.field_id = nField;
  result.revise_type = nReviseType;
  result.org_str = sOrg;
  result.new_str = sNew;
  m_result.AddResult(result);
}

void CFormatCheckRun::Run() {
  if (HasContentCheck(m_nReportType) && !IsContentUpdated()) CheckContent();
  ScanChapter();
  CSectionOrderCheck order(m_doc, m_result);
  order.CheckSections();
  CheckFigureTablePosition();
  order.CheckFigureTableOrder();
  if (CPaperStructure::IsThesis(m_nReportType)) CThesisPartsCheck::CheckParts(m_doc, m_result);
  if (m_nReportType == 6 || m_nReportType == 7) {
    order.CheckFormulaOrder();
    order.CheckReferenceOrder();
  }
}

bool CFormatCheckRun::IsContentUpdated() const {
  const std::vector<int>& vecHeadings = m_doc.Headings();
  const std::vector<int>& vecEntries = m_doc.ContentEntries();
  if (vecHeadings.size() != vecEntries.size()) return false;
  const std::vector<_tParagraph>& vecParas = m_doc.m_vecParagraph;
  for (size_t i = 0; i < vecHeadings.size(); ++i) {
    if ((size_t)vecHeadings[i] >= vecParas.size() || (size_t)vecEntries[i] >= vecParas.size()) return false;
    if (vecParas[vecEntries[i]].text.find(vecParas[vecHeadings[i]].text) == tstring::npos) return false;
  }
  return true;
}

void CFormatCheckRun::CheckContent() {
  const std::vector<int>& vecEntries = m_doc.ContentEntries();
  uint32_t nParaId = 0;
  if (!vecEntries.empty() && vecEntries[0] > 0 && (size_t)vecEntries[0] <= m_doc.m_vecParagraph.size())
    nParaId = m_doc.m_vecParagraph[vecEntries[0] - 1].id;
  AddFinding(nParaId, "1.6", 5, 4, "", kContentOutdated);
}

void CFormatCheckRun::ScanChapter() {
  m_vecSectionPosition.clear();
  std::vector<_tSection_Info> vecChapters;
  for (int nIndex : m_doc.Headings()) {
    if (nIndex < 0 || (size_t)nIndex >= m_doc.m_vecParagraph.size()) continue;
    _tParagraph& para = m_doc.m_vecParagraph[nIndex];
    _tSection_Info info;
    ExtractOrder(para.NumberedText(), kOrderHeadingLine, info);
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
  CSectionOrderCheck(m_doc, m_result).CheckPartOrder(vecChapters, 1, 1);
  std::vector<int> vecParaIndex, vecChapterId;
  for (const _tSection_Info& info : vecChapters) {
    if (info.error_id == "1.3.7") continue;
    const int nChapter = info.orderNew != 0 ? info.orderNew : info.order;
    if (nChapter <= 0) continue;
    _tParaIndex index;
    m_doc.GetParaIndex(info.para_id, index);
    vecChapterId.push_back(nChapter);
    vecParaIndex.push_back((int)index.para_index);
    m_vecSectionPosition.emplace_back(1, nChapter, info.para_id, std::to_string(nChapter));
  }
  m_doc.SetChapters(std::move(vecParaIndex), std::move(vecChapterId));
}

void CFormatCheckRun::CheckFigureTablePosition() {
  const CDocument& doc = m_doc;
  const std::vector<int>& vecEntries = doc.ContentEntries();
  const int nFirst = vecEntries.empty() ? 0 : vecEntries.front(), nLast = vecEntries.empty() ? 0 : vecEntries.back();
  bool bBodySeen = false;
  uint32_t nRemembered = 0;
  for (size_t i = 0; i < doc.m_vecParagraph.size(); ++i) {
    const _tParagraph& para = doc.m_vecParagraph[i];
    uint32_t nCurrent = para.id;
    if (para.level == kMainText) bBodySeen = true;
    if (para.level == kLevelTable || para.level == kLevelFigure) {
      const tstring& sAnchor = doc.GetText(nRemembered);
      if ((int)i >= nFirst && (int)i <= nLast && !vecEntries.empty()) {
        AddFinding(nRemembered, "1.3.12", 2, 2, sAnchor, "");
      } else if (m_nReportType == 4 && !bBodySeen) {
        AddFinding(nRemembered, "1.3.13", 2, 2, sAnchor, "");
      } else if ((int)i > nLast) {
        bool bCaption = false;
        if (para.level == kLevelFigure && para.id < doc.m_vecFigure.size()) {
          const _tFigure& figure = doc.m_vecFigure[para.id];
          nCurrent = figure.para_id;
          bCaption = (figure.caption_index != (unsigned)-1 && figure.caption_index < doc.m_vecParagraph.size() &&
                      !doc.m_vecParagraph[figure.caption_index].text.empty()) ||
                     (para.id >= 1 && figure.para_id == nRemembered);
        } else if (para.level == kLevelTable && para.id < doc.m_vecTable.size()) {
          const _tTable& table = doc.m_vecTable[para.id];
          bCaption = table.caption_index != -1 && (size_t)table.caption_index < doc.m_vecParagraph.size() &&
                     !doc.m_vecParagraph[table.caption_index].text.empty();
        }
        if (!bCaption)
          AddFinding(nRemembered, para.level == kLevelFigure ? "99.6" : "99.7", 2, 0, FirstCharacter(sAnchor), "");
      }
    }
    nRemembered = nCurrent;
  }
}
