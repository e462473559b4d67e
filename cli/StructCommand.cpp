#include "cli/StructCommand.h"

#include <cstdlib>
#include <filesystem>

#include "cli/DataDir.h"
#include "cli/ResultSummary.h"
#include "tarvos.h"

namespace {

// A count of the structure file: "<ParaCount>12</ParaCount>" in XML,
// "\"ParaCount\": 12" in JSON.
long CountIn(const std::string& sText, const std::string& sName) {
  size_t nXml = sText.find("<" + sName + ">");
  if (nXml != std::string::npos) return atol(sText.c_str() + nXml + sName.size() + 2);
  size_t nJson = sText.find("\"" + sName + "\":");
  return nJson == std::string::npos ? 0 : atol(sText.c_str() + nJson + sName.size() + 3);
}

}  // namespace

int RunStruct(const std::string& sDataDir, const std::string& sFile, bool bJson, std::ostream& out,
              std::ostream& err) {
  if (!StartEngine(sDataDir, err)) return 1;
  const char* sPath = TARVOS_ImportDocFormat(sFile.c_str(), "", bJson ? 1 : 0, 0);
  if (sPath == nullptr) {
    err << "tarvos: " << sFile << ": " << TARVOS_GetLastErrorMsg() << "\n";
    TARVOS_Exit();
    return 1;
  }
  // The engine names it through the working folder ("x_unzip/../x.xml").
  const std::string sResult = std::filesystem::path(sPath).lexically_normal().string();
  TARVOS_Exit();
  out << sResult << std::endl;  // before the counts on standard error
  const std::string sText = ReadOutputFile(sResult);
  err << CountIn(sText, "ParaCount") << " paragraphs, " << CountIn(sText, "TableCount") << " tables, "
      << CountIn(sText, "FigureCount") << " figures\n";
  return 0;
}
