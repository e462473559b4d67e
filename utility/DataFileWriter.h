#pragma once
// CDataFileWriter builds one of the engine's binary data files in memory and
// writes it whole. Layout, little-endian:
//   "TARVOSDF" (8 bytes), kind (4 bytes, e.g. "PDAT"), version (u32),
//   payload length (u64), payload, CRC-32 of kind, version and payload (u32).
// CDataFileReader checks every part, so a truncated, foreign or hand-edited
// file is refused instead of being read as garbage.
#include <cstdint>
#include <vector>

#include "utility/TString.h"

class CDataFileWriter {
 public:
  // sKind: exactly four characters naming what the file holds.
  CDataFileWriter(const char* sKind, uint32_t nVersion);

  void PutU32(uint32_t nValue) { PutRaw(&nValue, sizeof(nValue)); }
  void PutI32(int32_t nValue) { PutRaw(&nValue, sizeof(nValue)); }
  void PutU64(uint64_t nValue) { PutRaw(&nValue, sizeof(nValue)); }
  void PutFloat(float fValue) { PutRaw(&fValue, sizeof(fValue)); }
  // A length (u64) followed by the bytes.
  void PutString(const tstring& sText);
  // A count (u64) followed by the entries.
  void PutI32Array(const std::vector<int32_t>& vecValues);
  void PutRaw(const void* pData, size_t nLength);

  // Writes the file through a temporary name, so a failed write leaves the
  // old file whole. Returns false with "Fail write file <name>" as last error.
  bool Save(const tstring& sFilename) const;

 private:
  char m_sKind[4];      // what the file holds
  uint32_t m_nVersion;  // format version of that kind
  tstring m_sPayload;   // everything put so far
};
