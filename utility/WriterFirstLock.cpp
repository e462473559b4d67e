#include "utility/WriterFirstLock.h"

CWriterFirstLock::CWriterFirstLock() {
  pthread_rwlockattr_t attr;
  pthread_rwlockattr_init(&attr);
  pthread_rwlockattr_setkind_np(&attr, PTHREAD_RWLOCK_PREFER_WRITER_NONRECURSIVE_NP);
  pthread_rwlock_init(&m_lock, &attr);
  pthread_rwlockattr_destroy(&attr);
}

CWriterFirstLock::~CWriterFirstLock() { pthread_rwlock_destroy(&m_lock); }

void CWriterFirstLock::lock() { pthread_rwlock_wrlock(&m_lock); }
void CWriterFirstLock::unlock() { pthread_rwlock_unlock(&m_lock); }
void CWriterFirstLock::lock_shared() { pthread_rwlock_rdlock(&m_lock); }
bool CWriterFirstLock::try_lock_shared() { return pthread_rwlock_tryrdlock(&m_lock) == 0; }
void CWriterFirstLock::unlock_shared() { pthread_rwlock_unlock(&m_lock); }
