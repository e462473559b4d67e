#include "docx/StructureReader.h"

#include <cstdlib>
#include <cstring>
#include <map>
#include <sstream>

#include "docx/Document.h"
#include "utility/XmlScan.h"
#include "utility/CodePage.h"

namespace {

// The content of the first complete <sName>...</sName> in [p, pEnd).
bool Value(const char* p, const char* pEnd, const char* sName, tstring& sValue, const char** ppAfter = nullptr) {
  return ElementText(p, pEnd, sName, sValue, kOpenIsMissing, ppAfter) != nullptr;
}

}  // namespace

void CStructureReader::ReadPara(const char* p, const char* pEnd, _tParagraph& para) {
  tstring s;
  if (Value(p, pEnd, "page_num", s)) para.page_num = ToInt(s);
  if (Value(p, pEnd, "paraId", s)) para.id = (uint32_t)strtoul(s.c_str(), nullptr, 16);
  if (Value(p, pEnd, "font", s)) para.font = s;
  if (Value(p, pEnd, "fontSize", s)) para.font_size = ToInt(s);
  if (Value(p, pEnd, "line_space", s)) para.line_space = ToInt(s);
  if (Value(p, pEnd, "numPtr", s)) para.numPtr = ToInt(s);
  if (Value(p, pEnd, "level", s)) para.level = ToInt(s);
  if (Value(p, pEnd, "text", s)) para.text = DecodeEntities(s, kEntitiesAngles);
  if (Value(p, pEnd, "segment_text", s)) para.segment_txt = DecodeEntities(s, kEntitiesAngles);
}

size_t CStructureReader::Read(const char* pText, const char* pEnd, CDocument& doc) {
  const char* pDocx = FindIn(pText, pEnd, "<Docx>");
  if (pDocx == nullptr) return 0;
  doc.Reset();
  tstring s;
  if (Value(pDocx, pEnd, "docxPath", s)) doc.m_sPath = UTF8ToANSI(s);
  if (Value(pDocx, pEnd, "docxFile", s)) doc.m_sFilename = UTF8ToANSI(s);
  if (Value(pDocx, pEnd, "format", s)) doc.m_sDocFormatExt = s;
  if (Value(pDocx, pEnd, "url_prefix", s)) doc.m_sURLPrefix = s;
  if (Value(pDocx, pEnd, "pages_paraID", s)) {
    std::istringstream ids(s);
    tstring sId;
    while (ids >> sId) doc.m_vecPageParaId.push_back((uint32_t)strtoul(sId.c_str(), nullptr, 16));
  }
  const char* pAfter = pDocx;
  if (Value(pDocx, pEnd, "Headers", s, &pAfter))
    ForEachElement(s.data(), s.data() + s.size(), "para", [&](const char* a, const char* b) {
      _tParagraph para;
      ReadPara(a, b, para);
      doc.m_vecHeadFooter[0].push_back(para);
    });
  if (Value(pAfter, pEnd, "Footers", s))
    ForEachElement(s.data(), s.data() + s.size(), "para", [&](const char* a, const char* b) {
      _tParagraph para;
      ReadPara(a, b, para);
      doc.m_vecHeadFooter[1].push_back(para);
    });
  std::map<uint32_t, int> mapCaption;  // caption paragraph id -> its index
  if (Value(pDocx, pEnd, "Paragraph", s))
    ForEachElement(s.data(), s.data() + s.size(), "para", [&](const char* a, const char* b) {
      _tParagraph para;
      ReadPara(a, b, para);
      if (para.level == kLevelTableCaption || para.level == kLevelFigureCaption)
        mapCaption[para.id] = (int)doc.m_vecParagraph.size();
      doc.m_vecParagraph.push_back(para);
    });
  auto fnCaption = [&](const char* a, const char* b, const char* sName) {
    tstring sCaption;
    if (!Value(a, b, sName, sCaption) || FindIn(sCaption.data(), sCaption.data() + sCaption.size(), "<para>") == nullptr)
      return -1;
    _tParagraph para;
    ReadPara(sCaption.data(), sCaption.data() + sCaption.size(), para);
    auto it = mapCaption.find(para.id);
    return it == mapCaption.end() ? -1 : it->second;
  };
  if (Value(pDocx, pEnd, "Tables", s))
    ForEachElement(s.data(), s.data() + s.size(), "table", [&](const char* a, const char* b) {
      _tTable table;
      table.caption_index = fnCaption(a, b, "tableCaption");
      tstring sIndex;
      const char* pRows = a;
      if (Value(a, b, "paraIndex", sIndex, &pRows)) table.para_index = ToInt(sIndex);
      ForEachElement(pRows, b, "Row", [&](const char* ra, const char* rb) {
        std::vector<std::vector<_tParagraph>> vecCells;
        ForEachElement(ra, rb, "Col", [&](const char* ca, const char* cb) {
          std::vector<_tParagraph> vecParas;
          ForEachElement(ca, cb, "para", [&](const char* pa, const char* pb) {
            _tParagraph para;
            ReadPara(pa, pb, para);
            vecParas.push_back(para);
          });
          vecCells.push_back(vecParas);
        });
        table.rows.push_back(vecCells);
      });
      doc.m_vecTable.push_back(table);
    });
  if (Value(pDocx, pEnd, "Figures", s))
    ForEachElement(s.data(), s.data() + s.size(), "figure", [&](const char* a, const char* b) {
      _tFigure figure;
      int nCaption = fnCaption(a, b, "figureCaption");
      figure.caption_index = nCaption < 0 ? (unsigned)-1 : (unsigned)nCaption;
      tstring sValue;
      const char* pRest = a;
      if (Value(a, b, "paraIndex", sValue, &pRest)) figure.para_index = ToInt(sValue);
      if (Value(pRest, b, "figureFile", sValue)) figure.figure_file = sValue;
      if (Value(pRest, b, "figureID", sValue)) figure.figure_id = sValue;
      doc.m_vecFigure.push_back(figure);
    });
  // Placeholders show their caption's text; their own text is that same text.
  return doc.m_vecParagraph.size();
}
