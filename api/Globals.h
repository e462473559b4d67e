#pragma once
// The engine's process-wide state: the shared services every checking
// instance uses, the feature switches and the instance table. Written only by
// TARVOS_Init and TARVOS_Exit (and the table by its own calls); read freely by
// the instances in between.
#include <pthread.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

#include "utility/TString.h"

class CZYGManager;
class CDocFormatCheck;
class CNum2FontSize;
class CID2Message;
class CQueryExpand;
class CReportChecker;

extern int g_bTARVOSInit;       // 1 between a successful TARVOS_Init and TARVOS_Exit
extern tstring g_sDefaultDir;   // working directory at TARVOS_Init
extern tstring g_sDataDir;      // data directory resolved by TARVOS_Init
extern int g_nEncodeType;       // encoding of texts handed in; 1 = UTF-8

// Feature switches of "ZYG-Configure.json".
extern char g_bPunctionCheck;   // default on; off only by "off"
extern char g_bFormatCheck;     // default on; off only by "off"
extern char g_bOCR;             // default off; on only by "on"
extern char g_bFilteringCheck;  // default off; on only by "on"
extern char g_bSpellingCheck;   // default off; on only by "on"
extern char g_bCountryDetect;   // default off; on only by "on"
extern tstring g_sSpellingHostIP;  // read only when spelling is on

// Shared services; null until created by TARVOS_Init.
extern std::unique_ptr<CZYGManager> g_pZYGManager;
extern std::unique_ptr<CDocFormatCheck> g_pDocFormatChecker;  // null when format checking is off
extern std::unique_ptr<CNum2FontSize> g_pNum2FontSize;        // only with format checking
extern std::unique_ptr<CID2Message> g_pError2Message;
extern std::unique_ptr<CQueryExpand> g_pSimDict;
extern std::unique_ptr<CQueryExpand> g_pSpellCheckDict;
extern FILE* g_fpKG;            // "KnowGraph.txt", opened for appending
extern tstring g_sDelimiter;    // shared delimiter, empty

// The instance table: a handle is an index; slots are never reused.
extern std::vector<std::unique_ptr<CReportChecker>> g_vecReportChecker;
// Guards g_vecReportChecker (appends, deletions and reads) and the batch
// counters. Statically initialised, so a call racing start-up or shut-down
// never meets a destroyed mutex.
extern pthread_mutex_t g_mutexTARVOS;

// Progress of a directory check.
extern int64_t g_iProcessCount;
extern int64_t g_iTotalDocCount;

// Sets every switch to its value before the configuration is read.
void ResetSwitches();

// Reads the switches from a configuration file. Returns 1 when the file was
// parsed; 0 (switches unchanged, "Failed reading file <name>") otherwise.
int LoadZYGConfigre(const char* sFilename);

// The instance of a handle, or null (with a logged reason) when the engine is
// not initialised, the handle is outside the table or its instance was deleted.
CReportChecker* GetReportCheckerWorker(int handle);
