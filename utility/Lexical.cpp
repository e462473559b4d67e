#include "utility/Lexical.h"

#include <atomic>

#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"

namespace {
std::atomic<bool> g_bLexicalReady{false};
}

int QUENDA_Init(const char* sDataPath) {
  if (sDataPath == nullptr || !IsReadableDirectory(sDataPath)) return 0;
  g_bLexicalReady = true;
  return 1;
}

void QUENDA_Exit() { g_bLexicalReady = false; }

int QUENDA_ImportUserDict(const char* sFilename, bool /*bOverwrite*/) {
  if (sFilename == nullptr) {
    SetLastError("QUENDA_ImportUserDict: file name is NULL");
    return 0;
  }
  return ServiceMissing("the segmenter's user dictionary import (QUENDA_ImportUserDict)");
}
