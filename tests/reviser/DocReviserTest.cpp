#include "reviser/DocReviser.h"

#include <gtest/gtest.h>
#include <minizip/unzip.h>

#include <filesystem>
#include <fstream>

#include "DocxFixture.h"
#include "TestDataDir.h"
#include "checker/ID2Message.h"
#include "utility/ErrorLog.h"
#include "utility/Num2FontSize.h"

namespace {

// A checked document as the reviser meets it: "<dir>/report_unzip/" holding
// the unpacked parts, and a result file listing findings on its paragraphs.
class DocReviserTest : public ::testing::Test {
 protected:
  void SetUp() override {
    m_sizes.Import((std::string(TARVOS_TEST_DATA_DIR) + "/Data/Font/FontSize.dat").c_str());
    m_messages.Load((std::string(TARVOS_TEST_DATA_DIR) + "/Data/Error/ErrorMessage.dat").c_str());
  }

  // Writes the working folder for a body and returns document.xml's text.
  std::string Unpack(const std::string& sBody, const std::string& sName = "report") {
    m_sName = sName;
    const std::string sWork = m_dir.Path() + "/" + sName + "_unzip";
    std::filesystem::create_directories(sWork + "/word");
    m_sDocument = DocumentXml(sBody);
    std::ofstream(sWork + "/word/document.xml", std::ios::binary) << m_sDocument;
    std::ofstream(sWork + "/[Content_Types].xml", std::ios::binary) << "<?xml version=\"1.0\"?><Types/>";
    return m_sDocument;
  }

  // The id of the n-th paragraph: the offset of the "p" of its "<w:p".
  uint32_t ParaId(int n) const {
    size_t i = m_sDocument.find("<w:p>");
    while (n-- > 0) i = m_sDocument.find("<w:p>", i + 1);
    return (uint32_t)i + 3;
  }

  static _tCheckResult Finding(uint32_t nPara, uint32_t nOffset, int nField, int nType, const std::string& sOrg,
                               const std::string& sNew) {
    _tCheckResult r;
    r.para_id = nPara;
    r.offset = nOffset;
    r.error_id = "1.5.2";
    r.field_id = nField;
    r.revise_type = nType;
    r.org_str = sOrg;
    r.new_str = sNew;
    return r;
  }

  // Saves the findings as a check would and revises; the revised DOCX's
  // document.xml, or "" when the reviser failed.
  std::string Revise(std::vector<_tCheckResult> vecFindings, bool bTrack = false) {
    CCheckResult result(&m_messages);
    for (_tCheckResult& r : vecFindings) result.AddResult(r);
    const std::string sWork = m_dir.Path() + "/" + m_sName + "_unzip";
    const char* sXml = result.GetResult(sWork.c_str(), m_sName.c_str(), 1, "", nullptr);
    const std::string sFile = m_dir.Path() + "/" + m_sName + "_Check.xml";
    std::ofstream(sFile, std::ios::binary) << sXml;
    CDocReviser reviser(&m_sizes, &m_messages);
    reviser.SetTracking(bTrack, "审阅人");
    const char* sRevised = reviser.Revise(sFile.c_str());
    if (sRevised == nullptr) return "";
    m_sRevised = sRevised;
    return ReadPart(sRevised, "word/document.xml");
  }

  static std::string ReadPart(const std::string& sZip, const char* sPart) {
    unzFile zip = unzOpen64(sZip.c_str());
    std::string sText;
    if (zip && unzLocateFile(zip, sPart, 0) == UNZ_OK && unzOpenCurrentFile(zip) == UNZ_OK) {
      char buffer[4096];
      for (int n; (n = unzReadCurrentFile(zip, buffer, sizeof(buffer))) > 0;) sText.append(buffer, n);
      unzCloseCurrentFile(zip);
    }
    if (zip) unzClose(zip);
    return sText;
  }

  CTempDir m_dir;
  CNum2FontSize m_sizes;
  CID2Message m_messages;
  std::string m_sName, m_sDocument, m_sRevised;
};

// Each field edit on a paragraph of its own, all in one revision.
TEST_F(DocReviserTest, EachFieldIsEditedInItsParagraph) {
  const struct {
    std::string sPara;
    int nField, nType;
    const char *szOrg, *szNew;
    std::string sExpected;  // a text the revised paragraph holds
  } cases[] = {
      {Para(TextRun("我们按装了软件")), 2, 1, "按装", "安装", "我们安装了软件"},
      {Para(TextRun("资金为500，余款")), 2, 0, "500", "500元", "资金为500元，余款"},
      {Para(TextRun("多余的的字")), 2, 2, "的的", "", "多余字"},
      {Para(TextRun("A&amp;B公司")), 2, 1, "&B", "&C", "A&amp;C公司"},
      {Para(TextRun("正文", "<w:rFonts w:ascii=\"宋体\" w:hAnsi=\"宋体\"/>")), 0, 1, "宋体", "黑体",
       "<w:rFonts w:eastAsia=\"黑体\" w:ascii=\"黑体\" w:hAnsi=\"黑体\"/>"},
      {Para(TextRun("正文", "<w:sz w:val=\"24\"/><w:kern w:val=\"24\"/>")), 1, 1, "小四", "四号",
       "<w:sz w:val=\"28\"/><w:kern w:val=\"24\"/>"},
      {Para(TextRun("标题"), "<w:pStyle w:val=\"2\"/>"), 3, 1, "2", "1", "<w:pStyle w:val=\"1\"/>"},
      {Para(TextRun("正文"), "<w:spacing w:line=\"400\"/>"), 4, 1, "20", "24", "w:line=\"480\""},
  };
  std::string sBody;
  for (const auto& c : cases) sBody += c.sPara;
  Unpack(sBody);
  std::vector<_tCheckResult> vecFindings;
  for (size_t i = 0; i < std::size(cases); i++)
    vecFindings.push_back(Finding(ParaId((int)i), 0, cases[i].nField, cases[i].nType, cases[i].szOrg, cases[i].szNew));
  const std::string sRevised = Revise(vecFindings);
  ASSERT_FALSE(sRevised.empty()) << GetLastError();
  for (const auto& c : cases) EXPECT_NE(sRevised.find(c.sExpected), std::string::npos) << c.sExpected;
  EXPECT_EQ(sRevised.find("按装"), std::string::npos);
}

TEST_F(DocReviserTest, TwoFindingsInOneParagraphAndADeletionAcrossThreeRuns) {
  Unpack(Para(TextRun("甲乙") + TextRun("丙丁") + TextRun("戊己")) + Para(TextRun("既使按装也不行")));
  const std::string sRevised = Revise({Finding(ParaId(0), 3, 2, 2, "乙丙丁戊", ""),
                                       Finding(ParaId(1), 0, 2, 1, "既使", "即使"),
                                       Finding(ParaId(1), 6, 2, 1, "按装", "安装")});
  ASSERT_FALSE(sRevised.empty()) << GetLastError();
  EXPECT_NE(sRevised.find(Para(TextRun("甲") + TextRun("") + TextRun("己"))), std::string::npos) << sRevised;
  EXPECT_NE(sRevised.find("即使安装也不行"), std::string::npos);
}

// A finding that cannot be applied is skipped with its reason; the others
// are applied all the same.
TEST_F(DocReviserTest, FindingsThatCannotBeAppliedAreSkipped) {
  Unpack(Para(TextRun("我们按装了软件")) + Para(TextRun("第二段")));
  const std::string sRevised = Revise({Finding(ParaId(0), 0, 2, 1, "按装", "安装"),
                                       Finding(ParaId(1), 0, 2, 1, "不存在", "x"),
                                       Finding(ParaId(1) + 2, 0, 2, 1, "第二", "第三"),
                                       Finding(0x7FFFFFF0, 0, 2, 1, "第二", "第三"),
                                       Finding(ParaId(1), 0, 1, 1, "小四", "四号")});
  ASSERT_FALSE(sRevised.empty()) << GetLastError();
  EXPECT_NE(sRevised.find("我们安装了软件"), std::string::npos);
  EXPECT_NE(sRevised.find("第二段"), std::string::npos);
}

TEST_F(DocReviserTest, WholeDocumentFindingsAreListedAtTheEnd) {
  Unpack(Para(TextRun("正文")));
  _tCheckResult whole = Finding(0xFFFFFFFF, 0, 5, 4, "目录", "请更新目录");
  whole.error_id = "1.6";
  const std::string sRevised = Revise({whole});
  const size_t nTitle = sRevised.find("文档审查意见"), nLine = sRevised.find("1.目录与正文标题不一致");
  ASSERT_NE(nTitle, std::string::npos) << sRevised;
  ASSERT_NE(nLine, std::string::npos) << sRevised;
  EXPECT_LT(sRevised.find("正文"), nTitle);
  EXPECT_LT(nLine, sRevised.find("<w:sectPr/>"));
  EXPECT_NE(sRevised.find("w:rsidR=\"005527A2\""), std::string::npos);
  EXPECT_NE(sRevised.find("<w:color w:val=\"FF0000\"/>"), std::string::npos);
}

// A revised document revised again gets one time stamp, not two.
TEST_F(DocReviserTest, RevisingARevisedDocumentDoesNotPileUpSuffixes) {
  Unpack(Para(TextRun("我们按装了软件")), "report_Revised_20260101120000");
  ASSERT_FALSE(Revise({Finding(ParaId(0), 0, 2, 1, "按装", "安装")}).empty()) << GetLastError();
  const std::string sName = std::filesystem::path(m_sRevised).filename().string();
  EXPECT_EQ(sName.rfind("report_Revised_", 0), 0u) << sName;
  EXPECT_EQ(sName.find("_Revised"), sName.rfind("_Revised")) << sName;
  EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(m_sRevised)));
}

// Links in the working folder are not packed: nothing outside it gets in.
TEST_F(DocReviserTest, LinksInTheWorkingFolderAreLeftOut) {
  Unpack(Para(TextRun("正文")));
  std::ofstream(m_dir.Path() + "/secret.txt") << "secret";
  std::filesystem::create_symlink(m_dir.Path() + "/secret.txt", m_dir.Path() + "/report_unzip/word/link.xml");
  ASSERT_FALSE(Revise({}).empty()) << GetLastError();
  EXPECT_EQ(ReadPart(m_sRevised, "word/link.xml"), "");
  EXPECT_NE(ReadPart(m_sRevised, "[Content_Types].xml"), "");
}

// Tracked, the same edits become w:del / w:ins runs and property changes
// that keep the old values, each finding a comment on its paragraph.
TEST_F(DocReviserTest, TrackedChangesKeepTheOldTextAndPropertiesWithComments) {
  Unpack(Para(TextRun("甲乙") + TextRun("丙丁", "<w:b/>")) + Para(TextRun("正文", "<w:rFonts w:ascii=\"宋体\"/>")) +
         "<w:bookmarkStart w:id=\"7\" w:name=\"x\"/>");
  _tCheckResult text = Finding(ParaId(0), 3, 2, 1, "乙丙", "乙丙丙"), font = Finding(ParaId(1), 0, 0, 1, "宋体", "黑体");
  const std::string sRevised = Revise({text, font}, true);
  ASSERT_FALSE(sRevised.empty()) << GetLastError();
  const char* kExpected[] = {
      "<w:t xml:space=\"preserve\">甲</w:t></w:r><w:ins w:id=\"",
      "<w:delText xml:space=\"preserve\">乙</w:delText>",
      "<w:rPr><w:b/></w:rPr><w:delText xml:space=\"preserve\">丙</w:delText>",
      "<w:t xml:space=\"preserve\">乙丙丙</w:t></w:r></w:ins>",
      "<w:rFonts w:eastAsia=\"黑体\" w:ascii=\"黑体\"/><w:rPrChange w:id=\"",
      "w:author=\"审阅人\"",
      "><w:rPr><w:rFonts w:ascii=\"宋体\"/></w:rPr></w:rPrChange>",
      "<w:commentRangeStart w:id=\"",
      "<w:r><w:commentReference w:id=\"",
  };
  for (const char* sz : kExpected) EXPECT_NE(sRevised.find(sz), std::string::npos) << sz << "\n" << sRevised;
  EXPECT_EQ(sRevised.find("w:id=\"1\""), std::string::npos) << "ids start above the document's own";
  const std::string sComments = ReadPart(m_sRevised, "word/comments.xml");
  EXPECT_NE(sComments.find("w:author=\"审阅人\""), std::string::npos) << sComments;
  EXPECT_NE(sComments.find("乙丙→乙丙丙"), std::string::npos) << sComments;
  EXPECT_NE(ReadPart(m_sRevised, "word/_rels/document.xml.rels").find("relationships/comments\""), std::string::npos);
  EXPECT_EQ(ReadPart(m_sRevised, "[Content_Types].xml"),
            "<?xml version=\"1.0\"?><Types><Override PartName=\"/word/comments.xml\" ContentType=\"application/"
            "vnd.openxmlformats-officedocument.wordprocessingml.comments+xml\"/></Types>");
}

TEST_F(DocReviserTest, AMissingResultOrDocumentFailsWithItsName) {
  CDocReviser reviser;
  EXPECT_EQ(reviser.Revise((m_dir.Path() + "/none.xml").c_str()), nullptr);
  EXPECT_NE(GetLastError().find("none.xml"), std::string::npos);
  EXPECT_EQ(reviser.Revise(nullptr), nullptr);
}

}  // namespace
