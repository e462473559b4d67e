#include "docx/StructureWriter.h"

#include <cstdio>

#include "docx/Document.h"
#include "utility/CodePage.h"
#include "utility/ErrorLog.h"
#include "utility/JsonText.h"

namespace {

const char kLineEnd[] = "\r\n";

tstring Escape(const tstring& sText) {
  tstring sOut;
  sOut.reserve(sText.size());
  for (char c : sText) {
    if (c == '<') sOut += "&lt;";
    else if (c == '>') sOut += "&gt;";
    else sOut.push_back(c);
  }
  return sOut;
}

void Line(tstring& sOut, const tstring& sText) {
  sOut += sText;
  sOut += kLineEnd;
}

tstring Element(const char* sName, const tstring& sValue) {
  return tstring("<") + sName + ">" + sValue + "</" + sName + ">";
}

}  // namespace

const _tParagraph* CStructureWriter::CaptionOf(const _tParagraph& para) const {
  int nCaption = -1;
  if (para.level == kLevelTable && para.id < m_doc.m_vecTable.size())
    nCaption = m_doc.m_vecTable[para.id].caption_index;
  else if (para.level == kLevelFigure && para.id < m_doc.m_vecFigure.size())
    nCaption = (int)m_doc.m_vecFigure[para.id].caption_index;
  if (nCaption < 0 || (size_t)nCaption >= m_doc.m_vecParagraph.size()) return nullptr;
  return &m_doc.m_vecParagraph[nCaption];
}

void CStructureWriter::ParaXml(const _tParagraph& para, const char* sIdSuffix, const _tParagraph* pCaption,
                               tstring& sOut) const {
  const bool bPlaceholder = para.level == kLevelTable || para.level == kLevelFigure;
  const tstring& sText = bPlaceholder ? (pCaption ? pCaption->text : tstring()) : para.text;
  const tstring& sSegment = bPlaceholder ? (pCaption ? pCaption->segment_txt : tstring()) : para.segment_txt;
  Line(sOut, "<para>");
  Line(sOut, Element("page_num", std::to_string(para.page_num)));
  Line(sOut, Element("paraId", ParaIdText(para.id) + sIdSuffix));
  Line(sOut, Element("font", para.font));
  Line(sOut, Element("fontSize", std::to_string(para.font_size)));
  Line(sOut, Element("line_space", std::to_string(para.line_space)));
  Line(sOut, Element("numPtr", std::to_string(para.numPtr)));
  Line(sOut, Element("level", std::to_string(para.level)));
  Line(sOut, Element("text", Escape(sText)));
  Line(sOut, Element("segment_text", Escape(sSegment)));
  Line(sOut, "</para>");
}

tstring CStructureWriter::Xml() const {
  const CDocument& p = m_doc;
  const _tCharCount count = p.DocCharStat();
  tstring s;
  Line(s, "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>");
  Line(s, "<Docx>");
  Line(s, Element("docxPath", ANSIToUTF8(p.m_sPath)));
  Line(s, Element("docxFile", ANSIToUTF8(p.m_sFilename)));
  Line(s, Element("format", p.m_sDocFormatExt));
  Line(s, Element("url_prefix", p.m_sURLPrefix));
  Line(s, Element("pages_count", std::to_string(p.m_vecPageParaId.size())));
  tstring sPages, sFormulas;
  for (uint32_t nId : p.m_vecPageParaId) sPages += ParaIdText(nId) + " ";
  for (int nIndex : p.FormulaIndexes()) sFormulas += std::to_string(nIndex) + " ";
  Line(s, Element("pages_paraID", sPages));
  Line(s, Element("formular_index", sFormulas));
  Line(s, Element("SingleByteCharCount", std::to_string(count.single_byte)));
  Line(s, Element("MultiByteCharCount", std::to_string(count.multi_byte)));
  Line(s, Element("CharCount", std::to_string(count.total)));
  Line(s, "<Headers>");
  for (const _tParagraph& para : p.m_vecHeadFooter[0]) ParaXml(para, "", nullptr, s);
  Line(s, "</Headers>");
  s += "<Footers>";  // deliberately no line end here
  for (const _tParagraph& para : p.m_vecHeadFooter[1]) ParaXml(para, "", nullptr, s);
  Line(s, "</Footers>");
  Line(s, "<ContentStructs>");
  Line(s, Element("ContentCount", std::to_string(p.ContentEntries().size())));
  for (int nIndex : p.ContentEntries()) {
    Line(s, "<content>");
    ParaXml(p.m_vecParagraph[nIndex], "", nullptr, s);
    Line(s, "</content>");
  }
  Line(s, "</ContentStructs>");
  Line(s, "<Paragraph>");
  Line(s, Element("ParaCount", std::to_string(p.m_vecParagraph.size())));
  for (const _tParagraph& para : p.m_vecParagraph) {
    const char* sSuffix = para.level == kLevelTable ? " Table" : para.level == kLevelFigure ? " Figure " : "";
    ParaXml(para, sSuffix, CaptionOf(para), s);
  }
  Line(s, "</Paragraph>");
  Line(s, "<Tables>");
  Line(s, Element("TableCount", std::to_string(p.m_vecTable.size())));
  for (const _tTable& table : p.m_vecTable) {
    Line(s, "<table>");
    Line(s, "<tableCaption>");
    if (table.caption_index >= 0 && (size_t)table.caption_index < p.m_vecParagraph.size())
      ParaXml(p.m_vecParagraph[table.caption_index], "", nullptr, s);
    Line(s, "</tableCaption>");
    Line(s, Element("paraIndex", std::to_string(table.para_index)));
    Line(s, Element("tableRowCount", std::to_string(table.rows.size())));
    for (size_t r = 0; r < table.rows.size(); ++r) {
      Line(s, "<Row>");
      Line(s, Element("index", std::to_string(r)));
      for (size_t c = 0; c < table.rows[r].size(); ++c) {
        Line(s, "<Col>");
        Line(s, Element("index", std::to_string(c)));
        for (const _tParagraph& para : table.rows[r][c]) ParaXml(para, "", nullptr, s);
        Line(s, "</Col>");
      }
      Line(s, "</Row>");
    }
    Line(s, "</table>");
  }
  Line(s, "</Tables>");
  Line(s, "<Figures>");
  Line(s, Element("FigureCount", std::to_string(p.m_vecFigure.size())));
  for (const _tFigure& figure : p.m_vecFigure) {
    Line(s, "<figure>");
    Line(s, "<figureCaption>");
    if (figure.caption_index != (unsigned)-1 && figure.caption_index < p.m_vecParagraph.size())
      ParaXml(p.m_vecParagraph[figure.caption_index], "", nullptr, s);
    Line(s, "</figureCaption>");
    Line(s, Element("paraIndex", std::to_string(figure.para_index)));
    Line(s, Element("figureFile", figure.figure_file));
    Line(s, Element("figureID", figure.figure_id));
    Line(s, "</figure>");
  }
  Line(s, "</Figures>");
  Line(s, "</Docx>");
  return s;
}

tstring CStructureWriter::ParaJson(const _tParagraph& para, const _tParagraph* pCaption) const {
  const bool bPlaceholder = para.level == kLevelTable || para.level == kLevelFigure;
  const tstring& sText = bPlaceholder ? (pCaption ? pCaption->text : tstring()) : para.text;
  const tstring& sSegment = bPlaceholder ? (pCaption ? pCaption->segment_txt : tstring()) : para.segment_txt;
  return "{\"paraId\": " + JsonQuote(ParaIdText(para.id)) + ", \"page_num\": " + std::to_string(para.page_num) +
         ", \"font\": " + JsonQuote(para.font) + ", \"fontSize\": " + std::to_string(para.font_size) +
         ", \"line_space\": " + std::to_string(para.line_space) + ", \"numPtr\": " + std::to_string(para.numPtr) +
         ", \"level\": " + std::to_string(para.level) + ", \"text\": " + JsonQuote(sText) +
         ", \"segment_text\": " + JsonQuote(sSegment) + ", \"numLabel\": " + JsonQuote(para.num_label) + "}";
}

tstring CStructureWriter::Json(bool bTableFigureIncluded) const {
  const CDocument& p = m_doc;
  const _tCharCount count = p.DocCharStat();
  auto fnList = [](const std::vector<tstring>& vecItems) {
    tstring s = "[";
    for (size_t i = 0; i < vecItems.size(); ++i) s += (i ? ", " : "") + vecItems[i];
    return s + "]";
  };
  std::vector<tstring> vecPages, vecFormulas, vecHeaders, vecFooters, vecContents, vecParas;
  for (uint32_t nId : p.m_vecPageParaId) vecPages.push_back(JsonQuote(ParaIdText(nId)));
  for (int nIndex : p.FormulaIndexes()) vecFormulas.push_back(std::to_string(nIndex));
  for (const _tParagraph& para : p.m_vecHeadFooter[0]) vecHeaders.push_back(ParaJson(para, nullptr));
  for (const _tParagraph& para : p.m_vecHeadFooter[1]) vecFooters.push_back(ParaJson(para, nullptr));
  for (int nIndex : p.ContentEntries()) vecContents.push_back(ParaJson(p.m_vecParagraph[nIndex], nullptr));
  for (const _tParagraph& para : p.m_vecParagraph) vecParas.push_back(ParaJson(para, CaptionOf(para)));
  tstring s = "{\"docxPath\": " + JsonQuote(ANSIToUTF8(p.m_sPath)) + ", \"docxFile\": " + JsonQuote(ANSIToUTF8(p.m_sFilename)) +
              ", \"format\": " + JsonQuote(p.m_sDocFormatExt) + ", \"url_prefix\": " + JsonQuote(p.m_sURLPrefix) +
              ", \"pages_count\": " + std::to_string(p.m_vecPageParaId.size()) + ", \"pages_paraID\": " +
              fnList(vecPages) + ", \"formular_index\": " + fnList(vecFormulas) +
              ", \"SingleByteCharCount\": " + std::to_string(count.single_byte) +
              ", \"MultiByteCharCount\": " + std::to_string(count.multi_byte) +
              ", \"CharCount\": " + std::to_string(count.total) + ", \"Headers\": " + fnList(vecHeaders) +
              ", \"Footers\": " + fnList(vecFooters) + ", \"ContentCount\": " + std::to_string(vecContents.size()) +
              ", \"Contents\": " + fnList(vecContents) + ", \"ParaCount\": " + std::to_string(vecParas.size()) +
              ", \"Paras\": " + fnList(vecParas);
  if (bTableFigureIncluded) {
    std::vector<tstring> vecTables, vecFigures;
    for (const _tTable& table : p.m_vecTable) {
      std::vector<tstring> vecRows;
      for (size_t r = 0; r < table.rows.size(); ++r) {
        std::vector<tstring> vecCols;
        for (size_t c = 0; c < table.rows[r].size(); ++c) {
          std::vector<tstring> vecCellParas;
          for (const _tParagraph& para : table.rows[r][c]) vecCellParas.push_back(ParaJson(para, nullptr));
          vecCols.push_back("{\"index\": " + std::to_string(c) + ", \"Paras\": " + fnList(vecCellParas) + "}");
        }
        vecRows.push_back("{\"index\": " + std::to_string(r) + ", \"Cols\": " + fnList(vecCols) + "}");
      }
      bool bCaption = table.caption_index >= 0 && (size_t)table.caption_index < p.m_vecParagraph.size();
      vecTables.push_back("{\"tableCaption\": " + (bCaption ? ParaJson(p.m_vecParagraph[table.caption_index], nullptr) : tstring("null")) +
                          ", \"paraIndex\": " + std::to_string(table.para_index) + ", \"tableRowCount\": " +
                          std::to_string(table.rows.size()) + ", \"Rows\": " + fnList(vecRows) + "}");
    }
    for (const _tFigure& figure : p.m_vecFigure) {
      bool bCaption = figure.caption_index != (unsigned)-1 && figure.caption_index < p.m_vecParagraph.size();
      vecFigures.push_back("{\"figureCaption\": " + (bCaption ? ParaJson(p.m_vecParagraph[figure.caption_index], nullptr) : tstring("null")) +
                           ", \"paraIndex\": " + std::to_string(figure.para_index) + ", \"figureFile\": " +
                           JsonQuote(figure.figure_file) + ", \"figureID\": " + JsonQuote(figure.figure_id) + "}");
    }
    s += ", \"Tables\": {\"TableCount\": " + std::to_string(vecTables.size()) + ", \"Tables\": " + fnList(vecTables) +
         "}, \"Figures\": {\"FigureCount\": " + std::to_string(vecFigures.size()) + ", \"Figures\": " +
         fnList(vecFigures) + "}";
  }
  return s + "}\n";
}

tstring CStructureWriter::WriteBeside(const CDocument& doc, const tstring& sSuffix, const tstring& sText) {
  const tstring sFile = doc.m_sPath + "/../" + doc.m_sFilename + sSuffix;
  FILE* fp = fopen(sFile.c_str(), "wb");
  bool bOk = fp != nullptr && fwrite(sText.data(), 1, sText.size(), fp) == sText.size();
  if (fp != nullptr && fclose(fp) != 0) bOk = false;
  if (!bOk) {
    SetLastError("Fail write file " + sFile);
    return "";
  }
  return sFile;
}

tstring CStructureWriter::WriteStructureFile(const CDocument& doc, int nResultFormat) {
  CStructureWriter writer(doc);
  return nResultFormat == 0 ? WriteBeside(doc, ".xml", writer.Xml()) : WriteBeside(doc, ".json", writer.Json(true));
}

tstring CStructureWriter::ContentXml() const {
  tstring sXml = Xml();
  size_t nLineEnd = sXml.find("\r\n");
  return nLineEnd == tstring::npos ? sXml : sXml.substr(nLineEnd + 2);
}

tstring CStructureWriter::WriteContentFile(const CDocument& doc, bool bJson) {
  CStructureWriter writer(doc);
  if (bJson) return WriteBeside(doc, "_Content.json", writer.Json(true));
  return WriteBeside(doc, "_Content.xml",
                     "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n" + writer.ContentXml());
}
