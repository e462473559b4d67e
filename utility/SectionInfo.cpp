#include "utility/SectionInfo.h"

#include <cstdlib>
#include <algorithm>
#include <cstddef>
#include <cstring>

#include "utility/CodePage.h"
#include "utility/XmlScan.h"

void _tSection_Format::Write(tstring& sOut) const {
  sOut += "\r\n<section_format>";
  sOut += "\r\n\t<prefix>" + ANSIToUTF8(prefix) + "</prefix>";
  if (chapter_format != -1) sOut += "\r\n\t<chapter_format>" + std::to_string(chapter_format) + "</chapter_format>";
  sOut += "\r\n\t<section_sep>" + ANSIToUTF8(section_sep) + "</section_sep>";
  sOut += "\r\n\t<num_format>" + std::to_string(num_format) + "</num_format>";
  sOut += "\r\n\t<post>" + ANSIToUTF8(post) + "</post>";
  sOut += "\r\n\t<level>" + std::to_string(level) + "</level>";
  sOut += "\r\n\t<section_type>" + std::to_string(section_type) + "</section_type>";
  sOut += "\r\n\t<sample>" + sample + "</sample>";
  sOut += "\r\n</section_format>\r\n";
}

namespace {

// The text of <sTag>...</sTag> when the tag starts before pLimit.
bool Field(const char* pText, const char* pLimit, const char* pEnd, const char* sTag, tstring& sValue) {
  const char* pOpen = ElementText(pText, pEnd, sTag, sValue);
  return pOpen != nullptr && pOpen < pLimit;
}

}  // namespace

const char* _tSection_Format::Read(const char* pText, const char* pEnd) {
  const char* pClose = FindIn(pText, pEnd, "</section_format>");
  if (pClose == nullptr) return nullptr;
  // The limit reaches 11 characters past the closing tag: kept as templates
  // have always been read.
  const char* pLimit = pClose + std::min<std::ptrdiff_t>(11, pEnd - pClose);
  tstring sValue;
  if (Field(pText, pLimit, pEnd, "prefix", sValue)) prefix = UTF8ToANSI(sValue);
  chapter_format = Field(pText, pLimit, pEnd, "chapter_format", sValue) ? atoi(sValue.c_str()) : -1;
  if (Field(pText, pLimit, pEnd, "section_sep", sValue)) section_sep = UTF8ToANSI(sValue);
  num_format = Field(pText, pLimit, pEnd, "num_format", sValue) ? atoi(sValue.c_str()) : -1;
  if (Field(pText, pLimit, pEnd, "post", sValue)) post = UTF8ToANSI(sValue);
  level = Field(pText, pLimit, pEnd, "level", sValue) ? atoi(sValue.c_str()) : 0;
  section_type = Field(pText, pLimit, pEnd, "section_type", sValue) ? atoi(sValue.c_str()) : 0;
  if (Field(pText, pLimit, pEnd, "sample", sValue)) sample = sValue;
  return pClose + strlen("</section_format>");
}
