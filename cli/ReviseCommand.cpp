#include "cli/ReviseCommand.h"

#include <filesystem>

#include "cli/DataDir.h"
#include "tarvos.h"

int RunRevise(const std::string& sDataDir, const std::string& sResult, bool bTrack, const std::string& sAuthor,
              std::ostream& out, std::ostream& err) {
  if (!StartEngine(sDataDir, err)) return 1;
  const char* sRevised = bTrack ? TARVOS_ReviseReportTracked(sResult.c_str(), sAuthor.c_str(), 0)
                                : TARVOS_ReviseReportF(sResult.c_str(), 0);
  if (sRevised) out << std::filesystem::path(sRevised).lexically_normal().string() << "\n";
  else err << "tarvos: " << sResult << " not applied: " << TARVOS_GetLastErrorMsg() << "\n";
  TARVOS_Exit();
  return sRevised ? 0 : 1;
}
