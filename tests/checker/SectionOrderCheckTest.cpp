// The order rules on documents built here: numbers read with their
// automatic labels, captions that are captions, headings that run on from
// body text, chapters that restart under parts.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "checker/CheckResult.h"
#include "checker/FormatCheckRun.h"
#include "docx/Document.h"

namespace {

struct _tLine {
  int level;
  const char* szText;
  const char* szLabel;
};

// The findings of the order rules as "id:found" in document order.
std::vector<std::string> OrderFindings(const std::vector<_tLine>& vecLines) {
  CDocument doc;
  uint32_t nId = 100;
  for (const _tLine& line : vecLines) {
    _tParagraph para;
    para.id = nId += 10;
    para.level = line.level;
    para.text = line.szText;
    para.num_label = line.szLabel;
    doc.m_vecParagraph.push_back(para);
  }
  doc.BuildIndexes();
  CCheckResult result;
  CFormatCheckRun(doc, result, 5).Run();
  result.SortResult();
  std::vector<std::string> vecFound;
  for (const _tCheckResult& r : result.GetFindings()) vecFound.push_back(r.error_id + ":" + r.org_str);
  return vecFound;
}

TEST(SectionOrderCheckTest, NumbersAreReadAsTheReaderSeesThem) {
  const struct {
    const char* szName;
    std::vector<_tLine> vecLines;
    std::vector<std::string> vecWant;
  } kCases[] = {
      {"automatic labels are read",
       {{1, "绪论", "第1章"}, {2, "背景", "1.1"}, {2, "方法", "1.3"}, {1, "结论", "第2章"}},
       {"1.3.1:1.3"}},
      {"a sentence citing a figure is no caption",
       {{kLevelFigureCaption, "图1 结构", ""}, {kLevelFigureCaption, "图3中给出了一个例子，说明方法的步骤", ""},
        {kLevelFigureCaption, "图2 流程", ""}},
       {}},
      {"a caption glued to its number is one",
       {{kLevelFigureCaption, "图1结构", ""}, {kLevelFigureCaption, "图3流程", ""}},
       {"1.3.8:图3"}},
      {"a labelled caption", {{kLevelTableCaption, "参数", "表1"}, {kLevelTableCaption, "结果", "表1"}}, {"1.3.10:表1"}},
      {"a heading that names figures is no caption",
       {{kLevelFigureCaption, "图1 结构", ""}, {kLevelFigureCaption, "2.7 插入图片", ""}, {kLevelFigureCaption, "图2 流程", ""}},
       {}},
      {"appendices count apart from chapters",
       {{1, "第1章 绪论", ""}, {1, "第2章 方法", ""}, {1, "附录A 数据", ""}, {1, "附录B 代码", ""}},
       {}},
      {"a heading runs on from body text numbered alike",
       {{0, "六．经营计划", ""}, {2, "七、风险控制", ""}, {2, "八、附录", ""}},
       {}},
      {"a heading runs on from a heading taken for a caption, or given another level",
       {{1, "第1章 绪论", ""}, {kLevelFigureCaption, "2.7插入图片", "1.1"}, {2, "插入表格", "1.2"},
        {1, "第2章 方法", ""}, {3, "2.1 公式编辑", ""}, {2, "2.2 公式引用", ""}},
       {"1.3.5:2.1"}},
      {"text between two headings leads up to the second",
       {{1, "第1章 绪论", ""}, {2, "1.1 背景", ""}, {kLevelTableCaption, "1.2登录表", ""}, {2, "1.3 方法", ""},
        {0, "1.5 见上", ""}, {2, "1.4 结果", ""}, {2, "1.6 讨论", ""}},
       {"1.3.1:1.6"}},
      {"a number of another section does not lead up",
       {{1, "第1章 绪论", ""}, {0, "2.1 见下", ""}, {2, "1.2 方法", ""}},
       {"1.3.1:1.2"}},
      {"a number glued to a unit word in a heading is read",
       {{1, "第1章 成本", ""}, {2, "1.1 分解", ""}, {2, "1.2人力成本", ""}, {2, "1.3 管理成本", ""}},
       {}},
      {"body text numbered otherwise does not lead up",
       {{0, "6. 经营计划", ""}, {2, "七、风险控制", ""}},
       {"1.3.1:七、"}},
      {"a chapter runs on from text before it; annexes may skip",
       {{0, "第1章 绪论，介绍论文的组成", ""}, {1, "第2章 方法", ""}, {1, "第4章 结果", ""}, {1, "附件 7 保修书", ""},
        {1, "附件 9 安全协议", ""}},
       {"1.3.14:第4章"}},
      {"chapters restart under each part",
       {{1, "第一部分 协议书", ""}, {1, "一、总则", ""}, {1, "二、范围", ""}, {1, "第二部分 通用条款", ""},
        {1, "一、定义", ""}},
       {}},
      {"parts have a series of their own",
       {{1, "第一部分 协议书", ""}, {1, "一、总则", ""}, {1, "第三部分 专用条款", ""}, {1, "一、定义", ""}},
       {"1.3.14:第三部分"}},
  };
  for (const auto& c : kCases) EXPECT_EQ(OrderFindings(c.vecLines), c.vecWant) << c.szName;
}

}  // namespace
