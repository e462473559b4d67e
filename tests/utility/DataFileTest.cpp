// Every dictionary file refuses damage: truncation at any length, extra
// bytes, a flipped byte, another kind of file, a foreign file. The refusal
// names the file and leaves the structure empty.
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <string>

#include "TestDataDir.h"
#include "utility/ErrorLog.h"
#include "utility/PDAT.h"
#include "utility/POS.h"
#include "utility/StrTran.h"
#include "utility/WordList.h"

namespace {

struct FileKind {
  const char* szName;
  std::function<bool(const std::string&)> fnSave;  // writes a small sample
  std::function<bool(const std::string&)> fnLoad;  // loads into a fresh object
  std::function<bool(const std::string&)> fnLoadedEmpty;  // loads, then reports emptiness
};

std::vector<FileKind> Kinds() {
  return {
      {"PDAT",
       [](const std::string& f) {
         CPDAT d;
         d.BeginAdd();
         d.AddWord("字体");
         d.AddWord("字号");
         d.FinishAdd();
         return d.Save(f);
       },
       [](const std::string& f) { CPDAT d; return d.Load(f); },
       [](const std::string& f) { CPDAT d; d.Load(f); return d.GetCount() == 0 && d.GetId("字体") == -1; }},
      {"WordList",
       [](const std::string& f) {
         CWordList w;
         w.AddWord("字体", 0);
         w.AddWord("行距", 3);
         return w.Save(f);
       },
       [](const std::string& f) { CWordList w; return w.Load(f); },
       [](const std::string& f) { CWordList w; w.Load(f); return w.GetCount() == 0; }},
      {"POS",
       [](const std::string& f) {
         CPOS p;
         p.Set(0, 3, 10);
         p.Set(2, 1, 5);
         return p.Save(f);
       },
       [](const std::string& f) { CPOS p; return p.Load(f); },
       [](const std::string& f) { CPOS p; p.Load(f); return p.GetCount() == 0; }},
      {"StrTran",
       [](const std::string& f) {
         CStrTran t("py", "word");
         t.Add("zhongguo", "中国");
         return t.Save(f + ".");
       },
       [](const std::string& f) { CStrTran t("py", "word"); return t.Load(f + "."); },
       [](const std::string& f) { CStrTran t("py", "word"); t.Load(f + "."); return t.GetPairs().empty(); }},
  };
}

std::string FileOf(const FileKind& kind, const std::string& sBase) {
  return std::string(kind.szName) == "StrTran" ? sBase + ".py2word.tran" : sBase;
}

void Overwrite(const std::string& sPath, const std::string& sContent) {
  std::ofstream(sPath, std::ios::binary | std::ios::trunc) << sContent;
}

TEST(DataFileTest, EveryKindRoundTripsAndRefusesDamage) {
  CTempDir dir;
  for (const FileKind& kind : Kinds()) {
    std::string sBase = dir.Path() + "/" + kind.szName;
    ASSERT_TRUE(kind.fnSave(sBase)) << kind.szName;
    ASSERT_TRUE(kind.fnLoad(sBase)) << kind.szName << ": " << GetLastError();
    std::string sFile = FileOf(kind, sBase);
    const std::string sWhole = ReadWholeFile(sFile);

    std::vector<std::pair<std::string, std::string>> vecDamage;
    for (size_t n = 0; n < sWhole.size(); ++n) vecDamage.emplace_back("cut at " + std::to_string(n), sWhole.substr(0, n));
    vecDamage.emplace_back("extra byte", sWhole + "x");
    for (size_t n = 0; n < sWhole.size(); n += 3) {
      std::string sFlipped = sWhole;
      sFlipped[n] ^= 0x20;
      vecDamage.emplace_back("byte " + std::to_string(n) + " flipped", sFlipped);
    }
    vecDamage.emplace_back("text file", "word\tclass\n字体\t1\n");

    for (const auto& damage : vecDamage) {
      Overwrite(sFile, damage.second);
      SetLastError("");
      EXPECT_FALSE(kind.fnLoad(sBase)) << kind.szName << ": " << damage.first;
      EXPECT_NE(GetLastError().find(sFile), std::string::npos) << kind.szName << ": " << damage.first;
      EXPECT_TRUE(kind.fnLoadedEmpty(sBase)) << kind.szName << ": " << damage.first;
    }
    Overwrite(sFile, sWhole);
    EXPECT_TRUE(kind.fnLoad(sBase)) << kind.szName << " whole again";
  }
}

TEST(DataFileTest, OneKindIsRefusedAsAnother) {
  CTempDir dir;
  std::string sFile = dir.Path() + "/list";
  CWordList words;
  words.AddWord("字", 0);
  ASSERT_TRUE(words.Save(sFile));
  CPDAT dict;
  EXPECT_FALSE(dict.Load(sFile));
  EXPECT_EQ(GetLastError(), "Corrupt data file " + sFile + ": holds WLST data, expected PDAT");
  EXPECT_FALSE(dict.Load(dir.Path() + "/none"));
  EXPECT_EQ(GetLastError(), "Fail read file " + dir.Path() + "/none");
}

TEST(DataFileTest, ColumnsOfATableMustMatch) {
  CTempDir dir;
  CStrTran pinyin("py", "word");
  pinyin.Add("shi", "是");
  pinyin.Add("shi", "事");
  pinyin.Add("shi", "是");
  ASSERT_TRUE(pinyin.Save(dir.Path() + "/"));
  CStrTran loaded("py", "word");
  ASSERT_TRUE(loaded.Load(dir.Path() + "/"));
  EXPECT_EQ(loaded.FindSecond("shi"), (std::vector<std::string>{"是", "事"}));
  EXPECT_EQ(loaded.FindFirst("事"), (std::vector<std::string>{"shi"}));
  EXPECT_TRUE(loaded.FindFirst("非").empty());
}

}  // namespace
