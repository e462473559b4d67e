#include "utility/XmlScan.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "utility/Utf8.h"

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

const char* ElementText(const char* p, const char* pEnd, const char* sName, tstring& sValue, EOpenElement eOpen,
                        const char** ppAfter) {
  const tstring sOpen = tstring("<") + sName + ">", sClose = tstring("</") + sName + ">";
  const char* pOpen = FindIn(p, pEnd, sOpen.c_str());
  if (pOpen == nullptr) return nullptr;
  const char* pStart = pOpen + sOpen.size();
  const char* pClose = FindIn(pStart, pEnd, sClose.c_str());
  if (pClose == nullptr && eOpen == kOpenIsMissing) return nullptr;
  sValue.assign(pStart, pClose ? pClose : pEnd);
  if (ppAfter) *ppAfter = pClose ? pClose + sClose.size() : pEnd;
  return pOpen;
}

namespace {

// The character a reference names, or 0 when this set does not decode it.
uint32_t EntityChar(const char* pName, size_t nName, EEntitySet eSet) {
  static const struct { const char* name; uint32_t c; EEntitySet set; } kNamed[] = {
      {"lt", '<', kEntitiesAngles},      {"gt", '>', kEntitiesAngles},      {"amp", '&', kEntitiesXml},
      {"quot", '"', kEntitiesXml},       {"apos", '\'', kEntitiesXml},      {"nbsp", ' ', kEntitiesHtml},
      {"mdash", 0x2014, kEntitiesHtml},  {"ndash", 0x2013, kEntitiesHtml},  {"hellip", 0x2026, kEntitiesHtml},
      {"ldquo", 0x201C, kEntitiesHtml},  {"rdquo", 0x201D, kEntitiesHtml},  {"middot", 0xB7, kEntitiesHtml}};
  // Each set includes the ones listed before it: angles < XML < HTML.
  auto fnRank = [](EEntitySet e) { return e == kEntitiesAngles ? 0 : e == kEntitiesXml ? 1 : 2; };
  if (nName > 1 && pName[0] == '#' && eSet != kEntitiesAngles) {
    const bool bHex = pName[1] == 'x' || pName[1] == 'X';
    const tstring sDigits(pName + (bHex ? 2 : 1), pName + nName);
    char* pStop = nullptr;
    long n = strtol(sDigits.c_str(), &pStop, bHex ? 16 : 10);
    if (sDigits.empty() || *pStop != '\0' || n <= 0 || n > 0x10FFFF || (n >= 0xD800 && n <= 0xDFFF)) return 0;
    return (uint32_t)n;
  }
  for (const auto& e : kNamed)
    if (fnRank(e.set) <= fnRank(eSet) && strlen(e.name) == nName && memcmp(e.name, pName, nName) == 0) return e.c;
  return 0;
}

}  // namespace

tstring DecodeEntities(const char* p, const char* pEnd, EEntitySet eSet) {
  tstring sOut;
  if (p == nullptr || pEnd <= p) return sOut;
  sOut.reserve((size_t)(pEnd - p));
  while (p < pEnd) {
    const char* pAmp = static_cast<const char*>(memchr(p, '&', (size_t)(pEnd - p)));
    if (pAmp == nullptr) {
      sOut.append(p, pEnd);
      break;
    }
    sOut.append(p, pAmp);
    const size_t nWindow = (size_t)std::min<ptrdiff_t>(pEnd - pAmp, 12);
    const char* pSemi = static_cast<const char*>(memchr(pAmp, ';', nWindow));
    const uint32_t nChar = pSemi ? EntityChar(pAmp + 1, (size_t)(pSemi - pAmp - 1), eSet) : 0;
    if (nChar == 0) {
      sOut.push_back('&');
      p = pAmp + 1;
      continue;
    }
    AppendUtf8(sOut, nChar);
    p = pSemi + 1;
  }
  return sOut;
}

tstring EscapeXml(const tstring& sText) {
  tstring sOut;
  sOut.reserve(sText.size());
  for (char c : sText) {
    switch (c) {
      case '&': sOut += "&amp;"; break;
      case '<': sOut += "&lt;"; break;
      case '>': sOut += "&gt;"; break;
      case '"': sOut += "&quot;"; break;
      default: sOut += c;
    }
  }
  return sOut;
}
