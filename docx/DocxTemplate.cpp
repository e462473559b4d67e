#include "docx/DocxTemplate.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "docx/DocFormat.h"
#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"
#include "utility/JsonText.h"

namespace {

const char kDataFile[] = "docTemplate.dat";
const char kCompactFile[] = "docTemplate2.dat";
const char kIndexFile[] = "docTemplate.index";
const char kDictFile[] = "docTemplate.pdat";
const char kWordListFile[] = "docTemplate.wordlist";
const int kTypeLists = 20;

void MakeFolders(const tstring& sPath) {
  for (size_t nSlash = sPath.find('/', 1); nSlash != tstring::npos; nSlash = sPath.find('/', nSlash + 1))
    mkdir(sPath.substr(0, nSlash).c_str(), 0777);
}

template <class T>
bool Put(FILE* fp, const T& value) {
  return fwrite(&value, sizeof(value), 1, fp) == 1;
}

template <class T>
bool Get(FILE* fp, T& value) {
  return fread(&value, sizeof(value), 1, fp) == 1;
}

}  // namespace

CDocxTemplate::CDocxTemplate(const char* sDataPath)
    : m_pStaticStr(new CStaticStr), m_pIntArray(new CIntArray), m_pDict(new CPDAT), m_pWordList(new CWordList),
      m_sDataPath(tstring(sDataPath ? sDataPath : "") + "/data/template/") {
  SectionTypeMaps(m_mapLevelId2Type, m_mapType2LevelId);
  Load();
}

CDocxTemplate::~CDocxTemplate() {
  if (m_fpTemplateData) fclose(m_fpTemplateData);
}

int CDocxTemplate::Load() {
  MakeFolders(m_sDataPath);
  if (m_fpTemplateData) fclose(m_fpTemplateData);
  m_fpTemplateData = fopen(File(kDataFile).c_str(), "ab+");
  if (m_fpTemplateData == nullptr) {
    SetLastError("Fail reading file " + File(kDataFile));
    return -3;
  }
  m_pTemplateList.clear();
  m_vecTemplateOrg.clear();
  m_nTemplateCount = 0;
  if (!IsRegularFile(File(kIndexFile))) return -3;  // a new store: nothing to read
  if (!m_pDict->Load(File(kDictFile))) {
    m_pDict.reset(new CPDAT);
    m_pWordList.reset(new CWordList);
    return -1;
  }
  if (!m_pWordList->Load(File(kWordListFile))) {
    m_pDict.reset(new CPDAT);
    m_pWordList.reset(new CWordList);
    return -2;
  }
  if (!ReadIndex(File(kIndexFile))) {
    SetLastError("Fail reading file " + File(kIndexFile));
    m_pTemplateList.clear();
    m_pInvertList.clear();
    return -3;
  }
  m_nTemplateCount = m_pTemplateList.size();
  Data2Org();
  return 1;
}

bool CDocxTemplate::ReadIndex(const tstring& sFile) {
  FILE* fp = fopen(sFile.c_str(), "rb");
  if (fp == nullptr) return false;
  struct stat st;
  uint64_t nFileSize = fstat(fileno(fp), &st) == 0 ? (uint64_t)st.st_size : 0;
  uint64_t nCount = 0;
  bool bOk = Get(fp, nCount) && nCount <= nFileSize / 48;
  for (uint64_t i = 0; bOk && i < nCount; ++i) {
    _tTemplate t;
    int32_t nPad = 0;
    bOk = Get(fp, t.reportType) && Get(fp, nPad) && Get(fp, t.template_data_offset) && Get(fp, t.template_data_size) &&
          Get(fp, t.insert_time) && Get(fp, t.organization_id) && Get(fp, t.area_id) && Get(fp, t.argu_id) &&
          Get(fp, nPad);
    if (bOk) m_pTemplateList.push_back(t);
  }
  uint64_t nLists = 0;
  bOk = bOk && Get(fp, nLists) && nLists <= nFileSize / 16;
  m_pInvertList.clear();
  for (uint64_t i = 0; bOk && i < nLists; ++i) {
    _tFormatInvertList list;
    bOk = Get(fp, list.df) && Get(fp, list.data.start) && Get(fp, list.data.end);
    if (bOk) m_pInvertList.push_back(list);
  }
  bOk = bOk && m_pIntArray->Read(fp, nFileSize / 4) && m_pStaticStr->Read(fp, nFileSize);
  fclose(fp);
  return bOk;
}

bool CDocxTemplate::WriteIndex(const tstring& sFile) const {
  return WriteFileReplacing(sFile, [this](FILE* fp) {
    bool bOk = Put(fp, (uint64_t)m_pTemplateList.size());
    const int32_t nPad = 0;
    for (const _tTemplate& t : m_pTemplateList)
      bOk = bOk && Put(fp, t.reportType) && Put(fp, nPad) && Put(fp, t.template_data_offset) &&
            Put(fp, t.template_data_size) && Put(fp, t.insert_time) && Put(fp, t.organization_id) &&
            Put(fp, t.area_id) && Put(fp, t.argu_id) && Put(fp, nPad);
    bOk = bOk && Put(fp, (uint64_t)m_pInvertList.size());
    for (const _tFormatInvertList& list : m_pInvertList)
      bOk = bOk && Put(fp, list.df) && Put(fp, list.data.start) && Put(fp, list.data.end);
    return bOk && m_pIntArray->Write(fp) && m_pStaticStr->Write(fp);
  });
}

void CDocxTemplate::Data2Org() {
  m_vecTemplateOrg.clear();
  for (const _tTemplate& t : m_pTemplateList) {
    if (t.reportType < 0) continue;
    _tTemplateOrg record;
    static_cast<_tTemplateMetaData&>(record) = t;
    record.organization = m_pWordList->GetWord(t.organization_id);
    record.area = m_pWordList->GetWord(t.area_id);
    record.argu = m_pWordList->GetWord(t.argu_id);
    m_vecTemplateOrg.push_back(record);
  }
}

void CDocxTemplate::Org2Data() {
  m_pTemplateList.clear();
  m_nTemplateCount = m_vecTemplateOrg.size();
  if (m_nTemplateCount == 0) return;
  m_pDict.reset(new CPDAT);
  m_pWordList.reset(new CWordList);
  m_pDict->BeginAdd();
  auto fnAdd = [this](const tstring& s) {
    int nId = m_pDict->AddWord(s);
    if (nId >= 0) m_pWordList->AddWord(s, nId);
    return nId;
  };
  for (const _tTemplateOrg& record : m_vecTemplateOrg) {
    if (record.reportType < 0) continue;
    _tTemplate t;
    static_cast<_tTemplateMetaData&>(t) = record;
    t.organization_id = fnAdd(record.organization);
    t.argu_id = fnAdd(record.argu);
    t.area_id = fnAdd(record.area);
    m_pTemplateList.push_back(t);
  }
  m_pDict->FinishAdd();
  m_nTemplateCount = m_pTemplateList.size();
}

void CDocxTemplate::Indexing() {
  const int64_t nTerms = (int64_t)m_pDict->GetCount();
  std::vector<std::vector<int32_t>> vecLists((size_t)((nTerms + 10) * 2));
  auto fnAppend = [&](int64_t nList, int32_t nId) {
    if (nList >= 0 && (size_t)nList < vecLists.size()) vecLists[nList].push_back(nId);
  };
  for (size_t i = 0; i < m_pTemplateList.size(); ++i) {
    const _tTemplate& t = m_pTemplateList[i];
    if (t.reportType >= 0 && t.reportType < kTypeLists) fnAppend(t.reportType, (int32_t)i);
    if (t.organization_id >= 0) fnAppend(kTypeLists + t.organization_id, (int32_t)i);
    if (t.argu_id >= 0) fnAppend(kTypeLists + nTerms + t.argu_id, (int32_t)i);
    if (t.area_id >= 0) fnAppend(kTypeLists + nTerms + t.area_id, (int32_t)i);
  }
  // Every list is made anew, so the pool is too: a save of an unchanged
  // store writes the same index.
  m_pIntArray->Clear();
  m_pInvertList.clear();
  for (const auto& vecList : vecLists) m_pInvertList.push_back(_tFormatInvertList{vecList.size(), m_pIntArray->Append(vecList)});
}

int CDocxTemplate::Save() {
  if (!m_bDirty) return 0;
  Org2Data();
  Indexing();
  if (!m_pDict->Save(File(kDictFile))) return -1;
  if (!m_pWordList->Save(File(kWordListFile))) return -2;
  if (!WriteIndex(File(kIndexFile))) {
    SetLastError("Fail writing file " + File(kIndexFile));
    return -3;
  }
  m_bDirty = false;
  return 1;
}

int CDocxTemplate::RebuildAll() {
  if (m_bFileDirty) {
    // The live texts go to a fresh file that replaces the old one only when
    // it is complete.
    std::vector<std::pair<uint64_t, uint64_t>> vecPlaces;  // new offset and size of each text
    bool bOk = WriteFileReplacing(File(kCompactFile), [&](FILE* fp) {
      uint64_t nWritten = 0;
      for (const _tTemplateOrg& record : m_vecTemplateOrg) {
        tstring sText;
        GetFileContent(record.template_data_offset, record.template_data_size, sText);
        if (fwrite(sText.data(), 1, sText.size(), fp) != sText.size()) return false;
        vecPlaces.emplace_back(nWritten, sText.size());
        nWritten += sText.size();
      }
      return true;
    });
    if (!bOk) {
      SetLastError("Fail writing file " + File(kCompactFile));
      return -3;
    }
    fclose(m_fpTemplateData);
    m_fpTemplateData = nullptr;
    if (rename(File(kCompactFile).c_str(), File(kDataFile).c_str()) != 0 ||
        (m_fpTemplateData = fopen(File(kDataFile).c_str(), "ab+")) == nullptr) {
      SetLastError("Fail writing file " + File(kDataFile));
      m_fpTemplateData = fopen(File(kDataFile).c_str(), "ab+");
      return -3;
    }
    for (size_t i = 0; i < m_vecTemplateOrg.size(); ++i) {
      m_vecTemplateOrg[i].template_data_offset = vecPlaces[i].first;
      m_vecTemplateOrg[i].template_data_size = vecPlaces[i].second;
    }
    m_bFileDirty = false;
    m_bDirty = true;
  }
  Save();
  return 1;
}

// pread, not a seek and a read: checks on several threads read texts at once.
const char* CDocxTemplate::GetFileContent(uint64_t nOffset, uint64_t nSize, tstring& sStr) const {
  sStr.clear();
  if (m_fpTemplateData == nullptr) return sStr.c_str();
  const int nFile = fileno(m_fpTemplateData);
  struct stat st;
  if (fstat(nFile, &st) != 0 || nOffset + nSize > (uint64_t)st.st_size || nOffset + nSize < nOffset)
    return sStr.c_str();
  sStr.resize(nSize);
  ssize_t nRead = nSize ? pread(nFile, &sStr[0], nSize, (off_t)nOffset) : 0;
  sStr.resize(nRead > 0 ? (size_t)nRead : 0);
  sStr.resize(strlen(sStr.c_str()));  // a text ends at its first zero byte
  return sStr.c_str();
}

bool CDocxTemplate::MakeRecord(int reportType, const char* sOrganization, const char* sArea, const char* sArgu,
                               const char* sTemplateFile, _tTemplateOrg& record) {
  record.reportType = reportType;
  record.insert_time = (int64_t)time(nullptr);
  record.organization = sOrganization ? sOrganization : "";
  record.area = sArea ? sArea : "";
  record.argu = sArgu ? sArgu : "";
  tstring sText;
  CDocFormat format;
  if (sTemplateFile == nullptr ||
      format.GenerateDocFormat(reportType, record.organization.c_str(), record.area.c_str(), record.argu.c_str(),
                               sTemplateFile, m_mapLevelId2Type, sText) != 1 ||
      sText.empty())
    return false;
  fseeko(m_fpTemplateData, 0, SEEK_END);
  record.template_data_offset = (uint64_t)ftello(m_fpTemplateData);
  record.template_data_size = sText.size();
  if (fwrite(sText.data(), 1, sText.size(), m_fpTemplateData) != sText.size() || fflush(m_fpTemplateData) != 0) {
    SetLastError("Fail writing file " + File(kDataFile));
    return false;
  }
  m_bFileDirty = true;
  m_bDirty = true;
  return true;
}

int CDocxTemplate::ImportTemplate(int reportType, const char* sOrganization, const char* sArea, const char* sArgu,
                                  const char* sTemplateFile) {
  int nFound = FindTemplate(reportType, sOrganization, sArea, sArgu, true);
  if (!m_bDirty) Data2Org();
  _tTemplateOrg record;
  if (!MakeRecord(reportType, sOrganization, sArea, sArgu, sTemplateFile, record)) return -1;
  if (nFound >= 0 && (size_t)nFound < m_vecTemplateOrg.size()) {
    m_vecTemplateOrg[nFound] = record;
    RebuildAll();
    return nFound;
  }
  m_vecTemplateOrg.push_back(record);
  return (int)m_vecTemplateOrg.size() - 1;
}

int CDocxTemplate::EditTemplate(int nTemplateID, int reportType, const char* sOrganization, const char* sArea,
                                const char* sArgu, const char* sTemplateFile) {
  if (!m_bDirty) Data2Org();
  if (nTemplateID < 0 || (size_t)nTemplateID >= m_vecTemplateOrg.size()) {
    SetLastError("No template " + std::to_string(nTemplateID));
    return -1;
  }
  _tTemplateOrg record;
  bool bText = MakeRecord(reportType, sOrganization, sArea, sArgu, sTemplateFile, record);
  m_bDirty = true;
  if (!bText) {  // only the keys change
    record.template_data_offset = m_vecTemplateOrg[nTemplateID].template_data_offset;
    record.template_data_size = m_vecTemplateOrg[nTemplateID].template_data_size;
  }
  m_vecTemplateOrg[nTemplateID] = record;
  RebuildAll();
  return nTemplateID;
}

int CDocxTemplate::DeleteTemplate(int nTemplateID) {
  if (!IsLive(nTemplateID)) return -1;
  m_pTemplateList[nTemplateID].reportType = -1;
  m_bDirty = true;
  Data2Org();
  return nTemplateID;
}

std::vector<int32_t> CDocxTemplate::List(int64_t nList) const {
  if (nList < 0 || (size_t)nList >= m_pInvertList.size()) return {};
  return m_pIntArray->Get(m_pInvertList[nList].data);
}

int CDocxTemplate::FindTemplate(int reportType, const char* sOrganization, const char* sArea, const char* sArgu,
                                bool bPrecise) const {
  const int nAny = m_pDict->GetId("*");
  auto fnId = [&](const char* s) {
    int nId = m_pDict->GetId(s ? s : "");
    return nId < 0 && !bPrecise ? nAny : nId;
  };
  const int nOrg = fnId(sOrganization), nArea = fnId(sArea), nArgu = fnId(sArgu);
  std::vector<int32_t> vecOrg = nOrg >= 0 ? List(kTypeLists + nOrg) : std::vector<int32_t>();
  std::vector<int32_t> vecType = reportType >= 0 ? List(reportType) : std::vector<int32_t>();
  std::vector<int32_t> vecCandidates;
  std::set_intersection(vecOrg.begin(), vecOrg.end(), vecType.begin(), vecType.end(), std::back_inserter(vecCandidates));
  if (!bPrecise && vecCandidates.empty()) {
    if (vecType.empty()) vecCandidates = vecOrg;
    else if (vecOrg.empty()) vecCandidates = vecType;
  }
  for (int32_t nId : vecCandidates)
    if (nId >= 0 && (size_t)nId < m_pTemplateList.size() && m_pTemplateList[nId].argu_id == nArgu &&
        m_pTemplateList[nId].area_id == nArea)
      return nId;
  return -1;
}

int CDocxTemplate::FindTemplate(int reportType, const char* sOrganization, const char* sArea, const char* sArgu,
                                CDocFormat& docFormat) const {
  if (m_nTemplateCount == 0) return -1;
  int nFound = FindTemplate(reportType, sOrganization, sArea, sArgu, false);
  const _tTemplate& t = m_pTemplateList[nFound >= 0 ? nFound : 0];
  tstring sText;
  GetFileContent(t.template_data_offset, t.template_data_size, sText);
  docFormat.Import(sText.data(), sText.data() + sText.size(), m_mapType2LevelId);
  return nFound;
}

bool CDocxTemplate::IsLive(int nTemplateID) const {
  return nTemplateID >= 0 && (size_t)nTemplateID < m_nTemplateCount && m_pTemplateList[nTemplateID].reportType >= 0;
}

tstring CDocxTemplate::GetTemplate(int nTemplateID) const {
  if (!IsLive(nTemplateID)) return "";
  const _tTemplate& t = m_pTemplateList[nTemplateID];
  tstring sText;
  GetFileContent(t.template_data_offset, t.template_data_size, sText);
  return "{\r\n  \"docReportType\": \"" + std::to_string(t.reportType) + "\",\r\n  \"zyg_organization\": \"" +
         m_pWordList->GetWord(t.organization_id) + "\",\r\n  \"zyg_argument\": \"" + m_pWordList->GetWord(t.argu_id) +
         "\",\r\n  \"zyg_area\": \"" + m_pWordList->GetWord(t.area_id) + "\",\r\n  \"zyg_format\": \"" + sText +
         "\"\r\n}\r\n";
}

tstring CDocxTemplate::GetOrganization(int nTemplateID) const {
  return IsLive(nTemplateID) ? tstring(m_pWordList->GetWord(m_pTemplateList[nTemplateID].organization_id)) : tstring();
}

tstring CDocxTemplate::GetTemplateJson(int nTemplateID) const {
  if (!IsLive(nTemplateID)) return "";
  const _tTemplate& t = m_pTemplateList[nTemplateID];
  Json::Value root;
  root["docReportType"] = std::to_string(t.reportType);
  root["zyg_organization"] = m_pWordList->GetWord(t.organization_id);
  root["zyg_argument"] = m_pWordList->GetWord(t.argu_id);
  root["zyg_area"] = m_pWordList->GetWord(t.area_id);
  tstring sText;
  root["zyg_format"] = GetFileContent(t.template_data_offset, t.template_data_size, sText);
  return JsonText(root);
}

int CDocxTemplate::GetTemplate(int nTemplateID, CDocFormat& docFormat) const {
  if (!IsLive(nTemplateID)) return -1;
  const _tTemplate& t = m_pTemplateList[nTemplateID];
  tstring sText;
  GetFileContent(t.template_data_offset, t.template_data_size, sText);
  docFormat.Import(sText.data(), sText.data() + sText.size(), m_mapType2LevelId);
  return nTemplateID;
}

tstring CDocxTemplate::GetTemplateList(int reportType, const char* sOrganization) const {
  const int nOrg = m_pDict->GetId(sOrganization ? sOrganization : "");
  std::vector<int32_t> vecCandidates;
  if (nOrg >= 0 && reportType >= 0) {
    std::vector<int32_t> vecOrg = List(kTypeLists + nOrg), vecType = List(reportType);
    std::set_intersection(vecOrg.begin(), vecOrg.end(), vecType.begin(), vecType.end(), std::back_inserter(vecCandidates));
  } else if (nOrg >= 0) {
    vecCandidates = List(kTypeLists + nOrg);
  }
  std::vector<tstring> vecArgu, vecArea;
  for (int32_t nId : vecCandidates) {
    if (nId < 0 || (size_t)nId >= m_pTemplateList.size()) continue;
    tstring sArgu = m_pWordList->GetWord(m_pTemplateList[nId].argu_id);
    tstring sArea = m_pWordList->GetWord(m_pTemplateList[nId].area_id);
    if (!sArgu.empty() && std::find(vecArgu.begin(), vecArgu.end(), sArgu) == vecArgu.end()) vecArgu.push_back(sArgu);
    if (!sArea.empty() && std::find(vecArea.begin(), vecArea.end(), sArea) == vecArea.end()) vecArea.push_back(sArea);
  }
  tstring sResult = "{\r\n  \"ArguCount\": " + std::to_string(vecArgu.size()) + ",\r\n  \"ArguList\": [";
  for (size_t i = 0; i < vecArgu.size(); ++i)
    sResult += tstring(i ? "," : "") + "\r\n    {\"argu\": \"" + vecArgu[i] + "\"}";
  sResult += "\r\n  ],\"AreaCount\": " + std::to_string(vecArea.size()) + ",\r\n  \"AreaList\": [";
  for (size_t i = 0; i < vecArea.size(); ++i)
    sResult += tstring(i ? "," : "") + "\r\n    {\"area\": \"" + vecArea[i] + "\"}";
  sResult += "\r\n  ]\r\n}";
  return sResult;
}

int CDocxTemplate::Export() const {
  tstring sFile = File("docTemplate_export.txt");
  FILE* fp = fopen(sFile.c_str(), "wt");
  if (fp == nullptr) {
    SetLastError("Fail writing file " + sFile);
    return -1;
  }
  fprintf(fp, "Template Count is %zu\n", m_nTemplateCount);
  for (const _tTemplate& t : m_pTemplateList) {
    tstring sText;
    GetFileContent(t.template_data_offset, t.template_data_size, sText);
    // The area goes under the first "Argument" tag and the argument under the
    // second, as exports always have.
    fprintf(fp, "<RECORD>\n\t<reportType>%d</reportType>\n\t<Organization>%s</Organization>\n\t<Argument>%s</Argument>\n"
                "\t<Argument>%s</Argument>\n\t<insert_time>%lld</insert_time>\n\t\n%s\n\t\n</RECORD>\n",
            t.reportType, m_pWordList->GetWord(t.organization_id), m_pWordList->GetWord(t.area_id),
            m_pWordList->GetWord(t.argu_id), (long long)t.insert_time, sText.c_str());
  }
  const int64_t nTerms = (int64_t)m_pDict->GetCount();
  fprintf(fp, "Index Item Count is %zu\n", m_pInvertList.size());
  for (size_t i = 0; i < m_pInvertList.size(); ++i) {
    if (m_pInvertList[i].df == 0) continue;
    if (i < (size_t)kTypeLists)
      fprintf(fp, "doc_type=%zu\t", i);
    else if ((int64_t)i < kTypeLists + nTerms)
      fprintf(fp, "Organization=%d(%s)\t", (int)(i - kTypeLists), m_pWordList->GetWord((int)(i - kTypeLists)));
    else
      fprintf(fp, "Type=%zu(%s)\t", (size_t)(i - kTypeLists - nTerms), m_pWordList->GetWord((int)(i - kTypeLists - nTerms)));
    fprintf(fp, "DF=%zu\tList are:\n\t", (size_t)m_pInvertList[i].df);
    for (int32_t nId : List((int64_t)i)) fprintf(fp, "%d\t", nId);
    fprintf(fp, "\n");
  }
  fclose(fp);
  return 1;
}
