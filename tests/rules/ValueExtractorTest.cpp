#include "rules/ValueExtractor.h"

#include <gtest/gtest.h>

#include <string>

#include "utility/CountryDetect.h"

namespace {

// "value@offset|" per value found, so a failure shows every value at once.
std::string Joined(const std::vector<_tExtracted>& vecFound) {
  std::string s;
  for (const auto& f : vecFound) s += f.value + "@" + std::to_string(f.offset) + "|";
  return s;
}

struct _tCase {
  const char* szText;
  const char* szWant;
};

}  // namespace

TEST(ValueExtractorTest, QuantitiesAreNumbersWithAKnownUnit) {
  const _tCase kCases[] = {
      {"投资12.5万元", "12.5万元@6|"},
      {"合计1,234,567.89元，增长5%", "1,234,567.89元@6|5%@30|"},
      {"面积30 m²", "30 m²@6|"},
      {"工期三个月", "三个月@6|"},
      {"二十五吨和3千万元", "二十五吨@0|3千万元@15|"},
      {"占比12％", "12％@6|"},
      {"长5km宽20m", "5km@3|20m@9|"},
      {"5 meters, 10 min, 3 times", ""},        // an ASCII unit ends where the word ends
      {"100m2的房间", "100m2@0|"},
      {"A4纸5张，COVID19天", ""},                // numbers inside words
      {"1,2345元和1.2.3元", ""},                 // malformed groups and versions
      {"下降-3.5%，2020-2023年", "-3.5%@6|2023年@19|"},
      {"2023年10月1日", "2023年@0|"},            // months and days are no units
      {"千万不要", ""},                          // no numeral ChineseToNumber reads
      {"12345", ""},
      {"", ""},
  };
  for (const auto& c : kCases) EXPECT_EQ(Joined(CValueExtractor::Units(c.szText)), c.szWant) << c.szText;
}

TEST(ValueExtractorTest, EmailsFollowTheStandardAndStopAtTheirEdges) {
  const _tCase kCases[] = {
      {"联系邮箱：zhang.san@example.com.cn。", "zhang.san@example.com.cn@15|"},
      {"（a_b+tag@mail.example.org）", "a_b+tag@mail.example.org@3|"},
      {"send to John.Doe@Example.COM.", "John.Doe@Example.COM@8|"},
      {"mailto:x@y.io, 'q@r.net'", "x@y.io@7|q@r.net@16|"},
      {"a@b", ""},
      {"a@b.c1 a@b.c a@-b.cn a@b-.cn", ""},
      {"a..b@c.cn .a@c.cn a.@c.cn", "a@c.cn@11|"},  // ".a": a full stop then an address
      {"a@b..cn", ""},
      {"a@b.cn@c.cn", ""},
      {"x＠y.cn", ""},                                // the full-width sign is no '@'
      {"李四li@abc.com获取", "li@abc.com@6|"},
      {"@@@", ""},
      {"", ""},
  };
  for (const auto& c : kCases) EXPECT_EQ(Joined(CValueExtractor::Emails(c.szText)), c.szWant) << c.szText;

  const std::string sLong = std::string(65, 'a') + "@b.cn " + std::string(64, 'a') + "@b.cn";
  EXPECT_EQ(Joined(CValueExtractor::Emails(sLong)), std::string(64, 'a') + "@b.cn@71|") << "local part over 64 bytes";
}

TEST(ValueExtractorTest, SectionHeadingsSplitIntoNumberAndName) {
  struct {
    const char* szHeading;
    bool bWant;
    const char* szNo;
    const char* szName;
  } kCases[] = {
      {"3.2 设计", true, "3.2", "设计"},
      {"3.2.1设计要求", true, "3.2.1", "设计要求"},
      {"1. 引言", true, "1", "引言"},
      {"  1、引言  ", true, "1", "引言"},
      {"第三章 结论", true, "第三章", "结论"},
      {"第12节\u3000方法", true, "第12节", "方法"},
      {"第二部分", true, "第二部分", ""},
      {"一、总则", true, "一", "总则"},
      {"（二）范围", true, "（二）", "范围"},
      {"(3) 限制", true, "(3)", "限制"},
      {"3.5%的增长", false, "", ""},
      {"2023.10.1 会议", false, "", ""},
      {"2023年工作总结", false, "", ""},
      {"12月", false, "", ""},
      {"总则", false, "", ""},
      {"第几章", false, "", ""},
      {"", false, "", ""},
  };
  for (const auto& c : kCases) {
    tstring sNo = "stale", sName = "stale";
    EXPECT_EQ(CValueExtractor::Section(c.szHeading, sNo, sName), c.bWant) << c.szHeading;
    EXPECT_EQ(sNo, c.szNo) << c.szHeading;
    EXPECT_EQ(sName, c.szName) << c.szHeading;
  }
}

TEST(ValueExtractorTest, CountriesAsWrittenOnlyWhileDetectionRuns) {
  const tstring sText = "中国与印度尼西亚签订协议";
  EXPECT_TRUE(CValueExtractor::Countries(sText).empty());
  ASSERT_EQ(CountryDetect_Init(TARVOS_TEST_DATA_DIR), 1);
  EXPECT_EQ(Joined(CValueExtractor::Countries(sText)), "中国@0|印度尼西亚@9|");
  EXPECT_EQ(Joined(CValueExtractor::Countries("Trade with Viet Nam.")), "Viet Nam@11|");
  CountryDetect_Exit();
}

// Megabyte inputs of the shapes that would make a careless scanner quadratic
// (every '@' re-scanning its neighbours, runs of numerals re-read), with
// invalid UTF-8 and NUL bytes mixed in. Linear scanning finishes at once.
TEST(ValueExtractorTest, HostileInputIsScannedWithoutHarm) {
  const std::string kPieces[] = {"a@", "a.", "1,", "一", "万", "@b.", std::string("\0\xFF\xE4", 3), "\xE4\xB8", "1 "};
  for (const auto& sPiece : kPieces) {
    std::string sText;
    while (sText.size() < (1u << 20)) sText += sPiece;
    CValueExtractor::Units(sText);
    CValueExtractor::Emails(sText);
    tstring sNo, sName;
    CValueExtractor::Section(sText, sNo, sName);
  }
  const std::string sNul("5\0元 1元", 10);
  EXPECT_EQ(Joined(CValueExtractor::Units(sNul)), "1元@6|");
}
