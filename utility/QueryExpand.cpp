#include "utility/QueryExpand.h"

#include "utility/ErrorLog.h"

CQueryExpand::CQueryExpand(const char* sDataPath, const char* sName)
    : m_sFilename(tstring(sDataPath ? sDataPath : "") + "/" + (sName ? sName : "SimDict")) {}

int CQueryExpand::SimDictGenerate(const char* sDictFile, const char* /*sAssociateFile*/) {
  if (sDictFile == nullptr) {
    SetLastError("SimDictGenerate: file name is NULL");
    return 0;
  }
  return ServiceMissing("the spelling dictionary import (CQueryExpand::SimDictGenerate)");
}
