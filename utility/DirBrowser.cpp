#include "utility/DirBrowser.h"

#include <dirent.h>
#include <fnmatch.h>
#include <sys/stat.h>

#include <algorithm>

std::vector<tstring> ListFiles(const tstring& sDir, const tstring& sFilter, bool bFilesOnly) {
  std::vector<tstring> vecFiles;
  DIR* pDir = opendir(sDir.c_str());
  if (pDir == nullptr) return vecFiles;
  tstring sBase = sDir;
  while (sBase.size() > 1 && sBase.back() == '/') sBase.pop_back();
  const bool bAll = sFilter.empty() || sFilter == "*.*" || sFilter == "*";
  while (struct dirent* pEntry = readdir(pDir)) {
    tstring sName = pEntry->d_name;
    if (sName == "." || sName == "..") continue;
    if (!bAll && fnmatch(sFilter.c_str(), sName.c_str(), FNM_CASEFOLD) != 0) continue;
    tstring sPath = (sBase == "/" ? "" : sBase) + "/" + sName;
    struct stat st;
    if (stat(sPath.c_str(), &st) != 0) continue;
    if (S_ISREG(st.st_mode) || (!bFilesOnly && S_ISDIR(st.st_mode))) vecFiles.push_back(sPath);
  }
  closedir(pDir);
  std::sort(vecFiles.begin(), vecFiles.end());
  return vecFiles;
}

void SplitPath(const tstring& sPath, tstring& sDir, tstring& sName, tstring& sExt) {
  size_t nSlash = sPath.rfind('/');
  sDir = nSlash == tstring::npos ? "" : sPath.substr(0, nSlash);
  tstring sBase = nSlash == tstring::npos ? sPath : sPath.substr(nSlash + 1);
  size_t nDot = sBase.rfind('.');
  if (nDot == tstring::npos || nDot == 0) {
    sName = sBase;
    sExt.clear();
  } else {
    sName = sBase.substr(0, nDot);
    sExt = sBase.substr(nDot + 1);
  }
}
