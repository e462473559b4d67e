// Checks on several instances from several threads at once, as a host runs
// them: every result equals the one a sequential run gives, while another
// thread imports a user dictionary and a template. Run under ThreadSanitizer
// in CI, which reports any data race of the shared services.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "DocxFixture.h"
#include "TestDataDir.h"
#include "tarvos.h"

namespace fs = std::filesystem;

namespace {

const int kThreads = 4;

// The JSON result without the one line that names the folder it lies in.
std::string WithoutFolder(const char* szResult) {
  if (szResult == nullptr) return "(failed: " + std::string(TARVOS_GetThreadLastErrorMsg()) + ")";
  std::string s = szResult;
  size_t nKey = s.find("\"docxPath\"");
  if (nKey != std::string::npos) s.erase(nKey, s.find('\n', nKey) - nKey);
  return s;
}

std::vector<std::string> CheckAll(const std::vector<std::string>& vecFiles, int handle) {
  std::vector<std::string> vecResults;
  for (const std::string& sFile : vecFiles)
    vecResults.push_back(WithoutFolder(TARVOS_CheckReportF(sFile.c_str(), "", "", 1, 1, false, handle)));
  return vecResults;
}

TEST(ConcurrencyTest, InstancesOnThreadsGiveTheSequentialResults) {
  const std::vector<std::string> vecCorpus = CorpusDocx(TARVOS_CORPUS_DIR);
  if (vecCorpus.empty()) GTEST_SKIP() << "no corpus at " << TARVOS_CORPUS_DIR;
  CTestDataDir data;
  CTempDir work;
  ASSERT_EQ(TARVOS_Init(data.Root().c_str()), 1) << TARVOS_GetLastErrorMsg();
  // The checks' template is on file first: the template imported meanwhile
  // is filed under other keys and must change nothing they find.
  std::string sDict = work.Path() + "/user.txt", sSample = work.Path() + "/sample.docx";
  ASSERT_TRUE(WriteDocx(sSample, Para(TextRun("第一章 绪论", "<w:rFonts w:eastAsia=\"黑体\"/><w:sz w:val=\"32\"/>"),
                                      "<w:outlineLvl w:val=\"0\"/>") +
                                     Para(TextRun("正文", "<w:rFonts w:eastAsia=\"宋体\"/><w:sz w:val=\"24\"/>"))));
  ASSERT_EQ(TARVOS_ImportTemplate(sSample.c_str(), 1, "*", "*", "*"), 0);

  fs::create_directory(work.Path() + "/sequential");
  const std::vector<std::string> vecWant = CheckAll(CopyInto(vecCorpus, work.Path() + "/sequential"), 0);

  std::vector<std::vector<std::string>> vecCopies(kThreads), vecGot(kThreads);
  for (int t = 0; t < kThreads; ++t) {
    std::string sDir = work.Path() + "/thread" + std::to_string(t);
    fs::create_directory(sDir);
    vecCopies[t] = CopyInto(vecCorpus, sDir);
  }
  // Services change while the checks run: a user word and a template filed
  // under an organisation that no check asks for.
  std::ofstream(sDict) << "并发检查\tn\n";
  std::vector<std::thread> vecThreads;
  for (int t = 0; t < kThreads; ++t)
    vecThreads.emplace_back([&, t] {
      int handle = TARVOS_NewInstance();
      vecGot[t] = CheckAll(vecCopies[t], handle);
      TARVOS_DeleteInstance(handle);
    });
  int nImported = 0;
  std::thread editor([&] {
    for (int i = 0; i < 3; ++i) {
      nImported += TARVOS_ImportUserDict(sDict.c_str());
      TARVOS_ImportTemplate(sSample.c_str(), 1, "并发测试单位", "*", "*");
    }
  });
  for (auto& thread : vecThreads) thread.join();
  editor.join();
  TARVOS_Exit();

  EXPECT_EQ(nImported, 3);
  for (int t = 0; t < kThreads; ++t) {
    ASSERT_EQ(vecGot[t].size(), vecWant.size());
    for (size_t i = 0; i < vecWant.size(); ++i)
      EXPECT_EQ(vecGot[t][i], vecWant[i]) << "thread " << t << ", " << vecCorpus[i];
  }
}

// Each thread reads the reason of its own last failure, whatever the other
// threads fail with meanwhile.
TEST(ConcurrencyTest, EachThreadReadsItsOwnLastError) {
  CTestDataDir data;
  ASSERT_EQ(TARVOS_Init(data.Root().c_str()), 1);
  std::vector<std::thread> vecThreads;
  std::vector<int> vecWrong(kThreads, 0);
  for (int t = 0; t < kThreads; ++t)
    vecThreads.emplace_back([&, t] {
      const std::string sName = "missing-" + std::to_string(t) + ".docx";
      const std::string sWant = "Cannot open file " + sName;
      int handle = TARVOS_NewInstance();
      for (int i = 0; i < 200; ++i) {
        if (TARVOS_CheckReportF(sName.c_str(), "", "", 1, 0, false, handle) != nullptr) continue;
        if (sWant != TARVOS_GetThreadLastErrorMsg()) ++vecWrong[t];
      }
    });
  for (auto& thread : vecThreads) thread.join();
  TARVOS_Exit();
  for (int t = 0; t < kThreads; ++t) EXPECT_EQ(vecWrong[t], 0) << "thread " << t;
}

}  // namespace
