#include "utility/CodePage.h"

#include <iconv.h>
#include <langinfo.h>
#include <locale.h>
#include <strings.h>

#include <cerrno>
#include <vector>

namespace {

tstring ReadLocaleCodeSet() {
  // newlocale reads the environment's locale without touching the process
  // locale, which belongs to the host.
  locale_t loc = newlocale(LC_CTYPE_MASK, "", (locale_t)0);
  if (loc == (locale_t)0) return "UTF-8";
  tstring sCodeSet = nl_langinfo_l(CODESET, loc);
  freelocale(loc);
  return sCodeSet.empty() ? "UTF-8" : sCodeSet;
}

// True when names and texts pass between the engine and the host unchanged:
// UTF-8 itself, and the 7-bit C locale, whose bytes Linux passes through.
bool IsPassThrough(const tstring& sCodeSet) {
  return strcasecmp(sCodeSet.c_str(), "UTF-8") == 0 || strcasecmp(sCodeSet.c_str(), "UTF8") == 0 ||
         strcasecmp(sCodeSet.c_str(), "ANSI_X3.4-1968") == 0 ||
         strcasecmp(sCodeSet.c_str(), "ASCII") == 0;
}

}  // namespace

const tstring& GetLocalCodeSet() {
  static const tstring s_sCodeSet = ReadLocaleCodeSet();
  return s_sCodeSet;
}

bool ConvertCodeSet(const tstring& sIn, const char* sFrom, const char* sTo, tstring& sOut) {
  sOut = sIn;
  iconv_t cd = iconv_open(sTo, sFrom);
  if (cd == (iconv_t)-1) return false;
  std::vector<char> vecOut(sIn.size() * 4 + 16);
  char* pIn = const_cast<char*>(sIn.data());
  size_t nInLeft = sIn.size();
  char* pOut = vecOut.data();
  size_t nOutLeft = vecOut.size();
  size_t nRet = iconv(cd, &pIn, &nInLeft, &pOut, &nOutLeft);
  iconv_close(cd);
  if (nRet == (size_t)-1 || nInLeft != 0) return false;
  sOut.assign(vecOut.data(), vecOut.size() - nOutLeft);
  return true;
}

tstring ConvertLenient(const tstring& sIn, const char* sFrom, const char* sTo) {
  iconv_t cd = iconv_open(sTo, sFrom);
  if (cd == (iconv_t)-1) return sIn;
  tstring sOut;
  std::vector<char> vecOut(4096);
  char* pIn = const_cast<char*>(sIn.data());
  size_t nInLeft = sIn.size();
  while (nInLeft > 0) {
    char* pOut = vecOut.data();
    size_t nOutLeft = vecOut.size();
    size_t nRet = iconv(cd, &pIn, &nInLeft, &pOut, &nOutLeft);
    sOut.append(vecOut.data(), vecOut.size() - nOutLeft);
    if (nRet != (size_t)-1 || errno == E2BIG) continue;
    // EILSEQ or EINVAL: keep the offending byte as it is and go on after it.
    sOut.push_back(*pIn++);
    --nInLeft;
    iconv(cd, nullptr, nullptr, nullptr, nullptr);
  }
  iconv_close(cd);
  return sOut;
}

tstring GBKToUTF8(const tstring& sText) { return ConvertLenient(sText, "GB18030", "UTF-8"); }

tstring UTF8ToGBK(const tstring& sText) { return ConvertLenient(sText, "UTF-8", "GB18030"); }

tstring UTF8ToANSI(const tstring& sText) {
  const tstring& sCodeSet = GetLocalCodeSet();
  return IsPassThrough(sCodeSet) ? sText : ConvertLenient(sText, "UTF-8", sCodeSet.c_str());
}

tstring ANSIToUTF8(const tstring& sText) {
  const tstring& sCodeSet = GetLocalCodeSet();
  return IsPassThrough(sCodeSet) ? sText : ConvertLenient(sText, sCodeSet.c_str(), "UTF-8");
}

tstring GetAnsiFilename(const char* sFilename) {
  return sFilename == nullptr ? tstring() : UTF8ToANSI(sFilename);
}
