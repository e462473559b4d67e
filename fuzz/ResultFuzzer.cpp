// Saved results and HTML pages on fuzz bytes. The first byte chooses: a
// saved XML result, a saved JSON result (both read back and rendered again),
// one finding record read directly, or an HTML page turned into text.
#include <cstdint>
#include <string>

#include "FuzzSupport.h"
#include "checker/CheckResult.h"
#include "utility/CodePage.h"
#include "utility/HtmlText.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  if (nSize < 1 || nSize > kMaxFuzzInput) return 0;
  const int nKind = pData[0] % 4;
  const std::string sBytes(reinterpret_cast<const char*>(pData + 1), nSize - 1);
  if (nKind <= 1) {
    std::string sFile = WriteRaw(nKind == 0 ? "result_Check.xml" : "result_Check.json", pData + 1, nSize - 1);
    CCheckResult results;
    if (results.Import(sFile.c_str()) == 1) {
      results.GetResult("/p", "doc", 1, "", nullptr);
      results.GetResultJson("/p", "doc", 1, "", nullptr);
    }
  } else if (nKind == 2) {
    _tCheckResult finding;
    finding.input(sBytes.c_str(), (pData[0] & 4) != 0);
    std::string sOut;
    finding.output(sOut);
  } else {
    std::string sPage = sBytes;
    if (HtmlCharset(sPage).compare(0, 2, "gb") == 0) sPage = GBKToUTF8(sPage);
    HtmlToText(sPage);
  }
  return 0;
}
