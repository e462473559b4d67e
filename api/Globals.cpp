#include "api/Globals.h"

#include "checker/DocFormatCheck.h"
#include "checker/ID2Message.h"
#include "checker/ReportChecker.h"
#include "rules/ZYGManager.h"
#include "utility/Num2FontSize.h"
#include "utility/QueryExpand.h"

int g_bTARVOSInit = 0;
tstring g_sDefaultDir;
tstring g_sDataDir;
int g_nEncodeType = 1;

char g_bPunctionCheck = 1;
char g_bFormatCheck = 1;
char g_bOCR = 0;
char g_bFilteringCheck = 0;
char g_bSpellingCheck = 0;
char g_bCountryDetect = 0;
tstring g_sSpellingHostIP;

std::unique_ptr<CZYGManager> g_pZYGManager;
std::unique_ptr<CDocFormatCheck> g_pDocFormatChecker;
std::unique_ptr<CNum2FontSize> g_pNum2FontSize;
std::unique_ptr<CID2Message> g_pError2Message;
std::unique_ptr<CQueryExpand> g_pSimDict;
std::unique_ptr<CQueryExpand> g_pSpellCheckDict;
FILE* g_fpKG = nullptr;
tstring g_sDelimiter;

std::vector<std::unique_ptr<CReportChecker>> g_vecReportChecker;
pthread_mutex_t g_mutexTARVOS = PTHREAD_MUTEX_INITIALIZER;

int64_t g_iProcessCount = 0;
int64_t g_iTotalDocCount = 0;

void ResetSwitches() {
  g_bPunctionCheck = 1;
  g_bFormatCheck = 1;
  g_bOCR = 0;
  g_bFilteringCheck = 0;
  g_bSpellingCheck = 0;
  g_bCountryDetect = 0;
  g_sSpellingHostIP.clear();
}
