// Measures the keyword scanner on a word list and a text (the files the
// dictionary benchmark writes: 50,000 words, 2 MB of text):
//   import        - importing the words as a keyword list, with its files
//   scan_seconds  - scanning the text line by line, every hit turned into
//                   its record (best of 5)
// Usage: tarvos_bench_keyscan WORDS_TXT TEXT_TXT WORK_DIR
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "keyscan/KeyScanData.h"

namespace {
using Clock = std::chrono::steady_clock;

double Seconds(Clock::time_point tStart) { return std::chrono::duration<double>(Clock::now() - tStart).count(); }

std::vector<std::string> ReadLines(const std::string& sFile) {
  std::ifstream in(sFile);
  std::vector<std::string> vecLines;
  for (std::string sLine; std::getline(in, sLine);) vecLines.push_back(sLine);
  return vecLines;
}
}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::cerr << "usage: tarvos_bench_keyscan WORDS_TXT TEXT_TXT WORK_DIR\n";
    return 2;
  }
  const std::string sUserDict = std::string(argv[3]) + "/keywords.txt";
  std::ofstream out(sUserDict);
  for (const std::string& sWord : ReadLines(argv[1])) out << sWord << " kw\n";
  out.close();
  CKeyScanData data(argv[3], 0);
  auto tStart = Clock::now();
  int nImported = data.ImportUserDict(sUserDict.c_str(), false, true);
  printf("import: %d keywords in %.3f s\n", nImported, Seconds(tStart));

  const std::vector<std::string> vecText = ReadLines(argv[2]);
  size_t nBytes = 0;
  for (const std::string& sLine : vecText) nBytes += sLine.size() + 1;
  double fBest = 1e9;
  size_t nHits = 0;
  std::vector<_tKeyHit> vecHits;
  for (int nRound = 0; nRound < 5; ++nRound) {
    nHits = 0;
    tStart = Clock::now();
    for (const std::string& sLine : vecText) {
      data.Scan(sLine, vecHits);
      nHits += vecHits.size();
    }
    fBest = std::min(fBest, Seconds(tStart));
  }
  struct rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  printf("scan: %zu hits in %.2f MB, %.1f MB/s\n", nHits, nBytes / 1e6, nBytes / 1e6 / fBest);
  printf("scan_seconds %.4f\n", fBest);
  printf("peak memory: %ld MB\n", usage.ru_maxrss / 1024);
  return 0;
}
