// The double-array dictionary: ids, look-ups, prefixes, the multi-pattern
// scan checked against a naive scan, and its file.
#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "TestDataDir.h"
#include "utility/ErrorLog.h"
#include "utility/PDAT.h"

namespace {

void Build(CPDAT& dict, const std::vector<std::string>& vecWords) {
  dict.BeginAdd();
  for (const auto& sWord : vecWords) dict.AddWord(sWord);
  dict.FinishAdd();
}

// Every occurrence of every word, found the slow way.
std::set<std::tuple<size_t, size_t, int>> NaiveScan(const std::vector<std::string>& vecWords,
                                                    const CPDAT& dict, const std::string& sText) {
  std::set<std::tuple<size_t, size_t, int>> setFound;
  for (const auto& sWord : vecWords)
    for (size_t nPos = sText.find(sWord); nPos != std::string::npos; nPos = sText.find(sWord, nPos + 1))
      setFound.emplace(nPos, sWord.size(), dict.GetId(sWord));
  return setFound;
}

std::set<std::tuple<size_t, size_t, int>> Scan(const CPDAT& dict, const std::string& sText) {
  std::vector<_tPatternMatch> vecMatch;
  dict.Scan(sText.data(), sText.size(), vecMatch);
  std::set<std::tuple<size_t, size_t, int>> setFound;
  for (const auto& m : vecMatch) setFound.emplace(m.offset, m.length, m.id);
  EXPECT_EQ(setFound.size(), vecMatch.size()) << "each occurrence is reported once";
  return setFound;
}

const std::vector<std::string> kWords = {"中", "中国", "中国人", "国人", "人民", "人民币", "a", "ab", "abc",
                                         "bc", "c", "\xff\x01", "图1", "第一章"};

TEST(PDATTest, IdsFollowTheOrderOfFirstAddition) {
  CPDAT dict;
  dict.BeginAdd();
  EXPECT_EQ(dict.AddWord("中国"), 0);
  EXPECT_EQ(dict.AddWord("中"), 1);
  EXPECT_EQ(dict.AddWord("中国"), 0);
  EXPECT_EQ(dict.AddWord(""), -1);
  EXPECT_EQ(dict.FinishAdd(), 2u);
  EXPECT_EQ(dict.AddWord("外"), -1) << "adding needs BeginAdd";
  struct { const char* szWord; int nId; } kCases[] = {{"中国", 0}, {"中", 1}, {"中国人", -1}, {"国", -1}, {"", -1}};
  for (const auto& c : kCases) EXPECT_EQ(dict.GetId(c.szWord), c.nId) << c.szWord;

  dict.BeginAdd();  // resuming keeps every id
  EXPECT_EQ(dict.AddWord("中"), 1);
  EXPECT_EQ(dict.AddWord("国"), 2);
  dict.FinishAdd();
  EXPECT_EQ(dict.GetId("中国"), 0);
  EXPECT_EQ(dict.GetId("国"), 2);
}

TEST(PDATTest, PrefixesAndLongestMatch) {
  CPDAT dict;
  Build(dict, kWords);
  struct { const char* szText; size_t nLongest; const char* szPrefixes; } kCases[] = {
      {"中国人民", 9, "中|中国|中国人|"},
      {"中华", 3, "中|"},
      {"abcd", 3, "a|ab|abc|"},
      {"xyz", 0, ""},
      {"", 0, ""},
  };
  for (const auto& c : kCases) {
    std::string sText = c.szText, sPrefixes;
    int nId = -2;
    EXPECT_EQ(dict.LongestMatch(sText.data(), sText.size(), nId), c.nLongest) << c.szText;
    EXPECT_EQ(nId, c.nLongest ? dict.GetId(sText.substr(0, c.nLongest)) : -1);
    dict.ForEachPrefix(sText.data(), sText.size(),
                       [&](size_t nLen, int) { sPrefixes += sText.substr(0, nLen) + "|"; });
    EXPECT_EQ(sPrefixes, c.szPrefixes);
  }
}

TEST(PDATTest, ScanFindsExactlyWhatANaiveScanFinds) {
  CPDAT dict;
  Build(dict, kWords);
  std::mt19937 rng(7);
  const std::vector<std::string> vecPieces = {"中", "国", "人", "民", "币", "a", "b", "c", "\xff", "\x01",
                                              "图", "1", "第", "一", "章", " "};
  for (int nRound = 0; nRound < 300; ++nRound) {
    std::string sText;
    for (int i = 0, n = (int)(rng() % 40); i < n; ++i) sText += vecPieces[rng() % vecPieces.size()];
    ASSERT_EQ(Scan(dict, sText), NaiveScan(kWords, dict, sText)) << sText;
  }
}

TEST(PDATTest, EmptyDictionaryFindsNothing) {
  CPDAT dict;
  std::vector<_tPatternMatch> vecMatch;
  dict.Scan("abc", 3, vecMatch);
  EXPECT_TRUE(vecMatch.empty());
  EXPECT_EQ(dict.GetId("a"), -1);
  Build(dict, {});
  EXPECT_EQ(dict.GetCount(), 0u);
  dict.Scan("abc", 3, vecMatch);
  EXPECT_TRUE(vecMatch.empty());
}

TEST(PDATTest, SavedDictionaryLoadsBackWithEveryWordAndId) {
  CTempDir dir;
  CPDAT dict;
  Build(dict, kWords);
  std::string sFile = dir.Path() + "/dict.pdat";
  ASSERT_TRUE(dict.Save(sFile));
  CPDAT loaded;
  ASSERT_TRUE(loaded.Load(sFile)) << GetLastError();
  EXPECT_EQ(loaded.GetCount(), kWords.size());
  for (const auto& sWord : kWords) EXPECT_EQ(loaded.GetId(sWord), dict.GetId(sWord)) << sWord;
  std::string sText = "中国人民币abc图1";
  EXPECT_EQ(Scan(loaded, sText), Scan(dict, sText));
  std::string sListed;
  loaded.ForEachWord([&](const std::string& sWord, int nId) {
    EXPECT_EQ(nId, dict.GetId(sWord));
    sListed += sWord + "|";
  });
  EXPECT_EQ(sListed, "中|中国|中国人|国人|人民|人民币|a|ab|abc|bc|c|\xff\x01|图1|第一章|");  // id order
}

TEST(PDATTest, LargeDictionaryKeepsEveryId) {
  CPDAT dict;
  std::vector<std::string> vecWords;
  for (int i = 0; i < 20000; ++i) vecWords.push_back("词" + std::to_string(i * 7919 % 100003));
  Build(dict, vecWords);
  for (size_t i = 0; i < vecWords.size(); i += 97) ASSERT_EQ(dict.GetId(vecWords[i]), (int)i);
  EXPECT_EQ(dict.GetId("词"), -1);
}

}  // namespace
