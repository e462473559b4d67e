#include "keyscan/ComplexFilter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TestDataDir.h"
#include "keyscan/KeyScanData.h"

namespace {

struct ParseCase {
  const char* szField;
  CComplexFilter::EImport eResult;
};

const ParseCase kParseCases[] = {
    {"合同", CComplexFilter::kNotExpression},       {"合同&违约", CComplexFilter::kAccepted},
    {"合同&!草案", CComplexFilter::kAccepted},      {"合同~5~违约", CComplexFilter::kAccepted},
    {"甲方&合同~0~违约&!草案", CComplexFilter::kAccepted}, {"按装-->安装", CComplexFilter::kAccepted},
    {"!合同", CComplexFilter::kMalformed},          {"!合同&!草案", CComplexFilter::kMalformed},
    {"合同&", CComplexFilter::kMalformed},          {"&合同", CComplexFilter::kMalformed},
    {"合同~~违约", CComplexFilter::kMalformed},     {"合同~1001~违约", CComplexFilter::kMalformed},
    {"合同~-1~违约", CComplexFilter::kMalformed},   {"!合同~2~违约", CComplexFilter::kMalformed},
    {"合~2~违约", CComplexFilter::kMalformed},      {"合同&违", CComplexFilter::kMalformed},
    {"按装-->", CComplexFilter::kMalformed},        {"装-->安装", CComplexFilter::kMalformed},
    {"按装-->按装", CComplexFilter::kMalformed},    {"a-->b-->c", CComplexFilter::kMalformed},
};

TEST(ComplexFilterTest, ParsesTheExpressionSyntax) {
  for (const ParseCase& c : kParseCases) {
    CComplexFilter filter;
    EXPECT_EQ(filter.ImportLine(c.szField, "c", 1), c.eResult) << c.szField;
  }
}

struct EvalCase {
  const char* szExpression;
  const char* szText;
  bool bHolds;
};

const EvalCase kEvalCases[] = {
    {"合同&违约", "合同中规定了违约条款", true},
    {"合同&违约", "合同中规定了条款", false},
    {"违约&合同", "合同中规定了违约条款", true},
    {"合同&!草案", "合同已签署", true},
    {"合同&!草案", "合同草案已拟定", false},
    {"合同~3~违约", "合同中的违约", true},       // two characters between
    {"合同~1~违约", "合同中的违约", false},
    {"合同~0~违约", "合同违约", true},
    {"合同~5~违约", "违约在合同之前", false},   // order matters
    {"合同~2~违约", "合同很长很长，合同中违约", true},  // the second occurrence is close enough
    {"合同&违约~2~责任&!草案", "合同约定违约的责任", true},
    {"合同&违约~2~责任&!草案", "合同草案约定违约的责任", false},
};

TEST(ComplexFilterTest, ExpressionsHoldAsDocumented) {
  for (const EvalCase& c : kEvalCases) {
    CTempDir dir;
    std::string sFile = dir.Path() + "/u.txt";
    FILE* fp = fopen(sFile.c_str(), "wb");
    fprintf(fp, "%s law 4\n", c.szExpression);
    fclose(fp);
    CKeyScanData data(dir.Path().c_str(), 0);
    ASSERT_EQ(data.ImportUserDict(sFile.c_str(), false, true), 1) << c.szExpression;
    std::vector<_tKeyHit> vecHits;
    data.Scan(c.szText, vecHits);
    EXPECT_EQ(vecHits.size(), c.bHolds ? 1u : 0u) << c.szExpression << " in " << c.szText;
    if (!vecHits.empty()) {
      EXPECT_EQ(vecHits[0].eKind, _tKeyHit::kComplex);
      EXPECT_STREQ(vecHits[0].sClass, "law");
      EXPECT_EQ(vecHits[0].nWeight, 4);
    }
  }
}

TEST(ComplexFilterTest, CorrectionsTakeLeftmostLongestWithoutOverlap) {
  CTempDir dir;
  std::string sFile = dir.Path() + "/u.txt";
  FILE* fp = fopen(sFile.c_str(), "wb");
  fputs("一股作气-->一鼓作气\n股作-->鼓作\n作气-->做气\n再接再励-->再接再厉\n", fp);
  fclose(fp);
  CKeyScanData data(dir.Path().c_str(), 0);
  ASSERT_EQ(data.ImportUserDict(sFile.c_str(), false, true), 4);
  std::vector<_tKeyHit> vecHits;
  data.Scan("一股作气，再接再励", vecHits);
  ASSERT_EQ(vecHits.size(), 2u);
  EXPECT_STREQ(vecHits[0].sWord, "一股作气");
  EXPECT_STREQ(vecHits[0].sCorrection, "一鼓作气");
  EXPECT_EQ(vecHits[1].offset, 15u);
  EXPECT_STREQ(vecHits[1].sCorrection, "再接再厉");
}

}  // namespace
