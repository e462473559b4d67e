// The rule manager's list of document types in "ZYG_Manager.dat".
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "TestDataDir.h"
#include "rules/ZYGManager.h"
#include "utility/ErrorLog.h"

namespace {

TEST(ZYGManagerTest, TypesSeenFirstAreCreatedAndRemembered) {
  CTempDir dir;
  std::filesystem::create_directory(dir.Path() + "/Data");
  {
    CZYGManager manager(dir.Path().c_str());
    EXPECT_EQ(manager.Load(), -1);
    EXPECT_EQ(GetLastError(), "Failed reading file " + dir.Path() + "/Data/ZYG_Manager.dat");
    EXPECT_EQ(manager.GetProcesser(7), nullptr);
    EXPECT_EQ(GetLastError(), "Report Type=7 Processor not exists.");
    manager.GetZYGRuleListId(7);  // asking about a type creates its processor
    manager.DelAuditRule(0, -2);
    EXPECT_NE(manager.GetProcesser(7), nullptr);
  }
  CZYGManager reloaded(dir.Path().c_str());
  ASSERT_EQ(reloaded.Load(), 1);
  ASSERT_EQ(reloaded.GetProcessers().size(), 2u);
  EXPECT_NE(reloaded.GetProcesser(-2), nullptr);
  EXPECT_NE(reloaded.GetProcesser(7), nullptr);
}

TEST(ZYGManagerTest, DamagedFilesAreRefused) {
  CTempDir dir;
  std::filesystem::create_directory(dir.Path() + "/Data");
  const std::string sFile = dir.Path() + "/Data/ZYG_Manager.dat";
  const std::string kCases[] = {
      std::string("\x02\0\0\0\0\0\0\0\x01\0\0\0", 12),  // two types announced, one present
      std::string("\x01\0\0", 3),                       // count cut short
      std::string(8, '\xff'),                           // absurd count
  };
  for (const std::string& sContent : kCases) {
    std::ofstream(sFile, std::ios::binary) << sContent;
    CZYGManager manager(dir.Path().c_str());
    EXPECT_EQ(manager.Load(), -1);
  }
}

}  // namespace
