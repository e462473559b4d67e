#include "utility/CodeTrans.h"

#include <strings.h>
#include <uchardet/uchardet.h>

#include <fstream>
#include <mutex>
#include <vector>

#include "utility/Utf8.h"

namespace {
std::mutex g_mutexCodeTrans;        // guards g_vecCharset
std::vector<tstring> g_vecCharset;  // candidate character sets, likeliest first

bool IsValidUtf8(const char* pData, size_t nLength) {
  for (size_t i = 0, n = 0; i < nLength; i += n) {
    uint32_t c;
    n = DecodeUtf8(pData + i, nLength - i, c);
    if (c >= kInvalidByteBase) return false;
  }
  return true;
}

bool IsGbFamily(const tstring& sName) {
  return strcasecmp(sName.c_str(), "GB18030") == 0 || strcasecmp(sName.c_str(), "GBK") == 0 ||
         strcasecmp(sName.c_str(), "GB2312") == 0 || strcasecmp(sName.c_str(), "HZ-GB-2312") == 0;
}

tstring Recognise(const char* pData, size_t nLength) {
  uchardet_t detector = uchardet_new();
  if (detector == nullptr) return "";
  tstring sName;
  if (uchardet_handle_data(detector, pData, nLength) == 0) {
    uchardet_data_end(detector);
    const char* sCharset = uchardet_get_charset(detector);
    sName = sCharset ? sCharset : "";
  }
  uchardet_delete(detector);
  return sName;
}
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

tstring CodeTrans_Detect(const char* pData, size_t nLength) {
  if (pData == nullptr) return "";
  const unsigned char* u = reinterpret_cast<const unsigned char*>(pData);
  if (nLength >= 3 && u[0] == 0xEF && u[1] == 0xBB && u[2] == 0xBF) return "UTF-8";
  if (nLength >= 2 && u[0] == 0xFF && u[1] == 0xFE) return "UTF-16LE";
  if (nLength >= 2 && u[0] == 0xFE && u[1] == 0xFF) return "UTF-16BE";
  if (IsValidUtf8(pData, nLength)) return "UTF-8";
  tstring sFound = Recognise(pData, nLength);
  std::vector<tstring> vecCharset;
  {
    std::lock_guard<std::mutex> lock(g_mutexCodeTrans);
    vecCharset = g_vecCharset;
  }
  for (const tstring& sCandidate : vecCharset) {
    if (strcasecmp(sCandidate.c_str(), sFound.c_str()) == 0) return sCandidate;
    if (IsGbFamily(sCandidate) && IsGbFamily(sFound)) return "GB18030";
  }
  return "";
}
