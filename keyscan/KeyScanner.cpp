#include "keyscan/KeyScanner.h"

#include <mutex>

#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"

namespace {
std::mutex g_mutexKSError;  // guards g_sKSLastError
tstring g_sKSLastError;

void SetKSError(const tstring& sText) {
  std::lock_guard<std::mutex> lock(g_mutexKSError);
  g_sKSLastError = sText;
}
}  // namespace

int KS_Init(const char* sDataPath, int /*nEncoding*/) {
  if (sDataPath == nullptr || !IsReadableDirectory(sDataPath)) {
    SetKSError(": cannot read the data directory");
    return 0;
  }
  return 1;
}

void KS_Exit() {}

const char* KS_ScanDetail(const char* /*sText*/, int /*nMode*/, int /*nHandle*/) { return ""; }

int KS_ImportUserDict(const char* sFilename, bool, bool, int) {
  if (sFilename == nullptr) {
    SetKSError("KS_ImportUserDict: file name is NULL");
    SetLastError("KS_ImportUserDict: file name is NULL");
    return 0;
  }
  SetKSError("the keyword dictionary import is not available in this build");
  return ServiceMissing("the keyword dictionary import (KS_ImportUserDict)");
}

const char* KS_GetLastErrorMsg() {
  thread_local tstring s_sCopy;
  std::lock_guard<std::mutex> lock(g_mutexKSError);
  s_sCopy = g_sKSLastError;
  return s_sCopy.c_str();
}
