// Chinese font-size names against half-point sizes, both directions.
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "TestDataDir.h"
#include "utility/Num2FontSize.h"

namespace {

class Num2FontSizeTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(m_table.Import((std::string(TARVOS_TEST_DATA_DIR) + "/Data/Font/FontSize.dat").c_str()), 16);
  }
  CNum2FontSize m_table;
};

TEST_F(Num2FontSizeTest, NamesAndSizesConvertBothWays) {
  struct { int nHalfPoints; const char* szName; } kCases[] = {
      {84, "初号"}, {72, "小初"}, {52, "一号"}, {48, "小一"}, {44, "二号"}, {36, "小二"},
      {32, "三号"}, {30, "小三"}, {28, "四号"}, {24, "小四"}, {21, "五号"}, {18, "小五"},
      {15, "六号"}, {13, "小六"}, {11, "七号"}, {10, "八号"},
      {26, "13磅"}, {25, "12.5磅"}, {1, "0.5磅"}, {100, "50磅"},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(m_table.GetName(c.nHalfPoints), c.szName) << c.nHalfPoints;
    EXPECT_EQ(m_table.GetSize(c.szName), c.nHalfPoints) << c.szName;
  }
}

TEST_F(Num2FontSizeTest, UnknownNamesHaveNoSize) {
  for (const char* szName : {"", "磅", "小七", "abc磅", "-3磅", "12.3磅", "0磅", "12", "12pt5"})
    EXPECT_EQ(m_table.GetSize(szName), -1) << szName;
  EXPECT_EQ(m_table.GetSize("12pt"), 24);
}

TEST(Num2FontSizeImportTest, SkipsCommentsAndBadLinesAndReportsMissingFiles) {
  CTempDir dir;
  std::string sPath = dir.Path() + "/sizes.txt";
  std::ofstream(sPath) << "# comment\n\n小四 24\n坏 x\n负 -2\n只名\n小四 25\n";
  CNum2FontSize table;
  EXPECT_EQ(table.Import(sPath.c_str()), 1);
  EXPECT_EQ(table.GetSize("小四"), 25);  // a later line replaces the earlier one
  EXPECT_EQ(table.Import((dir.Path() + "/none").c_str()), -1);
}

}  // namespace
