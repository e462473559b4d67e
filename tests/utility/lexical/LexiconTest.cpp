// Building, saving and loading the lexicon and the word-boundary model, on
// small sources written here, and their refusal of damaged files.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "TestDataDir.h"
#include "utility/ErrorLog.h"
#include "utility/lexical/HmmModel.h"
#include "utility/lexical/Lexicon.h"
#include "utility/lexical/Segmenter.h"

namespace {

const char kWords[] = "北京 100 ns\n大学 80 n\n北京大学 50 nt\n学生 60 n\n无频率\n零频 0 x\n生 5\n";
const char kTables[] =
    "start\tB\t-0.26\nstart\tE\t-3.14e+100\nstart\tM\t-3.14e+100\nstart\tS\t-1.46\n"
    "trans\tB\tE\t-0.51\ntrans\tB\tM\t-0.91\ntrans\tE\tB\t-0.58\ntrans\tE\tS\t-0.80\n"
    "trans\tM\tE\t-0.33\ntrans\tM\tM\t-1.26\ntrans\tS\tB\t-0.72\ntrans\tS\tS\t-0.66\n"
    "emit\tB\t张\t-2\nemit\tE\t三\t-2\nemit\tS\t张\t-9\nemit\tS\t三\t-9\n";

class LexiconTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::ofstream(m_dir.Path() + "/words.txt") << kWords;
    std::ofstream(m_dir.Path() + "/tables.txt") << kTables;
    std::filesystem::create_directory(m_dir.Path() + "/Lexicon");
  }
  CTempDir m_dir;
};

TEST_F(LexiconTest, BuildsSavesAndLoadsWordsWithTags) {
  CLexicon lexicon;
  ASSERT_EQ(lexicon.Build(m_dir.Path() + "/words.txt"), 5) << "words without a frequency of 1 or more are skipped";
  ASSERT_TRUE(lexicon.Save(m_dir.Path() + "/Lexicon"));
  CLexicon loaded;
  ASSERT_TRUE(loaded.Load(m_dir.Path() + "/Lexicon")) << GetLastError();
  int nId = loaded.GetDict().GetId("北京大学");
  ASSERT_GE(nId, 0);
  EXPECT_STREQ(loaded.GetTag(nId), "nt");
  EXPECT_STREQ(loaded.GetTag(loaded.GetDict().GetId("生")), "x") << "a missing tag reads as x";
  EXPECT_NEAR(loaded.GetLogProb(nId), std::log(50.0 / 295), 1e-9);
  EXPECT_NEAR(loaded.GetUnknownLogProb(), -std::log(295.0), 1e-9);
}

TEST_F(LexiconTest, SegmentsWithTheModelForUnknownRuns) {
  CLexicon lexicon;
  CHmmModel hmm;
  ASSERT_GT(lexicon.Build(m_dir.Path() + "/words.txt"), 0);
  ASSERT_GT(hmm.Build(m_dir.Path() + "/tables.txt"), 0);
  ASSERT_TRUE(hmm.Save(m_dir.Path() + "/hmm.dat"));
  CHmmModel loaded;
  ASSERT_TRUE(loaded.Load(m_dir.Path() + "/hmm.dat"));
  CSegmenter segmenter(&lexicon, &loaded);
  std::vector<_tToken> vecTokens;
  std::string sText = "张三北京大学学生";
  segmenter.Segment(sText, nullptr, vecTokens);
  EXPECT_EQ(CSegmenter::Format(sText, vecTokens, true), "张三/n 北京大学/nt 学生/n");
}

TEST_F(LexiconTest, DamagedFilesAreRefusedByName) {
  CLexicon lexicon;
  CHmmModel hmm;
  lexicon.Build(m_dir.Path() + "/words.txt");
  hmm.Build(m_dir.Path() + "/tables.txt");
  ASSERT_TRUE(lexicon.Save(m_dir.Path() + "/Lexicon"));
  ASSERT_TRUE(hmm.Save(m_dir.Path() + "/Lexicon/hmm.dat"));
  for (const char* szFile : {"lexicon.pdat", "lexicon.pos", "lexicon.tags", "hmm.dat"}) {
    std::string sPath = m_dir.Path() + "/Lexicon/" + szFile;
    std::string sWhole = ReadWholeFile(sPath);
    std::ofstream(sPath, std::ios::binary | std::ios::trunc) << sWhole.substr(0, sWhole.size() / 2);
    CLexicon lexiconBack;
    CHmmModel hmmBack;
    bool bLoaded = std::string(szFile) == "hmm.dat" ? hmmBack.Load(sPath) : lexiconBack.Load(m_dir.Path() + "/Lexicon");
    EXPECT_FALSE(bLoaded) << szFile;
    EXPECT_NE(GetLastError().find(szFile), std::string::npos) << GetLastError();
    std::ofstream(sPath, std::ios::binary | std::ios::trunc) << sWhole;
  }
  EXPECT_EQ(hmm.Build(m_dir.Path() + "/words.txt"), 0) << "a word list is no model";
}

}  // namespace
