#pragma once
// CReportChecker is one checking instance: it owns a document model, the
// findings of its last check and a reviser, runs every check over one
// imported document in a fixed order and renders the findings. The shared
// services come from the engine as a const pointer; everything a check
// works on belongs to the instance or to objects made for that check, so
// instances on different threads never share a thing that changes.
//
// Texts it returns are owned by the instance: each call that returns text
// keeps its latest text (EInstanceText), valid until the same call on this
// instance returns another, or the instance is destroyed.
#include <memory>

#include "checker/CheckServices.h"
#include "utility/BufferManager.h"
#include "utility/TString.h"

class CCheckResult;
class CAudit;
class CZYG;
class CDocReviser;
class CDocument;
struct _tParagraph;

// The calls of an instance that return text, one slot each.
enum EInstanceText {
  kTextCheck,          // CheckReportF / CheckReportM / ReCheckFormat: the result
  kTextResult0,        // GetResult(0), GetResult(1) ... by result type
  kTextResult1,
  kTextResult6,
  kTextResult7,
  kTextResult8,
  kTextImportDoc,      // ImportDoc: the structure file's path
  kTextRevise,         // ReviseReportF
  kTextTemplateInfo,   // GetCurTemplateInfo
  kTextExtractKnowledge,  // ExtractKnowledge: the knowledge JSON
};

class CReportChecker {
 public:
  // pServices must outlive the instance.
  explicit CReportChecker(const _tCheckServices* pServices);
  ~CReportChecker();
  // Hosts hold pointers into the instance's texts; it is never copied.
  CReportChecker(const CReportChecker&) = delete;
  CReportChecker& operator=(const CReportChecker&) = delete;

  int ImportFile(const char* sFilename, const char* sURLPrefix, int nType, int nResultFormat);
  int ImportMemory(const char* sTxt, int nType, int nResultFormat);
  // The structure file's path; null on failure.
  const char* ImportDocx(const char* sDocxFilename, const char* sURLPrefix, int nType, int nResultFormat);
  size_t LoadDocResult(const char* sResultXMLFilename);
  // The template keys of the current document as JSON.
  const char* GetCurTemplateInfo();

  // Runs every check over the imported document, in order: the rule-engine
  // audit of the type (its values become the knowledge texts; the scan's
  // punctuation findings and the failed audit rules join the results), format
  // check (when switched on), error-word check (when switched on), HTML
  // rendering. Returns 1.
  int Check(int nType, int nResultFormat, const char* sOrgnization, bool bDebug);

  // One rule over one line of text: the matches as XML. Null when the type
  // has no rule set.
  const char* CheckMem(const char* sLine, int nType, int rule_id);

  // Knowledge extraction over the imported document: every value, tuple,
  // table and single key as JSON. Null when the type has no rule set.
  const char* ExtractKnowledge(int nType, int nResultFormat);

  // Format check again from a saved result. Returns 1; -1 on failure.
  int ReCheckFormat(const char* sReviseXMLFile, int nTemplateID);

  // The revised DOCX of a saved result (see CDocReviser), its edits as
  // tracked changes by sAuthor when bTrack; null on failure.
  const char* ReviseF(const char* sReviseXMLResult, bool bTrack = false, const char* sAuthor = nullptr);

  // Redraws the HTML pages from a saved result. 1 on success; -1 when the
  // result cannot be read, -2 when the pages cannot be drawn (the reason in
  // the last error).
  int ShowHtmlError(const char* sReviseXMLResult);

  // Renders the findings into m_sResult: XML in a "TARVOS" root for format 0,
  // JSON otherwise. Valid until the next rendering; null on failure.
  const char* GetResult();
  // GetResult(), kept as the instance's text of GetResult(0).
  const char* GetResultE();
  // A stored text: 0 findings, 1 knowledge graph, 6 single key values,
  // 7 tuples, 8 entity key values; null for any other type.
  const char* GetResult(int result_type);
  // Writes "<folder of the working path>/<name>_Check.json" for format 1, else
  // "..._Check.xml"; returns its path for format 0, the text otherwise.
  const char* GetResultFile(int nResultFormat);

  // Error-word check over every paragraph: headers, footers, body, then
  // every table cell. Returns 1.
  int CheckErrorWord();
  // One paragraph: -1, -2 or -3 when the scanner's text holds no correction list.
  int CheckErrorWord(const _tParagraph& paragraph);
  // Turns a scanner text into findings on a paragraph (see CheckErrorWord).
  int AddErrorWords(const char* sScan, const _tParagraph& paragraph);

  // Spelling check over every paragraph, in the order of CheckErrorWord:
  // each proposed correction becomes a finding "1.5.1", except where an
  // error word was already reported and where the document writes the same
  // form more than once. Returns the number of findings; 0 without the
  // spelling check.
  int CheckSpelling();

  const CCheckResult& GetCheckResult() const { return *m_pCheckResult; }
  const CDocument& GetDocument() const { return *m_pDocument; }
  int GetReportType() const { return m_nReportType; }
  const CBufferManager& GetBufferManager() const { return *m_pBufManager; }

 private:
  // Adds a finding that replaces sWrong at a byte offset of a paragraph by sRight.
  void AddCorrection(const _tParagraph& paragraph, size_t nOffset, const char* sErrorId, const tstring& sWrong,
                     const tstring& sRight);
  // The audit processor of a document type, and its rule set; null with the
  // reason as last error.
  const CAudit* Processor(int nType) const;
  const CZYG* RuleSet(int nType) const;
  // Scans the document with the type's rule set, runs its audit rules
  // (findings added) and keeps the knowledge texts.
  void Audit(const CAudit& audit, bool bDebug);
  const char* Keep(EInstanceText eSlot, const tstring& sText) { return m_pBufManager->Keep(eSlot, sText); }
  // A fresh findings collection on the services' catalogue.
  std::unique_ptr<CCheckResult> NewCheckResult() const;

  const _tCheckServices* m_pServices;             // not owned; the engine's
  std::unique_ptr<CBufferManager> m_pBufManager;  // the texts handed to the host
  std::unique_ptr<CDocument> m_pDocument;         // the document model
  std::unique_ptr<CCheckResult> m_pCheckResult;   // findings of the last check
  std::unique_ptr<CDocReviser> m_pDocReviser;     // revised DOCX and HTML marks
  tstring m_sResult;           // last rendered result (or result file path)
  tstring m_sKGResult;         // knowledge-graph result of the last check
  tstring m_sSingleKeyResult;  // single key-value result
  tstring m_sEntityKeyResult;  // entity key-value result
  tstring m_sTupleResult;      // tuple result
  tstring m_sOrganization;     // organisation the last check was for
  int m_nReportType = -1;      // report type of the last check
  int m_nResultFormat = 0;     // 0 XML, otherwise JSON
};
