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

namespace {

// What a reader sees of the marks of a run besides its texts.
TEST_F(DocxParserTest, RunMarksBecomeWhatAReaderSees) {
  const struct {
    const char* szName;
    std::string sRuns;
    const char* szText;
  } kCases[] = {
      {"no-break hyphen", TextRun("图 2") + "<w:r><w:noBreakHyphen/></w:r>" + TextRun("1 结构"), "图 2-1 结构"},
      {"soft hyphen shows nothing", TextRun("数据") + "<w:r><w:softHyphen/></w:r>" + TextRun("库"), "数据库"},
      {"symbol font glyph", TextRun("项目") + "<w:r><w:sym w:font=\"Symbol\" w:char=\"F0B7\"/></w:r>", "项目•"},
      {"other symbol kept", TextRun("勾") + "<w:r><w:sym w:font=\"Wingdings\" w:char=\"F0FC\"/></w:r>", "勾\xEF\x83\xBC"},
      {"line break", TextRun("一行") + "<w:r><w:br/></w:r>" + TextRun("二行"), "一行\n二行"},
      {"page break shows no line", TextRun("一页") + "<w:r><w:br w:type=\"page\"/></w:r>" + TextRun("二页"), "一页二页"},
      {"field code hidden, result shown",
       TextRun("图 ") + "<w:r><w:fldChar w:fldCharType=\"begin\"/></w:r><w:r><w:instrText> SEQ 图 \\* ARABIC </w:instrText></w:r>"
           "<w:r><w:fldChar w:fldCharType=\"separate\"/></w:r>" + TextRun("3") + "<w:r><w:fldChar w:fldCharType=\"end\"/></w:r>",
       "图 3"},
  };
  for (const auto& c : kCases) {
    Read(Para(c.sRuns));
    ASSERT_EQ(m_doc.m_vecParagraph.size(), 1u) << c.szName;
    EXPECT_EQ(m_doc.m_vecParagraph[0].text, c.szText) << c.szName;
  }
}

TEST_F(DocxParserTest, FontNamesComeFromRunFontsNotLanguages) {
  Read(Para(TextRun("Text", "<w:rFonts w:ascii=\"Arial\"/><w:lang w:val=\"en-US\" w:eastAsia=\"zh-CN\"/>")));
  ASSERT_EQ(m_doc.m_vecParagraph.size(), 1u);
  EXPECT_EQ(m_doc.m_vecParagraph[0].font, "Arial");
}

std::string Field(const std::string& sInstruction, const std::string& sResult) {
  return "<w:r><w:fldChar w:fldCharType=\"begin\"/></w:r><w:r><w:instrText>" + sInstruction +
         "</w:instrText></w:r><w:r><w:fldChar w:fldCharType=\"separate\"/></w:r>" + TextRun(sResult) +
         "<w:r><w:fldChar w:fldCharType=\"end\"/></w:r>";
}

// The contents are the entries of the contents field: not the lists of
// figures, not a cross reference to a page in the body.
TEST_F(DocxParserTest, TheContentsAreTheEntriesOfTheContentsField) {
  const std::string sBegin = "<w:r><w:fldChar w:fldCharType=\"begin\"/></w:r><w:r><w:instrText> TOC \\o \"1-3\" \\h </w:instrText></w:r>"
                             "<w:r><w:fldChar w:fldCharType=\"separate\"/></w:r>";
  const std::string sFigureList = "<w:r><w:fldChar w:fldCharType=\"begin\"/></w:r><w:r><w:instrText> TOC \\h \\c \"图\" </w:instrText></w:r>"
                                  "<w:r><w:fldChar w:fldCharType=\"separate\"/></w:r>";
  const std::string sEnd = "<w:r><w:fldChar w:fldCharType=\"end\"/></w:r>";
  const std::string sHeading = "<w:outlineLvl w:val=\"0\"/>";
  const std::string sStyles =
      "<w:styles><w:style w:type=\"paragraph\" w:styleId=\"t0\"><w:name w:val=\"TOC Heading\"/></w:style>"
      "<w:style w:type=\"paragraph\" w:styleId=\"t1\"><w:name w:val=\"toc 1\"/></w:style></w:styles>";
  Read(Para(TextRun("本文目次"), "<w:pStyle w:val=\"t0\"/>") +  // the title, by its style
       Para(TextRun("目 录（小四号）") + sBegin) +                  // the title the field starts in
       Para(TextRun("第一章 绪论") + Field(" PAGEREF _Toc1 \\h ", "1"), "<w:pStyle w:val=\"t1\"/>") +
       Para(TextRun("第二章 方法")) +  // an entry without a page number
       Para(sEnd) +
       Para(sFigureList + TextRun("图1 结构") + Field(" PAGEREF _Toc9 \\h ", "2") + sEnd) +
       Para(TextRun("第一章 绪论"), sHeading) +
       Para(TextRun("详见") + Field(" PAGEREF _Ref3 \\h ", "5")) +
       Para(TextRun("第二章 方法"), sHeading),
       {{"word/styles.xml", sStyles}});
  EXPECT_EQ(Summary(), "0:本文目次|0:目 录（小四号）|13:第一章 绪论 . 1|13:第二章 方法|13:图1 结构 . 2|1:第一章 绪论|13:详见 . 5|1:第二章 方法|");
  EXPECT_EQ(m_doc.ContentEntries(), (std::vector<int>{2, 3}));
}

// Captions that a SEQ field numbers or a caption style marks are captions,
// beside the ones "图" near their ends gives.
TEST_F(DocxParserTest, NumberedAndStyledParagraphsCaptionTheirFigures) {
  std::string sStyles =
      "<w:styles><w:style w:type=\"paragraph\" w:styleId=\"a5\"><w:name w:val=\"caption\"/></w:style>"
      "<w:style w:type=\"paragraph\" w:styleId=\"mine\"><w:name w:val=\"My Caption\"/><w:basedOn w:val=\"a5\"/></w:style>"
      "</w:styles>";
  const std::string sImage = Para("<w:r><w:drawing><a:blip r:embed=\"rId7\"/></w:drawing></w:r>");
  Read(sImage + Para(TextRun("Figure ") + Field(" SEQ Figure \\* ARABIC ", "1") + TextRun(": a structure")) +
           sImage + Para(TextRun("Overview of the parts"), "<w:pStyle w:val=\"mine\"/>") +
           sImage + Para(TextRun("An unrelated sentence.")),
       {{"word/styles.xml", sStyles}});
  EXPECT_EQ(Summary(), "-200:|-201:Figure 1: a structure|-200:|-201:Overview of the parts|-200:|0:An unrelated sentence.|");
  EXPECT_TRUE(m_doc.m_vecParagraph[1].kinds & kKindSeqFigure);
  EXPECT_TRUE(m_doc.m_vecParagraph[3].kinds & kKindCaptionStyle) << "the style takes its base's kind";
}

}  // namespace

namespace {

std::string NumPr(int nNumId, int nIlvl = -1) {
  return "<w:numPr>" + (nIlvl >= 0 ? "<w:ilvl w:val=\"" + std::to_string(nIlvl) + "\"/>" : std::string()) +
         "<w:numId w:val=\"" + std::to_string(nNumId) + "\"/></w:numPr>";
}

std::string Level(int nIlvl, const char* szFormat, const char* szText, const char* szStyle = "", bool bLegal = false) {
  return "<w:lvl w:ilvl=\"" + std::to_string(nIlvl) + "\"><w:start w:val=\"1\"/><w:numFmt w:val=\"" + szFormat + "\"/>" +
         (*szStyle ? std::string("<w:pStyle w:val=\"") + szStyle + "\"/>" : "") + (bLegal ? "<w:isLgl/>" : "") +
         "<w:lvlText w:val=\"" + szText + "\"/></w:lvl>";
}

// Headings numbered through their styles (第一章, then legal 1.1 below),
// lists numbered directly (（一）), one list restarted by a second num.
const char kNumbering[] =
    "<w:numbering>"
    "<w:abstractNum w:abstractNumId=\"0\">%HEADINGS%</w:abstractNum>"
    "<w:abstractNum w:abstractNumId=\"1\">%LIST%</w:abstractNum>"
    "<w:num w:numId=\"1\"><w:abstractNumId w:val=\"0\"/></w:num>"
    "<w:num w:numId=\"2\"><w:abstractNumId w:val=\"1\"/></w:num>"
    "<w:num w:numId=\"3\"><w:abstractNumId w:val=\"1\"/><w:lvlOverride w:ilvl=\"0\"><w:startOverride w:val=\"1\"/>"
    "</w:lvlOverride></w:num></w:numbering>";

std::string NumberingXml() {
  std::string s = kNumbering;
  s.replace(s.find("%HEADINGS%"), 10,
            Level(0, "chineseCounting", "第%1章", "H1") + Level(1, "decimal", "%1.%2", "H2", true));
  s.replace(s.find("%LIST%"), 6, Level(0, "chineseCounting", "（%1）"));
  return s;
}

const char kNumberedStyles[] =
    "<w:styles>"
    "<w:style w:type=\"paragraph\" w:styleId=\"H1\"><w:name w:val=\"heading 1\"/><w:pPr><w:numPr><w:numId w:val=\"1\"/>"
    "</w:numPr></w:pPr></w:style>"
    "<w:style w:type=\"paragraph\" w:styleId=\"H2\"><w:name w:val=\"heading 2\"/><w:basedOn w:val=\"H1\"/></w:style>"
    "</w:styles>";

// The label every numbered paragraph shows, read in document order.
TEST_F(DocxParserTest, AutomaticNumbersBecomeLabels) {
  auto fnH = [](const char* szStyle, const char* szText, const std::string& sMore = "") {
    return Para(TextRun(szText), std::string("<w:pStyle w:val=\"") + szStyle + "\"/>" + sMore);
  };
  auto fnCell = [](const std::string& s) { return "<w:tc>" + s + "</w:tc>"; };
  Read(fnH("H1", "摘要", NumPr(0)) +                                      // numbering taken away
           fnH("H1", "绪论") + fnH("H2", "背景") + fnH("H2", "意义") +
           Para(TextRun("第一项"), NumPr(2, 0)) + Para("", NumPr(2, 0)) +   // an empty item shows its number too
           Para(TextRun("第三项"), NumPr(2, 0)) +
           "<w:tbl><w:tr>" + fnCell(Para(TextRun("表中项"), NumPr(2, 0))) + "</w:tr></w:tbl>" +
           Para(TextRun("重新开始"), NumPr(3, 0)) +
           Para("", "<w:pStyle w:val=\"H1\"/><w:sectPr/>") +  // closes a section: shows no number, counts none
           fnH("H1", "方法") + fnH("H2", "数据") + Para(TextRun("没有编号")),
       {{"word/numbering.xml", NumberingXml()}, {"word/styles.xml", kNumberedStyles}});
  std::string sLabels;
  for (const _tParagraph& para : m_doc.m_vecParagraph)
    if (para.level != kLevelTable) sLabels += para.num_label + "|";
  EXPECT_EQ(sLabels, "|第一章|1.1|1.2|（一）|（三）|（一）|第二章|2.1||");
  EXPECT_EQ(m_doc.m_vecTable[0].rows[0][0][0].num_label, "（四）") << "a cell counts where it stands";
  EXPECT_EQ(m_doc.m_vecParagraph[1].NumberedText(), "第一章 绪论");
  EXPECT_NE(CStructureWriter(m_doc).Json(false).find("\"numLabel\": \"1.1\""), std::string::npos);
}

}  // namespace
