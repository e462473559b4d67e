#include "docx/ZipArchive.h"

#include <minizip/unzip.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "utility/ErrorLog.h"

namespace {

// A stored name that stays inside the base folder and names no link.
bool IsSafeName(const tstring& sName, tstring& sWhy) {
  if (sName.empty()) return sWhy = "empty name", false;
  if (sName[0] == '/' || (sName.size() > 1 && sName[1] == ':')) return sWhy = "absolute name", false;
  if (sName.find('\\') != tstring::npos || sName.find('\0') != tstring::npos) return sWhy = "unusual characters", false;
  size_t nStart = 0;
  while (nStart <= sName.size()) {
    size_t nEnd = sName.find('/', nStart);
    if (nEnd == tstring::npos) nEnd = sName.size();
    if (sName.compare(nStart, nEnd - nStart, "..") == 0) return sWhy = "\"..\" in the name", false;
    nStart = nEnd + 1;
  }
  return true;
}

bool MakeFolders(const tstring& sPath) {
  for (size_t nSlash = sPath.find('/', 1); nSlash != tstring::npos; nSlash = sPath.find('/', nSlash + 1)) {
    tstring sDir = sPath.substr(0, nSlash);
    if (mkdir(sDir.c_str(), 0777) != 0 && errno != EEXIST) return false;
    struct stat st;
    if (lstat(sDir.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) return false;  // never through a link
  }
  return true;
}

}  // namespace

CZipArchive::~CZipArchive() { Close(); }

void CZipArchive::Close() {
  if (m_pZip) unzClose(static_cast<unzFile>(m_pZip));
  m_pZip = nullptr;
}

bool CZipArchive::Open(const tstring& sFile) {
  Close();
  m_vecEntry.clear();
  m_nWritten = 0;
  m_bRefused = false;
  m_pZip = unzOpen64(sFile.c_str());
  if (m_pZip == nullptr) {
    SetLastError("Cannot read " + sFile + " as a zip package");
    return false;
  }
  if (!Check(sFile)) {
    Close();
    m_vecEntry.clear();
    return false;
  }
  return true;
}

bool CZipArchive::Check(const tstring& sFile) {
  unzFile zip = static_cast<unzFile>(m_pZip);
  unz_global_info64 info;
  if (unzGetGlobalInfo64(zip, &info) != UNZ_OK) {
    SetLastError("Cannot read the directory of " + sFile);
    return false;
  }
  if (info.number_entry > kMaxEntries) {
    m_bRefused = true;
    SetLastError("Refused " + sFile + ": " + std::to_string(info.number_entry) + " entries, more than " +
                 std::to_string(kMaxEntries));
    return false;
  }
  uint64_t nTotal = 0;
  for (int nRet = unzGoToFirstFile(zip); nRet == UNZ_OK; nRet = unzGoToNextFile(zip)) {
    unz_file_info64 fileInfo;
    char sName[1025];
    if (unzGetCurrentFileInfo64(zip, &fileInfo, sName, sizeof(sName), nullptr, 0, nullptr, 0) != UNZ_OK) {
      SetLastError("Cannot read an entry of " + sFile);
      return false;
    }
    _tEntry entry;
    entry.name.assign(sName, fileInfo.size_filename < sizeof(sName) ? (size_t)fileInfo.size_filename : 1024);
    unz64_file_pos filePos;
    unzGetFilePos64(zip, &filePos);
    entry.offset = filePos.pos_in_zip_directory;
    entry.number = filePos.num_of_file;
    entry.packed = fileInfo.compressed_size;
    entry.unpacked = fileInfo.uncompressed_size;
    entry.attr = (uint32_t)fileInfo.external_fa;
    entry.folder = !entry.name.empty() && entry.name.back() == '/';
    tstring sWhy;
    const uint32_t nMode = entry.attr >> 16;
    if (fileInfo.size_filename >= sizeof(sName) - 1) sWhy = "over-long name";
    else if (!IsSafeName(entry.name, sWhy)) {
    } else if ((nMode & S_IFMT) == S_IFLNK) sWhy = "a link";
    else if (entry.unpacked > kRatioFloor && entry.unpacked / kMaxRatio > entry.packed)
      sWhy = "unpacks to more than " + std::to_string(kMaxRatio) + " times its size";
    if (!sWhy.empty()) {
      m_bRefused = true;
      SetLastError("Refused " + sFile + ": entry \"" + entry.name + "\" is " + sWhy);
      return false;
    }
    nTotal += entry.unpacked;
    if (nTotal > kMaxTotalSize) {
      m_bRefused = true;
      SetLastError("Refused " + sFile + ": more than " + std::to_string(kMaxTotalSize >> 20) + " MiB unpacked");
      return false;
    }
    m_vecEntry.push_back(entry);
  }
  return true;
}

bool CZipArchive::Extract(size_t nIndex) {
  if (m_pZip == nullptr || nIndex >= m_vecEntry.size()) return false;
  const _tEntry& entry = m_vecEntry[nIndex];
  const tstring sPath = m_sBaseDir + "/" + entry.name;
  if (!MakeFolders(sPath)) return false;
  if (entry.folder) return mkdir(sPath.c_str(), 0777) == 0 || errno == EEXIST;
  unzFile zip = static_cast<unzFile>(m_pZip);
  unz64_file_pos filePos;
  filePos.pos_in_zip_directory = entry.offset;
  filePos.num_of_file = entry.number;
  if (unzGoToFilePos64(zip, &filePos) != UNZ_OK || unzOpenCurrentFile(zip) != UNZ_OK) return false;
  // Refuse to write through a link planted where the file should go.
  struct stat st;
  if (lstat(sPath.c_str(), &st) == 0 && !S_ISREG(st.st_mode)) {
    unzCloseCurrentFile(zip);
    return false;
  }
  FILE* fp = fopen(sPath.c_str(), "wb");
  if (fp == nullptr) {
    unzCloseCurrentFile(zip);
    return false;
  }
  std::unique_ptr<char[]> pBuffer(new char[1 << 16]);
  uint64_t nEntryBytes = 0;
  bool bOk = true;
  for (;;) {
    int n = unzReadCurrentFile(zip, pBuffer.get(), 1 << 16);
    if (n < 0) {
      bOk = false;
      break;
    }
    if (n == 0) break;
    nEntryBytes += (uint64_t)n;
    m_nWritten += (uint64_t)n;
    // A header may understate the size: the real bytes count.
    if (nEntryBytes > entry.unpacked || m_nWritten > kMaxTotalSize) {
      m_bRefused = true;
      SetLastError("Refused entry \"" + entry.name + "\": it unpacks to more than it declares");
      bOk = false;
      break;
    }
    if (fwrite(pBuffer.get(), 1, (size_t)n, fp) != (size_t)n) {
      bOk = false;
      break;
    }
  }
  fclose(fp);
  if (unzCloseCurrentFile(zip) != UNZ_OK) bOk = false;  // a CRC mismatch
  return bOk;
}

HZIP OpenZip(const char* sFile, const char* /*sPassword*/) {
  std::unique_ptr<CZipArchive> pZip(new CZipArchive);
  return sFile && pZip->Open(sFile) ? pZip.release() : nullptr;
}

void SetUnzipBaseDir(HZIP hZip, const char* sFolder) {
  if (hZip && sFolder) hZip->SetBaseDir(sFolder);
}

int GetZipItem(HZIP hZip, int nIndex, ZIPENTRY& ze) {
  memset(&ze, 0, sizeof(ze));
  if (hZip == nullptr) return -1;
  if (nIndex == -1) {
    ze.index = (int)hZip->GetEntries().size();
    return 0;
  }
  if (nIndex < 0 || (size_t)nIndex >= hZip->GetEntries().size()) return -1;
  const CZipArchive::_tEntry& entry = hZip->GetEntries()[nIndex];
  ze.index = nIndex;
  snprintf(ze.name, sizeof(ze.name), "%s", entry.name.c_str());
  ze.attr = entry.attr;
  return 0;
}

int UnzipItem(HZIP hZip, int nIndex, const char* /*sName*/) {
  return hZip && nIndex >= 0 && hZip->Extract((size_t)nIndex) ? 0 : -1;
}

void CloseZipU(HZIP hZip) { delete hZip; }
