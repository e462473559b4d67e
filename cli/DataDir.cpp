#include "cli/DataDir.h"

#include <cstdlib>
#include <filesystem>

#include "tarvos.h"

namespace {

bool HasData(const std::string& sDir) {
  std::error_code ec;
  return std::filesystem::is_directory(sDir + "/Data", ec);
}

// "<prefix>/share/tarvos" of an installed tool, found from the tool's own
// path, so a copy installed under any prefix (or unpacked from a package)
// finds the data installed beside it.
std::string InstalledBesideTool() {
  std::error_code ec;
  std::filesystem::path tool = std::filesystem::read_symlink("/proc/self/exe", ec);
  if (ec) return "";
  return (tool.parent_path().parent_path() / "share" / "tarvos").string();
}

}  // namespace

std::string ChooseDataDir(const std::string& sOption) {
  if (!sOption.empty()) return sOption;
  const char* sEnv = std::getenv("TARVOS_DATA");
  if (sEnv != nullptr && *sEnv != '\0') return sEnv;
  const std::string sBeside = InstalledBesideTool();
  if (!sBeside.empty() && HasData(sBeside)) return sBeside;
  if (HasData(TARVOS_BUILD_DATA_DIR)) return TARVOS_BUILD_DATA_DIR;
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
