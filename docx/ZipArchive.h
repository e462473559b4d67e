#pragma once
// CZipArchive reads a zip package (a DOCX) and unpacks it into a folder,
// refusing what an uploaded file must not do:
//   - entry names that are absolute, hold a ".." component, a backslash, or
//     a NUL, or that are links (by their Unix attributes);
//   - more than kMaxEntries entries;
//   - more than kMaxTotalSize bytes unpacked in all;
//   - an entry above 64 KiB that unpacks to more than 200 times its packed
//     size (small entries cannot bomb), or past the size it declares.
// Open() checks every entry before anything is written, so a refused
// package writes nothing at all. Nothing is written outside the base folder.
#include <cstdint>
#include <vector>

#include "utility/TString.h"

class CZipArchive {
 public:
  static constexpr size_t kMaxEntries = 10000;
  static constexpr uint64_t kMaxTotalSize = 512ull << 20;
  static constexpr uint64_t kMaxRatio = 200;
  static constexpr uint64_t kRatioFloor = 64 << 10;

  struct _tEntry {
    tstring name;
    uint64_t packed = 0;
    uint64_t unpacked = 0;
    uint32_t attr = 0;   // external attributes
    bool folder = false;
    uint64_t offset = 0;  // where its directory record lies, to go back to it
    uint64_t number = 0;
  };

  CZipArchive() = default;
  ~CZipArchive();
  CZipArchive(const CZipArchive&) = delete;  // owns an open file
  CZipArchive& operator=(const CZipArchive&) = delete;

  // Opens and checks a package. False, with the reason in the last error,
  // when it cannot be read as a zip or breaks one of the rules above.
  bool Open(const tstring& sFile);
  void Close();

  const std::vector<_tEntry>& GetEntries() const { return m_vecEntry; }
  void SetBaseDir(const tstring& sFolder) { m_sBaseDir = sFolder; }

  // Unpacks entry nIndex under the base folder, creating its folders.
  bool Extract(size_t nIndex);

  // True after Open or Extract failed because a rule above was broken.
  bool IsRefused() const { return m_bRefused; }

 private:
  bool Check(const tstring& sFile);

  void* m_pZip = nullptr;            // minizip handle
  std::vector<_tEntry> m_vecEntry;   // every entry, in index order
  tstring m_sBaseDir;                // where entries are written
  uint64_t m_nWritten = 0;           // bytes unpacked so far
  bool m_bRefused = false;           // a rule was broken
};

// The handle calls of the document model over CZipArchive.
struct ZIPENTRY {
  int index;
  char name[1025];
  uint32_t attr;
};
typedef CZipArchive* HZIP;

// A checked package, or null (reason in the last error). password is unused.
HZIP OpenZip(const char* sFile, const char* sPassword);
void SetUnzipBaseDir(HZIP hZip, const char* sFolder);
// index -1: ze.index becomes the number of entries. Returns 0 on success.
int GetZipItem(HZIP hZip, int nIndex, ZIPENTRY& ze);
// Unpacks one entry under the base folder (its stored name; sName unused).
int UnzipItem(HZIP hZip, int nIndex, const char* sName);
void CloseZipU(HZIP hZip);
