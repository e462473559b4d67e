// Checking every document of a folder with worker threads.
#include "api/ApiGuard.h"
#include "tarvos.h"
#include "utility/ErrorLog.h"

extern "C" TARVOS_API int TARVOS_CheckReportDir(const char* sReportDir, const char* /*sOrgnization*/,
                                                int /*nType*/, int /*format*/, int /*nThreadCount*/) {
  return ApiGuard(__func__, -1, [=](const char* sFn) {
    if (!ArgGiven(sFn, "sReportDir", sReportDir)) return -1;
    return ServiceMissing("batch directory checking (TARVOS_CheckReportDir)", -1);
  });
}
