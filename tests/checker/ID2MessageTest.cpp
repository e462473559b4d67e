// The error-message catalogue: text import, the enciphered catalogue file and
// its refusal of damaged files, look-ups.
#include <gtest/gtest.h>
#include <json/json.h>

#include <fstream>
#include <string>

#include "TestDataDir.h"
#include "checker/ID2Message.h"
#include "utility/ErrorLog.h"

namespace {

class ID2MessageTest : public ::testing::Test {
 protected:
  std::string Write(const std::string& sName, const std::string& sContent) {
    std::string sPath = m_dir.Path() + "/" + sName;
    std::ofstream(sPath, std::ios::binary) << sContent;
    return sPath;
  }
  CTempDir m_dir;
};

TEST_F(ID2MessageTest, ImportSkipsTheHeaderAndDefaultsMissingScoresToZero) {
  CID2Message catalogue;
  ASSERT_EQ(catalogue.Import(Write("a.txt", "ID Msg Each Max\n1.1 old 1 1\n").c_str()), 1);
  ASSERT_EQ(catalogue.Import(Write("b.txt", "header\n9.9 text 1.5 6\n9.8\tother\r\n\n   \n").c_str()), 2);
  // Messages are replaced whole, scores of omitted ids survive.
  EXPECT_EQ(catalogue.GetMessages().count("1.1"), 0u);
  EXPECT_EQ(catalogue.GetScores().count("1.1"), 1u);
  EXPECT_STREQ(catalogue.GetText("9.9"), "text");
  EXPECT_STREQ(catalogue.GetText("9.8"), "other");
  float fMax = -1;
  EXPECT_FLOAT_EQ(catalogue.GetScore("9.9", fMax), 1.5f);
  EXPECT_FLOAT_EQ(fMax, 6.0f);
  EXPECT_FLOAT_EQ(catalogue.GetScore("9.8", fMax), 0.0f);
  EXPECT_FLOAT_EQ(fMax, 0.0f);
}

TEST_F(ID2MessageTest, ImportReadsNumbersLikeScanfFields) {
  CID2Message catalogue;
  ASSERT_EQ(catalogue.Import(Write("c.txt", "h\n1 a x 5\n2 b 3 y\n3 c 2.5 7.25 extra\n").c_str()), 3);
  struct { const char* szId; float fEach, fMax; } kWant[] = {
      {"1", 0, 0},      // a non-number stops the reading: no maximum either
      {"2", 3, 0},
      {"3", 2.5f, 7.25f},
  };
  for (const auto& w : kWant) {
    float fMax = -1;
    EXPECT_FLOAT_EQ(catalogue.GetScore(w.szId, fMax), w.fEach) << w.szId;
    EXPECT_FLOAT_EQ(fMax, w.fMax) << w.szId;
  }
}

TEST_F(ID2MessageTest, MissingFilesAreNamedInTheLastError) {
  CID2Message catalogue;
  std::string sMissing = m_dir.Path() + "/none.txt";
  EXPECT_EQ(catalogue.Import(sMissing.c_str()), -1);
  EXPECT_EQ(GetLastError(), "Fail read file " + sMissing);
  EXPECT_EQ(catalogue.Load(sMissing.c_str()), -1);
  EXPECT_EQ(GetLastError(), "Fail read file " + sMissing);
  EXPECT_EQ(catalogue.Save((m_dir.Path() + "/no/dir/x.dat").c_str()), -1);
  EXPECT_EQ(GetLastError(), "Fail write file " + m_dir.Path() + "/no/dir/x.dat");
}

TEST_F(ID2MessageTest, SaveAndLoadKeepEveryEntryInByteOrder) {
  CID2Message original;
  ASSERT_EQ(original.Import(Write("l.txt", "h\n1.2 二 1 2\n1.10 十 0.5 3\n99.6 图缺少题注 1 10\n").c_str()), 3);
  std::string sFile = m_dir.Path() + "/ErrorMessage.dat";
  ASSERT_EQ(original.Save(sFile.c_str()), 3);

  CID2Message loaded;
  ASSERT_EQ(loaded.Load(sFile.c_str()), 1);
  EXPECT_EQ(loaded.GetMessages(), original.GetMessages());
  ASSERT_EQ(loaded.GetScores().size(), original.GetScores().size());
  std::string sOrder;
  for (const auto& kv : loaded.GetMessages()) sOrder += kv.first + ";";
  EXPECT_EQ(sOrder, "1.10;1.2;99.6;");  // byte order of the ids
  float fMax = 0;
  EXPECT_FLOAT_EQ(loaded.GetScore("1.10", fMax), 0.5f);
  EXPECT_FLOAT_EQ(fMax, 3.0f);

  // Ids and messages are stored enciphered, scores are not.
  std::string sRaw = ReadWholeFile(sFile);
  EXPECT_EQ(sRaw.find("图缺少题注"), std::string::npos);
  EXPECT_EQ(sRaw.find("99.6"), std::string::npos);
}

TEST_F(ID2MessageTest, LoadRefusesEveryTruncationAndTrailingBytes) {
  CID2Message original;
  ASSERT_EQ(original.Import(Write("l.txt", "h\n1.1 字体 0.5 10\n12.1 缺少 2 20\n").c_str()), 2);
  std::string sFile = m_dir.Path() + "/whole.dat";
  ASSERT_EQ(original.Save(sFile.c_str()), 2);
  std::string sWhole = ReadWholeFile(sFile);

  for (size_t nLength = 0; nLength < sWhole.size(); ++nLength) {
    std::string sCut = Write("cut.dat", sWhole.substr(0, nLength));
    CID2Message catalogue;
    EXPECT_EQ(catalogue.Load(sCut.c_str()), -2) << "length " << nLength;
    EXPECT_NE(GetLastError().find(sCut), std::string::npos);
    EXPECT_TRUE(catalogue.GetMessages().empty()) << "a refused file adds nothing";
  }
  CID2Message catalogue;
  EXPECT_EQ(catalogue.Load(Write("long.dat", sWhole + "x").c_str()), -2);
  EXPECT_EQ(catalogue.Load(Write("text.dat", "ID Message\n1.1 text 1 1\n").c_str()), -2);
}

TEST_F(ID2MessageTest, LoadAddsToWhatTheCatalogueHolds) {
  CID2Message first, second;
  first.Import(Write("1.txt", "h\n1.1 a 1 1\n").c_str());
  second.Import(Write("2.txt", "h\n2.2 b 1 1\n").c_str());
  first.Save((m_dir.Path() + "/1.dat").c_str());
  second.Save((m_dir.Path() + "/2.dat").c_str());
  CID2Message merged;
  ASSERT_EQ(merged.Load((m_dir.Path() + "/1.dat").c_str()), 1);
  ASSERT_EQ(merged.Load((m_dir.Path() + "/2.dat").c_str()), 1);
  EXPECT_EQ(merged.GetMessages().size(), 2u);
}

TEST_F(ID2MessageTest, UnknownIdsAnswerWithTheErrorText) {
  CID2Message catalogue;
  EXPECT_STREQ(catalogue.GetText("7.7"), "Wrong text id 7.7");
  EXPECT_EQ(GetLastError(), "Wrong text id 7.7");
  float fMax = 5;
  EXPECT_EQ(catalogue.GetScore("7.7", fMax), 0.0f);
  EXPECT_EQ(fMax, 0.0f);
}

TEST_F(ID2MessageTest, ExportIsReadBackByImportAndJsonListsEveryId) {
  CID2Message original;
  original.Import(Write("l.txt", "h\n1.1 字体 0.5 10\n1.6 目录 2 2\n").c_str());
  std::string sText = m_dir.Path() + "/export.txt";
  ASSERT_EQ(original.Export(sText.c_str()), 2);
  CID2Message again;
  ASSERT_EQ(again.Import(sText.c_str()), 2);
  EXPECT_EQ(again.GetMessages(), original.GetMessages());
  float fMax = 0;
  EXPECT_FLOAT_EQ(again.GetScore("1.1", fMax), 0.5f);
  EXPECT_FLOAT_EQ(fMax, 10.0f);

  Json::Value root;
  Json::CharReaderBuilder builder;
  std::string sJson = original.Export2Json(), sErrors;
  std::unique_ptr<Json::CharReader> pReader(builder.newCharReader());
  ASSERT_TRUE(pReader->parse(sJson.data(), sJson.data() + sJson.size(), &root, &sErrors)) << sErrors;
  EXPECT_EQ(root["ErrorCount"].asInt(), 2);
  ASSERT_EQ(root["Errors"].size(), 2u);
  EXPECT_EQ(root["Errors"][0]["id"].asString(), "1.1");
  EXPECT_EQ(root["Errors"][0]["message"].asString(), "字体");
  EXPECT_DOUBLE_EQ(root["Errors"][1]["each_score"].asDouble(), 2.0);
}

TEST_F(ID2MessageTest, ShippedListGivesEveryCheckIdAMessageAndScore) {
  CID2Message shipped;
  ASSERT_EQ(shipped.Load((std::string(TARVOS_TEST_DATA_DIR) + "/Data/Error/ErrorMessage.dat").c_str()), 1);
  const char* kIds[] = {"1.1.1", "1.1.2", "1.1.3", "1.1.4", "1.2.4", "1.3.1", "1.3.3", "1.3.5", "1.3.6",
                        "1.3.7", "1.3.8", "1.3.9", "1.3.10", "1.3.11", "1.3.12", "1.3.13", "1.3.14",
                        "1.3.15", "1.5.1", "1.5.2", "1.5.3", "1.5.4", "1.5.5", "1.6", "2.1", "2.2",
                        "2.6", "2.8", "2.9", "2.10", "2.11", "2.12", "3.1", "11.1", "12.1", "14.1",
                        "14.2", "14.3", "14.4", "14.5", "14.6", "14.7", "14.8", "14.9", "99.1",
                        "99.2", "99.3", "99.4", "99.5", "99.6", "99.7", "100.1", "100.2"};
  for (const char* szId : kIds) {
    ASSERT_EQ(shipped.GetMessages().count(szId), 1u) << szId;
    EXPECT_FALSE(shipped.GetMessages().at(szId).empty()) << szId;
    float fMax = 0;
    float fEach = shipped.GetScore(szId, fMax);
    EXPECT_GE(fMax, fEach) << szId << ": the cap is at least one deduction";
  }
}

}  // namespace
