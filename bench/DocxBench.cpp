// Measures the document model on one DOCX:
//   read   - ReadDocx (unpacking into the working folder) + ParseStruct, best of 7
//   peak   - peak resident memory of the process, against the size of word/document.xml
// The segmenter is not started, as the reference readers do not segment either.
// Usage: tarvos_bench_docx FILE.docx
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>

#include "docx/Document.h"
#include "docx/DocxPackage.h"
#include "docx/DocxParser.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    fprintf(stderr, "usage: tarvos_bench_docx FILE.docx\n");
    return 2;
  }
  double fBest = 1e9;
  size_t nParas = 0, nTables = 0, nFigures = 0;
  std::string sDocumentXml;
  for (int nRound = 0; nRound < 7; ++nRound) {
    CDocxPackage package;
    CDocument doc;
    auto t = std::chrono::steady_clock::now();
    if (package.ReadDocx(argv[1]) != 1 || CDocxParser().ParseStruct(package, 0, "", true, doc) < 0) {
      fprintf(stderr, "cannot read %s\n", argv[1]);
      return 1;
    }
    fBest = std::min(fBest, std::chrono::duration<double>(std::chrono::steady_clock::now() - t).count());
    nParas = doc.m_vecParagraph.size();
    nTables = doc.m_vecTable.size();
    nFigures = doc.m_vecFigure.size();
    sDocumentXml = doc.m_sPath + "/word/document.xml";
  }
  struct stat st;
  long nXmlKb = stat(sDocumentXml.c_str(), &st) == 0 ? (long)(st.st_size / 1024) : 0;
  struct rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  printf("read: %.2f ms (%zu paragraphs, %zu tables, %zu figures)\n", fBest * 1000, nParas, nTables, nFigures);
  printf("seconds %.6f\n", fBest);
  printf("peak memory: %ld KB for a word/document.xml of %ld KB (%.1fx; limit 10x)\n", usage.ru_maxrss, nXmlKb,
         nXmlKb ? (double)usage.ru_maxrss / nXmlKb : 0.0);
  return 0;
}
