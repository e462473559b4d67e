#pragma once
// Bounded searches over markup text (WordprocessingML, the engine's own
// XML outputs, HTML). Every search stays inside the range it is given: a
// missing closing tag ends the element at the range's end, never beyond it.
#include "utility/TString.h"

// The first occurrence of sNeedle in [p, pEnd), or null.
const char* FindIn(const char* p, const char* pEnd, const char* sNeedle);

// The first tag sTag (such as "<w:p") in [p, pEnd) whose name ends there:
// followed by a blank or '>' (and '/' too when bEmptyToo). Null when none.
const char* FindElement(const char* p, const char* pEnd, const char* sTag, bool bEmptyToo = false);

// The value of the first attribute sAttr (such as "w:line") in [p, pEnd):
// the text between the quotes of sAttr="...". False when there is none.
bool FindAttr(const char* p, const char* pEnd, const char* sAttr, tstring& sValue);

// The value of attribute sAttr of the first element sElement ("w:sz",
// "w:val") in [p, pEnd), looked up inside that element's tag only.
bool FindElementAttr(const char* p, const char* pEnd, const char* sElement, const char* sAttr, tstring& sValue);

// A decimal integer at the start of a text; 0 for none, clamped to int.
int ToInt(const tstring& sText);

// How ElementText treats an element whose closing tag is missing.
enum EOpenElement {
  kOpenRunsToEnd,  // its text runs to the end of the range
  kOpenIsMissing,  // the element does not count
};

// The text between "<sName>" and "</sName>", the first such element in
// [p, pEnd) (entities left as they are). Returns where its opening tag
// starts; null when there is none. When ppAfter is given it receives the
// position after the closing tag (or pEnd).
const char* ElementText(const char* p, const char* pEnd, const char* sName, tstring& sValue,
                        EOpenElement eOpen = kOpenRunsToEnd, const char** ppAfter = nullptr);

// Calls fn(start, end) for the text of each "<sName>" ... "</sName>" in
// [p, pEnd), in order; an element without its closing tag ends the walk.
template <class F>
void ForEachElement(const char* p, const char* pEnd, const char* sName, F&& fn) {
  const tstring sOpen = tstring("<") + sName + ">", sClose = tstring("</") + sName + ">";
  for (const char* q = FindIn(p, pEnd, sOpen.c_str()); q; q = FindIn(q, pEnd, sOpen.c_str())) {
    const char* pStart = q + sOpen.size();
    const char* pClose = FindIn(pStart, pEnd, sClose.c_str());
    if (pClose == nullptr) return;
    fn(pStart, pClose);
    q = pClose + sClose.size();
  }
}

// Which references DecodeEntities turns into characters.
enum EEntitySet {
  kEntitiesXml,      // &lt; &gt; &amp; &quot; &apos; and numeric references
  kEntitiesHtml,     // those, plus the named ones of HTML pages (&nbsp; &mdash; ...)
  kEntitiesAngles,   // only &lt; and &gt;: the escapes of the structure text
};

// The text of [p, pEnd) with its references decoded. A reference that is
// unknown, malformed or not closed within 12 bytes stays as it is.
tstring DecodeEntities(const char* p, const char* pEnd, EEntitySet eSet = kEntitiesXml);
inline tstring DecodeEntities(const tstring& sText, EEntitySet eSet = kEntitiesXml) {
  return DecodeEntities(sText.data(), sText.data() + sText.size(), eSet);
}

// A text as XML character data: '&', '<', '>' and '"' written as references,
// so that markup in the text cannot open or close elements. Control
// characters and invalid UTF-8 pass as they are: callers that must write
// well-formed XML from any text repair those first. DecodeEntities reverses it.
tstring EscapeXml(const tstring& sText);
