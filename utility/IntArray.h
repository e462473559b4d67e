#pragma once
// CIntArray is a pool of int32 lists: each list is a half-open range of the
// pool. It is written and read as one block inside a larger file:
//   i32 length K, then K i32 entries.
#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

// A half-open range [start, end) of the pool.
struct _tIntArray {
  int32_t start = 0;
  int32_t end = 0;
};

class CIntArray {
 public:
  CIntArray() = default;
  CIntArray(const CIntArray&) = delete;  // owns its buffer
  CIntArray& operator=(const CIntArray&) = delete;

  // Appends a list and returns its range. A list that does not fit grows the
  // capacity to the current size + the list's length + 1024 entries.
  _tIntArray Append(const std::vector<int32_t>& vecList);
  // The entries of a range, clipped to the pool.
  std::vector<int32_t> Get(const _tIntArray& range) const;
  size_t GetSize() const { return m_nCurDataSize; }
  // The entries in use, for readers that check ranges themselves.
  const int32_t* Data() const { return m_pData.get(); }
  size_t GetCapacity() const { return m_nDataMaxSize; }
  void Clear() { m_nCurDataSize = 0; }

  bool Write(FILE* fp) const;
  // Reads a block of at most nMaxEntries entries; false (pool empty) when
  // the length is negative, too large or the block is cut short.
  bool Read(FILE* fp, uint64_t nMaxEntries);

 private:
  std::unique_ptr<int32_t[]> m_pData;  // the pool
  size_t m_nCurDataSize = 0;           // entries in use
  size_t m_nDataMaxSize = 0;           // entries allocated
};
