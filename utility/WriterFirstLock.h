#pragma once
// CWriterFirstLock: a reader-writer lock under which a writer that waits
// holds up readers that come after it. The default lock of the C library
// lets new readers in while a writer waits, so a stream of overlapping
// readers could keep the writer out for ever. Read locks must not nest: a
// thread that holds one and asks again while a writer waits would wait for
// itself. Meets the needs of std::unique_lock and std::shared_lock.
#include <pthread.h>

class CWriterFirstLock {
 public:
  CWriterFirstLock();
  ~CWriterFirstLock();
  CWriterFirstLock(const CWriterFirstLock&) = delete;
  CWriterFirstLock& operator=(const CWriterFirstLock&) = delete;

  void lock();
  void unlock();
  void lock_shared();
  bool try_lock_shared();
  void unlock_shared();

 private:
  pthread_rwlock_t m_lock;
};
