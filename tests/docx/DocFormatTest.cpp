// Format templates: learning from a sample, the template text's exact
// layout, reading it back, and the corpus round trip.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "DocxFixture.h"
#include "TestDataDir.h"
#include "checker/CheckResult.h"
#include "docx/DocFormat.h"
#include "checker/FormatComparison.h"
#include "docx/DocImporter.h"
#include "docx/Document.h"

namespace fs = std::filesystem;

namespace {

class DocFormatTest : public ::testing::Test {
 protected:
  void SetUp() override { SectionTypeMaps(m_mapLevelId2Type, m_mapType2LevelId); }
  std::map<int, std::string> m_mapLevelId2Type;
  std::map<std::string, int> m_mapType2LevelId;
  CTempDir m_dir;
};

TEST_F(DocFormatTest, LearnsFontsSizesSpacingNumberingAndRequiredTexts) {
  auto fnRun = [](const std::string& s, const char* szFont, int nSize) {
    return TextRun(s, std::string("<w:rFonts w:eastAsia=\"") + szFont + "\"/><w:sz w:val=\"" + std::to_string(nSize) + "\"/>");
  };
  std::string sHeading = "<w:outlineLvl w:val=\"0\"/>";
  std::string sBody = "<w:spacing w:line=\"360\"/>";
  std::string sFile = m_dir.Path() + "/sample.docx";
  ASSERT_TRUE(WriteDocx(sFile, Para(fnRun("第一章 绪论", "黑体", 32), sHeading) + Para(fnRun("第二章 方法", "黑体", 32), sHeading) +
                                   Para(fnRun("正文一KKK摘要GGG又KKK关键词GGG", "宋体", 24), sBody) +
                                   Para(fnRun("正文二", "宋体", 24), sBody) + Para(fnRun("正文三", "楷体", 21), sBody)));
  CDocFormat format;
  std::string sText;
  ASSERT_EQ(format.GenerateDocFormat(2, "某大学", "*", "本科", sFile.c_str(), m_mapLevelId2Type, sText), 1);
  const _tFormat& title = format.m_leve2Format.at(1);
  EXPECT_EQ(title.mapFont2Freq.at("黑体"), 2);
  EXPECT_EQ(title.section_format.num_format, kStyleChinese);
  EXPECT_EQ(title.section_format.prefix, "第");
  EXPECT_EQ(title.section_format.post, "章");
  EXPECT_EQ(title.section_format.section_type, 1);
  EXPECT_EQ(title.section_format.sample, "第一章 绪论");
  const _tFormat& text = format.m_leve2Format.at(0);
  EXPECT_EQ(text.mapFontSize2Freq.at(24), 2);
  EXPECT_EQ(text.mapFontSize2Freq.at(21), 1);
  EXPECT_EQ(text.mapLineSpace2Freq.at(360), 3);
  EXPECT_EQ(text.section_format.num_format, -1) << "body text learns no numbering";
  EXPECT_EQ(format.m_vecRequired, std::vector<std::string>{"摘要"}) << "one marked text per paragraph";
  EXPECT_NE(sText.find("<format>\r\n<type>TEXT</type>\r\n<font>宋体:2;楷体:1;</font>\r\n<fontSize>21:1;24:2;</fontSize>\r\n"
                       "<line_space>360:3;</line_space></format>\n"),
            std::string::npos) << sText;
  EXPECT_NE(sText.find("</DocFormat><Required>\r\n<item>摘要</item>\r\n</Required>\r\n\r\n<DocType>2</DocType>\r\n"
                       "<Organization>某大学</Organization>\r\n<Area>*</Area>\r\n<Argument>本科</Argument>\r\n</DocTemplate>\r\n"),
            std::string::npos);
  EXPECT_EQ(format.GenerateDocFormat(2, "", "", "", (m_dir.Path() + "/none.docx").c_str(), m_mapLevelId2Type, sText), -1);
}

TEST_F(DocFormatTest, SectionBlockLayoutAndReading) {
  _tSection_Format section;
  section.prefix = "（";
  section.num_format = kStyleChinese;
  section.post = "）";
  section.level = 1;
  section.section_type = 2;
  section.sample = "（一）总则";
  std::string s;
  section.Write(s);
  EXPECT_EQ(s, "\r\n<section_format>\r\n\t<prefix>（</prefix>\r\n\t<section_sep></section_sep>\r\n\t<num_format>2</num_format>"
               "\r\n\t<post>）</post>\r\n\t<level>1</level>\r\n\t<section_type>2</section_type>\r\n\t<sample>（一）总则</sample>"
               "\r\n</section_format>\r\n");
  _tSection_Format back;
  back.chapter_format = 7;
  ASSERT_NE(back.Read(s.data(), s.data() + s.size()), nullptr);
  EXPECT_TRUE(back.IsSameFormat(section));
  EXPECT_EQ(back.chapter_format, -1) << "absent chapter style reads as none";
  EXPECT_EQ(back.sample, section.sample);

  _tSection_Format late;
  late.level = 5;
  const std::string sLate = "<section_format>\r\n</section_format>\r\n<level>9</level>", sNone = "no block";
  late.Read(sLate.data(), sLate.data() + sLate.size());
  EXPECT_EQ(late.level, 0) << "a field after the block is not the block's";
  EXPECT_EQ(late.Read(sNone.data(), sNone.data() + sNone.size()), nullptr);
}

TEST_F(DocFormatTest, ReadingLevelsFontsAndRequiredTexts) {
  const std::string sText =
      "<DocTemplate><DocFormat><format>\r\n<type>7</type>\r\n<font>Times:New:3;宋体:2;bad;</font></format>\n"
      "<format>\r\n<type>TITLE2</type>\r\n<fontSize>28:4;</fontSize></format>\n<format>\r\n<font>x:1;</font></format>\n"
      "</DocFormat><Required>\r\n<item> 摘  要 </item>\r\n<item>   </item>\r\n<item>参考文献</item>\r\n</Required>\r\n";
  CDocFormat format;
  ASSERT_EQ(format.Import(sText.data(), sText.data() + sText.size(), m_mapType2LevelId), 1);
  ASSERT_EQ(format.m_leve2Format.count(7), 1u);
  EXPECT_EQ(format.m_leve2Format.at(7).mapFont2Freq.at("Times"), 0) << "the first colon ends the font name";
  EXPECT_EQ(format.m_leve2Format.at(7).mapFont2Freq.size(), 2u);
  EXPECT_EQ(format.m_leve2Format.at(2).mapFontSize2Freq.at(28), 4);
  EXPECT_EQ(format.m_leve2Format.at(0).mapFont2Freq.at("x"), 1) << "no type reads as level 0";
  EXPECT_EQ(format.m_vecRequired, (std::vector<std::string>{"摘 要", "参考文献"}));
  ASSERT_TRUE(format.m_pDict);
  EXPECT_EQ(format.m_pDict->GetId("参考文献"), 1);
  EXPECT_EQ(format.FindRequired("摘 要和参考文献"), (std::vector<int>{0, 1}));
}

// Every real document's learned template reads back and writes the same text.
TEST_F(DocFormatTest, CorpusTemplatesRoundTrip) {
  std::error_code ec;
  size_t nDocuments = 0;
  for (const auto& entry : fs::recursive_directory_iterator(TARVOS_CORPUS_DIR, ec)) {
    if (entry.path().extension() != ".docx") continue;
    std::string sCopy = m_dir.Path() + "/" + entry.path().filename().string();
    fs::copy_file(entry.path(), sCopy, fs::copy_options::overwrite_existing);
    CDocFormat learnt;
    std::string sText;
    ASSERT_EQ(learnt.GenerateDocFormat(1, "org", "area", "arg", sCopy.c_str(), m_mapLevelId2Type, sText), 1) << sCopy;
    std::string sFormats;
    learnt.Export(sFormats, m_mapLevelId2Type);
    CDocFormat read;
    read.Import(sText.data(), sText.data() + sText.size(), m_mapType2LevelId);
    std::string sAgain;
    read.Export(sAgain, m_mapLevelId2Type);
    EXPECT_EQ(sAgain, sFormats) << sCopy;
    ++nDocuments;
  }
  if (nDocuments == 0) GTEST_SKIP() << "no corpus at " << TARVOS_CORPUS_DIR;
}

// A document checked against the template learned from itself has no wrong
// font, size or spacing in its body paragraphs.
TEST_F(DocFormatTest, CorpusDocumentsFitTheirOwnTemplate) {
  std::error_code ec;
  size_t nDocuments = 0, nCompared = 0;
  for (const auto& entry : fs::recursive_directory_iterator(TARVOS_CORPUS_DIR, ec)) {
    if (entry.path().extension() != ".docx") continue;
    std::string sCopy = m_dir.Path() + "/" + entry.path().filename().string();
    fs::copy_file(entry.path(), sCopy, fs::copy_options::overwrite_existing);
    std::string sText;
    CDocFormat learnt;
    ASSERT_EQ(learnt.GenerateDocFormat(2, "*", "*", "*", sCopy.c_str(), m_mapLevelId2Type, sText), 1) << sCopy;
    CDocFormat format;
    format.Import(sText.data(), sText.data() + sText.size(), m_mapType2LevelId);
    CDocument doc;
    ASSERT_GE(CDocImporter(nullptr).ParseDocx(doc, sCopy.c_str(), nullptr, 2), 0) << sCopy;
    CCheckResult result;
    CFormatComparison comparison(format, nullptr);
    for (const _tParagraph& para : doc.m_vecParagraph) comparison.CheckFormatOnParagraph(para, result);
    for (const _tCheckResult& finding : result.GetFindings())
      EXPECT_TRUE(finding.error_id != "1.1.1" && finding.error_id != "1.1.2" && finding.error_id != "1.1.3")
          << sCopy << ": " << finding.error_id << " " << finding.org_str << " -> " << finding.new_str << " in "
          << finding.text.substr(0, 60);
    nCompared += doc.m_vecParagraph.size();
    ++nDocuments;
  }
  if (nDocuments == 0) GTEST_SKIP() << "no corpus at " << TARVOS_CORPUS_DIR;
  printf("%zu documents, %zu paragraphs checked against their own templates\n", nDocuments, nCompared);
}

}  // namespace
