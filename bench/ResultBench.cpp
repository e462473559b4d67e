// Measures the findings pipeline and a whole check:
//   render  - 100,000 findings rendered as CheckResults XML and as JSON
//   import  - the same files read back
//   check   - TARVOS_CheckReportF (format 0) on a DOCX, beside reading the
//             DOCX into the model alone, best of 3 each
// Usage: tarvos_bench_result DATA_DIR FILE.docx WORK_DIR
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>

#include "api/Globals.h"
#include "checker/CheckResult.h"
#include "checker/ID2Message.h"
#include "docx/DocImporter.h"
#include "docx/Document.h"
#include "utility/lexical/Lexical.h"
#include "tarvos.h"

namespace {
using Clock = std::chrono::steady_clock;
double Since(Clock::time_point t) { return std::chrono::duration<double>(Clock::now() - t).count(); }

template <class F>
double Best(int nRounds, F&& fn) {
  double fBest = 1e9;
  for (int i = 0; i < nRounds; ++i) {
    auto t = Clock::now();
    fn();
    fBest = std::min(fBest, Since(t));
  }
  return fBest;
}
}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    fprintf(stderr, "usage: tarvos_bench_result DATA_DIR FILE.docx WORK_DIR\n");
    return 2;
  }
  if (TARVOS_Init(argv[1]) != 1) {
    fprintf(stderr, "cannot start the engine: %s\n", TARVOS_GetLastErrorMsg());
    return 1;
  }
  const int kFindings = 100000;
  const char* kIds[] = {"1.1.1", "1.1.2", "1.5.2", "1.6", "12.1", "99.6"};
  CCheckResult results(g_pEngine->GetMessages());
  for (int i = 0; i < kFindings; ++i) {
    _tCheckResult r;
    r.para_id = (uint32_t)(i * 37);
    r.offset = (uint32_t)(i % 50);
    r.error_id = kIds[i % 6];
    r.text = "本项目依据国家标准编制，设计规模为日处理污水十万立方米。";
    r.field_id = i % 6;
    r.org_str = "原文" + std::to_string(i);
    r.revise_type = 1;
    r.new_str = "改文" + std::to_string(i);
    results.AddResult(r);
  }
  std::string sXml, sJson;
  double fXml = Best(3, [&] { sXml = results.GetResult("/p", "doc", 1, "", nullptr); });
  double fJson = Best(3, [&] { sJson = results.GetResultJson("/p", "doc", 1, "", nullptr); });
  std::string sWork = argv[3];
  std::ofstream(sWork + "/many_Check.xml", std::ios::binary) << sXml;
  std::ofstream(sWork + "/many_Check.json", std::ios::binary) << sJson;
  double fImportXml = Best(3, [&] { CCheckResult r; r.Import((sWork + "/many_Check.xml").c_str()); });
  double fImportJson = Best(3, [&] { CCheckResult r; r.Import((sWork + "/many_Check.json").c_str()); });
  printf("render XML: %.0f findings/s (%.1f ms); JSON: %.0f findings/s (%.1f ms)\n", kFindings / fXml, fXml * 1000,
         kFindings / fJson, fJson * 1000);
  printf("import XML: %.0f findings/s (%.1f ms); JSON: %.0f findings/s (%.1f ms)\n", kFindings / fImportXml,
         fImportXml * 1000, kFindings / fImportJson, fImportJson * 1000);

  double fParse = Best(3, [&] {
    CDocument doc;
    CDocImporter(QUENDA_Analyser().get()).ParseDocx(doc, argv[2], "", 0);
  });
  double fCheck = Best(3, [&] { TARVOS_CheckReportF(argv[2], "", "", 1, 0, false, 0); });
  printf("check: TARVOS_CheckReportF %.1f ms; reading the model alone (segmenter on) %.1f ms\n", fCheck * 1000,
         fParse * 1000);
  TARVOS_Exit();
  return 0;
}
