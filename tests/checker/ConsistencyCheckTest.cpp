// The document held to its own house style: the majority of a kind of
// paragraph sets it, the cover and the references do not take part.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "checker/CheckResult.h"
#include "checker/ConsistencyCheck.h"
#include "docx/Document.h"

namespace {

const char kBody[] = "这是一段正文，用来说明本章的研究方法和主要的结论，以及它们的来源。";

_tParagraph Make(int nLevel, const std::string& sText, const char* szFont, int nSize, int nSpacing = 0) {
  static uint32_t s_nId = 0;
  _tParagraph para;
  para.id = s_nId += 10;
  para.level = nLevel;
  para.text = sText;
  para.font = szFont;
  para.font_size = nSize;
  para.line_space = nSpacing;
  return para;
}

std::vector<std::string> Findings(std::vector<_tParagraph> vecParas) {
  CDocument doc;
  doc.m_vecParagraph = std::move(vecParas);
  doc.BuildIndexes();
  CCheckResult result;
  CConsistencyCheck(nullptr).Check(doc, result);
  std::vector<std::string> vecFound;
  for (const _tCheckResult& r : result.GetFindings())
    vecFound.push_back(r.error_id + ":" + r.org_str + ">" + r.new_str);
  return vecFound;
}

// Six body paragraphs in 宋体 12 pt at 1.5 lines, then what a case adds.
std::vector<_tParagraph> HouseStyle() {
  std::vector<_tParagraph> vecParas = {Make(1, "第一章 绪论", "黑体", 32)};
  for (int i = 0; i < 6; ++i) vecParas.push_back(Make(0, kBody, "宋体", 24, 360));
  return vecParas;
}

TEST(ConsistencyCheckTest, TheMajorityOfAKindSetsItsStyle) {
  const struct {
    const char* szName;
    std::vector<_tParagraph> vecAdded;
    std::vector<std::string> vecWant;
  } kCases[] = {
      {"one body paragraph in another font", {Make(0, kBody, "楷体", 24, 360)}, {"15.1:楷体>宋体"}},
      {"another size and spacing", {Make(0, kBody, "宋体", 21, 240)}, {"15.2:10.5磅>12磅", "15.3:12>18"}},
      {"a Latin font is not held to a Chinese one", {Make(0, kBody, "Arial", 24, 360)}, {}},
      {"short lines and form lines are no body text",
       {Make(0, "签名：", "楷体", 30), Make(0, "学号：________________ 密级：________", "楷体", 30)}, {}},
      {"code in Latin script is no running Chinese text",
       {Make(0, "for (int i = 0; i < nCount; ++i) total += values[i];", "宋体", 20)}, {}},
      {"properties not set take no part", {Make(0, kBody, "", 0)}, {}},
  };
  for (const auto& c : kCases) {
    std::vector<_tParagraph> vecParas = HouseStyle();
    vecParas.insert(vecParas.end(), c.vecAdded.begin(), c.vecAdded.end());
    EXPECT_EQ(Findings(vecParas), c.vecWant) << c.szName;
  }
}

TEST(ConsistencyCheckTest, NoClearMajorityNoFinding) {
  std::vector<_tParagraph> vecParas = {Make(1, "第一章 绪论", "黑体", 32)};
  for (int i = 0; i < 8; ++i) vecParas.push_back(Make(0, kBody, i % 2 ? "宋体" : "楷体", 24));
  EXPECT_TRUE(Findings(vecParas).empty());
}

TEST(ConsistencyCheckTest, TheCoverAndTheReferencesKeepTheirOwnStyle) {
  std::vector<_tParagraph> vecParas = {Make(0, "本人郑重声明：所呈交的论文是本人在导师指导下独立完成的成果。", "楷体", 28)};
  std::vector<_tParagraph> vecHouse = HouseStyle();
  vecParas.insert(vecParas.end(), vecHouse.begin(), vecHouse.end());
  vecParas.push_back(Make(1, "参考文献", "黑体", 32));
  vecParas.push_back(Make(0, "[1] 张三. 论文的题目与副题目[J]. 某大学学报, 2020, 12(3): 45-50.", "宋体", 21));
  EXPECT_TRUE(Findings(vecParas).empty()) << "the cover before the first heading, the reference entries after it";
}

}  // namespace
