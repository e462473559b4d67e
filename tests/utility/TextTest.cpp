// Character counts, the normaliser and Chinese numerals.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "utility/ChineseNumber.h"
#include "utility/JsonText.h"
#include "utility/TextNormalizer.h"

namespace {

TEST(TextTest, CharStatCountsCharactersNotBytes) {
  struct { std::string sText; int64_t nSingle, nMulti; } kCases[] = {
      {"", 0, 0}, {"abc", 3, 0}, {"中文", 0, 2}, {"a中b", 2, 1}, {"😀x", 1, 1},
      {"\xe4\xb8", 2, 0},             // a cut character counts byte by byte
      {std::string("a\0b", 3), 3, 0},  // an embedded NUL is a character
      {"\xff\xfe中", 2, 1},
  };
  for (const auto& c : kCases) {
    int64_t nSingle = -1, nMulti = -1;
    CharStat(c.sText, nSingle, nMulti);
    EXPECT_EQ(nSingle, c.nSingle) << c.sText;
    EXPECT_EQ(nMulti, c.nMulti) << c.sText;
  }
}

TEST(TextTest, NormaliserRules) {
  struct { const char* szIn; const char* szWant; } kCases[] = {
      {"", ""},
      {"  前后  空白 ", "前后 空白"},
      {"ＡＢＣ１２３！", "ABC123!"},
      {"全角\u3000空格", "全角 空格"},
      {"tab\t\r\nline", "tab line"},
      {"不\u00a0断", "不 断"},
      {"（括号）保持", "(括号)保持"},  // full-width brackets are full-width ASCII forms too
      {"、。保持", "、。保持"},        // CJK punctuation is not
      {"\xff坏", "\xff坏"},
  };
  for (const auto& c : kCases) EXPECT_EQ(NormalizeText(c.szIn), c.szWant) << c.szIn;
}

TEST(TextTest, CompactTitlesIgnoreBlanks) {
  EXPECT_EQ(CompactTitle(" 目\u3000录 "), "目录");
  EXPECT_EQ(CompactTitle("参 考 文 献"), "参考文献");
  EXPECT_EQ(CompactTitle("Table of Contents"), "TableofContents");
}

// Quoted texts are valid JSON that reads back as the text; Chinese stays
// readable; a byte that is no UTF-8 becomes U+FFFD.
TEST(TextTest, JsonQuoteWritesValidJson) {
  struct { std::string sText, sWant, sReadBack; } kCases[] = {
      {"", "\"\"", ""},
      {"图 2-1", "\"图 2-1\"", "图 2-1"},
      {"a\"b\\c", "\"a\\\"b\\\\c\"", "a\"b\\c"},
      {"tab\tline\r\n", "\"tab\\tline\\r\\n\"", "tab\tline\r\n"},
      {std::string("nul\0\x01", 5), "\"nul\\u0000\\u0001\"", std::string("nul\0\x01", 5)},
      {"\xff坏\xe4\xb8", "\"\\uFFFD坏\\uFFFD\\uFFFD\"", "\uFFFD坏\uFFFD\uFFFD"},
      {"😀", "\"😀\"", "😀"},
  };
  for (const auto& c : kCases) {
    const std::string sQuoted = JsonQuote(c.sText);
    EXPECT_EQ(sQuoted, c.sWant);
    Json::Value value;
    Json::CharReaderBuilder builder;
    std::string sErrors;
    std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    ASSERT_TRUE(reader->parse(sQuoted.data(), sQuoted.data() + sQuoted.size(), &value, &sErrors)) << sQuoted;
    EXPECT_EQ(value.asString(), c.sReadBack) << sQuoted;
  }
}

TEST(TextTest, ChineseNumeralsBothWays) {
  struct { const char* szText; int64_t nValue; } kCases[] = {
      {"零", 0},           {"一", 1},           {"十", 10},            {"十二", 12},
      {"二十", 20},        {"一百", 100},       {"一百零五", 105},     {"一百一十", 110},
      {"一千零一", 1001},  {"一千零一十", 1010}, {"一万", 10000},       {"一万零一十", 10010},
      {"三万五千", 35000}, {"一亿", 100000000}, {"一亿零一", 100000001}, {"一亿二千万", 120000000},
      {"九千九百九十九亿九千九百九十九万九千九百九十九", 999999999999LL},
      {"一万亿", 1000000000000LL},
  };
  for (const auto& c : kCases) {
    int64_t nValue = -1;
    EXPECT_TRUE(ChineseToNumber(c.szText, nValue)) << c.szText;
    EXPECT_EQ(nValue, c.nValue) << c.szText;
    EXPECT_EQ(NumberToChinese(c.nValue), c.szText) << c.nValue;
  }
}

TEST(TextTest, ChineseNumeralReadingVariants) {
  struct { const char* szText; bool bOk; int64_t nValue; } kCases[] = {
      {"二〇二三", true, 2023},   {"一九九八", true, 1998},    {"两千", true, 2000},
      {"壹佰贰拾叁", true, 123},  {"壹萬", true, 10000},       {"陆億", true, 600000000},
      {"3万", true, 30000},       {"十万亿", false, 0},        {"", false, 0},
      {"一二百", false, 0},       {"百", false, 0},            {"十a", false, 0},
      {"一二三四五六七八九〇一二三四", false, 0},
  };
  for (const auto& c : kCases) {
    int64_t nValue = -1;
    EXPECT_EQ(ChineseToNumber(c.szText, nValue), c.bOk) << c.szText;
    if (c.bOk) {
      EXPECT_EQ(nValue, c.nValue) << c.szText;
    }
  }
}

TEST(TextTest, FinancialNumerals) {
  struct { int64_t nValue; const char* szWant; } kCases[] = {
      {10, "壹拾"}, {15, "壹拾伍"}, {1005, "壹仟零伍"}, {23000, "贰万叁仟"}, {100000000, "壹亿"},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(NumberToChinese(c.nValue, true), c.szWant) << c.nValue;
    int64_t nBack = -1;
    EXPECT_TRUE(ChineseToNumber(c.szWant, nBack));
    EXPECT_EQ(nBack, c.nValue);
  }
  EXPECT_EQ(NumberToChinese(-1), "");
  EXPECT_EQ(NumberToChinese(1000000000001LL), "");
}

}  // namespace
