#pragma once
// CStaticStr is a pool of zero-terminated strings addressed by byte offset,
// written and read as one block inside a larger file:
//   u64 length L, then L bytes.
#include <cstdint>
#include <cstdio>
#include <memory>

#include "utility/TString.h"

class CStaticStr {
 public:
  CStaticStr() = default;
  CStaticStr(const CStaticStr&) = delete;  // owns its buffer
  CStaticStr& operator=(const CStaticStr&) = delete;

  // Appends a string (up to its first zero byte) and returns its offset.
  size_t Add(const tstring& sText);
  // The string at an offset; "" for an offset outside the pool.
  const char* Get(size_t nOffset) const;
  size_t GetSize() const { return m_nDataIndex; }
  void Clear() { m_nDataIndex = 0; }
  // The pool's bytes, for files that embed it.
  tstring GetBytes() const { return m_nDataIndex ? tstring(m_pData.get(), m_nDataIndex) : tstring(); }
  // Replaces the pool; false (pool empty) unless the bytes are empty or end
  // with a zero byte, so that every offset reads a terminated string.
  bool SetBytes(const tstring& sBytes);

  bool Write(FILE* fp) const;
  // Reads a block of at most nMaxBytes pool bytes; false (pool empty) when
  // the block is longer, cut short, or does not end with a zero byte.
  bool Read(FILE* fp, uint64_t nMaxBytes);

 private:
  std::unique_ptr<char[]> m_pData;  // the pool
  size_t m_nDataIndex = 0;          // bytes in use
  size_t m_nDataMaxSize = 0;        // bytes allocated
};
