// Measures the lexical analyser:
//   load   - starting the analyser (lexicon and model) on a data directory
//   speed  - segmenting a text file line by line with tags, load excluded,
//            in MB/s of UTF-8 input, best of 3
//   memory - peak resident memory of the process
// and writes the tagged output, one line per input line, for comparison with
// the reference segmenter. Usage: tarvos_bench_seg DATA_DIR TEXT_FILE OUT_FILE
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "utility/lexical/Lexical.h"

namespace {
using Clock = std::chrono::steady_clock;
double Seconds(Clock::time_point t) { return std::chrono::duration<double>(Clock::now() - t).count(); }
}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::cerr << "usage: tarvos_bench_seg DATA_DIR TEXT_FILE OUT_FILE\n";
    return 2;
  }
  auto tLoad = Clock::now();
  if (QUENDA_Init(argv[1]) != 1) {
    std::cerr << "cannot start the analyser on " << argv[1] << "\n";
    return 1;
  }
  double fLoad = Seconds(tLoad);
  std::vector<std::string> vecLines;
  size_t nBytes = 0;
  {
    std::ifstream in(argv[2]);
    std::string sLine;
    while (std::getline(in, sLine)) {
      nBytes += sLine.size() + 1;
      vecLines.push_back(sLine);
    }
  }
  std::vector<std::string> vecOut(vecLines.size());
  double fBest = 1e9;
  for (int nRound = 0; nRound < 3; ++nRound) {
    auto t = Clock::now();
    for (size_t i = 0; i < vecLines.size(); ++i) vecOut[i] = QUENDA_ParagraphProcess(vecLines[i], true);
    fBest = std::min(fBest, Seconds(t));
  }
  std::ofstream out(argv[3]);
  for (const auto& sLine : vecOut) out << sLine << '\n';
  struct rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  printf("load: %.1f ms (limit 200 ms)\n", fLoad * 1000);
  printf("speed: %.2f MB in %.3f s = %.1f MB/s (limit 8 MB/s)\n", nBytes / 1048576.0, fBest,
         nBytes / fBest / 1048576.0);
  printf("seconds %.6f\n", fBest);
  printf("peak memory: %ld MB (limit 200 MB)\n", usage.ru_maxrss / 1024);
  QUENDA_Exit();
  return 0;
}
