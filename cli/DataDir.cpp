#include "cli/DataDir.h"

#include <cstdlib>
#include <filesystem>

#include "tarvos.h"

std::string ChooseDataDir(const std::string& sOption) {
  if (!sOption.empty()) return sOption;
  const char* sEnv = std::getenv("TARVOS_DATA");
  if (sEnv != nullptr && *sEnv != '\0') return sEnv;
  std::error_code ec;
  if (std::filesystem::is_directory(std::string(TARVOS_BUILD_DATA_DIR) + "/Data", ec)) return TARVOS_BUILD_DATA_DIR;
  return TARVOS_INSTALL_DATA_DIR;
}

bool StartEngine(const std::string& sDataDir, std::ostream& err) {
  int nStatus = TARVOS_Init(sDataDir.c_str());
  if (nStatus == 1) return true;
  err << "tarvos: the engine did not start on " << sDataDir << " (status " << nStatus << "): " << TARVOS_GetLastErrorMsg()
      << "\n";
  TARVOS_Exit();
  return false;
}
