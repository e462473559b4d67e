// Every parser of free text on fuzz bytes: the number-order extractor and
// renumbering, dates, identity numbers, numerals, the normaliser, code-page
// conversion, encoding recognition.
#include <cstdint>
#include <string>

#include "FuzzSupport.h"
#include "utility/ChineseNumber.h"
#include "utility/CodePage.h"
#include "utility/CodeTrans.h"
#include "utility/NumberOrder.h"
#include "utility/TextNormalizer.h"
#include "utility/Validators.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  if (nSize > kMaxFuzzInput) return 0;
  const std::string sText(reinterpret_cast<const char*>(pData), nSize);
  _tSection_Info heading, formula, pattern;
  ExtractOrder(sText, kOrderHeading, heading);
  ExtractOrder(sText, kOrderFormula, formula);
  ExtractOrder("第一章 绪论", kOrderHeading, pattern);
  SetNewSectionNo(heading, pattern);
  SetNewSectionNo(formula, heading);
  int y, m, d;
  ParseDate(sText, y, m, d);
  IsValidIdentityNumber(sText);
  int64_t nValue;
  if (ChineseToNumber(sText, nValue)) NumberToChinese(nValue, nSize & 1);
  int64_t nSingle, nMulti;
  CharStat(NormalizeText(sText), nSingle, nMulti);
  GBKToUTF8(UTF8ToGBK(sText));
  CodeTrans_Detect(sText.data(), sText.size());
  return 0;
}
