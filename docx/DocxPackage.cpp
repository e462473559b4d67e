#include "docx/DocxPackage.h"

#include <sys/stat.h>

#include "docx/ZipArchive.h"
#include "utility/DirBrowser.h"
#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"

int CDocxPackage::ReadDocx(const char* sFile) {
  const tstring sPath = AbsolutePath(sFile ? sFile : "");
  tstring sDir, sName, sExt;
  SplitPath(sPath, sDir, sName, sExt);
  m_sFilename = sName;
  m_sPath = sDir + "/" + sName + "_unzip";
  if (!IsRegularFile(sPath)) {  // no working folder for a document that is not there
    SetLastError("Error unzip " + sPath + " to path " + m_sPath);
    return -2;
  }
  mkdir(m_sPath.c_str(), 0777);
  struct stat st;
  if (lstat(m_sPath.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) {
    SetLastError("Cannot create the working folder " + m_sPath);
    return -2;
  }
  CZipArchive zip;
  if (!zip.Open(sPath)) {
    if (zip.IsRefused()) return -3;
    SetLastError("Error unzip " + sPath + " to path " + m_sPath);
    return -2;
  }
  if (zip.GetEntries().empty()) {
    SetLastError("Error unzip " + sPath + " to path " + m_sPath);
    return -2;
  }
  zip.SetBaseDir(m_sPath);
  for (size_t i = 0; i < zip.GetEntries().size(); ++i) {
    if (zip.Extract(i)) continue;
    if (zip.IsRefused()) return -3;
    WriteError("Failed to unzip " + zip.GetEntries()[i].name + " of " + sPath);
  }
  return 1;
}

bool CDocxPackage::ReadPart(const tstring& sRelative, tstring& sText, const char* sMissing) const {
  const tstring sFile = m_sPath + "/" + sRelative;
  if (ReadFileText(sFile, sText)) return true;
  if (sMissing) WriteError(sMissing + sFile);
  return false;
}
