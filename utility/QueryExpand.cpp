#include "utility/QueryExpand.h"

#include <algorithm>
#include <fstream>
#include <sstream>

#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"
#include "utility/Utf8.h"

namespace {

// The fields of a line: "wrong-->right" or blank-separated words.
std::vector<tstring> Fields(tstring sLine) {
  size_t nArrow = sLine.find("-->");
  if (nArrow != tstring::npos) sLine.replace(nArrow, 3, " ");
  std::istringstream in(sLine);
  std::vector<tstring> vecFields;
  for (tstring s; in >> s;) vecFields.push_back(s);
  return vecFields;
}

void AddForms(std::vector<tstring>& vecForms, const std::vector<tstring>& vecFields) {
  for (size_t i = 1; i < vecFields.size(); i++)
    if (vecFields[i] != vecFields[0] && std::find(vecForms.begin(), vecForms.end(), vecFields[i]) == vecForms.end())
      vecForms.push_back(vecFields[i]);
}

}  // namespace

CQueryExpand::CQueryExpand(const char* sDataPath, const char* sName)
    : m_sFilename(tstring(sDataPath ? sDataPath : "") + "/" + (sName ? sName : "SimDict")) {
  if (IsRegularFile(m_sFilename + ".txt")) ImportFile((m_sFilename + ".txt").c_str(), m_mapForms);
}

int CQueryExpand::ImportFile(const char* sFile, std::map<tstring, std::vector<tstring>>& mapForms) const {
  std::ifstream in(sFile, std::ios::binary);
  if (!in) {
    SetLastError(tstring("Cannot read file ") + sFile);
    return -1;
  }
  int nImported = 0, nLine = 0;
  for (tstring sLine; std::getline(in, sLine);) {
    nLine++;
    if (!sLine.empty() && sLine.back() == '\r') sLine.pop_back();
    if (nLine == 1 && sLine.compare(0, 3, "\xEF\xBB\xBF") == 0) sLine.erase(0, 3);
    if (sLine.empty() || sLine[0] == '#') continue;
    std::vector<tstring> vecFields = Fields(sLine);
    if (vecFields.empty()) continue;
    if (vecFields.size() < 2 || !IsValidUtf8(sLine)) {
      WriteError(tstring("Line ") + std::to_string(nLine) + " of " + sFile +
                    (vecFields.size() < 2 ? " has no form: Not Imported!" : " is not UTF-8: Not Imported!"));
      continue;
    }
    AddForms(mapForms[vecFields[0]], vecFields);
    nImported++;
  }
  return nImported;
}

int CQueryExpand::SimDictGenerate(const char* sDictFile, const char* sAssociateFile) {
  if (sDictFile == nullptr) {
    SetLastError("SimDictGenerate: file name is NULL");
    return 0;
  }
  std::map<tstring, std::vector<tstring>> mapForms = m_mapForms;
  int nImported = ImportFile(sDictFile, mapForms);
  if (nImported < 0) return 0;
  if (sAssociateFile && *sAssociateFile) {
    int nAssociated = ImportFile(sAssociateFile, mapForms);
    if (nAssociated < 0) return 0;
    nImported += nAssociated;
  }
  if (!Save(mapForms)) return 0;
  m_mapForms.swap(mapForms);
  return nImported;
}

bool CQueryExpand::Save(const std::map<tstring, std::vector<tstring>>& mapForms) const {
  bool bSaved = WriteFileReplacing(m_sFilename + ".txt", [&mapForms](FILE* fp) {
    for (const auto& entry : mapForms) {
      fputs(entry.first.c_str(), fp);
      for (const tstring& sForm : entry.second) fprintf(fp, " %s", sForm.c_str());
      fputc('\n', fp);
    }
    return true;
  });
  bSaved = bSaved && WriteFileReplacing(m_sFilename + "_userdict.txt", [&mapForms](FILE* fp) {
             for (const auto& entry : mapForms) fprintf(fp, "%s\tn\n", entry.first.c_str());
             return true;
           });
  if (!bSaved) SetLastError("Fail writing file " + m_sFilename + ".txt");
  return bSaved;
}

const std::vector<tstring>* CQueryExpand::Expand(const tstring& sWord) const {
  auto it = m_mapForms.find(sWord);
  return it == m_mapForms.end() ? nullptr : &it->second;
}
