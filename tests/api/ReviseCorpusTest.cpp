// Real documents nobody here wrote: every one that checks is revised with
// all its findings, and the revised DOCX reads back into the model.
#include <gtest/gtest.h>

#include <filesystem>

#include "TestDataDir.h"
#include "tarvos.h"

namespace {

TEST(ReviseCorpusTest, EveryCheckedDocumentIsRevisedAndReadBack) {
  const std::vector<std::string> vecCorpus = CorpusDocx(TARVOS_CORPUS_DIR);
  if (vecCorpus.empty()) GTEST_SKIP() << "no corpus at " << TARVOS_CORPUS_DIR;
  CTestDataDir data;
  CTempDir work;
  ASSERT_EQ(TARVOS_Init(data.Root().c_str()), 1) << TARVOS_GetLastErrorMsg();
  int nRevised = 0;
  for (const std::string& sFile : CopyInto(vecCorpus, work.Path())) {
    const char* sResult = TARVOS_CheckReportF(sFile.c_str(), "", "", 1, 0, false, 0);
    if (sResult == nullptr) continue;  // a document the reader refuses is another test's business
    const std::string sResultFile = sResult;
    const char* sRevised = TARVOS_ReviseReportF(sResultFile.c_str(), 0);
    ASSERT_NE(sRevised, nullptr) << sFile << ": " << TARVOS_GetLastErrorMsg();
    const std::string sRevisedFile = sRevised;
    EXPECT_TRUE(std::filesystem::exists(sRevisedFile)) << sRevisedFile;
    EXPECT_NE(TARVOS_ImportDoc(sRevisedFile.c_str(), "", 0), nullptr) << sRevisedFile << ": " << TARVOS_GetLastErrorMsg();
    nRevised++;
  }
  EXPECT_GT(nRevised, (int)vecCorpus.size() / 2);
  TARVOS_Exit();
}

}  // namespace
