// A checking instance built directly on services, without the exported
// calls: the error-word findings, and a whole check on an engine object.
#include <gtest/gtest.h>

#include <algorithm>

#include "DocxFixture.h"
#include "TestDataDir.h"
#include "api/Engine.h"
#include "checker/CheckResult.h"
#include "checker/ReportChecker.h"
#include "docx/Document.h"
#include "keyscan/KeyScanner.h"

namespace {

// The scanner's correction list turns into error-word findings.
TEST(ReportCheckerTest, CorrectionListsBecomeFindings) {
  const _tCheckServices services;  // nothing started: no catalogue, no scanner
  CReportChecker checker(&services);
  _tParagraph para;
  para.id = 0x40;
  para.text = "这是错字，又是错字和别字";
  struct { const char* szScan; int nResult; } kCases[] = {
      {"no list", -1}, {"(Check x", -2}, {"(Check x)a-->b", -3},
      {"(Check x)正字-->错字##真字-->错字##好字-->别字##stop$", 1},
  };
  for (const auto& c : kCases) EXPECT_EQ(checker.AddErrorWords(c.szScan, para), c.nResult) << c.szScan;
  const auto& vecFindings = checker.GetCheckResult().GetFindings();
  ASSERT_EQ(vecFindings.size(), 3u);
  EXPECT_EQ(vecFindings[0].new_str, "正字");
  EXPECT_EQ(vecFindings[0].org_str, "错字");
  EXPECT_EQ(vecFindings[0].offset, 6u);
  EXPECT_EQ(vecFindings[1].offset, 6u) << "the search starts at the previous match itself";
  EXPECT_EQ(vecFindings[2].org_str, "别字");
  EXPECT_EQ(vecFindings[2].offset, std::string("这是错字，又是错字和").size());
  EXPECT_EQ(vecFindings[2].error_id, "1.5.2");
  EXPECT_EQ(vecFindings[2].field_id, 2);
  EXPECT_EQ(vecFindings[2].revise_type, 1);
  EXPECT_EQ(vecFindings[2].error_msg, "Wrong text id 1.5.2") << "no catalogue was given";
}

// An engine object gives its services to an instance of the test's own.
TEST(ReportCheckerTest, ChecksOnAnEngineBuiltDirectly) {
  CTestDataDir data;
  CEngine engine;
  ASSERT_EQ(engine.Start(data.Root().c_str()), 1);
  std::string sDoc = data.Root() + "/report.docx";
  ASSERT_TRUE(WriteDocx(sDoc, Para(TextRun("第一章 绪论"), "<w:outlineLvl w:val=\"0\"/>") + Para(TextRun("正文。"))));
  CReportChecker checker(&engine.Services());
  ASSERT_EQ(checker.ImportFile(sDoc.c_str(), "", 1, 1), 1);
  ASSERT_EQ(checker.Check(1, 1, "", false), 1);
  std::vector<std::string> vecIds;
  for (const _tCheckResult& r : checker.GetCheckResult().GetFindings()) vecIds.push_back(r.error_id);
  EXPECT_NE(std::find(vecIds.begin(), vecIds.end(), "1.6"), vecIds.end()) << "a heading without contents";
  EXPECT_EQ(checker.GetDocument().m_vecParagraph.size(), 2u);
  EXPECT_EQ(checker.GetDocument().m_vecParagraph[1].segment_txt, "正文/nz 。/wj") << "segmented by the engine's analyser";
}

// Correction pairs of a keyword list reach the error-word check through the
// scanner, in body text and table cells alike; a protected word hides the
// wrong form inside it.
TEST(ReportCheckerTest, ErrorWordsOfTheKeywordListBecomeFindings) {
  CTestDataDir data;
  data.Write("ZYG-Configure.json", R"({"FilterCheck": "on", "FormatCheck": "off"})");
  data.Write("errors.txt", "按装-->安装 errorword\n既使-->即使 errorword\n既使用 protect\n");
  CEngine engine;
  ASSERT_EQ(engine.Start(data.Root().c_str()), 1);
  ASSERT_EQ(engine.GetKeyScanner()->ImportUserDict(data.Data("errors.txt").c_str(), false, true, 0), 3);
  std::string sDoc = data.Root() + "/report.docx";
  const std::string sCell = "<w:tbl><w:tr><w:tc>" + Para(TextRun("表中按装")) + "</w:tc></w:tr></w:tbl>";
  ASSERT_TRUE(WriteDocx(sDoc, Para(TextRun("我们按装了") + TextRun("软件，既使下雨")) +
                                  Para(TextRun("既使用了伞")) + sCell));
  CReportChecker checker(&engine.Services());
  ASSERT_EQ(checker.ImportFile(sDoc.c_str(), "", 1, 1), 1);
  ASSERT_EQ(checker.Check(1, 1, "", false), 1);
  std::vector<std::string> vecFound;
  for (const _tCheckResult& r : checker.GetCheckResult().GetFindings())
    if (r.error_id == "1.5.2")
      vecFound.push_back(r.org_str + ">" + r.new_str + "@" + std::to_string(r.offset) + ":" + r.text);
  const std::vector<std::string> vecExpected = {
      "按装>安装@6:我们按装了软件，既使下雨", "既使>即使@24:我们按装了软件，既使下雨", "按装>安装@6:表中按装"};
  EXPECT_EQ(vecFound, vecExpected);
}

// With the spelling check on, a misspelling that no list names is reported as
// "1.5.1" at its offset, one the error-word list names only once, as "1.5.2",
// and a form the document writes twice not at all.
TEST(ReportCheckerTest, SpellingFindingsJoinTheErrorWordsWithoutDoubles) {
  CTestDataDir data;
  data.Write("ZYG-Configure.json", R"({"FilterCheck": "on", "SpellCheck": "on", "FormatCheck": "off"})");
  data.Write("errors.txt", "按装-->安装 errorword\n");
  CEngine engine;
  ASSERT_EQ(engine.Start(data.Root().c_str()), 1);
  ASSERT_NE(engine.Services().pSpellChecker, nullptr);
  ASSERT_EQ(engine.GetKeyScanner()->ImportUserDict(data.Data("errors.txt").c_str(), true, true, 0), 1);
  std::string sDoc = data.Root() + "/report.docx";
  ASSERT_TRUE(WriteDocx(sDoc, Para(TextRun("我们按装了新软件。")) + Para(TextRun("该方案技术可行，经济合里。")) +
                                  Para(TextRun("本工程的运形费用较低。")) + Para(TextRun("运形二字是本文的术语。"))));
  CReportChecker checker(&engine.Services());
  ASSERT_EQ(checker.ImportFile(sDoc.c_str(), "", 1, 1), 1);
  ASSERT_EQ(checker.Check(1, 1, "", false), 1);
  std::vector<std::string> vecFound;
  for (const _tCheckResult& r : checker.GetCheckResult().GetFindings())
    if (r.error_id.compare(0, 4, "1.5.") == 0 && r.error_id != "1.5.5")
      vecFound.push_back(r.error_id + " " + r.org_str + ">" + r.new_str + "@" + std::to_string(r.offset));
  std::sort(vecFound.begin(), vecFound.end());
  EXPECT_EQ(vecFound, (std::vector<std::string>{"1.5.1 合里>合理@30", "1.5.2 按装>安装@6"}));
}

}  // namespace
