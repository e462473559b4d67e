// Measures the format check on one DOCX against the parse of that DOCX:
//   parse  - ReadDocx + ParseStruct, best of 7
//   check  - CDocFormatCheck::Check (template look-up, table of contents,
//            order checks, template comparison), best of 7 on fresh parses
// The template store is the one of the data directory given.
// Usage: tarvos_bench_format DATA_DIR FILE.docx [REPORT_TYPE]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "checker/CheckResult.h"
#include "checker/DocFormatCheck.h"
#include "docx/Document.h"
#include "docx/DocxPackage.h"
#include "docx/DocxParser.h"
#include "utility/Num2FontSize.h"

namespace {

double Since(std::chrono::steady_clock::time_point t) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - t).count();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    fprintf(stderr, "usage: tarvos_bench_format DATA_DIR FILE.docx [REPORT_TYPE]\n");
    return 2;
  }
  const int nType = argc > 3 ? atoi(argv[3]) : 1;
  CNum2FontSize sizes;
  sizes.Import((std::string(argv[1]) + "/Data/Font/FontSize.dat").c_str());
  CDocFormatCheck checker(argv[1], &sizes);
  if (checker.GetTemplateCount() == 0) {
    fprintf(stderr, "no template in %s\n", argv[1]);
    return 1;
  }
  double fParse = 1e9, fCheck = 1e9;
  size_t nFindings = 0, nParas = 0;
  for (int nRound = 0; nRound < 7; ++nRound) {
    CDocxPackage package;
    CDocument doc;
    auto t = std::chrono::steady_clock::now();
    if (package.ReadDocx(argv[2]) != 1 || CDocxParser().ParseStruct(package, nType, "", true, doc) < 0) {
      fprintf(stderr, "cannot read %s\n", argv[2]);
      return 1;
    }
    fParse = std::min(fParse, Since(t));
    CCheckResult result;
    t = std::chrono::steady_clock::now();
    checker.Check(doc, result, nType, _tTemplateKeys::ForOrganization(""));
    fCheck = std::min(fCheck, Since(t));
    nFindings = result.GetFindings().size();
    nParas = doc.m_vecParagraph.size();
  }
  printf("parse: %.2f ms (%zu paragraphs)\n", fParse * 1000, nParas);
  printf("format check: %.2f ms (%zu findings), %.2f of the parse time (limit 0.25)\n", fCheck * 1000, nFindings,
         fCheck / fParse);
  return 0;
}
