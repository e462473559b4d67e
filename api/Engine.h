#pragma once
// CEngine is the checking engine of the process: the shared services that
// every checking instance uses, the feature switches and the instance table.
// TARVOS_Init builds one and TARVOS_Exit destroys it; a test may build its
// own and give its services to a CReportChecker directly.
//
// Sharing: the services are read-only while checks run. Every call that
// reads them (a check, a template look-up) holds ReadLock for its whole run;
// every call that changes one (template and rule editing, dictionary and
// catalogue imports) holds WriteLock. So an import waits for running checks
// and a check sees each service wholly before or wholly after a change;
// checks that start while an import waits wait for it. Locks never nest.
// Each instance is used by one thread at a time; different instances run on
// different threads at once and give exactly the results of a sequential run.
//
// Start-up, in order (Start): the switches of "Data/ZYG-Configure.json";
// the rule engine (ZYG_Init, -1 when it does not start) and its manager; the
// keyword scanner ("FilterCheck"); the format checker and the font-size
// table ("FormatCheck"; -7 without sizes); the message catalogue (-6); the
// two spelling dictionaries and, with "SpellCheck", the spelling check (its
// dictionary's words imported into the segmenter); "KnowGraph.txt"; the encoding recogniser;
// country detection ("CountryDetect"); the standards search client
// ("SearchAgent.xml", skipped when absent); then instance 0. Non-fatal failures
// leave their reason as the last error.
#include <cstdio>
#include <memory>
#include <mutex>
#include <shared_mutex>

#include "checker/CheckServices.h"
#include "utility/HandleTable.h"
#include "utility/TString.h"
#include "utility/WriterFirstLock.h"

class CReportChecker;
class CSpellChecker;

class CEngine {
 public:
  CEngine();
  ~CEngine();
  // Owns every service and instance; hosts hold pointers into them.
  CEngine(const CEngine&) = delete;
  CEngine& operator=(const CEngine&) = delete;

  // Starts every service from a data directory (NULL or "" is the working
  // directory; a path starting with "." is taken relative to it). Returns 1;
  // -1 the rule engine did not start; -6 the catalogue was not loaded; -7 the
  // font-size table was not loaded. A failed start leaves what started in
  // place for Stop, and the engine not started.
  int Start(const char* sInitDirPath);
  // Stops the services and deletes every instance, in the shut-down order.
  void Stop();
  bool IsStarted() const { return m_bStarted; }

  const _tCheckServices& Services() const { return m_services; }
  const _tCheckSwitches& Switches() const { return m_services.switches; }
  const tstring& GetDataDir() const { return m_sDataDir; }        // as resolved by Start
  const tstring& GetDefaultDir() const { return m_sDefaultDir; }  // working directory at Start

  // REQUIRES: not held already by this thread (the locks do not nest).
  std::shared_lock<CWriterFirstLock> ReadLock() const { return std::shared_lock<CWriterFirstLock>(m_rwServices); }
  std::unique_lock<CWriterFirstLock> WriteLock() const { return std::unique_lock<CWriterFirstLock>(m_rwServices); }

  // A new checking instance; its handle, or -1 with "Not Init, no
  // operation!" when the engine is not started.
  int NewInstance();
  // 1 (also for an already deleted handle); 0 for a handle outside the table.
  int DeleteInstance(int handle);
  // The instance of a handle, or null (with a logged reason) when the
  // engine is not started, the handle is outside the table or deleted.
  CReportChecker* GetReportCheckerWorker(int handle) const;

  // The services, for the calls that change them (REQUIRES: WriteLock held)
  // and for queries (ReadLock held). Null when not started or switched off.
  CID2Message* GetMessages() { return m_pError2Message.get(); }
  CDocFormatCheck* GetFormatChecker() { return m_pDocFormatChecker.get(); }
  CZYGManager* GetRuleManager() { return m_pZYGManager.get(); }
  CKeyScanner* GetKeyScanner() { return m_pKeyScanner.get(); }
  CQueryExpand* GetSimDict() { return m_pSimDict.get(); }
  CQueryExpand* GetSpellDict() { return m_pSpellCheckDict.get(); }
  CLexicalAnalyser* GetAnalyser() { return m_pAnalyser.get(); }
  const CSpellChecker* GetSpellChecker() { return m_pSpellChecker.get(); }

  // What runs, as JSON: switches, services and their sizes.
  tstring InfoJson() const;

 private:
  int StartFormatCheck();
  void StartOptionalServices();
  void StartSpellCheck();
  void PublishServices();

  _tCheckServices m_services;  // handed to every instance; rebuilt by PublishServices
  tstring m_sDefaultDir;
  tstring m_sDataDir;
  bool m_bStarted = false;
  std::shared_ptr<CLexicalAnalyser> m_pAnalyser;  // shared with the rule engine's scanning calls
  std::unique_ptr<CZYGManager> m_pZYGManager;
  std::unique_ptr<CKeyScanner> m_pKeyScanner;
  std::unique_ptr<CNum2FontSize> m_pNum2FontSize;
  std::unique_ptr<CDocFormatCheck> m_pDocFormatChecker;
  std::unique_ptr<CID2Message> m_pError2Message;
  std::unique_ptr<CQueryExpand> m_pSimDict;
  std::unique_ptr<CQueryExpand> m_pSpellCheckDict;
  std::unique_ptr<CSpellChecker> m_pSpellChecker;  // with "SpellCheck"; null when its data is missing
  std::unique_ptr<CSearchClient> m_pSearchClient;  // standards look-ups; null without "SearchAgent.xml"
  FILE* m_fpKG = nullptr;  // "KnowGraph.txt", opened for appending
  bool m_bCountryDetect = false;  // country detection was started

  mutable CWriterFirstLock m_rwServices;  // readers: checks; writer: service changes
  CHandleTable<CReportChecker> m_instances;
};
