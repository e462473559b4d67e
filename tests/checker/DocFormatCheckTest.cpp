// The format check: a document with one deliberate fault of each kind
// against a template learned from a clean sample, the table-of-contents
// test, and the choice of template.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "DocxFixture.h"
#include "TestDataDir.h"
#include "checker/CheckResult.h"
#include "checker/DocFormatCheck.h"
#include "docx/DocFormat.h"
#include "checker/FormatCheckRun.h"
#include "checker/FormatComparison.h"
#include "docx/DocImporter.h"
#include "docx/Document.h"

namespace {

std::string FontRun(const std::string& sText, const char* szFont = "宋体", int nSize = 24) {
  return TextRun(sText, std::string("<w:rFonts w:eastAsia=\"") + szFont + "\"/><w:sz w:val=\"" +
                            std::to_string(nSize) + "\"/>");
}

std::string Heading(int nLevel, const std::string& sText, const char* szFont = "黑体", int nSize = 32,
                    int nSpacing = 360) {
  return Para(FontRun(sText, szFont, nSize), "<w:outlineLvl w:val=\"" + std::to_string(nLevel - 1) +
                                             "\"/><w:spacing w:line=\"" + std::to_string(nSpacing) + "\"/>");
}

std::string Image() {
  return Para("<w:r><w:drawing><a:blip r:embed=\"rId9\"/></w:drawing></w:r>");
}

std::string Table() {
  std::string sCell = "<w:tc>" + Para(FontRun("数")) + "</w:tc>";
  return "<w:tbl><w:tr>" + sCell + sCell + "</w:tr><w:tr>" + sCell + sCell + "</w:tr></w:tbl>";
}

const std::string kLong(130, 'x');  // an unnumbered "heading" of more than 120 bytes

// The sample the template is learned from: chapters 黑体 16 pt at 360,
// sections 黑体 14 pt, captions 宋体 10.5 pt, and 摘要 required.
std::string Sample() {
  return Para(FontRun("KKK摘要GGG")) + Heading(1, "第一章 绪论") + Heading(2, "1.1 背景", "黑体", 28) + Image() +
         Para(FontRun("图1-1 结构", "宋体", 21)) + Heading(1, "第二章 方法") + Para(FontRun("正文。"));
}

struct Finding {
  std::string sErrorId, sOrg;
  bool operator==(const Finding& o) const { return sErrorId == o.sErrorId && sOrg == o.sOrg; }
};

std::ostream& operator<<(std::ostream& os, const Finding& f) { return os << f.sErrorId << ":" << f.sOrg; }

class DocFormatCheckTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(WriteDocx(m_dir.Path() + "/sample.docx", Sample()));
    m_pChecker.reset(new CDocFormatCheck(m_dir.Path().c_str(), nullptr));
    ASSERT_EQ(m_pChecker->ImportTemplate((m_dir.Path() + "/sample.docx").c_str(), 5, "甲大学", "*", "*"), 0);
  }
  std::vector<Finding> Check(const std::string& sBody, int nReportType, int nWant = 1, const char* szOrg = "甲大学") {
    std::string sFile = m_dir.Path() + "/doc.docx";
    EXPECT_TRUE(WriteDocx(sFile, sBody));
    EXPECT_GE(CDocImporter(nullptr).ParseDocx(m_doc, sFile.c_str(), "", 0), 0);
    EXPECT_EQ(m_pChecker->Check(m_doc, m_result, nReportType, _tTemplateKeys::ForOrganization(szOrg)), nWant);
    std::vector<Finding> vecFound;
    for (const _tCheckResult& r : m_result.GetFindings()) vecFound.push_back({r.error_id, r.org_str});
    return vecFound;
  }
  CTempDir m_dir;
  std::unique_ptr<CDocFormatCheck> m_pChecker;
  CDocument m_doc;
  CCheckResult m_result;
};

TEST_F(DocFormatCheckTest, EachFaultYieldsItsFindingAndNoOther) {
  std::string sBody = Heading(1, "第一章 绪论", "楷体") +                     // wrong font
                      Heading(2, "1.1 背景", "黑体", 28) +
                      Heading(2, "1.3 方法", "黑体", 28) +                 // section 1.2 skipped
                      Image() + Para(FontRun("图1-1 结构", "宋体", 21)) +
                      Image() + Para(FontRun("图1-1 重复", "宋体", 21)) +     // repeated figure number
                      Para(FontRun("说明。")) + Image() + Para(FontRun("然后。")) + // figure without caption
                      Para(FontRun("如下所示。")) + Table() +                 // table without caption
                      Heading(1, "第二章 方法", "黑体", 28) +              // wrong size
                      Heading(1, "第三章 结果", "黑体", 32, 480) +         // wrong spacing
                      Heading(1, "四、讨论") +                             // numbering style
                      Heading(2, kLong, "宋体", 24);                       // overlong unnumbered heading
  std::vector<Finding> vecFound = Check(sBody, 5);
  std::vector<Finding> vecWant = {
      {"1.1.1", "楷体"}, {"1.3.1", "1.3"}, {"1.3.8", "图1-1"}, {"99.6", "说"}, {"99.7", "如"},
      {"1.1.2", "14磅"}, {"1.1.3", "24"}, {"1.1.4", "四、"}, {"1.3.9", "2"}, {"12.1", ""},
  };
  for (const Finding& f : vecWant)
    EXPECT_NE(std::find(vecFound.begin(), vecFound.end(), f), vecFound.end()) << "missing " << f;
  EXPECT_EQ(vecFound.size(), vecWant.size()) << ::testing::PrintToString(vecFound);
}

TEST_F(DocFormatCheckTest, TheCleanDocumentHasNoFormatFindings) {
  std::string sBody = Para(FontRun("摘要", "黑体", 32), "<w:outlineLvl w:val=\"0\"/>") + Heading(1, "第一章 绪论") +
                      Heading(2, "1.1 背景", "黑体", 28) + Heading(2, "1.2 方法", "黑体", 28) + Image() +
                      Para(FontRun("图1-1 结构", "宋体", 21)) + Heading(1, "第二章 方法");
  std::vector<Finding> vecFound = Check(sBody, 5);
  EXPECT_TRUE(vecFound.empty()) << ::testing::PrintToString(vecFound);
}

// A document of an organisation without its own template is checked against
// another one, and the result says so.
TEST_F(DocFormatCheckTest, ANoteSaysWhenTheTemplateIsNotTheOrganisations) {
  const std::string sBody = Heading(1, "第一章 绪论") + Heading(2, "1.1 背景", "黑体", 28);
  const struct { const char* szOrg; bool bNote; } kCases[] = {{"甲大学", false}, {"乙大学", true}, {"", true}};
  for (const auto& c : kCases) {
    m_result.Reset();
    std::vector<Finding> vecFound = Check(sBody, 5, 1, c.szOrg);
    auto it = std::find_if(m_result.GetFindings().begin(), m_result.GetFindings().end(),
                           [](const _tCheckResult& r) { return r.error_id == "15.9"; });
    EXPECT_EQ(it != m_result.GetFindings().end(), c.bNote) << c.szOrg;
    if (it != m_result.GetFindings().end()) {
      EXPECT_EQ(it->new_str, kDefaultTemplateNote);
    }
  }
}

TEST_F(DocFormatCheckTest, ReportTypeThreeGetsOrderChecksOnly) {
  std::vector<Finding> vecFound = Check(Heading(1, "第一章 绪论", "楷体") + Heading(1, "第三章 结果", "楷体"), 3, 2);
  ASSERT_EQ(vecFound.size(), 1u) << ::testing::PrintToString(vecFound);
  EXPECT_EQ(vecFound[0], (Finding{"1.3.14", "第三章"}));
}

TEST_F(DocFormatCheckTest, AStaleTableOfContentsIsReported) {
  auto fnEntry = [](const std::string& sText) {
    return Para(FontRun(sText) + "<w:r><w:instrText> PAGEREF _Toc1 \\h </w:instrText></w:r>");
  };
  struct {
    const char* szName;
    std::string sBody;
    bool bStale;
  } const kCases[] = {
      {"matching", fnEntry("第一章 绪论") + fnEntry("第二章 方法") + Heading(1, "第一章 绪论") + Heading(1, "第二章 方法"), false},
      {"one entry short", fnEntry("第一章 绪论") + Heading(1, "第一章 绪论") + Heading(1, "第二章 方法"), true},
      {"renamed heading", fnEntry("第一章 绪论") + fnEntry("第二章 方法") + Heading(1, "第一章 绪论") + Heading(1, "第二章 结果"), true},
  };
  for (const auto& c : kCases) {
    m_result.Reset();
    std::vector<Finding> vecFound = Check(c.sBody, 2);
    bool bStale = std::find(vecFound.begin(), vecFound.end(), Finding{"1.6", ""}) != vecFound.end();
    EXPECT_EQ(bStale, c.bStale) << c.szName;
    CCheckResult scratch;
    EXPECT_EQ(CFormatCheckRun(m_doc, scratch, 2).IsContentUpdated(), !c.bStale) << c.szName;
  }
}

TEST_F(DocFormatCheckTest, AnEmptyStoreLeavesOnlyTheOrderFindings) {
  ASSERT_EQ(m_pChecker->DeleteTemplate(0), 0);
  std::vector<Finding> vecFound = Check(Heading(1, "第一章 绪论", "楷体") + Heading(1, "第三章 结果"), 5, -2);
  ASSERT_EQ(vecFound.size(), 1u) << ::testing::PrintToString(vecFound);
  EXPECT_EQ(vecFound[0].sErrorId, "1.3.14");
}

TEST(CheckFormatOnParagraphTest, ComparesOnlyWhatTheRulesSay) {
  CDocFormat format;
  _tFormat& title = format.m_leve2Format[1];
  title.mapLineSpace2Freq = {{360, 5}, {240, 5}};
  title.mapFont2Freq = {{"黑体", 3}, {"宋体", 4}};
  title.mapFontSize2Freq = {{32, 1}};
  format.m_leve2Format[0].mapFont2Freq = {{"宋体", 1}};
  struct {
    const char* szName;
    int nLevel, nSpacing, nSize;
    const char* szFont;
    std::vector<Finding> vecWant;
    const char* szNew;  // the proposal of the first finding
  } const kCases[] = {
      {"tie goes to the smaller spacing", 1, 480, 32, "黑体", {{"1.1.3", "24"}}, "12"},
      {"heaviest font of the same script", 1, 360, 32, "楷体", {{"1.1.1", "楷体"}}, "宋体"},
      {"no font of a Latin name's script", 1, 360, 32, "Arial", {}, ""},
      {"size named in points without a table", 1, 360, 21, "黑体", {{"1.1.2", "10.5磅"}}, "16磅"},
      {"plain body text is never compared", 0, 480, 21, "Arial", {}, ""},
      {"an unknown level falls back to the body's format", 7, 480, 21, "楷体", {{"1.1.1", "楷体"}}, "宋体"},
  };
  for (const auto& c : kCases) {
    _tParagraph para;
    para.text = "标题";
    para.level = c.nLevel;
    para.line_space = c.nSpacing;
    para.font_size = c.nSize;
    para.font = c.szFont;
    CCheckResult result;
    CFormatComparison(format, nullptr).CheckFormatOnParagraph(para, result);
    std::vector<Finding> vecFound;
    for (const _tCheckResult& r : result.GetFindings()) vecFound.push_back({r.error_id, r.org_str});
    EXPECT_EQ(vecFound, c.vecWant) << c.szName;
    EXPECT_EQ(result.GetFindings().empty() ? "" : result.GetFindings()[0].new_str, c.szNew) << c.szName;
  }
}

TEST(CheckFormatOnParagraphTest, RequiredTextsCountOnlyInComparedParagraphs) {
  CDocFormat format;
  const char kTemplate[] = "<DocTemplate><DocFormat></DocFormat><Required>\r\n<item>摘要</item>\r\n</Required>\r\n";
  std::map<std::string, int> mapType2Level;
  format.Import(kTemplate, kTemplate + sizeof(kTemplate) - 1, mapType2Level);
  _tParagraph body;
  body.text = "摘要：本文研究";
  body.level = 0;
  CCheckResult result;
  CFormatComparison comparison(format, nullptr);
  comparison.CheckFormatOnParagraph(body, result);
  EXPECT_EQ(comparison.CheckRequired(result, 7), 1) << "a body paragraph does not count";
  ASSERT_EQ(result.GetFindings().size(), 1u);
  EXPECT_EQ(result.GetFindings()[0].new_str, "摘要");
  EXPECT_EQ(result.GetFindings()[0].para_id, 7u);
  _tParagraph caption = body;
  caption.level = -503;
  comparison.CheckFormatOnParagraph(caption, result);
  EXPECT_EQ(comparison.CheckRequired(result, 7), 0);
}

}  // namespace
