#pragma once
// CDocFormatCheck checks a parsed document against the template that fits
// it and fronts the template store for the template calls: each call that
// changes the store is followed by Save.
//
// It is a shared service: a check (Check, ReCheck) changes nothing in it.
// What one check works on lives in objects made for that check: the
// document and findings of the caller, a CFormatCheckRun for the contents,
// chapter, order and placement rules, and a CFormatComparison for the
// template's fonts, sizes, spacings, numbering and required texts (their
// headers list the rules). The template calls that change the store must
// not overlap a check (the engine's writer lock sees to that).
//
// A check runs, in order: the CFormatCheckRun rules, the document's own
// consistency (CConsistencyCheck), then (except for report type 3) the
// template chosen by report type and keys, compared with every paragraph.
// When that template is not one filed for the document's organisation (one
// filed for any organisation, "*", or the fallback, template 0), a note
// "15.9" says so (kDefaultTemplateNote, anchored at paragraph id all ones,
// scored 0).
#include <memory>

#include "docx/DocxTemplate.h"
#include "utility/TString.h"

class CCheckResult;
class CDocFormat;
class CDocument;
class CNum2FontSize;
struct _tTemplateKeys;

inline constexpr char kDefaultTemplateNote[] = "no template for this organisation; checked against the default";

class CDocFormatCheck {
 public:
  // The store lives in sDataPath; pSizeNames names sizes in findings (may
  // be null; must outlive the checker).
  CDocFormatCheck(const char* sDataPath, const CNum2FontSize* pSizeNames);
  CDocFormatCheck(const CDocFormatCheck&) = delete;  // owns the template store
  CDocFormatCheck& operator=(const CDocFormatCheck&) = delete;

  // Adds the findings of a document. 1 after a template check; 2 for report
  // type 3 (no template check); -2 when the store holds no template (the
  // contents and order findings stay).
  int Check(CDocument& doc, CCheckResult& result, int nReportType, const _tTemplateKeys& keys) const;
  // The template comparison alone, with template nTemplateID; sorts the
  // findings. 1; -1 with "No template <id>" when there is no such template.
  int ReCheck(const CDocument& doc, CCheckResult& result, int nTemplateID) const;
  // Every paragraph against one template, then its required texts and the
  // reference entries. Returns 1.
  int CheckWithFormat(const CDocument& doc, CCheckResult& result, const CDocFormat& docFormat) const;

  int ImportTemplate(const char* sTemplateFile, int nType, const char* sOrg, const char* sArea,
                     const char* sArgumemt);
  // -1 with "No template <id>" for an id the store does not hold.
  int EditTemplate(int nTemplateID, const char* sTemplateFile, int nType, const char* sOrg,
                   const char* sArea, const char* sArgumemt);
  int FindTemplate(int nType, const char* sOrg, const char* sArea, const char* sArgumemt) const;
  int DeleteTemplate(int nTemplateID);
  // The template as JSON text (values unescaped), "" for an unknown id.
  tstring GetTemplate(int nTemplateID) const;
  // The same template as well-formed JSON, "" for an unknown id.
  tstring GetTemplateJson(int nTemplateID) const;
  int GetTemplateCount() const;
  tstring GetTemplateList(int docType, const char* sOrgnization) const;

 private:
  static void AddDefaultTemplateNote(CCheckResult& result);

  std::unique_ptr<CDocxTemplate> m_pDocTemplate;  // the template store
  const CNum2FontSize* m_pSizeNames;              // not owned; may be null
};
