// The last-error text and the dated error log.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <regex>
#include <string>

#include "TestDataDir.h"
#include "utility/ErrorLog.h"

namespace {

std::string Today(const char* szFormat) {
  char sDate[32];
  time_t tNow = time(nullptr);
  struct tm tmNow;
  localtime_r(&tNow, &tmNow);
  strftime(sDate, sizeof(sDate), szFormat, &tmNow);
  return sDate;
}

TEST(ErrorLogTest, ErrorsReplaceTheTextAndAppendStampedLines) {
  CTempDir dir;
  setenv("TARVOS_LOG_DIR", dir.Path().c_str(), 1);
  SetLastError("first");
  SetLastError("second");
  WriteLog("progress 1/2");
  unsetenv("TARVOS_LOG_DIR");
  EXPECT_EQ(GetLastError(), "second");

  std::string sErr = ReadWholeFile(dir.Path() + "/" + Today("%Y%m%d") + ".err");
  std::regex line(R"(\[\d{4}-\d{2}-\d{2} \d{2}:\d{2}:\d{2}\]\tfirst\n\[[^\]]+\]\tsecond\n)");
  EXPECT_TRUE(std::regex_match(sErr, line)) << sErr;
  std::string sLog = ReadWholeFile(dir.Path() + "/" + Today("%Y%m%d") + ".log");
  EXPECT_NE(sLog.find("]\tprogress 1/2\n"), std::string::npos);
}

TEST(ErrorLogTest, NothingIsWrittenWhenLoggingIsOff) {
  CTempDir dir;
  unsetenv("TARVOS_LOG_DIR");
  std::string sBefore = ReadWholeFile(dir.Path() + "/" + Today("%Y%m%d") + ".err");
  SetLastError("quiet");
  EXPECT_EQ(GetLastError(), "quiet");
  EXPECT_EQ(ReadWholeFile(dir.Path() + "/" + Today("%Y%m%d") + ".err"), sBefore);
  ClearLastError();
  EXPECT_EQ(GetLastError(), "");
}

}  // namespace
