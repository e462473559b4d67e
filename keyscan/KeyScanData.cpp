#include "keyscan/KeyScanData.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"
#include "utility/Pinyin.h"
#include "utility/TextNormalizer.h"
#include "utility/Utf8.h"

namespace {
const size_t kMaxLine = 3072;
const size_t kMaxClasses = 255;
const char kProtectClass[] = "protect";

bool ReadUserFile(const tstring& sFile, tstring& sText) {
  if (ReadFileText(sFile, sText)) return true;
  SetLastError("Failed Open file " + sFile);
  WriteError("Failed Open file " + sFile);
  return false;
}

// Calls fn(line, number) for each line of a text, without its line end and
// a byte-order mark at its start.
template <class F>
void ForEachLine(const tstring& sText, F&& fn) {
  size_t nNumber = 0;
  for (size_t nStart = 0; nStart < sText.size();) {
    size_t nEnd = sText.find('\n', nStart);
    if (nEnd == tstring::npos) nEnd = sText.size();
    tstring sLine = sText.substr(nStart, nEnd - nStart);
    if (!sLine.empty() && sLine.back() == '\r') sLine.pop_back();
    if (sLine.compare(0, 3, "\xEF\xBB\xBF") == 0) sLine.erase(0, 3);
    fn(sLine, ++nNumber);
    nStart = nEnd + 1;
  }
}

// A refused line is logged and left as the last error, so a caller sees
// that (and why) the import skipped something.
void Refuse(const tstring& sText) {
  WriteLog(sText);
  SetLastError(sText);
}

bool IsAsciiAlnum(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); }
}  // namespace

CKeyScanData::CKeyScanData(const char* sDataPath, int nHandle)
    : m_nHandle(nHandle), m_sDataPath(sDataPath ? sDataPath : "") {
  m_sCommFile = m_sDataPath + "/KeyScanner/Filter" + std::to_string(nHandle) + "_";
}

void CKeyScanData::Destroy() {
  m_pKeyDict.reset();
  m_pKeyWordList.reset();
  m_pKeyPOS.reset();
  m_pClassDict.reset();
  m_pClassWordList.reset();
  m_pComplexFilter.reset();
  m_pPY2Word.reset();
  m_pinyinDict.Clear();
  m_nKeywordCount = 0;
  m_nProtectClass = -1;
  m_bHasExpressions = false;
  m_bLoadSuccess = false;
}

bool CKeyScanData::LoadPart(bool bLoaded, const char* sSuffix, const char* sMessage) {
  if (bLoaded) return true;
  SetLastError(sMessage + FileName(sSuffix));
  WriteError(sMessage + FileName(sSuffix));
  return false;
}

bool CKeyScanData::Load(int nHandle) {
  Destroy();
  m_nHandle = nHandle;
  m_sCommFile = m_sDataPath + "/KeyScanner/Filter" + std::to_string(nHandle) + "_";
  m_pKeyDict.reset(new CPDAT);
  m_pKeyWordList.reset(new CWordList);
  m_pKeyPOS.reset(new CPOS);
  m_pClassDict.reset(new CPDAT);
  m_pClassWordList.reset(new CWordList);
  const char* kNoWordList = "Cannot open key dictionary wordlist file ";
  const char* kNoDict = "Cannot open key dictionary file ";
  bool bOk = LoadPart(m_pKeyDict->Load(FileName("key.pdat")), "key.pdat", kNoDict) &&
             LoadPart(m_pKeyWordList->Load(FileName("key.wordlist")), "key.wordlist", kNoWordList) &&
             LoadPart(m_pKeyPOS->Load(FileName("key.pos")), "key.pos", "Cannot open key dictionary pos file ") &&
             LoadPart(m_pClassDict->Load(FileName("class.pdat")), "class.pdat", kNoDict) &&
             LoadPart(m_pClassWordList->Load(FileName("class.wordlist")), "class.wordlist", kNoWordList);
  if (!bOk) {
    Destroy();
    return false;
  }
  // The pinyin table and the expressions are optional parts: a list without
  // them scans its keywords all the same.
  const tstring sError = GetLastError();
  m_pPY2Word.reset(new CStrTran("py", "word"));
  if (!m_pPY2Word->Load(m_sCommFile)) m_pPY2Word->Clear();
  m_pComplexFilter.reset(new CComplexFilter);
  if (!m_pComplexFilter->Load(m_sCommFile)) m_pComplexFilter->Clear();
  SetLastError(sError);
  Index();
  m_bLoadSuccess = true;
  return true;
}

// What scanning needs besides the files: the keyword count, the protect
// class, the resolved expressions and the pinyin trie.
void CKeyScanData::Index() {
  m_nKeywordCount = m_pKeyPOS->GetCount();
  m_nProtectClass = m_pClassDict->GetId(kProtectClass);
  m_pComplexFilter->Org2Data(*m_pKeyDict);
  m_bHasExpressions = m_pComplexFilter->HasExpressions();
  m_pinyinDict.Clear();
  m_pinyinDict.BeginAdd();
  for (const auto& pair : m_pPY2Word->GetPairs()) m_pinyinDict.AddWord(pair.first);
  m_pinyinDict.FinishAdd();
}

bool CKeyScanData::ParseLine(const tstring& sLine, WORD_INFO& info, int& nPinyinFlag) {
  static thread_local char sWord[kMaxLine + 1], sClass[kMaxLine + 1];
  sWord[0] = sClass[0] = 0;
  int nWeight = 1;
  nPinyinFlag = 0;
  if (sscanf(sLine.c_str(), "%3072s %3072s %d %d", sWord, sClass, &nWeight, &nPinyinFlag) < 1 || sWord[0] == 0)
    return false;
  info.word = sWord;
  info.store_info = sClass[0] ? sClass : "filter";
  info.weight = nWeight;
  size_t nClose = sLine.find(']');
  if (sLine[0] == '[' && nClose != tstring::npos) {
    info.word = NormalizeText(sLine.substr(1, nClose - 1));
    char sAfter[kMaxLine + 1] = "";
    info.store_info = sscanf(sLine.c_str() + nClose + 1, "%3072s", sAfter) == 1 ? sAfter : "filter";
  } else {
    info.word = NormalizeText(info.word);
  }
  return !info.word.empty();
}

void CKeyScanData::StartFromCurrent(std::vector<WORD_INFO>& vecWords) const {
  if (!m_bLoadSuccess) return;
  for (size_t nId = 0; nId < m_nKeywordCount; ++nId) {
    POS_elem elem = m_pKeyPOS->Get((int)nId);
    vecWords.push_back({m_pKeyWordList->GetWord((int)nId), m_pClassWordList->GetWord(elem.POS_id), elem.freq});
  }
}

bool CKeyScanData::KeepWord(const tstring& sLine, const WORD_INFO& info, int nPinyinFlag, bool bAbbrevNeeded,
                            std::vector<WORD_INFO>& vecWords, std::unordered_map<tstring, size_t>& mapIndex) {
  CComplexFilter::EImport eImport = m_pComplexFilter->ImportLine(info.word, info.store_info, info.weight);
  if (eImport == CComplexFilter::kAccepted) return true;
  if (eImport == CComplexFilter::kMalformed) {
    Refuse(sLine + " Not Imported!");
    return false;
  }
  if (!IsKeywordLongEnough(info.word)) {
    Refuse(sLine + " Not Imported (too short)!");
    return false;
  }
  auto it = mapIndex.find(info.word);
  if (it == mapIndex.end()) {
    mapIndex.emplace(info.word, vecWords.size());
    vecWords.push_back(info);
  } else {
    vecWords[it->second] = info;  // imported again: the new class and weight
  }
  if (nPinyinFlag == 1) {
    tstring sPinyin = GetPinyin(info.word);
    if (!sPinyin.empty() && sPinyin != info.word) m_pPY2Word->Add(sPinyin, info.word);
    tstring sInitials = bAbbrevNeeded ? GetPinyinInitials(info.word) : "";
    if (sInitials.size() > 1 && sInitials != info.word) m_pPY2Word->Add(sInitials, info.word);
  }
  return true;
}

int CKeyScanData::ReadUserLines(const tstring& sFile, bool bAbbrevNeeded, std::vector<WORD_INFO>& vecWords) {
  tstring sText;
  if (!ReadUserFile(sFile, sText)) return -1;
  std::unordered_map<tstring, size_t> mapIndex;
  for (size_t i = 0; i < vecWords.size(); ++i) mapIndex.emplace(vecWords[i].word, i);
  int nCount = 0;
  ForEachLine(sText, [&](const tstring& sLine, size_t nNumber) {
    if (sLine.size() > kMaxLine) {
      Refuse("Line " + std::to_string(nNumber) + " of " + sFile + " is longer than 3072 bytes: Not Imported!");
      return;
    }
    if (!IsValidUtf8(sLine)) {
      Refuse("Line " + std::to_string(nNumber) + " of " + sFile + " is not UTF-8: Not Imported!");
      return;
    }
    WORD_INFO info;
    int nPinyinFlag = 0;
    if (ParseLine(sLine, info, nPinyinFlag) && KeepWord(sLine, info, nPinyinFlag, bAbbrevNeeded, vecWords, mapIndex))
      ++nCount;
  });
  return nCount;
}

int CKeyScanData::ImportUserDict(const char* sFilenameO, bool bAbbrevNeeded, bool bOverwrite) {
  const tstring sFile = sFilenameO ? sFilenameO : "";
  std::vector<WORD_INFO> vecWords;
  std::unique_ptr<CComplexFilter> pOldFilter = std::move(m_pComplexFilter);
  std::unique_ptr<CStrTran> pOldPinyin = std::move(m_pPY2Word);
  m_pComplexFilter.reset(!bOverwrite && pOldFilter ? new CComplexFilter(*pOldFilter) : new CComplexFilter);
  m_pPY2Word.reset(!bOverwrite && pOldPinyin ? new CStrTran(*pOldPinyin) : new CStrTran("py", "word"));
  if (!bOverwrite) StartFromCurrent(vecWords);
  int nCount = ReadUserLines(sFile, bAbbrevNeeded, vecWords);
  if (nCount < 0 || !Build(vecWords)) {
    m_pComplexFilter = std::move(pOldFilter);
    m_pPY2Word = std::move(pOldPinyin);
    return 0;
  }
  return nCount;
}

bool CKeyScanData::Build(const std::vector<WORD_INFO>& vecWords) {
  std::unique_ptr<CPDAT> pClassDict(new CPDAT);
  pClassDict->BeginAdd();
  for (const WORD_INFO& info : vecWords) pClassDict->AddWord(info.store_info);
  if (pClassDict->FinishAdd() > kMaxClasses) {
    SetLastError("Class count cannot over 255");
    WriteError("Class count cannot over 255");
    return false;
  }
  std::unique_ptr<CPDAT> pKeyDict(new CPDAT);
  pKeyDict->BeginAdd();
  for (const WORD_INFO& info : vecWords) pKeyDict->AddWord(info.word);
  m_pComplexFilter->ForEachTerm([&](const tstring& sTerm) { pKeyDict->AddWord(sTerm); });
  pKeyDict->FinishAdd();
  m_pKeyWordList.reset(new CWordList);
  pKeyDict->ForEachWord([this](const tstring& sWord, int nId) { m_pKeyWordList->AddWord(sWord, nId); });
  m_pClassWordList.reset(new CWordList);
  pClassDict->ForEachWord([this](const tstring& sWord, int nId) { m_pClassWordList->AddWord(sWord, nId); });
  m_pKeyPOS.reset(new CPOS);
  for (size_t i = 0; i < vecWords.size(); ++i)
    m_pKeyPOS->Set((int)i, pClassDict->GetId(vecWords[i].store_info), vecWords[i].weight);
  m_pKeyDict = std::move(pKeyDict);
  m_pClassDict = std::move(pClassDict);
  Index();
  m_bLoadSuccess = true;
  SaveAll();
  return true;
}

bool CKeyScanData::SaveAll() const {
  std::error_code ec;
  std::filesystem::create_directories(m_sDataPath + "/KeyScanner", ec);
  bool bOk = true;
  auto saved = [&bOk, this](bool bSaved, const char* sSuffix) {
    if (bSaved) return;
    WriteError("Cannot Save user dictionary  " + FileName(sSuffix));
    SetLastError("Cannot Save user dictionary  " + FileName(sSuffix));
    bOk = false;
  };
  saved(m_pKeyDict->Save(FileName("key.pdat")), "key.pdat");
  saved(m_pClassDict->Save(FileName("class.pdat")), "class.pdat");
  saved(m_pKeyWordList->Save(FileName("key.wordlist")), "key.wordlist");
  saved(m_pClassWordList->Save(FileName("class.wordlist")), "class.wordlist");
  saved(m_pKeyPOS->Save(FileName("key.pos")), "key.pos");
  saved(m_pPY2Word->Save(m_sCommFile), "py2word.tran");
  saved(m_pComplexFilter->Save(m_sCommFile), "complex.dat");
  WriteLog("Save user dictionary wordlist");
  return bOk;
}

int CKeyScanData::DeleteUserDict(const char* sFilenameO) {
  const tstring sFile = sFilenameO ? sFilenameO : "";
  tstring sText;
  if (!ReadUserFile(sFile, sText)) return -1;
  std::unordered_map<tstring, bool> mapDoomed;
  ForEachLine(sText, [&](const tstring& sLine, size_t) {
    WORD_INFO info;
    int nFlag;
    if (sLine.size() <= kMaxLine && ParseLine(sLine, info, nFlag)) mapDoomed[info.word] = true;
  });
  std::vector<WORD_INFO> vecWords, vecKept;
  StartFromCurrent(vecWords);
  for (const WORD_INFO& info : vecWords)
    if (!mapDoomed.count(info.word)) vecKept.push_back(info);
  int nRemoved = (int)(vecWords.size() - vecKept.size());
  if (m_pComplexFilter)
    for (const auto& doomed : mapDoomed) nRemoved += m_pComplexFilter->Remove(doomed.first) ? 1 : 0;
  if (!m_pComplexFilter) m_pComplexFilter.reset(new CComplexFilter);
  if (!m_pPY2Word) m_pPY2Word.reset(new CStrTran("py", "word"));
  // Pinyin spellings of removed keywords go with them.
  std::unique_ptr<CStrTran> pPinyin(new CStrTran("py", "word"));
  for (const auto& pair : m_pPY2Word->GetPairs())
    if (!mapDoomed.count(pair.second)) pPinyin->Add(pair.first, pair.second);
  m_pPY2Word = std::move(pPinyin);
  if (!Build(vecKept)) return -1;
  return nRemoved;
}

int CKeyScanData::ExportKeyDict(const char* sFilenameO) const {
  const tstring sFile = sFilenameO ? sFilenameO : "";
  FILE* fp = fopen(sFile.c_str(), "wb");
  if (fp == nullptr) {
    SetLastError("Failed Open file " + sFile);
    WriteError("Failed Open file " + sFile);
    return -1;
  }
  fputs("Word\tClass\tWeight\n", fp);
  int nCount = 0;
  for (size_t nId = 0; m_bLoadSuccess && nId < m_nKeywordCount; ++nId, ++nCount) {
    POS_elem elem = m_pKeyPOS->Get((int)nId);
    fprintf(fp, "%s\t%s\t%d\n", m_pKeyWordList->GetWord((int)nId), m_pClassWordList->GetWord(elem.POS_id), elem.freq);
  }
  if (m_bLoadSuccess)
    m_pComplexFilter->Export([&](const tstring& sExpr, const tstring& sClass, int nWeight) {
      fprintf(fp, "%s\t%s\t%d\n", sExpr.c_str(), sClass.c_str(), nWeight);
      ++nCount;
    });
  bool bOk = fflush(fp) == 0 && !ferror(fp);
  if (fclose(fp) != 0 || !bOk) {
    SetLastError("Fail write file " + sFile);
    return -1;
  }
  return nCount;
}

_tKeyHit CKeyScanData::KeywordHit(size_t nOffset, size_t nLength, int nId, _tKeyHit::EKind eKind) const {
  POS_elem elem = m_pKeyPOS->Get(nId);
  return {nOffset, nLength, eKind, m_pKeyWordList->GetWord(nId), m_pClassWordList->GetWord(elem.POS_id), elem.freq, ""};
}

void CKeyScanData::Scan(const tstring& sText, std::vector<_tKeyHit>& vecHits) const {
  vecHits.clear();
  if (!m_bLoadSuccess || sText.empty()) return;
  // Kept per thread: a scan per paragraph would otherwise allocate them anew.
  static thread_local std::vector<_tPatternMatch> vecMatch, vecPair;
  vecPair.clear();
  m_pKeyDict->Scan(sText.data(), sText.size(), vecMatch);
  std::vector<std::pair<size_t, size_t>> vecProtect;  // [start, end) spans
  for (const _tPatternMatch& m : vecMatch) {
    if ((size_t)m.id < m_nKeywordCount) {
      POS_elem elem = m_pKeyPOS->Get(m.id);
      if (elem.POS_id == m_nProtectClass && m_nProtectClass >= 0)
        vecProtect.emplace_back(m.offset, m.offset + m.length);
      else
        vecHits.push_back({m.offset, m.length, _tKeyHit::kKeyword, m_pKeyWordList->GetWord(m.id),
                           m_pClassWordList->GetWord(elem.POS_id), elem.freq, ""});
    }
    if (m_pComplexFilter->GetCorrection(m.id) != nullptr) vecPair.push_back(m);
  }
  AddCorrections(vecPair, vecHits);
  if (m_bHasExpressions) ScanComplex(sText, vecMatch, vecHits);
  if (m_pinyinDict.GetCount() > 0) ScanPinyin(sText, vecHits);
  if (!vecProtect.empty())
    vecHits.erase(std::remove_if(vecHits.begin(), vecHits.end(),
                                 [&](const _tKeyHit& hit) {
                                   return std::any_of(vecProtect.begin(), vecProtect.end(), [&](const auto& span) {
                                     return span.first <= hit.offset && hit.offset + hit.length <= span.second;
                                   });
                                 }),
                  vecHits.end());
  auto byOffset = [](const _tKeyHit& a, const _tKeyHit& b) { return a.offset < b.offset; };
  if (!std::is_sorted(vecHits.begin(), vecHits.end(), byOffset))
    std::stable_sort(vecHits.begin(), vecHits.end(), byOffset);
}

// Wrong forms are corrected leftmost first, the longest where several start
// together, and never two over the same text.
void CKeyScanData::AddCorrections(std::vector<_tPatternMatch>& vecPair, std::vector<_tKeyHit>& vecHits) const {
  std::sort(vecPair.begin(), vecPair.end(), [](const _tPatternMatch& a, const _tPatternMatch& b) {
    return a.offset != b.offset ? a.offset < b.offset : a.length > b.length;
  });
  size_t nEnd = 0;
  for (const _tPatternMatch& m : vecPair) {
    if (m.offset < nEnd) continue;
    nEnd = m.offset + m.length;
    vecHits.push_back({m.offset, m.length, _tKeyHit::kCorrection, m_pKeyWordList->GetWord(m.id), "", 0,
                       m_pComplexFilter->GetCorrection(m.id)->c_str()});
  }
}

void CKeyScanData::ScanComplex(const tstring& sText, const std::vector<_tPatternMatch>& vecMatch,
                               std::vector<_tKeyHit>& vecHits) const {
  std::vector<uint32_t> vecCharAt(sText.size() + 1, 0);  // characters before each byte offset
  for (size_t i = 0, nChars = 0; i <= sText.size(); ++i) {
    vecCharAt[i] = (uint32_t)nChars;
    if (i < sText.size() && ((unsigned char)sText[i] & 0xC0) != 0x80) ++nChars;
  }
  std::unordered_map<int, std::vector<_tTermHit>> mapHits;
  for (const _tPatternMatch& m : vecMatch)
    mapHits[m.id].push_back({m.offset, m.length, vecCharAt[m.offset], vecCharAt[m.offset + m.length]});
  for (auto& entry : mapHits)
    std::sort(entry.second.begin(), entry.second.end(),
              [](const _tTermHit& a, const _tTermHit& b) { return a.offset < b.offset; });
  std::vector<_tComplexHit> vecFound;
  m_pComplexFilter->Evaluate(mapHits, vecFound);
  for (const _tComplexHit& found : vecFound)
    vecHits.push_back({found.offset, found.length, _tKeyHit::kComplex, m_pComplexFilter->GetText(found.index).c_str(),
                       m_pComplexFilter->GetClass(found.index).c_str(), m_pComplexFilter->GetWeight(found.index), ""});
}

// Pinyin is matched without regard to case, and only as a whole Latin word.
void CKeyScanData::ScanPinyin(const tstring& sText, std::vector<_tKeyHit>& vecHits) const {
  tstring sLower = sText;
  std::transform(sLower.begin(), sLower.end(), sLower.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? (char)(c - 'A' + 'a') : c; });
  std::vector<_tPatternMatch> vecMatch;
  m_pinyinDict.Scan(sLower.data(), sLower.size(), vecMatch);
  for (const _tPatternMatch& m : vecMatch) {
    size_t nEnd = m.offset + m.length;
    if ((m.offset > 0 && IsAsciiAlnum(sText[m.offset - 1])) || (nEnd < sText.size() && IsAsciiAlnum(sText[nEnd])))
      continue;
    for (const tstring& sWord : m_pPY2Word->FindSecond(sLower.substr(m.offset, m.length))) {
      int nId = m_pKeyDict->GetId(sWord);
      if (nId >= 0 && (size_t)nId < m_nKeywordCount) vecHits.push_back(KeywordHit(m.offset, m.length, nId, _tKeyHit::kPinyin));
    }
  }
}
