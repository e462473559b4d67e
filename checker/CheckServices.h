#pragma once
// What a check is given: the feature switches and the shared services, all
// read-only while checks run. The engine builds them at start-up and hands
// every checking instance a const pointer to one _tCheckServices; a check
// keeps everything it works on (the document, its findings, section lists,
// counters) in objects of its own. Calls that change a service run only
// while no check does (the engine's writer lock), so a check sees each
// service either wholly before or wholly after a change.
//
// A null service is one that is switched off or did not start; every user
// tests for it.
#include "utility/TString.h"

class CDocFormatCheck;
class CID2Message;
class CKeyScanner;
class CLexicalAnalyser;
class CNum2FontSize;
class CQueryExpand;
class CZYGManager;
class CSearchClient;
class CSpellChecker;

// The switches of "ZYG-Configure.json" and their values before it is read.
struct _tCheckSwitches {
  bool bPunctionCheck = true;    // off only by "off"
  bool bFormatCheck = true;      // off only by "off"
  bool bOCR = false;             // on only by "on"
  bool bFilteringCheck = false;  // "FilterCheck": on only by "on"
  bool bSpellingCheck = false;   // on only by "on"
  bool bCountryDetect = false;   // on only by "on"
  tstring sSpellingHostIP;       // "SpellCheckIP", read only when spelling is on
};

struct _tCheckServices {
  _tCheckSwitches switches;
  const CID2Message* pMessages = nullptr;           // the message catalogue
  const CNum2FontSize* pFontSizes = nullptr;        // size names; with format checking
  const CDocFormatCheck* pFormatChecker = nullptr;  // templates; with format checking
  const CZYGManager* pRuleManager = nullptr;        // rule sets and audit rules
  const CKeyScanner* pKeyScanner = nullptr;         // error words; with "FilterCheck"
  const CLexicalAnalyser* pAnalyser = nullptr;      // segmenter; texts stay unsegmented without
  const CQueryExpand* pSimDict = nullptr;           // similar words
  const CQueryExpand* pSpellDict = nullptr;         // misspellings and corrections
  const CSpellChecker* pSpellChecker = nullptr;     // with "SpellCheck"; null when its data is missing
  const CSearchClient* pSearchClient = nullptr;     // standards look-ups; null without "SearchAgent.xml"
};
