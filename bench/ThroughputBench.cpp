// Checks per second through the C API, as a host runs them:
//   sequential  - every document checked on one instance, one thread (best of
//                 the rounds): the time a check of the whole set takes;
//   threads N   - N threads on N instances, each checking every document of
//                 its own copy of the set: documents per second against the
//                 sequential rate (ideal: N times).
// Usage: tarvos_bench_throughput DATA_DIR WORK_DIR THREADS FILE.docx...
// WORK_DIR receives one copy of the documents per thread (a check writes its
// working folder and result beside the document).
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "tarvos.h"

namespace fs = std::filesystem;

namespace {

double Since(std::chrono::steady_clock::time_point t) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - t).count();
}

std::vector<std::string> CopyInto(const std::vector<std::string>& vecFiles, const std::string& sDir) {
  fs::create_directories(sDir);
  std::vector<std::string> vecCopies;
  for (const std::string& sFile : vecFiles) {
    std::string sCopy = sDir + "/" + fs::path(sFile).filename().string();
    fs::copy_file(sFile, sCopy, fs::copy_options::overwrite_existing);
    vecCopies.push_back(sCopy);
  }
  return vecCopies;
}

int CheckAll(const std::vector<std::string>& vecFiles, int handle) {
  int nFailed = 0;
  for (const std::string& sFile : vecFiles)
    if (TARVOS_CheckReportF(sFile.c_str(), "", "", 1, 1, false, handle) == nullptr) ++nFailed;
  return nFailed;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 5) {
    fprintf(stderr, "usage: tarvos_bench_throughput DATA_DIR WORK_DIR THREADS FILE.docx...\n");
    return 2;
  }
  const std::string sWork = argv[2];
  const int nThreads = std::max(1, atoi(argv[3]));
  const std::vector<std::string> vecFiles(argv + 4, argv + argc);
  if (TARVOS_Init(argv[1]) != 1) {
    fprintf(stderr, "the engine did not start: %s\n", TARVOS_GetLastErrorMsg());
    return 1;
  }
  std::vector<std::vector<std::string>> vecSets;
  for (int t = 0; t < nThreads; ++t) vecSets.push_back(CopyInto(vecFiles, sWork + "/set" + std::to_string(t)));

  CheckAll(vecSets[0], 0);  // warm the caches once
  double fSequential = 1e9;
  int nFailed = 0;
  for (int nRound = 0; nRound < 5; ++nRound) {
    auto t = std::chrono::steady_clock::now();
    nFailed = CheckAll(vecSets[0], 0);
    fSequential = std::min(fSequential, Since(t));
  }
  double fParallel = 1e9;
  for (int nRound = 0; nRound < 5; ++nRound) {
    std::vector<std::thread> vecWorkers;
    auto t = std::chrono::steady_clock::now();
    for (int i = 0; i < nThreads; ++i)
      vecWorkers.emplace_back([&, i] {
        int handle = TARVOS_NewInstance();
        CheckAll(vecSets[i], handle);
        TARVOS_DeleteInstance(handle);
      });
    for (auto& worker : vecWorkers) worker.join();
    fParallel = std::min(fParallel, Since(t));
  }
  TARVOS_Exit();
  const double fRateOne = vecFiles.size() / fSequential, fRateMany = nThreads * vecFiles.size() / fParallel;
  printf("sequential: %zu documents in %.1f ms (%.1f documents/s, best of 5; %d failed)\n", vecFiles.size(),
         fSequential * 1000, fRateOne, nFailed);
  printf("seconds %.6f\n", fSequential);
  printf("%d threads on %d instances: %.1f documents/s = %.2fx the sequential rate (ideal %d.00x)\n", nThreads, nThreads,
         fRateMany, fRateMany / fRateOne, nThreads);
  return 0;
}
