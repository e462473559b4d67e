#include "TestDataDir.h"

#include <algorithm>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {
std::string MakeTempFolder() {
  std::string sTemplate = (fs::temp_directory_path() / "tarvos-test-XXXXXX").string();
  if (mkdtemp(&sTemplate[0]) == nullptr) throw std::runtime_error("mkdtemp failed");
  return sTemplate;
}
}  // namespace

CTempDir::CTempDir() : m_sPath(MakeTempFolder()) {}

CTempDir::~CTempDir() {
  std::error_code ec;
  fs::remove_all(m_sPath, ec);
}

// The lexicon is large and never written: it is linked, not copied.
CTestDataDir::CTestDataDir() : m_sRoot(MakeTempFolder()) {
  const std::string sFrom = std::string(TARVOS_TEST_DATA_DIR) + "/Data";
  fs::create_directory(m_sRoot + "/Data");
  for (const auto& entry : fs::directory_iterator(sFrom)) {
    const std::string sName = entry.path().filename().string();
    if (sName == "KnowGraph.txt" || sName == ".stamp") continue;
    if (sName == "Lexicon")
      fs::create_directory_symlink(entry.path(), m_sRoot + "/Data/" + sName);
    else
      fs::copy(entry.path(), m_sRoot + "/Data/" + sName, fs::copy_options::recursive);
  }
  const fs::path keywords = fs::path(TARVOS_TEST_DATA_DIR) / "KeyScanner";
  if (fs::exists(keywords)) fs::copy(keywords, m_sRoot + "/KeyScanner", fs::copy_options::recursive);
}

CTestDataDir::~CTestDataDir() {
  std::error_code ec;
  fs::remove_all(m_sRoot, ec);
}

void CTestDataDir::Remove(const std::string& sRelative) const { fs::remove(Data(sRelative)); }

void CTestDataDir::Write(const std::string& sRelative, const std::string& sContent) const {
  std::ofstream out(Data(sRelative), std::ios::binary);
  out << sContent;
}

std::string ReadWholeFile(const std::string& sPath) {
  std::ifstream in(sPath, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::string ReadTodaysLog(const std::string& sLogDir, const char* szExtension) {
  char sDate[16];
  time_t tNow = time(nullptr);
  struct tm tmNow;
  localtime_r(&tNow, &tmNow);
  strftime(sDate, sizeof(sDate), "%Y%m%d", &tmNow);
  return ReadWholeFile(sLogDir + "/" + sDate + szExtension);
}

Json::Value ParseJson(const std::string& sText) {
  Json::CharReaderBuilder builder;
  Json::CharReaderBuilder::strictMode(&builder.settings_);
  std::unique_ptr<Json::CharReader> pReader(builder.newCharReader());
  Json::Value root;
  std::string sErrors;
  EXPECT_TRUE(pReader->parse(sText.data(), sText.data() + sText.size(), &root, &sErrors))
      << sErrors << sText.substr(0, 200);
  return root;
}

std::vector<std::string> CorpusDocx(const std::string& sCorpusDir) {
  std::vector<std::string> vecNames;
  for (const char* szSub : {"/zh", "/other"}) {
    std::error_code ec;
    for (const auto& entry : fs::directory_iterator(sCorpusDir + szSub, ec))
      if (entry.path().extension() == ".docx") vecNames.push_back(entry.path().string());
  }
  std::sort(vecNames.begin(), vecNames.end());
  return vecNames;
}

std::vector<std::string> CopyInto(const std::vector<std::string>& vecFiles, const std::string& sDir) {
  std::vector<std::string> vecCopies;
  for (const std::string& sFile : vecFiles) {
    std::string sCopy = sDir + "/" + fs::path(sFile).filename().string();
    fs::copy_file(sFile, sCopy, fs::copy_options::overwrite_existing);
    vecCopies.push_back(sCopy);
  }
  return vecCopies;
}
