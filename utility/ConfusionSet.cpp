#include "utility/ConfusionSet.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <sstream>

#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"
#include "utility/Pinyin.h"
#include "utility/Utf8.h"
#include "utility/lexical/Lexicon.h"

namespace {

bool IsHan(uint32_t c) { return (c >= 0x4E00 && c <= 0x9FFF) || (c >= 0x3400 && c <= 0x4DBF); }

// The characters of a UTF-8 text, each as its own string.
std::vector<tstring> SplitChars(const tstring& sText) {
  std::vector<tstring> vecChars;
  for (size_t i = 0; i < sText.size();) {
    uint32_t c;
    size_t n = DecodeUtf8(sText.data() + i, sText.size() - i, c);
    vecChars.push_back(sText.substr(i, n));
    i += n;
  }
  return vecChars;
}

void AddOnce(std::vector<_tConfusion>& vecOut, const tstring& sChar, const tstring& sSelf, EConfusion kind) {
  if (sChar == sSelf) return;
  for (const _tConfusion& c : vecOut)
    if (c.sChar == sChar) return;
  vecOut.push_back({sChar, kind});
}

}  // namespace

int CConfusionSet::BuildSoundTable(const CLexicon& lexicon, int nMinFreq, const tstring& sFile) {
  std::vector<std::pair<tstring, int>> vecChars;
  const double fLogTotal = -lexicon.GetUnknownLogProb();
  lexicon.GetDict().ForEachWord([&](const tstring& sWord, int nId) {
    uint32_t c;
    if (DecodeUtf8(sWord.data(), sWord.size(), c) != sWord.size() || !IsHan(c)) return;
    int nFreq = (int)std::lround(std::exp(lexicon.GetLogProb(nId) + fLogTotal));
    if (nFreq >= nMinFreq) vecChars.emplace_back(sWord, nFreq);
  });
  std::sort(vecChars.begin(), vecChars.end());
  int nWritten = 0;
  bool bSaved = WriteFileReplacing(sFile, [&](FILE* fp) {
    for (const auto& entry : vecChars) {
      tstring sToned = GetPinyinToned(entry.first), sPlain = GetPinyin(entry.first);
      if (sToned.empty() || sToned == entry.first) continue;  // no reading known
      fprintf(fp, "%s\t%s\t%s\t%d\n", entry.first.c_str(), sToned.c_str(), sPlain.c_str(), entry.second);
      nWritten++;
    }
    return nWritten > 0;
  });
  return bSaved ? nWritten : 0;
}

bool CConfusionSet::Load(const tstring& sFolder) {
  if (!LoadSounds(sFolder + "/sound.txt")) return false;
  LoadShapes(sFolder + "/shape.txt");
  return true;
}

bool CConfusionSet::LoadSounds(const tstring& sFile) {
  std::ifstream in(sFile, std::ios::binary);
  if (!in) {
    SetLastError("Cannot read file " + sFile);
    return false;
  }
  for (tstring sLine; std::getline(in, sLine);) {
    std::istringstream fields(sLine);
    tstring sChar, sToned, sPlain;
    if (!std::getline(fields, sChar, '\t') || !std::getline(fields, sToned, '\t') ||
        !std::getline(fields, sPlain, '\t'))
      continue;
    m_mapSound[sChar] = {sToned, sPlain};
    m_mapToned[sToned].push_back(sChar);
    m_mapPlain[sPlain].push_back(sChar);
  }
  return !m_mapSound.empty();
}

void CConfusionSet::LoadShapes(const tstring& sFile) {
  std::ifstream in(sFile, std::ios::binary);
  for (tstring sLine; std::getline(in, sLine);) {
    sLine = sLine.substr(0, sLine.find('#'));
    std::vector<tstring> vecGroup;
    for (const tstring& sChar : SplitChars(sLine))
      if (sChar.size() > 1) vecGroup.push_back(sChar);
    for (const tstring& sChar : vecGroup) {
      std::vector<tstring>& vecLike = m_mapShape[sChar];
      for (const tstring& sOther : vecGroup)
        if (sOther != sChar && std::find(vecLike.begin(), vecLike.end(), sOther) == vecLike.end())
          vecLike.push_back(sOther);
    }
  }
}

void CConfusionSet::Candidates(const tstring& sChar, std::vector<_tConfusion>& vecOut) const {
  vecOut.clear();
  auto itSound = m_mapSound.find(sChar);
  if (itSound != m_mapSound.end()) {
    for (const tstring& s : m_mapToned.at(itSound->second.sToned)) AddOnce(vecOut, s, sChar, EConfusion::kSameTone);
    for (const tstring& s : m_mapPlain.at(itSound->second.sPlain))
      AddOnce(vecOut, s, sChar, EConfusion::kSameSyllable);
  }
  auto itShape = m_mapShape.find(sChar);
  if (itShape != m_mapShape.end())
    for (const tstring& s : itShape->second) AddOnce(vecOut, s, sChar, EConfusion::kShape);
}
