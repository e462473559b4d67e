// The spelling check on fuzz bytes: the first byte chooses between reading
// the rest as a misspelling dictionary (then checking a fixed text with it)
// and checking the rest, where every proposal must name text that is there.
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "FuzzSupport.h"
#include "utility/QueryExpand.h"
#include "utility/SpellChecker.h"
#include "utility/lexical/LexicalAnalyser.h"

namespace {
CLexicalAnalyser g_analyser;
std::unique_ptr<CSpellChecker> g_pChecker;
}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  g_pChecker.reset(new CSpellChecker(&g_analyser, nullptr, nullptr));
  if (!g_analyser.Load(TARVOS_FUZZ_DATA_DIR) ||
      !g_pChecker->Load(TARVOS_FUZZ_DATA_DIR, CLanguageModel::DefaultModelFile()))
    abort();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  if (nSize < 1 || nSize > kMaxFuzzInput) return 0;
  const std::string sRest(reinterpret_cast<const char*>(pData + 1), nSize - 1);
  std::vector<_tSpellFinding> vecFindings;
  if (pData[0] & 1) {
    const std::string sFile = WriteRaw("spelldict", pData + 1, nSize - 1);
    CQueryExpand dict(TARVOS_FUZZ_WORK_DIR, "SpellError");
    dict.SimDictGenerate(sFile.c_str(), (pData[0] & 2) ? sFile.c_str() : nullptr);
    CSpellChecker checker(&g_analyser, &dict, &dict);
    if (checker.Load(TARVOS_FUZZ_DATA_DIR, CLanguageModel::DefaultModelFile()))
      checker.Check("我们按装了新软件，经济合里。", vecFindings);
    return 0;
  }
  g_pChecker->Check(sRest, vecFindings);
  for (const _tSpellFinding& f : vecFindings)
    if (f.offset > sRest.size() || sRest.compare(f.offset, f.sWrong.size(), f.sWrong) != 0) abort();
  return 0;
}
