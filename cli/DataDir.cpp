#include "cli/DataDir.h"

#include <cstdlib>

#include "utility/FileUtil.h"

std::string ChooseDataDir(const std::string& sOption) {
  if (!sOption.empty()) return sOption;
  const char* sEnv = std::getenv("TARVOS_DATA");
  if (sEnv != nullptr && *sEnv != '\0') return sEnv;
  if (IsReadableDirectory(std::string(TARVOS_BUILD_DATA_DIR) + "/Data")) return TARVOS_BUILD_DATA_DIR;
  return TARVOS_INSTALL_DATA_DIR;
}
