// The pattern language: what a pattern parses to and how it is written back.
#include <gtest/gtest.h>

#include "rules/KnowledgeParser.h"

namespace {

// A compact picture of a parsed pattern: per grid "s" when selected, the
// grid step, then per block its elements, "!" when negated, repeat and step.
std::string Describe(const _tKnowledgeOrg& k) {
  std::string s;
  for (size_t g = 0; g < k.vecGrids.size(); ++g) {
    const _tGridOrg& grid = k.vecGrids[g];
    s += "G" + std::string(grid.is_selected ? "s" : "") + std::to_string(k.vecSteps[g]) + "(";
    for (size_t b = 0; b < grid.vecBlocks.size(); ++b) {
      s += grid.vecBlocks[b].is_not ? "!<" : "<";
      for (size_t e = 0; e < grid.vecBlocks[b].vecElems.size(); ++e)
        s += (e ? "|" : "") + grid.vecBlocks[b].vecElems[e];
      s += ">" + std::to_string(grid.vecRepeats[b]) + "+" + std::to_string(grid.vecSteps[b]);
    }
    s += ")";
  }
  return s;
}

struct _tPatternCase {
  const char* szPattern;
  const char* szParsed;
  const char* szWritten;
};

TEST(KnowledgeParserTest, PatternsParseAndWriteBack) {
  const _tPatternCase kCases[] = {
      {"{[a;b]2+3[c]}s", "Gs1(<a|b>2+3<c>1+1)", "{[a;b]2+3[c]}s"},
      {"{[a]+3[b]}", "G1(<a>1+1<b>1+1)", "{[a][b]}"},  // a step needs a repeat count
      {"{[a]0[b]}+2{[c]}s+4", "G2(<a>0+1<b>1+1)Gs4(<c>1+1)", "{[a]0[b]}+2{[c]}s+4"},
      {"{x;y}", "G1(<x|y>1+1)", "{[x;y]}"},  // a grid without brackets is one block
      {"{[-(x;y)]}", "G1(!<x|y>1+1)", "{[-(x;y)]}"},
      {"{[x;]}", "G1(<x>1+1)", "{[x]}"},
      {"{[;x]}", "G1(<|x>1+1)", "{[;x]}"},
      {"{[a^}b;c^]d;e^;f;g^^h]}", "G1(<a}b|c]d|e;f|g^h>1+1)", "{[a^}b;c^]d;e^;f;g^^h]}"},
      {" { [ 报告 日期 ] }  junk {[/m]3}s", "G1(<报告 日期>1+1)Gs1(</m>3+1)", "{[报告 日期]}{[/m]3}s"},
      {"{[a]2+3}", "G1(<a>2+3)", "{[a]2+3}"},
      {"{[a][b}", "G1(<a>1+1<b>1+1)", "{[a][b]}"},  // an open block ends the grid
      {"{[a}", "G1(<a>1+-1)", "{[a]}"},
  };
  for (const auto& c : kCases) {
    _tKnowledgeOrg k;
    std::string sError;
    ASSERT_EQ(CKnowledgeParser::ParseKnowledge(c.szPattern, k, sError), 1) << c.szPattern << ": " << sError;
    EXPECT_EQ(Describe(k), c.szParsed) << c.szPattern;
    EXPECT_EQ(CKnowledgeParser::GetKnowledgeStr(k), c.szWritten) << c.szPattern;
    if (std::string(c.szParsed).find("+-1") != std::string::npos) continue;  // an open block has no written form
    _tKnowledgeOrg again;
    ASSERT_EQ(CKnowledgeParser::ParseKnowledge(c.szWritten, again, sError), 1);
    EXPECT_EQ(Describe(again), Describe(k)) << "written form of " << c.szPattern << " reads differently";
  }
}

TEST(KnowledgeParserTest, BrokenPatternsNameWhereTheyBreak) {
  const struct {
    const char* szPattern;
    const char* szError;
  } kCases[] = {
      {"[a]", "[处应该为区格的起始符合'{'"},
      {"报告{[a]}", "报处应该为区格的起始符合'{'"},
      {"", "处应该为区格的起始符合'{'"},
      {"{[a]}{[b]", "{[a]}{后面缺乏区格的结束符合'}'"},
      {"{[a^}]", "{后面缺乏区格的结束符合'}'"},
  };
  for (const auto& c : kCases) {
    _tKnowledgeOrg k;
    std::string sError;
    EXPECT_EQ(CKnowledgeParser::ParseKnowledge(c.szPattern, k, sError), -1) << c.szPattern;
    EXPECT_EQ(sError, c.szError);
  }
}

TEST(KnowledgeParserTest, NormalisingKeepsOneBlankBetweenWords) {
  EXPECT_EQ(CKnowledgeParser::Normalise(" {[New \t York]} \n{[x]}+ 3"), "{[New York]}{[x]}+3");
  EXPECT_EQ(CKnowledgeParser::UnitStandard("a^^b^]c^x"), "a^b]c^x");
}

TEST(KnowledgeParserTest, JsonFormHasEveryPart) {
  std::string sError;
  Json::Value json = CKnowledgeParser::ZYGStr2Json("{[a;b]2+3[-(c)]}s+2", sError);
  ASSERT_TRUE(json.isObject()) << sError;
  EXPECT_EQ(json["text"].asString(), "{[a;b]2+3[-(c)]}s+2");
  EXPECT_EQ(json["steps"][0].asInt(), 2);
  const Json::Value& grid = json["grids"][0];
  EXPECT_EQ(grid["is_selected"].asInt(), 1);
  EXPECT_EQ(grid["repeats"][0].asInt(), 2);
  EXPECT_EQ(grid["steps"][0].asInt(), 3);
  EXPECT_EQ(grid["blocks"][0]["elems"][1].asString(), "b");
  EXPECT_EQ(grid["blocks"][1]["is_not"].asInt(), 1);
  EXPECT_TRUE(CKnowledgeParser::ZYGStr2Json("x", sError).isNull());
}

TEST(KnowledgeParserTest, HostilePatternsStayBounded) {
  std::string sDeep(100000, '{');
  _tKnowledgeOrg k;
  std::string sError;
  EXPECT_EQ(CKnowledgeParser::ParseKnowledge(sDeep, k, sError), -1);
  std::string sMany;
  for (int i = 0; i < 20000; ++i) sMany += "{[a]}";
  EXPECT_EQ(CKnowledgeParser::ParseKnowledge(sMany, k, sError), 1);
  EXPECT_EQ(k.vecGrids.size(), 20000u);
  EXPECT_EQ(CKnowledgeParser::ParseKnowledge(std::string("{[a\0b]}", 7) + "^", k, sError), 1);
}

}  // namespace
