#pragma once
// CDataFileReader reads a file written by CDataFileWriter, refusing it unless
// magic, kind, version, length and checksum all agree. Every Get checks the
// bounds of the payload; after the first failure all further Gets fail too,
// so a loader may read on and test once. See DataFileWriter.h for the layout.
#include <cstdint>
#include <vector>

#include "utility/TString.h"

class CDataFileReader {
 public:
  // Reads and verifies the whole file. Returns false with the last error
  // "Fail read file <name>" (cannot open) or "Corrupt data file <name>: <why>".
  bool Open(const tstring& sFilename, const char* sKind, uint32_t nVersion);

  bool GetU32(uint32_t& nValue) { return GetRaw(&nValue, sizeof(nValue)); }
  bool GetI32(int32_t& nValue) { return GetRaw(&nValue, sizeof(nValue)); }
  bool GetU64(uint64_t& nValue) { return GetRaw(&nValue, sizeof(nValue)); }
  bool GetFloat(float& fValue) { return GetRaw(&fValue, sizeof(fValue)); }
  bool GetString(tstring& sText);
  bool GetI32Array(std::vector<int32_t>& vecValues);
  bool GetRaw(void* pData, size_t nLength);
  // A count (u64) of entries of at least nEntrySize bytes each. A count the
  // rest of the payload cannot hold is damage: nCount becomes 0, so nothing
  // is allocated for it.
  bool GetCount(uint64_t& nCount, size_t nEntrySize);

  // Records the loader's own reason (a value out of range, say) and returns
  // false; sets the last error naming the file.
  bool Fail(const tstring& sWhy);

  // The verdict of the whole load, called last: true when every read
  // succeeded and consumed the payload exactly; otherwise false, with the
  // last error set once.
  bool Finish();

 private:
  tstring m_sFilename;  // for messages
  tstring m_sPayload;   // the verified payload
  size_t m_nPos = 0;    // read position in m_sPayload
  bool m_bOk = false;   // no failure so far
  bool m_bReported = false;  // the last error was set already
};
