#include "checker/ID2Message.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <locale>
#include <sstream>
#include <vector>

#include <json/json.h>

#include "utility/DataCipher.h"
#include "utility/ErrorLog.h"
#include "utility/JsonText.h"
#include "utility/FileUtil.h"

namespace {

const size_t kMaxString = 1024;  // ids and messages are shorter than this

// Parses a number the way "%f" does at the start of a field, independent of
// the host's numeric locale; false when the field does not start with one.
bool ParseScore(const tstring& sField, float& fValue) {
  std::istringstream in(sField);
  in.imbue(std::locale::classic());
  return static_cast<bool>(in >> fValue);
}

bool ReadU64(FILE* fp, uint64_t& nValue) { return fread(&nValue, sizeof(nValue), 1, fp) == 1; }

// Reads one length-prefixed enciphered string.
bool ReadString(FILE* fp, tstring& sOut) {
  uint64_t nLength = 0;
  if (!ReadU64(fp, nLength) || nLength >= kMaxString) return false;
  sOut.resize(nLength);
  if (nLength > 0 && fread(&sOut[0], 1, nLength, fp) != nLength) return false;
  CipherBytes(&sOut[0], sOut.size());
  return true;
}

bool WriteU64(FILE* fp, uint64_t nValue) { return fwrite(&nValue, sizeof(nValue), 1, fp) == 1; }

bool WriteString(FILE* fp, const tstring& sText) {
  tstring sCipher = CipherString(sText);
  return WriteU64(fp, sCipher.size()) &&
         (sCipher.empty() || fwrite(sCipher.data(), 1, sCipher.size(), fp) == sCipher.size());
}

bool ReadCatalogue(FILE* fp, std::map<tstring, tstring>& mapMessage,
                   std::map<tstring, _tScore>& mapScore) {
  uint64_t nCount = 0;
  if (!ReadU64(fp, nCount)) return false;
  for (uint64_t i = 0; i < nCount; ++i) {
    tstring sId, sMessage;
    if (!ReadString(fp, sId) || !ReadString(fp, sMessage)) return false;
    mapMessage[sId] = sMessage;
  }
  if (!ReadU64(fp, nCount)) return false;
  for (uint64_t i = 0; i < nCount; ++i) {
    tstring sId;
    float fPair[2];
    if (!ReadString(fp, sId) || fread(fPair, sizeof(float), 2, fp) != 2) return false;
    mapScore[sId] = _tScore{fPair[0], fPair[1]};
  }
  return fgetc(fp) == EOF;  // trailing bytes mean a foreign file
}

}  // namespace

int CID2Message::Import(const char* sFilename) {
  FILE* fp = fopen(sFilename ? sFilename : "", "rb");
  if (fp == nullptr) {
    SetLastError(tstring("Fail read file ") + (sFilename ? sFilename : ""));
    return -1;
  }
  m_mapId2Message.clear();
  char sLine[kMaxString];
  bool bHeader = true;
  while (fgets(sLine, sizeof(sLine), fp) != nullptr) {
    if (bHeader) {
      bHeader = false;
      continue;
    }
    std::istringstream fields(sLine);
    tstring sId, sMessage, sEach, sMax;
    fields >> sId >> sMessage >> sEach >> sMax;
    if (sId.empty()) continue;
    // As with "%s%s%f%f", the maximum is read only after an each-score.
    _tScore score;
    if (ParseScore(sEach, score.each_score) && !ParseScore(sMax, score.max_score))
      score.max_score = 0;
    m_mapId2Message[sId] = sMessage;
    m_mapId2Score[sId] = score;
  }
  fclose(fp);
  return (int)m_mapId2Message.size();
}

int CID2Message::Load(const char* sFilename) {
  FILE* fp = fopen(sFilename ? sFilename : "", "rb");
  if (fp == nullptr) {
    SetLastError(tstring("Fail read file ") + (sFilename ? sFilename : ""));
    return -1;
  }
  std::map<tstring, tstring> mapMessage;
  std::map<tstring, _tScore> mapScore;
  bool bWhole = ReadCatalogue(fp, mapMessage, mapScore);
  fclose(fp);
  if (!bWhole) {
    SetLastError(tstring("Fail read file ") + sFilename + ": truncated or not a message catalogue");
    return -2;
  }
  for (auto& kv : mapMessage) m_mapId2Message[kv.first] = kv.second;
  for (auto& kv : mapScore) m_mapId2Score[kv.first] = kv.second;
  return 1;
}

int CID2Message::Save(const char* sFilename) {
  tstring sName = sFilename ? sFilename : "";
  bool bWritten = WriteFileReplacing(sName, [this](FILE* fp) {
    bool bOk = WriteU64(fp, m_mapId2Message.size());
    for (const auto& kv : m_mapId2Message)
      bOk = bOk && WriteString(fp, kv.first) && WriteString(fp, kv.second);
    bOk = bOk && WriteU64(fp, m_mapId2Score.size());
    for (const auto& kv : m_mapId2Score) {
      float fPair[2] = {kv.second.each_score, kv.second.max_score};
      bOk = bOk && WriteString(fp, kv.first) && fwrite(fPair, sizeof(float), 2, fp) == 2;
    }
    return bOk;
  });
  if (!bWritten) {
    SetLastError("Fail write file " + sName);
    return -1;
  }
  return (int)m_mapId2Message.size();
}

int CID2Message::Export(const char* sFilename) {
  tstring sName = sFilename ? sFilename : "";
  bool bWritten = WriteFileReplacing(sName, [this](FILE* fp) {
    bool bOk = fputs("ID\tMessage\tEachScore\tMaxScore\n", fp) >= 0;
    for (const auto& kv : m_mapId2Message) {
      float fMax = 0;
      float fEach = GetScore(kv.first.c_str(), fMax);
      bOk = bOk && fprintf(fp, "%s\t%s\t%g\t%g\n", kv.first.c_str(), kv.second.c_str(),
                           (double)fEach, (double)fMax) > 0;
    }
    return bOk;
  });
  if (!bWritten) {
    SetLastError("Fail write file " + sName);
    return -1;
  }
  return (int)m_mapId2Message.size();
}

tstring CID2Message::Export2Json() const {
  Json::Value root;
  root["ErrorCount"] = (Json::UInt64)m_mapId2Message.size();
  Json::Value& errors = root["Errors"];
  errors = Json::Value(Json::arrayValue);
  for (const auto& kv : m_mapId2Message) {
    float fMax = 0;
    float fEach = GetScore(kv.first.c_str(), fMax);
    Json::Value item;
    item["id"] = kv.first;
    item["message"] = kv.second;
    item["each_score"] = fEach;
    item["max_score"] = fMax;
    errors.append(item);
  }
  return JsonText(root);
}

const char* CID2Message::GetText(const char* id) const {
  tstring sId = id ? id : "";
  auto it = m_mapId2Message.find(sId);
  if (it != m_mapId2Message.end()) return it->second.c_str();
  // The caller gets the error text itself, as its own copy: the shared
  // last-error string may be replaced by another thread at any moment.
  thread_local tstring s_sUnknown;
  s_sUnknown = "Wrong text id " + sId;
  SetLastError(s_sUnknown);
  return s_sUnknown.c_str();
}

float CID2Message::GetScore(const char* id, float& max_score) const {
  max_score = 0;
  auto it = m_mapId2Score.find(id ? id : "");
  if (it == m_mapId2Score.end()) return 0;
  max_score = it->second.max_score;
  return it->second.each_score;
}
