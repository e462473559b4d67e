// Loads fuzz bytes as each dictionary file kind (the second byte chooses the
// kind) and uses what loads.
#include <cstdint>
#include <vector>

#include "FuzzSupport.h"
#include "utility/PDAT.h"
#include "utility/POS.h"
#include "utility/StrTran.h"
#include "utility/WordList.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  if (nSize < 1 || nSize > kMaxFuzzInput) return 0;
  const int nKind = pData[0] % 4;
  ++pData;
  --nSize;
  if (nKind == 0) {
    CPDAT dict;
    if (dict.Load(WriteForLoader("pdat", "PDAT", 2, pData, nSize))) {
      std::vector<_tPatternMatch> vecMatch;
      const char kText[] = "中国人民abc\xff\x01第一章";
      dict.Scan(kText, sizeof(kText) - 1, vecMatch);
      int nId;
      dict.LongestMatch(kText, sizeof(kText) - 1, nId);
      dict.ForEachWord([&](const std::string& sWord, int) { dict.GetId(sWord); });
    }
  } else if (nKind == 1) {
    CWordList words;
    if (words.Load(WriteForLoader("wlst", "WLST", 1, pData, nSize)))
      for (size_t i = 0; i < words.GetCount(); ++i) words.GetWord((int)i);
  } else if (nKind == 2) {
    CPOS pos;
    if (pos.Load(WriteForLoader("pos", "POS_", 1, pData, nSize))) pos.Get(0);
  } else {
    CStrTran table("py", "word");
    std::string sPrefix = FuzzPath("strt.");
    std::string sFile = WriteForLoader("strt.py2word.tran", "STRT", 1, pData, nSize);
    if (table.Load(sPrefix)) table.FindFirst("中国");
  }
  return 0;
}
