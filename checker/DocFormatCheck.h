#pragma once
// CDocFormatCheck compares a parsed document with the template that fits it
// and fronts the template store for the template calls: each call that
// changes the store is followed by Save.
//
// A check runs, in order: the table-of-contents check (report types 1, 2
// and 7), the chapter scan, figure and table placement, then (except for
// report type 3) the template's font, size, spacing, numbering and
// required-text comparison.
//
// Field ids of its findings: 0 font, 1 size, 2 numbering and placement,
// 3 heading level, 4 line spacing, 5 table of contents.
#include <memory>
#include <vector>

#include "docx/DocxTemplate.h"
#include "utility/TString.h"

class CDocxParser;
class CCheckResult;
class CDocFormat;
struct _tParagraph;

struct SectionPostion {
  SectionPostion(int nLevel, int nOrder, unsigned nParaId, const tstring& sChapterId)
      : level(nLevel), order(nOrder), nID(nParaId), chap_id(sChapterId) {}
  bool operator<(const SectionPostion& other) const { return nID < other.nID; }
  int level;
  int order;
  unsigned nID;     // paragraph id
  tstring chap_id;  // chapter number, "%d"
};

class CDocFormatCheck {
 public:
  explicit CDocFormatCheck(const char* sDataPath)
      : m_pDocTemplate(new CDocxTemplate(sDataPath)), m_sDataPath(sDataPath ? sDataPath : "") {}
  CDocFormatCheck(const CDocFormatCheck&) = delete;  // owns the template store
  CDocFormatCheck& operator=(const CDocFormatCheck&) = delete;

  // Adds the findings of a document to pCheckResult. 1 after a template
  // check; 2 for report type 3 (no template check); -2 when the store holds
  // no template (the table-of-contents and order findings stay).
  int Check(CDocxParser* pDocxParser, CCheckResult* pCheckResult, int nReportType);
  // The template comparison alone, with template nTemplateID; sorts the
  // findings. 1; -1 when there is no such template.
  int ReCheck(CDocxParser* pDocxParser, CCheckResult* pCheckResult, int nTemplateID);
  // Headers and footers, body, table cells, then the required texts.
  int CheckWithFormat(CDocxParser* pDocxParser, CCheckResult* pCheckResult, CDocFormat& docFormat);
  // The i-th table-of-contents entry holds the text of the i-th heading, for
  // every i, and there are as many entries as headings.
  bool IsContentUpdated() const;

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

  const std::vector<SectionPostion>& GetSectionPositions() const { return m_vecSectionPosition; }

 private:
  void CheckContent();
  // Overlong unnumbered headings are demoted to text ("1.3.9"); a first-level
  // heading numbered at another depth takes that depth ("1.3.7"). Rebuilds
  // the document's chapter lists.
  void ScanChapter();
  // Figures and tables inside the table of contents ("1.3.12"), before the
  // thesis body ("1.3.13", report type 4) or without caption ("99.6", "99.7").
  void CheckFigureTablePosition();
  void AddFinding(uint32_t nParaId, const char* szErrorId, int nField, int nReviseType, const tstring& sOrg,
                  const tstring& sNew);

  std::vector<SectionPostion> m_vecSectionPosition;  // chapters found by the chapter scan
  CDocxParser* m_pDocxParser = nullptr;              // not owned
  CCheckResult* m_pCheckResult = nullptr;            // not owned
  std::unique_ptr<CDocxTemplate> m_pDocTemplate;     // the template store
  int m_nReportType = 0;
  tstring m_sDataPath;                               // data directory the store lives in
  int m_nLineIndex = 0;
};
