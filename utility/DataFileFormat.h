#pragma once
// What CDataFileWriter and CDataFileReader share about the data-file layout.
#include <cstddef>
#include <cstdint>

inline constexpr char kDataFileMagic[9] = "TARVOSDF";
inline constexpr size_t kDataFileHeaderSize = 8 + 4 + 4 + 8;  // magic, kind, version, length
inline constexpr size_t kDataFileTrailerSize = 4;             // CRC-32

// CRC-32 over the kind, the version and the payload.
uint32_t DataFileChecksum(const char* sKind, uint32_t nVersion, const char* pPayload, size_t nLength);
