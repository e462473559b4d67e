// An owner keeps the latest text of each call: texts of other slots stay
// where they are, and repeated calls do not make it grow.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "utility/BufferManager.h"

namespace {

TEST(BufferManagerTest, EachSlotKeepsItsLatestTextOnly) {
  CBufferManager buffers;
  const char* sFirst = buffers.Keep(1, "first slot");
  for (int i = 0; i < 10000; ++i) buffers.Keep(2, std::string(100, 'x') + std::to_string(i));
  EXPECT_STREQ(sFirst, "first slot") << "another slot's texts leave it in place";
  EXPECT_EQ(buffers.GetCount(), 2u);
  EXPECT_LT(buffers.GetSize(), 1000u) << "10,000 texts of one call do not pile up";
  EXPECT_STREQ(buffers.Keep(2, "short"), "short");
}

TEST(BufferManagerTest, KeepsEmbeddedBytesAndTerminates) {
  CBufferManager buffers;
  const char* s = buffers.Keep(0, std::string("a\0b", 3));
  EXPECT_EQ(s[0], 'a');
  EXPECT_EQ(s[2], 'b');
  EXPECT_EQ(s[3], '\0');
  EXPECT_STREQ(buffers.Keep(1, ""), "");
}

}  // namespace
