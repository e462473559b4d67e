#include "keyscan/KeyScanData.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "TestDataDir.h"
#include "keyscan/KeyScanner.h"
#include "utility/ErrorLog.h"

namespace {

std::string WriteFile(const CTempDir& dir, const std::string& sName, const std::string& sText) {
  std::string sPath = dir.Path() + "/" + sName;
  FILE* fp = fopen(sPath.c_str(), "wb");
  fwrite(sText.data(), 1, sText.size(), fp);
  fclose(fp);
  return sPath;
}

// The export of a list, without its header line.
std::string Exported(const CKeyScanData& data, const CTempDir& dir) {
  std::string sPath = dir.Path() + "/export.txt";
  EXPECT_GE(data.ExportKeyDict(sPath.c_str()), 0);
  std::string sText = ReadWholeFile(sPath);
  EXPECT_EQ(sText.compare(0, 18, "Word\tClass\tWeight\n"), 0);
  return sText.substr(18);
}

struct ImportCase {
  const char* szName;
  const char* szLines;
  int nImported;
  const char* szExport;  // the list afterwards, as exported
};

const ImportCase kImportCases[] = {
    {"a keyword alone gets class filter and weight 1", "数据中心\n", 1, "数据中心\tfilter\t1\n"},
    {"four fields", "数据中心 place 7 0\n", 1, "数据中心\tplace\t7\n"},
    {"a blank inside brackets stops the numbers", "[data center] place 3 0\n", 1, "data center\tplace\t1\n"},
    {"brackets without a blank keep the numbers", "[datacenter] place 3 0\n", 1, "datacenter\tplace\t3\n"},
    {"one Chinese character is too short", "中\n中国 x\n", 1, "中国\tx\t1\n"},
    {"one byte is too short, two are not", "a\nab\n", 1, "ab\tfilter\t1\n"},
    {"a byte-order mark and CR line ends are skipped", "\xEF\xBB\xBF数据 c\r\n", 1, "数据\tc\t1\n"},
    {"empty lines and blank first fields are skipped", "\n   \n数据\n", 1, "数据\tfilter\t1\n"},
    {"full-width letters are normalised", "ＡＢＣ\n", 1, "ABC\tfilter\t1\n"},
    {"invalid UTF-8 is refused", "\xC3\x28x y\n数据\n", 1, "数据\tfilter\t1\n"},
    {"a keyword imported twice takes its last class", "数据 a\n数据 b 2\n", 2, "数据\tb\t2\n"},
    {"expressions and pairs are listed after keywords", "合同&违约 law\n按装-->安装 errorword\n数据\n", 3,
     "数据\tfilter\t1\n合同&违约\tlaw\t1\n按装-->安装\terrorword\t1\n"},
    {"a malformed expression is refused", "合同&&违约\n!合同&!违约\n合同~x~违约\n中-->钟\n", 0, ""},
};

TEST(KeyScanDataTest, ImportReadsEachLineAsDocumented) {
  for (const ImportCase& c : kImportCases) {
    CTempDir dir;
    CKeyScanData data(dir.Path().c_str(), 0);
    std::string sFile = WriteFile(dir, "user.txt", c.szLines);
    EXPECT_EQ(data.ImportUserDict(sFile.c_str(), false, true), c.nImported) << c.szName;
    EXPECT_EQ(Exported(data, dir), c.szExport) << c.szName;
  }
}

TEST(KeyScanDataTest, OverwriteDecidesWhetherEarlierEntriesStay) {
  CTempDir dir;
  CKeyScanData data(dir.Path().c_str(), 0);
  std::string sFirst = WriteFile(dir, "a.txt", "数据中心 a\n按装-->安装\n");
  std::string sSecond = WriteFile(dir, "b.txt", "服务器 b\n");
  ASSERT_EQ(data.ImportUserDict(sFirst.c_str(), false, true), 2);
  ASSERT_EQ(data.ImportUserDict(sSecond.c_str(), false, false), 1);
  EXPECT_EQ(Exported(data, dir), "数据中心\ta\t1\n服务器\tb\t1\n按装-->安装\tfilter\t1\n");
  ASSERT_EQ(data.ImportUserDict(sSecond.c_str(), false, true), 1);
  EXPECT_EQ(Exported(data, dir), "服务器\tb\t1\n");
}

TEST(KeyScanDataTest, A256thClassFailsAndLeavesTheSavedListWhole) {
  CTempDir dir;
  CKeyScanData data(dir.Path().c_str(), 0);
  std::string sLines;
  for (int i = 0; i < 255; ++i) sLines += "kw" + std::to_string(i) + " c" + std::to_string(i) + "\n";
  ASSERT_EQ(data.ImportUserDict(WriteFile(dir, "255.txt", sLines).c_str(), false, true), 255);
  std::string sMore = WriteFile(dir, "more.txt", "extra c255\n");
  EXPECT_EQ(data.ImportUserDict(sMore.c_str(), false, false), 0);
  EXPECT_EQ(GetLastError(), "Class count cannot over 255");
  CKeyScanData reloaded(dir.Path().c_str(), 0);
  ASSERT_TRUE(reloaded.Load(0));
  EXPECT_EQ(reloaded.GetKeywordCount(), 255u);
}

TEST(KeyScanDataTest, ASavedListLoadsAndAnswersTheSame) {
  CTempDir dir;
  CKeyScanData data(dir.Path().c_str(), 3);
  std::string sFile =
      WriteFile(dir, "user.txt", "中国 country 5 1\n按装-->安装 e\n合同&违约~3~责任 law\n既使用 protect\n既使-->即使\n");
  ASSERT_EQ(data.ImportUserDict(sFile.c_str(), true, true), 5);
  CKeyScanData loaded(dir.Path().c_str(), 0);
  ASSERT_TRUE(loaded.Load(3));
  const std::string sText = "ZhongGuo 中国，按装好合同中的违约责任；既使用了";
  std::vector<_tKeyHit> vecBuilt, vecLoaded;
  data.Scan(sText, vecBuilt);
  loaded.Scan(sText, vecLoaded);
  ASSERT_EQ(vecBuilt.size(), 4u) << "pinyin, keyword, correction, expression; the protected pair is hidden";
  ASSERT_EQ(vecLoaded.size(), vecBuilt.size());
  for (size_t i = 0; i < vecBuilt.size(); ++i) {
    EXPECT_EQ(vecLoaded[i].offset, vecBuilt[i].offset);
    EXPECT_STREQ(vecLoaded[i].sWord, vecBuilt[i].sWord);
    EXPECT_STREQ(vecLoaded[i].sCorrection, vecBuilt[i].sCorrection);
  }
  EXPECT_EQ(vecBuilt[0].eKind, _tKeyHit::kPinyin);
  EXPECT_STREQ(vecBuilt[0].sWord, "中国");
}

TEST(KeyScanDataTest, LoadNamesTheMissingFile) {
  CTempDir dir;
  CKeyScanData data(dir.Path().c_str(), 0);
  ASSERT_EQ(data.ImportUserDict(WriteFile(dir, "u.txt", "数据\n").c_str(), false, true), 1);
  remove((dir.Path() + "/KeyScanner/Filter0_key.pos").c_str());
  EXPECT_FALSE(data.Load(0));
  EXPECT_FALSE(data.IsLoaded());
  EXPECT_EQ(GetLastError(), "Cannot open key dictionary pos file " + dir.Path() + "/KeyScanner/Filter0_key.pos");
  EXPECT_FALSE(data.Load(1));
  EXPECT_EQ(GetLastError(), "Cannot open key dictionary file " + dir.Path() + "/KeyScanner/Filter1_key.pdat");
}

TEST(KeyScanDataTest, DeleteRemovesNamedEntriesOnly) {
  CTempDir dir;
  CKeyScanData data(dir.Path().c_str(), 0);
  ASSERT_EQ(data.ImportUserDict(WriteFile(dir, "u.txt", "数据 a\n服务器 b\n按装-->安装\n").c_str(), false, true), 3);
  EXPECT_EQ(data.DeleteUserDict(WriteFile(dir, "d.txt", "数据\n按装-->安装\n不存在\n").c_str()), 2);
  EXPECT_EQ(Exported(data, dir), "服务器\tb\t1\n");
  EXPECT_EQ(data.DeleteUserDict((dir.Path() + "/none.txt").c_str()), -1);
}

TEST(KeyScanDataTest, MissingFileImportsNothing) {
  CTempDir dir;
  CKeyScanData data(dir.Path().c_str(), 0);
  EXPECT_EQ(data.ImportUserDict((dir.Path() + "/none.txt").c_str(), false, true), 0);
  EXPECT_EQ(GetLastError(), "Failed Open file " + dir.Path() + "/none.txt");
}

// Mode 3 is what the error-word check reads; the others are documented
// alongside it.
TEST(KeyScannerTest, ModesFormatTheHits) {
  CTempDir dir;
  CKeyScanner scanner;
  ASSERT_EQ(scanner.Init(dir.Path().c_str(), 1), 1) << "an empty data directory has no lists";
  EXPECT_EQ(scanner.ScanDetail("按装", 3, 0), "");
  std::string sFile = WriteFile(dir, "u.txt", "按装-->安装\n既使-->即使\n数据 db 2\n");
  ASSERT_EQ(scanner.ImportUserDict(sFile.c_str(), false, true, 7), 3);
  const std::string sText = "按装数据既使按装";
  EXPECT_EQ(scanner.ScanDetail(sText, 3, 7), "(Check 3)安装-->按装##即使-->既使##安装-->按装$");
  EXPECT_EQ(scanner.ScanDetail(sText, 0, 7), "数据/db");
  EXPECT_EQ(scanner.ScanDetail(sText, 1, 7).substr(0, 32), "0\t6\tcorrection\t按装\t\t0\t安装\n");
  EXPECT_NE(scanner.ScanDetail(sText, 2, 7).find("\"kind\" : \"keyword\""), std::string::npos);
  EXPECT_EQ(scanner.ScanDetail(sText, 3, 0), "") << "another handle";
  EXPECT_EQ(scanner.ScanDetail(sText, 9, 7), "") << "an unknown mode";

  CKeyScanner restarted;
  ASSERT_EQ(restarted.Init(dir.Path().c_str(), 1), 1);
  EXPECT_EQ(restarted.GetHandles(), std::vector<int>{7});
  EXPECT_EQ(restarted.ScanDetail(sText, 3, 7), scanner.ScanDetail(sText, 3, 7));
  EXPECT_EQ(scanner.ImportUserDict(sFile.c_str(), false, true, CKeyScanner::kMaxHandle + 1), 0);
}

// Scans running while a list is replaced see the old list or the new one,
// never a mixture (run under ThreadSanitizer too).
TEST(KeyScannerTest, ScansDuringAnImportSeeAWholeList) {
  CTempDir dir;
  CKeyScanner scanner;
  ASSERT_EQ(scanner.Init(dir.Path().c_str(), 1), 1);
  std::string sOld = WriteFile(dir, "old.txt", "按装-->安装\n既使-->即使\n");
  std::string sNew = WriteFile(dir, "new.txt", "一股作气-->一鼓作气\n再接再励-->再接再厉\n");
  ASSERT_EQ(scanner.ImportUserDict(sOld.c_str(), false, true, 0), 2);
  const std::string sText = "按装既使，一股作气再接再励";
  const std::string sOldHits = "(Check 2)安装-->按装##即使-->既使$";
  const std::string sNewHits = "(Check 2)一鼓作气-->一股作气##再接再厉-->再接再励$";
  std::atomic<bool> bStop{false};
  std::atomic<int> nMixed{0};
  std::vector<std::thread> vecThreads;
  for (int i = 0; i < 3; ++i)
    vecThreads.emplace_back([&] {
      while (!bStop) {
        std::string sFound = scanner.ScanDetail(sText, 3, 0);
        if (sFound != sOldHits && sFound != sNewHits) ++nMixed;
      }
    });
  for (int i = 0; i < 6; ++i) EXPECT_EQ(scanner.ImportUserDict(i % 2 ? sOld.c_str() : sNew.c_str(), false, true, 0), 2);
  bStop = true;
  for (std::thread& t : vecThreads) t.join();
  EXPECT_EQ(nMixed, 0);
}

}  // namespace
