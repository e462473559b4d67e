// The last-error text and the dated error log.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <regex>
#include <string>

#include "TestDataDir.h"
#include "utility/ErrorLog.h"

namespace {

TEST(ErrorLogTest, ErrorsReplaceTheTextAndAppendStampedLines) {
  CTempDir dir;
  setenv("TARVOS_LOG_DIR", dir.Path().c_str(), 1);
  SetLastError("first");
  SetLastError("second");
  WriteLog("progress 1/2");
  unsetenv("TARVOS_LOG_DIR");
  EXPECT_EQ(GetLastError(), "second");

  std::string sErr = ReadTodaysLog(dir.Path());
  std::regex line(R"(\[\d{4}-\d{2}-\d{2} \d{2}:\d{2}:\d{2}\]\tfirst\n\[[^\]]+\]\tsecond\n)");
  EXPECT_TRUE(std::regex_match(sErr, line)) << sErr;
  std::string sLog = ReadTodaysLog(dir.Path(), ".log");
  EXPECT_NE(sLog.find("]\tprogress 1/2\n"), std::string::npos);
}

TEST(ErrorLogTest, NothingIsWrittenWhenLoggingIsOff) {
  CTempDir dir;
  unsetenv("TARVOS_LOG_DIR");
  std::string sBefore = ReadTodaysLog(dir.Path());
  SetLastError("quiet");
  EXPECT_EQ(GetLastError(), "quiet");
  EXPECT_EQ(ReadTodaysLog(dir.Path()), sBefore);
  ClearLastError();
  EXPECT_EQ(GetLastError(), "");
}

}  // namespace
