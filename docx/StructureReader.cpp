#include "docx/StructureReader.h"

#include <cstdlib>
#include <cstring>
#include <sstream>

#include "docx/DocxParser.h"
#include "docx/XmlScan.h"
#include "utility/CodePage.h"

namespace {

// The content of the first <sName>...</sName> in [p, pEnd); false when absent.
bool Value(const char* p, const char* pEnd, const char* sName, tstring& sValue, const char** ppAfter = nullptr) {
  tstring sOpen = tstring("<") + sName + ">", sClose = tstring("</") + sName + ">";
  const char* pOpen = FindIn(p, pEnd, sOpen.c_str());
  if (pOpen == nullptr) return false;
  const char* pStart = pOpen + sOpen.size();
  const char* pClose = FindIn(pStart, pEnd, sClose.c_str());
  if (pClose == nullptr) return false;
  sValue.assign(pStart, pClose);
  if (ppAfter) *ppAfter = pClose + sClose.size();
  return true;
}

tstring Unescape(const tstring& s) {
  tstring sOut;
  for (size_t i = 0; i < s.size(); ++i) {
    if (s.compare(i, 4, "&lt;") == 0) {
      sOut += '<';
      i += 3;
    } else if (s.compare(i, 4, "&gt;") == 0) {
      sOut += '>';
      i += 3;
    } else {
      sOut += s[i];
    }
  }
  return sOut;
}

// Each <sName>...</sName> range in [p, pEnd), in order; nested elements of
// other names are part of the range.
template <class F>
void ForEach(const char* p, const char* pEnd, const char* sName, F&& fn) {
  tstring sOpen = tstring("<") + sName + ">", sClose = tstring("</") + sName + ">";
  for (const char* q = FindIn(p, pEnd, sOpen.c_str()); q; q = FindIn(q, pEnd, sOpen.c_str())) {
    const char* pStart = q + sOpen.size();
    const char* pClose = FindIn(pStart, pEnd, sClose.c_str());
    if (pClose == nullptr) return;
    fn(pStart, pClose);
    q = pClose + sClose.size();
  }
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
  if (Value(p, pEnd, "text", s)) para.text = Unescape(s);
  if (Value(p, pEnd, "segment_text", s)) para.segment_txt = Unescape(s);
}

size_t CStructureReader::Read(const char* pText, const char* pEnd, CDocxParser& parser) {
  const char* pDocx = FindIn(pText, pEnd, "<Docx>");
  if (pDocx == nullptr) return 0;
  parser.Reset();
  tstring s;
  if (Value(pDocx, pEnd, "docxPath", s)) parser.m_sPath = UTF8ToANSI(s);
  if (Value(pDocx, pEnd, "docxFile", s)) parser.m_sFilename = UTF8ToANSI(s);
  if (Value(pDocx, pEnd, "format", s)) parser.m_sDocFormatExt = s;
  if (Value(pDocx, pEnd, "url_prefix", s)) parser.m_sURLPrefix = s;
  if (Value(pDocx, pEnd, "pages_paraID", s)) {
    std::istringstream ids(s);
    tstring sId;
    while (ids >> sId) parser.m_vecPageParaId.push_back((uint32_t)strtoul(sId.c_str(), nullptr, 16));
  }
  const char* pAfter = pDocx;
  if (Value(pDocx, pEnd, "Headers", s, &pAfter))
    ForEach(s.data(), s.data() + s.size(), "para", [&](const char* a, const char* b) {
      _tParagraph para;
      ReadPara(a, b, para);
      parser.m_vecHeadFooter[0].push_back(para);
    });
  if (Value(pAfter, pEnd, "Footers", s))
    ForEach(s.data(), s.data() + s.size(), "para", [&](const char* a, const char* b) {
      _tParagraph para;
      ReadPara(a, b, para);
      parser.m_vecHeadFooter[1].push_back(para);
    });
  std::map<uint32_t, int> mapCaption;  // caption paragraph id -> its index
  if (Value(pDocx, pEnd, "Paragraph", s))
    ForEach(s.data(), s.data() + s.size(), "para", [&](const char* a, const char* b) {
      _tParagraph para;
      ReadPara(a, b, para);
      if (para.level == kLevelTableCaption || para.level == kLevelFigureCaption)
        mapCaption[para.id] = (int)parser.m_vecParagraph.size();
      parser.m_vecParagraph.push_back(para);
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
    ForEach(s.data(), s.data() + s.size(), "table", [&](const char* a, const char* b) {
      _tTable table;
      table.caption_index = fnCaption(a, b, "tableCaption");
      tstring sIndex;
      const char* pRows = a;
      if (Value(a, b, "paraIndex", sIndex, &pRows)) table.para_index = ToInt(sIndex);
      ForEach(pRows, b, "Row", [&](const char* ra, const char* rb) {
        std::vector<std::vector<_tParagraph>> vecCells;
        ForEach(ra, rb, "Col", [&](const char* ca, const char* cb) {
          std::vector<_tParagraph> vecParas;
          ForEach(ca, cb, "para", [&](const char* pa, const char* pb) {
            _tParagraph para;
            ReadPara(pa, pb, para);
            vecParas.push_back(para);
          });
          vecCells.push_back(vecParas);
        });
        table.rows.push_back(vecCells);
      });
      parser.m_vecTable.push_back(table);
    });
  if (Value(pDocx, pEnd, "Figures", s))
    ForEach(s.data(), s.data() + s.size(), "figure", [&](const char* a, const char* b) {
      _tFigure figure;
      int nCaption = fnCaption(a, b, "figureCaption");
      figure.caption_index = nCaption < 0 ? (unsigned)-1 : (unsigned)nCaption;
      tstring sValue;
      const char* pRest = a;
      if (Value(a, b, "paraIndex", sValue, &pRest)) figure.para_index = ToInt(sValue);
      if (Value(pRest, b, "figureFile", sValue)) figure.figure_file = sValue;
      if (Value(pRest, b, "figureID", sValue)) figure.figure_id = sValue;
      parser.m_vecFigure.push_back(figure);
    });
  // Placeholders show their caption's text; their own text is that same text.
  return parser.m_vecParagraph.size();
}
