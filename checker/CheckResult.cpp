#include "checker/CheckResult.h"

#include "utility/ErrorLog.h"

int CCheckResult::Import(const char* /*sFilename*/) {
  return ServiceMissing("reading saved check results (CCheckResult::Import)");
}

bool CCheckResult::Render(bool, const tstring&, const tstring&, int, const tstring&,
                          const CDocxParser*, tstring&) const {
  return ServiceMissing("the check result rendering (CCheckResult)") != 0;
}
