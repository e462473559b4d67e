// Builds a dictionary from fuzz words (lines of the input) and checks the
// scan against a naive search: every occurrence it reports is real, and every
// word found by plain search on a character boundary is reported.
#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "FuzzSupport.h"
#include "utility/PDAT.h"
#include "utility/Utf8.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  if (nSize > 4096) return 0;
  std::string sInput(reinterpret_cast<const char*>(pData), nSize);
  size_t nSplit = sInput.find('\0');
  std::string sWords = sInput.substr(0, nSplit);
  std::string sText = nSplit == std::string::npos ? sInput : sInput.substr(nSplit + 1);
  std::vector<std::string> vecWords;
  CPDAT dict;
  dict.BeginAdd();
  for (size_t nStart = 0; nStart <= sWords.size();) {
    size_t nEnd = sWords.find('\n', nStart);
    if (nEnd == std::string::npos) nEnd = sWords.size();
    std::string sWord = sWords.substr(nStart, nEnd - nStart);
    if (!sWord.empty() && dict.AddWord(sWord) == (int)vecWords.size()) vecWords.push_back(sWord);
    nStart = nEnd + 1;
  }
  dict.FinishAdd();

  std::set<size_t> setBoundary;  // character starts, as the trie reads them
  for (size_t i = 0, n = 0; i <= sText.size(); i += n) {
    setBoundary.insert(i);
    if (i == sText.size()) break;
    uint32_t c;
    n = DecodeUtf8(sText.data() + i, sText.size() - i, c);
  }
  std::vector<_tPatternMatch> vecMatch;
  dict.Scan(sText.data(), sText.size(), vecMatch);
  std::set<std::tuple<size_t, size_t, int>> setScan;
  for (const auto& m : vecMatch) {
    if (m.offset + m.length > sText.size() || sText.compare(m.offset, m.length, vecWords[m.id]) != 0) abort();
    setScan.emplace(m.offset, m.length, m.id);
  }
  for (size_t nId = 0; nId < vecWords.size(); ++nId) {
    if (dict.GetId(vecWords[nId]) != (int)nId) abort();
    for (size_t p = sText.find(vecWords[nId]); p != std::string::npos; p = sText.find(vecWords[nId], p + 1)) {
      // Only occurrences that the text's own character reading lines up with count.
      if (!setBoundary.count(p) || !setBoundary.count(p + vecWords[nId].size())) continue;
      std::string sAlone = vecWords[nId];
      bool bSameReading = true;
      for (size_t i = 0, n = 0, q = p; i < sAlone.size(); i += n, q += n) {
        uint32_t c1, c2;
        n = DecodeUtf8(sAlone.data() + i, sAlone.size() - i, c1);
        size_t n2 = DecodeUtf8(sText.data() + q, sText.size() - q, c2);
        if (n != n2 || c1 != c2) bSameReading = false;
      }
      if (bSameReading && !setScan.count({p, vecWords[nId].size(), (int)nId})) abort();
    }
  }
  return 0;
}
