#include "docx/XmlScan.h"

#include <climits>
#include <cstdlib>
#include <cstring>

const char* FindIn(const char* p, const char* pEnd, const char* sNeedle) {
  if (p == nullptr || pEnd <= p) return nullptr;
  const size_t nNeedle = strlen(sNeedle);
  if (sNeedle[0] != '<') return static_cast<const char*>(memmem(p, (size_t)(pEnd - p), sNeedle, nNeedle));
  // Tags: '<' is the only place a match can start, and memchr finds it fast.
  for (const char* q = p; (size_t)(pEnd - q) >= nNeedle;) {
    q = static_cast<const char*>(memchr(q, '<', (size_t)(pEnd - q) - nNeedle + 1));
    if (q == nullptr) return nullptr;
    if (memcmp(q + 1, sNeedle + 1, nNeedle - 1) == 0) return q;
    ++q;
  }
  return nullptr;
}

const char* FindElement(const char* p, const char* pEnd, const char* sTag, bool bEmptyToo) {
  const size_t nTag = strlen(sTag);
  for (const char* q = FindIn(p, pEnd, sTag); q; q = FindIn(q + 1, pEnd, sTag)) {
    if (q + nTag >= pEnd) return nullptr;
    char c = q[nTag];
    if (c == ' ' || c == '>' || c == '\t' || c == '\r' || c == '\n' || (bEmptyToo && c == '/')) return q;
  }
  return nullptr;
}

bool FindAttr(const char* p, const char* pEnd, const char* sAttr, tstring& sValue) {
  tstring sKey = tstring(sAttr) + "=\"";
  for (const char* q = FindIn(p, pEnd, sKey.c_str()); q; q = FindIn(q + 1, pEnd, sKey.c_str())) {
    // The name must start there: "w:line" is not the end of "w:lineRule"'s neighbour.
    if (q > p && q[-1] != ' ' && q[-1] != '\t' && q[-1] != '\n' && q[-1] != '\r') continue;
    const char* pValue = q + sKey.size();
    const char* pQuote = static_cast<const char*>(memchr(pValue, '"', (size_t)(pEnd - pValue)));
    if (pQuote == nullptr) return false;
    sValue.assign(pValue, pQuote);
    return true;
  }
  return false;
}

bool FindElementAttr(const char* p, const char* pEnd, const char* sElement, const char* sAttr, tstring& sValue) {
  tstring sTag = tstring("<") + sElement;
  const char* q = FindElement(p, pEnd, sTag.c_str(), true);
  if (q == nullptr) return false;
  const char* pClose = static_cast<const char*>(memchr(q, '>', (size_t)(pEnd - q)));
  return FindAttr(q, pClose ? pClose : pEnd, sAttr, sValue);
}

int ToInt(const tstring& sText) {
  long n = strtol(sText.c_str(), nullptr, 10);
  return n > INT_MAX ? INT_MAX : n < INT_MIN ? INT_MIN : (int)n;
}
