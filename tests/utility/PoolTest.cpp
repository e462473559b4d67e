// The string and integer pools: growth, ranges and their blocks in a file.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "TestDataDir.h"
#include "utility/IntArray.h"
#include "utility/POS.h"
#include "utility/StaticStr.h"
#include "utility/WordList.h"

namespace {

TEST(PoolTest, IntArrayGrowsByTheListPlus1024AndKeepsRanges) {
  CIntArray pool;
  _tIntArray first = pool.Append({1, 2, 3});
  EXPECT_EQ(pool.GetCapacity(), 3u + 1024u);
  _tIntArray second = pool.Append(std::vector<int32_t>(1030, 9));
  EXPECT_EQ(pool.GetCapacity(), 3u + 1030u + 1024u);
  EXPECT_EQ(pool.Get(first), (std::vector<int32_t>{1, 2, 3}));
  EXPECT_EQ(second.start, 3);
  EXPECT_EQ(second.end, 1033);
  EXPECT_EQ(pool.Get(_tIntArray{1030, 5000}).size(), 3u) << "clipped to the pool";
  EXPECT_TRUE(pool.Get(_tIntArray{-5, 0}).empty());
}

TEST(PoolTest, BlocksReadBackAndRefuseBadLengths) {
  CTempDir dir;
  std::string sFile = dir.Path() + "/pools";
  CIntArray ints;
  ints.Append({7, 8});
  CStaticStr strs;
  size_t nOffset = strs.Add("字体");
  strs.Add("");
  FILE* fp = fopen(sFile.c_str(), "wb");
  ASSERT_TRUE(ints.Write(fp) && strs.Write(fp));
  fclose(fp);

  fp = fopen(sFile.c_str(), "rb");
  CIntArray intsBack;
  CStaticStr strsBack;
  ASSERT_TRUE(intsBack.Read(fp, 100));
  ASSERT_TRUE(strsBack.Read(fp, 100));
  fclose(fp);
  EXPECT_EQ(intsBack.Get(_tIntArray{0, 2}), (std::vector<int32_t>{7, 8}));
  EXPECT_STREQ(strsBack.Get(nOffset), "字体");
  EXPECT_STREQ(strsBack.Get(999), "");

  fp = fopen(sFile.c_str(), "rb");
  EXPECT_FALSE(intsBack.Read(fp, 1)) << "longer than allowed";
  fclose(fp);
  EXPECT_EQ(intsBack.GetSize(), 0u);
}

TEST(PoolTest, WordListAndPOSAnswerForUnsetIds) {
  CWordList words;
  words.AddWord("行距", 4);
  words.AddWord("字号", 4);
  EXPECT_STREQ(words.GetWord(4), "字号");
  EXPECT_STREQ(words.GetWord(0), "");
  EXPECT_STREQ(words.GetWord(-1), "");
  EXPECT_EQ(words.GetCount(), 5u);
  CPOS pos;
  pos.Set(2, 7, 30);
  EXPECT_EQ(pos.Get(2).POS_id, 7);
  EXPECT_EQ(pos.Get(2).freq, 30);
  EXPECT_EQ(pos.Get(2).handle, 2);
  EXPECT_EQ(pos.Get(1).POS_id, -1);
  EXPECT_EQ(pos.Get(99).POS_id, -1);
}

}  // namespace
