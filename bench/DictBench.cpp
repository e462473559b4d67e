// Measures, on Debian's jieba dictionary (word, frequency, tag per line):
//   build     - building a CPDAT from every word (best of 3)
//   lookup    - exact look-ups per second of dictionary words
//   scan      - multi-pattern scan with 50,000 words over a generated Chinese
//               text of at least 2 MB (best of 5), in MB/s
// It also writes the scan's words and text to a folder, so that the bench
// script can time grep -F on the same files in the same run.
// Usage: tarvos_bench_dict DICT_TXT OUT_DIR
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "utility/PDAT.h"

namespace {

using Clock = std::chrono::steady_clock;

double Seconds(Clock::time_point tStart) {
  return std::chrono::duration<double>(Clock::now() - tStart).count();
}

std::vector<std::string> ReadWords(const std::string& sFile) {
  std::ifstream in(sFile);
  std::vector<std::string> vecWords;
  std::string sLine;
  while (std::getline(in, sLine)) {
    std::istringstream fields(sLine);
    std::string sWord;
    if (fields >> sWord) vecWords.push_back(sWord);
  }
  return vecWords;
}

double TimeBuild(const std::vector<std::string>& vecWords, CPDAT& dict) {
  double fBest = 1e9;
  for (int nRound = 0; nRound < 3; ++nRound) {
    auto tStart = Clock::now();
    dict.BeginAdd();
    for (const auto& sWord : vecWords) dict.AddWord(sWord);
    dict.FinishAdd();
    fBest = std::min(fBest, Seconds(tStart));
    if (nRound < 2) dict.Clear();
  }
  return fBest;
}

long PeakRssKb() {
  struct rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: tarvos_bench_dict DICT_TXT OUT_DIR\n";
    return 2;
  }
  std::vector<std::string> vecWords = ReadWords(argv[1]);
  if (vecWords.empty()) {
    std::cerr << "no words in " << argv[1] << "\n";
    return 1;
  }
  CPDAT dict;
  double fBuild = TimeBuild(vecWords, dict);
  printf("build: %zu words in %.3f s (limit 2 s)\n", dict.GetCount(), fBuild);

  std::mt19937 rng(42);
  std::vector<const std::string*> vecQueries;
  for (int i = 0; i < 5000000; ++i) vecQueries.push_back(&vecWords[rng() % vecWords.size()]);
  auto tStart = Clock::now();
  long nFound = 0;
  for (const std::string* pWord : vecQueries) nFound += dict.GetId(*pWord) >= 0;
  double fLookup = Seconds(tStart);
  printf("lookup: %.2f million/s (limit 5 million/s), %ld found\n", vecQueries.size() / fLookup / 1e6, nFound);

  // The scan dictionary: 50,000 words of two or more characters, spread over the list.
  std::vector<std::string> vecScanWords;
  for (size_t i = 0; i < vecWords.size() && vecScanWords.size() < 50000; i += 3)
    if (vecWords[i].size() >= 6) vecScanWords.push_back(vecWords[i]);
  std::string sText;
  const char* kPunct[] = {"，", "。", "、", "；"};
  while (sText.size() < 2u * 1024 * 1024) {
    sText += vecWords[rng() % vecWords.size()];
    if (rng() % 8 == 0) sText += kPunct[rng() % 4];
    if (rng() % 40 == 0) sText += "\n";
  }
  std::string sOut = argv[2];
  std::ofstream(sOut + "/words.txt") << [&] {
    std::string s;
    for (const auto& w : vecScanWords) s += w + "\n";
    return s;
  }();
  std::ofstream(sOut + "/text.txt") << sText;

  CPDAT scanDict;
  scanDict.BeginAdd();
  for (const auto& sWord : vecScanWords) scanDict.AddWord(sWord);
  scanDict.FinishAdd();
  std::vector<_tPatternMatch> vecMatch;
  double fScan = 1e9;
  for (int nRound = 0; nRound < 5; ++nRound) {
    tStart = Clock::now();
    scanDict.Scan(sText.data(), sText.size(), vecMatch);
    fScan = std::min(fScan, Seconds(tStart));
  }
  printf("scan: %zu words over %.2f MB: %.4f s, %.1f MB/s, %zu matches\n", vecScanWords.size(),
         sText.size() / 1048576.0, fScan, sText.size() / fScan / 1048576.0, vecMatch.size());
  printf("scan_seconds %.6f\n", fScan);
  printf("peak memory: %ld MB\n", PeakRssKb() / 1024);
  return 0;
}
