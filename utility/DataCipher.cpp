#include "utility/DataCipher.h"

#include <cstdint>
#include <cstring>

namespace {
const char kProductTag[] = "Tarvos data file";
}

void CipherBytes(char* pData, size_t nLength) {
  const size_t nKeyLength = sizeof(kProductTag) - 1;
  for (size_t i = 0; i < nLength; ++i) {
    // Mixing the position in keeps equal bytes from enciphering alike.
    uint8_t nMask = (uint8_t)kProductTag[i % nKeyLength] ^ (uint8_t)(i * 131u + 7u);
    pData[i] = (char)((uint8_t)pData[i] ^ nMask);
  }
}

tstring CipherString(const tstring& sText) {
  tstring sOut(sText);
  CipherBytes(&sOut[0], sOut.size());
  return sOut;
}
