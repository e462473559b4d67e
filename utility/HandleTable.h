#pragma once
// CHandleTable: the instances a C API hands out by handle (their index),
// safe to use from several threads. Handles are never reused: a removed
// instance leaves its slot empty. Instances are destroyed after the lock is
// released, so a destructor that takes time holds up no other caller.
#include <memory>
#include <mutex>
#include <vector>

template <class T>
class CHandleTable {
 public:
  int Add(std::unique_ptr<T> pItem) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_vecItems.push_back(std::move(pItem));
    return (int)m_vecItems.size() - 1;
  }

  // False only for a handle never given out; removing twice is no error.
  bool Remove(int handle) {
    std::unique_ptr<T> pDoomed;
    std::lock_guard<std::mutex> lock(m_mutex);
    if (handle < 0 || (size_t)handle >= m_vecItems.size()) return false;
    pDoomed = std::move(m_vecItems[handle]);
    return true;
  }

  // The instance, or null for a handle never given out or removed. Reads
  // take the lock too: an Add elsewhere may move the vector's storage.
  T* Get(int handle) const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return handle >= 0 && (size_t)handle < m_vecItems.size() ? m_vecItems[handle].get() : nullptr;
  }

  void Clear() {
    std::vector<std::unique_ptr<T>> vecDoomed;
    std::lock_guard<std::mutex> lock(m_mutex);
    vecDoomed.swap(m_vecItems);
  }

  size_t LiveCount() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    size_t nLive = 0;
    for (const auto& pItem : m_vecItems) nLive += pItem != nullptr;
    return nLive;
  }

 private:
  mutable std::mutex m_mutex;
  std::vector<std::unique_ptr<T>> m_vecItems;
};
