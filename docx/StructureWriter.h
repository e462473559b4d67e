#pragma once
// CStructureWriter renders the document model as the structure text: XML
// with CR LF line ends (each element on a line of its own, except that
// "<Footers>" follows "</Headers>" on the same line break and opens its
// line with the first footer), or JSON with its keys in a fixed order. In
// texts only "<" and ">" are escaped; an ampersand is written as it is.
#include "utility/TString.h"

class CDocxParser;
struct _tParagraph;

class CStructureWriter {
 public:
  // pParser must outlive the writer; its character counts must be current.
  explicit CStructureWriter(const CDocxParser& parser) : m_parser(parser) {}

  tstring Xml() const;
  tstring Json(bool bTableFigureIncluded) const;

 private:
  // A paragraph as XML lines; sIdSuffix follows the "%08X" id.
  void ParaXml(const _tParagraph& para, const char* sIdSuffix, const _tParagraph* pCaption, tstring& sOut) const;
  tstring ParaJson(const _tParagraph& para, const _tParagraph* pCaption) const;
  // The caption paragraph of a placeholder, or null.
  const _tParagraph* CaptionOf(const _tParagraph& para) const;

  const CDocxParser& m_parser;
};
