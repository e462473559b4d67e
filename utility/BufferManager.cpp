#include "utility/BufferManager.h"

#include <cstring>

const char* CBufferManager::Keep(const tstring& sText) {
  std::unique_ptr<char[]> pBuffer(new char[sText.size() + 1]);
  memcpy(pBuffer.get(), sText.data(), sText.size());
  pBuffer[sText.size()] = '\0';
  std::lock_guard<std::mutex> lock(m_mutex);
  m_vecBuffer.push_back(std::move(pBuffer));
  return m_vecBuffer.back().get();
}

void CBufferManager::Clear() {
  std::lock_guard<std::mutex> lock(m_mutex);
  m_vecBuffer.clear();
}

size_t CBufferManager::GetCount() const {
  std::lock_guard<std::mutex> lock(m_mutex);
  return m_vecBuffer.size();
}
