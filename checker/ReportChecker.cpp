#include "checker/ReportChecker.h"

#include <cstdio>
#include <map>

#include "checker/CheckResult.h"
#include "checker/DocFormatCheck.h"
#include "docx/DocImporter.h"
#include "docx/Document.h"
#include "keyscan/KeyScanner.h"
#include "reviser/DocReviser.h"
#include "rules/Audit.h"
#include "rules/AuditAgent.h"
#include "rules/ZYGAgent.h"
#include "rules/ZYGManager.h"
#include "utility/CodePage.h"
#include "utility/ErrorLog.h"
#include "utility/JsonText.h"
#include "utility/SearchClient.h"
#include "utility/SpellChecker.h"

namespace {
const char kXmlDeclaration[] = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";
}  // namespace

CReportChecker::CReportChecker(const _tCheckServices* pServices)
    : m_pServices(pServices),
      m_pBufManager(new CBufferManager),
      m_pDocument(new CDocument),
      m_pCheckResult(NewCheckResult()),
      m_pDocReviser(new CDocReviser(pServices->pFontSizes, pServices->pMessages)) {}

CReportChecker::~CReportChecker() = default;

std::unique_ptr<CCheckResult> CReportChecker::NewCheckResult() const {
  return std::unique_ptr<CCheckResult>(new CCheckResult(m_pServices->pMessages));
}

int CReportChecker::ImportFile(const char* sFilename, const char* sURLPrefix, int nType, int nResultFormat) {
  return CDocImporter(m_pServices->pAnalyser).ImportFile(*m_pDocument, sFilename, sURLPrefix, nType, nResultFormat);
}

int CReportChecker::ImportMemory(const char* sTxt, int nType, int /*nResultFormat*/) {
  return CDocImporter(m_pServices->pAnalyser).ImportMemory(*m_pDocument, sTxt, nType);
}

const char* CReportChecker::ImportDocx(const char* sDocxFilename, const char* sURLPrefix, int nType,
                                       int nResultFormat) {
  tstring sPath =
      CDocImporter(m_pServices->pAnalyser).ImportDocx(*m_pDocument, sDocxFilename, sURLPrefix, nType, nResultFormat);
  return sPath.empty() ? nullptr : Keep(kTextImportDoc, sPath);
}

size_t CReportChecker::LoadDocResult(const char* sResultXMLFilename) {
  return CDocImporter(m_pServices->pAnalyser).LoadDocResult(*m_pDocument, sResultXMLFilename);
}

const char* CReportChecker::GetCurTemplateInfo() {
  const _tTemplateKeys keys = _tTemplateKeys::ForOrganization(m_sOrganization);
  Json::Value root(Json::objectValue);
  root["docReportType"] = m_pDocument->m_nDocType;
  root["zyg_organization"] = keys.organization;
  root["zyg_area"] = keys.area;
  root["zyg_argument"] = keys.argument;
  return Keep(kTextTemplateInfo, JsonText(root));
}

int CReportChecker::Check(int nType, int nResultFormat, const char* sOrgnization, bool bDebug) {
  m_nReportType = nType;
  m_sOrganization = sOrgnization ? sOrgnization : "";
  m_nResultFormat = nResultFormat;
  m_pCheckResult->Reset();
  m_sKGResult.clear();
  const CAudit* pAudit = m_pServices->pRuleManager ? Processor(nType) : nullptr;
  if (pAudit) Audit(*pAudit, bDebug);
  const _tCheckSwitches& switches = m_pServices->switches;
  if (switches.bFormatCheck && m_pServices->pFormatChecker)
    m_pServices->pFormatChecker->Check(*m_pDocument, *m_pCheckResult, m_nReportType,
                                       _tTemplateKeys::ForOrganization(m_sOrganization));
  if (switches.bFilteringCheck) CheckErrorWord();
  if (switches.bSpellingCheck) CheckSpelling();
  return 1;
}

const CAudit* CReportChecker::Processor(int nType) const {
  if (m_pServices->pRuleManager == nullptr) {
    SetLastError("g_pZYGManager not init!");
    return nullptr;
  }
  return m_pServices->pRuleManager->GetProcesser(nType);
}

const CZYG* CReportChecker::RuleSet(int nType) const {
  const CAudit* pAudit = Processor(nType);
  return pAudit ? pAudit->GetZYG() : nullptr;
}

void CReportChecker::Audit(const CAudit& audit, bool bDebug) {
  CZYGAgent agent(audit.GetZYG(), m_pServices->pAnalyser);
  agent.SetPunctuationCheck(m_pServices->switches.bPunctionCheck);
  CAuditAgent auditAgent(&audit, &agent);
  if (const CSearchClient* pSearch = m_pServices->pSearchClient)
    auditAgent.SetSearchFunction([pSearch](const tstring& sQuery, bool bArgument, std::vector<SearchRecord>& vecRecords) {
      return bArgument ? pSearch->Query(pSearch->ArgumentHost(), pSearch->ArgumentPort(), sQuery, vecRecords)
                       : pSearch->Query(pSearch->TiaowenHost(), pSearch->TiaowenPort(), sQuery, vecRecords);
    });
  auditAgent.Check(m_pDocument.get(), m_pCheckResult.get(), m_nResultFormat, m_sOrganization, bDebug);
  m_sKGResult = agent.GetKGResult();
  m_sSingleKeyResult = agent.GetSingleKeyResult();
  m_sEntityKeyResult = agent.GetEntityResult();
  m_sTupleResult = agent.GetTupleResult();
}

const char* CReportChecker::CheckMem(const char* sLine, int nType, int rule_id) {
  m_nReportType = nType;
  m_pCheckResult->Reset();
  const CZYG* pRules = RuleSet(nType);
  if (pRules == nullptr) return nullptr;
  CZYGAgent agent(pRules, m_pServices->pAnalyser);
  m_sResult = agent.ScanTextMem(sLine ? sLine : "", rule_id);
  return m_sResult.c_str();
}

const char* CReportChecker::ExtractKnowledge(int nType, int nResultFormat) {
  m_nReportType = nType;
  m_pCheckResult->Reset();
  const CAudit* pAudit = Processor(nType);
  if (pAudit == nullptr) return nullptr;
  CZYGAgent agent(pAudit->GetZYG(), m_pServices->pAnalyser);
  CAuditAgent auditAgent(pAudit, &agent);
  auditAgent.ExtractKnowledge(m_pDocument.get(), nResultFormat);
  return Keep(kTextExtractKnowledge, auditAgent.GetKnowledgeJsonStr());
}

int CReportChecker::ReCheckFormat(const char* sReviseXMLFile, int nTemplateID) {
  std::unique_ptr<CCheckResult> pCheckResult = NewCheckResult();
  if (pCheckResult->Import(sReviseXMLFile) != 1) {
    SetLastError(tstring("Failed reading file ") + (sReviseXMLFile ? sReviseXMLFile : ""));
    return -1;
  }
  m_pCheckResult = std::move(pCheckResult);
  m_pDocument.reset(new CDocument);
  m_sOrganization.clear();  // the structure file does not name it
  // The structure file sits beside the document the result was made for.
  tstring sStructure = m_pCheckResult->m_sPath + "/../" + m_pCheckResult->m_sFilename + ".xml";
  if (LoadDocResult(GetAnsiFilename(sStructure.c_str()).c_str()) == 0) return -1;
  for (const char* szErrorId : {"1.1.1", "1.1.2", "1.1.3"}) m_pCheckResult->Remove(szErrorId);
  if (!m_pServices->pFormatChecker) return ServiceMissing("the format re-check (format checking is switched off)", -1);
  return m_pServices->pFormatChecker->ReCheck(*m_pDocument, *m_pCheckResult, nTemplateID);
}

const char* CReportChecker::ReviseF(const char* sReviseXMLResult, bool bTrack, const char* sAuthor) {
  m_pDocReviser->SetTracking(bTrack, sAuthor ? sAuthor : "");
  const char* sRevised = m_pDocReviser->Revise(sReviseXMLResult);
  return sRevised ? Keep(kTextRevise, sRevised) : nullptr;
}

int CReportChecker::ShowHtmlError(const char* sReviseXMLResult) {
  CCheckResult checkResult(m_pServices->pMessages);
  if (checkResult.Import(sReviseXMLResult) != 1) {
    SetLastError(tstring("Failed reading file ") + (sReviseXMLResult ? sReviseXMLResult : ""));
    return -1;
  }
  return ServiceMissing("the HTML pages (CDocReviser::ShowCheckInHtml)", -2);
}

const char* CReportChecker::GetResult() {
  const bool bXml = m_nResultFormat == 0;
  const tstring sPath = ANSIToUTF8(m_pDocument->m_sPath), sName = ANSIToUTF8(m_pDocument->m_sFilename);
  m_pCheckResult->SetTemplateKeys(_tTemplateKeys::ForOrganization(m_sOrganization));
  const char* sBody =
      bXml ? m_pCheckResult->GetResult(sPath.c_str(), sName.c_str(), m_nReportType,
                                       m_pDocument->m_sURLPrefix.c_str(), m_pDocument.get())
           : m_pCheckResult->GetResultJson(sPath.c_str(), sName.c_str(), m_nReportType,
                                           m_pDocument->m_sURLPrefix.c_str(), m_pDocument.get());
  m_sResult = bXml ? "<TARVOS>\n" + tstring(sBody) + "</TARVOS>\n" : tstring(sBody);
  return m_sResult.c_str();
}

const char* CReportChecker::GetResultE() { return GetResult() ? Keep(kTextResult0, m_sResult) : nullptr; }

const char* CReportChecker::GetResult(int result_type) {
  switch (result_type) {
    case 0: return GetResultE();
    case 1: return Keep(kTextResult1, m_sKGResult);
    case 6: return Keep(kTextResult6, m_sSingleKeyResult);
    case 7: return Keep(kTextResult7, m_sTupleResult);
    case 8: return Keep(kTextResult8, m_sEntityKeyResult);
    default:
      SetLastError("GetResult: unknown result type " + std::to_string(result_type));
      return nullptr;
  }
}

const char* CReportChecker::GetResultFile(int nResultFormat) {
  m_nResultFormat = nResultFormat;
  tstring sFile = m_pDocument->m_sPath + "/../" + m_pDocument->m_sFilename +
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
  return Keep(kTextCheck, m_sResult);
}

int CReportChecker::CheckErrorWord() {
  m_pDocument->ForEachParagraph([this](const _tParagraph& para) { CheckErrorWord(para); });
  return 1;
}

int CReportChecker::CheckErrorWord(const _tParagraph& paragraph) {
  const CKeyScanner* pScanner = m_pServices->pKeyScanner;
  return AddErrorWords(pScanner ? pScanner->ScanDetail(paragraph.text, 3, 0).c_str() : "", paragraph);
}

int CReportChecker::CheckSpelling() {
  const CSpellChecker* pChecker = m_pServices->pSpellChecker;
  if (pChecker == nullptr) return 0;
  // Error words already reported, by paragraph: byte ranges not to report twice.
  std::map<uint32_t, std::vector<std::pair<size_t, size_t>>> mapReported;
  for (const _tCheckResult& finding : m_pCheckResult->GetFindings())
    if (finding.error_id == "1.5.2")
      mapReported[finding.para_id].emplace_back(finding.offset, finding.offset + finding.org_str.size());
  std::vector<std::pair<const _tParagraph*, _tSpellFinding>> vecFound;
  std::vector<_tSpellFinding> vecSpelling;
  m_pDocument->ForEachParagraph([&](const _tParagraph& para) {
    pChecker->Check(para.text, vecSpelling);
    const auto& vecRanges = mapReported[para.id];
    for (const _tSpellFinding& spelling : vecSpelling) {
      const size_t nEnd = spelling.offset + spelling.sWrong.size();
      bool bReported = false;
      for (const auto& range : vecRanges) bReported = bReported || (spelling.offset < range.second && range.first < nEnd);
      if (!bReported) vecFound.emplace_back(&para, spelling);
    }
  });
  // A form the document writes more than once is its author's term or name,
  // not a slip of the hand.
  std::map<tstring, int> mapUses;
  for (const auto& found : vecFound) mapUses[found.second.sWrong] = 0;
  m_pDocument->ForEachParagraph([&](const _tParagraph& para) {
    for (auto& use : mapUses)
      for (size_t i = para.text.find(use.first); i != tstring::npos; i = para.text.find(use.first, i + use.first.size()))
        use.second++;
  });
  int nAdded = 0;
  for (const auto& found : vecFound) {
    if (mapUses[found.second.sWrong] > 1) continue;
    AddCorrection(*found.first, found.second.offset, "1.5.1", found.second.sWrong, found.second.sRight);
    nAdded++;
  }
  return nAdded;
}

// The scanner's correction list "(Check ...)A-->B##C-->D$": each item adds a
// finding for B with A as its replacement, at the offset of B searched from
// the previous match itself (so two items of one word share its offset).
int CReportChecker::AddErrorWords(const char* sScan, const _tParagraph& paragraph) {
  const tstring sText = sScan ? sScan : "";
  size_t nCheck = sText.find("(Check ");
  if (nCheck == tstring::npos) return -1;
  size_t nOpen = sText.find(')', nCheck);
  if (nOpen == tstring::npos) return -2;
  size_t nDollar = sText.find('$', nOpen);
  if (nDollar == tstring::npos) return -3;
  const tstring sList = sText.substr(nOpen + 1, nDollar - nOpen - 1);
  size_t nOffset = 0;
  for (size_t nStart = 0; nStart <= sList.size();) {
    size_t nEnd = sList.find("##", nStart);
    tstring sItem = sList.substr(nStart, nEnd == tstring::npos ? tstring::npos : nEnd - nStart);
    size_t nArrow = sItem.find("-->");
    if (nArrow == tstring::npos) break;
    const tstring sRight = sItem.substr(0, nArrow), sWrong = sItem.substr(nArrow + 3);
    size_t nFound = paragraph.text.find(sWrong, nOffset);
    if (nFound != tstring::npos) nOffset = nFound;
    AddCorrection(paragraph, nOffset, "1.5.2", sWrong, sRight);
    if (nEnd == tstring::npos) break;
    nStart = nEnd + 2;
  }
  return 1;
}

void CReportChecker::AddCorrection(const _tParagraph& paragraph, size_t nOffset, const char* sErrorId,
                                   const tstring& sWrong, const tstring& sRight) {
  _tCheckResult result;
  result.para_id = paragraph.id;
  result.offset = (uint32_t)nOffset;
  result.error_id = sErrorId;
  result.text = m_pDocument->GetText(paragraph.id);
  result.field_id = 2;
  result.org_str = sWrong;
  result.revise_type = 1;
  result.new_str = sRight;
  m_pCheckResult->AddResult(result);
}
