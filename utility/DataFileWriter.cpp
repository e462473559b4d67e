#include "utility/DataFileWriter.h"

#include <zlib.h>

#include <cstring>

#include "utility/DataFileFormat.h"
#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"

CDataFileWriter::CDataFileWriter(const char* sKind, uint32_t nVersion) : m_nVersion(nVersion) {
  memcpy(m_sKind, sKind, sizeof(m_sKind));
}

void CDataFileWriter::PutString(const tstring& sText) {
  PutU64(sText.size());
  PutRaw(sText.data(), sText.size());
}

void CDataFileWriter::PutI32Array(const std::vector<int32_t>& vecValues) {
  PutU64(vecValues.size());
  PutRaw(vecValues.data(), vecValues.size() * sizeof(int32_t));
}

void CDataFileWriter::PutRaw(const void* pData, size_t nLength) {
  if (nLength > 0) m_sPayload.append(static_cast<const char*>(pData), nLength);
}

bool CDataFileWriter::Save(const tstring& sFilename) const {
  uint32_t nCrc = DataFileChecksum(m_sKind, m_nVersion, m_sPayload.data(), m_sPayload.size());
  uint64_t nLength = m_sPayload.size();
  bool bOk = WriteFileReplacing(sFilename, [&](FILE* fp) {
    return fwrite(kDataFileMagic, 1, 8, fp) == 8 && fwrite(m_sKind, 1, 4, fp) == 4 &&
           fwrite(&m_nVersion, 4, 1, fp) == 1 && fwrite(&nLength, 8, 1, fp) == 1 &&
           fwrite(m_sPayload.data(), 1, m_sPayload.size(), fp) == m_sPayload.size() &&
           fwrite(&nCrc, 4, 1, fp) == 1;
  });
  if (!bOk) SetLastError("Fail write file " + sFilename);
  return bOk;
}
