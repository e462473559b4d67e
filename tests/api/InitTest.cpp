// Engine start-up and shut-down: data-directory resolution, the switches of
// the configuration file, fatal and non-fatal start-up failures.
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "TestDataDir.h"
#include "api/Globals.h"
#include "checker/DocFormatCheck.h"
#include "checker/ID2Message.h"
#include "tarvos.h"

namespace {

// Restores the working directory a test changed.
class CWorkingDirGuard {
 public:
  CWorkingDirGuard() : m_sSaved(getcwd(m_sBuffer, sizeof(m_sBuffer)) ? m_sBuffer : "/") {}
  ~CWorkingDirGuard() { (void)chdir(m_sSaved.c_str()); }
  CWorkingDirGuard(const CWorkingDirGuard&) = delete;
  CWorkingDirGuard& operator=(const CWorkingDirGuard&) = delete;

 private:
  char m_sBuffer[4096];
  std::string m_sSaved;
};

class InitTest : public ::testing::Test {
 protected:
  void TearDown() override { TARVOS_Exit(); }
  CTestDataDir m_data;
};

TEST_F(InitTest, StartsOnTheBuiltDataDirectoryWithHandleZero) {
  ASSERT_EQ(TARVOS_Init(m_data.Root().c_str()), 1) << TARVOS_GetLastErrorMsg();
  EXPECT_TRUE(g_pEngine && g_pEngine->IsStarted());
  // Handle 0 exists without TARVOS_NewInstance; an empty stored text reads back.
  const char* sKG = TARVOS_GetResult(1, 0);
  ASSERT_NE(sKG, nullptr);
  EXPECT_STREQ(sKG, "");
  EXPECT_EQ(TARVOS_NewInstance(), 1);
  EXPECT_NE(g_pEngine->GetMessages()->GetMessages().count("1.5.2"), 0u);
}

struct SwitchCase {
  const char* szName;
  const char* szConfig;  // nullptr: no configuration file
  bool bPunction, bFormat, bOCR, bFilter, bSpelling, bCountry;
  const char* szSpellingHost;
};

const SwitchCase kSwitchCases[] = {
    {"no file keeps the defaults", nullptr, 1, 1, 0, 0, 0, 0, ""},
    {"not JSON keeps the defaults", "FormatCheck=off", 1, 1, 0, 0, 0, 0, ""},
    {"a JSON array keeps the defaults", "[\"off\"]", 1, 1, 0, 0, 0, 0, ""},
    {"OFF in capitals switches off", R"({"FormatCheck": "OFF", "PunctionCheck": "Off"})", 0, 0, 0, 0, 0, 0, ""},
    {"no is not off", R"({"FormatCheck": "no", "PunctionCheck": ""})", 1, 1, 0, 0, 0, 0, ""},
    {"ON in capitals switches on", R"({"OCR": "ON", "FilterCheck": "on", "CountryDetect": "On"})", 1, 1, 1, 1, 0, 1, ""},
    {"yes and true are not on", R"({"OCR": "yes", "FilterCheck": "true", "CountryDetect": true})", 1, 1, 0, 0, 0, 0, ""},
    {"spelling host read only when on", R"({"SpellCheck": "on", "SpellCheckIP": "10.1.2.3"})", 1, 1, 0, 0, 1, 0, "10.1.2.3"},
    {"spelling host ignored when off", R"({"SpellCheck": "off", "SpellCheckIP": "10.1.2.3"})", 1, 1, 0, 0, 0, 0, ""},
    {"objects as values are ignored", R"({"FormatCheck": {"v": "off"}, "OCR": ["on"]})", 1, 1, 0, 0, 0, 0, ""},
};

TEST_F(InitTest, ReadsSwitchesCaseInsensitivelyWithTheOnOffAsymmetry) {
  for (const SwitchCase& c : kSwitchCases) {
    CTestDataDir data;
    if (c.szConfig)
      data.Write("ZYG-Configure.json", c.szConfig);
    else
      data.Remove("ZYG-Configure.json");
    ASSERT_EQ(TARVOS_Init(data.Root().c_str()), 1) << c.szName << ": " << TARVOS_GetLastErrorMsg();
    const _tCheckSwitches& switches = g_pEngine->Switches();
    EXPECT_EQ(switches.bPunctionCheck, c.bPunction) << c.szName;
    EXPECT_EQ(switches.bFormatCheck, c.bFormat) << c.szName;
    EXPECT_EQ(switches.bOCR, c.bOCR) << c.szName;
    EXPECT_EQ(switches.bFilteringCheck, c.bFilter) << c.szName;
    EXPECT_EQ(switches.bSpellingCheck, c.bSpelling) << c.szName;
    EXPECT_EQ(switches.bCountryDetect, c.bCountry) << c.szName;
    EXPECT_EQ(switches.sSpellingHostIP, c.szSpellingHost) << c.szName;
    EXPECT_EQ(g_pEngine->GetFormatChecker() != nullptr, c.bFormat) << c.szName;
    TARVOS_Exit();
  }
}

TEST_F(InitTest, UnreadableConfigurationIsReportedButNotFatal) {
  m_data.Write("ZYG-Configure.json", "{ broken");
  ASSERT_EQ(TARVOS_Init(m_data.Root().c_str()), 1);
  // Later start-up steps may leave notes, so the configuration failure is
  // checked through the switches and the status rather than the last text.
  EXPECT_TRUE(g_pEngine->Switches().bFormatCheck);
}

struct FatalCase {
  const char* szName;
  const char* szRemove;
  const char* szConfig;  // nullptr: keep the shipped configuration
  int nStatus;
};

const FatalCase kFatalCases[] = {
    {"catalogue missing", "Error/ErrorMessage.dat", nullptr, -6},
    {"font sizes missing with format checking on", "Font/FontSize.dat", nullptr, -7},
    {"font sizes not needed with format checking off", "Font/FontSize.dat", R"({"FormatCheck": "off"})", 1},
    {"empty font-size table", nullptr, nullptr, -7},
    {"encoding model missing is not fatal", "CodeTrans.model", nullptr, 1},
    {"rule manager file missing is not fatal", "ZYG_Manager.dat", nullptr, 1},
};

TEST_F(InitTest, FatalStepsReturnTheirStatusAndLeaveTheEngineClosed) {
  for (const FatalCase& c : kFatalCases) {
    CTestDataDir data;
    if (c.szRemove) data.Remove(c.szRemove);
    if (c.szConfig) data.Write("ZYG-Configure.json", c.szConfig);
    if (!c.szRemove && !c.szConfig) data.Write("Font/FontSize.dat", "# no sizes\n");
    EXPECT_EQ(TARVOS_Init(data.Root().c_str()), c.nStatus) << c.szName;
    EXPECT_EQ(g_pEngine->IsStarted(), c.nStatus == 1) << c.szName;
    if (c.nStatus != 1) {
      EXPECT_EQ(TARVOS_NewInstance(), -1) << c.szName;
    }
    TARVOS_Exit();
  }
}

TEST_F(InitTest, NonFatalFailuresLeaveTheirMessage) {
  m_data.Remove("CodeTrans.model");
  ASSERT_EQ(TARVOS_Init(m_data.Root().c_str()), 1);
  EXPECT_EQ(std::string(TARVOS_GetLastErrorMsg()),
            "Fail read encoding recognition file " + m_data.Data("CodeTrans.model"));
  TARVOS_Exit();

  m_data.Remove("ZYG_Manager.dat");
  m_data.Write("CodeTrans.model", "UTF-8\n");
  ASSERT_EQ(TARVOS_Init(m_data.Root().c_str()), 1);
  EXPECT_EQ(std::string(TARVOS_GetLastErrorMsg()), "Failed while g_pZYGManager->Load " + m_data.Root());
}

TEST_F(InitTest, MissingDataDirectoryFailsNamingTheDirectory) {
  std::string sMissing = m_data.Root() + "/no-such-folder";
  EXPECT_EQ(TARVOS_Init(sMissing.c_str()), -1);
  EXPECT_EQ(std::string(TARVOS_GetLastErrorMsg()), "Error Init ZYG from " + sMissing);
  EXPECT_EQ(TARVOS_NewInstance(), -1);
  EXPECT_STREQ(TARVOS_GetLastErrorMsg(), "Not Init, no operation!");
}

TEST_F(InitTest, ResolvesNullEmptyAndDotPathsAgainstTheWorkingDirectory) {
  CWorkingDirGuard guard;
  ASSERT_EQ(chdir(m_data.Root().c_str()), 0);
  char sCwd[4096];
  ASSERT_NE(getcwd(sCwd, sizeof(sCwd)), nullptr);

  ASSERT_EQ(TARVOS_Init(nullptr), 1);
  EXPECT_EQ(g_pEngine->GetDataDir(), sCwd);
  TARVOS_Exit();
  ASSERT_EQ(TARVOS_Init(""), 1);
  EXPECT_EQ(g_pEngine->GetDataDir(), sCwd);
  TARVOS_Exit();
  ASSERT_EQ(TARVOS_Init("."), 1);
  EXPECT_EQ(g_pEngine->GetDataDir(), std::string(sCwd) + "/.");
  TARVOS_Exit();
  ASSERT_EQ(chdir("Data"), 0);
  ASSERT_EQ(TARVOS_Init("./.."), 1);
  EXPECT_EQ(g_pEngine->GetDataDir(), std::string(sCwd) + "/Data/./..");
  EXPECT_EQ(g_pEngine->GetDefaultDir(), std::string(sCwd) + "/Data");
}

TEST_F(InitTest, InitExitInitRestartsHandlesAndServices) {
  ASSERT_EQ(TARVOS_Init(m_data.Root().c_str()), 1);
  EXPECT_EQ(TARVOS_NewInstance(), 1);
  EXPECT_EQ(TARVOS_NewInstance(), 2);
  TARVOS_Exit();
  EXPECT_EQ(g_pEngine, nullptr) << "every service goes with the engine";
  EXPECT_EQ(TARVOS_GetResult(1, 1), nullptr);
  ASSERT_EQ(TARVOS_Init(m_data.Root().c_str()), 1);
  EXPECT_EQ(TARVOS_NewInstance(), 1);
  EXPECT_NE(TARVOS_GetResult(1, 0), nullptr);
}

TEST_F(InitTest, ImportErrorMsgNeedsTheEngine) {
  EXPECT_EQ(TARVOS_ImportErrorMsg("whatever.txt"), 0);
}

TEST_F(InitTest, ImportErrorMsgSavesBesideTheParentOfTheStartingDirectory) {
  // The catalogue goes to <working dir>/../Data/Error, so start from a
  // folder whose parent has that layout: the copy's "Data" folder itself.
  CWorkingDirGuard guard;
  ASSERT_EQ(chdir(m_data.Data("").c_str()), 0);
  ASSERT_EQ(TARVOS_Init(m_data.Root().c_str()), 1);
  m_data.Write("list.txt", "ID Message Each Max\n9.9 text 1.5 6\n9.8 other\n");
  EXPECT_EQ(TARVOS_ImportErrorMsg(m_data.Data("list.txt").c_str()), 2);

  CID2Message saved;
  ASSERT_EQ(saved.Load(m_data.Data("Error/ErrorMessage.dat").c_str()), 1);
  ASSERT_EQ(saved.GetMessages().size(), 2u);
  EXPECT_EQ(saved.GetMessages().at("9.9"), "text");
  EXPECT_EQ(TARVOS_ImportErrorMsg(m_data.Data("no-such-list.txt").c_str()), -1) << "nothing read, nothing saved";
}

TEST_F(InitTest, ImportCallsReachTheirServices) {
  EXPECT_EQ(TARVOS_ImportSimDict("x.txt"), 0);
  EXPECT_STREQ(TARVOS_GetLastErrorMsg(), "g_pSimDict not init!");
  EXPECT_EQ(TARVOS_ImportUserDict(m_data.Data("user.txt").c_str()), 0) << "the analyser starts with the engine";
  m_data.Write("ZYG-Configure.json", R"({"FilterCheck": "off"})");
  ASSERT_EQ(TARVOS_Init(m_data.Root().c_str()), 1);
  EXPECT_EQ(TARVOS_ImportUserDict("x.txt"), 0);
  EXPECT_STREQ(TARVOS_GetLastErrorMsg(), "Fail read file x.txt");
  m_data.Write("user.txt", "审查引擎\tZYG\n[machine learning]\tZYG\n");
  EXPECT_EQ(TARVOS_ImportUserDict(m_data.Data("user.txt").c_str()), 2);
  EXPECT_EQ(TARVOS_ImportFieldDict("x.txt", false, false), 0);
  EXPECT_STREQ(TARVOS_GetLastErrorMsg(), "The keyword scanner (FilterCheck) not init!") << "the scanner is off";
}

// A misspelling imported through the C API is segmented whole and reported
// by the spelling check; without "SpellCheck" there is no check to ask.
TEST_F(InitTest, SpellingDictionariesReachTheSpellingCheck) {
  m_data.Write("ZYG-Configure.json", R"({"SpellCheck": "off"})");
  ASSERT_EQ(TARVOS_Init(m_data.Root().c_str()), 1);
  EXPECT_EQ(TARVOS_CheckSpelling("检查设被运行情况"), nullptr);
  EXPECT_STREQ(TARVOS_GetLastErrorMsg(), "The spelling check not init!");
  TARVOS_Exit();
  m_data.Write("ZYG-Configure.json", R"({"SpellCheck": "on"})");
  ASSERT_EQ(TARVOS_Init(m_data.Root().c_str()), 1);
  m_data.Write("spell.txt", "设被-->设备\n孤词\n");
  m_data.Write("sim.txt", "部署 布署 部属\n");
  EXPECT_EQ(TARVOS_ImportSpellErrorDict(m_data.Data("spell.txt").c_str()), 1) << "one word for the segmenter";
  EXPECT_EQ(TARVOS_ImportSimDict(m_data.Data("sim.txt").c_str()), 1);
  const char* sFound = TARVOS_CheckSpelling("检查设被运行情况");
  ASSERT_NE(sFound, nullptr) << TARVOS_GetLastErrorMsg();
  EXPECT_EQ(ParseJson(sFound), ParseJson(R"([{"offset": 6, "org": "设被", "revise": "设备"}])"));
  EXPECT_EQ(ParseJson(TARVOS_CheckSpelling("")), ParseJson("[]"));
  TARVOS_Exit();
  ASSERT_EQ(TARVOS_Init(m_data.Root().c_str()), 1);
  EXPECT_EQ(ParseJson(TARVOS_CheckSpelling("检查设被运行情况")).size(), 1u) << "the dictionary is saved";
}

TEST_F(InitTest, NeverChangesTheWorkingDirectory) {
  char sBefore[4096], sAfter[4096];
  ASSERT_NE(getcwd(sBefore, sizeof(sBefore)), nullptr);
  ASSERT_EQ(TARVOS_Init(m_data.Root().c_str()), 1);
  TARVOS_CheckReportF("missing.docx", "", "", 1, 0, false, 0);
  TARVOS_Exit();
  ASSERT_NE(getcwd(sAfter, sizeof(sAfter)), nullptr);
  EXPECT_STREQ(sBefore, sAfter);
}

}  // namespace
