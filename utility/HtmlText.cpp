#include "utility/HtmlText.h"

#include <strings.h>

#include <cctype>
#include <cstring>

#include "utility/Utf8.h"

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

void AppendEntity(const tstring& sEntity, tstring& sOut) {
  static const struct { const char* name; uint32_t c; } kNamed[] = {
      {"lt", '<'}, {"gt", '>'}, {"amp", '&'}, {"quot", '"'}, {"apos", '\''}, {"nbsp", ' '}, {"mdash", 0x2014},
      {"ndash", 0x2013}, {"hellip", 0x2026}, {"ldquo", 0x201C}, {"rdquo", 0x201D}, {"middot", 0xB7}};
  if (!sEntity.empty() && sEntity[0] == '#') {
    long n = sEntity.size() > 1 && (sEntity[1] == 'x' || sEntity[1] == 'X') ? strtol(sEntity.c_str() + 2, nullptr, 16)
                                                                             : strtol(sEntity.c_str() + 1, nullptr, 10);
    if (n > 0 && n <= 0x10FFFF && !(n >= 0xD800 && n <= 0xDFFF)) {
      AppendUtf8(sOut, (uint32_t)n);
      return;
    }
  }
  for (const auto& e : kNamed)
    if (sEntity == e.name) {
      AppendUtf8(sOut, e.c);
      return;
    }
  sOut += "&" + sEntity + ";";
}

}  // namespace

tstring HtmlToText(const tstring& sHtml) {
  static const char* const kBreaks[] = {"p", "/p", "div", "/div", "br", "br/", "li", "tr", "/tr", "h1", "h2", "h3",
                                        "h4", "h5", "h6", "/h1", "/h2", "/h3", "/h4", "/h5", "/h6", "title", "/title", nullptr};
  tstring sOut;
  const size_t n = sHtml.size();
  for (size_t i = 0; i < n;) {
    char c = sHtml[i];
    if (c == '<') {
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
    } else if (c == '&') {
      size_t nSemi = sHtml.find(';', i);
      if (nSemi != tstring::npos && nSemi - i <= 10) {
        AppendEntity(sHtml.substr(i + 1, nSemi - i - 1), sOut);
        i = nSemi + 1;
      } else {
        sOut += c;
        ++i;
      }
    } else {
      sOut += (c == '\r' || c == '\n' || c == '\t') ? ' ' : c;
      ++i;
    }
  }
  return sOut;
}
