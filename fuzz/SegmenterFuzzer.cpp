// The lexical analyser on fuzz bytes: the first byte chooses between reading
// the rest as a user dictionary (then segmenting a fixed text) and
// segmenting the rest, which must come back whole: the words put together
// are the input without its blanks.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "FuzzSupport.h"
#include "utility/Utf8.h"
#include "utility/lexical/CharClass.h"
#include "utility/lexical/Lexical.h"

namespace {
std::string WithoutBlanks(const std::string& sText) {
  std::string sBare;
  for (size_t i = 0, n = 0; i < sText.size(); i += n) {
    uint32_t c;
    n = DecodeUtf8(sText.data() + i, sText.size() - i, c);
    if (ClassifyChar(c) != kCharBlank) sBare.append(sText, i, n);
  }
  return sBare;
}
}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  if (QUENDA_Init(TARVOS_FUZZ_DATA_DIR) != 1) abort();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  if (nSize < 1 || nSize > kMaxFuzzInput) return 0;
  const std::string sRest(reinterpret_cast<const char*>(pData + 1), nSize - 1);
  if (pData[0] & 1) {
    std::string sFile = WriteRaw("userdict", pData + 1, nSize - 1);
    QUENDA_ImportUserDict(sFile.c_str(), (pData[0] & 2) != 0);
    QUENDA_ParagraphProcess("用审查引擎做machine learning，共计3.14%", true);
    return 0;
  }
  std::vector<_tToken> vecTokens;
  QUENDA_Analyser()->Segment(sRest, vecTokens);
  std::string sJoined;
  for (const _tToken& t : vecTokens) sJoined.append(sRest, t.offset, t.length);
  // Words of earlier fuzz dictionaries may hold blanks: compare without them.
  if (WithoutBlanks(sJoined) != WithoutBlanks(sRest)) abort();
  QUENDA_ParagraphProcess(sRest, false);
  return 0;
}
