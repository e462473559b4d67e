// The paragraph model on small DOCX packages built here: ids, levels, text
// boxes, tables and their captions, figures and theirs, formulas, styles,
// fonts, headers and footers, the table of contents, and the structure text.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "DocxFixture.h"
#include "TestDataDir.h"
#include "docx/DocImporter.h"
#include "docx/Document.h"
#include "docx/StructureWriter.h"
#include "utility/ErrorLog.h"

namespace {

class DocxParserTest : public ::testing::Test {
 protected:
  // Writes and reads a package; the parser then holds its model.
  void Read(const std::string& sBody, std::vector<std::pair<std::string, std::string>> vecParts = {}) {
    std::string sFile = m_dir.Path() + "/doc.docx";
    ASSERT_TRUE(WriteDocx(sFile, sBody, vecParts));
    ASSERT_GE(CDocImporter(nullptr).ParseDocx(m_doc, sFile.c_str(), "", 0), 0);
  }
  std::string Summary() const {  // "level:text|" per paragraph
    std::string s;
    for (const auto& para : m_doc.m_vecParagraph) s += std::to_string(para.level) + ":" + para.text + "|";
    return s;
  }
  CTempDir m_dir;
  CDocument m_doc;
};

TEST_F(DocxParserTest, IdsAreTheOffsetsOfTheirParagraphTags) {
  Read(Para(TextRun("第一段")) + Para("") + "<w:p/>" + Para(TextRun("第二段")));
  ASSERT_EQ(Summary(), "0:第一段|0:第二段|");
  std::string sXml = ReadWholeFile(m_doc.m_sPath + "/word/document.xml");
  for (const auto& para : m_doc.m_vecParagraph) EXPECT_EQ(sXml.substr(para.id - 3, 4), "<w:p");
  EXPECT_LT(m_doc.m_vecParagraph[0].id, m_doc.m_vecParagraph[1].id);
  EXPECT_EQ(m_doc.GetText(m_doc.m_vecParagraph[1].id), "第二段");
}

TEST_F(DocxParserTest, TextBoxParagraphsBecomeFiguresOfTheirOwn) {
  std::string sBox = "<w:r><w:pict><v:textbox><w:txbxContent>" + Para(TextRun("框一")) + Para(TextRun("框二")) +
                     "</w:txbxContent></v:textbox></w:pict></w:r>";
  Read(Para(TextRun("正文前") + sBox));
  EXPECT_EQ(Summary(), "0:正文前|-200:框一|-202:框一|-202:框二|");
  ASSERT_EQ(m_doc.m_vecFigure.size(), 1u);
  EXPECT_EQ(m_doc.m_vecFigure[0].figure_file, "");
}

TEST_F(DocxParserTest, TableCaptionsFromTheFirstRowOrTheParagraphBefore) {
  auto fnCell = [](const std::string& s) { return "<w:tc>" + Para(TextRun(s)) + "</w:tc>"; };
  std::string sCaptionRowTable = "<w:tbl><w:tr>" + fnCell("表1 参数") + "</w:tr><w:tr>" + fnCell("甲") + fnCell("乙") +
                                 "</w:tr><w:tr>" + fnCell("1") + fnCell("2") + "</w:tr></w:tbl>";
  std::string sPlainTable = "<w:tbl><w:tr>" + fnCell("丙") + fnCell("丁") + "</w:tr></w:tbl>";
  Read(sCaptionRowTable + Para(TextRun("表2 结果如下")) + sPlainTable + Para(TextRun("没有题注")) + sPlainTable);
  EXPECT_EQ(Summary(), "-102:表1 参数|-100:|-102:表2 结果如下|-100:|0:没有题注|-100:|");
  ASSERT_EQ(m_doc.m_vecTable.size(), 3u);
  EXPECT_EQ(m_doc.m_vecTable[0].caption_index, 0);
  EXPECT_EQ(m_doc.m_vecTable[1].caption_index, 2);
  EXPECT_EQ(m_doc.m_vecTable[2].caption_index, -1);
  std::string sCell;
  ASSERT_TRUE(m_doc.m_vecTable[0].GetValue(1, 1, sCell));
  EXPECT_EQ(sCell, "乙");
  _tParaIndex index;
  ASSERT_TRUE(m_doc.GetParaIndex(m_doc.m_vecTable[0].rows[2][0][0].id, index));
  EXPECT_EQ(index.table_index, 0);
  EXPECT_EQ(index.row_index, 2);
}

TEST_F(DocxParserTest, FiguresWithAndWithoutTextAndTheirCaptions) {
  std::string sImage = "<w:r><w:drawing><a:blip r:embed=\"rId7\"/></w:drawing></w:r>";
  std::string sRels = "<Relationships><Relationship Id=\"rId7\" Type=\"http://x/image\" Target=\"media/image1.png\"/>"
                      "</Relationships>";
  Read(Para(sImage) + Para(TextRun("图1 系统结构")) + Para(TextRun("见下图") + sImage) + Para(TextRun("说明")),
       {{"word/_rels/document.xml.rels", sRels}});
  EXPECT_EQ(Summary(), "-200:|-201:图1 系统结构|-200:见下图(Figure 1)|0:见下图(Figure 1)|0:说明|");
  ASSERT_EQ(m_doc.m_vecFigure.size(), 2u);
  EXPECT_EQ(m_doc.m_vecFigure[0].figure_file, "media/image1.png");
  EXPECT_EQ(m_doc.m_vecFigure[0].figure_id, "rId7");
  EXPECT_EQ(m_doc.m_vecFigure[0].caption_index, 1u);
  EXPECT_EQ(m_doc.m_vecFigure[1].caption_index, (unsigned)-1);
}

TEST_F(DocxParserTest, FormulasOutlineLevelsAndStyles) {
  std::string sStyles =
      "<w:styles><w:style w:type=\"paragraph\" w:styleId=\"1\"><w:name w:val=\"heading 1\"/>"
      "<w:rPr><w:rFonts w:eastAsia=\"黑体\"/><w:sz w:val=\"32\"/></w:rPr></w:style>"
      "<w:style w:type=\"paragraph\" w:styleId=\"H1x\"><w:name w:val=\"My Heading\"/><w:basedOn w:val=\"1\"/></w:style>"
      "<w:style w:type=\"paragraph\" w:styleId=\"T\"><w:name w:val=\"Title\"/><w:aliases w:val=\"标题 2,Heading\"/>"
      "<w:rPr><w:sz w:val=\"28\"/></w:rPr></w:style></w:styles>";
  auto fnOutline = [](int n) { return "<w:outlineLvl w:val=\"" + std::to_string(n) + "\"/>"; };
  Read(Para(TextRun("能量 E=mc2 (12)")) + Para(TextRun("E=mc2(12)")) + Para(TextRun("长 (1234567890)")) +
           Para(TextRun("大纲零"), fnOutline(0)) + Para(TextRun("大纲三"), fnOutline(3)) +
           Para(TextRun("大纲四"), fnOutline(4)) + Para(TextRun("派生标题"), "<w:pStyle w:val=\"H1x\"/>") +
           Para(TextRun("题目"), "<w:pStyle w:val=\"T\"/>"),
       {{"word/styles.xml", sStyles}});
  EXPECT_EQ(Summary(), "-512:能量 E=mc2 (12)|0:E=mc2(12)|0:长 (1234567890)|1:大纲零|4:大纲三|0:大纲四|1:派生标题|2:题目|");
  EXPECT_EQ(m_doc.m_vecParagraph[6].font_size, 32) << "the size of the base style";
  EXPECT_EQ(m_doc.m_vecParagraph[6].font, "黑体");
  EXPECT_EQ(m_doc.FormulaIndexes(), std::vector<int>{0});
}

TEST_F(DocxParserTest, ChineseFontWinsAndAlignmentMarksWrapText) {
  Read(Para(TextRun("面积", "<w:rFonts w:ascii=\"Times New Roman\" w:eastAsia=\"宋体\"/><w:sz w:val=\"24\"/>") +
            TextRun("2", "<w:vertAlign w:val=\"superscript\"/>") + "<w:r><w:tab/></w:r>" + TextRun("a&amp;b&lt;c")));
  ASSERT_EQ(m_doc.m_vecParagraph.size(), 1u);
  const _tParagraph& para = m_doc.m_vecParagraph[0];
  EXPECT_EQ(para.font, "宋体");
  EXPECT_EQ(para.font_size, 24);
  EXPECT_EQ(para.text, "面积<superscript>2</superscript>\ta&b<c");
  std::string sXml = CStructureWriter(m_doc).Xml();
  EXPECT_NE(sXml.find("<text>面积&lt;superscript&gt;2&lt;/superscript&gt;\ta&b&lt;c</text>\r\n"), std::string::npos);
}

TEST_F(DocxParserTest, HeadersStopAtTheFirstMissingNumberAndContentsHoldPagerefs) {
  auto fnPart = [](const std::string& s) { return "<w:hdr>" + Para(TextRun(s)) + Para(TextRun("第二段不读")) + "</w:hdr>"; };
  std::string sToc = Para(TextRun("第一章 绪论") + "<w:r><w:instrText> PAGEREF _Toc1 \\h </w:instrText></w:r>" + TextRun("1"));
  Read(sToc + Para(TextRun("第一章 绪论"), "<w:outlineLvl w:val=\"0\"/>") + Para(TextRun("参考文献"), "<w:outlineLvl w:val=\"0\"/>") +
           Para(TextRun("[1] 作者. 题名[J]. 2020.")),
       {{"word/header1.xml", fnPart("页眉一")}, {"word/header2.xml", fnPart("页眉二")},
        {"word/header4.xml", fnPart("页眉四")}, {"word/footer1.xml", fnPart("页脚")}});
  ASSERT_EQ(m_doc.m_vecHeadFooter[0].size(), 2u);
  EXPECT_EQ(m_doc.m_vecHeadFooter[0][1].text, "页眉二");
  EXPECT_EQ(m_doc.m_vecHeadFooter[0][1].page_num, 2);
  EXPECT_EQ(m_doc.m_vecHeadFooter[0][1].level, kLevelHeader);
  ASSERT_EQ(m_doc.m_vecHeadFooter[1].size(), 1u);
  EXPECT_EQ(Summary(), "13:第一章 绪论 . 1|1:第一章 绪论|1:参考文献|0:[1] 作者. 题名[J]. 2020.|");
  EXPECT_EQ(m_doc.ContentEntries(), std::vector<int>{0});
  EXPECT_EQ(m_doc.Headings(), (std::vector<int>{1, 2}));
  EXPECT_EQ(m_doc.ReferenceStart(), 3);
  EXPECT_EQ(m_doc.ReferenceEnd(), 3);
  EXPECT_EQ(m_doc.LocateChapterID(m_doc.m_vecParagraph[3].id), m_doc.m_vecParagraph[2].id);
  EXPECT_EQ(m_doc.LocateChapterID(m_doc.m_vecParagraph[0].id), 0u);
}

TEST_F(DocxParserTest, StructureTextLayout) {
  Read(Para(TextRun("唯一")));
  std::string sXml = CStructureWriter(m_doc).Xml();
  EXPECT_EQ(sXml.compare(0, 65, "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n<Docx>\r\n"), 0);
  EXPECT_NE(sXml.find("</Headers>\r\n<Footers></Footers>\r\n"), std::string::npos);
  EXPECT_NE(sXml.find("<Tables>\r\n<TableCount>0</TableCount>\r\n</Tables>\r\n"), std::string::npos);
  EXPECT_NE(sXml.find("<CharCount>2</CharCount>"), std::string::npos);
  EXPECT_EQ(sXml.substr(sXml.size() - 9), "</Docx>\r\n");
  std::string sJson = CStructureWriter(m_doc).Json(true);
  EXPECT_LT(sJson.find("\"docxPath\""), sJson.find("\"docxFile\""));
  EXPECT_LT(sJson.find("\"ParaCount\""), sJson.find("\"Tables\""));
  const std::string sFile = CStructureWriter::WriteStructureFile(m_doc, 0);
  EXPECT_EQ(ReadWholeFile(sFile), sXml);
  EXPECT_EQ(sFile, m_doc.m_sPath + "/../doc.xml");
  const std::string sContent = CStructureWriter::WriteContentFile(m_doc, false);
  EXPECT_EQ(sContent, m_doc.m_sPath + "/../doc_Content.xml");
  EXPECT_EQ(ReadWholeFile(sContent), sXml) << "declaration + content text = the structure text";
  EXPECT_EQ(ReadWholeFile(CStructureWriter::WriteContentFile(m_doc, true)), sJson);
}

}  // namespace

namespace {

TEST_F(DocxParserTest, StructureFileLoadsBackIntoTheSameText) {
  auto fnCell = [](const std::string& s) { return "<w:tc>" + Para(TextRun(s)) + "</w:tc>"; };
  std::string sImage = "<w:r><w:drawing><a:blip r:embed=\"rId7\"/></w:drawing></w:r>";
  Read(Para(TextRun("第一章 绪论"), "<w:outlineLvl w:val=\"0\"/>") + Para(TextRun("a<b & c>d")) +
           "<w:tbl><w:tr>" + fnCell("表1 参数") + "</w:tr><w:tr>" + fnCell("甲") + fnCell("乙") + "</w:tr></w:tbl>" +
           Para(sImage) + Para(TextRun("图1 结构")) + Para(TextRun("E=mc2 (1)")),
       {{"word/header1.xml", "<w:hdr>" + Para(TextRun("页眉")) + "</w:hdr>"},
        {"word/footer1.xml", "<w:ftr>" + Para(TextRun("页脚")) + "</w:ftr>"},
        {"word/_rels/document.xml.rels", "<Relationships><Relationship Id=\"rId7\" Target=\"media/a.png\"/></Relationships>"}});
  const std::string sFirst = CStructureWriter(m_doc).Xml();
  const std::string sFile = m_dir.Path() + "/saved.xml";
  std::ofstream(sFile, std::ios::binary) << sFirst;
  CDocument loaded;
  CDocImporter importer(nullptr);
  ASSERT_EQ(importer.LoadDocResult(loaded, sFile.c_str()), m_doc.m_vecParagraph.size());
  EXPECT_EQ(CStructureWriter(loaded).Xml(), sFirst);
  EXPECT_EQ(loaded.FormulaIndexes(), m_doc.FormulaIndexes());
  EXPECT_EQ(importer.LoadDocResult(loaded, (m_dir.Path() + "/none.xml").c_str()), 0u);
}

}  // namespace

namespace {

TEST_F(DocxParserTest, DocAndWpsAreReadFromTheirDocxTwin) {
  ASSERT_TRUE(WriteDocx(m_dir.Path() + "/twin.docx", Para(TextRun("孪生"))));
  CDocImporter importer(nullptr);
  for (const char* szName : {"twin.doc", "twin.WPS", "twin.docm", "twin.docx"}) {
    CDocument doc;
    EXPECT_NE(importer.ImportDocx(doc, (m_dir.Path() + "/" + szName).c_str(), "", 0, 0), "") << szName;
    EXPECT_EQ(doc.m_vecParagraph.size(), 1u) << szName;
  }
  CDocument doc;
  EXPECT_EQ(importer.ImportDocx(doc, (m_dir.Path() + "/alone.doc").c_str(), "", 0, 0), "");
  EXPECT_NE(std::string(GetLastError()).find("Error unzip"), std::string::npos);
  EXPECT_EQ(importer.ImportFile(doc, (m_dir.Path() + "/alone.doc").c_str(), "", 0, 0), -1);
}

}  // namespace
