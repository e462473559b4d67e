#include "utility/TextNormalizer.h"

#include <algorithm>

#include "utility/Utf8.h"

void CharStat(const tstring& sText, int64_t& nSingleByte, int64_t& nMultiByte) {
  nSingleByte = 0;
  nMultiByte = 0;
  for (size_t i = 0, n = 0; i < sText.size(); i += n) {
    uint32_t nChar;
    n = DecodeUtf8(sText.data() + i, sText.size() - i, nChar);
    if (n == 1)
      ++nSingleByte;
    else
      ++nMultiByte;
  }
}

namespace {
bool IsBlank(uint32_t c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f' || c == 0xA0 || c == 0x3000;
}
}  // namespace

tstring NormalizeText(const tstring& sText) {
  tstring sOut;
  sOut.reserve(sText.size());
  bool bPendingBlank = false;
  for (size_t i = 0, n = 0; i < sText.size(); i += n) {
    uint32_t nChar;
    n = DecodeUtf8(sText.data() + i, sText.size() - i, nChar);
    if (IsBlank(nChar)) {
      bPendingBlank = !sOut.empty();
      continue;
    }
    if (bPendingBlank) sOut.push_back(' ');
    bPendingBlank = false;
    if (nChar >= 0xFF01 && nChar <= 0xFF5E)
      sOut.push_back((char)(nChar - 0xFF01 + 0x21));
    else
      sOut.append(sText, i, n);
  }
  return sOut;
}

tstring CompactTitle(const tstring& sText) {
  tstring sTitle = NormalizeText(sText);
  sTitle.erase(std::remove(sTitle.begin(), sTitle.end(), ' '), sTitle.end());
  return sTitle;
}
