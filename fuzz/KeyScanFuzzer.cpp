// Imports fuzz bytes as a keyword user dictionary (the expressions and
// pairs in it reach the complex-filter parser), reloads the saved list, and
// scans the same bytes with it. The first byte chooses the import options.
#include <cstdint>
#include <string>
#include <vector>

#include "FuzzSupport.h"
#include "keyscan/ComplexFilter.h"
#include "keyscan/KeyScanData.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  if (nSize < 1 || nSize > kMaxFuzzInput) return 0;
  const uint8_t nFlags = pData[0];
  ++pData;
  --nSize;
  const std::string sText((const char*)pData, nSize);
  CComplexFilter filter;
  filter.ImportLine(sText, "c", 1);

  const std::string sRoot = FuzzPath("keys");
  mkdir(sRoot.c_str(), 0777);
  const std::string sFile = WriteRaw("keys.txt", pData, nSize);
  CKeyScanData data(sRoot.c_str(), 0);
  data.ImportUserDict(sFile.c_str(), nFlags & 1, true);
  CKeyScanData loaded(sRoot.c_str(), 0);
  if (loaded.Load(0)) {
    std::vector<_tKeyHit> vecHits;
    loaded.Scan(sText, vecHits);
    loaded.Scan("合同中规定了违约责任，按装软件 zhongguo", vecHits);
  }
  if (nFlags & 2) data.DeleteUserDict(sFile.c_str());
  return 0;
}
