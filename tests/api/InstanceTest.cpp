// Checking instances: handle numbering, invalid handles, per-instance calls
// whose services are still missing, and the lifetime of returned texts.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <atomic>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "DocxFixture.h"
#include "TestDataDir.h"
#include "api/Globals.h"
#include "checker/ReportChecker.h"
#include "tarvos.h"

namespace {

class InstanceTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(TARVOS_Init(m_data.Root().c_str()), 1) << TARVOS_GetLastErrorMsg(); }
  void TearDown() override { TARVOS_Exit(); }
  CTestDataDir m_data;
};

TEST_F(InstanceTest, HandlesGrowAndAreNeverReused) {
  EXPECT_EQ(TARVOS_NewInstance(), 1);
  EXPECT_EQ(TARVOS_DeleteInstance(1), 1);
  EXPECT_EQ(TARVOS_NewInstance(), 2);
  EXPECT_EQ(TARVOS_DeleteInstance(1), 1);  // an empty slot deletes again
  EXPECT_EQ(TARVOS_GetResult(1, 1), nullptr);
  EXPECT_STREQ(TARVOS_GetLastErrorMsg(), "TARVOS not init!");
  EXPECT_NE(TARVOS_GetResult(1, 2), nullptr);
}

TEST_F(InstanceTest, DeletedHandleRefusesACheck) {
  int handle = TARVOS_NewInstance();
  ASSERT_EQ(TARVOS_DeleteInstance(handle), 1);
  EXPECT_EQ(TARVOS_CheckReportF("report.docx", "", "", 1, 0, false, handle), nullptr);
  EXPECT_STREQ(TARVOS_GetLastErrorMsg(), "TARVOS not init!");
}

TEST_F(InstanceTest, InvalidHandlesGiveTheHandleMessageInTheLog) {
  CTempDir logDir;
  setenv("TARVOS_LOG_DIR", logDir.Path().c_str(), 1);
  EXPECT_EQ(TARVOS_DeleteInstance(-1), 0);
  EXPECT_STREQ(TARVOS_GetLastErrorMsg(), "DC_DeleteInstance  argument(handle -1) is invalid!");
  EXPECT_EQ(TARVOS_DeleteInstance(99), 0);
  EXPECT_EQ(TARVOS_GetCurTemplateInfo(7), nullptr);
  EXPECT_STREQ(TARVOS_GetLastErrorMsg(), "TARVOS not init!");
  unsetenv("TARVOS_LOG_DIR");
  std::string sLog = ReadTodaysLog(logDir.Path());
  EXPECT_NE(sLog.find("\tDC_DeleteInstance  argument(handle -1) is invalid!\n"), std::string::npos) << sLog;
  EXPECT_NE(sLog.find("\tGetReportCheckerWorker  argument(handle 7) is invalid!\n"), std::string::npos);
  EXPECT_NE(sLog.find("\tTARVOS not init!\n"), std::string::npos);
}

TEST_F(InstanceTest, CheckOfAMissingFileNamesTheFileAsPassed) {
  const char* sName = "./no/such/报告.docx";
  EXPECT_EQ(TARVOS_CheckReportF(sName, "", "", 1, 0, false, 0), nullptr);
  EXPECT_EQ(std::string(TARVOS_GetLastErrorMsg()), std::string("Cannot open file ") + sName);
}

TEST_F(InstanceTest, EachCallKeepsItsLatestTextAndInstancesDoNotGrow) {
  int other = TARVOS_NewInstance();
  const char* sFirst = TARVOS_GetResult(1, 0);
  const char* sSecond = TARVOS_GetResult(6, 0);
  ASSERT_NE(sFirst, nullptr);
  ASSERT_NE(sSecond, nullptr);
  EXPECT_NE(sFirst, sSecond);
  const char* sChecked = TARVOS_CheckReportM("第一行", nullptr, "", 1, 1, false, 0);
  ASSERT_NE(sChecked, nullptr);
  for (int i = 0; i < 100; ++i) TARVOS_GetResult(7, other);
  EXPECT_STREQ(sFirst, "") << "still readable after calls of other kinds and handles (ASan watches)";
  EXPECT_EQ(sChecked[0], '{');
  EXPECT_EQ(TARVOS_GetResult(5, 0), nullptr);
  EXPECT_EQ(TARVOS_GetResult(-1, 0), nullptr);
  // A host that checks many texts on one instance keeps one text per call.
  const CReportChecker* pChecker = g_pEngine->GetReportCheckerWorker(0);
  for (int i = 0; i < 3; ++i) TARVOS_CheckReportM("第一行", nullptr, "", 1, 1, false, 0);
  const size_t nBytes = pChecker->GetBufferManager().GetSize();
  for (int i = 0; i < 300; ++i) {
    TARVOS_CheckReportM("第一行", nullptr, "", 1, 1, false, 0);
    TARVOS_GetResult(0, 0);
  }
  EXPECT_EQ(pChecker->GetBufferManager().GetSize(), nBytes);
  EXPECT_LE(pChecker->GetBufferManager().GetCount(), 4u);
}

TEST_F(InstanceTest, LastErrorIsAThreadCopy) {
  TARVOS_GetResult(1, 42);
  const char* sMine = TARVOS_GetLastErrorMsg();
  std::thread([] { TARVOS_DeleteInstance(-5); (void)TARVOS_GetLastErrorMsg(); }).join();
  EXPECT_STREQ(sMine, "TARVOS not init!");  // this thread's copy is untouched
  EXPECT_STREQ(TARVOS_GetLastErrorMsg(), "DC_DeleteInstance  argument(handle -5) is invalid!");
}

TEST_F(InstanceTest, TemplateCallsNeedTheFormatChecker) {
  TARVOS_Exit();
  CTestDataDir data;
  data.Write("ZYG-Configure.json", R"({"FormatCheck": "off"})");
  ASSERT_EQ(TARVOS_Init(data.Root().c_str()), 1);
  EXPECT_EQ(TARVOS_GetTemplateCount(), 0);
  EXPECT_STREQ(TARVOS_GetLastErrorMsg(), "g_pDocFormatChecker not init!");
  EXPECT_EQ(TARVOS_GetTemplateList(1, "org"), nullptr);
  EXPECT_STREQ(TARVOS_GetLastErrorMsg(), "g_pDocFormatChecker not init!");
}

// Services not built yet answer with their failure status and name themselves.
TEST_F(InstanceTest, MissingServicesNameThemselves) {
  struct {
    const char* szName;
    bool (*fnFails)();
    const char* szService;
  } kCases[] = {
      {"CheckReportDir", [] { return TARVOS_CheckReportDir("/tmp", "", 1, 0, 2) == -1; }, "TARVOS_CheckReportDir"},
  };
  for (const auto& c : kCases) {
    EXPECT_TRUE(c.fnFails()) << c.szName;
    EXPECT_NE(std::string(TARVOS_GetLastErrorMsg()).find(c.szService), std::string::npos)
        << c.szName << ": " << TARVOS_GetLastErrorMsg();
  }
}

TEST_F(InstanceTest, ReviseNamesTheResultItCannotRead) {
  EXPECT_EQ(TARVOS_ReviseReportF("no-such-result.xml", 0), nullptr);
  EXPECT_NE(std::string(TARVOS_GetLastErrorMsg()).find("Failed read file no-such-result.xml"), std::string::npos)
      << TARVOS_GetLastErrorMsg();
}

TEST_F(InstanceTest, ImportDocWritesTheStructureFileBesideTheDocument) {
  std::string sDoc = m_data.Root() + "/报告.docx";
  ASSERT_TRUE(WriteDocx(sDoc, Para(TextRun("第一章 绪论"), "<w:outlineLvl w:val=\"0\"/>") + Para(TextRun("正文。"))));
  const char* sPath = TARVOS_ImportDoc(sDoc.c_str(), "http://host/", 0);
  ASSERT_NE(sPath, nullptr) << TARVOS_GetLastErrorMsg();
  EXPECT_EQ(std::string(sPath), m_data.Root() + "/报告_unzip/../报告.xml");
  std::string sXml = ReadWholeFile(sPath);
  EXPECT_NE(sXml.find("<ParaCount>2</ParaCount>"), std::string::npos);
  EXPECT_NE(sXml.find("<url_prefix>http://host/</url_prefix>"), std::string::npos);
  EXPECT_NE(sXml.find("<segment_text>正文/nz 。/wj</segment_text>"), std::string::npos) << "segmented by the analyser";
  EXPECT_EQ(TARVOS_LoadDocResult(sPath, TARVOS_NewInstance()), 2) << "the structure file loads back";
  EXPECT_EQ(TARVOS_LoadDocResult((m_data.Root() + "/none.xml").c_str(), 0), 0);
  EXPECT_EQ(TARVOS_ImportDoc((m_data.Root() + "/none.docx").c_str(), "", 0), nullptr);
  EXPECT_EQ(TARVOS_ImportDoc((m_data.Root() + "/notes.md").c_str(), "", 0), nullptr);
  EXPECT_STREQ(TARVOS_GetLastErrorMsg(), (m_data.Root() + "/notes.md is invalid docx file.").c_str());
}

TEST_F(InstanceTest, ChecksRunEndToEndInEveryResultFormat) {
  std::string sDoc = m_data.Root() + "/report.docx";
  ASSERT_TRUE(WriteDocx(sDoc, Para(TextRun("第一章 绪论"), "<w:outlineLvl w:val=\"0\"/>") + Para(TextRun("正文。"))));
  const char* sXmlPath = TARVOS_CheckReportF(sDoc.c_str(), "", "", 1, 0, false, 0);
  ASSERT_NE(sXmlPath, nullptr) << TARVOS_GetLastErrorMsg();
  EXPECT_EQ(std::string(sXmlPath), m_data.Root() + "/report_unzip/../report_Check.xml");
  std::string sXml = ReadWholeFile(sXmlPath);
  EXPECT_EQ(sXml.rfind("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<TARVOS>\n<CheckResults>\r\n", 0), 0u);
  EXPECT_NE(sXml.find(">1.6<"), std::string::npos) << "a heading but no table of contents";
  EXPECT_NE(sXml.find("<template_organization>*</template_organization>\r\n<template_area>*</template_area>"),
            std::string::npos) << "the keys the template was chosen by";
  const char* sInfo = TARVOS_GetCurTemplateInfo(0);
  ASSERT_NE(sInfo, nullptr);
  EXPECT_NE(std::string(sInfo).find("\"zyg_organization\" : \"*\""), std::string::npos) << sInfo;
  EXPECT_NE(std::string(sInfo).find("\"docReportType\" : 1"), std::string::npos) << sInfo;
  EXPECT_EQ(sXml.find("<TotalScore>100.00</TotalScore>"), std::string::npos);

  const char* sJson = TARVOS_CheckReportF(sDoc.c_str(), "", "", 1, 1, false, 0);
  ASSERT_NE(sJson, nullptr);
  EXPECT_EQ(ReadWholeFile(m_data.Root() + "/report_Check.json"), sJson);
  EXPECT_EQ(sJson[0], '{');
  const char* sJsonInXml = TARVOS_CheckReportF(sDoc.c_str(), "", "", 1, 2, false, 0);
  ASSERT_NE(sJsonInXml, nullptr);
  EXPECT_EQ(ReadWholeFile(m_data.Root() + "/report_Check.xml"), sJsonInXml) << "format 2: JSON in the .xml file";

  const char* sMem = TARVOS_CheckReportM("第一行\n\n第二行", nullptr, "", 1, 0, false, 0);
  ASSERT_NE(sMem, nullptr);
  EXPECT_EQ(std::string(sMem).rfind("<TARVOS>\n<CheckResults>\r\n", 0), 0u);
  EXPECT_NE(std::string(TARVOS_GetResult(1, 0)).find("\"entity_attribute\""), std::string::npos) << "type 1 rules ran";
}

TEST_F(InstanceTest, ImportRoutesByExtension) {
  // A GB2312 page: "<meta charset=gb2312>" and 中文标题 / 正文&amp;段落 in GBK bytes.
  std::string sHtml = "<html><head><meta http-equiv=\"Content-Type\" content=\"text/html; charset=gb2312\">"
                      "<title>\xD6\xD0\xCE\xC4\xB1\xEA\xCC\xE2</title><style>p{}</style></head><body>"
                      "<p>\xD5\xFD\xCE\xC4&amp;\xB6\xCE\xC2\xE4</p></body></html>";
  std::ofstream(m_data.Root() + "/page.htm", std::ios::binary) << sHtml;
  std::ofstream(m_data.Root() + "/notes.md", std::ios::binary) << "第一行\n\n  \n第二行\r\n";
  struct { const char* szName; bool bOk; const char* szWant; } kCases[] = {
      {"page.htm", true, "<text>正文&段落</text>"},
      {"notes.md", true, "<text>第二行</text>"},
      {"scan.PDF", false, "No converter for .PDF documents in this build (pdf2docx)"},
      {"paper.tex", false, "(pandoc)"},
      {"sheet.xlsx", false, "(Q7TxtExtraxtor)"},
  };
  for (const auto& c : kCases) {
    std::string sFile = m_data.Root() + "/" + c.szName;
    const char* sResult = TARVOS_CheckReportF(sFile.c_str(), "", "", 1, 0, false, 0);
    EXPECT_EQ(sResult != nullptr, c.bOk) << c.szName << ": " << TARVOS_GetLastErrorMsg();
    if (c.bOk) {
      std::string sBase = sFile.substr(0, sFile.rfind('.'));
      EXPECT_NE(ReadWholeFile(sBase + ".xml").find(c.szWant), std::string::npos) << c.szName;
    } else {
      EXPECT_EQ(std::string(TARVOS_GetLastErrorMsg()), std::string("Cannot open file ") + sFile) << c.szName;
    }
  }
  EXPECT_NE(ReadWholeFile(m_data.Root() + "/page.txt").find("中文标题"), std::string::npos) << "the page's text beside it";
}

TEST_F(InstanceTest, BrokenSavedResultsFailCleanly) {
  std::string sEmpty = m_data.Root() + "/empty_Check.xml", sCut = m_data.Root() + "/cut_Check.xml";
  std::ofstream(sEmpty, std::ios::binary) << "";
  std::ofstream(sCut, std::ios::binary) << "<TARVOS>\n<CheckResults>\r\n<docxPath>/nowhere</docxPath><check><paraId>1";
  for (const std::string& sFile : {sEmpty, sCut, m_data.Root() + "/none_Check.xml"}) {
    EXPECT_EQ(TARVOS_LoadDocResult(sFile.c_str(), 0), 0) << sFile;
    EXPECT_EQ(TARVOS_ReCheckFormat(sFile.c_str(), 1, 0, 0), nullptr) << sFile;
    const char* sError = TARVOS_ShowHtmlError(sFile.c_str(), 0);
    ASSERT_NE(sError, nullptr) << sFile;
    EXPECT_STRNE(sError, "") << sFile;
  }
  EXPECT_STREQ(TARVOS_ShowHtmlError((m_data.Root() + "/none_Check.xml").c_str(), 0),
               ("Failed reading file " + m_data.Root() + "/none_Check.xml").c_str());
}

TEST_F(InstanceTest, TemplateCallsReachTheStore) {
  EXPECT_EQ(TARVOS_GetTemplateCount(), 0);
  EXPECT_LT(TARVOS_ImportTemplate("missing.docx", 1, "", "", ""), 0);
  EXPECT_STREQ(TARVOS_GetLastErrorMsg(), "Fail read template doc file missing.docx");
  std::string sSample = m_data.Root() + "/sample.docx";
  ASSERT_TRUE(WriteDocx(sSample, Para(TextRun("第一章 绪论"), "<w:outlineLvl w:val=\"0\"/>") + Para(TextRun("正文"))));
  EXPECT_EQ(TARVOS_ImportTemplate(sSample.c_str(), 1, "大学", "*", "本科"), 0);
  EXPECT_EQ(TARVOS_GetTemplateCount(), 1);
  EXPECT_EQ(TARVOS_FindTemplate(1, "别的大学", "某地", "本科"), 0) << "unknown keys fall back to the type's templates";
  EXPECT_EQ(TARVOS_FindTemplate(1, "大学", "某地", "硕士"), -1) << "the argument must still match";
  EXPECT_EQ(TARVOS_FindTemplate(2, "别的大学", "某地", "本科"), -1) << "no template of that type";
  EXPECT_NE(std::string(TARVOS_GetTemplate(0)).find("\"zyg_organization\": \"大学\""), std::string::npos);
  EXPECT_STREQ(TARVOS_GetTemplate(5), "");
  EXPECT_EQ(TARVOS_DeleteTemplate(0), 0);
  EXPECT_EQ(TARVOS_GetTemplateCount(), 0);
}

TEST_F(InstanceTest, AFormatReCheckUsesTheChosenTemplate) {
  std::string sSample = m_data.Root() + "/sample.docx", sDoc = m_data.Root() + "/doc.docx";
  auto fnHeading = [](const char* szFont) {
    return Para(TextRun("第一章 绪论", std::string("<w:rFonts w:eastAsia=\"") + szFont + "\"/>"),
                "<w:outlineLvl w:val=\"0\"/>");
  };
  ASSERT_TRUE(WriteDocx(sSample, fnHeading("黑体")));
  ASSERT_TRUE(WriteDocx(sDoc, fnHeading("楷体")));
  ASSERT_EQ(TARVOS_ImportTemplate(sSample.c_str(), 5, "*", "*", "*"), 0);
  const char* sXmlPath = TARVOS_CheckReportF(sDoc.c_str(), "", "", 5, 0, false, 0);
  ASSERT_NE(sXmlPath, nullptr) << TARVOS_GetLastErrorMsg();
  std::string sChecked = sXmlPath;
  ASSERT_NE(ReadWholeFile(sChecked).find(">1.1.1<"), std::string::npos) << "the wrong font";
  ASSERT_NE(TARVOS_ImportDoc(sDoc.c_str(), "", 0), nullptr) << "the structure file a re-check reads";
  const char* sReChecked = TARVOS_ReCheckFormat(sChecked.c_str(), 0, 0, 0);
  ASSERT_NE(sReChecked, nullptr) << TARVOS_GetLastErrorMsg();
  std::string sXml = ReadWholeFile(sReChecked);
  EXPECT_NE(sXml.find(">1.1.1<"), std::string::npos);
  size_t nFontFindings = 0;
  for (size_t n = sXml.find("<errorno>1.1.1</errorno>"); n != std::string::npos; n = sXml.find("<errorno>1.1.1</errorno>", n + 1))
    ++nFontFindings;
  EXPECT_EQ(nFontFindings, 2u) << "found once (its statistics line and its record), not once per run";
  EXPECT_EQ(TARVOS_ReCheckFormat(sChecked.c_str(), 7, 0, 0), nullptr) << "there is no template 7";
  EXPECT_STREQ(TARVOS_GetLastErrorMsg(), "No template 7");
  EXPECT_EQ(TARVOS_EditTemplate(7, sSample.c_str(), 5, "*", "*", "*"), -1);
  EXPECT_STREQ(TARVOS_GetLastErrorMsg(), "No template 7");
  EXPECT_EQ(TARVOS_GetTemplateCount(), 1);
}

TEST_F(InstanceTest, ShowHtmlErrorReturnsItsErrorText) {
  const char* sError = TARVOS_ShowHtmlError("missing_Check.xml", 0);
  ASSERT_NE(sError, nullptr);
  EXPECT_STREQ(sError, "Failed reading file missing_Check.xml");
}

TEST_F(InstanceTest, AuditErrorInfoListsTheCatalogue) {
  std::string sJson = Audit_GetErrorInfo();
  EXPECT_NE(sJson.find("\"1.5.2\""), std::string::npos);
  EXPECT_NE(sJson.find("\"ErrorCount\""), std::string::npos);
}

// Resolving handles while another thread appends must never read a table
// that is being moved (run under the sanitizers).
TEST_F(InstanceTest, HandlesResolveWhileAnotherThreadAppends) {
  std::atomic<bool> bStop{false};
  std::atomic<int> nBadReads{0};
  std::vector<std::thread> vecReaders;
  for (int t = 0; t < 3; ++t)
    vecReaders.emplace_back([&] {
      while (!bStop)
        if (TARVOS_GetResult(1, 0) == nullptr) ++nBadReads;
    });
  std::vector<int> vecHandles;
  for (int i = 0; i < 300; ++i) vecHandles.push_back(TARVOS_NewInstance());
  bStop = true;
  for (auto& t : vecReaders) t.join();
  EXPECT_EQ(nBadReads, 0);
  for (size_t i = 0; i < vecHandles.size(); ++i) EXPECT_EQ(vecHandles[i], (int)i + 1);
}

}  // namespace
