#include "utility/BufferManager.h"

const char* CBufferManager::Keep(int nSlot, const tstring& sText) {
  std::lock_guard<std::mutex> lock(m_mutex);
  tstring& sSlot = m_mapSlot2Text[nSlot];
  // A fresh string rather than an assignment: an assigned buffer keeps the
  // capacity of the longest text it ever held.
  tstring(sText).swap(sSlot);
  return sSlot.c_str();
}

void CBufferManager::Clear() {
  std::lock_guard<std::mutex> lock(m_mutex);
  m_mapSlot2Text.clear();
}

size_t CBufferManager::GetCount() const {
  std::lock_guard<std::mutex> lock(m_mutex);
  return m_mapSlot2Text.size();
}

size_t CBufferManager::GetSize() const {
  std::lock_guard<std::mutex> lock(m_mutex);
  size_t nBytes = 0;
  for (const auto& kv : m_mapSlot2Text) nBytes += kv.second.capacity();
  return nBytes;
}
