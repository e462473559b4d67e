// The thesis structure reader: front and back matter levels, the start of
// the main text, and the parts a thesis must have.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "checker/CheckResult.h"
#include "checker/ThesisPartsCheck.h"
#include "docx/Document.h"
#include "docx/PaperStructure.h"

namespace {

_tParagraph Make(const std::string& sText, int nLevel = 0) {
  _tParagraph para;
  para.text = sText;
  para.level = nLevel;
  return para;
}

TEST(PaperStructureTest, ClassifiesFrontAndBackMatter) {
  const struct {
    const char* szText;
    int nLevel, nWant;
  } kThesis[] = {
      {"某大学硕士学位论文", 1, 1},  // a cover title is no chapter of the main text
      {"作者：张三", 0, -513},
      {"专业：计算机科学", 0, -514},
      {"指导教师：李四", 0, -515},
      {"摘  要", 1, -503},
      {"本文研究了……", 0, -504},
      {"关键词：检查；格式", 0, -505},
      {"ABSTRACT", 0, -506},
      {"This thesis studies ...", 0, -507},
      {"Key words: check; format", 0, -508},
      {"第一章 绪论", 1, 1},
      {"正文开始。", 0, -500},
      {"正文继续。", 0, 0},
      {"1.1 背景", 2, 2},
      {"参考文献", 1, -509},
      {"[1] 张三. 论文[J]. 学报, 2020, 1(2): 3-4.", 0, -510},
      {"致  谢", 1, -511},
      {"感谢导师。", 0, 0},
  };
  std::vector<_tParagraph> vecParas;
  for (const auto& c : kThesis) vecParas.push_back(Make(c.szText, c.nLevel));
  CPaperStructure::Classify(vecParas);
  for (size_t i = 0; i < vecParas.size(); ++i) EXPECT_EQ(vecParas[i].level, kThesis[i].nWant) << kThesis[i].szText;
}

TEST(PaperStructureTest, ReportsEachMissingPart) {
  CDocument doc;
  doc.m_vecParagraph = {Make("摘要", -503), Make("关键词：格式", -505), Make("第一章 引言", 1), Make("第二章 方法", 1)};
  doc.BuildIndexes();
  CCheckResult result;
  EXPECT_EQ(CThesisPartsCheck::CheckParts(doc, result), 6);
  std::vector<std::string> vecIds;
  for (const _tCheckResult& r : result.GetFindings()) vecIds.push_back(r.error_id + ":" + r.new_str);
  EXPECT_EQ(vecIds, (std::vector<std::string>{"14.2:Abstract", "14.4:Keywords", "14.5:目录", "14.7:结论", "14.8:参考文献",
                                              "14.9:致谢"}));
}

}  // namespace
