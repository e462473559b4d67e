// The lexical analyser on the built lexicon: golden segmentations, tags,
// user words, nothing of the input lost on hostile text, many threads at once.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <string>
#include <thread>
#include <vector>

#include "TestDataDir.h"
#include "utility/Utf8.h"
#include "utility/lexical/CharClass.h"
#include "utility/lexical/Lexical.h"

namespace {

class SegmenterTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { ASSERT_EQ(QUENDA_Init(TARVOS_TEST_DATA_DIR), 1); }
  static void TearDownTestSuite() { QUENDA_Exit(); }
  void TearDown() override { QUENDA_ImportUserDict(Empty().c_str(), true); }

  static std::string Empty() {
    static CTempDir s_dir;
    std::string sPath = s_dir.Path() + "/empty.txt";
    WriteFile(sPath, "");
    return sPath;
  }
  static void WriteFile(const std::string& sPath, const std::string& sContent) {
    FILE* fp = fopen(sPath.c_str(), "wb");
    fwrite(sContent.data(), 1, sContent.size(), fp);
    fclose(fp);
  }
};

TEST_F(SegmenterTest, GoldenSegmentations) {
  struct { const char* szText; const char* szWant; } kCases[] = {
      {"我来到北京清华大学", "我/r 来到/v 北京/ns 清华大学/nt"},
      {"他来到了网易杭研大厦", "他/r 来到/v 了/ul 网易/n 杭研/n 大厦/n"},  // 杭研: an unknown word, whole
      {"共计3.14%的增长", "共计/v 3.14%/m 的/uj 增长/v"},
      {"投资1,000,000元", "投资/vn 1,000,000/m 元/m"},
      {"三百五十人", "三百五十/m 人/n"},
      {"学习Python编程", "学习/v Python/eng 编程/n"},
      {"iPhone13发布", "iPhone13/eng 发布/v"},
      {"  前后 空白  ", "前后/f 空白/n"},
      {"", ""},
  };
  for (const auto& c : kCases) EXPECT_EQ(QUENDA_ParagraphProcess(c.szText, true), c.szWant) << c.szText;
  EXPECT_EQ(QUENDA_ParagraphProcess("我来到北京清华大学", false), "我 来到 北京 清华大学");
}

TEST_F(SegmenterTest, PunctuationSubtags) {
  struct { const char* szText; const char* szWant; } kCases[] = {
      {"（甲）", "（/wkz 甲/n ）/wky"},
      {"(甲)", "(/wkz 甲/n )/wky"},
      {"《书》", "《/wkz 书/n 》/wky"},
      {"“说”", "“/wyz 说/v ”/wyy"},
      {"\"说\"", "\"/wyz 说/v \"/wyy"},
      {"好。好.", "好/a 。/wj 好/a ./wj"},
      {"甲，乙,丙", "甲/n ，/wd 乙/n ,/wd 丙/n"},
      {"甲、乙", "甲/n 、/wn 乙/n"},
      {"甲；乙;", "甲/n ；/wf 乙/n ;/wf"},
      {"注：", "注/v ：/wm"},
      {"吗？?", "吗/y ？/ww ?/ww"},
      {"好！!", "好/a ！/wt !/wt"},
      {"等……", "等/u ……/ws"},
      {"甲——乙", "甲/n ——/wp 乙/n"},
      {"５０％", "５/w ０/w ％/wb"},
      {"￥元", "￥/wh 元/m"},
      {"@", "@/w"},
  };
  for (const auto& c : kCases) EXPECT_EQ(QUENDA_ParagraphProcess(c.szText, true), c.szWant) << c.szText;
}

TEST_F(SegmenterTest, UserWordsWinAndGroupsKeepTheirBlanks) {
  CTempDir dir;
  std::string sDict = dir.Path() + "/zyg_userdict.txt";
  WriteFile(sDict, "审查引擎\tZYG\n[machine learning]\tZYG\n\xEF\xBB\xBF合同价款\tZYG\n");
  EXPECT_EQ(QUENDA_ImportUserDict(sDict.c_str(), false), 3);
  EXPECT_EQ(QUENDA_ParagraphProcess("用审查引擎做machine learning", true), "用/p 审查引擎/ZYG 做/v [machine learning]/ZYG");
  EXPECT_EQ(QUENDA_ParagraphProcess("合同价款调整", true), "合同价款/ZYG 调整/vn");

  std::string sMore = dir.Path() + "/more.txt";
  WriteFile(sMore, "调整方案 3 nz\n");
  EXPECT_EQ(QUENDA_ImportUserDict(sMore.c_str(), false), 1);
  EXPECT_EQ(QUENDA_ParagraphProcess("合同价款调整方案", true), "合同价款/ZYG 调整方案/nz");
  EXPECT_EQ(QUENDA_ImportUserDict(sMore.c_str(), true), 1);  // overwrite: the earlier words go
  EXPECT_EQ(QUENDA_ParagraphProcess("合同价款", true), "合同/a 价款/n");  // the lexicon's own tags
}

TEST_F(SegmenterTest, MalformedUserLinesAreReportedAndSkipped) {
  CTempDir dir, logDir;
  std::string sDict = dir.Path() + "/bad.txt";
  WriteFile(sDict, "好词\tn\n[未闭合\tn\n\tn\n坏标记\ta b\n" + std::string(5000, 'x') + "\n# 注释\n\n好词二\n");
  setenv("TARVOS_LOG_DIR", logDir.Path().c_str(), 1);
  EXPECT_EQ(QUENDA_ImportUserDict(sDict.c_str(), false), 2);
  unsetenv("TARVOS_LOG_DIR");
  std::string sLog = ReadTodaysLog(logDir.Path());
  for (const char* szWhy : {"line 2 not imported: bracket not closed", "line 3 not imported: no word",
                            "line 4 not imported: tag with blanks", "line 5 not imported: line longer than 4096 bytes"})
    EXPECT_NE(sLog.find(szWhy), std::string::npos) << szWhy << "\n" << sLog;
  EXPECT_EQ(QUENDA_ImportUserDict((dir.Path() + "/none.txt").c_str(), false), 0);
}

// Words put back together give the text without its blanks, whatever it holds.
TEST_F(SegmenterTest, NothingOfTheInputIsLost) {
  std::vector<std::string> vecTexts = {
      "普通的句子，带标点。",
      "\xff\xfe\xe4\xb8坏的UTF-8\xc0\xaf字节",
      std::string("嵌入\0空字节\0", 13),
      "",
      " \t\r\n\v\f\u3000\u00a0",
      std::string(100000, 'a'),
      "1,000,000和1,0000和,123和12,345,67",
      "[括号]/斜杠/[/",
  };
  std::string sRun;
  for (int i = 0; i < 100000; ++i) sRun += "啊";
  vecTexts.push_back(sRun);
  std::string sLong;
  while (sLong.size() < (1u << 20)) sLong += "没有标点的很长的一段文字其中包含各种词语和名字张三李四王五";
  vecTexts.push_back(sLong);
  for (const std::string& sText : vecTexts) {
    std::vector<_tToken> vecTokens;
    QUENDA_Analyser()->Segment(sText, vecTokens);
    std::string sJoined, sBare;
    size_t nPrevEnd = 0;
    for (const _tToken& t : vecTokens) {
      ASSERT_GE(t.offset, nPrevEnd) << "tokens in order, never overlapping";
      sJoined += sText.substr(t.offset, t.length);
      nPrevEnd = t.offset + t.length;
    }
    for (size_t i = 0, n = 0; i < sText.size(); i += n) {
      uint32_t c;
      n = DecodeUtf8(sText.data() + i, sText.size() - i, c);
      if (ClassifyChar(c) != kCharBlank) sBare.append(sText, i, n);
    }
    EXPECT_EQ(sJoined, sBare) << sText.substr(0, 60);
  }
}

TEST_F(SegmenterTest, ManyThreadsSegmentAtOnce) {
  std::vector<std::string> vecLines = {"我来到北京清华大学", "他来到了网易杭研大厦", "共计3.14%的增长，1,000,000元",
                                       "小明硕士毕业于中国科学院计算所，后在日本京都大学深造"};
  std::vector<std::string> vecWant;
  for (const auto& sLine : vecLines) vecWant.push_back(QUENDA_ParagraphProcess(sLine, true));
  std::vector<std::thread> vecThreads;
  std::vector<int> vecBad(8, 0);
  for (int t = 0; t < 8; ++t)
    vecThreads.emplace_back([&, t] {
      for (int round = 0; round < 200; ++round)
        for (size_t i = 0; i < vecLines.size(); ++i)
          if (QUENDA_ParagraphProcess(vecLines[i], true) != vecWant[i]) ++vecBad[t];
    });
  for (auto& thread : vecThreads) thread.join();
  for (int t = 0; t < 8; ++t) EXPECT_EQ(vecBad[t], 0) << "thread " << t;
}

}  // namespace
