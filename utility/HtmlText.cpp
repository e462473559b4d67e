#include "utility/HtmlText.h"

#include <strings.h>

#include <cctype>
#include <cstring>

#include "utility/XmlScan.h"

tstring HtmlCharset(const tstring& sHtml) {
  size_t nPos = 0;
  for (;;) {
    nPos = sHtml.find("charset", nPos);
    if (nPos == tstring::npos) return "";
    size_t q = nPos + 7;
    while (q < sHtml.size() && (sHtml[q] == ' ' || sHtml[q] == '=' || sHtml[q] == '"' || sHtml[q] == '\'')) ++q;
    size_t nEnd = q;
    while (nEnd < sHtml.size() && (isalnum((unsigned char)sHtml[nEnd]) || sHtml[nEnd] == '-' || sHtml[nEnd] == '_')) ++nEnd;
    if (nEnd > q) return sHtml.substr(q, nEnd - q);
    nPos = q;
  }
}

namespace {

bool TagIs(const tstring& sName, const char* const* pNames) {
  for (; *pNames; ++pNames)
    if (strcasecmp(sName.c_str(), *pNames) == 0) return true;
  return false;
}

// A run of text between tags: line breaks and tabs become blanks, then
// references are decoded.
void AppendText(const char* p, const char* pEnd, tstring& sOut) {
  tstring sRun(p, pEnd);
  for (char& c : sRun)
    if (c == '\r' || c == '\n' || c == '\t') c = ' ';
  sOut += DecodeEntities(sRun, kEntitiesHtml);
}

}  // namespace

tstring HtmlToText(const tstring& sHtml) {
  static const char* const kBreaks[] = {"p", "/p", "div", "/div", "br", "br/", "li", "tr", "/tr", "h1", "h2", "h3",
                                        "h4", "h5", "h6", "/h1", "/h2", "/h3", "/h4", "/h5", "/h6", "title", "/title", nullptr};
  tstring sOut;
  const size_t n = sHtml.size();
  for (size_t i = 0; i < n;) {
    size_t nLt = sHtml.find('<', i);
    AppendText(sHtml.data() + i, sHtml.data() + (nLt == tstring::npos ? n : nLt), sOut);
    if (nLt == tstring::npos) break;
    i = nLt;
    size_t nGt = sHtml.find('>', i);
    if (nGt == tstring::npos) break;
    size_t k = i + 1;
    while (k < nGt && (isalnum((unsigned char)sHtml[k]) || sHtml[k] == '/')) ++k;
    tstring sName = sHtml.substr(i + 1, k - i - 1);
    // Script and style bodies are code, not text.
    if (strcasecmp(sName.c_str(), "script") == 0 || strcasecmp(sName.c_str(), "style") == 0) {
      tstring sClose = "</" + sName;
      size_t nClose = n;
      for (size_t q = sHtml.find("</", nGt); q != tstring::npos; q = sHtml.find("</", q + 2))
        if (strncasecmp(sHtml.c_str() + q, sClose.c_str(), sClose.size()) == 0) {
          nClose = q;
          break;
        }
      i = nClose;
      continue;
    }
    if (TagIs(sName, kBreaks) && !sOut.empty() && sOut.back() != '\n') sOut += '\n';
    i = nGt + 1;
  }
  return sOut;
}
