#include "keyscan/KeyScanner.h"

#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"

int CKeyScanner::Init(const char* sDataPath, int /*nEncoding*/) {
  if (sDataPath == nullptr || !IsReadableDirectory(sDataPath)) {
    m_sLastError = ": cannot read the data directory";
    return 0;
  }
  return 1;
}

tstring CKeyScanner::ScanDetail(const tstring& /*sText*/, int /*nMode*/, int /*nHandle*/) const { return ""; }

int CKeyScanner::ImportUserDict(const char* sFilename, bool, bool, int) {
  if (sFilename == nullptr) {
    m_sLastError = "KS_ImportUserDict: file name is NULL";
    SetLastError(m_sLastError);
    return 0;
  }
  m_sLastError = "the keyword dictionary import is not available in this build";
  return ServiceMissing("the keyword dictionary import (KS_ImportUserDict)");
}
