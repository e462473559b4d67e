// Applying 1,000 findings to a long report and packing the revised DOCX,
// against reading the same report into the model (the limit is 3x).
// Usage: tarvos_bench_revise DATA_DIR REPORT.docx WORK_DIR
// WORK_DIR receives a copy of the report, its working folder, the result
// and the revised DOCX.
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "api/Globals.h"
#include "checker/CheckResult.h"
#include "docx/DocImporter.h"
#include "docx/Document.h"
#include "reviser/DocReviser.h"
#include "tarvos.h"
#include "utility/CodePage.h"
#include "utility/lexical/Lexical.h"

namespace {

using Clock = std::chrono::steady_clock;
double Since(Clock::time_point t) { return std::chrono::duration<double>(Clock::now() - t).count(); }

const size_t kFindings = 1000;

// One text finding on each of the first body paragraphs with some text: its
// first character is to be replaced.
void AddFindings(const CDocument& doc, CCheckResult& results) {
  size_t nAdded = 0;
  doc.ForEachParagraph([&](const _tParagraph& para) {
    if (nAdded >= kFindings || para.level < 0 || para.text.size() < 6 || (unsigned char)para.text[0] < 0xE0) return;
    _tCheckResult r;
    r.para_id = para.id;
    r.error_id = "1.5.2";
    r.field_id = 2;
    r.revise_type = 1;
    r.org_str = para.text.substr(0, 3);
    r.new_str = "某";
    results.AddResult(r);
    nAdded++;
  });
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    fprintf(stderr, "usage: tarvos_bench_revise DATA_DIR REPORT.docx WORK_DIR\n");
    return 2;
  }
  if (TARVOS_Init(argv[1]) != 1) {
    fprintf(stderr, "cannot start the engine: %s\n", TARVOS_GetLastErrorMsg());
    return 1;
  }
  const std::string sWork = argv[3], sReport = sWork + "/revise_report.docx";
  std::filesystem::copy_file(argv[2], sReport, std::filesystem::copy_options::overwrite_existing);
  const CDocImporter importer(QUENDA_Analyser().get());
  double fRead = 1e9, fRevise = 1e9;
  size_t nFindings = 0;
  for (int nRound = 0; nRound < 3; ++nRound) {
    CDocument doc;  // reading unpacks the working folder anew: each round revises the original
    auto t = Clock::now();
    importer.ParseDocx(doc, sReport.c_str(), "", 0);
    fRead = std::min(fRead, Since(t));
    CCheckResult results(g_pEngine->GetMessages());
    AddFindings(doc, results);
    nFindings = results.GetFindings().size();
    const std::string sResult = sWork + "/revise_report_Check.xml";
    std::ofstream(sResult, std::ios::binary)
        << results.GetResult(ANSIToUTF8(doc.m_sPath).c_str(), ANSIToUTF8(doc.m_sFilename).c_str(), 1, "", nullptr);
    CDocReviser reviser(nullptr, g_pEngine->GetMessages());
    t = Clock::now();
    const char* sRevised = reviser.Revise(sResult.c_str());
    fRevise = std::min(fRevise, Since(t));
    if (sRevised == nullptr) {
      fprintf(stderr, "revision failed: %s\n", TARVOS_GetLastErrorMsg());
      return 1;
    }
  }
  struct rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  printf("revise: %zu findings applied and packed in %.1f ms; reading the model %.1f ms: %.2fx (limit 3x)\n",
         nFindings, fRevise * 1000, fRead * 1000, fRevise / fRead);
  printf("peak memory: %ld MB\n", usage.ru_maxrss / 1024);
  TARVOS_Exit();
  return 0;
}
