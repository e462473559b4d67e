// The instance table: handles are indexes, appended and never reused.
#include <cstdio>

#include "api/ApiGuard.h"
#include "api/Globals.h"
#include "checker/ReportChecker.h"
#include "tarvos.h"
#include "utility/ErrorLog.h"

namespace {

class CTableLock {
 public:
  CTableLock() { pthread_mutex_lock(&g_mutexTARVOS); }
  ~CTableLock() { pthread_mutex_unlock(&g_mutexTARVOS); }
  CTableLock(const CTableLock&) = delete;
  CTableLock& operator=(const CTableLock&) = delete;
};

}  // namespace

// Reads lock the table too: another thread may be appending, which can move
// the vector's storage.
CReportChecker* GetReportCheckerWorker(int handle) {
  if (g_bTARVOSInit) {
    CTableLock lock;
    if (handle >= 0 && (size_t)handle < g_vecReportChecker.size())
      return g_vecReportChecker[handle].get();
  }
  SetHandleError("GetReportCheckerWorker  argument(handle %d) is invalid!", handle);
  return nullptr;
}

extern "C" TARVOS_API int TARVOS_NewInstance(void) {
  return ApiGuard(__func__, -1, [](const char*) {
    if (!g_bTARVOSInit) {
      SetLastError("Not Init, no operation!");
      return -1;
    }
    std::unique_ptr<CReportChecker> pChecker(new CReportChecker);
    CTableLock lock;
    g_vecReportChecker.push_back(std::move(pChecker));
    return (int)g_vecReportChecker.size() - 1;
  });
}

// The initialisation flag is not tested, so that shutting down can use this call.
extern "C" TARVOS_API int TARVOS_DeleteInstance(int handle) {
  return ApiGuard(__func__, 0, [handle](const char*) {
    std::unique_ptr<CReportChecker> pDoomed;
    {
      CTableLock lock;
      if (handle < 0 || (size_t)handle >= g_vecReportChecker.size()) {
        SetHandleError("DC_DeleteInstance  argument(handle %d) is invalid!", handle);
        return 0;
      }
      pDoomed = std::move(g_vecReportChecker[handle]);
    }
    return 1;  // the instance is destroyed here, outside the lock
  });
}
