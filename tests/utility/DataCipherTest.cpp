// The data-file cipher: its own inverse, keyed per string from the first byte.
#include <gtest/gtest.h>

#include <string>

#include "utility/DataCipher.h"

namespace {

TEST(DataCipherTest, IsItsOwnInverseAndHidesTheTextAtEveryLength) {
  std::string sPlain;
  for (int i = 0; i < 300; ++i) {
    std::string sCipher = CipherString(sPlain);
    EXPECT_EQ(CipherString(sCipher), sPlain) << "length " << i;
    if (!sPlain.empty()) {
      EXPECT_NE(sCipher, sPlain) << "length " << i;
    }
    sPlain += (char)('a' + i % 3);  // repetitive text must not cipher into repeats
  }
}

TEST(DataCipherTest, EachStringStartsTheKeyAfresh) {
  std::string sLong = CipherString("字体不符合模板要求");
  std::string sShort = CipherString("字体");
  EXPECT_EQ(sLong.substr(0, sShort.size()), sShort);
  EXPECT_NE(CipherString("aaaa").substr(0, 2), CipherString("aaaa").substr(2, 2));
}

}  // namespace
