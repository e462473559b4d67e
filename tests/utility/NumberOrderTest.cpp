// The number-order extractor over headings, captions and formula indexes,
// including texts that only look numbered, and renumbering in another style.
#include <gtest/gtest.h>

#include <string>

#include "utility/NumberOrder.h"

namespace {

struct OrderCase {
  const char* szText;
  int nOrder;          // 0: no numbering
  int nNumFormat;
  int nChapterFormat;
  int nLevel;
  const char* szPrefix;
  const char* szSep;
  const char* szPost;
  const char* szNumbering;
};

const int A = kStyleArabic, C = kStyleChinese, F = kStyleFinancial, O = kStyleCircled, P = kStyleParenArabic,
          U = kStyleUpperLatin, L = kStyleLowerLatin, R = kStyleUpperRoman, r = kStyleLowerRoman,
          W = kStyleFullWidthArabic, N = kStyleNone;

const OrderCase kHeadings[] = {
    // Chapters, sections and articles with 第.
    {"第一章 绪论", 1, C, N, 1, "第", "", "章", "第一章"},
    {"第1章 绪论", 1, A, N, 1, "第", "", "章", "第1章"},
    {"第十二章 结论与展望", 12, C, N, 1, "第", "", "章", "第十二章"},
    {"第二十一章", 21, C, N, 1, "第", "", "章", "第二十一章"},
    {"第一节 研究背景", 1, C, N, 1, "第", "", "节", "第一节"},
    {"第三条 合同价款", 3, C, N, 1, "第", "", "条", "第三条"},
    {"第一百零五条 附则", 105, C, N, 1, "第", "", "条", "第一百零五条"},
    {"第二部分 技术方案", 2, C, N, 1, "第", "", "部分", "第二部分"},
    {"第五篇 总结", 5, C, N, 1, "第", "", "篇", "第五篇"},
    {"  第3节 方法", 3, A, N, 1, "第", "", "节", "第3节"},
    {"第壹章 总则", 1, F, N, 1, "第", "", "章", "第壹章"},
    // Chinese numerals with marks.
    {"一、项目概况", 1, C, N, 1, "", "", "、", "一、"},
    {"十、其他", 10, C, N, 1, "", "", "、", "十、"},
    {"十一、附件", 11, C, N, 1, "", "", "、", "十一、"},
    {"（一）建设内容", 1, C, N, 1, "（", "", "）", "（一）"},
    {"(二)实施计划", 2, C, N, 1, "(", "", ")", "(二)"},
    {"（十三）其他事项", 13, C, N, 1, "（", "", "）", "（十三）"},
    {"(三）混用括号", 3, C, N, 1, "(", "", "）", "(三）"},
    // Arabic numbers.
    {"1. 引言", 1, A, N, 1, "", "", ".", "1."},
    {"2.研究方法", 2, A, N, 1, "", "", ".", "2."},
    {"3、实验结果", 3, A, N, 1, "", "", "、", "3、"},
    {"12、附录说明", 12, A, N, 1, "", "", "、", "12、"},
    {"1．全角点", 1, A, N, 1, "", "", "．", "1．"},
    {"1.2 研究现状", 2, A, A, 2, "", ".", "", "1.2"},
    {"1.2研究现状", 2, A, A, 2, "", ".", "", "1.2"},
    {"2.3.1 数据采集", 1, A, A, 3, "", ".", "", "2.3.1"},
    {"4.2.3.5 参数设置", 5, A, A, 4, "", ".", "", "4.2.3.5"},
    {"3.10 小结", 10, A, A, 2, "", ".", "", "3.10"},
    {"1.2. 带点", 2, A, A, 2, "", ".", ".", "1.2."},
    {"2-1 分段编号", 1, A, A, 2, "", "-", "", "2-1"},
    {"(1) 基本要求", 1, A, N, 1, "(", "", ")", "(1)"},
    {"（2）技术指标", 2, A, N, 1, "（", "", "）", "（2）"},
    {"1) 第一点", 1, A, N, 1, "", "", ")", "1)"},
    {"2）第二点", 2, A, N, 1, "", "", "）", "2）"},
    {"[3] 参考文献条目", 3, A, N, 1, "[", "", "]", "[3]"},
    {"1 绪论", 1, A, N, 1, "", "", "", "1"},
    {"5", 5, A, N, 1, "", "", "", "5"},
    {"１．全角数字", 1, W, N, 1, "", "", "．", "１．"},
    // Circled and parenthesised numbers.
    {"①设计原则", 1, O, N, 1, "", "", "", "①"},
    {"⑩ 第十项", 10, O, N, 1, "", "", "", "⑩"},
    {"⑶施工准备", 3, P, N, 1, "", "", "", "⑶"},
    // Letters and Roman numbers.
    {"A. 总体要求", 1, U, N, 1, "", "", ".", "A."},
    {"C、附加条款", 3, U, N, 1, "", "", "、", "C、"},
    {"a) 子项", 1, L, N, 1, "", "", ")", "a)"},
    {"(b) 子项", 2, L, N, 1, "(", "", ")", "(b)"},
    {"I. Introduction", 1, R, N, 1, "", "", ".", "I."},
    {"IV. Results", 4, R, N, 1, "", "", ".", "IV."},
    {"ii) second", 2, r, N, 1, "", "", ")", "ii)"},
    // Word prefixes.
    {"附录A 调查问卷", 1, U, N, 1, "附录", "", "", "附录A"},
    {"附录 B 数据表", 2, U, N, 1, "附录", "", "", "附录 B"},
    {"附录1 程序清单", 1, A, N, 1, "附录", "", "", "附录1"},
    {"图2-1 系统结构", 1, A, A, 2, "图", "-", "", "图2-1"},
    {"图 3.2 流程图", 2, A, A, 2, "图", ".", "", "图 3.2"},
    {"表1 实验参数", 1, A, N, 1, "表", "", "", "表1"},
    {"表4-12 测试结果", 12, A, A, 2, "表", "-", "", "表4-12"},
    {"Chapter 1 Introduction", 1, A, N, 1, "Chapter ", "", "", "Chapter 1"},
    {"Section 2 Methods", 2, A, N, 1, "Section ", "", "", "Section 2"},
    {"Figure 3. Layout", 3, A, N, 1, "Figure ", "", ".", "Figure 3."},
    {"Table 2.1 Data", 1, A, A, 2, "Table ", ".", "", "Table 2.1"},
    {"Appendix A Survey", 1, U, N, 1, "Appendix ", "", "", "Appendix A"},
    // Texts that only look numbered.
    {"2023年工作总结", 0, N, N, 0, "", "", "", ""},
    {"3D打印技术", 0, N, N, 0, "", "", "", ""},
    {"1000万元投资", 0, N, N, 0, "", "", "", ""},
    {"100万元投资", 0, N, N, 0, "", "", "", ""},
    {"5G网络建设", 0, N, N, 0, "", "", "", ""},
    {"12月份计划", 0, N, N, 0, "", "", "", ""},
    {"2.5亿元的项目", 0, N, N, 0, "", "", "", ""},
    {"1.5倍的增长", 0, N, N, 0, "", "", "", ""},
    {"3.2人力成本", 0, N, N, 0, "", "", "", ""},
    {"3.5%的增长率", 0, N, N, 0, "", "", "", ""},
    {"一带一路倡议", 0, N, N, 0, "", "", "", ""},
    {"十分重要的问题", 0, N, N, 0, "", "", "", ""},
    {"第三方支付平台", 0, N, N, 0, "", "", "", ""},
    {"第一时间响应", 0, N, N, 0, "", "", "", ""},
    {"三维建模方法", 0, N, N, 0, "", "", "", ""},
    {"A股市场分析", 0, N, N, 0, "", "", "", ""},
    {"Abstract", 0, N, N, 0, "", "", "", ""},
    {"研究背景", 0, N, N, 0, "", "", "", ""},
    {"（注：本表数据）", 0, N, N, 0, "", "", "", ""},
    {"(a", 0, N, N, 0, "", "", "", ""},
    {"第", 0, N, N, 0, "", "", "", ""},
    {"", 0, N, N, 0, "", "", "", ""},
    {"   ", 0, N, N, 0, "", "", "", ""},
    {"2023", 0, N, N, 0, "", "", "", ""},
    {"0. 零号", 0, N, N, 0, "", "", "", ""},
};

// In a paragraph known to be a heading a unit character after the number
// makes no amount; what else refuses a number still does.
const OrderCase kHeadingLines[] = {
    {"3.2人力成本", 2, A, A, 2, "", ".", "", "3.2"},
    {"2.3条件、假定和限制", 3, A, A, 2, "", ".", "", "2.3"},
    {"3.人员", 3, A, N, 1, "", "", ".", "3."},
    {"2023年工作总结", 0, N, N, 0, "", "", "", ""},
    {"3D打印技术", 0, N, N, 0, "", "", "", ""},
    {"12月份计划", 0, N, N, 0, "", "", "", ""},
    {"1.2.3 方法", 3, A, A, 3, "", ".", "", "1.2.3"},
};

const OrderCase kFormulas[] = {
    {"E = mc^2 (3-2)", 2, A, A, 2, "(", "-", ")", "(3-2)"},
    {"F=ma （2.1）", 1, A, A, 2, "（", ".", "）", "（2.1）"},
    {"y = ax + b (12)", 12, A, N, 1, "(", "", ")", "(12)"},
    {"s = vt （3.2.1）  ", 1, A, A, 3, "（", ".", "）", "（3.2.1）"},
    {"(4-10)", 10, A, A, 2, "(", "-", ")", "(4-10)"},
    {"P = UI ( 5-3 )", 3, A, A, 2, "(", "-", ")", "( 5-3 )"},
    {"x = f(y) (A.1)", 1, A, U, 2, "(", ".", ")", "(A.1)"},
    {"a(b+c) (1)", 1, A, N, 1, "(", "", ")", "(1)"},
    {"E = mc^2", 0, N, N, 0, "", "", "", ""},
    {"f(x) = sin(x)", 0, N, N, 0, "", "", "", ""},
    {"见式(3-2)所示", 0, N, N, 0, "", "", "", ""},
    {"(3-2", 0, N, N, 0, "", "", "", ""},
};

void ExpectCases(const OrderCase* pCases, size_t nCount, int nMode) {
  for (size_t k = 0; k < nCount; ++k) {
    const OrderCase& c = pCases[k];
    _tSection_Info info;
    EXPECT_EQ(ExtractOrder(c.szText, nMode, info), c.nOrder) << c.szText;
    EXPECT_EQ(info.order, c.nOrder) << c.szText;
    EXPECT_EQ(info.num_format, c.nNumFormat) << c.szText;
    EXPECT_EQ(info.chapter_format, c.nChapterFormat) << c.szText;
    EXPECT_EQ(info.level, c.nLevel) << c.szText;
    EXPECT_EQ(info.prefix, c.szPrefix) << c.szText;
    EXPECT_EQ(info.section_sep, c.szSep) << c.szText;
    EXPECT_EQ(info.post, c.szPost) << c.szText;
    EXPECT_EQ(info.text, c.szNumbering) << c.szText;
    EXPECT_EQ(info.sample, c.szText);
  }
}

TEST(NumberOrderTest, HeadingsAndLookAlikes) {
  ExpectCases(kHeadings, sizeof(kHeadings) / sizeof(kHeadings[0]), kOrderHeading);
}

TEST(NumberOrderTest, HeadingLinesTakeNumbersGluedToUnits) {
  ExpectCases(kHeadingLines, sizeof(kHeadingLines) / sizeof(kHeadingLines[0]), kOrderHeadingLine);
}

TEST(NumberOrderTest, FormulaIndexes) {
  ExpectCases(kFormulas, sizeof(kFormulas) / sizeof(kFormulas[0]), kOrderFormula);
}

TEST(NumberOrderTest, EqualStylesCompareEqual) {
  _tSection_Info a, b, c;
  ExtractOrder("第一章 绪论", kOrderHeading, a);
  ExtractOrder("第五章 结论", kOrderHeading, b);
  ExtractOrder("第5章 结论", kOrderHeading, c);
  EXPECT_TRUE(a.IsSameFormat(b));
  EXPECT_FALSE(a.IsSameFormat(c));
}

TEST(NumberOrderTest, RenumbersInAnotherStyle) {
  struct { const char* szFound; const char* szPattern; const char* szChapter; const char* szWant; } kCases[] = {
      {"1 绪论", "第一章 总论", "", "第一章 绪论"},
      {"第三章 方法", "3 方法", "", "3 方法"},
      {"一、概况", "（一）总则", "", "（一）概况"},
      {"(2)要求", "②规定", "", "②要求"},
      {"1.2 现状", "1.2.3 样式", "", "1.2 现状"},
      {"2.3.4 细节", "1.1 两级", "", "3.4 细节"},
      {"（三）要求", "1.1 两级", "2", "2.3要求"},  // the chapter comes from chapter_id
      {"第12章 结论", "第一章", "", "第十二章 结论"},
      {"a) 子项", "A. 项", "", "A. 子项"},
      {"E=mc^2 (3-2)", "(1.1)", "", "E=mc^2 (3.2)"},
  };
  for (const auto& c : kCases) {
    _tSection_Info found, pattern;
    bool bFormula = std::string(c.szFound).find("E=") == 0;
    ExtractOrder(c.szFound, bFormula ? kOrderFormula : kOrderHeading, found);
    ExtractOrder(c.szPattern, bFormula ? kOrderFormula : kOrderHeading, pattern);
    found.chapter_id = c.szChapter;
    EXPECT_EQ(SetNewSectionNo(found, pattern), c.szWant) << c.szFound << " as " << c.szPattern;
  }
}

TEST(NumberOrderTest, RendersEveryStyleAndFallsBackToDigits) {
  struct { int nValue; int nStyle; const char* szWant; } kCases[] = {
      {7, kStyleArabic, "7"},           {21, kStyleChinese, "二十一"}, {10, kStyleFinancial, "壹拾"},
      {3, kStyleCircled, "③"},          {21, kStyleCircled, "21"},     {2, kStyleUpperLatin, "B"},
      {27, kStyleLowerLatin, "27"},     {14, kStyleUpperRoman, "XIV"}, {9, kStyleLowerRoman, "ix"},
      {12, kStyleFullWidthArabic, "１２"}, {5, kStyleParenArabic, "⑸"}, {4, kStyleNone, "4"},
  };
  for (const auto& c : kCases) EXPECT_EQ(RenderNumber(c.nValue, c.nStyle), c.szWant) << c.nValue << "/" << c.nStyle;
}

}  // namespace
