#include "utility/ErrorLog.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <mutex>

namespace {

std::mutex g_mutexLastError;  // guards g_sLastErrorMessage
tstring g_sLastErrorMessage;
thread_local tstring t_sThreadLastError;  // this thread's own last failure
std::mutex g_mutexLogFile;  // keeps concurrent lines whole

// Appends "[stamp]\ttext\n" to "<TARVOS_LOG_DIR>/<date><sExtension>".
void AppendStamped(const tstring& sText, const char* sExtension) {
  const char* sDir = std::getenv("TARVOS_LOG_DIR");
  if (sDir == nullptr || *sDir == '\0') return;
  time_t tNow = time(nullptr);
  struct tm tmNow;
  localtime_r(&tNow, &tmNow);
  char sDate[16], sStamp[32];
  strftime(sDate, sizeof(sDate), "%Y%m%d", &tmNow);
  strftime(sStamp, sizeof(sStamp), "%Y-%m-%d %H:%M:%S", &tmNow);
  tstring sFile = tstring(sDir) + "/" + sDate + sExtension;
  std::lock_guard<std::mutex> lock(g_mutexLogFile);
  FILE* fp = fopen(sFile.c_str(), "ab");
  if (fp == nullptr) return;  // a log that cannot be written must not fail the call
  fprintf(fp, "[%s]\t%s\n", sStamp, sText.c_str());
  fclose(fp);
}

}  // namespace

void SetLastError(const tstring& sText) {
  {
    std::lock_guard<std::mutex> lock(g_mutexLastError);
    g_sLastErrorMessage = sText;
  }
  t_sThreadLastError = sText;
  WriteError(sText);
}

void SetHandleError(const char* sFormat, int handle) {
  char sMessage[128];
  snprintf(sMessage, sizeof(sMessage), sFormat, handle);
  SetLastError(sMessage);
}

tstring GetLastError() {
  std::lock_guard<std::mutex> lock(g_mutexLastError);
  return g_sLastErrorMessage;
}

const tstring& GetThreadLastError() { return t_sThreadLastError; }

void ClearLastError() {
  std::lock_guard<std::mutex> lock(g_mutexLastError);
  g_sLastErrorMessage.clear();
}

void WriteError(const tstring& sText) { AppendStamped(sText, ".err"); }

void WriteLog(const tstring& sText) { AppendStamped(sText, ".log"); }

int ServiceMissing(const char* sService, int nFail) {
  SetLastError(tstring(sService) + " is not available in this build");
  return nFail;
}
