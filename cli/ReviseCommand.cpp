#include "cli/ReviseCommand.h"

#include "cli/DataDir.h"
#include "tarvos.h"

int RunRevise(const std::string& sDataDir, const std::string& sResult, std::ostream& out, std::ostream& err) {
  if (!StartEngine(sDataDir, err)) return 1;
  const char* sRevised = TARVOS_ReviseReportF(sResult.c_str(), 0);
  if (sRevised) out << sRevised << "\n";
  else err << "tarvos: " << sResult << " not applied: " << TARVOS_GetLastErrorMsg() << "\n";
  TARVOS_Exit();
  return sRevised ? 0 : 1;
}
