#include "utility/FileUtil.h"

#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

bool WriteFileReplacing(const tstring& sFilename, const std::function<bool(FILE*)>& fnWrite) {
  if (sFilename.empty()) return false;
  tstring sTemp = sFilename + ".tmp" + std::to_string(getpid());
  FILE* fp = fopen(sTemp.c_str(), "wb");
  if (fp == nullptr) return false;
  bool bOk = fnWrite(fp);
  bOk = (fflush(fp) == 0) && bOk;
  bOk = (fclose(fp) == 0) && bOk;
  if (bOk && rename(sTemp.c_str(), sFilename.c_str()) == 0) return true;
  unlink(sTemp.c_str());
  return false;
}

bool IsReadableDirectory(const tstring& sPath) {
  struct stat st;
  return stat(sPath.c_str(), &st) == 0 && S_ISDIR(st.st_mode) && access(sPath.c_str(), R_OK | X_OK) == 0;
}

bool IsRegularFile(const tstring& sPath) {
  struct stat st;
  return stat(sPath.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

tstring CurrentDirectory() {
  char sBuffer[4096];
  return getcwd(sBuffer, sizeof(sBuffer)) ? tstring(sBuffer) : tstring(".");
}

tstring AbsolutePath(const tstring& sPath) {
  if (sPath.empty() || sPath[0] == '/') return sPath;
  return CurrentDirectory() + "/" + sPath;
}

bool ReadFileText(const tstring& sPath, tstring& sText) {
  sText.clear();
  std::ifstream in(sPath, std::ios::binary);
  if (!in) return false;
  std::ostringstream text;
  text << in.rdbuf();
  sText = text.str();
  return true;
}

bool ReadJsonObjectFile(const tstring& sPath, Json::Value& root) {
  std::ifstream in(sPath, std::ios::binary);
  Json::CharReaderBuilder builder;
  JSONCPP_STRING sErrors;
  return in && Json::parseFromStream(builder, in, &root, &sErrors) && root.isObject();
}
