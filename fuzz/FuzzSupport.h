#pragma once
// What every fuzz target shares: a private file to hand the bytes to a loader.
// Files go to the build tree's fuzz work folder, never to /tmp.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <string>

#include "utility/DataFileWriter.h"

// Inputs above this size are skipped: they only slow the search down.
inline constexpr size_t kMaxFuzzInput = 1 << 20;

// A path unique to this process for the given name.
inline std::string FuzzPath(const char* sName) {
  static const bool s_bMade = mkdir(TARVOS_FUZZ_WORK_DIR, 0777) == 0 || errno == EEXIST;
  (void)s_bMade;
  return std::string(TARVOS_FUZZ_WORK_DIR) + "/" + std::to_string(getpid()) + "-" + sName;
}

// Writes the bytes as they are.
inline std::string WriteRaw(const char* sName, const uint8_t* pData, size_t nSize) {
  std::string sPath = FuzzPath(sName);
  FILE* fp = fopen(sPath.c_str(), "wb");
  if (fp) {
    if (nSize) fwrite(pData, 1, nSize, fp);
    fclose(fp);
  }
  return sPath;
}

// Writes the bytes as the payload of a well-formed data file of a kind, so
// the fuzzer reaches the loader's own parsing past the checksum.
inline std::string WriteEnveloped(const char* sName, const char* sKind, uint32_t nVersion,
                                  const uint8_t* pData, size_t nSize) {
  CDataFileWriter writer(sKind, nVersion);
  writer.PutRaw(pData, nSize);
  std::string sPath = FuzzPath(sName);
  writer.Save(sPath);
  return sPath;
}

// The first byte chooses raw bytes (even) or an envelope (odd); returns the file.
inline std::string WriteForLoader(const char* sName, const char* sKind, uint32_t nVersion,
                                  const uint8_t* pData, size_t nSize) {
  if (nSize == 0) return WriteRaw(sName, pData, 0);
  return (pData[0] & 1) ? WriteEnveloped(sName, sKind, nVersion, pData + 1, nSize - 1)
                        : WriteRaw(sName, pData + 1, nSize - 1);
}
