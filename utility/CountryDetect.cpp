#include "utility/CountryDetect.h"

#include "utility/FileUtil.h"

int CountryDetect_Init(const char* sDataPath) {
  return sDataPath != nullptr && IsReadableDirectory(sDataPath) ? 1 : 0;
}

void CountryDetect_Exit() {}
