#include "TestDataDir.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

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

CTestDataDir::CTestDataDir() : m_sRoot(MakeTempFolder()) {
  fs::copy(std::string(TARVOS_TEST_DATA_DIR) + "/Data", m_sRoot + "/Data", fs::copy_options::recursive);
  std::error_code ec;
  fs::remove(m_sRoot + "/Data/KnowGraph.txt", ec);
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
