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

namespace {

TEST(CodePageLenientTest, InvalidBytesPassThroughAndConversionGoesOn) {
  struct { std::string sIn; std::string sWant; } kCases[] = {
      {"\xD6\xD0\xCE\xC4", "中文"},
      {"\xD6\xD0\xFF\xCE\xC4", "中\xFF文"},  // 0xFF is no GB18030 lead byte
      {"abc\xD6", "abc\xD6"},                 // a cut character at the end
      {"", ""},
      {std::string(10000, 'a') + "\xD6\xD0", std::string(10000, 'a') + "中"},  // longer than one buffer
  };
  for (const auto& c : kCases) EXPECT_EQ(GBKToUTF8(c.sIn), c.sWant);
  EXPECT_EQ(UTF8ToGBK("中\xFF文"), "\xD6\xD0\xFF\xCE\xC4");
  EXPECT_EQ(UTF8ToGBK(GBKToUTF8("\x81\x30\x81\x30")), "\x81\x30\x81\x30");  // four-byte GB18030
  EXPECT_EQ(ConvertLenient("x", "NO-SUCH-CODESET", "UTF-8"), "x");
}

}  // namespace
