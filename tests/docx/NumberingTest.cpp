// Automatic numbering labels: numbering definitions read from numbering.xml
// texts built here, paragraphs counted in document order, the labels joined
// with "|" and compared with what a reader sees; number formats; hostile texts.
#include <gtest/gtest.h>

#include <chrono>
#include <climits>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "docx/Numbering.h"
#include "docx/NumberingCounter.h"

namespace {

using std::string;

string Lvl(int nIlvl, const string& sFmt, const string& sText, const string& sMore = "", int nStart = 1) {
  return "<w:lvl w:ilvl=\"" + std::to_string(nIlvl) + "\" w:tplc=\"04090019\"><w:start w:val=\"" +
         std::to_string(nStart) + "\"/><w:numFmt w:val=\"" +
         sFmt + "\"/>" + sMore + "<w:lvlText w:val=\"" + sText +
         "\"/><w:lvlJc w:val=\"left\"/><w:pPr><w:ind w:left=\"420\" w:hanging=\"420\"/></w:pPr></w:lvl>";
}
string Abstract(int nId, const string& sBody) {
  return "<w:abstractNum w:abstractNumId=\"" + std::to_string(nId) +
         "\"><w:multiLevelType w:val=\"multilevel\"/>" + sBody + "</w:abstractNum>";
}
string Num(int nId, int nAbstract, const string& sOverrides = "") {
  return "<w:num w:numId=\"" + std::to_string(nId) + "\"><w:abstractNumId w:val=\"" + std::to_string(nAbstract) +
         "\"/>" + sOverrides + "</w:num>";
}
string Override(int nIlvl, const string& sBody) {
  return "<w:lvlOverride w:ilvl=\"" + std::to_string(nIlvl) + "\">" + sBody + "</w:lvlOverride>";
}
string StartAt(int nValue) { return "<w:startOverride w:val=\"" + std::to_string(nValue) + "\"/>"; }
string Xml(const string& sBody) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n<w:numbering xmlns:w=\"http://"
         "schemas.openxmlformats.org/wordprocessingml/2006/main\">" + sBody + "</w:numbering>";
}

// Headings: 第1章 / 1.1 / 1.1.1, all decimal.
const string kLegal = Abstract(0, Lvl(0, "decimal", "第%1章") + Lvl(1, "decimal", "%1.%2") + Lvl(2, "decimal", "%1.%2.%3"));
const string kChapters = Abstract(0, Lvl(0, "chineseCounting", "第%1章") + Lvl(1, "decimal", "%1.%2", "<w:isLgl/>"));
const string kPlain = Abstract(0, Lvl(0, "decimal", "%1.") + Lvl(1, "decimal", "%1.%2"));

string Walk(const string& sXml, const std::vector<std::pair<int, int>>& vecCalls,
            const std::map<string, int>& mapStyleNum = {}) {
  CNumbering numbering;
  numbering.Load(sXml.data(), sXml.data() + sXml.size(), mapStyleNum);
  CNumberingCounter counter(numbering);
  string sOut;
  for (size_t i = 0; i < vecCalls.size(); ++i) sOut += (i ? "|" : "") + counter.Next(vecCalls[i].first, vecCalls[i].second);
  return sOut;
}

struct WalkCase {
  const char* szName;
  string sXml;
  std::vector<std::pair<int, int>> vecCalls;  // (numId, ilvl) in document order
  const char* szLabels;
  std::map<string, int> mapStyleNum;
};

const WalkCase kWalks[] = {
    {"multilevel headings restart lower levels", Xml(kLegal + Num(1, 0)),
     {{1, 0}, {1, 1}, {1, 1}, {1, 0}, {1, 1}, {1, 2}, {1, 2}, {1, 1}, {1, 2}},
     "第1章|1.1|1.2|第2章|2.1|2.1.1|2.1.2|2.2|2.2.1", {}},
    {"chinese chapters count past ten", Xml(Abstract(0, Lvl(0, "chineseCounting", "第%1章")) + Num(1, 0)),
     std::vector<std::pair<int, int>>(11, {1, 0}), "第一章|第二章|第三章|第四章|第五章|第六章|第七章|第八章|第九章|第十章|第十一章", {}},
    {"isLgl shows the chapter in decimal", Xml(kChapters + Num(1, 0)), {{1, 0}, {1, 1}, {1, 1}, {1, 0}, {1, 1}},
     "第一章|1.1|1.2|第二章|2.1", {}},
    {"contract clauses in four formats",
     Xml(Abstract(0, Lvl(0, "chineseCounting", "%1、") + Lvl(1, "chineseCounting", "（%2）") + Lvl(2, "decimal", "%3.") +
                         Lvl(3, "decimalEnclosedCircle", "%4")) + Num(1, 0)),
     {{1, 0}, {1, 1}, {1, 2}, {1, 2}, {1, 3}, {1, 3}, {1, 2}, {1, 1}, {1, 2}, {1, 0}, {1, 1}},
     "一、|（一）|1.|2.|①|②|3.|（二）|1.|二、|（一）", {}},
    {"a level never counted shows its start",
     Xml(Abstract(0, Lvl(0, "decimal", "%1.", "", 3) + Lvl(1, "decimal", "%1.%2")) + Num(1, 0)), {{1, 1}, {1, 1}, {1, 0}},
     "3.1|3.2|3.", {}},
    {"two nums over one abstract numbering continue one list", Xml(kPlain + Num(1, 0) + Num(2, 0)),
     {{1, 0}, {1, 0}, {2, 0}, {2, 1}, {1, 0}}, "1.|2.|3.|3.1|4.", {}},
    {"a num with a startOverride is a list of its own; the other num goes on with its own",
     Xml(kPlain + Num(1, 0) + Num(2, 0, Override(0, StartAt(5)))),
     {{1, 0}, {1, 1}, {2, 0}, {2, 1}, {1, 1}, {2, 0}, {1, 0}}, "1.|1.1|5.|5.1|1.2|6.|2.", {}},
    {"startOverride first met at a lower level", Xml(kPlain + Num(1, 0) + Num(2, 0, Override(0, StartAt(1)))),
     {{1, 0}, {1, 0}, {1, 1}, {1, 1}, {2, 1}}, "1.|2.|2.1|2.2|1.1", {}},
    {"lvlOverride replaces a level for one num only",
     Xml(kPlain + Num(1, 0) + Num(2, 0, Override(0, Lvl(0, "upperRoman", "%1)")))), {{1, 0}, {2, 0}, {1, 0}},
     "1.|II)|3.", {}},
    {"lvlRestart 0 keeps a level counting across chapters",
     Xml(Abstract(0, Lvl(0, "decimal", "%1.") + Lvl(1, "decimal", "(%2)", "<w:lvlRestart w:val=\"0\"/>")) + Num(1, 0)),
     {{1, 0}, {1, 1}, {1, 1}, {1, 0}, {1, 1}}, "1.|(1)|(2)|2.|(3)", {}},
    {"lvlRestart 1 restarts figures by chapter, not by section",
     Xml(Abstract(0, Lvl(0, "decimal", "%1") + Lvl(1, "decimal", "%1.%2") +
                         Lvl(2, "decimal", "图%1-%3", "<w:lvlRestart w:val=\"1\"/>")) + Num(1, 0)),
     {{1, 0}, {1, 1}, {1, 2}, {1, 1}, {1, 2}, {1, 0}, {1, 2}}, "1|1.1|图1-1|1.2|图1-2|2|图2-1", {}},
    {"numStyleLink lends levels but not counters",
     Xml(Abstract(0, "<w:styleLink w:val=\"ThesisList\"/>" + Lvl(0, "chineseCounting", "第%1章")) +
         Abstract(1, "<w:numStyleLink w:val=\"ThesisList\"/>") + Num(1, 0) + Num(2, 1)),
     {{2, 0}, {2, 0}, {1, 0}}, "第一章|第二章|第一章", {{"ThesisList", 1}}},
    {"numStyleLink found through styleLink alone, along a chain",
     Xml(Abstract(0, "<w:styleLink w:val=\"B\"/>" + Lvl(0, "upperLetter", "%1.")) + Abstract(1, "<w:numStyleLink w:val=\"B\"/>") +
         Abstract(2, "<w:numStyleLink w:val=\"A\"/>") + Num(1, 0) + Num(2, 1) + Num(3, 2)),
     {{3, 0}, {3, 0}}, "A.|B.", {{"A", 2}}},
    {"style links in a circle give no labels",
     Xml(Abstract(0, "<w:numStyleLink w:val=\"X\"/>") + Abstract(1, "<w:numStyleLink w:val=\"Y\"/>") +
         Abstract(2, "<w:numStyleLink w:val=\"Z\"/><w:styleLink w:val=\"Z\"/>" + Lvl(0, "decimal", "%1)")) +
         Num(1, 0) + Num(2, 1) + Num(3, 2)),
     {{1, 0}, {2, 0}, {3, 0}}, "||1)", {{"X", 2}, {"Y", 1}, {"Z", 3}}},
    {"bullet levels count but show no number",
     Xml(Abstract(0, Lvl(0, "bullet", "\xEF\x82\xB7") + Lvl(1, "decimal", "%2.")) + Num(1, 0)),
     {{1, 0}, {1, 1}, {1, 1}, {1, 0}, {1, 1}}, "|1.|2.||1.", {}},
    {"unknown nums and levels are not counted", Xml(kPlain + Num(1, 0) + Num(4, 7)),
     {{0, 0}, {9, 0}, {4, 0}, {1, 9}, {1, -1}, {1, 5}, {1, 0}}, "||||||1.", {}},
    {"placeholders of missing levels and stray percent signs",
     Xml(Abstract(0, Lvl(0, "decimal", "%1.%5%0%%2%")) + Num(1, 0)), {{1, 0}}, "1.%0%%", {}},
    {"entities in level texts and a format with a fallback",
     Xml(Abstract(0, Lvl(0, "decimalZero", "&#x7B2C;%1&#31456;&amp;&quot;") +
                         "<w:lvl w:ilvl=\"1\"><mc:AlternateContent><mc:Choice Requires=\"w14\"><w:numFmt w:val=\"custom\" "
                         "w:format=\"001, 002, 003, ...\"/></mc:Choice><mc:Fallback><w:numFmt w:val=\"decimalZero\"/>"
                         "</mc:Fallback></mc:AlternateContent><w:lvlText w:val=\"%2\"/></w:lvl>") + Num(1, 0)),
     {{1, 0}, {1, 1}}, "第01章&\"|01", {}},
};

TEST(NumberingWalk, LabelsInDocumentOrder) {
  for (const WalkCase& c : kWalks) EXPECT_EQ(Walk(c.sXml, c.vecCalls, c.mapStyleNum), c.szLabels) << c.szName;
}

TEST(NumberingFormat, EveryFormatAtTelltaleValues) {
  const int kValues[] = {1, 4, 10, 11, 20, 21, 26, 27, 99, 100, 1001};
  const std::pair<const char*, const char*> kFormats[] = {
      {"decimal", "1|4|10|11|20|21|26|27|99|100|1001"},
      {"decimalZero", "01|04|10|11|20|21|26|27|99|100|1001"},
      {"decimalFullWidth", "１|４|１０|１１|２０|２１|２６|２７|９９|１００|１００１"},
      {"upperLetter", "A|D|J|K|T|U|Z|AA|UUUU|VVVV|1001"},
      {"lowerLetter", "a|d|j|k|t|u|z|aa|uuuu|vvvv|1001"},
      {"upperRoman", "I|IV|X|XI|XX|XXI|XXVI|XXVII|XCIX|C|MI"},
      {"lowerRoman", "i|iv|x|xi|xx|xxi|xxvi|xxvii|xcix|c|mi"},
      {"chineseCounting", "一|四|十|十一|二十|二十一|二十六|二十七|九十九|一〇〇|一〇〇一"},
      {"chineseCountingThousand", "一|四|十|十一|二十|二十一|二十六|二十七|九十九|一百|一千零一"},
      {"ideographDigital", "一|四|一〇|一一|二〇|二一|二六|二七|九九|一〇〇|一〇〇一"},
      {"chineseLegalSimplified", "壹|肆|壹拾|壹拾壹|贰拾|贰拾壹|贰拾陆|贰拾柒|玖拾玖|壹佰|壹仟零壹"},
      {"ideographLegalTraditional", "壹|肆|壹拾|壹拾壹|貳拾|貳拾壹|貳拾陸|貳拾柒|玖拾玖|壹佰|壹仟零壹"},
      {"ideographTraditional", "甲|丁|癸|11|20|21|26|27|99|100|1001"},
      {"ideographZodiac", "子|卯|酉|戌|20|21|26|27|99|100|1001"},
      {"ideographZodiacTraditional", "甲子|丁卯|癸酉|甲戌|癸未|甲申|己丑|庚寅|99|100|1001"},
      {"decimalEnclosedCircle", "①|④|⑩|⑪|⑳|21|26|27|99|100|1001"},
      {"decimalEnclosedCircleChinese", "①|④|⑩|⑪|⑳|21|26|27|99|100|1001"},
      {"decimalEnclosedParen", "⑴|⑷|⑽|⑾|⒇|21|26|27|99|100|1001"},
      {"decimalEnclosedFullstop", "⒈|⒋|⒑|⒒|⒛|21|26|27|99|100|1001"},
      {"ordinal", "1st|4th|10th|11th|20th|21st|26th|27th|99th|100th|1001st"},
      {"cardinalText", "1|4|10|11|20|21|26|27|99|100|1001"},
      {"noSuchFormat", "1|4|10|11|20|21|26|27|99|100|1001"},
      {"bullet", "||||||||||"},
      {"none", "||||||||||"},
  };
  for (const auto& format : kFormats) {
    string sOut;
    for (int nValue : kValues) sOut += (nValue == kValues[0] ? "" : "|") + FormatListNumber(nValue, format.first);
    EXPECT_EQ(sOut, format.second) << format.first;
  }
}

TEST(NumberingFormat, EdgesOfEachRange) {
  EXPECT_EQ(FormatListNumber(0, "upperRoman"), "0");
  EXPECT_EQ(FormatListNumber(0, "upperLetter"), "0");
  EXPECT_EQ(FormatListNumber(0, "chineseCounting"), "〇");
  EXPECT_EQ(FormatListNumber(-3, "chineseCounting"), "-3");
  EXPECT_EQ(FormatListNumber(3999, "upperRoman"), "MMMCMXCIX");
  EXPECT_EQ(FormatListNumber(4000, "upperRoman"), "4000");
  EXPECT_EQ(FormatListNumber(780, "upperLetter"), string(30, 'Z'));
  EXPECT_EQ(FormatListNumber(781, "upperLetter"), "781");
  EXPECT_EQ(FormatListNumber(INT_MAX, "chineseCountingThousand"), "二十一亿四千七百四十八万三千六百四十七");
  EXPECT_EQ(FormatListNumber(INT_MAX, "decimalEnclosedCircle"), "2147483647");
}

TEST(NumberingLoad, WhatTheWalkDoesNotShow) {
  const string sXml = Xml(Abstract(3, Lvl(1, "upperLetter", "附录%2", "<w:suff w:val=\"space\"/><w:pStyle w:val=\"Appendix\"/>", 4)) +
                          Num(7, 3, Override(1, StartAt(2))) + Num(8, 3) + Num(9, 4));
  CNumbering numbering;
  ASSERT_TRUE(numbering.Load(sXml.data(), sXml.data() + sXml.size()));
  ASSERT_NE(numbering.Level(8, 1), nullptr);
  EXPECT_EQ(numbering.Level(8, 1)->suffix + " " + numbering.Level(8, 1)->p_style, "space Appendix");
  EXPECT_EQ(numbering.Level(8, 0), nullptr);
  EXPECT_EQ(numbering.Start(7, 1), 2);
  EXPECT_EQ(numbering.Start(8, 1), 4);
  EXPECT_EQ(numbering.AbstractOf(7), 3);
  EXPECT_EQ(numbering.AbstractOf(9), -1) << "its abstract numbering is not there";
  EXPECT_EQ(numbering.LevelOfStyle(7, "Appendix"), 1);
  EXPECT_EQ(numbering.LevelOfStyle(7, "Heading1"), -1);
  const string sNone = "<w:numbering/>";
  EXPECT_FALSE(numbering.Load(sNone.data(), sNone.data() + sNone.size()));
  EXPECT_EQ(numbering.AbstractOf(7), -1) << "loading again forgets the last text";
  EXPECT_FALSE(numbering.Load(nullptr, nullptr));
}

TEST(NumberingHostile, GarbageValues) {
  const struct {
    const char* szName;
    string sXml;
    std::vector<std::pair<int, int>> vecCalls;
    const char* szLabels;
  } kCases[] = {
      {"ids that are not numbers, negative or zero",
       Xml(Abstract(0, Lvl(0, "decimal", "%1.")) + "<w:num w:numId=\"x1\"><w:abstractNumId w:val=\"0\"/></w:num>" +
           "<w:num w:numId=\"-2\"><w:abstractNumId w:val=\"0\"/></w:num><w:num w:numId=\"0\"><w:abstractNumId w:val=\"0\"/></w:num>" +
           "<w:num w:numId=\"3\"><w:abstractNumId w:val=\"zero\"/></w:num>"),
       {{0, 0}, {-2, 0}, {3, 0}}, "||"},
      {"ilvl out of range, missing or not a number",
       Xml("<w:abstractNum w:abstractNumId=\"0\"><w:lvl w:ilvl=\"9\"><w:lvlText w:val=\"A\"/></w:lvl><w:lvl w:ilvl=\"-1\">"
           "<w:lvlText w:val=\"B\"/></w:lvl><w:lvl><w:lvlText w:val=\"C\"/></w:lvl><w:lvl w:ilvl=\"1x\"><w:lvlText w:val=\"D\"/>"
           "</w:lvl></w:abstractNum>" + Num(1, 0)),
       {{1, 0}, {1, 1}, {1, 9}}, "||"},
      {"huge and negative starts",
       Xml(Abstract(0, "<w:lvl w:ilvl=\"0\"><w:start w:val=\"99999999999\"/><w:lvlText w:val=\"%1\"/></w:lvl>"
                       "<w:lvl w:ilvl=\"1\"><w:start w:val=\"-5\"/><w:lvlText w:val=\"%2\"/></w:lvl>") +
           Num(1, 0, Override(1, "<w:startOverride w:val=\"-7\"/>"))),
       {{1, 0}, {1, 0}, {1, 1}, {1, 1}}, "2147483647|2147483647|0|1"},
      {"lvlRestart that is not a number or negative restarts as usual",
       Xml(Abstract(0, Lvl(0, "decimal", "%1") + Lvl(1, "decimal", "%1.%2", "<w:lvlRestart w:val=\"x\"/>") +
                           Lvl(2, "decimal", "%1.%2.%3", "<w:lvlRestart w:val=\"-4\"/>")) + Num(1, 0)),
       {{1, 0}, {1, 1}, {1, 2}, {1, 0}, {1, 1}, {1, 2}}, "1|1.1|1.1.1|2|2.1|2.1.1"},
      {"an element left open ends where the next of its name begins",
       Xml("<w:abstractNum w:abstractNumId=\"0\">" + Lvl(0, "decimal", "%1.") + Abstract(1, Lvl(0, "upperLetter", "%1)")) +
           Num(1, 0) + Num(2, 1)),
       {{1, 0}, {2, 0}}, "1.|A)"},
      {"the first definition of an id counts",
       Xml(Abstract(0, Lvl(0, "decimal", "%1.")) + Abstract(0, Lvl(0, "upperRoman", "%1.")) + Num(1, 0) + Num(1, 5)),
       {{1, 0}}, "1."},
      {"a level without format or text",
       Xml(Abstract(0, "<w:lvl w:ilvl=\"0\"/><w:lvl w:ilvl=\"1\"><w:lvlText w:val=\"%1.%2\"/></w:lvl>") + Num(1, 0)),
       {{1, 0}, {1, 1}}, "|1.1"},
  };
  for (const auto& c : kCases) EXPECT_EQ(Walk(c.sXml, c.vecCalls), c.szLabels) << c.szName;
}

// Each cut of the text sits in a buffer of its own exact size, so a read past the end is caught.
void LoadAndWalk(const string& sText) {
  std::vector<char> vecBuf(sText.begin(), sText.end());
  const char* p = vecBuf.empty() ? nullptr : vecBuf.data();
  CNumbering numbering;
  numbering.Load(p, p + vecBuf.size(), {{"L", 2}, {"M", 1}});
  CNumberingCounter counter(numbering);
  for (int nNum = 0; nNum < 4; ++nNum)
    for (int nIlvl = -1; nIlvl < 10; ++nIlvl) counter.Next(nNum, nIlvl);
}

TEST(NumberingHostile, EveryCutOfTheTextIsSafe) {
  const string sXml = Xml(kChapters + Abstract(1, "<w:numStyleLink w:val=\"L\"/>") +
                          Abstract(2, "<w:styleLink w:val=\"L\"/>" + Lvl(0, "decimalEnclosedCircle", "&#x7B2C;%1")) +
                          Num(1, 0, Override(0, StartAt(3) + Lvl(0, "upperRoman", "%1."))) + Num(2, 1) + Num(3, 2));
  EXPECT_EQ(Walk(sXml, {{1, 0}, {1, 1}, {2, 0}, {2, 0}}, {{"L", 3}}), "III.|3.1|第①|第②");
  for (size_t n = 0; n <= sXml.size(); ++n) {
    LoadAndWalk(sXml.substr(0, n));
    LoadAndWalk(sXml.substr(n));
  }
}

TEST(NumberingHostile, LongLinkChainsAndUnclosedTagsStayFast) {
  string sChain, sUnclosed;
  const int kCount = 20000;
  std::map<string, int> mapStyleNum;  // style S<k> gives num k+1, over abstract numbering k
  for (int i = 0; i < kCount; ++i) mapStyleNum["S" + std::to_string(i)] = i + 1;
  for (int i = 0; i < kCount; ++i)
    sChain += Abstract(i, "<w:numStyleLink w:val=\"S" + std::to_string(i + 1) + "\"/>") + Num(i + 1, i);
  sChain += Abstract(kCount, "<w:styleLink w:val=\"S" + std::to_string(kCount) + "\"/>" + Lvl(0, "lowerRoman", "%1)"));
  sChain = Xml(sChain);
  for (int i = 0; i < kCount * 5; ++i)
    sUnclosed += "<w:abstractNum w:abstractNumId=\"1\"><w:lvl w:ilvl=\"0\"><w:num w:numId=\"1\">";
  auto tStart = std::chrono::steady_clock::now();
  EXPECT_EQ(Walk(sChain, {{1, 0}, {kCount, 0}, {1, 0}}, mapStyleNum), "i)|i)|ii)");
  EXPECT_EQ(Walk(sUnclosed, {{1, 0}}), "");
  EXPECT_LT(std::chrono::steady_clock::now() - tStart, std::chrono::seconds(10)) << "a pass that is not linear";
}

}  // namespace
