#include "utility/SpellChecker.h"

#include <gtest/gtest.h>

#include "TestDataDir.h"
#include "utility/ConfusionSet.h"
#include "utility/ErrorLog.h"
#include "utility/QueryExpand.h"
#include "utility/lexical/LexicalAnalyser.h"

namespace {

// One analyser and checker over the built data directory for the whole suite.
class SpellCheckerTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    s_pAnalyser = new CLexicalAnalyser;
    ASSERT_TRUE(s_pAnalyser->Load(TARVOS_TEST_DATA_DIR));
    s_pChecker = new CSpellChecker(s_pAnalyser, nullptr, nullptr);
    ASSERT_TRUE(s_pChecker->Load(TARVOS_TEST_DATA_DIR, CLanguageModel::DefaultModelFile())) << GetLastError();
  }
  static void TearDownTestSuite() {
    delete s_pChecker;
    delete s_pAnalyser;
  }

  // "wrong>right@offset" per finding.
  static std::vector<std::string> Found(const CSpellChecker& checker, const std::string& sText) {
    std::vector<_tSpellFinding> vecFindings;
    checker.Check(sText, vecFindings);
    std::vector<std::string> vecOut;
    for (const _tSpellFinding& f : vecFindings)
      vecOut.push_back(f.sWrong + ">" + f.sRight + "@" + std::to_string(f.offset));
    return vecOut;
  }

  static CLexicalAnalyser* s_pAnalyser;
  static CSpellChecker* s_pChecker;
};
CLexicalAnalyser* SpellCheckerTest::s_pAnalyser = nullptr;
CSpellChecker* SpellCheckerTest::s_pChecker = nullptr;

TEST_F(SpellCheckerTest, ProposesTheWordTheWriterMeant) {
  const struct {
    const char* szText;
    std::vector<std::string> vecExpected;
  } cases[] = {
      {"我们按装了新软件。", {"按装>安装@6"}},
      {"他在会上作了重要将话。", {"将话>讲话@24"}},
      {"该方案技术可行，经济合里。", {"合里>合理@30"}},
      {"本工程的运形费用较低。", {"运形>运行@12"}},
      {"第一段正常。我们按装了新软件。", {"按装>安装@24"}},
      // Clean sentences of reports and contracts raise nothing.
      {"本工程采用钢筋混凝土结构，基础形式为独立基础。", {}},
      {"该系统具有良好的稳定性和可靠性。", {}},
      {"会议决定成立领导小组。", {}},
      {"请各单位认真做好防汛准备工作。", {}},
      {"甲方应在合同签订后十日内支付预付款。", {}},
      {"ABC 123 and plain Latin text", {}},
      {"", {}},
  };
  for (const auto& c : cases) EXPECT_EQ(Found(*s_pChecker, c.szText), c.vecExpected) << c.szText;
}

// Quotations, titles, people's names and reference entries are not judged.
TEST_F(SpellCheckerTest, GuardedTextIsLeftAlone) {
  for (const char* szText : {"他说：“我们按装了新软件。”", "见《软件按装手册》第三章。", "「按装了」",
                             "授权代表：刘济民", "联系人：刘济民",
                             "[12] 金显贺，王昌长．我们按装了新软件．", "金显贺．我们按装了新软件[J]．学报，2001"})
    EXPECT_TRUE(Found(*s_pChecker, szText).empty()) << szText;
}

TEST_F(SpellCheckerTest, TheMisspellingDictionaryIsReportedAsIs) {
  CTempDir dir;
  CQueryExpand spellDict(dir.Path().c_str(), "SpellError");
  const std::string sList = dir.Path() + "/list.txt";
  FILE* fp = fopen(sList.c_str(), "w");
  fputs("设被-->设备\n", fp);
  fclose(fp);
  ASSERT_EQ(spellDict.SimDictGenerate(sList.c_str(), nullptr), 1);
  CLexicalAnalyser analyser;
  ASSERT_TRUE(analyser.Load(TARVOS_TEST_DATA_DIR));
  ASSERT_EQ(analyser.ImportUserDict((spellDict.GetFilename() + "_userdict.txt").c_str(), false), 1);
  CSpellChecker checker(&analyser, nullptr, &spellDict);
  ASSERT_TRUE(checker.Load(TARVOS_TEST_DATA_DIR, CLanguageModel::DefaultModelFile()));
  EXPECT_EQ(Found(checker, "检查设被运行情况"), std::vector<std::string>{"设被>设备@6"});
}

TEST_F(SpellCheckerTest, MissingDataStopsTheLoadWithAReason) {
  CSpellChecker checker(s_pAnalyser, nullptr, nullptr);
  EXPECT_FALSE(checker.Load(TARVOS_TEST_DATA_DIR, "/nonexistent/zh_CN.lm"));
  EXPECT_NE(GetLastError().find("/nonexistent/zh_CN.lm"), std::string::npos);
  CTempDir empty;
  EXPECT_FALSE(checker.Load(empty.Path(), CLanguageModel::DefaultModelFile()));
  EXPECT_NE(GetLastError().find("sound.txt"), std::string::npos);
  std::vector<_tSpellFinding> vecFindings;
  checker.Check("我们按装了新软件。", vecFindings);
  EXPECT_TRUE(vecFindings.empty());
}

TEST(ConfusionSetTest, NearestKindsComeFirstAndNeverTheCharacterItself) {
  CTempDir dir;
  FILE* fp = fopen((dir.Path() + "/sound.txt").c_str(), "w");
  fputs("安\tān\tan\t100\n按\tàn\tan\t100\n鞍\tān\tan\t100\n己\tjǐ\tji\t100\n", fp);
  fclose(fp);
  fp = fopen((dir.Path() + "/shape.txt").c_str(), "w");
  fputs("# look-alikes\n己已巳\n安按 # a comment\n", fp);
  fclose(fp);
  CConfusionSet set;
  ASSERT_TRUE(set.Load(dir.Path()));
  const struct {
    const char* szChar;
    std::vector<std::pair<std::string, EConfusion>> vecExpected;
  } cases[] = {
      {"安", {{"鞍", EConfusion::kSameTone}, {"按", EConfusion::kSameSyllable}}},
      {"按", {{"安", EConfusion::kSameSyllable}, {"鞍", EConfusion::kSameSyllable}}},
      {"己", {{"已", EConfusion::kShape}, {"巳", EConfusion::kShape}}},
      {"已", {{"己", EConfusion::kShape}, {"巳", EConfusion::kShape}}},
      {"水", {}},
  };
  for (const auto& c : cases) {
    std::vector<_tConfusion> vecFound;
    set.Candidates(c.szChar, vecFound);
    std::vector<std::pair<std::string, EConfusion>> vecGot;
    for (const _tConfusion& found : vecFound) vecGot.emplace_back(found.sChar, found.kind);
    EXPECT_EQ(vecGot, c.vecExpected) << c.szChar;
  }
}

TEST(ConfusionSetTest, TheBuiltTableGivesPinyinOfCommonCharacters) {
  CConfusionSet set;
  ASSERT_TRUE(set.Load(std::string(TARVOS_TEST_DATA_DIR) + "/Data/Spell"));
  EXPECT_GT(set.GetCount(), 3000u);
  std::vector<_tConfusion> vecFound;
  set.Candidates("状", vecFound);  // zhuàng
  auto Kind = [&vecFound](const char* szChar) {
    for (const _tConfusion& c : vecFound)
      if (c.sChar == szChar) return (int)c.kind;
    return -1;
  };
  EXPECT_EQ(Kind("壮"), (int)EConfusion::kSameTone);
  EXPECT_EQ(Kind("装"), (int)EConfusion::kSameSyllable);  // zhuāng
  EXPECT_EQ(Kind("状"), -1);
}

}  // namespace
