// The rule engine's scanning instances: their own handle table.
#include <gtest/gtest.h>

#include <string>

#include "TestDataDir.h"
#include "tarvos.h"

namespace {

TEST(ScanApiTest, NewInstanceBeforeInitFails) {
  EXPECT_EQ(ZYG_NewInstance(1), -1);
  EXPECT_STREQ(ZYG_GetLastErrorMsg(), "Not Init, no operation!");
}

TEST(ScanApiTest, InitFailsOnAMissingDirectoryNamingIt) {
  CTempDir dir;
  std::string sMissing = dir.Path() + "/absent";
  EXPECT_EQ(ZYG_Init(sMissing.c_str()), -1);
  EXPECT_EQ(std::string(ZYG_GetLastErrorMsg()), "Error Init MORVEL from " + sMissing);
}

TEST(ScanApiTest, HandlesAreNeverReusedAndDeletedOnesStayInvalid) {
  CTestDataDir data;
  ASSERT_EQ(ZYG_Init(data.Root().c_str()), 1);
  EXPECT_EQ(ZYG_NewInstance(3), 1);  // 0 was opened by ZYG_Init
  EXPECT_EQ(ZYG_DeleteInstance(1), 1);
  EXPECT_EQ(ZYG_NewInstance(3), 2);
  EXPECT_EQ(ZYG_ImportRule("rules.xml", false, 1), 0);
  EXPECT_STREQ(ZYG_GetLastErrorMsg(), "GetZYGWorker  argument(handle 1) is invalid!");
  EXPECT_EQ(ZYG_DeleteInstance(7), 0);
  EXPECT_STREQ(ZYG_GetLastErrorMsg(), "DC_DeleteInstance  argument(handle 7) is invalid!");
  EXPECT_NE(std::string(ZYG_ScanText("正文", 0, 2)).find("<ZYG_Results>\r\n</ZYG_Results>"), std::string::npos);
  ZYG_Exit();
  EXPECT_STREQ(ZYG_ScanText("正文", 0, 0), "");
  EXPECT_STREQ(ZYG_GetLastErrorMsg(), "GetZYGWorker  argument(handle 0) is invalid!");
}

}  // namespace
