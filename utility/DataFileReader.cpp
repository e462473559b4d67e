#include "utility/DataFileReader.h"

#include <zlib.h>

#include <cstdio>
#include <cstring>

#include "utility/DataFileFormat.h"
#include "utility/ErrorLog.h"

uint32_t DataFileChecksum(const char* sKind, uint32_t nVersion, const char* pPayload, size_t nLength) {
  uLong nCrc = crc32(0L, Z_NULL, 0);
  nCrc = crc32(nCrc, reinterpret_cast<const Bytef*>(sKind), 4);
  nCrc = crc32(nCrc, reinterpret_cast<const Bytef*>(&nVersion), sizeof(nVersion));
  // zlib takes lengths as uInt: feed large payloads in pieces.
  while (nLength > 0) {
    uInt nPiece = nLength > (1u << 30) ? (1u << 30) : (uInt)nLength;
    nCrc = crc32(nCrc, reinterpret_cast<const Bytef*>(pPayload), nPiece);
    pPayload += nPiece;
    nLength -= nPiece;
  }
  return (uint32_t)nCrc;
}

bool CDataFileReader::Open(const tstring& sFilename, const char* sKind, uint32_t nVersion) {
  m_sFilename = sFilename;
  m_sPayload.clear();
  m_nPos = 0;
  m_bOk = false;
  m_bReported = false;
  FILE* fp = fopen(sFilename.c_str(), "rb");
  if (fp == nullptr) {
    m_bReported = true;
    SetLastError("Fail read file " + sFilename);
    return false;
  }
  char sHeader[kDataFileHeaderSize];
  uint32_t nFileVersion = 0;
  uint64_t nLength = 0;
  bool bHeader = fread(sHeader, 1, sizeof(sHeader), fp) == sizeof(sHeader);
  if (bHeader) {
    memcpy(&nFileVersion, sHeader + 12, 4);
    memcpy(&nLength, sHeader + 16, 8);
  }
  tstring sWhy;
  if (!bHeader || memcmp(sHeader, kDataFileMagic, 8) != 0)
    sWhy = "not a data file of this engine";
  else if (memcmp(sHeader + 8, sKind, 4) != 0)
    sWhy = "holds " + tstring(sHeader + 8, 4) + " data, expected " + tstring(sKind, 4);
  else if (nFileVersion != nVersion)
    sWhy = "format version " + std::to_string(nFileVersion) + ", expected " + std::to_string(nVersion);
  if (sWhy.empty()) {
    // The length is checked against the file before anything is allocated.
    long nHere = ftell(fp);
    fseek(fp, 0, SEEK_END);
    long nEnd = ftell(fp);
    fseek(fp, nHere, SEEK_SET);
    if (nHere < 0 || nEnd < nHere || (uint64_t)(nEnd - nHere) != nLength + kDataFileTrailerSize) {
      sWhy = "truncated or extended";
    } else {
      m_sPayload.resize(nLength);
      uint32_t nCrc = 0;
      if (fread(&m_sPayload[0], 1, nLength, fp) != nLength || fread(&nCrc, 4, 1, fp) != 1)
        sWhy = "truncated";
      else if (nCrc != DataFileChecksum(sKind, nVersion, m_sPayload.data(), m_sPayload.size()))
        sWhy = "checksum mismatch";
    }
  }
  fclose(fp);
  if (!sWhy.empty()) {
    m_sPayload.clear();
    return Fail(sWhy);
  }
  m_bOk = true;
  return true;
}

bool CDataFileReader::GetCount(uint64_t& nCount, size_t nEntrySize) {
  nCount = 0;
  uint64_t nRead = 0;
  if (!GetU64(nRead)) return false;
  if (nEntrySize > 0 && nRead > (m_sPayload.size() - m_nPos) / nEntrySize) return Fail("count beyond the file");
  nCount = nRead;
  return true;
}

bool CDataFileReader::GetString(tstring& sText) {
  uint64_t nLength = 0;
  if (!GetU64(nLength) || nLength > m_sPayload.size() - m_nPos) return m_bOk = false;
  sText.assign(m_sPayload, m_nPos, nLength);
  m_nPos += nLength;
  return true;
}

bool CDataFileReader::GetI32Array(std::vector<int32_t>& vecValues) {
  uint64_t nCount = 0;
  if (!GetCount(nCount, sizeof(int32_t))) return false;
  vecValues.resize(nCount);
  return GetRaw(vecValues.data(), nCount * sizeof(int32_t));
}

bool CDataFileReader::GetRaw(void* pData, size_t nLength) {
  if (!m_bOk || nLength > m_sPayload.size() - m_nPos) return m_bOk = false;
  if (nLength > 0) memcpy(pData, m_sPayload.data() + m_nPos, nLength);
  m_nPos += nLength;
  return true;
}

bool CDataFileReader::Fail(const tstring& sWhy) {
  m_bOk = false;
  if (!m_bReported) {
    m_bReported = true;
    SetLastError("Corrupt data file " + m_sFilename + ": " + sWhy);
  }
  return false;
}

bool CDataFileReader::Finish() {
  if (m_bOk && m_nPos == m_sPayload.size()) return true;
  return Fail(m_bOk ? "unexpected bytes after the data" : "contents do not add up");
}
