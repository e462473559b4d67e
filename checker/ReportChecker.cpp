#include "checker/ReportChecker.h"

#include <cstdio>

#include "api/ApiGuard.h"
#include "api/Globals.h"
#include "checker/CheckResult.h"
#include "checker/DocFormatCheck.h"
#include "docx/DocxParser.h"
#include "reviser/DocReviser.h"
#include "utility/CodePage.h"
#include "utility/ErrorLog.h"

namespace {
const char kAuditAgent[] = "the rule-engine audit (CAuditAgent)";
const char kXmlDeclaration[] = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";
}  // namespace

CReportChecker::CReportChecker()
    : m_pBufManager(new CBufferManager),
      m_pDocxParser(new CDocxParser),
      m_pCheckResult(new CCheckResult),
      m_pDocReviser(new CDocReviser) {}

CReportChecker::~CReportChecker() = default;

int CReportChecker::ImportFile(const char* sFilename, const char* sURLPrefix, int nType,
                               int nResultFormat) {
  return m_pDocxParser->ImportFile(sFilename, sURLPrefix, nType, nResultFormat);
}

int CReportChecker::ImportMemory(const char* sTxt, int nType, int nResultFormat) {
  return m_pDocxParser->ImportMemory(sTxt, nType, nResultFormat);
}

const char* CReportChecker::ImportDocx(const char* sDocxFilename, const char* sURLPrefix,
                                       int nType, int nResultFormat) {
  return m_pDocxParser->ImportDocx(sDocxFilename, sURLPrefix, nType, nResultFormat);
}

size_t CReportChecker::LoadDocResult(const char* sResultXMLFilename) {
  return m_pDocxParser->LoadDocResult(sResultXMLFilename);
}

const char* CReportChecker::GetCurTemplateInfo() { return m_pDocxParser->GetCurTemplateInfo(); }

int CReportChecker::Check(int nType, int nResultFormat, const char* /*sOrgnization*/,
                          bool /*bDebug*/) {
  m_nReportType = nType;
  m_nResultFormat = nResultFormat;
  m_pCheckResult->Reset();
  // The rule-engine audit and its knowledge results come with the audit
  // agent; until then the check goes on without them.
  m_sKGResult.clear();
  if (g_bFormatCheck && g_pDocFormatChecker)
    g_pDocFormatChecker->Check(m_pDocxParser.get(), m_pCheckResult.get(), m_nReportType);
  if (g_bFilteringCheck) CheckErrorWord();
  return 1;
}

const char* CReportChecker::CheckMem(const char* /*sLine*/, int nType, int /*rule_id*/) {
  m_nReportType = nType;
  m_pCheckResult->Reset();
  ServiceMissing(kAuditAgent);
  return nullptr;
}

const char* CReportChecker::ExtractKnowledge(int nType, int /*nResultFormat*/) {
  m_nReportType = nType;
  m_pCheckResult->Reset();
  ServiceMissing("knowledge extraction (CAuditAgent::ExtractKnowledge)");
  return nullptr;
}

int CReportChecker::ReCheckFormat(const char* sReviseXMLFile, int /*nTemplateID*/) {
  std::unique_ptr<CCheckResult> pCheckResult(new CCheckResult);
  if (pCheckResult->Import(sReviseXMLFile) != 1) {
    SetLastError(tstring("Failed reading file ") + (sReviseXMLFile ? sReviseXMLFile : ""));
    return -1;
  }
  m_pCheckResult = std::move(pCheckResult);
  return ServiceMissing("the format re-check (CDocFormatCheck::ReCheck)", -1);
}

const char* CReportChecker::ReviseF(const char* sReviseXMLResult) {
  const char* sRevised = m_pDocReviser->Revise(sReviseXMLResult);
  return sRevised ? m_pBufManager->Keep(sRevised) : nullptr;
}

const char* CReportChecker::ShowHtmlError(const char* sReviseXMLResult) {
  CCheckResult checkResult;
  if (checkResult.Import(sReviseXMLResult) != 1) {
    SetLastError(tstring("Failed reading file ") + (sReviseXMLResult ? sReviseXMLResult : ""));
    return ThreadCopy(kSlotHtmlError, GetLastError());
  }
  ServiceMissing("the HTML pages (CDocReviser::ShowCheckInHtml)");
  return ThreadCopy(kSlotHtmlError, GetLastError());
}

const char* CReportChecker::GetResult() {
  bool bXml = m_nResultFormat == 0;
  tstring sBody;
  if (!m_pCheckResult->Render(!bXml, ANSIToUTF8(m_pDocxParser->m_sPath),
                              ANSIToUTF8(m_pDocxParser->m_sFilename), m_nReportType,
                              m_pDocxParser->m_sURLPrefix, m_pDocxParser.get(), sBody))
    return nullptr;
  m_sResult = bXml ? "<TARVOS>\n" + sBody + "</TARVOS>\n" : sBody;
  return m_sResult.c_str();
}

const char* CReportChecker::GetResultE() {
  return GetResult() ? m_pBufManager->Keep(m_sResult) : nullptr;
}

const char* CReportChecker::GetResult(int result_type) {
  switch (result_type) {
    case 0: return GetResultE();
    case 1: return m_pBufManager->Keep(m_sKGResult);
    case 6: return m_pBufManager->Keep(m_sSingleKeyResult);
    case 7: return m_pBufManager->Keep(m_sTupleResult);
    case 8: return m_pBufManager->Keep(m_sEntityKeyResult);
    default:
      SetLastError("GetResult: unknown result type " + std::to_string(result_type));
      return nullptr;
  }
}

const char* CReportChecker::GetResultFile(int nResultFormat) {
  m_nResultFormat = nResultFormat;
  tstring sFile = m_pDocxParser->m_sPath + "/../" + m_pDocxParser->m_sFilename +
                  (nResultFormat == 1 ? "_Check.json" : "_Check.xml");
  // Rendered before the file is opened, so a failed rendering leaves no
  // half-written result behind.
  if (GetResult() == nullptr) return nullptr;
  FILE* fp = fopen(sFile.c_str(), "wb");
  if (fp == nullptr) {
    SetLastError("Fail write file " + sFile);
    return nullptr;
  }
  if (nResultFormat == 0) fputs(kXmlDeclaration, fp);
  fwrite(m_sResult.data(), 1, m_sResult.size(), fp);
  fclose(fp);
  if (nResultFormat == 0) m_sResult = sFile;
  return m_pBufManager->Keep(m_sResult);
}

int CReportChecker::CheckErrorWord() {
  // The document model holds no paragraphs until DOCX import exists, so there
  // is nothing to scan yet.
  return 1;
}
