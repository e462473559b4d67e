// Returned texts stay where they are while more are handed out.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "utility/BufferManager.h"

namespace {

TEST(BufferManagerTest, EarlierTextsSurviveLaterOnes) {
  CBufferManager buffers;
  std::vector<const char*> vecTexts;
  for (int i = 0; i < 2000; ++i) vecTexts.push_back(buffers.Keep(std::to_string(i)));
  for (int i = 0; i < 2000; ++i) ASSERT_STREQ(vecTexts[i], std::to_string(i).c_str());
  EXPECT_EQ(buffers.GetCount(), 2000u);
}

TEST(BufferManagerTest, KeepsEmbeddedBytesAndTerminates) {
  CBufferManager buffers;
  const char* s = buffers.Keep(std::string("a\0b", 3));
  EXPECT_EQ(s[0], 'a');
  EXPECT_EQ(s[2], 'b');
  EXPECT_EQ(s[3], '\0');
  EXPECT_STREQ(buffers.Keep(""), "");
}

}  // namespace
