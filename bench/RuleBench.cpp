// Measures the extraction rules on one DOCX:
//   segment  - the lexical analyser over every text the scan reads, best of 5
//   scan     - a whole scan with the type's rule set (segmenting included),
//              best of 5; matching alone is scan - segment
//   compile  - importing and compiling 1,000 generated rules, best of 3
//   audit    - 10,000 audit expressions over 10,000 extracted values, best of 3
// Usage: tarvos_bench_rules DATA_DIR FILE.docx [DOC_TYPE]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "docx/Document.h"
#include "docx/DocxPackage.h"
#include "docx/DocxParser.h"
#include "checker/CheckResult.h"
#include "rules/Audit.h"
#include "rules/AuditAgent.h"
#include "rules/ZYG.h"
#include "rules/ZYGAgent.h"
#include "utility/lexical/Lexical.h"

namespace {

double Since(std::chrono::steady_clock::time_point t) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - t).count();
}

std::string GeneratedRules(int nCount) {
  static const char* kWords[] = {"报告", "日期", "金额", "单位", "项目", "合同", "甲方", "乙方", "期限", "地址"};
  std::string sText;
  for (int i = 0; i < nCount; ++i) {
    std::string sWord = std::string(kWords[i % 10]) + kWords[(i / 10) % 10] + std::to_string(i / 100);
    sText += "<item><no>" + std::to_string(i) + "</no><rule>{[" + sWord + ";" + kWords[i % 7] +
             "]}{[：;:]0}{[/m;/n]2+3}s</rule><argument>key" + std::to_string(i % 50) + "</argument></item>\n";
  }
  return sText;
}

// Seconds to evaluate one expression rule over each of 10,000 amounts.
double AuditSeconds(const CLexicalAnalyser* pAnalyser, size_t& nValues, size_t& nFindings) {
  CAudit audit("", 98);
  audit.GetZYG()->ImportRuleFromMem("<item><no>1</no><rule>{[金额]}{[/m]}s</rule><argument>amount</argument></item>", true);
  audit.ImportFromMem("<audits><audit><no>1000</no><rule>amount >= 10 and amount * 2 < 19000</rule>"
                      "<field>amount</field><argument>out of range</argument></audit></audits>",
                      true);
  CZYGAgent agent(audit.GetZYG(), pAnalyser);
  agent.SetPunctuationCheck(false);
  for (int i = 0; i < 10000; ++i) agent.ScanText("金额" + std::to_string(i), (uint32_t)(i + 1));
  nValues = agent.GetKeyValues().size();
  double fBest = 1e9;
  for (int nRound = 0; nRound < 3; ++nRound) {
    CCheckResult result(nullptr);
    CAuditAgent auditAgent(&audit, &agent);
    auto t = std::chrono::steady_clock::now();
    auditAgent.CheckScanned(nullptr, &result);
    fBest = std::min(fBest, Since(t));
    nFindings = result.GetFindings().size();
  }
  return fBest;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    fprintf(stderr, "usage: tarvos_bench_rules DATA_DIR FILE.docx [DOC_TYPE]\n");
    return 2;
  }
  const int nType = argc > 3 ? atoi(argv[3]) : 1;
  if (QUENDA_Init(argv[1]) != 1) {
    fprintf(stderr, "the lexical analyser did not start on %s\n", argv[1]);
    return 1;
  }
  CZYG rules((std::string(argv[1]) + "/Data/").c_str(), nType);
  if (rules.Load() != 1) {
    fprintf(stderr, "no rules of type %d in %s\n", nType, argv[1]);
    return 1;
  }
  CDocxPackage package;
  CDocument doc;
  if (package.ReadDocx(argv[2]) != 1 || CDocxParser().ParseStruct(package, nType, "", false, doc) < 0) {
    fprintf(stderr, "cannot read %s\n", argv[2]);
    return 1;
  }
  std::vector<std::string> vecTexts;
  size_t nBytes = 0;
  doc.ForEachParagraph([&](const _tParagraph& para) {
    vecTexts.push_back(para.text);
    nBytes += para.text.size();
  });
  std::shared_ptr<CLexicalAnalyser> pAnalyser = QUENDA_Analyser();
  double fSegment = 1e9, fScan = 1e9;
  size_t nMatches = 0, nValues = 0;
  for (int nRound = 0; nRound < 5; ++nRound) {
    std::vector<_tToken> vecTokens;
    auto t = std::chrono::steady_clock::now();
    for (const std::string& sText : vecTexts) pAnalyser->Segment(sText, vecTokens);
    fSegment = std::min(fSegment, Since(t));
    CZYGAgent agent(&rules, pAnalyser.get());
    t = std::chrono::steady_clock::now();
    agent.ScanDoc(&doc, "", 0, false);
    fScan = std::min(fScan, Since(t));
    nMatches = agent.GetMatches().size();
    nValues = agent.GetKeyValues().size();
  }
  double fCompile = 1e9;
  const std::string sRules = GeneratedRules(1000);
  for (int nRound = 0; nRound < 3; ++nRound) {
    CZYG generated("", 99);
    auto t = std::chrono::steady_clock::now();
    if (generated.ImportRuleFromMem(sRules.c_str(), true) != 1000) {
      fprintf(stderr, "the generated rules did not compile\n");
      return 1;
    }
    fCompile = std::min(fCompile, Since(t));
  }
  size_t nAuditValues = 0, nAuditFindings = 0;
  const double fAudit = AuditSeconds(pAnalyser.get(), nAuditValues, nAuditFindings);
  QUENDA_Exit();
  const double fMatch = std::max(fScan - fSegment, 1e-9);
  printf("texts %zu, %.2f MB, %zu rules of type %d\n", vecTexts.size(), nBytes / 1e6, rules.GetRuleCount(), nType);
  printf("segment %.4f s, scan %.4f s, matching alone %.4f s\n", fSegment, fScan, fMatch);
  printf("matching %.1f MB/s, %.0f matches/s (%zu matches, %zu values)\n", nBytes / 1e6 / fMatch,
         nMatches / fMatch, nMatches, nValues);
  printf("matching against segmenting: %.2fx (limit 1x)\n", fMatch / fSegment);
  printf("compiling 1000 rules: %.3f s (limit 1 s)\n", fCompile);
  printf("audit: %zu evaluations in %.4f s (limit 0.05 s), %zu findings\n", nAuditValues, fAudit, nAuditFindings);
  return 0;
}
