#include "api/Engine.h"

#include <new>

#include "api/Globals.h"
#include "checker/DocFormatCheck.h"
#include "checker/ID2Message.h"
#include "checker/ReportChecker.h"
#include "keyscan/KeyScanner.h"
#include "rules/ZYGManager.h"
#include "tarvos.h"
#include "utility/CodeTrans.h"
#include "utility/CountryDetect.h"
#include "utility/ErrorLog.h"
#include "utility/SearchClient.h"
#include "utility/FileUtil.h"
#include "utility/JsonText.h"
#include "utility/Num2FontSize.h"
#include "utility/QueryExpand.h"
#include "utility/SpellChecker.h"
#include "utility/lexical/Lexical.h"

namespace {

// NULL or "" is the working directory; a path starting with "." is taken
// relative to it; anything else is used as given. No slash is added or removed.
tstring ResolveDataDir(const char* sInitDirPath, const tstring& sDefaultDir) {
  if (sInitDirPath == nullptr || *sInitDirPath == '\0') return sDefaultDir;
  if (sInitDirPath[0] != '.') return sInitDirPath;
  return sDefaultDir + "/" + sInitDirPath;
}

}  // namespace

CEngine::CEngine() = default;

CEngine::~CEngine() { Stop(); }

int CEngine::Start(const char* sInitDirPath) {
  m_sDefaultDir = CurrentDirectory();
  m_bStarted = false;
  m_sDataDir = ResolveDataDir(sInitDirPath, m_sDefaultDir);
  m_services.switches = _tCheckSwitches();
  LoadZYGConfigre((m_sDataDir + "/Data/ZYG-Configure.json").c_str(), m_services.switches);

  if (ZYG_Init(m_sDataDir.c_str()) != 1) {
    SetLastError("Error Init ZYG from " + m_sDataDir);
    return -1;
  }
  m_pAnalyser = QUENDA_Analyser();
  m_pZYGManager.reset(new CZYGManager(m_sDataDir.c_str()));
  if (m_pZYGManager->Load() != 1) SetLastError("Failed while g_pZYGManager->Load " + m_sDataDir);
  if (Switches().bFilteringCheck) {
    m_pKeyScanner.reset(new CKeyScanner);
    if (m_pKeyScanner->Init(m_sDataDir.c_str(), 1) != 1)
      SetLastError("Error Init KeyScanner from " + m_sDataDir + m_pKeyScanner->GetLastErrorMsg());
  }
  if (Switches().bFormatCheck) {
    int nStatus = StartFormatCheck();
    if (nStatus != 1) return nStatus;
  }
  m_pError2Message.reset(new CID2Message);
  if (m_pError2Message->Load((m_sDataDir + "/" + "/Data/Error/ErrorMessage.dat").c_str()) != 1) return -6;
  StartOptionalServices();
  PublishServices();
  m_bStarted = true;
  NewInstance();
  return 1;
}

int CEngine::StartFormatCheck() {
  m_pNum2FontSize.reset(new CNum2FontSize);
  m_pDocFormatChecker.reset(new (std::nothrow) CDocFormatCheck(m_sDataDir.c_str(), m_pNum2FontSize.get()));
  if (!m_pDocFormatChecker) return -5;
  // The doubled slash after the data directory is kept: callers compare paths.
  if (m_pNum2FontSize->Import((m_sDataDir + "/" + "/Data/Font/FontSize.dat").c_str()) < 1) return -7;
  return 1;
}

// Services that may fail without stopping the engine; each failure leaves
// its reason as the last error.
void CEngine::StartOptionalServices() {
  const tstring sData = m_sDataDir + "/Data";
  m_pSimDict.reset(new CQueryExpand(sData.c_str(), nullptr));
  m_pSpellCheckDict.reset(new CQueryExpand(sData.c_str(), "SpellError"));
  if (Switches().bSpellingCheck) StartSpellCheck();
  const tstring sKG = sData + "/KnowGraph.txt";
  m_fpKG = fopen(sKG.c_str(), "at+");
  if (m_fpKG == nullptr) SetLastError("Fail writing file " + sKG);
  const tstring sModel = sData + "/CodeTrans.model";
  if (CodeTrans_Initialize(sModel.c_str()) < 0) SetLastError("Fail read encoding recognition file " + sModel);
  if (Switches().bCountryDetect) {
    m_bCountryDetect = true;
    if (CountryDetect_Init(m_sDataDir.c_str()) == 0) SetLastError("Fail CountryDetect_Init ");
  }
  // Without "SearchAgent.xml" the standard look-ups of the audit are skipped.
  std::unique_ptr<CSearchClient> pSearch(new CSearchClient);
  if (pSearch->Load(m_sDataDir)) m_pSearchClient = std::move(pSearch);
}

// The misspellings must segment as whole words for the check to see them.
void CEngine::StartSpellCheck() {
  if (!m_pAnalyser) return;
  const tstring sUserWords = m_pSpellCheckDict->GetFilename() + "_userdict.txt";
  if (IsRegularFile(sUserWords)) m_pAnalyser->ImportUserDict(sUserWords.c_str(), false);
  std::unique_ptr<CSpellChecker> pChecker(
      new CSpellChecker(m_pAnalyser.get(), m_pSimDict.get(), m_pSpellCheckDict.get()));
  if (pChecker->Load(m_sDataDir, CLanguageModel::DefaultModelFile())) {
    m_pSpellChecker = std::move(pChecker);
  } else {
    WriteError("Spelling check not started: " + GetLastError());
  }
}

void CEngine::PublishServices() {
  m_services.pMessages = m_pError2Message.get();
  m_services.pFontSizes = m_pNum2FontSize.get();
  m_services.pFormatChecker = m_pDocFormatChecker.get();
  m_services.pRuleManager = m_pZYGManager.get();
  m_services.pKeyScanner = m_pKeyScanner.get();
  m_services.pAnalyser = m_pAnalyser.get();
  m_services.pSimDict = m_pSimDict.get();
  m_services.pSpellDict = m_pSpellCheckDict.get();
  m_services.pSpellChecker = m_pSpellChecker.get();
  m_services.pSearchClient = m_pSearchClient.get();
}

void CEngine::Stop() {
  ZYG_Exit();
  m_pKeyScanner.reset();
  m_pZYGManager.reset();
  m_instances.Clear();
  m_pDocFormatChecker.reset();
  m_pError2Message.reset();
  m_pNum2FontSize.reset();
  m_pSpellChecker.reset();
  m_pSimDict.reset();
  m_pSpellCheckDict.reset();
  m_pSearchClient.reset();
  m_pAnalyser.reset();
  if (m_fpKG) fclose(m_fpKG);
  m_fpKG = nullptr;
  CodeTrans_Destroy();
  if (m_bCountryDetect) CountryDetect_Exit();
  m_bCountryDetect = false;
  m_services = _tCheckServices();
  m_bStarted = false;
}

int CEngine::NewInstance() {
  if (!m_bStarted) {
    SetLastError("Not Init, no operation!");
    return -1;
  }
  return m_instances.Add(std::unique_ptr<CReportChecker>(new CReportChecker(&m_services)));
}

int CEngine::DeleteInstance(int handle) {
  if (m_instances.Remove(handle)) return 1;
  SetHandleError("DC_DeleteInstance  argument(handle %d) is invalid!", handle);
  return 0;
}

CReportChecker* CEngine::GetReportCheckerWorker(int handle) const {
  CReportChecker* pChecker = m_bStarted ? m_instances.Get(handle) : nullptr;
  if (pChecker == nullptr) SetHandleError("GetReportCheckerWorker  argument(handle %d) is invalid!", handle);
  return pChecker;
}

tstring CEngine::InfoJson() const {
  const _tCheckSwitches& s = Switches();
  Json::Value root;
  root["version"] = TARVOS_VERSION;
  root["data_directory"] = m_sDataDir;
  Json::Value& switches = root["switches"];
  switches["PunctionCheck"] = s.bPunctionCheck;
  switches["FormatCheck"] = s.bFormatCheck;
  switches["OCR"] = s.bOCR;
  switches["FilterCheck"] = s.bFilteringCheck;
  switches["SpellCheck"] = s.bSpellingCheck;
  switches["SpellCheckIP"] = s.sSpellingHostIP;
  switches["CountryDetect"] = s.bCountryDetect;
  Json::Value& services = root["services"];
  services["rule_engine"] = m_pAnalyser != nullptr;
  services["rule_document_types"] = m_pZYGManager ? (Json::UInt64)m_pZYGManager->GetProcessers().size() : 0;
  services["keyword_scanner"] = m_pKeyScanner != nullptr;
  services["format_checker"] = m_pDocFormatChecker != nullptr;
  services["templates"] = m_pDocFormatChecker ? m_pDocFormatChecker->GetTemplateCount() : 0;
  services["font_sizes"] = m_pNum2FontSize ? (Json::UInt64)m_pNum2FontSize->GetCount() : 0;
  services["messages"] = m_pError2Message ? (Json::UInt64)m_pError2Message->GetMessages().size() : 0;
  services["spelling_dictionaries"] = m_pSimDict && m_pSpellCheckDict;
  services["spelling_check"] = m_pSpellChecker != nullptr;
  services["knowledge_log"] = m_fpKG != nullptr;
  services["country_detection"] = m_bCountryDetect;
  services["standards_search"] = m_pSearchClient ? m_pSearchClient->TiaowenHost() + ":" +
                                                       std::to_string(m_pSearchClient->TiaowenPort())
                                                 : tstring();
  root["instances"] = (Json::UInt64)m_instances.LiveCount();
  return JsonText(root);
}
