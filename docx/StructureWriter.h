#pragma once
// CStructureWriter renders the document model as the structure text: XML
// with CR LF line ends (each element on a line of its own, except that
// "<Footers>" follows "</Headers>" on the same line break and opens its
// line with the first footer), or JSON with its keys in a fixed order; a
// JSON paragraph ends with "numLabel", the number its automatic numbering
// shows ("" when none), which the XML form does not hold.
//
// In the XML texts only "<" and ">" are escaped; an ampersand is written as
// it is. The XML is therefore not well-formed when a text holds "&", and a
// text that holds "&lt;" or "&gt;" itself reads back as "<" or ">". The JSON
// form is well-formed and reads back exactly: use it where that matters.
#include "utility/TString.h"

class CDocument;
struct _tParagraph;

class CStructureWriter {
 public:
  // doc must outlive the writer.
  explicit CStructureWriter(const CDocument& doc) : m_doc(doc) {}

  tstring Xml() const;
  // The XML without its declaration line: the content text.
  tstring ContentXml() const;
  tstring Json(bool bTableFigureIncluded) const;

  // Writes sText beside the document's working folder, as "<folder>/../"
  // + name + sSuffix. Returns that path; "" with "Fail write file <path>".
  static tstring WriteBeside(const CDocument& doc, const tstring& sSuffix, const tstring& sText);
  // The whole structure as "<name>.xml" (format 0) or, with tables and
  // figures, as "<name>.json" (any other format); the path or "".
  static tstring WriteStructureFile(const CDocument& doc, int nResultFormat);
  // The content text as "<name>_Content.xml" (opened by the XML declaration)
  // or, with bJson, the JSON with tables and figures as "<name>_Content.json".
  static tstring WriteContentFile(const CDocument& doc, bool bJson);

 private:
  // A paragraph as XML lines; sIdSuffix follows the "%08X" id.
  void ParaXml(const _tParagraph& para, const char* sIdSuffix, const _tParagraph* pCaption, tstring& sOut) const;
  tstring ParaJson(const _tParagraph& para, const _tParagraph* pCaption) const;
  // The caption paragraph of a placeholder, or null.
  const _tParagraph* CaptionOf(const _tParagraph& para) const;

  const CDocument& m_doc;
};
