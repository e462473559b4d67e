#include "utility/CountryDetect.h"

#include <memory>
#include <mutex>

namespace {
std::mutex g_mutexCountry;  // guards the pointer; the detector itself is read-only
std::shared_ptr<const CCountryDetector> g_pCountryDetector;

std::shared_ptr<const CCountryDetector> Detector() {
  std::lock_guard<std::mutex> lock(g_mutexCountry);
  return g_pCountryDetector;
}
}  // namespace

int CountryDetect_Init(const char* sDataPath) {
  if (sDataPath == nullptr) return 0;
  auto pDetector = std::make_shared<CCountryDetector>();
  if (pDetector->Load(tstring(sDataPath) + "/Data/Country/CountryList.txt") <= 0) return 0;
  std::lock_guard<std::mutex> lock(g_mutexCountry);
  g_pCountryDetector = pDetector;
  return 1;
}

void CountryDetect_Exit() {
  std::lock_guard<std::mutex> lock(g_mutexCountry);
  g_pCountryDetector.reset();
}

std::vector<_tCountryMatch> CountryDetect_Find(const tstring& sText) {
  auto pDetector = Detector();
  return pDetector ? pDetector->Find(sText) : std::vector<_tCountryMatch>();
}

tstring CountryDetect_GetName(int nCountry) {
  auto pDetector = Detector();
  return pDetector ? pDetector->GetShortName(nCountry) : "";
}

bool CountryDetect_IsOn() { return Detector() != nullptr; }
