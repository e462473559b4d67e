#pragma once
// CBufferManager owns the copies of result texts handed to a host. A copy
// lives until the manager is destroyed, so a host may hold every text it was
// given at once. Safe to use from several threads.
#include <memory>
#include <mutex>
#include <vector>

#include "utility/TString.h"

class CBufferManager {
 public:
  CBufferManager() = default;
  // Copying would duplicate ownership of texts whose addresses hosts hold.
  CBufferManager(const CBufferManager&) = delete;
  CBufferManager& operator=(const CBufferManager&) = delete;

  // Copies sText into a new zero-terminated buffer and returns it.
  // The pointer stays valid until this manager is destroyed or Clear()ed.
  const char* Keep(const tstring& sText);

  // Frees every buffer handed out so far.
  void Clear();

  size_t GetCount() const;

 private:
  mutable std::mutex m_mutex;                       // guards m_vecBuffer
  std::vector<std::unique_ptr<char[]>> m_vecBuffer;  // every copy handed out
};
