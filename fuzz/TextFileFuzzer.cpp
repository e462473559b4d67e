// Reads fuzz bytes as each text data file (the first byte chooses): the
// message list and catalogue, the font-size table, the country list, the
// encoding model.
#include <cstdint>

#include "FuzzSupport.h"
#include "checker/ID2Message.h"
#include "utility/CodeTrans.h"
#include "utility/CountryDetector.h"
#include "utility/Num2FontSize.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  if (nSize < 1 || nSize > kMaxFuzzInput) return 0;
  const int nKind = pData[0] % 5;
  std::string sFile = WriteRaw("text", pData + 1, nSize - 1);
  if (nKind == 0) {
    CID2Message catalogue;
    catalogue.Import(sFile.c_str());
    catalogue.Export2Json();
  } else if (nKind == 1) {
    CID2Message catalogue;
    if (catalogue.Load(sFile.c_str()) == 1) catalogue.GetText("1.1.1");
  } else if (nKind == 2) {
    CNum2FontSize sizes;
    sizes.Import(sFile.c_str());
    sizes.GetName(24);
    sizes.GetSize("小四");
  } else if (nKind == 3) {
    CCountryDetector countries;
    if (countries.Load(sFile) > 0) countries.Find("中国与Chad和印度尼西亚");
  } else {
    CodeTrans_Initialize(sFile.c_str());
    CodeTrans_Detect("\xd6\xd0\xce\xc4", 4);
    CodeTrans_Destroy();
  }
  return 0;
}
