#pragma once
// CKeyScanner finds the keywords, expressions and wrong forms of its keyword
// lists (KeyScanData.h) in a text. Each list has a handle; every list whose
// files lie in "<data>/KeyScanner" is loaded at start-up, and an import
// creates or replaces one. Scanning is safe from many threads at once, also
// while an import runs: an import builds the new list aside and publishes it
// whole, so a scan sees the old list or the new one.
//
// ScanDetail modes (texts are UTF-8; offsets are byte offsets):
//   0  the keywords found, "word/class" separated by blanks (pinyin hits
//      under the keyword they spell, expressions under their text)
//   1  one line per hit: "offset\tlength\tkind\tword\tclass\tweight\tcorrection\n",
//      kind one of "keyword", "pinyin", "complex", "correction"
//   2  the hits as a JSON array of objects with the keys of mode 1
//   3  the corrections: "(Check n)right-->wrong##right-->wrong$" in text
//      order, n their number; "" when there is none
// Any other mode, an unknown handle or an empty text gives "".
#include <functional>
#include <map>
#include <memory>
#include <mutex>

#include "keyscan/KeyScanData.h"
#include "utility/TString.h"

class CKeyScanner {
 public:
  static const int kMaxHandle = 1023;

  // Starts the scanner on a data directory (texts are always UTF-8;
  // nEncoding is accepted for compatibility). Returns 1, or 0 with its
  // reason in GetLastErrorMsg(): an unreadable directory or a damaged list
  // (the other lists are loaded all the same).
  int Init(const char* sDataPath, int nEncoding);

  tstring ScanDetail(const tstring& sText, int nMode, int nHandle) const;
  // Every hit of a text (see CKeyScanData::Scan). The hits point into the
  // list returned, which the caller keeps while it reads them (an import may
  // publish a new list meanwhile); null when the handle has no list.
  std::shared_ptr<const CKeyScanData> Scan(const tstring& sText, int nHandle, std::vector<_tKeyHit>& vecHits) const;

  // The list calls of CKeyScanData on the list of a handle (0..kMaxHandle),
  // created when it does not exist. Their results as there.
  int ImportUserDict(const char* sFilename, bool bAbbrevNeeded, bool bOverwrite, int nHandle);
  int DeleteUserDict(const char* sFilename, int nHandle);
  int ExportKeyDict(const char* sFilename, int nHandle) const;

  // The last failure of Init or of a list call.
  tstring GetLastErrorMsg() const;
  // The handles with a list, ascending.
  std::vector<int> GetHandles() const;

 private:
  std::shared_ptr<const CKeyScanData> GetData(int nHandle) const;
  // Runs a list call on a fresh copy of a handle's list and publishes the copy.
  int Change(int nHandle, const std::function<int(CKeyScanData&)>& fn);
  int Fail(const tstring& sError) const;

  tstring m_sDataPath;
  mutable std::mutex m_mutex;  // guards the map and the error text, not the lists
  std::map<int, std::shared_ptr<const CKeyScanData>> m_mapData;
  mutable tstring m_sLastError;
  std::mutex m_mutexChange;  // one list change at a time
};
