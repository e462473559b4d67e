// Identity numbers and dates.
#include <gtest/gtest.h>

#include "utility/Validators.h"

namespace {

TEST(ValidatorsTest, IdentityNumbers) {
  struct { const char* szNumber; bool bValid; } kCases[] = {
      {"11010519491231002X", true},   // check character X
      {"11010519491231002x", true},   // lower-case x
      {"110105194912310021", false},  // wrong check digit
      {"440524188001010014", false},  // born before 1900, check character right
      {"110105194902300020", false},  // 30 February, check character right
      {"990105194912310028", false},  // unknown province 99
      {"11010519491231002", false},   // 17 characters
      {"1101051949123100XX", false},
      {"110105491231002", true},      // old 15-digit form, born 1949-12-31
      {"110105491331002", false},     // month 13
      {"99010549123100", false},
      {"", false},
      {"abcdefghijklmnopqr", false},
  };
  for (const auto& c : kCases) EXPECT_EQ(IsValidIdentityNumber(c.szNumber), c.bValid) << c.szNumber;
}

TEST(ValidatorsTest, IdentityNumberBornInTheFutureIsRefused) {
  // 2999-01-01 with a correct check character.
  EXPECT_FALSE(IsValidIdentityNumber("110105299901010014"));
}

TEST(ValidatorsTest, Dates) {
  struct { const char* szText; bool bValid; int y, m, d; } kCases[] = {
      {"2023年5月1日", true, 2023, 5, 1},       {"2023-05-01", true, 2023, 5, 1},
      {"2023/5/1", true, 2023, 5, 1},           {"2023.05.01", true, 2023, 5, 1},
      {"二〇二三年五月一日", true, 2023, 5, 1}, {"二〇二四年二月二十九日", true, 2024, 2, 29},
      {"2023年12月31号", true, 2023, 12, 31},   {" 2020-02-29 ", true, 2020, 2, 29},
      {"2000-02-29", true, 2000, 2, 29},        {"1900-02-29", false, 0, 0, 0},
      {"2023-02-29", false, 0, 0, 0},           {"2023-13-01", false, 0, 0, 0},
      {"2023-04-31", false, 0, 0, 0},           {"2023-00-10", false, 0, 0, 0},
      {"2023-05-01-", false, 0, 0, 0},          {"2023-05/01", false, 0, 0, 0},
      {"23-05-01", false, 0, 0, 0},             {"2023年5月", false, 0, 0, 0},
      {"二〇二三年十三月一日", false, 0, 0, 0}, {"", false, 0, 0, 0},
  };
  for (const auto& c : kCases) {
    int y = 0, m = 0, d = 0;
    EXPECT_EQ(ParseDate(c.szText, y, m, d), c.bValid) << c.szText;
    if (c.bValid) {
      EXPECT_EQ(y * 10000 + m * 100 + d, c.y * 10000 + c.m * 100 + c.d) << c.szText;
    }
  }
}

}  // namespace
