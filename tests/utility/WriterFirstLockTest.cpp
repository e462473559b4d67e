// A writer that waits keeps out readers that come after it, so overlapping
// checks cannot keep an import waiting for ever.
#include <gtest/gtest.h>

#include <chrono>
#include <mutex>
#include <shared_mutex>
#include <thread>

#include "utility/WriterFirstLock.h"

namespace {

TEST(WriterFirstLockTest, AWaitingWriterKeepsOutNewReaders) {
  CWriterFirstLock lock;
  std::shared_lock<CWriterFirstLock> reader(lock);  // a check running
  std::thread writer([&] { std::unique_lock<CWriterFirstLock> write(lock); });
  // Once the writer waits, a new reader must be refused; a lock that lets
  // readers in first never refuses, and the loop runs out.
  bool bRefused = false;
  const auto tEnd = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!bRefused && std::chrono::steady_clock::now() < tEnd) {
    std::thread probe([&] {
      if (lock.try_lock_shared())
        lock.unlock_shared();
      else
        bRefused = true;
    });
    probe.join();
    if (!bRefused) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  reader.unlock();
  writer.join();
  EXPECT_TRUE(bRefused);
  std::shared_lock<CWriterFirstLock> after(lock);  // free again once the writer is done
}

}  // namespace
