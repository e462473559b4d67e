#include "utility/CodeTrans.h"

#include <fstream>
#include <mutex>
#include <vector>

#include "utility/TString.h"

namespace {
std::mutex g_mutexCodeTrans;           // guards g_vecCharset
std::vector<tstring> g_vecCharset;     // candidate character sets, likeliest first
}  // namespace

int CodeTrans_Initialize(const char* sModelFile) {
  std::ifstream in(sModelFile ? sModelFile : "", std::ios::binary);
  if (!in) return -1;
  std::vector<tstring> vecCharset;
  tstring sLine;
  while (std::getline(in, sLine)) {
    size_t nEnd = sLine.find_first_of("#\r\n \t");
    tstring sName = sLine.substr(0, nEnd);
    if (!sName.empty()) vecCharset.push_back(sName);
  }
  if (vecCharset.empty()) return -1;
  std::lock_guard<std::mutex> lock(g_mutexCodeTrans);
  g_vecCharset.swap(vecCharset);
  return (int)g_vecCharset.size();
}

void CodeTrans_Destroy() {
  std::lock_guard<std::mutex> lock(g_mutexCodeTrans);
  g_vecCharset.clear();
}
