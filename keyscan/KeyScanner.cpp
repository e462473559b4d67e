#include "keyscan/KeyScanner.h"

#include <cstdio>
#include <filesystem>
#include <functional>

#include <json/json.h>

#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"
#include "utility/JsonText.h"

namespace {
const char* KindName(_tKeyHit::EKind eKind) {
  switch (eKind) {
    case _tKeyHit::kKeyword: return "keyword";
    case _tKeyHit::kPinyin: return "pinyin";
    case _tKeyHit::kComplex: return "complex";
    default: return "correction";
  }
}

tstring Corrections(const std::vector<_tKeyHit>& vecHits) {
  tstring sList;
  int nCount = 0;
  for (const _tKeyHit& hit : vecHits) {
    if (hit.eKind != _tKeyHit::kCorrection) continue;
    if (nCount++ > 0) sList += "##";
    sList.append(hit.sCorrection).append("-->").append(hit.sWord);
  }
  return nCount == 0 ? "" : "(Check " + std::to_string(nCount) + ")" + sList + "$";
}

tstring Lines(const std::vector<_tKeyHit>& vecHits) {
  tstring sOut;
  for (const _tKeyHit& hit : vecHits)
    sOut += std::to_string(hit.offset) + "\t" + std::to_string(hit.length) + "\t" + KindName(hit.eKind) + "\t" +
            hit.sWord + "\t" + hit.sClass + "\t" + std::to_string(hit.nWeight) + "\t" + hit.sCorrection + "\n";
  return sOut;
}

tstring JsonHits(const std::vector<_tKeyHit>& vecHits) {
  Json::Value root(Json::arrayValue);
  for (const _tKeyHit& hit : vecHits) {
    Json::Value item;
    item["offset"] = (Json::UInt64)hit.offset;
    item["length"] = (Json::UInt64)hit.length;
    item["kind"] = KindName(hit.eKind);
    item["word"] = hit.sWord;
    item["class"] = hit.sClass;
    item["weight"] = hit.nWeight;
    item["correction"] = hit.sCorrection;
    root.append(item);
  }
  return JsonText(root);
}

tstring Words(const std::vector<_tKeyHit>& vecHits) {
  tstring sOut;
  for (const _tKeyHit& hit : vecHits) {
    if (hit.eKind == _tKeyHit::kCorrection) continue;
    if (!sOut.empty()) sOut += ' ';
    sOut.append(hit.sWord).append("/").append(hit.sClass);
  }
  return sOut;
}

// The handle of a list's first file, "Filter<n>_key.pdat"; -1 for other files.
int HandleOfFile(const tstring& sName) {
  int nHandle = -1, nUsed = 0;
  if (sscanf(sName.c_str(), "Filter%d_key.pdat%n", &nHandle, &nUsed) != 1 || (size_t)nUsed != sName.size()) return -1;
  return nHandle >= 0 && nHandle <= CKeyScanner::kMaxHandle ? nHandle : -1;
}
}  // namespace

int CKeyScanner::Fail(const tstring& sError) const {
  std::lock_guard<std::mutex> lock(m_mutex);
  m_sLastError = sError;
  return 0;
}

int CKeyScanner::Init(const char* sDataPath, int /*nEncoding*/) {
  if (sDataPath == nullptr || !IsReadableDirectory(sDataPath)) return Fail(": cannot read the data directory");
  m_sDataPath = sDataPath;
  std::map<int, std::shared_ptr<const CKeyScanData>> mapData;
  std::error_code ec;
  int nResult = 1;
  for (const auto& entry : std::filesystem::directory_iterator(m_sDataPath + "/KeyScanner", ec)) {
    int nHandle = HandleOfFile(entry.path().filename().string());
    if (nHandle < 0) continue;
    auto pData = std::make_shared<CKeyScanData>(sDataPath, nHandle);
    if (pData->Load(nHandle))
      mapData[nHandle] = pData;
    else
      nResult = Fail(": " + GetLastError());
  }
  std::lock_guard<std::mutex> lock(m_mutex);
  m_mapData.swap(mapData);
  return nResult;
}

std::shared_ptr<const CKeyScanData> CKeyScanner::GetData(int nHandle) const {
  std::lock_guard<std::mutex> lock(m_mutex);
  auto it = m_mapData.find(nHandle);
  return it == m_mapData.end() ? nullptr : it->second;
}

std::vector<int> CKeyScanner::GetHandles() const {
  std::lock_guard<std::mutex> lock(m_mutex);
  std::vector<int> vecHandles;
  for (const auto& entry : m_mapData) vecHandles.push_back(entry.first);
  return vecHandles;
}

tstring CKeyScanner::GetLastErrorMsg() const {
  std::lock_guard<std::mutex> lock(m_mutex);
  return m_sLastError;
}

std::shared_ptr<const CKeyScanData> CKeyScanner::Scan(const tstring& sText, int nHandle,
                                                      std::vector<_tKeyHit>& vecHits) const {
  vecHits.clear();
  std::shared_ptr<const CKeyScanData> pData = GetData(nHandle);
  if (pData) pData->Scan(sText, vecHits);
  return pData;
}

tstring CKeyScanner::ScanDetail(const tstring& sText, int nMode, int nHandle) const {
  std::vector<_tKeyHit> vecHits;
  const std::shared_ptr<const CKeyScanData> pList = Scan(sText, nHandle, vecHits);  // the hits' texts
  switch (nMode) {
    case 0: return Words(vecHits);
    case 1: return Lines(vecHits);
    case 2: return vecHits.empty() ? "" : JsonHits(vecHits);
    case 3: return Corrections(vecHits);
    default: return "";
  }
}

// A change works on a private list loaded from the files and is published
// whole, so scans running meanwhile keep the list they started with.
int CKeyScanner::Change(int nHandle, const std::function<int(CKeyScanData&)>& fn) {
  if (nHandle < 0 || nHandle > kMaxHandle) {
    SetLastError("keyword list handle " + std::to_string(nHandle) + " is outside 0.." + std::to_string(kMaxHandle));
    return Fail(GetLastError()) - 1;
  }
  if (m_sDataPath.empty()) {
    SetLastError("the keyword scanner is not started");
    return Fail(GetLastError()) - 1;
  }
  std::lock_guard<std::mutex> change(m_mutexChange);
  auto pData = std::make_shared<CKeyScanData>(m_sDataPath.c_str(), nHandle);
  if (GetData(nHandle) && !pData->Load(nHandle)) return Fail(GetLastError()) - 1;
  int nResult = fn(*pData);
  if (nResult <= 0) Fail(GetLastError());
  if (pData->IsLoaded()) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_mapData[nHandle] = pData;
  }
  return nResult;
}

int CKeyScanner::ImportUserDict(const char* sFilename, bool bAbbrevNeeded, bool bOverwrite, int nHandle) {
  if (sFilename == nullptr) {
    SetLastError("KS_ImportUserDict: file name is NULL");
    return Fail(GetLastError());
  }
  return std::max(0, Change(nHandle, [&](CKeyScanData& data) {
                    return data.ImportUserDict(sFilename, bAbbrevNeeded, bOverwrite);
                  }));
}

int CKeyScanner::DeleteUserDict(const char* sFilename, int nHandle) {
  if (sFilename == nullptr) {
    SetLastError("KS_DeleteUserDict: file name is NULL");
    return Fail(GetLastError()) - 1;
  }
  return Change(nHandle, [&](CKeyScanData& data) { return data.DeleteUserDict(sFilename); });
}

int CKeyScanner::ExportKeyDict(const char* sFilename, int nHandle) const {
  std::shared_ptr<const CKeyScanData> pData = GetData(nHandle);
  if (sFilename == nullptr || !pData) {
    SetLastError(sFilename ? "no keyword list with handle " + std::to_string(nHandle) : "KS_ExportKeyDict: file name is NULL");
    return Fail(GetLastError()) - 1;
  }
  return pData->ExportKeyDict(sFilename);
}
