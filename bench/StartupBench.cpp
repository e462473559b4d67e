// Measures:
//   BM_InitExit        - starting and stopping the engine on a data directory
//   BM_CatalogueLoad   - loading the enciphered message catalogue
//   BM_CatalogueLookup - message and score look-ups by error id
// Usage: tarvos_bench --data DIR [benchmark flags]
#include <benchmark/benchmark.h>

#include <cstring>
#include <string>
#include <vector>

#include "checker/ID2Message.h"
#include "tarvos.h"

namespace {

std::string g_sDataDir = "build/data";

void BM_InitExit(benchmark::State& state) {
  for (auto _ : state) {
    if (TARVOS_Init(g_sDataDir.c_str()) != 1) {
      state.SkipWithError(TARVOS_GetLastErrorMsg());
      break;
    }
    TARVOS_Exit();
  }
}
BENCHMARK(BM_InitExit)->Unit(benchmark::kMicrosecond);

void BM_CatalogueLoad(benchmark::State& state) {
  std::string sFile = g_sDataDir + "/Data/Error/ErrorMessage.dat";
  for (auto _ : state) {
    CID2Message catalogue;
    if (catalogue.Load(sFile.c_str()) != 1) {
      state.SkipWithError("catalogue not loaded");
      break;
    }
    benchmark::DoNotOptimize(catalogue.GetMessages().size());
  }
}
BENCHMARK(BM_CatalogueLoad)->Unit(benchmark::kMicrosecond);

void BM_CatalogueLookup(benchmark::State& state) {
  CID2Message catalogue;
  catalogue.Load((g_sDataDir + "/Data/Error/ErrorMessage.dat").c_str());
  std::vector<std::string> vecIds;
  for (const auto& kv : catalogue.GetMessages()) vecIds.push_back(kv.first);
  if (vecIds.empty()) {
    state.SkipWithError("catalogue empty");
    return;
  }
  size_t i = 0;
  for (auto _ : state) {
    float fMax = 0;
    const std::string& sId = vecIds[i++ % vecIds.size()];
    benchmark::DoNotOptimize(catalogue.GetText(sId.c_str()));
    benchmark::DoNotOptimize(catalogue.GetScore(sId.c_str(), fMax));
  }
}
BENCHMARK(BM_CatalogueLookup);

}  // namespace

int main(int argc, char** argv) {
  std::vector<char*> vecArgs;
  for (int i = 0; i < argc; ++i) {
    if (strcmp(argv[i], "--data") == 0 && i + 1 < argc) {
      g_sDataDir = argv[++i];
      continue;
    }
    vecArgs.push_back(argv[i]);
  }
  int nArgs = (int)vecArgs.size();
  benchmark::Initialize(&nArgs, vecArgs.data());
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
