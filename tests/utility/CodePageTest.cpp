// Conversions between UTF-8 and other code sets.
#include <gtest/gtest.h>

#include <string>

#include "utility/CodePage.h"

namespace {

TEST(CodePageTest, ConvertsGbkBothWaysAndRefusesBrokenInput) {
  struct { const char* szUtf8; const char* szGbk; } kCases[] = {
      {"中文", "\xD6\xD0\xCE\xC4"},
      {"abc", "abc"},
      {"", ""},
  };
  for (const auto& c : kCases) {
    std::string sGbk, sBack;
    ASSERT_TRUE(ConvertCodeSet(c.szUtf8, "UTF-8", "GBK", sGbk)) << c.szUtf8;
    EXPECT_EQ(sGbk, c.szGbk);
    ASSERT_TRUE(ConvertCodeSet(sGbk, "GBK", "UTF-8", sBack));
    EXPECT_EQ(sBack, c.szUtf8);
  }
  std::string sOut;
  EXPECT_FALSE(ConvertCodeSet("\xFF\xFE broken", "UTF-8", "GBK", sOut));
  EXPECT_EQ(sOut, "\xFF\xFE broken");  // left as it came
  EXPECT_FALSE(ConvertCodeSet("x", "NO-SUCH-CODESET", "UTF-8", sOut));
}

TEST(CodePageTest, NamesPassUnchangedUnderAUtf8OrCLocale) {
  const std::string& sCodeSet = GetLocalCodeSet();
  if (sCodeSet != "UTF-8" && sCodeSet != "ANSI_X3.4-1968")
    GTEST_SKIP() << "locale code set " << sCodeSet;
  EXPECT_EQ(GetAnsiFilename("报告 (1).docx"), "报告 (1).docx");
  EXPECT_EQ(ANSIToUTF8(UTF8ToANSI("正文")), "正文");
  EXPECT_EQ(GetAnsiFilename(nullptr), "");
}

}  // namespace
